#pragma once

#include <cstddef>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace common {

/// The number that an option is given. Text that is not wholly one finite number throws
/// `std::invalid_argument` with one line of text, as do the other functions here.
double ParseNumber(std::string_view i_option, std::string_view i_text);

/// A whole number from 1 up to a largest one.
std::size_t ParseCount(std::string_view i_option, std::string_view i_text, std::size_t i_largest);

/// Numbers separated by commas; how many there must be is in the form, as in "X,Y,Z".
std::vector<double> ParseList(std::string_view i_option, std::string_view i_text, std::string_view i_form);

/// The words of a command line: paths, and options that begin with two dashes, each with the word behind it
/// as its value. Given twice, an option has the last value.
class CommandLine {
 public:
  /// An option that is not among the known ones, or lacks its value, throws.
  CommandLine(int i_count, char const* const* ip_words, std::initializer_list<std::string_view> i_known);

  std::vector<std::string> const& GetPaths() const { return m_paths; }
  /// Throws, with the usage as text, unless there are so many paths.
  void RequirePaths(std::size_t i_count, std::string_view i_usage) const;
  bool Has(std::string_view i_option) const { return m_values.contains(i_option); }
  /// The value of an option that is given.
  std::string_view Get(std::string_view i_option) const { return m_values.at(i_option); }
  /// What the functions above make of the value, or the default when the option is not given.
  double GetNumber(std::string_view i_option, double i_default) const;
  std::size_t GetCount(std::string_view i_option, std::size_t i_largest, std::size_t i_default) const;

 private:
  std::vector<std::string> m_paths;
  std::map<std::string_view, std::string_view> m_values;
};

}  // namespace common

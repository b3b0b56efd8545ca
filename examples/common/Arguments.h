#pragma once

#include <cstddef>
#include <exception>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace common {

/// Parses the value of a numeric option. Throws `std::invalid_argument` with a one-line message unless the
/// text is exactly one finite number. The other functions here report errors in the same way.
double ParseNumber(std::string_view i_option, std::string_view i_text);

/// Parses a whole number from 1 to i_largest.
std::size_t ParseCount(std::string_view i_option, std::string_view i_text, std::size_t i_largest);

/// Parses numbers separated by commas. i_form names them, as in "X,Y,Z", and fixes their count.
std::vector<double> ParseList(std::string_view i_option, std::string_view i_text, std::string_view i_form);

/// Prints the help to standard output if one of the words is --help. Returns whether it is.
bool PrintHelp(int i_count, char const* const* ip_words, std::string_view i_help);

/// The first line of the help, which is the message if words are missing or there are too many.
std::string GetUsage(std::string_view i_help);

/// Prints an error as one line on standard error. Control characters, which words and paths may contain, are
/// replaced by question marks.
void PrintError(std::string_view i_program, std::exception const& i_exception);

/// The paths and options of a command line.
///
/// An option begins with two dashes, and the next word is its value. The words must outlive the object.
class CommandLine {
 public:
  /// Throws for an option that is not in i_known, has no value, or is given twice.
  CommandLine(int i_count, char const* const* ip_words, std::initializer_list<std::string_view> i_known);

  std::vector<std::string> const& GetPaths() const { return m_paths; }
  /// Throws, with the first line of the help as the message, unless there are exactly i_count paths.
  void RequirePaths(std::size_t i_count, std::string_view i_help) const;
  bool Has(std::string_view i_option) const { return m_values.contains(i_option); }
  /// The option must have been given.
  std::string_view Get(std::string_view i_option) const { return m_values.at(i_option); }
  /// The parsed value, or the default if the option is not given.
  double GetNumber(std::string_view i_option, double i_default) const;
  std::size_t GetCount(std::string_view i_option, std::size_t i_largest, std::size_t i_default) const;

 private:
  std::vector<std::string> m_paths;
  std::map<std::string_view, std::string_view> m_values;
};

}  // namespace common

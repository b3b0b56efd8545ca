#include "common/Arguments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <system_error>

#include "common/Conversion.h"

namespace common {

double ParseNumber(std::string_view i_option, std::string_view i_text) {
  double number = 0;
  auto const [end, error] = std::from_chars(i_text.data(), i_text.data() + i_text.size(), number);
  if (error != std::errc() || end != i_text.data() + i_text.size() || !std::isfinite(number)) {
    throw std::invalid_argument(std::string(i_option) + " takes a number, not \"" + std::string(i_text) +
                                '"');
  }
  return number;
}

std::size_t ParseCount(std::string_view i_option, std::string_view i_text, std::size_t i_largest) {
  double const count = ParseNumber(i_option, i_text);
  if (!(count >= 1 && count <= static_cast<double>(i_largest)) || count != std::floor(count)) {
    throw std::invalid_argument(std::string(i_option) + " takes a whole number from 1 to " +
                                std::to_string(i_largest));
  }
  return ToInteger<std::size_t>(count);
}

std::vector<double> ParseList(std::string_view i_option, std::string_view i_text, std::string_view i_form) {
  if (std::count(i_text.begin(), i_text.end(), ',') != std::count(i_form.begin(), i_form.end(), ',')) {
    throw std::invalid_argument(std::string(i_option) + " takes numbers " + std::string(i_form));
  }
  std::vector<double> numbers;
  std::string_view rest = i_text;
  while (true) {
    std::size_t const comma = rest.find(',');
    numbers.push_back(ParseNumber(i_option, rest.substr(0, comma)));
    if (comma == std::string_view::npos) return numbers;
    rest.remove_prefix(comma + 1);
  }
}

bool PrintHelp(int i_count, char const* const* ip_words, std::string_view i_help) {
  bool const is_asked = std::any_of(ip_words + std::min(1, i_count), ip_words + i_count,
                                    [](std::string_view i_word) { return i_word == "--help"; });
  if (is_asked) std::fwrite(i_help.data(), 1, i_help.size(), stdout);
  return is_asked;
}

std::string GetUsage(std::string_view i_help) { return std::string(i_help.substr(0, i_help.find('\n'))); }

void PrintError(std::string_view i_program, std::exception const& i_exception) {
  std::string line = std::string(i_program) + ": " + i_exception.what();
  std::replace_if(
      line.begin(), line.end(), [](unsigned char i_letter) { return i_letter < ' ' || i_letter == 127; },
      '?');
  std::fprintf(stderr, "%s\n", line.c_str());
}

CommandLine::CommandLine(int i_count, char const* const* ip_words,
                         std::initializer_list<std::string_view> i_known) {
  for (int index = 1; index < i_count; ++index) {
    std::string_view const word = ip_words[index];
    if (!word.starts_with("--")) {
      m_paths.emplace_back(word);
      continue;
    }
    if (std::find(i_known.begin(), i_known.end(), word) == i_known.end()) {
      throw std::invalid_argument("unknown option " + std::string(word));
    }
    if (++index == i_count) throw std::invalid_argument(std::string(word) + " takes a value");
    if (!m_values.emplace(word, ip_words[index]).second) {
      throw std::invalid_argument(std::string(word) + " is given twice");
    }
  }
}

void CommandLine::RequirePaths(std::size_t i_count, std::string_view i_help) const {
  if (m_paths.size() != i_count) throw std::invalid_argument(GetUsage(i_help));
}

double CommandLine::GetNumber(std::string_view i_option, double i_default) const {
  return Has(i_option) ? ParseNumber(i_option, Get(i_option)) : i_default;
}

std::size_t CommandLine::GetCount(std::string_view i_option, std::size_t i_largest,
                                  std::size_t i_default) const {
  return Has(i_option) ? ParseCount(i_option, Get(i_option), i_largest) : i_default;
}

}  // namespace common

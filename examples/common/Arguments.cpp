#include "common/Arguments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>
#include <system_error>

namespace common {

double ParseNumber(std::string_view i_option, std::string_view i_text) {
  double number = 0;
  auto const [end, error] = std::from_chars(i_text.data(), i_text.data() + i_text.size(), number);
  if (error != std::errc() || end != i_text.data() + i_text.size() || !std::isfinite(number)) {
    throw std::invalid_argument(std::string(i_option) + " does not take \"" + std::string(i_text) + '"');
  }
  return number;
}

std::size_t ParseCount(std::string_view i_option, std::string_view i_text, std::size_t i_largest) {
  double const count = ParseNumber(i_option, i_text);
  if (!(count >= 1 && count <= static_cast<double>(i_largest)) || count != std::floor(count)) {
    throw std::invalid_argument(std::string(i_option) + " takes a whole number from 1 to " +
                                std::to_string(i_largest));
  }
  return static_cast<std::size_t>(count);
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

}  // namespace common

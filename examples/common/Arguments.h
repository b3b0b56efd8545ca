#pragma once

#include <cstddef>
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

}  // namespace common

#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

namespace common {

/// Truncates a number to an integer type. Throws `std::range_error` for a NaN and for a number that the type
/// cannot hold, for which the conversion of the language is undefined.
template <class Integer>
Integer ToInteger(double i_number) {
  using Limits = std::numeric_limits<Integer>;
  // The end is one past the largest value: a power of two, and therefore exact.
  double const end = std::ldexp(1.0, Limits::digits);
  bool const is_held =
      Limits::is_signed ? i_number >= -end && i_number < end : i_number > -1 && i_number < end;
  if (!is_held) throw std::range_error("a number lies outside the range of whole numbers");
  return static_cast<Integer>(i_number);
}

/// Rounds a colour to the nearest value from 0 to 255. A NaN is 0.
inline std::uint8_t ToByte(double i_colour) {
  return std::isnan(i_colour) ? std::uint8_t{0}
                              : ToInteger<std::uint8_t>(std::round(std::clamp(i_colour, 0.0, 255.0)));
}

}  // namespace common

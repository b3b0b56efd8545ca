#pragma once

#include "geometry/internal/RequireCpp20.h"

namespace lum {

/// The closed interval from a lower to an upper end. It is empty if the lower end is greater, and has one
/// value if the ends are equal.
///
/// A plain value without shared state, safe from any thread. Nothing is checked and nothing throws.
///
/// \tparam T  a number
template <class T>
class Range {
 public:
  /// From the two ends. Ends in descending order give an empty range.
  constexpr Range(T i_lower, T i_upper) noexcept : m_lower(i_lower), m_upper(i_upper) {}

  constexpr T GetLower() const noexcept { return m_lower; }  ///< The lower end.
  constexpr T GetUpper() const noexcept { return m_upper; }  ///< The upper end.
  /// Whether the lower end is greater. False for a NaN.
  constexpr bool IsEmpty() const noexcept { return m_lower > m_upper; }
  /// Whether the value lies between the ends or is one of them. False for a NaN.
  constexpr bool Contains(T i_value) const noexcept { return m_lower <= i_value && i_value <= m_upper; }

  /// Numeric comparison of the ends. Empty ranges with different ends differ.
  friend constexpr bool operator==(Range const&, Range const&) noexcept = default;

 private:
  T m_lower;
  T m_upper;
};

}  // namespace lum

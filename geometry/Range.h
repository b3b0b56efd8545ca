#pragma once

namespace lum {

/// The closed interval from a lower to an upper end. It is empty when the lower end is the greater one, and
/// holds one value when the ends are equal.
///
/// A plain value without shared state.
template <class T>
class Range {
 public:
  constexpr Range(T i_lower, T i_upper) noexcept : m_lower(i_lower), m_upper(i_upper) {}

  constexpr T GetLower() const noexcept { return m_lower; }
  constexpr T GetUpper() const noexcept { return m_upper; }
  constexpr bool IsEmpty() const noexcept { return m_lower > m_upper; }
  /// False for a NaN.
  constexpr bool Contains(T i_value) const noexcept { return m_lower <= i_value && i_value <= m_upper; }

  /// Numeric comparison of the ends; empty ranges with other ends differ.
  friend constexpr bool operator==(Range const&, Range const&) noexcept = default;

 private:
  T m_lower;
  T m_upper;
};

}  // namespace lum

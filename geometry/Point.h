#pragma once

#include <concepts>
#include <cstddef>
#include <tuple>
#include <type_traits>

#include "geometry/Vector.h"

namespace lum {

/// Tag type of `Origin`.
struct Origin_t {
  explicit constexpr Origin_t() noexcept = default;
};

/// The point whose coordinates are zero. Every translation unit has its own copy, which has no state.
constexpr Origin_t Origin{};

/// A position: N coordinates of type T, in the order x, y (, z).
///
/// A plain value that consists of its coordinates. Transforms apply their translation to points. Arithmetic
/// is by coordinate in T. Nothing is checked, nothing throws, and nothing is taken from the pools. A point
/// must not be written while another thread uses it.
///
/// \tparam T  `float` or `double`
/// \tparam N  2 or 3
template <class T, std::size_t N>
class Point {
 public:
  using value_type = T;  ///< The type of a coordinate.

  constexpr Point() noexcept = default;  ///< The origin.
  constexpr Point(Origin_t) noexcept {}  ///< The origin.
  ///@{
  /// From the coordinates.
  constexpr Point(T i_x, T i_y) noexcept requires(N == 2) : m_position(i_x, i_y) {}
  constexpr Point(T i_x, T i_y, T i_z) noexcept requires(N == 3) : m_position(i_x, i_y, i_z) {}
  ///@}

  /// Converts from the other precision: rounds to the nearest float, or widens exactly.
  template <class U>
  requires(!std::same_as<T, U>) explicit constexpr Point(Point<U, N> const& i_other) noexcept
      : m_position(i_other - Origin) {}

  ///@{
  /// The coordinate at an index below N, unchecked.
  constexpr T& operator[](std::size_t i_index) noexcept { return m_position[i_index]; }
  constexpr T const& operator[](std::size_t i_index) const noexcept { return m_position[i_index]; }
  ///@}
  ///@{
  /// One coordinate.
  constexpr T GetX() const noexcept { return m_position.GetX(); }
  constexpr T GetY() const noexcept { return m_position.GetY(); }
  constexpr T GetZ() const noexcept requires(N == 3) { return m_position.GetZ(); }
  ///@}

  ///@{
  /// The N coordinates as a contiguous range.
  constexpr T* data() noexcept { return m_position.data(); }
  constexpr T const* data() const noexcept { return m_position.data(); }
  static constexpr std::size_t size() noexcept { return N; }
  constexpr T* begin() noexcept { return data(); }
  constexpr T* end() noexcept { return data() + N; }
  constexpr T const* begin() const noexcept { return data(); }
  constexpr T const* end() const noexcept { return data() + N; }
  ///@}

  ///@{
  /// Moves the point by the vector, or by its negative.
  constexpr Point& operator+=(Vector<T, N> const& i_offset) noexcept {
    m_position += i_offset;
    return *this;
  }
  constexpr Point& operator-=(Vector<T, N> const& i_offset) noexcept {
    m_position -= i_offset;
    return *this;
  }
  ///@}

  /// Numeric comparison: zeros of either sign are equal, a NaN equals nothing.
  friend constexpr bool operator==(Point const&, Point const&) noexcept = default;

  ///@{
  /// The point moved by the vector, or by its negative.
  friend constexpr Point operator+(Point i_point, Vector<T, N> const& i_offset) noexcept {
    return i_point += i_offset;
  }
  friend constexpr Point operator-(Point i_point, Vector<T, N> const& i_offset) noexcept {
    return i_point -= i_offset;
  }
  ///@}
  /// The vector from b to a.
  friend constexpr Vector<T, N> operator-(Point const& i_a, Point const& i_b) noexcept {
    return i_a.m_position - i_b.m_position;
  }

 private:
  Vector<T, N> m_position;
};

/// The origin moved by the vector.
template <class T, std::size_t N>
constexpr Point<T, N> operator+(Origin_t i_origin, Vector<T, N> const& i_offset) noexcept {
  return Point<T, N>(i_origin) + i_offset;
}

///@{
/// Support for structured bindings.
template <std::size_t I, class T, std::size_t N>
constexpr T& get(Point<T, N>& io_point) noexcept {
  return io_point[I];
}
template <std::size_t I, class T, std::size_t N>
constexpr T const& get(Point<T, N> const& i_point) noexcept {
  return i_point[I];
}
template <std::size_t I, class T, std::size_t N>
constexpr T&& get(Point<T, N>&& io_point) noexcept {
  return static_cast<T&&>(io_point[I]);
}
///@}

}  // namespace lum

/// \cond
template <class T, std::size_t N>
struct std::tuple_size<lum::Point<T, N>> : std::integral_constant<std::size_t, N> {};
template <std::size_t I, class T, std::size_t N>
struct std::tuple_element<I, lum::Point<T, N>> {
  using type = T;
};
/// \endcond

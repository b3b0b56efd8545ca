#pragma once

#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <tuple>
#include <type_traits>

#include "geometry/internal/Export.h"

namespace lum {

/// A direction: N components of type T, in the order x, y (, z).
///
/// A plain value that consists of its components. Transforms ignore their translation for vectors. Arithmetic
/// is by component in T. Nothing is checked, nothing throws, and nothing is taken from the pools. A vector
/// must not be written while another thread uses it.
///
/// \tparam T  `float` or `double`
/// \tparam N  2 or 3
template <class T, std::size_t N>
class Vector {
  static_assert(std::same_as<T, float> || std::same_as<T, double>,
                "Vector<T, N> and Point<T, N>: T is float or double");
  static_assert(N == 2 || N == 3, "Vector<T, N> and Point<T, N>: N is 2 or 3");

 public:
  using value_type = T;  ///< The type of a component.

  /// The zero vector.
  constexpr Vector() noexcept : m_components{} {}
  ///@{
  /// From the components.
  constexpr Vector(T i_x, T i_y) noexcept requires(N == 2) : m_components{i_x, i_y} {}
  constexpr Vector(T i_x, T i_y, T i_z) noexcept requires(N == 3) : m_components{i_x, i_y, i_z} {}
  ///@}

  /// Converts from the other precision: rounds to the nearest float, or widens exactly.
  template <class U>
  requires(!std::same_as<T, U>) explicit constexpr Vector(Vector<U, N> const& i_other) noexcept : Vector() {
    for (std::size_t i = 0; i < N; ++i) m_components[i] = static_cast<T>(i_other[i]);
  }

  ///@{
  /// The component at an index below N, unchecked.
  constexpr T& operator[](std::size_t i_index) noexcept { return m_components[i_index]; }
  constexpr T const& operator[](std::size_t i_index) const noexcept { return m_components[i_index]; }
  ///@}
  ///@{
  /// One component.
  constexpr T GetX() const noexcept { return m_components[0]; }
  constexpr T GetY() const noexcept { return m_components[1]; }
  constexpr T GetZ() const noexcept requires(N == 3) { return m_components[2]; }
  ///@}

  ///@{
  /// The N components as a contiguous range.
  constexpr T* data() noexcept { return m_components.data(); }
  constexpr T const* data() const noexcept { return m_components.data(); }
  static constexpr std::size_t size() noexcept { return N; }
  constexpr T* begin() noexcept { return data(); }
  constexpr T* end() noexcept { return data() + N; }
  constexpr T const* begin() const noexcept { return data(); }
  constexpr T const* end() const noexcept { return data() + N; }
  ///@}

  ///@{
  /// By component. Division divides each component, and does not multiply by a reciprocal.
  constexpr Vector& operator+=(Vector const& i_other) noexcept;
  constexpr Vector& operator-=(Vector const& i_other) noexcept;
  constexpr Vector& operator*=(T i_factor) noexcept;
  constexpr Vector& operator/=(T i_divisor) noexcept;
  ///@}

  /// Numeric comparison: zeros of either sign are equal, a NaN equals nothing.
  friend constexpr bool operator==(Vector const&, Vector const&) noexcept = default;

  ///@{
  /// By component. Division divides each component, and does not multiply by a reciprocal.
  friend constexpr Vector operator+(Vector i_a, Vector const& i_b) noexcept { return i_a += i_b; }
  friend constexpr Vector operator-(Vector i_a, Vector const& i_b) noexcept { return i_a -= i_b; }
  friend constexpr Vector operator*(Vector i_vector, T i_factor) noexcept { return i_vector *= i_factor; }
  friend constexpr Vector operator*(T i_factor, Vector i_vector) noexcept { return i_vector *= i_factor; }
  friend constexpr Vector operator/(Vector i_vector, T i_divisor) noexcept { return i_vector /= i_divisor; }
  friend constexpr Vector operator-(Vector i_vector) noexcept {
    for (T& component : i_vector) component = -component;
    return i_vector;
  }
  ///@}

 private:
  std::array<T, N> m_components;
};

template <class T, std::size_t N>
constexpr Vector<T, N>& Vector<T, N>::operator+=(Vector const& i_other) noexcept {
  for (std::size_t i = 0; i < N; ++i) m_components[i] += i_other[i];
  return *this;
}

template <class T, std::size_t N>
constexpr Vector<T, N>& Vector<T, N>::operator-=(Vector const& i_other) noexcept {
  for (std::size_t i = 0; i < N; ++i) m_components[i] -= i_other[i];
  return *this;
}

template <class T, std::size_t N>
constexpr Vector<T, N>& Vector<T, N>::operator*=(T i_factor) noexcept {
  for (T& component : m_components) component *= i_factor;
  return *this;
}

template <class T, std::size_t N>
constexpr Vector<T, N>& Vector<T, N>::operator/=(T i_divisor) noexcept {
  for (T& component : m_components) component /= i_divisor;
  return *this;
}

/// The dot product, summed from left to right: (x x' + y y') + z z'.
template <class T, std::size_t N>
constexpr T Dot(Vector<T, N> const& i_a, Vector<T, N> const& i_b) noexcept {
  T sum = i_a[0] * i_b[0];
  for (std::size_t i = 1; i < N; ++i) sum += i_a[i] * i_b[i];
  return sum;
}

/// The cross product, right-handed: x cross y is z.
template <class T>
constexpr Vector<T, 3> Cross(Vector<T, 3> const& i_a, Vector<T, 3> const& i_b) noexcept {
  return {i_a[1] * i_b[2] - i_a[2] * i_b[1],  //
          i_a[2] * i_b[0] - i_a[0] * i_b[2],  //
          i_a[0] * i_b[1] - i_a[1] * i_b[0]};
}

/// The dot product of the vector with itself.
template <class T, std::size_t N>
constexpr T GetSquaredLength(Vector<T, N> const& i_vector) noexcept {
  return Dot(i_vector, i_vector);
}

/// The square root of `GetSquaredLength`. The squares may overflow or underflow, since nothing is rescaled.
template <class T, std::size_t N>
T GetLength(Vector<T, N> const& i_vector) noexcept {
  return std::sqrt(GetSquaredLength(i_vector));
}

///@{
/// The vector with each component divided by its length, in the precision of the argument.
///
/// The squares are summed as x x + y y, or (z z + y y) + x x in three dimensions. Nothing is checked. A zero
/// vector gives NaNs, and one NaN makes all components NaN. If the squares overflow, finite components become
/// 0 and infinite ones NaN. If the squares underflow to 0, components become infinite, and zeros NaN.
LUM_EXPORT Vector<float, 2> GetNormalized(Vector<float, 2> const& i_vector);
LUM_EXPORT Vector<double, 2> GetNormalized(Vector<double, 2> const& i_vector);
LUM_EXPORT Vector<float, 3> GetNormalized(Vector<float, 3> const& i_vector);
LUM_EXPORT Vector<double, 3> GetNormalized(Vector<double, 3> const& i_vector);
///@}

///@{
/// Support for structured bindings.
template <std::size_t I, class T, std::size_t N>
constexpr T& get(Vector<T, N>& io_vector) noexcept {
  return io_vector[I];
}
template <std::size_t I, class T, std::size_t N>
constexpr T const& get(Vector<T, N> const& i_vector) noexcept {
  return i_vector[I];
}
template <std::size_t I, class T, std::size_t N>
constexpr T&& get(Vector<T, N>&& io_vector) noexcept {
  return static_cast<T&&>(io_vector[I]);
}
///@}

}  // namespace lum

/// \cond
template <class T, std::size_t N>
struct std::tuple_size<lum::Vector<T, N>> : std::integral_constant<std::size_t, N> {};
template <std::size_t I, class T, std::size_t N>
struct std::tuple_element<I, lum::Vector<T, N>> {
  using type = T;
};
/// \endcond

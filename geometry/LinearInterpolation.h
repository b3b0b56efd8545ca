#pragma once

#include <concepts>
#include <cstddef>
#include <type_traits>

#include "geometry/Point.h"
#include "geometry/Vector.h"

namespace lum {

/// b t + (1 - t) a. Finite ends are reached exactly: a at t = 0, b at t = 1. t is not clamped; outside [0, 1]
/// the result is an extrapolation. Between two ends at -0 it is -0. Throws nothing; safe from any thread.
template <std::floating_point T>
constexpr T LinearInterpolation(T i_a, T i_b, T i_t) noexcept {
  return i_b * i_t + (1 - i_t) * i_a;
}

/// The interpolation of each component.
template <class T, std::size_t N>
constexpr Vector<T, N> LinearInterpolation(Vector<T, N> const& i_a, Vector<T, N> const& i_b,
                                           std::type_identity_t<T> i_t) noexcept {
  return i_b * i_t + (1 - i_t) * i_a;
}

/// The interpolation of each coordinate.
template <class T, std::size_t N>
constexpr Point<T, N> LinearInterpolation(Point<T, N> const& i_a, Point<T, N> const& i_b,
                                          std::type_identity_t<T> i_t) noexcept {
  // Not the origin moved by the interpolated vector: 0 + -0 is 0.
  Point<T, N> point;
  for (std::size_t i = 0; i < N; ++i) point[i] = LinearInterpolation(i_a[i], i_b[i], i_t);
  return point;
}

}  // namespace lum

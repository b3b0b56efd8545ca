#pragma once

#include <concepts>

#include "geometry/Point.h"
#include "geometry/Vector.h"
#include "geometry/internal/Export.h"

namespace lum {

/// The points (x, y, z) with a x + b y + c z = d (Hesse normal form). (a, b, c) is the unit normal. d is the
/// signed distance of the plane from the origin along the normal, in the unit of the points.
///
/// A plain value without shared state, safe from any thread. It takes nothing from the pools.
///
/// \tparam T  `float` or `double`
template <class T>
class LUM_STANDALONE_DEBUG Plane {
  static_assert(std::same_as<T, float> || std::same_as<T, double>, "Plane<T>: T is float or double");

 public:
  /// Divides all four values by the length of (i_a, i_b, i_c).
  ///
  /// A squared length below the smallest normal number of T throws `std::invalid_argument`. A NaN does not
  /// throw: in i_a, i_b or i_c it makes all four values NaN, in i_d it makes only d NaN.
  Plane(T i_a, T i_b, T i_c, T i_d);

  ///@{
  /// A component of the unit normal (a, b, c).
  constexpr T GetA() const noexcept { return m_a; }
  constexpr T GetB() const noexcept { return m_b; }
  constexpr T GetC() const noexcept { return m_c; }
  ///@}
  /// The right-hand side of the equation: the signed distance from the origin along the normal.
  constexpr T GetD() const noexcept { return m_d; }
  /// (a, b, c), of unit length up to rounding.
  constexpr Vector<T, 3> GetNormal() const noexcept { return {m_a, m_b, m_c}; }

  /// Numeric comparison of the four values.
  friend constexpr bool operator==(Plane const&, Plane const&) noexcept = default;

 private:
  T m_a;
  T m_b;
  T m_c;
  T m_d;
};

/// The distance of the point from the plane, positive on the side to which the normal points:
/// ((a x + b y) + c z) - d.
template <class T>
constexpr T GetSignedDistance(Plane<T> const& i_plane, Point<T, 3> const& i_point) noexcept {
  return Dot(i_plane.GetNormal(), i_point - Origin) - i_plane.GetD();
}

extern template class LUM_EXPORT Plane<float>;
extern template class LUM_EXPORT Plane<double>;

}  // namespace lum

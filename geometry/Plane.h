#pragma once

#include "geometry/Point.h"
#include "geometry/Vector.h"
#include "geometry/internal/Export.h"

namespace lum {

/// The points (x, y, z) with a x + b y + c z = d, where (a, b, c) is a unit normal and d the signed distance
/// of the plane from the origin along it, in the unit of the points (Hesse normal form).
///
/// A plain value without shared state: safe from any thread, nothing is taken from the pools.
///
/// \tparam T  `float` or `double`
template <class T>
class LUM_STANDALONE_DEBUG Plane {
 public:
  /// Divides all four values by the length of (i_a, i_b, i_c).
  ///
  /// A squared length below the smallest normal value of T throws `std::invalid_argument`; one that is NaN
  /// does not, and gives NaNs.
  Plane(T i_a, T i_b, T i_c, T i_d);

  ///@{
  /// A component of the unit normal (a, b, c).
  constexpr T GetA() const noexcept { return m_a; }
  constexpr T GetB() const noexcept { return m_b; }
  constexpr T GetC() const noexcept { return m_c; }
  ///@}
  /// The signed distance from the origin along the normal: on the right-hand side of the equation.
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

/// How far the point lies from the plane, positive on the side that the normal points to:
/// ((a x + b y) + c z) - d.
template <class T>
constexpr T GetSignedDistance(Plane<T> const& i_plane, Point<T, 3> const& i_point) noexcept {
  return Dot(i_plane.GetNormal(), i_point - Origin) - i_plane.GetD();
}

extern template class LUM_EXPORT Plane<float>;
extern template class LUM_EXPORT Plane<double>;

}  // namespace lum

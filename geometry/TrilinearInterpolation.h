#pragma once

#include <array>

#include "geometry/Point.h"
#include "geometry/internal/Export.h"

namespace lum {

/// Interpolates eight values at the corners of the unit cube: linear interpolation along each axis in turn,
/// expanded into a polynomial.
///
/// Bit k of a corner's index is the corner's coordinate along axis k. With u = 1 - x, v = 1 - y, w = 1 - z
/// the result is c0 u v w + c1 x v w + ... + c7 x y z, evaluated from left to right. At a corner it is
/// exactly that corner's value if all eight values are finite. The point is not clamped; outside the cube the
/// result is an extrapolation. Throws nothing; safe from any thread.
///
/// \param i_values  the values at the corners 0 to 7
/// \param i_point   x, y, z in the frame of the cube, whose corners are at 0 and 1
LUM_EXPORT double TrilinearInterpolation(std::array<double, 8> const& i_values,
                                         Point<double, 3> const& i_point);

}  // namespace lum

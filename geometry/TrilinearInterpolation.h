#pragma once

#include <array>

#include "geometry/Point.h"
#include "geometry/internal/Export.h"

namespace lum {

/// Blends eight values at the corners of the unit cube at a point given in the cube's own frame: linear
/// interpolation along each axis in turn, multiplied out.
///
/// Bit k of a corner's index is its coordinate along axis k. With u = 1 - x, v = 1 - y, w = 1 - z the result
/// is the sum, from index 0 to 7, of each value times its x, y and z factor from left to right: c0 u v w +
/// c1 x v w + ... + c7 x y z. At a corner it is that corner's value exactly, where all eight are finite. The
/// point is not clamped: outside the cube the same polynomial extrapolates. Throws nothing; safe from any
/// thread.
///
/// \param i_values  the values at the corners 0 to 7
/// \param i_point   the coordinates x, y, z
LUM_EXPORT double TrilinearInterpolation(std::array<double, 8> const& i_values,
                                         Point<double, 3> const& i_point);

}  // namespace lum

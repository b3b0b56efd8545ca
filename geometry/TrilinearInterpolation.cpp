#include "geometry/TrilinearInterpolation.h"

#include "geometry/internal/StrictArithmetic.h"

namespace lum {

double TrilinearInterpolation(std::array<double, 8> const& i_values, Point<double, 3> const& i_point) {
  auto const [x, y, z] = i_point;
  double const u = 1 - x;
  double const v = 1 - y;
  double const w = 1 - z;
  auto const& c = i_values;
  return c[0] * u * v * w + c[1] * x * v * w + c[2] * u * y * w + c[3] * x * y * w +  //
         c[4] * u * v * z + c[5] * x * v * z + c[6] * u * y * z + c[7] * x * y * z;
}

}  // namespace lum

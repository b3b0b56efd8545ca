#include <geometry/Matrix.h>
#include <geometry/TrilinearInterpolation.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <vector>

namespace {

using Point = lum::Point<double, 3>;

constexpr std::array<unsigned, 3> size = {4, 3, 3};

// Samples at a point given in voxels. Outside the grid, the outermost cell is extrapolated.
double Sample(std::vector<double> const& i_values, Point i_point) {
  std::array<std::size_t, 3> cell{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    // Unlike std::clamp, these replace a NaN, which no integer can hold.
    cell[axis] = static_cast<std::size_t>(std::fmin(std::fmax(i_point[axis], 0), size[axis] - 2));
    i_point[axis] -= static_cast<double>(cell[axis]);
  }
  std::array<double, 8> corners{};
  for (std::size_t i = 0; i < 8; ++i) {
    std::size_t const x = cell[0] + (i & 1U);
    std::size_t const y = cell[1] + (i >> 1 & 1U);
    std::size_t const z = cell[2] + (i >> 2 & 1U);
    corners[i] = i_values[x + size[0] * (y + size[1] * z)];
  }
  return lum::TrilinearInterpolation(corners, i_point);
}

}  // namespace

int main() {
  std::vector<double> values(std::size_t{size[0]} * size[1] * size[2]);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<double>(i * i);

  // The scanner's frame in millimetres: the position of voxel (0, 0, 0), and the step along each axis.
  lum::Matrix<double> const world_from_voxel(Point(-20, 30, 5), {0, 2, 0}, {-2, 0, 0}, {0, 0, 4});
  for (Point const& place : {Point(-20, 30, 5), Point(-21, 31, 7), Point(-22.5, 36.5, 10)}) {
    auto const [x, y, z] = world_from_voxel.GetInverse() * place;
    std::printf("voxel (%.2f, %.2f, %.2f): %.2f\n", x, y, z, Sample(values, {x, y, z}));
  }
}

#include <geometry/Matrix.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <span>
#include <stdexcept>

namespace {

using Matrix = lum::Matrix<float>;
using Point = lum::Point<float, 3>;

// Maps the bounding box of the points into the cube from -1 to 1, centred and without distortion.
Matrix FitIntoCube(std::span<Point const> i_points) {
  Point low = i_points.front();
  Point high = low;
  for (Point const& point : i_points) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      low[axis] = std::min(low[axis], point[axis]);
      high[axis] = std::max(high[axis], point[axis]);
    }
  }
  auto const extents = high - low;
  Point const centre = low + extents / 2;
  float const largest = std::ranges::max(extents);
  return Matrix::Normalize(largest, largest, largest) * Matrix::Translate(lum::Origin - centre);
}

}  // namespace

int main() {
  std::array const triangle = {Point(10, 20, 5), Point(18, 20, 6), Point(13, 24, 5)};
  Matrix const fit = FitIntoCube(triangle);
  for (Point const& point : triangle) {
    auto const [x, y, z] = fit * point;
    std::printf("(%.3f, %.3f, %.3f)\n", x, y, z);
  }
  try {
    FitIntoCube(std::span(triangle).first(1));
  } catch (std::invalid_argument const& exception) {
    std::printf("a single point: %s\n", exception.what());
  }
}

#include <geometry/Matrix.h>

#include <cstdio>
#include <vector>

namespace {

using Points = std::vector<lum::Point<float, 3>>;

void Print(char const* ip_name, Points const& i_points) {
  std::printf("%s", ip_name);
  for (auto const& [x, y, z] : i_points) std::printf(" (%.2f, %.2f, %.2f)", x, y, z);
  std::printf("\n");
}

}  // namespace

int main() {
  // Metres on a map: adjacent floats are 0.25 and 0.5 apart at these coordinates.
  auto const map_from_scan = lum::Matrix<double>::Translate(3513200.4, 5405100.3, 310.2);
  auto const map_from_viewer = lum::Matrix<double>::Translate(3513190.1, 5405095.6, 312.4);

  // The large offsets cancel in double precision; the remaining one is small enough for floats.
  lum::Matrix<float> const viewer_from_scan(map_from_viewer.GetInverse() * map_from_scan);
  Points points = {{0, 0, 0}, {1.5F, 0, 0}, {0, 2.5F, 1}};
  lum::TransformPoints(viewer_from_scan, points, points);  // in place
  Print("converted last: ", points);

  lum::Matrix<float> const rounded_scan(map_from_scan);
  lum::Matrix<float> const rounded_viewer(map_from_viewer);
  points = {{0, 0, 0}, {1.5F, 0, 0}, {0, 2.5F, 1}};
  lum::TransformPoints(rounded_viewer.GetInverse() * rounded_scan, points, points);
  Print("converted first:", points);
}

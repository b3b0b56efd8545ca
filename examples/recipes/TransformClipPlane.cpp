#include <geometry/Matrix.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

using Matrix = lum::Matrix<float>;
using Plane = lum::Plane<float>;
using Point = lum::Point<float, 3>;

}  // namespace

int main() {
  std::array const corners = {Point(0, 0, 0), Point(1, 0, 0), Point(0, 1, 0), Point(1, 1, 0),
                              Point(0, 0, 1), Point(1, 0, 1), Point(0, 1, 1), Point(1, 1, 1)};
  Matrix const world_from_box = Matrix::Translate(10, 0, 0) * Matrix::Scale(2);
  Plane const clip(2, 1, 2, 25);  // 2 x + y + 2 z = 25 in the world

  // Transforms one plane into the box instead of all points into the world.
  Plane const clip_in_box = world_from_box.GetInverse() * clip;
  auto const kept =
      std::ranges::count_if(corners, [&](Point const& p) { return GetSignedDistance(clip_in_box, p) > 0; });

  auto const [a, b, c] = clip_in_box.GetNormal();
  std::printf("%.3f x + %.3f y + %.3f z = %.3f in the box\n", a, b, c, clip_in_box.GetD());
  std::printf("%td of 8 corners kept\n", kept);
  std::printf("the last is inside by %.3f in the box, %.3f in the world\n",
              GetSignedDistance(clip_in_box, corners[7]),
              GetSignedDistance(clip, world_from_box * corners[7]));
}

#include <geometry/Matrix.h>
#include <geometry/Quaternion.h>

#include <cstdio>

int main() {
  using namespace lum;
  Quaternionf const quarter_turn(Vector<float, 3>(0, 0, 1), 1.5707964F);
  Matrix<float> const m = Matrix<float>::Translate(1, 2, 3) * quarter_turn.GetAsMatrix();
  auto const [x, y, z] = m * Point<float, 3>(1, 0, 0);
  auto const [u, v, w] = m.GetInverse() * Point<float, 3>(x, y, z);  // swaps two handles, computes nothing
  Plane<float> const plane = m * Plane<float>(0, 0, 2, 4);           // z = 2, transformed
  std::printf("image (%.3f, %.3f, %.3f)\n", x, y, z);
  std::printf("back  (%.3f, %.3f, %.3f)\n", u, v, w);
  std::printf("plane z = %g, determinant %g\n", plane.GetD(), m.GetDeterminant());
}

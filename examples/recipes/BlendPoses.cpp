#include <geometry/LinearInterpolation.h>
#include <geometry/Matrix.h>
#include <geometry/Quaternion.h>

#include <cstdio>

namespace {

using Matrix = lum::Matrix<float>;
using Point = lum::Point<float, 3>;
using Vector = lum::Vector<float, 3>;

// The rigid pose at t between two poses: rotated along the shorter arc, moved along a line.
Matrix Blend(Matrix const& i_from, Matrix const& i_to, float i_t) {
  lum::Quaternionf const from(i_from);  // extracts the rotation, without the scale
  lum::Quaternionf const to(i_to);
  Point const place = LinearInterpolation(i_from * Point(), i_to * Point(), i_t);
  return Matrix::Translate(place - lum::Origin) * from.Slerp(i_t, to).GetAsMatrix();
}

}  // namespace

int main() {
  Vector const up(0, 0, 1);
  Matrix const start = Matrix::Translate(1, 1, 1) * Matrix::Rotate(up, 0.2F);
  Matrix const end = Matrix::Translate(5, 3, 2) * Matrix::Rotate(up, 1.4F) * Matrix::Scale(3);

  for (float const t : {0.0F, 0.25F, 0.5F, 1.0F}) {
    Matrix const pose = Blend(start, end, t);
    auto const [x, y, z] = pose * Point(1, 0, 0);
    std::printf("t = %.2f: tip at (%.3f, %.3f, %.3f), determinant %.3f\n", t, x, y, z, pose.GetDeterminant());
  }
}

#include <geometry/Matrix.h>

#include <cstdio>

int main() {
  using Matrix = lum::Matrix<float>;
  using Vector = lum::Vector<float, 3>;

  Matrix const stretch = Matrix::Translate(5, 6, 7) * Matrix::Scale(1, 1, 4);
  Vector const normal(1, 1, 1);
  Vector const along(1, 0, -1);  // lies in the surface

  Vector const image_along = stretch * along;
  Vector const wrong = stretch * normal;
  Vector const right = stretch.GetNormalTransform() * normal;
  std::printf("before %g\n", Dot(normal, along));
  std::printf("as a vector %g\n", Dot(wrong, image_along));
  std::printf("as a normal %g\n", Dot(right, image_along));

  auto const [x, y, z] = GetNormalized(right);
  std::printf("of unit length (%.3f, %.3f, %.3f)\n", x, y, z);
}

#include <geometry/Matrix.h>

#include <cstdio>
#include <numbers>

namespace {

using Matrix = lum::Matrix<double>;
using Point = lum::Point<double, 3>;
using Vector = lum::Vector<double, 3>;

// Moves the centre to the origin, rotates there, and moves it back. The axis must have unit length.
Matrix RotateAbout(Point const& i_centre, Vector const& i_axis, double i_angle) {
  Vector const offset = i_centre - lum::Origin;
  return Matrix::Translate(offset) * Matrix::Rotate(i_axis, i_angle) * Matrix::Translate(-offset);
}

void Print(char const* ip_name, Point const& i_point) {
  auto const [x, y, z] = i_point;
  std::printf("%s (%.3f, %.3f, %.3f)\n", ip_name, x, y, z);
}

}  // namespace

int main() {
  Matrix const to_metres = Matrix::Scale(0.001);
  Matrix const swing = RotateAbout(Point(0.9, 0, 0), Vector(0, 0, 1), std::numbers::pi / 6);
  Matrix const into_wall = Matrix::Translate(4, 2, 0);

  Matrix const door = into_wall * swing * to_metres;  // the rightmost is applied first
  Print("hinge ", door * Point(900, 0, 1000));
  Print("handle", door * Point(100, 0, 1000));
  Print("astray", swing * into_wall * to_metres * Point(100, 0, 1000));
}

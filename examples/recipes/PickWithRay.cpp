#include <geometry/Matrix.h>

#include <cstdio>

namespace {

using Matrix = lum::Matrix<double>;
using Point = lum::Point<double, 3>;
using Vector = lum::Vector<double, 3>;

// The direction of a pixel, for a camera with 640 x 480 pixels that looks along -z; row 0 is at the top.
Vector GetDirection(double i_column, double i_row) {
  constexpr double focal_length = 500;  // in pixels
  return {(i_column - 320) / focal_length, (240 - i_row) / focal_length, -1};
}

void Print(char const* ip_name, Point const& i_point) {
  auto const [x, y, z] = i_point;
  std::printf("%s (%.3f, %.3f, %.3f)\n", ip_name, x, y, z);
}

}  // namespace

int main() {
  Matrix const world_from_camera = Matrix::Translate(1, -2, 10) * Matrix::Rotate(Vector(1, 0, 0), 0.3);
  Matrix const world_from_board = Matrix::Translate(0, 1, 2) * Matrix::Scale(2);

  Vector const pixel = GetDirection(400, 180);
  Matrix const board_from_camera = world_from_board.GetInverse() * world_from_camera;
  Point const start = board_from_camera * lum::Origin;
  Vector const direction = board_from_camera * pixel;
  double const t = -start.GetZ() / direction.GetZ();  // the board is its plane z = 0

  Point const hit = start + t * direction;
  std::printf("on the board (%.3f, %.3f)\n", hit.GetX(), hit.GetY());
  Print("in the world ", world_from_board * hit);
  Print("along the ray", world_from_camera * (lum::Origin + t * pixel));
}

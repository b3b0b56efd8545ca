#include <geometry/Matrix.h>

#include <cstdio>

namespace {

using Matrix = lum::Matrix<double>;
using Point = lum::Point<double, 3>;
using Vector = lum::Vector<double, 3>;

void Print(char const* ip_name, Point const& i_point) {
  auto const [x, y, z] = i_point;
  std::printf("%s (%.3f, %.3f, %.3f)\n", ip_name, x, y, z);
}

}  // namespace

int main() {
  // a_from_b is made from the origin and the axes of b, in coordinates of a.
  Matrix const world_from_robot(Point(2, 1, 0), Vector(0, 1, 0), Vector(-1, 0, 0), Vector(0, 0, 1));
  Matrix const robot_from_lidar(Point(0.3, 0, 0.5), Vector(1, 0, 0), Vector(0, -1, 0), Vector(0, 0, -1));
  Matrix const world_from_camera(Point(3, 9, 1.5), Vector(-1, 0, 0), Vector(0, 0, -1), Vector(0, -1, 0));

  Matrix const world_from_lidar = world_from_robot * robot_from_lidar;
  Matrix const camera_from_lidar = world_from_camera.GetInverse() * world_from_lidar;

  Point const echo(4, 0.5, 0.25);  // as the lidar measures it
  Print("robot ", robot_from_lidar * echo);
  Print("world ", world_from_lidar * echo);
  Print("camera", camera_from_lidar * echo);
  std::printf("determinant %g\n", camera_from_lidar.GetDeterminant());
}

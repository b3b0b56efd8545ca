#include <geometry/Matrix.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <thread>

using Matrix = lum::Matrix<float>;
using Point = lum::Point<float, 3>;

int main() {
  Matrix const placement = Matrix::Translate(1, 2, 3) * Matrix::Scale(2);

  // Each worker has its own copy and may change it. The copies share their objects until then.
  std::array<Point, 3> tips;
  std::array<std::thread, 3> workers;
  for (std::size_t i = 0; i < workers.size(); ++i) {
    workers[i] = std::thread([mine = placement, &tip = tips[i], i]() mutable {
      mine *= Matrix::Translate(static_cast<float>(i), 0, 0);
      tip = mine * Point(1, 1, 1);
    });
  }
  for (std::thread& worker : workers) worker.join();
  for (Point const& tip : tips) std::printf("tip at x = %g\n", tip.GetX());

  Matrix copy = placement;
  std::printf("copied: %s values\n", copy.GetAsPtr() == placement.GetAsPtr() ? "shared" : "own");
  copy.GetMutableInternal()->translation().x() = 5;
  std::printf("written: %s values\n", copy.GetAsPtr() == placement.GetAsPtr() ? "shared" : "own");
  std::printf("x = %g in the copy, %g in the original\n", copy(0, 3), placement(0, 3));

  Point const origin;
  std::printf("there and back: x = %g", (copy.GetInverse() * (copy * origin)).GetX());
  copy.GetMutableInverseInternal()->translation().x() = -2.5F;  // -5 / 2: the inverse of x -> 2 x + 5
  std::printf(", then %g\n", (copy.GetInverse() * (copy * origin)).GetX());
}

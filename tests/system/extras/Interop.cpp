#include <extras/EigenMap.h>
#include <extras/FmtFormat.h>
#include <extras/Hash.h>
#include <extras/Layout.h>
#include <extras/Stream.h>

#include <iomanip>
#include <iostream>
#include <unordered_set>
#include <vector>

int main() {
  using namespace lum;
  std::vector<Point<float, 3>> corners = {{0, 0, 0}, {4, 0, 0}, {4, 2, 0}, {0, 2, 0}};
  auto columns = AsEigen(std::span(corners));  // 3x4, in place
  Point<float, 3> const centre = ToPoint(columns.rowwise().mean());
  std::cout << "centre " << centre << '\n';

  float const rows[4][4] = {{1, 0, 0, 5}, {0, 1, 0, 6}, {0, 0, 1, 7}, {0, 0, 0, 1}};
  Matrix<float> const move = FromRowMajor(rows);
  std::cout << "moved " << std::fixed << std::setprecision(1) << std::setw(5) << move * centre << '\n';
  std::cout << "column 3 " << AsEigen(move).col(3).transpose() << '\n';

  Quaternionf const half_turn = QuaternionFromWFirst(0, 0, 0, 1);
  fmt::print("turned {:+.0f}\n", half_turn.Transform({1, 2, 3}));

  std::unordered_set<Point<float, 3>> const distinct(corners.begin(), corners.end());
  fmt::print("{} corners, the first edge {:.2f} long\n", distinct.size(),
             (columns.col(1) - columns.col(0)).norm());
}

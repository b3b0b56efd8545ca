#pragma once

#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <set>
#include <vector>

#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"

namespace lum::test {

/// Ends the process with one line and a failure if the condition does not hold. Does not call exit, which
/// would run destructors, or may already be running them.
inline void Check(bool i_holds, char const* i_what) {
  if (i_holds) return;
  std::fprintf(stderr, "failed: %s\n", i_what);
  std::fflush(stderr);
  _exit(1);
}

/// Checks that default-constructed values are the identity, and that no object has two owners.
inline void CheckIdentities() {
  Matrix<float> const matrix_float;
  Matrix<double> const matrix_double;
  Quaternionf const quaternion;
  Check(matrix_float.IsKnownIdentity(), "a default-constructed Matrix<float> is the known identity");
  Check(matrix_double.IsKnownIdentity(), "a default-constructed Matrix<double> is the known identity");
  Check(quaternion.IsKnownIdentity(), "a default-constructed Quaternionf is the known identity");
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      Check(matrix_float(row, column) == (row == column ? 1.0F : 0.0F),
            "the float identity holds its values");
      Check(matrix_double(row, column) == (row == column ? 1.0 : 0.0),
            "the double identity holds its values");
    }
  }
  Check(quaternion.GetCoefficients() == std::array<float, 4>{0, 0, 0, 1},
        "the quaternion identity holds its values");

  std::set<void const*> objects = {matrix_float.GetAsPtr()};
  std::vector<Matrix<float>> matrices;
  for (int i = 0; i < 100; ++i) {
    matrices.push_back(Matrix<float>::Translate(static_cast<float>(i), 2, 3));
    Check(objects.insert(matrices.back().GetAsPtr()).second, "every object has one owner");
    Check(objects.insert(matrices.back().GetMatrixInverse()->data()).second, "every object has one owner");
  }
  for (int i = 0; i < 100; ++i) {
    Check(matrices[static_cast<std::size_t>(i)](0, 3) == static_cast<float>(i), "objects keep their values");
  }
}

}  // namespace lum::test

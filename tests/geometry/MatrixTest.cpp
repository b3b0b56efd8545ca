#include <gtest/gtest.h>

#include "geometry/Matrix.h"

namespace lum {
namespace {

TEST(Matrix, AppliesTheRightFactorFirst) {
  Matrix<float> const product = Matrix<float>::Translate(1, 2, 3) * Matrix<float>::Scale(2);
  Point<float, 3> const point = product * Point<float, 3>(1, 1, 1);
  EXPECT_EQ(point, (Point<float, 3>(3, 4, 5)));
}

}  // namespace
}  // namespace lum

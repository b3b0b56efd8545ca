#include <gtest/gtest.h>

#include "geometry/LinearInterpolation.h"

namespace lum {
namespace {

static_assert(LinearInterpolation(2.0, 6.0, 0.25) == 3);
static_assert(LinearInterpolation(Vector<float, 2>(0, 4), Vector<float, 2>(4, 0), 0.25) ==
              Vector<float, 2>(1, 3));
static_assert(LinearInterpolation(Point<double, 3>(0, 0, 1), Point<double, 3>(2, 4, 1), 0.5) ==
              Point<double, 3>(1, 2, 1));

TEST(LinearInterpolation, ReachesItsEndsExactly) {
  EXPECT_EQ(LinearInterpolation(0.1, 0.7, 0.0), 0.1);
  EXPECT_EQ(LinearInterpolation(0.1, 0.7, 1.0), 0.7);
  EXPECT_EQ(LinearInterpolation(1.0F, 3.0F, 2.0F), 5.0F) << "it extrapolates";
}

}  // namespace
}  // namespace lum

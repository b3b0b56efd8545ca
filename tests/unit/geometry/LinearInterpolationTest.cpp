#include <gtest/gtest.h>

#include <cmath>
#include <random>

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

TEST(LinearInterpolation, ExtrapolatesVectorsAndPoints) {
  using V = Vector<float, 3>;
  using P = Point<float, 3>;
  EXPECT_EQ(LinearInterpolation(V(0, 1, 2), V(1, 3, 5), 2), V(2, 5, 8));
  EXPECT_EQ(LinearInterpolation(P(0, 1, 2), P(1, 3, 5), -1), P(-1, -1, -1));
}

TEST(LinearInterpolation, BetweenTwoEndsAtMinusZeroIsMinusZero) {
  for (double const t : {0.0, 0.25, 1.0}) {
    auto const f = static_cast<float>(t);
    EXPECT_TRUE(std::signbit(LinearInterpolation(-0.0, -0.0, t))) << t;
    for (double const x :
         LinearInterpolation(Vector<double, 2>(-0.0, -0.0), Vector<double, 2>(-0.0, -0.0), t)) {
      EXPECT_TRUE(std::signbit(x)) << t;
    }
    for (double const x :
         LinearInterpolation(Point<double, 2>(-0.0, -0.0), Point<double, 2>(-0.0, -0.0), t)) {
      EXPECT_TRUE(std::signbit(x)) << t;
    }
    for (float const x :
         LinearInterpolation(Point<float, 3>(-0.0F, -0.0F, -0.0F), Point<float, 3>(-0.0F, -0.0F, -0.0F), f)) {
      EXPECT_TRUE(std::signbit(x)) << t;
    }
  }
}

TEST(LinearInterpolation, SumsTheWeightedEnds) {
  std::mt19937 random(22);
  std::uniform_real_distribution<double> number(-2, 2);
  int differences_of_order = 0;
  for (int i = 0; i < 1000; ++i) {
    double const a = number(random);
    double const b = number(random);
    double const t = number(random);
    double const of_b = b * t;
    double const rest = 1 - t;
    double const of_a = rest * a;
    EXPECT_EQ(LinearInterpolation(a, b, t), of_b + of_a) << "seed 22";
    EXPECT_EQ(LinearInterpolation(Vector<double, 2>(a, b), Vector<double, 2>(b, b), t)[0], of_b + of_a)
        << "seed 22";
    EXPECT_EQ(LinearInterpolation(Point<double, 2>(b, a), Point<double, 2>(b, b), t)[1], of_b + of_a)
        << "seed 22";
    if (of_b + of_a != a + t * (b - a)) ++differences_of_order;
  }
  EXPECT_GT(differences_of_order, 0) << "the inputs do not tell the formulas apart";
}

}  // namespace
}  // namespace lum

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>

#include "geometry/TrilinearInterpolation.h"

namespace lum {
namespace {

constexpr std::array<double, 8> values = {0.1, -2.7, 3.3, 40.9, -0.5, 6.25, 7.125, 1e10};

TEST(TrilinearInterpolation, IsExactAtTheCorners) {
  for (std::size_t corner = 0; corner < 8; ++corner) {
    Point<double, 3> const point(static_cast<double>(corner & 1), static_cast<double>(corner >> 1 & 1),
                                 static_cast<double>(corner >> 2));
    EXPECT_EQ(TrilinearInterpolation(values, point), values[corner]) << corner;
  }
}

TEST(TrilinearInterpolation, IsTheMeanInTheMiddle) {
  EXPECT_EQ(TrilinearInterpolation({1, 2, 3, 4, 5, 6, 7, 8}, {0.5, 0.5, 0.5}), 4.5);
}

TEST(TrilinearInterpolation, ExtrapolatesOutside) {
  EXPECT_EQ(TrilinearInterpolation({3, 5, 0, 0, 0, 0, 0, 0}, {2, 0, 0}), 7);
  EXPECT_EQ(TrilinearInterpolation({3, 0, 5, 0, 0, 0, 0, 0}, {0, -1, 0}), 1);
  EXPECT_EQ(TrilinearInterpolation({3, 0, 0, 0, 5, 0, 0, 0}, {0, 0, 3}), 9);
}

TEST(TrilinearInterpolation, ANonFiniteCornerGivesANonFiniteResult) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(TrilinearInterpolation({0, 0, 0, infinity, 0, 0, 0, 0}, {0.5, 0.5, 0.5}), infinity);
  EXPECT_TRUE(std::isnan(TrilinearInterpolation({0, 0, 0, infinity, 0, 0, 0, 0}, {0, 0, 0})))
      << "a weight of zero is multiplied too";
}

TEST(TrilinearInterpolation, AddsTheTermsInTheOrderOfTheirIndices) {
  std::mt19937 random(6);
  std::uniform_real_distribution<double> number(-1, 2);
  for (int i = 0; i < 1000; ++i) {
    std::array<double, 8> c{};
    for (double& value : c) value = number(random);
    double const x = number(random);
    double const y = number(random);
    double const z = number(random);
    double sum = 0;
    for (std::size_t corner = 0; corner < 8; ++corner) {
      double term = c[corner];
      term *= (corner & 1) != 0 ? x : 1 - x;
      term *= (corner & 2) != 0 ? y : 1 - y;
      term *= (corner & 4) != 0 ? z : 1 - z;
      sum = corner == 0 ? term : sum + term;
    }
    EXPECT_EQ(TrilinearInterpolation(c, {x, y, z}), sum) << "seed 6";
  }
}

}  // namespace
}  // namespace lum

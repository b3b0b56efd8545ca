#include <gtest/gtest.h>

#include <limits>

#include "geometry/Range.h"

namespace lum {
namespace {

static_assert(Range<double>(1, 2).GetLower() == 1);
static_assert(Range<double>(1, 2).GetUpper() == 2);
static_assert(!Range<double>(1, 2).IsEmpty());
static_assert(sizeof(Range<double>) == 2 * sizeof(double));
static_assert(Range<float>(2, 1) != Range<float>(3, 1), "empty ranges with other ends differ");
static_assert(Range<double>(1, 2) != Range<double>(1, 3));

TEST(Range, WithEqualEndsContainsOneValue) {
  Range<double> const range(3, 3);
  EXPECT_FALSE(range.IsEmpty());
  EXPECT_TRUE(range.Contains(3));
  EXPECT_FALSE(range.Contains(3.5));
}

TEST(Range, WithTheLowerEndAboveTheUpperIsEmpty) {
  Range<double> const range(2, 1);
  EXPECT_TRUE(range.IsEmpty());
  EXPECT_FALSE(range.Contains(1.5));
}

TEST(Range, ContainsItsEnds) {
  Range<float> const range(-1, 2);
  EXPECT_TRUE(range.Contains(-1));
  EXPECT_TRUE(range.Contains(2));
  EXPECT_FALSE(range.Contains(2.5F));
  EXPECT_FALSE(range.Contains(std::numeric_limits<float>::quiet_NaN()));
}

TEST(Range, WithANaNAsAnEndIsNotEmptyAndContainsNothing) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  for (Range<float> const range : {Range<float>(nan, 1), Range<float>(1, nan)}) {
    EXPECT_FALSE(range.IsEmpty());
    EXPECT_FALSE(range.Contains(1));
  }
}

}  // namespace
}  // namespace lum

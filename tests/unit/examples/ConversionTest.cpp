#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "common/Conversion.h"
#include "tests/support/Throws.h"

namespace common {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

template <class Integer>
void ExpectRefusal(double i_number) {
  EXPECT_TRUE(lum::test::Throws<std::range_error>([=] { ToInteger<Integer>(i_number); },
                                                  "a number lies outside the range of whole numbers"))
      << i_number;
}

TEST(Conversion, TruncatesWhatTheTypeHolds) {
  EXPECT_EQ(ToInteger<std::uint8_t>(255.9), 255);
  EXPECT_EQ(ToInteger<std::uint8_t>(-0.9), 0);
  EXPECT_EQ(ToInteger<int>(-2.9), -2);
  EXPECT_EQ(ToInteger<int>(-2147483648.0), std::numeric_limits<int>::min());
  EXPECT_EQ(ToInteger<int>(2147483647.9), std::numeric_limits<int>::max());
  EXPECT_EQ(ToInteger<std::size_t>(std::nextafter(0x1p64, 0)), 0xfffffffffffff800U);
}

TEST(Conversion, RefusesOtherNumbers) {
  for (double const number : {infinity, -infinity, std::nan(""), 0x1p64, -1.0}) {
    ExpectRefusal<std::size_t>(number);
    ExpectRefusal<std::uint8_t>(number);
  }
  ExpectRefusal<std::uint8_t>(256);
  ExpectRefusal<int>(2147483648.0);
  ExpectRefusal<std::int64_t>(0x1p63);
}

TEST(Conversion, ColoursAreRoundedAndClamped) {
  EXPECT_EQ(ToByte(127.5), 128);
  EXPECT_EQ(ToByte(127.4), 127);
  EXPECT_EQ(ToByte(-infinity), 0);
  EXPECT_EQ(ToByte(infinity), 255);
  EXPECT_EQ(ToByte(std::nan("")), 0);
}

}  // namespace
}  // namespace common

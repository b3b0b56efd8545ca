#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "geometry/Plane.h"
#include "support/Throws.h"

namespace lum {
namespace {

constexpr char const* message = "i_a, i_b, i_c cannot be all zeroes";

template <class T>
class PlaneOf : public testing::Test {};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(PlaneOf, Precisions);

TYPED_TEST(PlaneOf, MakesItsNormalAUnitVector) {
  static_assert(sizeof(Plane<TypeParam>) == 4 * sizeof(TypeParam));
  Plane<TypeParam> const plane(0, 0, 2, 4);
  EXPECT_EQ(plane.GetA(), 0);
  EXPECT_EQ(plane.GetB(), 0);
  EXPECT_EQ(plane.GetC(), 1);
  EXPECT_EQ(plane.GetD(), 2);
  EXPECT_EQ(plane.GetNormal(), (Vector<TypeParam, 3>(0, 0, 1)));
  EXPECT_EQ(plane, (Plane<TypeParam>(0, 0, 1, 2)));
}

TYPED_TEST(PlaneOf, DividesByTheLengthSummedFromA) {
  TypeParam const a = TypeParam(0.1);
  TypeParam const b = TypeParam(0.7);
  TypeParam const c = TypeParam(-3.3);
  TypeParam const aa = a * a;
  TypeParam const bb = b * b;
  TypeParam const cc = c * c;
  TypeParam const length = std::sqrt(aa + bb + cc);
  Plane<TypeParam> const plane(a, b, c, 5);
  EXPECT_EQ(plane.GetA(), a / length);
  EXPECT_EQ(plane.GetB(), b / length);
  EXPECT_EQ(plane.GetC(), c / length);
  EXPECT_EQ(plane.GetD(), 5 / length);
}

TYPED_TEST(PlaneOf, RefusesANormalOfZeros) {
  EXPECT_TRUE(test::Throws<std::invalid_argument>([] { Plane<TypeParam>(0, 0, 0, 1); }, message));
}

TYPED_TEST(PlaneOf, RefusesANormalWhoseSquaredLengthIsBelowTheSmallestNormalValue) {
  TypeParam const root = std::sqrt(std::numeric_limits<TypeParam>::min());
  EXPECT_NO_THROW(Plane<TypeParam>(root * TypeParam(1.01), 0, 0, 1));
  EXPECT_TRUE(test::Throws<std::invalid_argument>(
      [root] { Plane<TypeParam>(root * TypeParam(0.99), 0, 0, 1); }, message));
}

TYPED_TEST(PlaneOf, LetsANaNThrough) {
  constexpr TypeParam nan = std::numeric_limits<TypeParam>::quiet_NaN();
  EXPECT_TRUE(std::isnan(Plane<TypeParam>(nan, 0, 0, 1).GetD()));
}

TEST(Plane, RefusesSquaresThatUnderflow) {
  EXPECT_TRUE(test::Throws<std::invalid_argument>([] { Plane<float>(1e-20F, 1e-20F, 1e-20F, 1); }, message));
  EXPECT_NO_THROW(Plane<double>(1e-20, 1e-20, 1e-20, 1));
}

}  // namespace
}  // namespace lum

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

#include "geometry/Plane.h"
#include "tests/support/Precisions.h"
#include "tests/support/Throws.h"

namespace lum {
namespace {

constexpr char const* message = "i_a, i_b, i_c cannot be all zeroes";

template <class T>
class PlaneOf : public test::PrecisionTest<T> {};
TYPED_TEST_SUITE(PlaneOf, test::Precisions);

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

TYPED_TEST(PlaneOf, MeasuresDistancesAlongItsNormal) {
  using P = Point<TypeParam, 3>;
  Plane<TypeParam> const plane(0, 0, -2, 4);
  EXPECT_EQ(GetSignedDistance(plane, P(5, 6, -2)), 0);
  EXPECT_EQ(GetSignedDistance(plane, P(5, 6, -7)), 5);
  EXPECT_EQ(GetSignedDistance(plane, P(5, 6, 1)), -3);
  EXPECT_EQ(GetSignedDistance(Plane<TypeParam>(1, 0, 0, 1), P(3, 1, 1)), 2);
  EXPECT_EQ(GetSignedDistance(Plane<TypeParam>(0, 1, 0, 1), P(1, 4, 1)), 3);
}

TYPED_TEST(PlaneOf, ComparesEveryValue) {
  using P = Plane<TypeParam>;
  EXPECT_TRUE(P(1, 0, 0, 2) == P(1, 0, 0, 2));
  EXPECT_FALSE(P(1, 0, 0, 2) == P(-1, 0, 0, 2));
  EXPECT_FALSE(P(0, 1, 0, 2) == P(0, -1, 0, 2));
  EXPECT_FALSE(P(0, 0, 1, 2) == P(0, 0, -1, 2));
  EXPECT_FALSE(P(0, 0, 1, 2) == P(0, 0, 1, 3));
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

TYPED_TEST(PlaneOf, KeepsTheOrderOfItsSum) {
  std::mt19937 random(21);
  std::uniform_real_distribution<TypeParam> number(-1, 1);
  int differences_of_order = 0;
  for (int i = 0; i < 2000; ++i) {
    TypeParam const a = number(random);
    TypeParam const b = number(random);
    TypeParam const c = number(random);
    TypeParam const d = number(random);
    TypeParam const aa = a * a;
    TypeParam const bb = b * b;
    TypeParam const cc = c * c;
    TypeParam const sum = (aa + bb) + cc;
    if (sum != (cc + bb) + aa) ++differences_of_order;
    TypeParam const length = std::sqrt(sum);
    Plane<TypeParam> const plane(a, b, c, d);
    EXPECT_EQ(plane.GetA(), a / length) << "seed 21";
    EXPECT_EQ(plane.GetB(), b / length) << "seed 21";
    EXPECT_EQ(plane.GetC(), c / length) << "seed 21";
    EXPECT_EQ(plane.GetD(), d / length) << "seed 21";
  }
  EXPECT_GT(differences_of_order, 0) << "the inputs do not tell the orders apart";
}

// The smallest normal number is an even power of two, so its root is exact.
TYPED_TEST(PlaneOf, AcceptsASquaredLengthOfExactlyTheSmallestNormalValue) {
  constexpr TypeParam least = std::numeric_limits<TypeParam>::min();
  TypeParam const root = std::sqrt(least);
  ASSERT_EQ(root * root, least);
  EXPECT_EQ(Plane<TypeParam>(0, root, 0, 0).GetB(), 1);
  TypeParam const below = std::nextafter(root, TypeParam(0));
  EXPECT_TRUE(test::Throws<std::invalid_argument>([below] { Plane<TypeParam>(0, below, 0, 0); }, message));
}

TYPED_TEST(PlaneOf, AnInfiniteSquaredLengthGivesZerosAndNaNs) {
  TypeParam const huge = std::numeric_limits<TypeParam>::max();
  Plane<TypeParam> const plane(huge, 0, 0, 1);
  EXPECT_EQ(plane.GetA(), 0);
  EXPECT_EQ(plane.GetD(), 0);
  Plane<TypeParam> const infinite(this->infinity, 1, 0, 1);
  EXPECT_TRUE(std::isnan(infinite.GetA()));
  EXPECT_EQ(infinite.GetB(), 0);
  EXPECT_TRUE(std::isnan(Plane<TypeParam>(huge, 0, 0, this->infinity).GetD()));
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

TYPED_TEST(PlaneOf, AcceptsNaNs) {
  EXPECT_TRUE(std::isnan(Plane<TypeParam>(this->nan, 0, 0, 1).GetD()));
  EXPECT_TRUE(std::isnan(Plane<TypeParam>(0, this->nan, 0, 1).GetA()));
  EXPECT_TRUE(std::isnan(Plane<TypeParam>(0, 0, this->nan, 1).GetB()));
  Plane<TypeParam> const only_d(0, 3, 4, this->nan);
  EXPECT_EQ(only_d.GetNormal(), (Vector<TypeParam, 3>(0, TypeParam(3) / 5, TypeParam(4) / 5)));
  EXPECT_TRUE(std::isnan(only_d.GetD()));
}

TEST(Plane, RefusesSquaresThatUnderflow) {
  EXPECT_TRUE(test::Throws<std::invalid_argument>([] { Plane<float>(1e-20F, 1e-20F, 1e-20F, 1); }, message));
  EXPECT_NO_THROW(Plane<double>(1e-20, 1e-20, 1e-20, 1));
}

}  // namespace
}  // namespace lum

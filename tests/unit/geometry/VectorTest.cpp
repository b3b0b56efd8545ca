#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>

#include "geometry/Vector.h"
#include "tests/support/Precisions.h"

namespace lum {
namespace {

static_assert(sizeof(Vector<float, 2>) == 2 * sizeof(float));
static_assert(sizeof(Vector<float, 3>) == 3 * sizeof(float));
static_assert(sizeof(Vector<double, 2>) == 2 * sizeof(double));
static_assert(sizeof(Vector<double, 3>) == 3 * sizeof(double));
static_assert(std::is_trivially_copyable_v<Vector<float, 3>>);

using V = Vector<double, 3>;
static_assert(V() == V(0, 0, 0));
static_assert(V(1, 2, 3).GetX() == 1);
static_assert(V(1, 2, 3).GetY() == 2);
static_assert(V(1, 2, 3).GetZ() == 3);
static_assert(V(1, 2, 3)[2] == 3);
static_assert(V::size() == 3);
static_assert(V(1, 2, 3) + V(10, 20, 30) == V(11, 22, 33));
static_assert(V(1, 2, 3) - V(10, 20, 30) == V(-9, -18, -27));
static_assert(V(1, 2, 3) * 2 == V(2, 4, 6));
static_assert(2 * V(1, 2, 3) == V(2, 4, 6));
static_assert(V(1, 2, 3) / 2 == V(0.5, 1, 1.5));
static_assert(-V(1, 2, 3) == V(-1, -2, -3));
static_assert(V(1, 2, 3) != V(1, 2, 4));
static_assert(Dot(V(1, 2, 3), V(4, 5, 6)) == 32);
static_assert(Cross(V(1, 0, 0), V(0, 1, 0)) == V(0, 0, 1));
static_assert(Cross(V(1, 2, 3), V(4, 5, 6)) == V(-3, 6, -3));
static_assert(GetSquaredLength(Vector<float, 2>(3, 4)) == 25);

template <class T>
class VectorOf : public test::PrecisionTest<T> {};
TYPED_TEST_SUITE(VectorOf, test::Precisions);

TEST(Vector, ConvertsToTheOtherPrecisionWhenAsked) {
  static_assert(!std::is_convertible_v<V, Vector<float, 3>>);
  static_assert(!std::is_convertible_v<Vector<float, 3>, V>);
  EXPECT_EQ((Vector<float, 3>(V(0.1, 2, -3))), (Vector<float, 3>(0.1F, 2, -3)));
  EXPECT_EQ((Vector<double, 2>(Vector<float, 2>(0.1F, 2))), (Vector<double, 2>(double{0.1F}, 2)));
}

TYPED_TEST(VectorOf, BindsToItsComponentsInOrder) {
  Vector<TypeParam, 3> vector(1, 2, 3);
  auto& [x, y, z] = vector;
  y = 7;
  EXPECT_EQ(vector, (Vector<TypeParam, 3>(1, 7, 3)));
  auto [a, b] = Vector<TypeParam, 2>(4, 5);
  EXPECT_EQ(a + b, 9);
  EXPECT_EQ(x + z, 4);
  TypeParam sum = 0;
  for (TypeParam const component : vector) sum += component;
  EXPECT_EQ(sum, 11);
  EXPECT_EQ(vector.data() + 3, vector.end());
  EXPECT_EQ(std::as_const(vector).data() + 3, std::as_const(vector).end());
}

TYPED_TEST(VectorOf, ComparesNumerically) {
  EXPECT_EQ((Vector<TypeParam, 2>(0, 1)), (Vector<TypeParam, 2>(-TypeParam(0), 1)));
  EXPECT_NE((Vector<TypeParam, 2>(this->nan, 1)), (Vector<TypeParam, 2>(this->nan, 1)));
}

TYPED_TEST(VectorOf, SumsProductsFromLeftToRight) {
  std::mt19937 random(4);
  std::uniform_real_distribution<TypeParam> component(-1, 1);
  int differences_of_order = 0;
  for (int i = 0; i < 1000; ++i) {
    Vector<TypeParam, 3> const a(component(random), component(random), component(random));
    Vector<TypeParam, 3> const b(component(random), component(random), component(random));
    TypeParam const x = a[0] * b[0];
    TypeParam const y = a[1] * b[1];
    TypeParam const z = a[2] * b[2];
    EXPECT_EQ(Dot(a, b), (x + y) + z) << "seed 4";
    if ((x + y) + z != x + (y + z) && (x + y) + z != (z + y) + x) ++differences_of_order;
  }
  EXPECT_GT(differences_of_order, 0) << "the inputs do not tell the orders apart";
}

TYPED_TEST(VectorOf, NormalizesByATrueDivision) {
  EXPECT_EQ(GetNormalized(Vector<TypeParam, 2>(3, 4)),
            (Vector<TypeParam, 2>(TypeParam(3) / 5, TypeParam(4) / 5)));
  EXPECT_EQ(GetNormalized(Vector<TypeParam, 3>(0, 0, -9)), (Vector<TypeParam, 3>(0, 0, -1)));
  EXPECT_EQ(GetLength(Vector<TypeParam, 3>(2, 3, 6)), 7);
}

TYPED_TEST(VectorOf, CalculatesInPlace) {
  Vector<TypeParam, 2> vector(1, 2);
  vector += Vector<TypeParam, 2>(3, 4);
  vector *= 3;
  vector -= Vector<TypeParam, 2>(2, 4);
  vector /= 2;
  EXPECT_EQ(vector, (Vector<TypeParam, 2>(5, 7)));
  vector[0] = 9;
  EXPECT_EQ(vector.GetX(), 9);
}

// Every operation is rounded once, to the precision of the components.
TYPED_TEST(VectorOf, NormalizesTwoComponentsInTheirPrecision) {
  std::mt19937 random(20);
  std::uniform_real_distribution<TypeParam> component(-1, 1);
  for (int i = 0; i < 2000; ++i) {
    Vector<TypeParam, 2> const v(component(random), component(random));
    TypeParam const xx = v[0] * v[0];
    TypeParam const yy = v[1] * v[1];
    TypeParam const sum = xx + yy;
    TypeParam const length = std::sqrt(sum);
    EXPECT_EQ(GetNormalized(v), (Vector<TypeParam, 2>(v[0] / length, v[1] / length))) << "seed 20";
  }
}

TYPED_TEST(VectorOf, NormalizingAUnitVectorKeepsItUpToRounding) {
  Vector<TypeParam, 3> const unit = GetNormalized(Vector<TypeParam, 3>(1, -2, 3));
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(GetNormalized(unit)[i], unit[i], std::numeric_limits<TypeParam>::epsilon());
  }
}

TYPED_TEST(VectorOf, NormalizesWithTheSumOfSquaresFromTheLastComponent) {
  std::mt19937 random(5);
  std::uniform_real_distribution<TypeParam> component(-1, 1);
  int differences_of_order = 0;
  for (int i = 0; i < 2000; ++i) {
    Vector<TypeParam, 3> const v(component(random), component(random), component(random));
    TypeParam const xx = v[0] * v[0];
    TypeParam const yy = v[1] * v[1];
    TypeParam const zz = v[2] * v[2];
    TypeParam const length = std::sqrt((zz + yy) + xx);
    EXPECT_EQ(GetNormalized(v), (Vector<TypeParam, 3>(v[0] / length, v[1] / length, v[2] / length)))
        << "seed 5";
    if ((zz + yy) + xx != (xx + yy) + zz) ++differences_of_order;
  }
  EXPECT_GT(differences_of_order, 0) << "the inputs do not tell the orders apart";
}

TYPED_TEST(VectorOf, NormalizingAZeroVectorGivesNaNs) {
  for (TypeParam const component : GetNormalized(Vector<TypeParam, 3>())) EXPECT_TRUE(std::isnan(component));
  for (TypeParam const component : GetNormalized(Vector<TypeParam, 2>())) EXPECT_TRUE(std::isnan(component));
}

TYPED_TEST(VectorOf, NormalizingANaNGivesNaNsOnly) {
  for (std::size_t bad = 0; bad < 3; ++bad) {
    Vector<TypeParam, 3> vector(1, 2, 3);
    vector[bad] = this->nan;
    for (TypeParam const component : GetNormalized(vector)) EXPECT_TRUE(std::isnan(component)) << bad;
  }
  for (TypeParam const component : GetNormalized(Vector<TypeParam, 2>(1, this->nan))) {
    EXPECT_TRUE(std::isnan(component));
  }
}

TEST(Vector, NormalizingDoesNotRescale) {
  EXPECT_EQ(GetNormalized(Vector<float, 3>(1e20F, -1e20F, 1e20F)), (Vector<float, 3>(0, 0, 0)));
  constexpr float infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(GetNormalized(Vector<float, 3>(1e-30F, 1e-30F, -1e-30F)),
            (Vector<float, 3>(infinity, infinity, -infinity)));
  EXPECT_EQ(GetNormalized(Vector<float, 2>(1e20F, 0)), (Vector<float, 2>(0, 0)));
  Vector<float, 2> const infinite =
      GetNormalized(Vector<float, 2>(std::numeric_limits<float>::infinity(), 1));
  EXPECT_TRUE(std::isnan(infinite[0]));
  EXPECT_EQ(infinite[1], 0);
  Vector<float, 2> const tiny = GetNormalized(Vector<float, 2>(1e-30F, 0));
  EXPECT_EQ(tiny[0], std::numeric_limits<float>::infinity());
  EXPECT_TRUE(std::isnan(tiny[1]));
  EXPECT_EQ(GetNormalized(Vector<float, 2>(0, 3)), (Vector<float, 2>(0, 1)));
  EXPECT_EQ(GetNormalized(Vector<double, 3>(1e200, 0, 0)), (Vector<double, 3>(0, 0, 0)));
  EXPECT_EQ(
      GetNormalized(Vector<double, 2>(1e-200, -1e-200)),
      (Vector<double, 2>(std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity())));
}

}  // namespace
}  // namespace lum

// Products of matrices, and matrices applied to vectors, points and planes.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <stdexcept>

#include "geometry/Matrix.h"
#include "tests/support/Precisions.h"
#include "tests/support/Throws.h"
#include "tests/support/Values.h"

namespace lum {
namespace {

using test::AreSameBits;
using test::InverseValuesOf;
using test::Values;
using test::ValuesOf;

template <class T>
class MatrixProduct : public test::PrecisionTest<T> {};
TYPED_TEST_SUITE(MatrixProduct, test::Precisions);
template <class T>
class MatrixProductDeathTest : public test::PrecisionTest<T> {};
TYPED_TEST_SUITE(MatrixProductDeathTest, test::Precisions);

// Column j is B(0,j) A0 + B(1,j) A1 + B(2,j) A2 + B(3,j) A3, summed in this order.
template <class T>
Values<T> Multiply(Values<T> const& a, Values<T> const& b) {
  Values<T> product;
  for (std::size_t j = 0; j < 4; ++j) {
    for (std::size_t i = 0; i < 4; ++i) {
      T sum = b[4 * j] * a[i];
      for (std::size_t k = 1; k < 4; ++k) {
        T const term = b[k + 4 * j] * a[i + 4 * k];
        sum = sum + term;
      }
      product[i + 4 * j] = sum;
    }
  }
  return product;
}

TYPED_TEST(MatrixProduct, AppliesTheRightFactorFirst) {
  auto const product = Matrix<TypeParam>::Translate(1, 2, 3) * Matrix<TypeParam>::Scale(2);
  Point<TypeParam, 3> const point = product * Point<TypeParam, 3>(1, 1, 1);
  EXPECT_EQ(point, (Point<TypeParam, 3>(3, 4, 5)));
  EXPECT_EQ((product.GetInverse() * point), (Point<TypeParam, 3>(1, 1, 1)));
  EXPECT_EQ((product * Vector<TypeParam, 3>(1, 1, 1)), (Vector<TypeParam, 3>(2, 2, 2)));
}

TYPED_TEST(MatrixProduct, KeepsItsOrderAndMultipliesTheInversesInReverse) {
  std::mt19937 random(10);
  for (int i = 0; i < 300; ++i) {
    Values<TypeParam> const a = test::MakeRandomValues<TypeParam>(random);
    Values<TypeParam> const b = test::MakeRandomValues<TypeParam>(random);
    Matrix<TypeParam> const left(a.data());
    Matrix<TypeParam> const right(b.data());
    auto const product = left * right;
    EXPECT_TRUE(AreSameBits(ValuesOf(product), Multiply(a, b))) << "seed 10";
    EXPECT_TRUE(
        AreSameBits(InverseValuesOf(product), Multiply(InverseValuesOf(right), InverseValuesOf(left))))
        << "seed 10";
  }
}

TYPED_TEST(MatrixProduct, WithTheKnownIdentityShares) {
  Matrix<TypeParam> const identity;
  EXPECT_TRUE((identity * identity).IsKnownIdentity());
  auto const matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  for (auto const& product : {identity * matrix, matrix * identity}) {
    EXPECT_EQ(product.GetMatrix().Get(), matrix.GetMatrix().Get());
    EXPECT_EQ(product.GetMatrixInverse().Get(), matrix.GetMatrixInverse().Get());
  }
  EXPECT_FALSE((identity * Matrix<TypeParam>::Scale(0)).HasInverse());
}

TYPED_TEST(MatrixProduct, WithIdentityValuesThatAreNotKnownIsComputed) {
  auto const ones = Matrix<TypeParam>::Scale(1);
  auto const matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  EXPECT_NE((ones * matrix).GetMatrix().Get(), matrix.GetMatrix().Get());
  EXPECT_TRUE(ones * matrix == matrix);
}

TYPED_TEST(MatrixProduct, InPlaceIsTheSameProduct) {
  auto matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  auto const scale = Matrix<TypeParam>::Scale(2);
  auto const product = matrix * scale;
  EXPECT_EQ(&(matrix *= scale), &matrix);
  EXPECT_TRUE(matrix == product);
  EXPECT_TRUE(matrix.GetInverse() == product.GetInverse());

  Matrix<TypeParam> identity;
  identity *= scale;
  EXPECT_EQ(identity.GetMatrix().Get(), scale.GetMatrix().Get());

  auto square = scale;
  square *= square;
  EXPECT_TRUE(square == Matrix<TypeParam>::Scale(4));
}

TYPED_TEST(MatrixProduct, LosesTheInverseWithEitherFactor) {
  auto const with = Matrix<TypeParam>::Translate(1, 2, 3);
  Matrix<TypeParam> const without(with.GetMatrix(), {});
  EXPECT_FALSE((with * without).HasInverse());
  EXPECT_FALSE((without * with).HasInverse());
  EXPECT_TRUE((with * with).HasInverse());
}

TYPED_TEST(MatrixProduct, AppliesInOrderToVectorsAndPoints) {
  std::mt19937 random(11);
  std::uniform_real_distribution<TypeParam> number(-1, 1);
  for (int i = 0; i < 1000; ++i) {
    Values<TypeParam> const m = test::MakeRandomValues<TypeParam>(random);
    Matrix<TypeParam> const matrix(m.data());
    TypeParam const x = number(random);
    TypeParam const y = number(random);
    TypeParam const z = number(random);
    auto const vector = matrix * Vector<TypeParam, 3>(x, y, z);
    auto const point = matrix * Point<TypeParam, 3>(x, y, z);
    for (std::size_t row = 0; row < 3; ++row) {
      TypeParam const mx = m[row] * x;
      TypeParam const my = m[row + 4] * y;
      TypeParam const mz = m[row + 8] * z;
      TypeParam const linear = (mx + my) + mz;
      EXPECT_EQ(vector[row], linear) << "seed 11";
      EXPECT_EQ(point[row], linear + m[row + 12]) << "seed 11";
    }
  }
}

TYPED_TEST(MatrixProduct, TheKnownIdentityReturnsItsOperand) {
  Matrix<TypeParam> const identity;
  TypeParam const negative_zero = -TypeParam(0);
  auto const vector = identity * Vector<TypeParam, 3>(negative_zero, this->infinity, 1);
  EXPECT_TRUE(std::signbit(vector[0])) << "nothing was added";
  EXPECT_EQ(vector[1], this->infinity);
  EXPECT_TRUE(std::signbit((identity * Point<TypeParam, 3>(negative_zero, 0, 0))[0]));
  Plane<TypeParam> const plane(this->nan, 0, 1, 2);
  EXPECT_TRUE(std::isnan((identity * plane).GetA()));
}

// A product with the identity's zeros would turn infinities into NaNs.
TYPED_TEST(MatrixProduct, TheKnownIdentityIsNotMultiplied) {
  Matrix<TypeParam> const identity;
  Point<TypeParam, 3> const point(this->infinity, 1, 2);
  EXPECT_EQ((identity * point), point);
  Vector<TypeParam, 3> const vector(this->infinity, 1, 2);
  EXPECT_EQ((identity * vector), vector);
  Plane<TypeParam> const plane(1, 2, 3, this->infinity);
  EXPECT_EQ((identity * plane), plane);
  Matrix<TypeParam> const identity_without_inverse(identity.GetMatrix(), {});
  EXPECT_EQ((identity_without_inverse * plane), plane) << "the inverse is not needed";
}

TYPED_TEST(MatrixProduct, SharesTheMissingInverseOfTheOtherFactor) {
  Matrix<TypeParam> const identity;
  auto const without = Matrix<TypeParam>::Scale(0);
  EXPECT_EQ((identity * without).GetMatrix().Get(), without.GetMatrix().Get());
  EXPECT_EQ((without * identity).GetMatrix().Get(), without.GetMatrix().Get());
  EXPECT_FALSE((without * identity).HasInverse());
}

TYPED_TEST(MatrixProduct, InPlaceReleasesWhatItReplaces) {
  auto matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  auto const old = matrix.GetMatrix();
  auto const old_inverse = matrix.GetMatrixInverse();
  matrix *= Matrix<TypeParam>::Scale(2);
  EXPECT_EQ(old.GetReferenceCount(), 1U);
  EXPECT_EQ(old_inverse.GetReferenceCount(), 1U);
  EXPECT_EQ(matrix.GetMatrix().GetReferenceCount(), 1U);
}

TYPED_TEST(MatrixProduct, UsesRowThreeOfItsFactors) {
  Values<TypeParam> values = test::Diagonal<TypeParam>(1, 1, 1);
  values[11] = 2;
  Matrix<TypeParam> const projective(values.data());
  EXPECT_EQ((projective * Matrix<TypeParam>::Translate(0, 0, 3))(3, 3), 7);
}

TYPED_TEST(MatrixProduct, IgnoresRowThreeForPoints) {
  Values<TypeParam> values = test::Diagonal<TypeParam>(2, 3, 4);
  values[11] = 1;
  values[15] = 0;
  Matrix<TypeParam> const matrix(values.data());
  EXPECT_EQ((matrix * Point<TypeParam, 3>(1, 1, 1)), (Point<TypeParam, 3>(2, 3, 4)));
}

TYPED_TEST(MatrixProduct, ANonFiniteTranslationGivesNaNForVectors) {
  auto const matrix = Matrix<TypeParam>::Translate(this->infinity, 2, 3);
  auto const image = matrix * Vector<TypeParam, 3>(1, 1, 1);
  EXPECT_TRUE(std::isnan(image[0]));
  EXPECT_EQ(image[1], 1);
  EXPECT_EQ(image[2], 1);
  auto const others = Matrix<TypeParam>::Translate(1, -this->infinity, this->nan);
  EXPECT_EQ((others * Vector<TypeParam, 3>(1, 1, 1))[0], 1);
  EXPECT_TRUE(std::isnan((others * Vector<TypeParam, 3>(1, 1, 1))[1]));
  EXPECT_TRUE(std::isnan((others * Vector<TypeParam, 3>(1, 1, 1))[2]));
}

TYPED_TEST(MatrixProduct, TransformsPlanes) {
  auto const moved = Matrix<TypeParam>::Translate(0, 0, 5) * Plane<TypeParam>(0, 0, 1, 0);
  EXPECT_EQ(moved, Plane<TypeParam>(0, 0, 1, 5));
  auto const scaled = Matrix<TypeParam>::Scale(2, 1, 1) * Plane<TypeParam>(1, 0, 0, 1);
  EXPECT_EQ(scaled, Plane<TypeParam>(1, 0, 0, 2));
}

TYPED_TEST(MatrixProduct, TransformsPlanesInOrder) {
  std::mt19937 random(12);
  std::uniform_real_distribution<TypeParam> number(-1, 1);
  for (int i = 0; i < 1000; ++i) {
    Values<TypeParam> const values = test::MakeRandomValues<TypeParam>(random);
    Matrix<TypeParam> const matrix(values.data());
    Values<TypeParam> const m = InverseValuesOf(matrix);
    Plane<TypeParam> const plane(number(random), number(random), number(random), number(random));
    std::array<TypeParam, 4> const row = {plane.GetA(), plane.GetB(), plane.GetC(), -plane.GetD()};
    std::array<TypeParam, 4> q{};
    for (std::size_t j = 0; j < 4; ++j) {
      q[j] = m[4 * j] * row[0];
      for (std::size_t k = 1; k < 4; ++k) {
        TypeParam const term = m[k + 4 * j] * row[k];
        q[j] = q[j] + term;
      }
    }
    EXPECT_EQ(matrix * plane, Plane<TypeParam>(q[0], q[1], q[2], -q[3])) << "seed 12";
  }
}

TYPED_TEST(MatrixProduct, TransformsThePointsOfAPlaneIntoItsImage) {
  auto const matrix = Matrix<TypeParam>::Translate(1, -2, 3) *
                      Matrix<TypeParam>::Rotate({0, 1, 0}, TypeParam(0.7)) *
                      Matrix<TypeParam>::Scale(2, 3, TypeParam(0.5));
  Plane<TypeParam> const plane(1, 2, 3, 6);
  auto const image = matrix * plane;
  for (auto const& point :
       {Point<TypeParam, 3>(1, 1, 1), Point<TypeParam, 3>(6, 0, 0), Point<TypeParam, 3>(0, 0, 2)}) {
    auto const transformed = matrix * point;
    EXPECT_NEAR(Dot(image.GetNormal(), transformed - Origin), image.GetD(),
                30 * std::numeric_limits<TypeParam>::epsilon());
  }
}

TYPED_TEST(MatrixProduct, NeedsAnInverseForPlanes) {
  auto const matrix = Matrix<TypeParam>::Scale(0, 1, 1);
  EXPECT_TRUE(test::Throws<std::domain_error>([&] { matrix* Plane<TypeParam>(1, 0, 0, 1); },
                                              "attempt to get inverse of non-invertible matrix"));
}

TYPED_TEST(MatrixProduct, ThrowsWhereTheNormalOfAnImageVanishes) {
  TypeParam const huge = std::sqrt(std::numeric_limits<TypeParam>::max()) * 8;
  auto const matrix = Matrix<TypeParam>::Scale(huge);
  EXPECT_TRUE(test::Throws<std::invalid_argument>([&] { matrix* Plane<TypeParam>(1, 0, 0, 1); },
                                                  "i_a, i_b, i_c cannot be all zeroes"));
}

// Prints a vector or point as the only output of a process.
template <class Value>
[[noreturn]] void PrintAndExit(Value const& i_value) {
  std::fprintf(stderr, "%g %g %g", static_cast<double>(i_value[0]), static_cast<double>(i_value[1]),
               static_cast<double>(i_value[2]));
  std::exit(0);  // NOLINT(concurrency-mt-unsafe): the process has one thread
}

// Each product runs in a process of its own, in which nothing has made the identity before.
TYPED_TEST(MatrixProductDeathTest, TheFirstProductOfAProcessIsRight) {
  using M = Matrix<TypeParam>;
  using V = Vector<TypeParam, 3>;
  using P = Point<TypeParam, 3>;
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(PrintAndExit(M::Translate(1, 2, 3) * V(4, 5, 6)), testing::ExitedWithCode(0), "^4 5 6$");
  EXPECT_EXIT(PrintAndExit(M::Translate(1, 2, 3) * P(4, 5, 6)), testing::ExitedWithCode(0), "^5 7 9$");
}

}  // namespace
}  // namespace lum

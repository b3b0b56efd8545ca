// The inverse, transpose, determinant and normal transform of a Matrix.

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <utility>

#include "geometry/Matrix.h"
#include "tests/support/Precisions.h"
#include "tests/support/Throws.h"
#include "tests/support/Values.h"

namespace lum {
namespace {

using test::AreSameBits;
using test::Diagonal;
using test::InverseValuesOf;
using test::Values;
using test::ValuesOf;

template <class T>
class MatrixInverse : public test::PrecisionTest<T> {};
TYPED_TEST_SUITE(MatrixInverse, test::Precisions);

template <class T>
constexpr Values<T> counting = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17};

// Values of `counting` with rows and columns exchanged, and row 3 forced.
template <class T>
constexpr Values<T> counting_transposed = {1, 5, 9, 0, 2, 6, 10, 0, 3, 7, 11, 0, 4, 8, 12, 1};

TYPED_TEST(MatrixInverse, SwapsTheHandles) {
  auto const matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  auto const inverse = matrix.GetInverse();
  EXPECT_EQ(inverse.GetMatrix().Get(), matrix.GetMatrixInverse().Get());
  EXPECT_EQ(inverse.GetMatrixInverse().Get(), matrix.GetMatrix().Get());
  auto const twice = inverse.GetInverse();
  EXPECT_EQ(twice.GetMatrix().Get(), matrix.GetMatrix().Get());
  EXPECT_EQ(twice.GetMatrixInverse().Get(), matrix.GetMatrixInverse().Get());
  EXPECT_EQ(matrix.GetMatrix().GetReferenceCount(), 3U);
}

TYPED_TEST(MatrixInverse, OfATemporaryMovesTheHandles) {
  auto matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  auto const* const transform = matrix.GetMatrix().Get();
  auto const* const inverse = matrix.GetMatrixInverse().Get();
  auto const taken = std::move(matrix).GetInverse();
  EXPECT_EQ(taken.GetMatrix().Get(), inverse);
  EXPECT_EQ(taken.GetMatrixInverse().Get(), transform);
  EXPECT_EQ(taken.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_EQ(taken.GetMatrixInverse().GetReferenceCount(), 1U);
}

TYPED_TEST(MatrixInverse, ThatIsAbsentDoesNotChangeATemporary) {
  auto matrix = Matrix<TypeParam>::Scale(0);
  EXPECT_TRUE(test::Throws<std::domain_error>([&] { (void)std::move(matrix).GetInverse(); },
                                              "attempt to get inverse of non-invertible matrix"));
  EXPECT_EQ(matrix, Matrix<TypeParam>::Scale(0));  // NOLINT(bugprone-use-after-move): nothing was moved
}

TYPED_TEST(MatrixInverse, OfTheKnownIdentityIsKnown) {
  EXPECT_TRUE(Matrix<TypeParam>().GetInverse().IsKnownIdentity());
}

TYPED_TEST(MatrixInverse, ThatIsAbsentThrows) {
  auto const matrix = Matrix<TypeParam>::Scale(0);
  EXPECT_FALSE(matrix.HasInverse());
  EXPECT_FALSE(matrix.GetMatrixInverse());
  EXPECT_TRUE(test::Throws<std::domain_error>([&] { matrix.GetInverse(); },
                                              "attempt to get inverse of non-invertible matrix"));
}

TYPED_TEST(MatrixInverse, EveryMatrixIsAssumedToBeAffine) {
  EXPECT_TRUE(Matrix<TypeParam>(counting<TypeParam>.data()).IsAffine());
  EXPECT_TRUE(Matrix<TypeParam>().IsAffine());
}

TYPED_TEST(MatrixInverse, TheTransposeDropsTheTranslation) {
  auto const transpose = Matrix<TypeParam>::Translate(1, 2, 3).GetTranspose();
  EXPECT_EQ(ValuesOf(transpose), (Diagonal<TypeParam>(1, 1, 1)));
  EXPECT_EQ(InverseValuesOf(transpose), (Diagonal<TypeParam>(1, 1, 1)));
  EXPECT_FALSE(transpose.IsKnownIdentity());
}

TYPED_TEST(MatrixInverse, TheTransposeForcesRowThree) {
  Matrix<TypeParam> const matrix(counting<TypeParam>.data());
  EXPECT_TRUE(AreSameBits(ValuesOf(matrix.GetTranspose()), counting_transposed<TypeParam>));
  Values<TypeParam> const inverse = InverseValuesOf(matrix);
  Values<TypeParam> const expected = {
      inverse[0], inverse[4], inverse[8],  0, inverse[1], inverse[5], inverse[9],  0,
      inverse[2], inverse[6], inverse[10], 0, inverse[3], inverse[7], inverse[11], 1};
  EXPECT_TRUE(AreSameBits(InverseValuesOf(matrix.GetTranspose()), expected));
}

TYPED_TEST(MatrixInverse, TheTransposeOfAMatrixWithoutInverseHasNone) {
  EXPECT_FALSE(Matrix<TypeParam>::Scale(0, 2, 3).GetTranspose().HasInverse());
}

TYPED_TEST(MatrixInverse, DerivedMatricesOfTheKnownIdentityShareIt) {
  EXPECT_TRUE(Matrix<TypeParam>().GetTranspose().IsKnownIdentity());
  EXPECT_TRUE(Matrix<TypeParam>().GetNormalTransform().IsKnownIdentity());
  Matrix<TypeParam> const identity_without_inverse(Matrix<TypeParam>().GetMatrix(), {});
  EXPECT_FALSE(identity_without_inverse.GetNormalTransform().HasInverse()) << "a known identity never throws";
}

TYPED_TEST(MatrixInverse, TheNormalTransformIsTheTransposedInverse) {
  auto const normals = Matrix<TypeParam>::Scale(2).GetNormalTransform();
  EXPECT_EQ(ValuesOf(normals), ValuesOf(Matrix<TypeParam>::Scale(TypeParam(0.5))));
  EXPECT_EQ(InverseValuesOf(normals), ValuesOf(Matrix<TypeParam>::Scale(2)));

  Matrix<TypeParam> const matrix(counting<TypeParam>.data());
  EXPECT_TRUE(AreSameBits(ValuesOf(matrix.GetNormalTransform()), InverseValuesOf(matrix.GetTranspose())));
  EXPECT_TRUE(AreSameBits(InverseValuesOf(matrix.GetNormalTransform()), counting_transposed<TypeParam>));
}

TYPED_TEST(MatrixInverse, TheNormalTransformNeedsAnInverse) {
  auto const matrix = Matrix<TypeParam>::Scale(0, 1, 1);
  EXPECT_TRUE(test::Throws<std::domain_error>([&] { matrix.GetNormalTransform(); },
                                              "GetNormalTransform assumes an invertible matrix"));
}

TYPED_TEST(MatrixInverse, TheDeterminantOfSimpleMatrices) {
  EXPECT_EQ(Matrix<TypeParam>().GetDeterminant(), 1);
  EXPECT_EQ(Matrix<TypeParam>(Diagonal<TypeParam>(1, 1, 1).data()).GetDeterminant(), 1);
  EXPECT_EQ(Matrix<TypeParam>::Scale(2, 3, 4).GetDeterminant(), 24);
  EXPECT_EQ(Matrix<TypeParam>::Translate(5, 6, 7).GetDeterminant(), 1);
  Values<TypeParam> const exchange = {0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0};
  EXPECT_EQ(Matrix<TypeParam>(exchange.data()).GetDeterminant(), -1) << "row 3 counts";
}

// The six products of complementary minors, and their sum in the documented grouping.
template <class T>
T GetDeterminant(Values<T> const& m) {
  auto const minor = [&m](std::size_t a, std::size_t b, std::size_t c, std::size_t d) {
    T const first = m[a] * m[b];
    T const second = m[c] * m[d];
    return first - second;
  };
  T const a = minor(13, 8, 9, 12) * minor(2, 7, 6, 3);
  T const b = minor(15, 8, 11, 12) * minor(1, 6, 5, 2);
  T const c = minor(14, 9, 10, 13) * minor(0, 7, 4, 3);
  T const d = minor(10, 15, 11, 14) * minor(0, 5, 1, 4);
  T const e = minor(15, 9, 11, 13) * minor(0, 6, 4, 2);
  T const f = minor(14, 8, 10, 12) * minor(1, 7, 5, 3);
  T const bc = b + c;
  T const de = d - e;
  T const bcde = bc + de;
  T const rest = bcde - f;
  return a + rest;
}

TYPED_TEST(MatrixInverse, TheDeterminantKeepsItsOrder) {
  std::mt19937 random(9);
  for (int i = 0; i < 1000; ++i) {
    Values<TypeParam> const values = test::MakeRandomValues<TypeParam>(random);
    EXPECT_EQ(Matrix<TypeParam>(values.data()).GetDeterminant(), GetDeterminant(values)) << "seed 9";
  }
}

TYPED_TEST(MatrixInverse, TheDeterminantDoesNotDefineWhetherThereIsAnInverse) {
  Values<TypeParam> const singular = Diagonal<TypeParam>(0, 1, 1);
  EXPECT_TRUE(Matrix<TypeParam>(singular.data()).HasInverse());
  Matrix<TypeParam> const regular(Matrix<TypeParam>::Scale(2).GetMatrix(), {});
  EXPECT_EQ(regular.GetDeterminant(), 8);
  EXPECT_FALSE(regular.HasInverse());
}

TYPED_TEST(MatrixInverse, GivenToAMatrixIsNotChecked) {
  auto const a = Matrix<TypeParam>::Scale(2);
  auto const b = Matrix<TypeParam>::Translate(1, 2, 3);
  Matrix<TypeParam> const both(a.GetMatrix(), b.GetMatrix());
  EXPECT_EQ(both.GetInverse().GetMatrix().Get(), b.GetMatrix().Get());
}

}  // namespace
}  // namespace lum

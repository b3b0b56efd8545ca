// The inverse, transpose, determinant and normal transform of a Matrix.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

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

TYPED_TEST(MatrixInverse, IsOneMemberFunction) {
  using M = Matrix<TypeParam>;
  static_assert(std::is_same_v<decltype(&M::GetInverse), M (M::*)() const>);
  std::vector<M> const matrices = {M::Translate(1, 2, 3), M::Scale(2)};
  std::vector<M> inverses(2);
  std::ranges::transform(matrices, inverses.begin(), &M::GetInverse);
  EXPECT_EQ(inverses[0], std::invoke(&M::GetInverse, matrices[0]));
  EXPECT_EQ(inverses[1], M::Scale(TypeParam(0.5)));
}

TYPED_TEST(MatrixInverse, OfAMovedArgumentLeavesTheArgument) {
  auto matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  auto const inverse = std::move(matrix).GetInverse();
  // NOLINTNEXTLINE(bugprone-use-after-move): the call is const
  EXPECT_EQ(matrix.GetMatrix().Get(), inverse.GetMatrixInverse().Get());
  EXPECT_EQ(matrix.GetMatrixInverse().Get(), inverse.GetMatrix().Get());
}

// The place of an object among the next ones that the pool hands out.
template <class T>
std::size_t FindTurn(std::vector<typename Matrix<T>::ObjectHandle> const& i_next, void const* ip_object) {
  return static_cast<std::size_t>(
      std::ranges::find(i_next, ip_object, [](auto const& i_handle) { return i_handle.Get(); }) -
      i_next.begin());
}

// The pool hands out objects in the order of their return.
TYPED_TEST(MatrixInverse, OfATemporaryIsReleasedBeforeTheTemporary) {
  using Object = typename Matrix<TypeParam>::Object;
  for (int attempt = 0; attempt < 2; ++attempt) {  // the first pair may be parted by the end of a block
    void const* transform = nullptr;
    void const* inverse = nullptr;
    [&](Matrix<TypeParam> const& i_inverse) {
      transform = i_inverse.GetMatrixInverse().Get();
      inverse = i_inverse.GetMatrix().Get();
    }(Matrix<TypeParam>::Scale(2).GetInverse());
    std::vector<typename Matrix<TypeParam>::ObjectHandle> next;
    for (int i = 0; i < 32; ++i) next.push_back(CreateGlobalObject<Object>());
    std::size_t const transform_turn = FindTurn<TypeParam>(next, transform);
    std::size_t const inverse_turn = FindTurn<TypeParam>(next, inverse);
    if (std::max(transform_turn, inverse_turn) == next.size()) continue;
    EXPECT_LT(inverse_turn, transform_turn) << "the temporary releases its inverse first, as ever";
    return;
  }
  FAIL() << "the pair was not handed out again";
}

TYPED_TEST(MatrixInverse, InPlaceExchangesTheHandlesAndTouchesNoCount) {
  auto matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  auto const* const transform = matrix.GetMatrix().Get();
  auto const* const inverse = matrix.GetMatrixInverse().Get();
  EXPECT_EQ(&matrix.Invert(), &matrix);
  EXPECT_EQ(matrix.GetMatrix().Get(), inverse);
  EXPECT_EQ(matrix.GetMatrixInverse().Get(), transform);
  EXPECT_EQ(matrix.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_EQ(matrix.GetMatrixInverse().GetReferenceCount(), 1U);
  matrix.Invert().Invert();
  EXPECT_EQ(matrix.GetMatrix().Get(), inverse);
}

TYPED_TEST(MatrixInverse, InPlaceDoesNotChangeCopies) {
  auto matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  auto const copy = matrix;
  matrix.Invert();
  EXPECT_EQ(copy, (Matrix<TypeParam>::Translate(1, 2, 3)));
  EXPECT_EQ(matrix, copy.GetInverse());
}

TYPED_TEST(MatrixInverse, InPlaceOfTheKnownIdentityIsKnown) {
  EXPECT_TRUE(Matrix<TypeParam>().Invert().IsKnownIdentity());
}

TYPED_TEST(MatrixInverse, InPlaceThatIsAbsentLeavesTheMatrix) {
  auto matrix = Matrix<TypeParam>::Scale(0, 1, 2);
  auto const* const transform = matrix.GetMatrix().Get();
  EXPECT_TRUE(test::Throws<std::domain_error>([&] { matrix.Invert(); },
                                              "attempt to get inverse of non-invertible matrix"));
  EXPECT_EQ(matrix.GetMatrix().Get(), transform);
  EXPECT_FALSE(matrix.HasInverse());
}

TYPED_TEST(MatrixInverse, RebuiltHasTheBitsOfTheConstructorFromValues) {
  std::mt19937 random(14);
  for (int i = 0; i < 100; ++i) {
    auto const values = test::MakeRandomValues<TypeParam>(random);
    Matrix<TypeParam> matrix(Matrix<TypeParam>(values.data()).GetMatrix(),
                             Matrix<TypeParam>::Scale(2).GetMatrix());
    EXPECT_EQ(&matrix.RebuildInverse(), &matrix);
    EXPECT_TRUE(AreSameBits(ValuesOf(matrix), values)) << "seed 14";
    EXPECT_TRUE(AreSameBits(InverseValuesOf(matrix), InverseValuesOf(Matrix<TypeParam>(values.data()))))
        << "seed 14";
  }
}

TYPED_TEST(MatrixInverse, RebuiltOverwritesAnInverseThatIsNotShared) {
  auto matrix = Matrix<TypeParam>::Scale(2);
  auto const* const inverse = matrix.GetMatrixInverse().Get();
  matrix.GetMutableInternal()->data()[0] = 4;
  matrix.RebuildInverse();
  EXPECT_EQ(matrix.GetMatrixInverse().Get(), inverse);
  EXPECT_EQ(inverse->data()[0], TypeParam(0.25));
}

TYPED_TEST(MatrixInverse, RebuiltLeavesWhatOthersShare) {
  auto matrix = Matrix<TypeParam>::Scale(2);
  auto const copy = matrix;
  matrix.GetMutableInternal()->data()[0] = 4;
  matrix.RebuildInverse();
  EXPECT_EQ(InverseValuesOf(matrix)[0], TypeParam(0.25));
  EXPECT_EQ(InverseValuesOf(copy)[0], TypeParam(0.5));

  // One object is both the transform and the inverse.
  auto const scale = Matrix<TypeParam>::Scale(2);
  Matrix<TypeParam> both(scale.GetMatrix(), scale.GetMatrix());
  both.RebuildInverse();
  EXPECT_EQ(ValuesOf(both), ValuesOf(scale));
  EXPECT_EQ(InverseValuesOf(both), InverseValuesOf(scale));
}

TYPED_TEST(MatrixInverse, RebuiltIsGivenToAMatrixWithoutInverse) {
  auto matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  matrix = Matrix<TypeParam>(matrix.GetMatrix(), {});
  matrix.RebuildInverse();
  EXPECT_EQ(matrix * (matrix.GetInverse() * Point<TypeParam, 3>(4, 5, 6)), (Point<TypeParam, 3>(4, 5, 6)));
}

TYPED_TEST(MatrixInverse, RebuiltOfAKnownIdentityIsTheIdentity) {
  Matrix<TypeParam> const identity;
  Matrix<TypeParam> without(identity.GetMatrix(), {});
  EXPECT_TRUE(without.RebuildInverse().GetInverse().IsKnownIdentity());
  Matrix<TypeParam> wrong(identity.GetMatrix(), Matrix<TypeParam>::Scale(2).GetMatrix());
  EXPECT_TRUE(wrong.RebuildInverse().GetInverse().IsKnownIdentity());
}

// The distance of a point from where it returns to, through a matrix and its inverse.
template <class T>
T GetDrift(Matrix<T> const& i_matrix) {
  Point<T, 3> const point(1, 2, 3);
  return GetLength(i_matrix.GetInverse() * (i_matrix * point) - point);
}

TYPED_TEST(MatrixInverse, RebuiltEndsTheDriftOfALongChain) {
  using M = Matrix<TypeParam>;
  auto const step = M::Rotate(GetNormalized(Vector<TypeParam, 3>(1, 2, 3)), TypeParam(0.001)) *
                    M::Translate(TypeParam(0.01), TypeParam(0.02), TypeParam(0.03));
  M pose;
  for (int i = 0; i < 20000; ++i) pose *= step;
  TypeParam const drift = GetDrift(pose);
  pose.RebuildInverse();
  EXPECT_GT(drift, 20 * GetDrift(pose));
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

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <memory>
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
class MatrixOf : public test::PrecisionTest<T> {
 protected:
  static Matrix<T> MakeWithoutInverse() { return Matrix<T>::Scale(0, 1, 1); }
};
TYPED_TEST_SUITE(MatrixOf, test::Precisions);

static_assert(std::is_nothrow_move_constructible_v<Matrix<float>>);
static_assert(std::is_nothrow_move_assignable_v<Matrix<double>>);
static_assert(!std::is_convertible_v<float const*, Matrix<float>>);
static_assert(std::is_nothrow_copy_constructible_v<Matrix<float>>);
static_assert(std::is_nothrow_copy_assignable_v<Matrix<double>>);
static_assert(sizeof(Matrix<double>) == 2 * sizeof(Matrix<double>::ObjectHandle));
static_assert(std::is_same_v<decltype(std::declval<Matrix<float> const&>()(0, 0)), float>, "by value");

TYPED_TEST(MatrixOf, IsTheKnownIdentityByDefault) {
  Matrix<TypeParam> const identity;
  EXPECT_TRUE(identity.IsKnownIdentity());
  EXPECT_EQ(ValuesOf(identity), (Diagonal<TypeParam>(1, 1, 1)));
  EXPECT_EQ(identity.GetMatrix().Get(), identity.GetMatrixInverse().Get());
  EXPECT_EQ(identity.GetMatrix().Get(), Matrix<TypeParam>::mgh_identity.GetValue().Get());
  Matrix<TypeParam> const copy = identity;
  EXPECT_TRUE(copy.IsKnownIdentity());
}

TYPED_TEST(MatrixOf, WithTheIdentitysValuesIsEqualButNotKnown) {
  Values<TypeParam> const values = Diagonal<TypeParam>(1, 1, 1);
  Matrix<TypeParam> const built(values.data());
  EXPECT_FALSE(built.IsKnownIdentity());
  EXPECT_TRUE(built == Matrix<TypeParam>());
  EXPECT_FALSE(built != Matrix<TypeParam>());
}

TYPED_TEST(MatrixOf, CopiesShareBothObjects) {
  Matrix<TypeParam> const matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  EXPECT_EQ(matrix.GetMatrix().GetReferenceCount(), 1U);
  {
    Matrix<TypeParam> const copy = matrix;
    EXPECT_EQ(copy.GetMatrix().Get(), matrix.GetMatrix().Get());
    EXPECT_EQ(copy.GetMatrixInverse().Get(), matrix.GetMatrixInverse().Get());
    EXPECT_EQ(matrix.GetMatrix().GetReferenceCount(), 2U);
    EXPECT_EQ(matrix.GetMatrixInverse().GetReferenceCount(), 2U);
  }
  EXPECT_EQ(matrix.GetMatrix().GetReferenceCount(), 1U);
}

TYPED_TEST(MatrixOf, AMovedFromMatrixHoldsNoHandles) {
  Matrix<TypeParam> source = Matrix<TypeParam>::Translate(1, 2, 3);
  auto* const object = source.GetMatrix().Get();
  Matrix<TypeParam> target = std::move(source);
  EXPECT_EQ(target.GetMatrix().Get(), object);
  EXPECT_EQ(target.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_FALSE(source.GetMatrix());  // NOLINT(bugprone-use-after-move): the test is about it
  EXPECT_FALSE(source.GetMatrixInverse());
  source = target;
  EXPECT_EQ(target.GetMatrix().GetReferenceCount(), 2U);
  target = std::move(source);
  EXPECT_EQ(target.GetMatrix().GetReferenceCount(), 1U);
}

TYPED_TEST(MatrixOf, AssignmentToItselfChangesNoCount) {
  Matrix<TypeParam> matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  Matrix<TypeParam> const& alias = matrix;
  matrix = alias;
  EXPECT_EQ(matrix.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_EQ(matrix.GetMatrixInverse().GetReferenceCount(), 1U);
}

// Assignment compares the objects, not their counts.
TYPED_TEST(MatrixOf, AssignmentKeepsHandlesOntoTheSameObjectByAnotherCount) {
  using Types = MatrixPoolTypes<TypeParam>;
  using Block = typename Types::ObjectPool::Block;
  using Deleter = ObjectPoolDeleter<typename Types::Object, typename Types::ObjectPool, Block>;
  Matrix<TypeParam> const owner = Matrix<TypeParam>::Translate(1, 2, 3);
  Matrix<TypeParam> const other = Matrix<TypeParam>::Scale(2);
  typename Types::ObjectPool pool;
  Block block;
  std::atomic<unsigned long> count = 1;  // never reaches 0: the owner returns the objects
  {
    Deleter const deleter{&pool, &block};
    typename Types::ObjectHandle const transform(owner.GetMatrix().Get(), &count, deleter);
    typename Types::ObjectHandle const inverse(owner.GetMatrixInverse().Get(), &count, deleter);
    Matrix<TypeParam> first(owner.GetMatrix(), owner.GetMatrixInverse());
    first = Matrix<TypeParam>(transform, other.GetMatrixInverse());
    EXPECT_EQ(owner.GetMatrix().GetReferenceCount(), 2U);
    EXPECT_EQ(owner.GetMatrixInverse().GetReferenceCount(), 1U);
    Matrix<TypeParam> second(owner.GetMatrix(), owner.GetMatrixInverse());
    second = Matrix<TypeParam>(other.GetMatrix(), inverse);
    EXPECT_EQ(owner.GetMatrix().GetReferenceCount(), 2U);
    EXPECT_EQ(owner.GetMatrixInverse().GetReferenceCount(), 2U);
    EXPECT_EQ(count, 3U);
  }
  EXPECT_EQ(owner.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_EQ(owner.GetMatrixInverse().GetReferenceCount(), 1U);
  EXPECT_EQ(count, 1U);
}

TYPED_TEST(MatrixOf, AssignmentMayRemoveTheInverse) {
  Matrix<TypeParam> matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  matrix = this->MakeWithoutInverse();
  EXPECT_FALSE(matrix.HasInverse());
}

TYPED_TEST(MatrixOf, FromHandlesSharesThem) {
  Matrix<TypeParam> const a = Matrix<TypeParam>::Scale(2);
  Matrix<TypeParam> const b = Matrix<TypeParam>::Scale(3);
  Matrix<TypeParam> const both(a.GetMatrix(), b.GetMatrix());
  EXPECT_EQ(both.GetMatrix().Get(), a.GetMatrix().Get());
  EXPECT_EQ(both.GetMatrixInverse().Get(), b.GetMatrix().Get());
  EXPECT_EQ(a.GetMatrix().GetReferenceCount(), 2U);
  Matrix<TypeParam> const one(a.GetMatrix(), {});
  EXPECT_FALSE(one.HasInverse());
}

TYPED_TEST(MatrixOf, FromValuesTakesThemColumnByColumn) {
  Values<TypeParam> const values = {2, 1, 0, 3, 0, 1, 0, 0, 5, 0, 1, 0, 7, 8, 9, 1};
  Matrix<TypeParam> const matrix(values.data());
  EXPECT_EQ(ValuesOf(matrix), values);
  EXPECT_EQ(matrix(0, 3), 7) << "the x translation";
  EXPECT_EQ(matrix(3, 0), 3);
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      EXPECT_EQ(matrix(row, column), values[static_cast<std::size_t>(row + 4 * column)]);
    }
  }
}

TYPED_TEST(MatrixOf, FromValuesHoldsTheInverse) {
  std::mt19937 random(7);
  for (int i = 0; i < 100; ++i) {
    Values<TypeParam> values = test::MakeRandomValues<TypeParam>(random);
    for (std::size_t diagonal = 0; diagonal < 16; diagonal += 5) values[diagonal] += 4;
    Matrix<TypeParam> const matrix(values.data());
    Matrix<TypeParam> const product = matrix * matrix.GetInverse();
    for (std::size_t k = 0; k < 16; ++k) {
      EXPECT_NEAR(ValuesOf(product)[k], k % 5 == 0 ? 1 : 0, 16 * std::numeric_limits<TypeParam>::epsilon())
          << "seed 7";
    }
  }
}

TYPED_TEST(MatrixOf, FromSingularValuesHoldsAnInverseThatIsNotFinite) {
  Values<TypeParam> const values = {1, 2, 3, 0, 2, 4, 6, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  Matrix<TypeParam> const matrix(values.data());
  EXPECT_TRUE(matrix.HasInverse());
  EXPECT_EQ(matrix.GetDeterminant(), 0);
  EXPECT_FALSE(test::AreFinite(InverseValuesOf(matrix)));
}

// Column 2 is exactly the sum of columns 0 and 1. The inverse and the determinant are summed in different
// orders, so rounding may make one zero and the other not.
TYPED_TEST(MatrixOf, FromSingularValuesMayHoldAFiniteInverse) {
  std::mt19937 random(11);
  // Products of three such numbers are rounded in double precision too.
  std::uniform_int_distribution<int> digits(-4194304, 4194303);
  int finite = 0;
  int with_determinant = 0;
  for (int i = 0; i < 1000; ++i) {
    Values<TypeParam> v = Diagonal<TypeParam>(1, 1, 1);
    for (std::size_t row = 0; row < 3; ++row) {
      v[row] = static_cast<TypeParam>(digits(random));
      v[row + 4] = static_cast<TypeParam>(digits(random));
      v[row + 8] = v[row] + v[row + 4];
    }
    Matrix<TypeParam> const matrix(v.data());
    EXPECT_TRUE(matrix.HasInverse());
    finite += static_cast<bool>(test::AreFinite(InverseValuesOf(matrix)));
    with_determinant += matrix.GetDeterminant() != 0;
  }
  EXPECT_GT(finite, 0) << "seed 11";
  EXPECT_GT(with_determinant, 0) << "seed 11";
}

TYPED_TEST(MatrixOf, FromAFrameHasItsVectorsAsColumns) {
  Matrix<TypeParam> const frame({10, 20, 30}, {0, 2, 0}, {-1, 0, 0}, {0, 0, 4});
  EXPECT_EQ(ValuesOf(frame), (Values<TypeParam>{0, 2, 0, 0, -1, 0, 0, 0, 0, 0, 4, 0, 10, 20, 30, 1}));
  EXPECT_EQ(frame * (Point<TypeParam, 3>(Origin)), (Point<TypeParam, 3>(10, 20, 30)));
  EXPECT_EQ(frame * (Vector<TypeParam, 3>(0, 1, 0)), (Vector<TypeParam, 3>(-1, 0, 0)));
  EXPECT_EQ(frame.GetInverse() * (Point<TypeParam, 3>(10, 20, 34)), (Point<TypeParam, 3>(0, 0, 1)));
}

TYPED_TEST(MatrixOf, FromAFrameIsTheMatrixFromItsValues) {
  std::mt19937 random(23);
  for (int i = 0; i < 100; ++i) {
    Values<TypeParam> v = test::MakeRandomValues<TypeParam>(random);
    v[3] = v[7] = v[11] = 0;
    v[15] = 1;
    Matrix<TypeParam> const frame({v[12], v[13], v[14]}, {v[0], v[1], v[2]}, {v[4], v[5], v[6]},
                                  {v[8], v[9], v[10]});
    EXPECT_TRUE(AreSameBits(ValuesOf(frame), v)) << "seed 23";
    EXPECT_TRUE(AreSameBits(InverseValuesOf(frame), InverseValuesOf(Matrix<TypeParam>(v.data()))))
        << "seed 23";
  }
}

TYPED_TEST(MatrixOf, FromASingularFrameHoldsAnInverseThatIsNotFinite) {
  Matrix<TypeParam> const frame({1, 2, 3}, {1, 0, 0}, {1, 0, 0}, {0, 0, 1});
  ASSERT_TRUE(frame.HasInverse());
  EXPECT_FALSE(test::AreFinite(InverseValuesOf(frame)));
}

// The inverse is the reciprocal of the determinant times the cofactors. So it is exact where the reciprocal
// is, and not finite where the determinant underflows, although pivoting would find a finite one.
TYPED_TEST(MatrixOf, InvertsByCofactorsAndTheReciprocalOfTheDeterminant) {
  Values<TypeParam> const values = {2, 0, 0, 0, 1, 4, 0, 0, 3, 5, 8, 0, 6, 7, 9, 1};
  Matrix<TypeParam> const exact(values.data());
  EXPECT_EQ(ValuesOf(exact * exact.GetInverse()), (Diagonal<TypeParam>(1, 1, 1)));
  EXPECT_EQ(ValuesOf(exact.GetInverse() * exact), (Diagonal<TypeParam>(1, 1, 1)));

  TypeParam const tiny = std::sqrt(std::numeric_limits<TypeParam>::min());
  Matrix<TypeParam> const underflowing(Diagonal<TypeParam>(tiny, tiny, tiny).data());
  EXPECT_EQ(underflowing.GetDeterminant(), 0);
  ASSERT_TRUE(underflowing.HasInverse());
  EXPECT_FALSE(std::isfinite(InverseValuesOf(underflowing)[0]));
}

TYPED_TEST(MatrixOf, RefusesIndicesOutOfBounds) {
  Matrix<TypeParam> const matrix;
  constexpr int least = std::numeric_limits<int>::min();
  constexpr int most = std::numeric_limits<int>::max();
  for (auto const& [row, column] : std::initializer_list<std::pair<int, int>>{
           {4, 0}, {0, 4}, {0, -1}, {-1, 0}, {-1, -1}, {least, 0}, {0, most}}) {
    EXPECT_TRUE(test::Throws<std::invalid_argument>([&, row = row, column = column] { matrix(row, column); },
                                                    "matrix element index out of bounds"));
  }
  for (int row = -1; row <= 4; ++row) {
    for (int column = -1; column <= 4; ++column) {
      bool const is_inside = row >= 0 && row < 4 && column >= 0 && column < 4;
      if (is_inside) continue;
      EXPECT_THROW(matrix(row, column), std::invalid_argument) << row << ' ' << column;
    }
  }
}

TYPED_TEST(MatrixOf, ComparesBytes) {
  Values<TypeParam> values = Diagonal<TypeParam>(1, 1, 1);
  Matrix<TypeParam> const positive(values.data());
  values[1] = -TypeParam(0);
  EXPECT_TRUE(positive != Matrix<TypeParam>(values.data())) << "zeros of opposite sign";
  values[1] = this->nan;
  EXPECT_TRUE(Matrix<TypeParam>(values.data()) == Matrix<TypeParam>(values.data())) << "equal NaNs";
}

TYPED_TEST(MatrixOf, ComparesEveryValue) {
  Values<TypeParam> const values = Diagonal<TypeParam>(2, 3, 4);
  Matrix<TypeParam> const matrix(values.data());
  for (std::size_t i = 0; i < 16; ++i) {
    Values<TypeParam> changed = values;
    changed[i] += 1;
    EXPECT_TRUE(matrix != Matrix<TypeParam>(changed.data())) << i;
    EXPECT_FALSE(matrix == Matrix<TypeParam>(changed.data())) << i;
  }
}

TYPED_TEST(MatrixOf, ComparisonIgnoresTheInverse) {
  Matrix<TypeParam> const with = Matrix<TypeParam>::Scale(2);
  EXPECT_TRUE(with == Matrix<TypeParam>(with.GetMatrix(), {}));
}

TYPED_TEST(MatrixOf, WritingACopyDoesNotChangeTheOriginal) {
  Matrix<TypeParam> const original = Matrix<TypeParam>::Translate(1, 2, 3);
  Matrix<TypeParam> copy = original;
  (*copy.GetMutableInternal())(0, 3) = 9;
  EXPECT_EQ(original(0, 3), 1);
  EXPECT_EQ(copy(0, 3), 9);
  EXPECT_EQ(copy(1, 3), 2) << "the other values are copied";
  EXPECT_EQ(copy.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_EQ(original.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_EQ(copy.GetMatrixInverse().Get(), original.GetMatrixInverse().Get());
}

TYPED_TEST(MatrixOf, WritingTheInverseDoesNotChangeTheTransform) {
  Matrix<TypeParam> const original = Matrix<TypeParam>::Translate(1, 2, 3);
  Matrix<TypeParam> copy = original;
  (*copy.GetMutableInverseInternal())(0, 3) = 9;
  EXPECT_EQ(InverseValuesOf(original)[12], -1);
  EXPECT_EQ(InverseValuesOf(copy)[12], 9);
  EXPECT_EQ(copy.GetMatrix().Get(), original.GetMatrix().Get());
}

TYPED_TEST(MatrixOf, AnUnsharedMatrixIsWrittenInPlace) {
  Matrix<TypeParam> matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  auto* const object = matrix.GetMatrix().Get();
  EXPECT_EQ(matrix.GetMutableInternal(), object);
  auto* const inverse = matrix.GetMatrixInverse().Get();
  EXPECT_EQ(matrix.GetMutableInverseInternal(), inverse);
}

TYPED_TEST(MatrixOf, AHandleOutsideTheMatrixCountsAsAnOwner) {
  Matrix<TypeParam> matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  auto const kept = matrix.GetMatrix();
  auto* const written = matrix.GetMutableInternal();
  EXPECT_NE(written, kept.Get());
  EXPECT_EQ(kept.GetReferenceCount(), 1U);
  EXPECT_EQ(matrix.GetMutableInternal(), written) << "now it is the only owner";
}

TYPED_TEST(MatrixOf, WithOneObjectInBothHandlesSharesItWithItself) {
  Matrix<TypeParam> const mirror = Matrix<TypeParam>::Scale(-1, 1, 1);
  auto const& object = mirror.GetMatrix();
  Matrix<TypeParam> both(object, object);
  (*both.GetMutableInternal())(0, 0) = 5;
  EXPECT_EQ(InverseValuesOf(both)[0], -1);
  EXPECT_EQ(both(0, 0), 5);
}

TYPED_TEST(MatrixOf, WritingTheKnownIdentityWritesACopy) {
  Matrix<TypeParam> matrix;
  (*matrix.GetMutableInternal())(0, 0) = 5;
  EXPECT_FALSE(matrix.IsKnownIdentity());
  EXPECT_TRUE(Matrix<TypeParam>().IsKnownIdentity());
  EXPECT_EQ(Matrix<TypeParam>()(0, 0), 1);
  (*matrix.GetMutableInverseInternal())(0, 0) = TypeParam(0.2);
  EXPECT_EQ(InverseValuesOf(Matrix<TypeParam>())[0], 1);
}

TYPED_TEST(MatrixOf, AssignmentReleasesWhatItReplaces) {
  Matrix<TypeParam> target = Matrix<TypeParam>::Translate(1, 2, 3);
  auto const transform = target.GetMatrix();
  auto const inverse = target.GetMatrixInverse();
  target = Matrix<TypeParam>();
  EXPECT_EQ(transform.GetReferenceCount(), 1U);
  EXPECT_EQ(inverse.GetReferenceCount(), 1U);
  EXPECT_TRUE(target.IsKnownIdentity());
  Matrix<TypeParam> const again(transform, inverse);
  target = again;
  EXPECT_EQ(transform.GetReferenceCount(), 3U);
}

// Whether the first of two objects returned to the current block before the second. The block reuses objects
// in the order of their return.
template <class T>
bool WasReturnedFirst(typename MatrixPoolTypes<T>::Object const* ip_first,
                      typename MatrixPoolTypes<T>::Object const* ip_second) {
  std::vector<typename MatrixPoolTypes<T>::ObjectHandle> taken;
  while (taken.size() < 32) {
    taken.push_back(CreateGlobalObject<typename MatrixPoolTypes<T>::Object>());
    if (taken.back().Get() == ip_first) return true;
    if (taken.back().Get() == ip_second) return false;
  }
  ADD_FAILURE() << "neither has returned";
  return false;
}

TYPED_TEST(MatrixOf, ReturnsItsInverseThenItsTransformOnDestruction) {
  auto matrix = std::make_unique<Matrix<TypeParam>>(Matrix<TypeParam>::Translate(1, 2, 3));
  auto const* const transform = matrix->GetMatrix().Get();
  auto const* const inverse = matrix->GetMatrixInverse().Get();
  matrix.reset();
  EXPECT_TRUE(WasReturnedFirst<TypeParam>(inverse, transform));
}

TYPED_TEST(MatrixOf, ReturnsItsTransformThenItsInverseWhenAssigned) {
  Matrix<TypeParam> const identity;
  for (bool const moves : {false, true}) {
    Matrix<TypeParam> matrix = Matrix<TypeParam>::Translate(1, 2, 3);
    auto const* const transform = matrix.GetMatrix().Get();
    auto const* const inverse = matrix.GetMatrixInverse().Get();
    if (moves) {
      matrix = Matrix<TypeParam>();
    } else {
      matrix = identity;
    }
    EXPECT_TRUE(WasReturnedFirst<TypeParam>(transform, inverse)) << moves;
  }
}

TYPED_TEST(MatrixOf, MayBeAssignedAMatrixThatSharesItsObjects) {
  Matrix<TypeParam> matrix = Matrix<TypeParam>::Translate(1, 2, 3);
  Matrix<TypeParam> const original = matrix;
  auto const expect_original = [&] {
    EXPECT_EQ(matrix.GetMatrix().Get(), original.GetMatrix().Get());
    EXPECT_EQ(matrix.GetMatrixInverse().Get(), original.GetMatrixInverse().Get());
    EXPECT_EQ(original.GetMatrix().GetReferenceCount(), 2U);
    EXPECT_EQ(original.GetMatrixInverse().GetReferenceCount(), 2U);
  };
  auto& same = matrix;
  matrix = same;
  expect_original();
  matrix = std::move(same);
  expect_original();
  matrix = original;
  expect_original();
  matrix = matrix.GetInverse();
  EXPECT_EQ(matrix.GetMatrix().Get(), original.GetMatrixInverse().Get());
  matrix = matrix.Invert();
  expect_original();

  // Only one object is shared.
  matrix = Matrix<TypeParam>(original.GetMatrix(), {});
  EXPECT_FALSE(matrix.HasInverse());
  EXPECT_EQ(original.GetMatrixInverse().GetReferenceCount(), 1U);
  matrix = original;
  expect_original();
  matrix = Matrix<TypeParam>(Matrix<TypeParam>::Scale(2).GetMatrix(), original.GetMatrixInverse());
  EXPECT_EQ(matrix(0, 0), 2);
  EXPECT_EQ(original.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_EQ(original.GetMatrixInverse().GetReferenceCount(), 2U);
}

#ifndef NDEBUG
TEST(MatrixDeathTest, AssertionsCatchTheUseOfAMovedFromMatrix) {
  Matrix<float> source = Matrix<float>::Scale(2);
  Matrix<float> target = std::move(source);
  // NOLINTBEGIN(bugprone-use-after-move): the test is about it
  EXPECT_DEATH(source.GetAsPtr(), "a moved-from matrix");
  EXPECT_DEATH(source(0, 0), "a moved-from matrix");
  EXPECT_DEATH(source.IsKnownIdentity(), "a moved-from matrix");
  EXPECT_DEATH(source.GetInverse(), "a moved-from matrix");
  EXPECT_DEATH(source.GetTranspose(), "a moved-from matrix");
  EXPECT_DEATH(source.GetDeterminant(), "a moved-from matrix");
  EXPECT_DEATH(source.GetNormalTransform(), "a moved-from matrix");
  EXPECT_DEATH(source * target, "a moved-from matrix");
  EXPECT_DEATH(target * source, "a moved-from matrix");
  EXPECT_DEATH(Matrix<float>() * source, "a moved-from matrix");
  EXPECT_DEATH(target *= source, "a moved-from matrix");
  EXPECT_DEATH((source * Vector<float, 3>(1, 2, 3)), "a moved-from matrix");
  EXPECT_DEATH((source * Point<float, 3>(1, 2, 3)), "a moved-from matrix");
  EXPECT_DEATH(source * Plane<float>(1, 2, 3, 4), "a moved-from matrix");
  std::vector<Point<float, 3>> points(1);
  std::vector<Vector<float, 3>> vectors(1);
  EXPECT_DEATH(TransformPoints(source, points, points), "a moved-from matrix");
  EXPECT_DEATH(TransformVectors(source, vectors, vectors), "a moved-from matrix");
  EXPECT_DEATH((void)(source == target), "a moved-from matrix");
  EXPECT_DEATH((void)(target == source), "a moved-from matrix");
  EXPECT_DEATH(source.Invert(), "a moved-from matrix");
  EXPECT_DEATH(source.RebuildInverse(), "a moved-from matrix");
  EXPECT_DEATH(source.GetMutableInternal(), "a moved-from matrix");
  EXPECT_DEATH(Matrix<double>{source}, "a moved-from matrix");
  // NOLINTEND(bugprone-use-after-move)
}

TEST(MatrixDeathTest, AnAssertionCatchesWritingAnAbsentInverse) {
  Matrix<float> matrix = Matrix<float>::Scale(0);
  EXPECT_DEATH(matrix.GetMutableInverseInternal(), "the inverse of a matrix without one");
}
#endif

}  // namespace
}  // namespace lum

// Conversion between Matrix<float> and Matrix<double>.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include "geometry/Matrix.h"
#include "tests/support/Values.h"

namespace lum {
namespace {

using test::AreSameBits;
using test::InverseValuesOf;

static_assert(std::is_constructible_v<Matrix<float>, Matrix<double> const&>);
static_assert(std::is_same_v<decltype(std::declval<Matrix<float>&>() = std::declval<Matrix<double> const&>()),
                             Matrix<float> const&>);
static_assert(std::is_same_v<decltype(std::declval<Matrix<double>&>() = std::declval<Matrix<float> const&>()),
                             Matrix<double> const&>);

template <class A, class B>
concept HasProduct = requires(A a, B b) {
  a* b;
};
template <class A, class B>
concept HasAssignedProduct = requires(A a, B b) {
  a *= b;
};
template <class A, class B>
concept HasEquality = requires(A a, B b) {
  a == b;
};
template <class M, class Points>
concept TransformsPoints = requires(M m, Points points) {
  TransformPoints(m, points, points);
};
template <class M, class Vectors>
concept TransformsVectors = requires(M m, Vectors vectors) {
  TransformVectors(m, vectors, vectors);
};

// Matrices of different precisions do not mix.
static_assert(HasProduct<Matrix<float>, Matrix<float>> && !HasProduct<Matrix<float>, Matrix<double>> &&
              !HasProduct<Matrix<double>, Matrix<float>>);
static_assert(HasAssignedProduct<Matrix<float>&, Matrix<float>> &&
              !HasAssignedProduct<Matrix<float>&, Matrix<double>> &&
              !HasAssignedProduct<Matrix<double>&, Matrix<float>>);
static_assert(HasEquality<Matrix<float>, Matrix<float>> && !HasEquality<Matrix<float>, Matrix<double>> &&
              !HasEquality<Matrix<double>, Matrix<float>>);
using FloatPoints = std::vector<Point<float, 3>>;
using FloatVectors = std::vector<Vector<float, 3>>;
using DoublePoints = std::vector<Point<double, 3>>;
using DoubleVectors = std::vector<Vector<double, 3>>;
static_assert(TransformsPoints<Matrix<float>, FloatPoints> &&
              TransformsPoints<Matrix<double>, DoublePoints> &&
              !TransformsPoints<Matrix<float>, DoublePoints> &&
              !TransformsPoints<Matrix<double>, FloatPoints>);
static_assert(TransformsVectors<Matrix<float>, FloatVectors> &&
              TransformsVectors<Matrix<double>, DoubleVectors> &&
              !TransformsVectors<Matrix<float>, DoubleVectors> &&
              !TransformsVectors<Matrix<double>, FloatVectors>);

TEST(MatrixConversion, OfTheKnownIdentityMakesNewObjects) {
  Matrix<float> const converted{Matrix<double>()};
  EXPECT_TRUE(converted == Matrix<float>());
  EXPECT_FALSE(converted.IsKnownIdentity());
  EXPECT_NE(converted.GetMatrix().Get(), converted.GetMatrixInverse().Get());
  EXPECT_FALSE(Matrix<double>(Matrix<float>()).IsKnownIdentity());
}

TEST(MatrixConversion, RoundsToTheNearestFloat) {
  auto const source = Matrix<double>::Translate(0.1, 1e300, 1e-60);
  Matrix<float> const converted(source);
  EXPECT_EQ(converted(0, 3), 0.1F);
  EXPECT_EQ(converted(1, 3), std::numeric_limits<float>::infinity());
  EXPECT_EQ(converted(2, 3), 0.0F);
  EXPECT_NE(Matrix<double>(converted)(0, 3), 0.1);
}

TEST(MatrixConversion, ToDoubleAndBackIsTheSame) {
  std::mt19937 random(13);
  for (int i = 0; i < 100; ++i) {
    Matrix<float> const source(test::MakeRandomValues<float>(random).data());
    Matrix<float> const back{Matrix<double>(source)};
    EXPECT_TRUE(back == source) << "seed 13";
    EXPECT_TRUE(AreSameBits(InverseValuesOf(back), InverseValuesOf(source))) << "seed 13";
  }
}

TEST(MatrixConversion, ConvertsTheInverseInsteadOfComputingIt) {
  Matrix<float> const converted(Matrix<double>::Scale(2, 3, 4));
  EXPECT_EQ(InverseValuesOf(converted), (test::Diagonal<float>(0.5F, static_cast<float>(1.0 / 3), 0.25F)));
  auto const source = Matrix<float>::Scale(3);
  EXPECT_EQ(InverseValuesOf(Matrix<double>(source))[0], static_cast<double>(1.0F / 3));
}

TEST(MatrixConversion, AssignmentReplacesBothObjects) {
  Matrix<float> target = Matrix<float>::Scale(5);
  Matrix<float> const sharer = target;
  Matrix<float> const& result = (target = Matrix<double>::Translate(1, 2, 3));
  EXPECT_EQ(&result, &target);
  EXPECT_TRUE(target == Matrix<float>::Translate(1, 2, 3));
  EXPECT_TRUE(target.GetInverse() == Matrix<float>::Translate(-1, -2, -3));
  EXPECT_TRUE(sharer == Matrix<float>::Scale(5));
  EXPECT_EQ(sharer.GetMatrix().GetReferenceCount(), 1U);
}

TEST(MatrixConversion, AssignmentMakesNewObjectsForAnUnsharedMatrix) {
  Matrix<double> target = Matrix<double>::Scale(5);
  auto const* const transform = target.GetMatrix().Get();
  auto const* const inverse = target.GetMatrixInverse().Get();
  target = Matrix<float>::Scale(4);
  EXPECT_NE(target.GetMatrix().Get(), transform);
  EXPECT_NE(target.GetMatrixInverse().Get(), inverse);
  EXPECT_EQ(target(0, 0), 4);
}

TEST(MatrixConversion, KeepsSignedZerosInfinitiesAndNaNs) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  test::Values<double> values = test::Diagonal<double>(1, 1, 1);
  values[1] = -0.0;
  values[2] = infinity;
  values[4] = -infinity;
  values[6] = std::numeric_limits<double>::quiet_NaN();
  Matrix<float> const converted{Matrix<double>(values.data())};
  EXPECT_TRUE(std::signbit(converted(1, 0)));
  EXPECT_EQ(converted(2, 0), std::numeric_limits<float>::infinity());
  EXPECT_EQ(converted(0, 1), -std::numeric_limits<float>::infinity());
  EXPECT_TRUE(std::isnan(converted(2, 1)));
}

TEST(MatrixConversion, AssignmentToAMovedFromMatrixMakesItValid) {
  Matrix<float> target = Matrix<float>::Scale(2);
  Matrix<float> const taken = std::move(target);
  target = Matrix<double>::Scale(3);
  EXPECT_EQ(target(0, 0), 3);
  EXPECT_EQ(taken(0, 0), 2);
}

TEST(MatrixConversion, WithoutAnInverseGivesNone) {
  EXPECT_FALSE(Matrix<float>(Matrix<double>::Scale(0)).HasInverse());
  Matrix<double> target = Matrix<double>::Scale(2);
  target = Matrix<float>::Scale(0, 1, 2);
  EXPECT_FALSE(target.HasInverse());
  EXPECT_EQ(target(2, 2), 2);
}

}  // namespace
}  // namespace lum

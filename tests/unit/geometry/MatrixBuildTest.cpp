// The named constructors of Matrix.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <random>
#include <span>
#include <stdexcept>
#include <type_traits>
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
class MatrixBuild : public test::PrecisionTest<T> {};
TYPED_TEST_SUITE(MatrixBuild, test::Precisions);

// A matrix is made from 16 values of its own precision, and from a pointer to them.
template <class T, class U>
constexpr bool IsMadeOfValues =
    std::is_constructible_v<Matrix<T>, U const*>&& std::is_constructible_v<Matrix<T>, U*>&&
        std::is_constructible_v<Matrix<T>, U (&)[16]>&& std::is_constructible_v<Matrix<T>, U const (&)[16]>&&
            std::is_constructible_v<Matrix<T>, std::span<U const, 16>>&& std::is_constructible_v<
                Matrix<T>, std::span<U, 16>>&& std::is_constructible_v<Matrix<T>, std::array<U, 16>>;
static_assert(IsMadeOfValues<float, float> && IsMadeOfValues<double, double>);

template <class T, class... Arrays>
constexpr bool IsMadeOfNone = (!std::is_constructible_v<Matrix<T>, Arrays> && ...);
template <class T, class U>
constexpr bool IsMadeOfNoOtherArray =
    IsMadeOfNone<T, U (&)[9], U (&)[15], U (&)[17], U const (&)[15], U (&)[4][4], std::array<U, 15>,
                 std::array<U, 17>, std::span<U const, 15>, std::span<U const>, std::vector<U>,
                 std::nullptr_t, int>;
static_assert(IsMadeOfNoOtherArray<float, float> && IsMadeOfNoOtherArray<double, double>);
static_assert(IsMadeOfNone<float, double*, double (&)[16], std::span<double const, 16>> &&
              IsMadeOfNone<double, float*, float (&)[16], std::span<float const, 16>>);
static_assert(!std::is_convertible_v<float const*, Matrix<float>> &&
              !std::is_convertible_v<std::span<float const, 16>, Matrix<float>>);

TYPED_TEST(MatrixBuild, TakesValuesByPointerArrayAndSpan) {
  Values<TypeParam> const values = Diagonal<TypeParam>(2, 4, 8);
  TypeParam array[16];  // NOLINT(modernize-avoid-c-arrays): users have such arrays
  std::copy(values.begin(), values.end(), array);
  for (auto const& matrix :
       {Matrix<TypeParam>(values.data()), Matrix<TypeParam>(values), Matrix<TypeParam>(array),
        Matrix<TypeParam>(std::span<TypeParam const, 16>(values)), Matrix<TypeParam>(&array[0])}) {
    EXPECT_EQ(matrix, Matrix<TypeParam>::Scale(2, 4, 8));
    EXPECT_EQ(InverseValuesOf(matrix),
              Diagonal<TypeParam>(TypeParam(0.5), TypeParam(0.25), TypeParam(0.125)));
  }
}

TYPED_TEST(MatrixBuild, ScalesAlongTheAxes) {
  auto const scale = Matrix<TypeParam>::Scale(2, 3, 4);
  EXPECT_TRUE(AreSameBits(ValuesOf(scale), Diagonal<TypeParam>(2, 3, 4)));
  EXPECT_TRUE(AreSameBits(InverseValuesOf(scale),
                          Diagonal<TypeParam>(TypeParam(0.5), 1 / TypeParam(3), TypeParam(0.25))));
  EXPECT_EQ(scale.GetMatrix().GetReferenceCount(), 1U);
}

TYPED_TEST(MatrixBuild, ScalesByOneFactor) {
  auto const scale = Matrix<TypeParam>::Scale(3);
  TypeParam const third = 1 / TypeParam(3);
  EXPECT_TRUE(AreSameBits(ValuesOf(scale), Diagonal<TypeParam>(3, 3, 3)));
  EXPECT_TRUE(AreSameBits(InverseValuesOf(scale), Diagonal<TypeParam>(third, third, third)));
}

TYPED_TEST(MatrixBuild, AScaleWithoutFiniteReciprocalsHasNoInverse) {
  constexpr TypeParam tiny = std::numeric_limits<TypeParam>::denorm_min();
  for (TypeParam const bad : {TypeParam(0), -TypeParam(0), this->nan, tiny, -tiny}) {
    EXPECT_FALSE(Matrix<TypeParam>::Scale(bad, 1, 1).HasInverse()) << bad;
    EXPECT_FALSE(Matrix<TypeParam>::Scale(1, bad, 1).HasInverse()) << bad;
    EXPECT_FALSE(Matrix<TypeParam>::Scale(1, 1, bad).HasInverse()) << bad;
    EXPECT_FALSE(Matrix<TypeParam>::Scale(bad).HasInverse()) << bad;
  }
  EXPECT_EQ(Matrix<TypeParam>::Scale(0, 1, 2)(2, 2), 2);
}

TYPED_TEST(MatrixBuild, AnInfiniteScaleHasAnInverseWithAZero) {
  auto const scale = Matrix<TypeParam>::Scale(-this->infinity, 1, 1);
  ASSERT_TRUE(scale.HasInverse());
  EXPECT_TRUE(AreSameBits(InverseValuesOf(scale), Diagonal<TypeParam>(-TypeParam(0), 1, 1)));
}

TYPED_TEST(MatrixBuild, TranslatesAndNegatesInTheInverse) {
  auto const translation = Matrix<TypeParam>::Translate(1, 2, 0);
  EXPECT_TRUE(
      AreSameBits(ValuesOf(translation), Values<TypeParam>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 0, 1}));
  EXPECT_TRUE(AreSameBits(InverseValuesOf(translation),
                          Values<TypeParam>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1, -2, -TypeParam(0), 1}));
  EXPECT_EQ((translation * Point<TypeParam, 3>(Origin)), (Point<TypeParam, 3>(1, 2, 0)));
  EXPECT_TRUE(translation == Matrix<TypeParam>::Translate(Vector<TypeParam, 3>(1, 2, 0)));
  EXPECT_TRUE(Matrix<TypeParam>::Translate(this->nan, this->infinity, 0).HasInverse());
}

TYPED_TEST(MatrixBuild, AZeroAngleGivesTheKnownIdentity) {
  Vector<TypeParam, 3> const axis(0, 0, 1);
  EXPECT_TRUE(Matrix<TypeParam>::Rotate(axis, 0).IsKnownIdentity());
  EXPECT_TRUE(Matrix<TypeParam>::Rotate(axis, -TypeParam(0)).IsKnownIdentity());
  EXPECT_FALSE(Matrix<TypeParam>::Rotate(axis, this->nan).IsKnownIdentity());
}

TYPED_TEST(MatrixBuild, TurnsCounterclockwise) {
  auto const turn = Matrix<TypeParam>::Rotate({0, 0, 1}, std::numbers::pi_v<TypeParam> / 2);
  TypeParam const rounding = std::numeric_limits<TypeParam>::epsilon();
  EXPECT_NEAR(ValuesOf(turn)[1], 1, rounding);
  EXPECT_NEAR(ValuesOf(turn)[4], -1, rounding);
  auto const image = turn * Vector<TypeParam, 3>(1, 0, 0);
  EXPECT_NEAR(image[0], 0, rounding);
  EXPECT_NEAR(image[1], 1, rounding);
}

// The documented matrix of a rotation, with its operations in their order.
template <class T>
Values<T> MakeRotation(T x, T y, T z, T s, T c) {
  T const t = 1 - c;
  T const xt = x * t;
  T const yt = y * t;
  T const tz = t * z;
  T const xs = x * s;
  T const ys = y * s;
  T const zs = z * s;
  T const yxt = y * xt;
  T const zxt = z * xt;
  T const zyt = z * yt;
  T const xxt = x * xt;
  T const yyt = y * yt;
  T const zzt = tz * z;
  return {xxt + c,  zs + yxt, zxt - ys, 0, yxt - zs, yyt + c, xs + zyt, 0,
          ys + zxt, zyt - xs, zzt + c,  0, 0,        0,       0,        1};
}

TYPED_TEST(MatrixBuild, RotatesByTheFormulaAndBackByTheNegatedAngle) {
  std::mt19937 random(8);
  std::uniform_real_distribution<TypeParam> number(-2, 2);
  for (int i = 0; i < 500; ++i) {
    TypeParam const x = number(random);
    TypeParam const y = number(random);
    TypeParam const z = number(random);
    TypeParam const angle = number(random);
    auto const rotation = Matrix<TypeParam>::Rotate({x, y, z}, angle);
    EXPECT_TRUE(AreSameBits(ValuesOf(rotation), MakeRotation(x, y, z, std::sin(angle), std::cos(angle))))
        << "seed 8";
    EXPECT_TRUE(
        AreSameBits(InverseValuesOf(rotation), MakeRotation(x, y, z, std::sin(-angle), std::cos(angle))))
        << "seed 8";
  }
}

TYPED_TEST(MatrixBuild, ALongerAxisScales) {
  auto const turn = Matrix<TypeParam>::Rotate({0, 0, 2}, 1);
  auto const image = turn * Vector<TypeParam, 3>(0, 0, 1);
  EXPECT_GT(image[2], TypeParam(1.5));
  EXPECT_NE(ValuesOf(turn * turn.GetInverse()), (Diagonal<TypeParam>(1, 1, 1)))
      << "the inverse rotates back about the same axis, but does not undo the scale";
}

TYPED_TEST(MatrixBuild, NormalizesABox) {
  auto const cube = Matrix<TypeParam>::Normalize(2, 2, 2);
  EXPECT_TRUE(cube == Matrix<TypeParam>::Scale(1, 1, 1));
  EXPECT_FALSE(cube.IsKnownIdentity());
  EXPECT_TRUE(Matrix<TypeParam>::Normalize(4, 8, 3) ==
              Matrix<TypeParam>::Scale(TypeParam(0.5), TypeParam(0.25), 2 / TypeParam(3)));
}

TYPED_TEST(MatrixBuild, RefusesExtentsThatAreNotPositiveInOrder) {
  auto const refuses = [](TypeParam i_width, TypeParam i_height, TypeParam i_depth, char const* i_text) {
    EXPECT_TRUE(test::Throws<std::invalid_argument>(
        [=] { Matrix<TypeParam>::Normalize(i_width, i_height, i_depth); }, i_text));
  };
  refuses(0, 1, 1, "i_width must be strictly positive");
  refuses(-1, 0, 0, "i_width must be strictly positive");
  refuses(-TypeParam(0), 1, 1, "i_width must be strictly positive");
  refuses(1, -1, 0, "i_height must be strictly positive");
  refuses(this->nan, 0, 1, "i_height must be strictly positive");
  refuses(1, 1, 0, "i_depth must be strictly positive");
  refuses(1, 1, -this->infinity, "i_depth must be strictly positive");
  refuses(this->nan, this->nan, -1, "i_depth must be strictly positive");
}

TYPED_TEST(MatrixBuild, NormalizesTheSmallestAndTheLargestBox) {
  constexpr TypeParam least = std::numeric_limits<TypeParam>::denorm_min();
  auto const small = Matrix<TypeParam>::Normalize(least, 1, 1);
  EXPECT_EQ(small(0, 0), this->infinity);
  EXPECT_EQ(InverseValuesOf(small)[0], 0);
  auto const large = Matrix<TypeParam>::Normalize(this->infinity, 1, 1);
  EXPECT_EQ(large(0, 0), 0);
  EXPECT_FALSE(large.HasInverse());
}

TYPED_TEST(MatrixBuild, ANaNExtentGivesAMatrixWithoutInverse) {
  EXPECT_FALSE(Matrix<TypeParam>::Normalize(this->nan, 1, 1).HasInverse());
  EXPECT_FALSE(Matrix<TypeParam>::Normalize(1, this->nan, 1).HasInverse());
  EXPECT_FALSE(Matrix<TypeParam>::Normalize(1, 1, this->nan).HasInverse());
}

}  // namespace
}  // namespace lum

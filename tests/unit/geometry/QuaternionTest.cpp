#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>
#include <random>
#include <span>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

#include "geometry/Quaternion.h"
#include "geometry/internal/Lanes.h"
#include "tests/support/Throws.h"
#include "tests/support/Values.h"

namespace lum {
namespace {

using Coefficients = std::array<float, 4>;
using V = Vector<float, 3>;

constexpr float pi = std::numbers::pi_v<float>;
constexpr float rounding = 4 * std::numeric_limits<float>::epsilon();

static_assert(std::is_nothrow_move_constructible_v<Quaternionf>);
static_assert(std::is_nothrow_move_assignable_v<Quaternionf>);
static_assert(sizeof(Quaternionf) == sizeof(Quaternionf::ObjectHandle));
static_assert(!std::is_convertible_v<Matrix<float> const&, Quaternionf>);
static_assert(!std::is_convertible_v<Quaternionf::ObjectHandle const&, Quaternionf>);

// A quaternion with these coefficients exactly.
Quaternionf Make(Coefficients const& i_coefficients) {
  auto handle = CreateGlobalObject<Quaternionf::Object>();
  std::copy(i_coefficients.begin(), i_coefficients.end(), handle->coeffs().data());
  return Quaternionf(handle);
}

Coefficients MakeRandom(std::mt19937& io_random) {
  std::uniform_real_distribution<float> number(-1, 1);
  Coefficients coefficients;
  for (float& coefficient : coefficients) coefficient = number(io_random);
  return coefficients;
}

float DotInPairs(Coefficients const& a, Coefficients const& b) {
  float const xx = a[0] * b[0];
  float const yy = a[1] * b[1];
  float const zz = a[2] * b[2];
  float const ww = a[3] * b[3];
  return (xx + yy) + (zz + ww);
}

void ExpectNear(V const& i_actual, V const& i_expected) {
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(i_actual[i], i_expected[i], rounding);
}

TEST(Quaternion, IsTheKnownIdentityByDefault) {
  Quaternionf const identity;
  EXPECT_EQ(identity.GetCoefficients(), (Coefficients{0, 0, 0, 1}));
  EXPECT_TRUE(identity.IsKnownIdentity());
  EXPECT_TRUE(identity.GetAsMatrix().IsKnownIdentity());
  EXPECT_TRUE(Quaternionf(identity).IsKnownIdentity());
}

TEST(Quaternion, WithTheIdentitysCoefficientsIsNotKnown) {
  Quaternionf const from_matrix{Matrix<float>()};
  EXPECT_EQ(from_matrix.GetCoefficients(), (Coefficients{0, 0, 0, 1}));
  EXPECT_FALSE(from_matrix.IsKnownIdentity());
  Quaternionf const product = Quaternionf() * Quaternionf();
  EXPECT_EQ(product.GetCoefficients(), (Coefficients{0, 0, 0, 1}));
  EXPECT_FALSE(product.IsKnownIdentity());
}

TEST(Quaternion, RotatesAboutAnAxis) {
  Quaternionf const turn(V(0, 0, 1), pi / 2);
  ExpectNear(turn.Transform(V(1, 0, 0)), V(0, 1, 0));
  ExpectNear(turn.InverseTransform(V(0, 1, 0)), V(1, 0, 0));
}

TEST(Quaternion, TakesTheAxisAsItIs) {
  for (float const angle : {0.3F, -2.0F, 7.0F}) {
    float const half = angle * 0.5F;
    EXPECT_EQ(Quaternionf(V(0, 0, 2), angle).GetCoefficients(),
              (Coefficients{0 * std::sin(half), 0 * std::sin(half), 2 * std::sin(half), std::cos(half)}));
  }
}

TEST(Quaternion, TakesSineAndCosineInSinglePrecision) {
  std::mt19937 random(25);
  std::uniform_real_distribution<float> number(-7, 7);
  int differences_of_precision = 0;
  for (int i = 0; i < 2000; ++i) {
    V const axis(number(random), number(random), number(random));
    float const angle = number(random);
    float const half = angle * 0.5F;
    float const sine = std::sin(half);
    float const cosine = std::cos(half);
    EXPECT_EQ(Quaternionf(axis, angle).GetCoefficients(),
              (Coefficients{axis[0] * sine, axis[1] * sine, axis[2] * sine, cosine}))
        << "seed 25";
    double const wide = half;
    if (cosine != static_cast<float>(std::cos(wide))) ++differences_of_precision;
  }
  EXPECT_GT(differences_of_precision, 0) << "the inputs do not tell the precisions apart";
}

TEST(Quaternion, RotatesArraysToTheBitsOfTheSingleRotation) {
  constexpr unsigned seed = 20261123;
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> number(-10, 10);
  for (Quaternionf const& rotation :
       {Quaternionf(V(0, 0, 1), 0.7F), Quaternionf(), Quaternionf(V(1, 2, 3), 5)}) {
    for (std::size_t count = 0; count < 12; ++count) {
      std::vector<V> vectors(count);
      for (V& vector : vectors) vector = V(number(random), number(random), number(random));
      if (count > 1) vectors[1] = V(number(random), 0, -0.0F);
      V const guard(7, 8, 9);
      std::vector<V> images(count + 1, guard);
      TransformVectors(rotation, vectors, std::span(images).first(count));
      EXPECT_EQ(images.back(), guard);
      auto const before = vectors;
      TransformVectors(rotation, vectors, vectors);
      for (std::size_t i = 0; i < count; ++i) {
        V const expected = rotation.Transform(before[i]);
        for (std::size_t axis = 0; axis < 3; ++axis) {
          EXPECT_EQ(std::bit_cast<std::uint32_t>(images[i][axis]),
                    std::bit_cast<std::uint32_t>(expected[axis]))
              << "seed " << seed;
          EXPECT_EQ(std::bit_cast<std::uint32_t>(vectors[i][axis]),
                    std::bit_cast<std::uint32_t>(expected[axis]));
        }
      }
    }
  }
}

TEST(Quaternion, RotatesArraysWithNonTemporalStores) {
  constexpr std::size_t count = internal::kStreamedBytes / sizeof(V) + 1;
  Quaternionf const rotation(V(1, 2, 3), 5);
  std::vector<V> const vectors(count, V(3, -1, 2));
  for (std::size_t start = 0; start < 4; ++start) {
    std::vector<V> images(count + 4);
    TransformVectors(rotation, vectors, std::span(images).subspan(start, count));
    std::vector<V> expected(count + 4);
    std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(start), count, rotation.Transform(vectors[0]));
    EXPECT_TRUE(images == expected) << "from " << start;
  }
}

TEST(Quaternion, ArraysOfDifferentSizesAreRefusedAndNothingIsWritten) {
  std::vector<V> const vectors(3, V(1, 1, 1));
  for (std::size_t const size : {0U, 2U, 4U}) {
    std::vector<V> images(size, V(5, 5, 5));
    EXPECT_TRUE(
        test::Throws<std::invalid_argument>([&] { TransformVectors(Quaternionf(), vectors, images); },
                                            "arrays to transform from and to must be of the same size"));
    EXPECT_EQ(images, std::vector<V>(size, V(5, 5, 5)));
  }
}

TEST(Quaternion, FromAMatrixDropsScaleAndTranslation) {
  auto const rotation = Matrix<float>::Rotate(GetNormalized(V(1, 2, 3)), 0.8F);
  Coefficients const expected = Quaternionf(GetNormalized(V(1, 2, 3)), 0.8F).GetCoefficients();
  auto const scaled = Matrix<float>::Translate(5, 6, 7) * rotation * Matrix<float>::Scale(3);
  Coefficients const alone = Quaternionf(rotation).GetCoefficients();
  Coefficients const with_scale = Quaternionf(scaled).GetCoefficients();
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(alone[i], expected[i], rounding);
    EXPECT_NEAR(with_scale[i], expected[i], rounding);
  }
}

// The matrix is a rotation times a symmetric stretch. The polar decomposition finds the rotation, although
// the columns are neither of equal length nor perpendicular.
TEST(Quaternion, FromAMatrixDropsStretchAlongAnyAxes) {
  Coefficients const expected = Quaternionf(GetNormalized(V(3, -1, 2)), 1.1F).GetCoefficients();
  auto const rotation = Matrix<float>::Rotate(GetNormalized(V(3, -1, 2)), 1.1F);
  auto const tilt = Matrix<float>::Rotate(GetNormalized(V(1, 1, 0)), 0.6F);
  auto const stretch = tilt * Matrix<float>::Scale(1, 2, 4) * tilt.GetInverse();
  Coefficients const actual = Quaternionf(rotation * stretch).GetCoefficients();
  for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(actual[i], expected[i], 4 * rounding);
}

// Rounding makes the determinant of a rotation less or greater than 1.
TEST(Quaternion, FromAMatrixFindsAnyRotation) {
  constexpr unsigned seed = 20261122;
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> number(-1, 1);
  for (int round = 0; round < 300; ++round) {
    V const axis = GetNormalized(V(number(random), number(random), number(random)));
    float const angle = 3 * number(random);
    Coefficients const expected = Quaternionf(axis, angle).GetCoefficients();
    Coefficients const actual =
        Quaternionf(Matrix<float>::Rotate(axis, angle) * Matrix<float>::Scale(2)).GetCoefficients();
    EXPECT_NEAR(std::abs(DotInPairs(actual, expected)), 1, 4 * rounding) << "seed " << seed << ", " << round;
  }
}

TEST(Quaternion, FromAMirroringMatrixIsStillARotation) {
  for (V const& mirror : {V(-1, 1, 1), V(1, -1, 1), V(1, 1, -1), V(-1, -1, -1)}) {
    auto const matrix = Matrix<float>::Rotate(V(0, 0, 1), 0.5F) *
                        Matrix<float>::Scale(2 * mirror[0], 3 * mirror[1], mirror[2]);
    Coefficients const actual = Quaternionf(matrix).GetCoefficients();
    EXPECT_NEAR(DotInPairs(actual, actual), 1, 2 * rounding);
    // The smallest scale is that along z, so z is mirrored once more to make a rotation.
    auto const expected = Matrix<float>::Rotate(V(0, 0, 1), 0.5F) *
                          Matrix<float>::Scale(mirror[0], mirror[1], mirror[0] * mirror[1]);
    Matrix<float> const rotation = Quaternionf(matrix).GetAsMatrix();
    for (int row = 0; row < 3; ++row) {
      for (int column = 0; column < 3; ++column)
        EXPECT_NEAR(rotation(row, column), expected(row, column), 1e-6F);
    }
  }
}

TEST(Quaternion, FromANonFiniteAxisOrAngleIsNotFinite) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  for (float const angle : {nan, std::numeric_limits<float>::infinity()}) {
    for (float const coefficient : Quaternionf(V(0, 0, 1), angle).GetCoefficients()) {
      EXPECT_TRUE(std::isnan(coefficient));
    }
  }
  Coefficients const axis = Quaternionf(V(nan, 1, 0), 1).GetCoefficients();
  EXPECT_TRUE(std::isnan(axis[0]));
  EXPECT_EQ(axis[1], std::sin(0.5F));
  EXPECT_EQ(Quaternionf(V(), 1).GetCoefficients(), (Coefficients{0, 0, 0, std::cos(0.5F)}));
}

// The trace is positive for angles below 120 degrees. For larger angles each of the three diagonal elements
// may be the largest.
TEST(Quaternion, FromAMatrixTakesEveryBranch) {
  for (V const& axis : {V(1, 0, 0), V(0, 1, 0), V(0, 0, 1)}) {
    for (float const angle : {0.5F, 3.0F, pi}) {
      Coefficients const expected = Quaternionf(axis, angle).GetCoefficients();
      Coefficients const actual = Quaternionf(Matrix<float>::Rotate(axis, angle)).GetCoefficients();
      float const sign = DotInPairs(expected, actual) < 0 ? -1.0F : 1.0F;
      for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(actual[i], sign * expected[i], rounding) << angle;
    }
  }
}

TEST(Quaternion, FromABlockOfZerosIsNoRotation) {
  Quaternionf const rotation(Matrix<float>::Scale(0));
  EXPECT_EQ(rotation.GetCoefficients(), (Coefficients{0, 0, 0, 1}));
  EXPECT_FALSE(rotation.IsKnownIdentity());
}

TEST(Quaternion, FromAMatrixThatIsNotFiniteIsNotANumber) {
  for (float const bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                          -std::numeric_limits<float>::infinity()}) {
    for (std::size_t column = 0; column < 3; ++column) {
      for (std::size_t row = 0; row < 3; ++row) {
        test::Values<float> values = test::Diagonal<float>(1, 1, 1);
        values[row + 4 * column] = bad;
        for (float const coefficient : Quaternionf(Matrix<float>(values.data())).GetCoefficients()) {
          EXPECT_TRUE(std::isnan(coefficient));
        }
      }
    }
    test::Values<float> values = test::Diagonal<float>(1, 1, 1);
    values[12] = values[3] = bad;
    EXPECT_EQ(Quaternionf(Matrix<float>(values.data())).GetCoefficients(), (Coefficients{0, 0, 0, 1}))
        << "translation and row 3 are ignored";
  }
}

TEST(Quaternion, CopiesAndMovesKeepTheCoefficients) {
  Quaternionf source(V(0, 0, 1), 1);
  Coefficients const coefficients = source.GetCoefficients();
  Quaternionf const copy = source;
  Quaternionf const moved = std::move(source);
  EXPECT_EQ(moved.GetCoefficients(), coefficients);
  source = moved;
  EXPECT_EQ(source.GetCoefficients(), coefficients);
  EXPECT_EQ(copy.GetCoefficients(), coefficients);
}

TEST(Quaternion, DefaultValuesShareTheIdentity) {
  Quaternionf const first;
  unsigned long const before = Quaternionf::mgh_identity.GetValue().GetReferenceCount();
  Quaternionf const second;
  EXPECT_EQ(Quaternionf::mgh_identity.GetValue().GetReferenceCount(), before + 1);
}

TEST(Quaternion, SharesTheObjectOfAHandle) {
  auto handle = CreateGlobalObject<Quaternionf::Object>();
  handle->coeffs() << 1, 2, 3, 4;
  Quaternionf const quaternion(handle);
  EXPECT_EQ(handle.GetReferenceCount(), 2U);
  EXPECT_EQ(quaternion.GetCoefficients(), (Coefficients{1, 2, 3, 4}));
  EXPECT_TRUE(Quaternionf(Quaternionf::mgh_identity.GetValue()).IsKnownIdentity());
}

TEST(Quaternion, AssignmentKeepsTheCountsRight) {
  auto handle = CreateGlobalObject<Quaternionf::Object>();
  handle->coeffs().setZero();
  Quaternionf first(handle);
  Quaternionf second = first;
  EXPECT_EQ(handle.GetReferenceCount(), 3U);
  Quaternionf const& alias = first;
  first = alias;
  first = second;
  EXPECT_EQ(handle.GetReferenceCount(), 3U);
  first = std::move(second);
  EXPECT_EQ(handle.GetReferenceCount(), 2U);
  first = Quaternionf();
  EXPECT_EQ(handle.GetReferenceCount(), 1U);
  EXPECT_TRUE(first.IsKnownIdentity());
}

TEST(Quaternion, MultipliesInOrder) {
  std::mt19937 random(14);
  for (int i = 0; i < 1000; ++i) {
    Coefficients const p = MakeRandom(random);
    Coefficients const q = MakeRandom(random);
    auto const sum = [](float a, float b, float c, float d) {
      float const ab = a + b;
      float const abc = ab + c;
      return abc + d;
    };
    auto const [x1, y1, z1, w1] = p;
    auto const [x2, y2, z2, w2] = q;
    Coefficients const expected = {
        sum(w1 * x2, x1 * w2, y1 * z2, -(z1 * y2)), sum(w1 * y2, y1 * w2, z1 * x2, -(x1 * z2)),
        sum(w1 * z2, z1 * w2, x1 * y2, -(y1 * x2)), sum(w1 * w2, -(x1 * x2), -(y1 * y2), -(z1 * z2))};
    EXPECT_EQ((Make(p) * Make(q)).GetCoefficients(), expected) << "seed 14";
  }
}

TEST(Quaternion, TheRightFactorRotatesFirst) {
  Quaternionf const about_z(V(0, 0, 1), pi / 2);
  Quaternionf const about_x(V(1, 0, 0), pi / 2);
  ExpectNear((about_x * about_z).Transform(V(1, 0, 0)), V(0, 0, 1));
  ExpectNear((about_z * about_x).Transform(V(1, 0, 0)), V(0, 1, 0));
}

TEST(Quaternion, ItsMatrixIsTheSameRotation) {
  Quaternionf const rotation(GetNormalized(V(1, -2, 0.5F)), 1.3F);
  Matrix<float> const matrix = rotation.GetAsMatrix();
  ExpectNear(matrix * V(1, 2, -1), rotation.Transform(V(1, 2, -1)));
  ExpectNear(rotation.InverseTransform(rotation.Transform(V(1, 2, -1))), V(1, 2, -1));
  EXPECT_TRUE(matrix.HasInverse());
  EXPECT_EQ(matrix(3, 3), 1);
  EXPECT_EQ(matrix(0, 3), 0);
}

TEST(Quaternion, ItsMatrixFollowsTheFormulaEvenWithoutUnitLength) {
  std::mt19937 random(15);
  for (int i = 0; i < 200; ++i) {
    Coefficients const q = MakeRandom(random);
    auto const [x, y, z, w] = q;
    float const X = 2 * x;
    float const Y = 2 * y;
    float const Z = 2 * z;
    float const xX = x * X;
    float const xY = x * Y;
    float const xZ = x * Z;
    float const yY = Y * y;
    float const yZ = y * Z;
    float const zZ = Z * z;
    float const wX = X * w;
    float const wY = Y * w;
    float const wZ = w * Z;
    test::Values<float> expected = test::Diagonal<float>(1 - (yY + zZ), 1 - (zZ + xX), 1 - (yY + xX));
    expected[1] = xY + wZ;
    expected[2] = xZ - wY;
    expected[4] = xY - wZ;
    expected[6] = yZ + wX;
    expected[8] = xZ + wY;
    expected[9] = yZ - wX;
    EXPECT_EQ(test::ValuesOf(Make(q).GetAsMatrix()), expected) << "seed 15";
  }
  Matrix<float> const of_zero = Make({0, 0, 0, 0}).GetAsMatrix();
  EXPECT_TRUE(of_zero == Matrix<float>());
  EXPECT_FALSE(of_zero.IsKnownIdentity());
}

TEST(Quaternion, TransformsInOrder) {
  std::mt19937 random(16);
  for (int i = 0; i < 1000; ++i) {
    Coefficients const q = MakeRandom(random);
    Coefficients const r = MakeRandom(random);
    V const v(r[0], r[1], r[2]);
    V const axis(q[0], q[1], q[2]);
    V const u = Cross(axis, v) * 2.0F;
    V const expected = (v + u * q[3]) + Cross(axis, u);
    EXPECT_EQ(Make(q).Transform(v), expected) << "seed 16";
  }
}

TEST(Quaternion, InverseTransformUsesTheInverseMatrix) {
  std::mt19937 random(24);
  for (int i = 0; i < 200; ++i) {
    Quaternionf const q = Make(MakeRandom(random));
    V const expected = q.GetAsMatrix().GetInverse() * V(1, 2, 3);
    EXPECT_EQ(q.InverseTransform(V(1, 2, 3)), expected) << "seed 24";
  }
}

// The known identity is not handled specially here: the cross products turn an infinite component into NaNs.
TEST(Quaternion, TransformsByTheKnownIdentityAsByAnyOther) {
  V const image = Quaternionf().Transform(V(std::numeric_limits<float>::infinity(), 1, 2));
  EXPECT_TRUE(std::isnan(image[1]));
  EXPECT_EQ(Quaternionf().Transform(V(1, 2, 3)), V(1, 2, 3));
}

TEST(Quaternion, InverseTransformByTheKnownIdentityReturnsTheVector) {
  float const infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(Quaternionf().InverseTransform(V(infinity, 1, 2)), V(infinity, 1, 2));
}

TEST(Quaternion, InverseTransformByASingularMatrixIsNotFinite) {
  V const back = Make({0.5F, 0.5F, 0, 0}).InverseTransform(V(1, 2, 3));
  EXPECT_EQ(Make({0.5F, 0.5F, 0, 0}).GetAsMatrix().GetDeterminant(), 0);
  EXPECT_FALSE(test::AreFinite(back));
}

TEST(Quaternion, ComparesCoefficientsNotRotations) {
  Quaternionf const q(V(0, 0, 1), 1);
  Coefficients opposite = q.GetCoefficients();
  for (float& coefficient : opposite) coefficient = -coefficient;
  EXPECT_FALSE(q.IsApproximately(Make(opposite), 1.99F));
  EXPECT_TRUE(q.IsApproximately(Make(opposite), 2.01F));
  EXPECT_FALSE(q.IsApproximately(Make(opposite), -1.99F));
  EXPECT_TRUE(q.IsApproximately(Make(opposite), -2.01F));
  EXPECT_TRUE(q.IsApproximately(q, 0));
  Coefficients close = q.GetCoefficients();
  close[3] = std::nextafter(close[3], 2.0F);
  EXPECT_FALSE(q.IsApproximately(Make(close), 0));
  EXPECT_TRUE(q.IsApproximately(Make(close), 1e-6F));
}

TEST(Quaternion, AZeroQuaternionIsApproximatelyOnlyItself) {
  Quaternionf const zero = Make({0, 0, 0, 0});
  EXPECT_TRUE(zero.IsApproximately(zero, 0));
  EXPECT_FALSE(zero.IsApproximately(Quaternionf(), 100));
  EXPECT_FALSE(Quaternionf().IsApproximately(zero, 100));
}

TEST(Quaternion, ComparesRelativelyToTheShorter) {
  Quaternionf const shorter = Make({0, 0, 0, 1});
  Quaternionf const longer = Make({0, 0, 0, 3});
  EXPECT_TRUE(shorter.IsApproximately(longer, 2));
  EXPECT_FALSE(shorter.IsApproximately(longer, 1.99F));
  EXPECT_FALSE(longer.IsApproximately(shorter, 1.99F));
  EXPECT_TRUE(shorter.IsApproximately(longer, -2)) << "the tolerance is squared";
  EXPECT_FALSE(shorter.IsApproximately(shorter, std::numeric_limits<float>::quiet_NaN()));
}

// With these tolerances the two sides are equal for this order of the sums, and differ for another.
TEST(Quaternion, ComparesWithSumsInPairs) {
  std::mt19937 random(17);
  std::uniform_real_distribution<float> number(0.5F, 1.5F);
  for (int i = 0; i < 2000; ++i) {
    Coefficients const a = MakeRandom(random);
    Coefficients const b = MakeRandom(random);
    Coefficients d;
    for (std::size_t k = 0; k < 4; ++k) d[k] = a[k] - b[k];
    float const left = DotInPairs(d, d);
    float const right = std::min(DotInPairs(a, a), DotInPairs(b, b));
    float const close = std::sqrt(left / right);
    for (float const tolerance : {std::nextafter(close, 0.0F), close, std::nextafter(close, 10.0F)}) {
      float const squared = tolerance * tolerance;
      EXPECT_EQ(Make(a).IsApproximately(Make(b), tolerance), left <= squared * right) << "seed 17";
    }
  }
}

TEST(Quaternion, SlerpReachesItsEnds) {
  Quaternionf const a(V(0, 0, 1), 0.4F);
  Quaternionf const b(V(1, 0, 0), 1.4F);
  EXPECT_EQ(a.Slerp(0, b).GetCoefficients(), a.GetCoefficients());
  EXPECT_EQ(a.Slerp(1, b).GetCoefficients(), b.GetCoefficients());
  Coefficients opposite = b.GetCoefficients();
  for (float& coefficient : opposite) coefficient = -coefficient;
  EXPECT_EQ(a.Slerp(1, Make(opposite)).GetCoefficients(), b.GetCoefficients()) << "the shorter arc";
}

// For quaternions at a right angle neither arc is shorter. The second keeps its sign, for a zero of either
// sign.
TEST(Quaternion, SlerpAtARightAngleKeepsTheSign) {
  for (float const zero : {0.0F, -0.0F}) {
    Coefficients const end = Make({zero, 0, 0, 1}).Slerp(1, Make({1, 0, 0, zero})).GetCoefficients();
    EXPECT_EQ(end[0], 1);
  }
}

TEST(Quaternion, SlerpOfLongQuaternionsIsTheLinearBlend) {
  EXPECT_EQ(Make({0, 0, 0, 2}).Slerp(0.5F, Make({0, 0, 0, 3})).GetCoefficients(),
            (Coefficients{0, 0, 0, 2.5F}));
  EXPECT_EQ(Make({0, 0, 0, 2}).Slerp(0.5F, Make({0, 0, 0, -3})).GetCoefficients(),
            (Coefficients{0, 0, 0, 2.5F}));
  EXPECT_EQ(Make({0, 0, 0, 2}).Slerp(3, Make({0, 0, 0, 3})).GetCoefficients(), (Coefficients{0, 0, 0, 5}))
      << "it extrapolates";
}

// The linear blend starts at exactly this cosine. The formulas nearly agree there: only some values of t tell
// them apart.
TEST(Quaternion, SlerpBlendsLinearlyFromTheThresholdOn) {
  constexpr float one = 0.99999988F;
  float const below = std::nextafter(one, 0.0F);
  int differences = 0;
  for (float const cosine : {one, below, -one, -below}) {
    float const theta = std::acos(std::abs(cosine));
    for (int step = 1; step < 100; ++step) {
      float const t = static_cast<float>(step) / 100;
      float const blend = 1 - t;
      float const turn = std::sin((1 - t) * theta) / std::sin(theta);
      // The y coefficient of the result is the weight of the second quaternion.
      float const weight = Make({1, 0, 0, 0}).Slerp(t, Make({cosine, 1, 0, 0})).GetCoefficients()[1];
      float const other = std::sin(t * theta) / std::sin(theta);
      float const sign = cosine < 0 ? -1.0F : 1.0F;
      EXPECT_EQ(weight, sign * (std::abs(cosine) >= one ? t : other)) << cosine << ' ' << t;
      if (blend != turn && t != other) ++differences;
    }
  }
  EXPECT_GT(differences, 100) << "the steps do not tell the formulas apart";
}

TEST(Quaternion, SlerpWithANaNIsNotANumber) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  Quaternionf const end = Make({0, 0, 0, nan});
  for (float const coefficient : Make({0, 0, 0, 1}).Slerp(0.5F, end).GetCoefficients()) {
    EXPECT_TRUE(std::isnan(coefficient));
  }
}

TEST(Quaternion, SlerpHalvesTheAngle) {
  Quaternionf const a(V(0, 0, 1), 0.2F);
  Quaternionf const b(V(0, 0, 1), 1.0F);
  Coefficients const half = a.Slerp(0.5F, b).GetCoefficients();
  Coefficients const expected = Quaternionf(V(0, 0, 1), 0.6F).GetCoefficients();
  for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(half[i], expected[i], rounding);
}

TEST(Quaternion, SlerpFollowsTheFormula) {
  constexpr float one = 0.99999988F;
  std::mt19937 random(18);
  std::uniform_real_distribution<float> number(0, 1);
  int blends = 0;
  for (int i = 0; i < 2000; ++i) {
    V const axis(number(random), number(random), number(random));
    Coefficients const a = Quaternionf(GetNormalized(axis), 1).GetCoefficients();
    // Every fourth pair is above the threshold; in every second, one quaternion is negated.
    Coefficients b =
        Quaternionf(GetNormalized(axis), i % 4 == 0 ? 1.0F : 2 * number(random)).GetCoefficients();
    for (float& coefficient : b) coefficient = i % 2 == 0 ? -coefficient : coefficient;
    float const t = number(random);
    float const dot = DotInPairs(a, b);
    float s0 = 1 - t;
    float s1 = t;
    if (std::abs(dot) >= one) {
      ++blends;
    } else {
      float const theta = std::acos(std::abs(dot));
      s0 = std::sin((1 - t) * theta) / std::sin(theta);
      s1 = std::sin(t * theta) / std::sin(theta);
    }
    if (dot < 0) s1 = -s1;
    Coefficients expected;
    for (std::size_t k = 0; k < 4; ++k) {
      float const first = s0 * a[k];
      float const second = s1 * b[k];
      expected[k] = first + second;
    }
    EXPECT_EQ(Make(a).Slerp(t, Make(b)).GetCoefficients(), expected) << "seed 18";
  }
  EXPECT_GT(blends, 100);
  EXPECT_LT(blends, 1900);
}

#ifndef NDEBUG
TEST(QuaternionDeathTest, AssertionsCatchTheUseOfAMovedFromValue) {
  Quaternionf source(V(0, 0, 1), 1);
  Quaternionf const target = std::move(source);
  // NOLINTBEGIN(bugprone-use-after-move): the test is about it
  EXPECT_DEATH(source.GetCoefficients(), "a moved-from quaternion");
  EXPECT_DEATH(source.IsKnownIdentity(), "a moved-from quaternion");
  EXPECT_DEATH(source.GetAsMatrix(), "a moved-from quaternion");
  EXPECT_DEATH(source.Transform(V()), "a moved-from quaternion");
  EXPECT_DEATH(source.InverseTransform(V()), "a moved-from quaternion");
  std::vector<V> vectors(1);
  EXPECT_DEATH(TransformVectors(source, vectors, vectors), "a moved-from quaternion");
  EXPECT_DEATH(source * target, "a moved-from quaternion");
  EXPECT_DEATH(target * source, "a moved-from quaternion");
  EXPECT_DEATH(target.Slerp(0, source), "a moved-from quaternion");
  EXPECT_DEATH(target.IsApproximately(source, 1), "a moved-from quaternion");
  // NOLINTEND(bugprone-use-after-move)
}
#endif

}  // namespace
}  // namespace lum

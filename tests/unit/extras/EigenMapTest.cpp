#include <gtest/gtest.h>

#include <Eigen/Geometry>
#include <array>
#include <cmath>
#include <random>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "extras/EigenMap.h"
#include "tests/support/MovedFrom.h"
#include "tests/support/Values.h"

namespace lum {
namespace {

using test::AreSameBits;
using test::InverseValuesOf;
using test::Values;
using test::ValuesOf;

template <class Value>
concept IsMapped = requires {
  AsEigen(std::declval<Value>());
};
static_assert(IsMapped<Vector<float, 3>&>);
static_assert(IsMapped<Point<double, 2> const&>);
static_assert(IsMapped<Matrix<float> const&>);
static_assert(!IsMapped<Vector<float, 3>>, "no temporary is mapped");
static_assert(!IsMapped<Vector<float, 3> const>, "no temporary is mapped");
static_assert(!IsMapped<Point<double, 2>>, "no temporary is mapped");
static_assert(!IsMapped<Matrix<float>>, "no temporary is mapped");
static_assert(!IsMapped<Matrix<double> const>, "no temporary is mapped");

template <class Value>
using MapOf = decltype(AsEigen(std::declval<Value&>()));
static_assert(std::is_same_v<MapOf<Vector<float, 3>>, Eigen::Map<Eigen::Matrix<float, 3, 1>>>);
static_assert(std::is_same_v<MapOf<Vector<double, 2> const>, Eigen::Map<Eigen::Matrix<double, 2, 1> const>>);
static_assert(std::is_same_v<MapOf<Point<float, 2>>, Eigen::Map<Eigen::Matrix<float, 2, 1>>>);
static_assert(std::is_same_v<MapOf<Point<double, 3> const>, Eigen::Map<Eigen::Matrix<double, 3, 1> const>>);
static_assert(std::is_same_v<MapOf<Matrix<float>>, Eigen::Map<Eigen::Matrix<float, 4, 4> const>>);
static_assert(std::is_same_v<MapOf<Matrix<double> const>, Eigen::Map<Eigen::Matrix<double, 4, 4> const>>);

template <class Expression>
concept IsVector = requires(Expression const& i_expression) {
  ToVector(i_expression);
};
static_assert(IsVector<Eigen::Vector3f>);
static_assert(IsVector<Eigen::RowVector2d>);
static_assert(!IsVector<Eigen::Vector4f>);
static_assert(!IsVector<Eigen::VectorXf>);
static_assert(!IsVector<Eigen::Vector3i>);
static_assert(!IsVector<Eigen::Matrix<long double, 3, 1>>);
static_assert(!IsVector<Eigen::Matrix2f>);

template <class Source>
concept IsTransform = requires(Source const& i_source) {
  FromEigen(i_source);
};
static_assert(IsTransform<Eigen::Matrix4f>);
static_assert(IsTransform<Eigen::Affine3d>);
static_assert(IsTransform<Eigen::Isometry3f>);
static_assert(IsTransform<Eigen::Projective3d>);
static_assert(IsTransform<Eigen::AffineCompact3f>);
static_assert(!IsTransform<Eigen::Matrix3f>, "a quaternion in double precision would be rounded");
static_assert(!IsTransform<Eigen::MatrixXf>, "a quaternion in double precision would be rounded");
static_assert(!IsTransform<Eigen::Matrix4i>, "a quaternion in double precision would be rounded");
static_assert(!IsTransform<Eigen::Affine2f>, "a quaternion in double precision would be rounded");
static_assert(!IsTransform<Eigen::Quaterniond>, "a quaternion in double precision would be rounded");

TEST(EigenMap, OfAVectorOrPointIsTheValueItself) {
  Vector<float, 3> vector(1, 2, 3);
  EXPECT_EQ(AsEigen(vector).data(), vector.data());
  AsEigen(vector) *= 2;
  AsEigen(vector).y() = 7;
  EXPECT_EQ(vector, (Vector<float, 3>(2, 7, 6)));
  Point<double, 2> point(3, 4);
  EXPECT_EQ(AsEigen(std::as_const(point)).data(), point.data());
  EXPECT_EQ(AsEigen(std::as_const(point)).norm(), 5);
  AsEigen(point).reverseInPlace();
  EXPECT_EQ(point, (Point<double, 2>(4, 3)));
}

TEST(EigenMap, OfAnArrayHasItsElementsAsColumns) {
  std::vector<Point<float, 3>> points{{1, 2, 3}, {3, 6, 5}};
  auto columns = AsEigen(std::span(points));
  static_assert(std::is_same_v<decltype(columns), Eigen::Map<Eigen::Matrix<float, 3, Eigen::Dynamic>>>);
  EXPECT_EQ(columns.data(), points[0].data());
  EXPECT_EQ(ToPoint(columns.rowwise().mean()), (Point<float, 3>(2, 4, 4)));
  columns.colwise() -= Eigen::Vector3f(1, 1, 1);
  EXPECT_EQ(points[1], (Point<float, 3>(2, 5, 4)));

  std::array<Vector<double, 2>, 3> const vectors{};
  auto const zeros = AsEigen(std::span(vectors));
  static_assert(
      std::is_same_v<decltype(zeros), Eigen::Map<Eigen::Matrix<double, 2, Eigen::Dynamic> const> const>);
  EXPECT_EQ(zeros.cols(), 3);
  EXPECT_TRUE(zeros.isZero(0));
  EXPECT_EQ(AsEigen(std::span<Vector<float, 3>>()).cols(), 0);
}

TEST(EigenMap, OfATransformIsItsObject) {
  auto const matrix = Matrix<double>::Translate(5, 6, 7);
  auto const map = AsEigen(matrix);
  EXPECT_EQ(map.data(), matrix.GetAsPtr());
  EXPECT_EQ(matrix.GetMatrix().GetReferenceCount(), 1U) << "a map does not own the object";
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) EXPECT_EQ(map(row, column), matrix(row, column));
  }
  EXPECT_EQ(map * Eigen::Vector4d(1, 1, 1, 1), Eigen::Vector4d(6, 7, 8, 1));
}

TEST(EigenMap, StaysWithTheObjectThatWasMapped) {
  auto matrix = Matrix<float>::Translate(1, 2, 3);
  auto const map = AsEigen(matrix);
  auto const shares = matrix;
  matrix.GetMutableInternal()->translation().x() = 9;
  EXPECT_EQ(matrix(0, 3), 9);
  EXPECT_EQ(map(0, 3), 1);
  EXPECT_EQ(map.data(), shares.GetAsPtr());
  auto const moved = std::move(matrix);
  auto const map_of_moved = AsEigen(moved);
  matrix = shares;
  EXPECT_EQ(map_of_moved(0, 3), 9);
}

TEST(EigenMap, ShowsWhatIsWrittenToItsObject) {
  auto matrix = Matrix<double>::Translate(1, 2, 3);
  auto const map = AsEigen(matrix);
  matrix.GetMutableInternal()->translation().y() = 8;
  EXPECT_EQ(map(1, 3), 8) << "the matrix is not shared, so it keeps its object";
}

TEST(EigenMap, VectorsAndPointsComeFromExpressions) {
  Eigen::Vector3d const a(1, 2, 3);
  Eigen::Vector3d const b(0, 1, 0);
  EXPECT_EQ(ToVector(a + 2 * b), (Vector<double, 3>(1, 4, 3)));
  EXPECT_EQ(ToVector(a.cross(b)), (Vector<double, 3>(-3, 0, 1)));
  EXPECT_EQ(ToVector(a.transpose()), (Vector<double, 3>(1, 2, 3)));
  EXPECT_EQ(ToPoint(a.cast<float>().head<2>()), (Point<float, 2>(1, 2)));
  Eigen::Matrix4d const rows =
      (Eigen::Matrix4d() << 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15).finished();
  EXPECT_EQ(ToPoint(rows.row(1).tail<3>()), (Point<double, 3>(5, 6, 7)));
  EXPECT_EQ(ToPoint(rows.block<3, 1>(0, 3)), (Point<double, 3>(3, 7, 11)));
}

TEST(EigenMap, RoundTripsKeepTheBits) {
  constexpr unsigned seed = 33;
  std::mt19937 random(seed);
  for (int i = 0; i < 100; ++i) {
    auto const values = test::MakeRandomValues<float>(random);
    Matrix<float> const matrix(values.data());
    auto const back = FromEigen(AsEigen(matrix));
    EXPECT_NE(back.GetAsPtr(), matrix.GetAsPtr());
    EXPECT_TRUE(AreSameBits(ValuesOf(back), values)) << "seed " << seed;
    EXPECT_TRUE(AreSameBits(InverseValuesOf(back), InverseValuesOf(matrix))) << "seed " << seed;
    Vector<float, 3> const vector(values[0], values[1], values[2]);
    EXPECT_EQ(ToVector(AsEigen(vector)), vector) << "seed " << seed;
  }
}

TEST(EigenMap, TransformsComeFromEveryMode) {
  Eigen::Translation3d const move(5, 6, 7);
  auto const expected = Matrix<double>::Translate(5, 6, 7);
  EXPECT_EQ(FromEigen(Eigen::Isometry3d(move)), expected);
  EXPECT_EQ(FromEigen(Eigen::Affine3d(move)), expected);
  EXPECT_EQ(FromEigen(Eigen::AffineCompact3d(move)), expected);
  EXPECT_EQ(FromEigen(Eigen::Projective3d(move)), expected);
  EXPECT_EQ(FromEigen(Eigen::Affine3d(move).matrix()), expected);
  EXPECT_EQ(InverseValuesOf(FromEigen(Eigen::Affine3d(move))), InverseValuesOf(expected));
}

TEST(EigenMap, TransformsComeFromEitherOrder) {
  using RowMajor = Eigen::Matrix<float, 4, 4, Eigen::RowMajor>;
  RowMajor const rows = (RowMajor() << 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17).finished();
  auto const matrix = FromEigen(rows);
  EXPECT_EQ(matrix(0, 1), 2);
  EXPECT_EQ(matrix(3, 0), 13) << "row 3 is copied too";
  EXPECT_EQ(FromEigen(rows.transpose())(0, 1), 5);
  Eigen::Transform<float, 3, Eigen::Affine, Eigen::RowMajor> transform;
  transform = Eigen::Translation3f(5, 6, 7);
  EXPECT_EQ(FromEigen(transform), Matrix<float>::Translate(5, 6, 7));
}

TEST(EigenMap, ATransformKeepsRowThreeWhereItHasOne) {
  Eigen::Affine3f transform(Eigen::Translation3f(5, 6, 7));
  transform.matrix()(3, 0) = 2;
  EXPECT_EQ(FromEigen(transform)(3, 0), 2);
  Eigen::AffineCompact3f const without(Eigen::Translation3f(5, 6, 7));
  EXPECT_EQ(FromEigen(without)(3, 3), 1);
}

TEST(EigenMap, TheIdentitysValuesAreEqualButNotKnown) {
  auto const matrix = FromEigen(Eigen::Affine3d::Identity());
  EXPECT_EQ(matrix, Matrix<double>());
  EXPECT_FALSE(matrix.IsKnownIdentity());
}

TEST(EigenMap, AMatrixWithoutInverseComesBackWithOneThatIsNotFinite) {
  auto const flat = Matrix<float>::Scale(1, 1, 0);
  ASSERT_FALSE(flat.HasInverse());
  auto const back = FromEigen(AsEigen(flat));
  EXPECT_EQ(back, flat);
  EXPECT_FALSE(std::isfinite(InverseValuesOf(back)[10]));
}

TEST(EigenMap, AGivenInverseIsKept) {
  Eigen::Isometry3f const motion =
      Eigen::Translation3f(1, 2, 3) * Eigen::AngleAxisf(0.3F, Eigen::Vector3f::UnitY());
  Eigen::Isometry3f const inverse = motion.inverse();
  auto const matrix = FromEigen(motion, inverse);
  EXPECT_EQ(AsEigen(matrix), motion.matrix());
  EXPECT_EQ(matrix.GetMatrixInverse()->matrix(), inverse.matrix());
  auto const unrelated = FromEigen(motion, Eigen::Matrix4f::Constant(2));
  EXPECT_EQ(InverseValuesOf(unrelated)[6], 2) << "nothing is checked";
}

TEST(EigenMap, QuaternionsPassBothWays) {
  Eigen::Quaternion<float> const quaternion(4, 1, 2, 3);
  EXPECT_EQ(FromEigen(quaternion).GetCoefficients(), (std::array<float, 4>{1, 2, 3, 4}));
  EXPECT_EQ(ToEigen(FromEigen(quaternion)).coeffs(), quaternion.coeffs());
  EXPECT_FALSE(FromEigen(Eigen::Quaternionf::Identity()).IsKnownIdentity());
  std::array<float, 4> const numbers{1, 2, 3, 4};
  EXPECT_EQ(FromEigen(Eigen::Map<Eigen::Quaternionf const>(numbers.data())).GetCoefficients(), numbers);
}

#ifndef NDEBUG
TEST(EigenMapDeathTest, AssertionsCatchAMovedFromValue) {
  auto const matrix = test::MovedFrom(Matrix<float>::Scale(2));
  auto const quaternion = test::MovedFrom(Quaternionf({0, 0, 1}, 1));
  EXPECT_DEATH(AsEigen(matrix), "Assertion");
  EXPECT_DEATH(ToEigen(quaternion), "Assertion");
}
#endif

}  // namespace
}  // namespace lum

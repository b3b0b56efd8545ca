#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <random>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "extras/Hash.h"
#include "geometry/CubeElementIds.h"
#include "geometry/CubeSpaceIds.h"
#include "tests/support/MovedFrom.h"
#include "tests/support/Values.h"

namespace lum {
namespace {

template <class Value>
std::size_t HashOf(Value const& i_value) {
  return std::hash<Value>()(i_value);
}

struct Unhashable {};
static_assert(!internal::Hashable<Unhashable>);
static_assert(!internal::Hashable<optional<Unhashable>>);
static_assert(!internal::Hashable<Range<Unhashable>>);
static_assert(internal::Hashable<CubeElementIds::Vertex>);
static_assert(internal::Hashable<CubeElementIds::Edge>);
static_assert(internal::Hashable<CubeElementIds::Face>);
static_assert(internal::Hashable<CubeElementIds::Cube>);
static_assert(internal::Hashable<CubeSpaceIds::Orientation>);
static_assert(internal::Hashable<CubeSpaceIds::Plane>);
static_assert(internal::Hashable<CubeSpaceIds::Volume>);
static_assert(internal::Hashable<CanonicalCubeElementIds::CanonicalEdge>);

TEST(Hash, OfEqualValuesIsEqual) {
  EXPECT_EQ(HashOf(Vector<float, 3>(1, 2, 3)), HashOf(Vector<float, 3>(1, 2, 3)));
  EXPECT_EQ(HashOf(Point<double, 2>(1, 2)), HashOf(Point<double, 2>(1, 2)));
  EXPECT_EQ(HashOf(Plane<float>(0, 0, 1, 4)), HashOf(Plane<float>(0, 0, 2, 8)));
  EXPECT_EQ(HashOf(Range<double>(1, 2)), HashOf(Range<double>(1, 2)));
  EXPECT_EQ(HashOf(Matrix<float>()), HashOf(Matrix<float>::Scale(1))) << "equal, but not the same object";
  EXPECT_EQ(HashOf(Quaternionf()), HashOf(Quaternionf({1, 0, 0}, 0)));
}

TEST(Hash, OfZerosOfEitherSignIsEqualWhereZerosAreEqual) {
  EXPECT_EQ(HashOf(Vector<float, 2>(0, 0)), HashOf(Vector<float, 2>(-0.0F, -0.0F)));
  EXPECT_EQ(HashOf(Point<double, 3>(0, 1, 0)), HashOf(Point<double, 3>(-0.0, 1, -0.0)));
  EXPECT_EQ(HashOf(Plane<double>(1, 0, 0, 0)), HashOf(Plane<double>(1, -0.0, -0.0, -0.0)));
  EXPECT_EQ(HashOf(Range<float>(0, 0)), HashOf(Range<float>(-0.0F, -0.0F)));
  Quaternionf const quaternion({1, 0, 0}, 0);
  Quaternionf const negative({-1, -1, -1}, 0);
  ASSERT_TRUE(EqualCoefficients()(quaternion, negative));
  ASSERT_TRUE(std::signbit(negative.GetCoefficients()[0]));
  EXPECT_EQ(HashOf(quaternion), HashOf(negative));

  Matrix<float> const zero = Matrix<float>::Translate(0, 0, 0);
  Matrix<float> const negative_zero = Matrix<float>::Translate(-0.0F, 0, 0);
  ASSERT_FALSE(zero == negative_zero);
  EXPECT_NE(HashOf(zero), HashOf(negative_zero));
}

TEST(Hash, DependsOnEveryNumberAndOnItsPlace) {
  std::unordered_set<std::size_t> const vectors = {
      HashOf(Vector<float, 3>()),        HashOf(Vector<float, 3>(1, 0, 0)),
      HashOf(Vector<float, 3>(0, 1, 0)), HashOf(Vector<float, 3>(0, 0, 1)),
      HashOf(Vector<float, 3>(1, 1, 0)), HashOf(Vector<float, 3>(1, 1, 1))};
  EXPECT_EQ(vectors.size(), 6U);
  std::unordered_set<std::size_t> const planes = {
      HashOf(Plane<float>(1, 0, 0, 1)), HashOf(Plane<float>(0, 1, 0, 1)), HashOf(Plane<float>(0, 0, 1, 1)),
      HashOf(Plane<float>(1, 0, 0, 2))};
  EXPECT_EQ(planes.size(), 4U);
  EXPECT_NE(HashOf(Range<int>(1, 2)), HashOf(Range<int>(2, 1)));
  EXPECT_NE(HashOf(Range<int>(1, 2)), HashOf(Range<int>(1, 3)));

  std::unordered_set<std::size_t> matrices;
  for (std::size_t i = 0; i < 16; ++i) {
    test::Values<double> values{};
    values[i] = 1;
    matrices.insert(HashOf(Matrix<double>(values.data())));
  }
  EXPECT_EQ(matrices.size(), 16U);
}

TEST(Hash, OfAMatrixIgnoresItsInverse) {
  Matrix<double> const with_inverse = Matrix<double>::Scale(2);
  Matrix<double> const without(with_inverse.GetMatrix(), {});
  ASSERT_TRUE(with_inverse == without);
  EXPECT_EQ(HashOf(with_inverse), HashOf(without));
}

TEST(Hash, OfAnOptionalIsThatOfItsValue) {
  using O = optional<Vector<float, 2>>;
  EXPECT_EQ(HashOf(O(Vector<float, 2>(1, 2))), HashOf(Vector<float, 2>(1, 2)));
  EXPECT_EQ(HashOf(O()), HashOf(O(nullopt)));
  EXPECT_NE(HashOf(optional<int>()), HashOf(optional<int>(0)));
}

TEST(Hash, AcceptsNaNs) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  Vector<double, 2> const vector(nan, 1);
  EXPECT_EQ(HashOf(vector), HashOf(vector));
  Matrix<double> const matrix = Matrix<double>::Translate(nan, 0, 0);
  std::unordered_set<Matrix<double>> const matrices = {matrix};
  EXPECT_TRUE(matrices.contains(matrix)) << "matrices compare their bytes";
  std::unordered_set<Vector<double, 2>> const vectors = {vector};
  EXPECT_FALSE(vectors.contains(vector)) << "a NaN equals nothing";
}

TEST(Hash, OfQuaternionsTellsOppositeCoefficientsApart) {
  Quaternionf const quaternion({0, 0, 0}, 0);
  Quaternionf const opposite({0, 0, 0}, 2 * std::numbers::pi_v<float>);
  ASSERT_EQ(opposite.GetCoefficients(), (std::array<float, 4>{0, 0, 0, -1}));
  EXPECT_FALSE(EqualCoefficients()(quaternion, opposite)) << "the same rotation";
  EXPECT_NE(HashOf(quaternion), HashOf(opposite));
  Quaternionf const nan({0, 0, 1}, std::numeric_limits<float>::quiet_NaN());
  EXPECT_FALSE(EqualCoefficients()(nan, nan));
}

TEST(Hash, MakesValuesKeysOfContainers) {
  std::unordered_map<Point<float, 3>, int> corners;
  for (int i = 0; i < 8; ++i) {
    auto const bit = [i](int i_axis) { return static_cast<float>((i >> i_axis) & 1); };
    corners[{bit(0), bit(1), bit(2)}] = i;
  }
  EXPECT_EQ(corners.size(), 8U);
  EXPECT_EQ((corners[{1, 0, 1}]), 5);
  EXPECT_EQ((corners[{-0.0F, -0.0F, 1}]), 4);

  std::unordered_set<Quaternionf, std::hash<Quaternionf>, EqualCoefficients> rotations;
  rotations.insert(Quaternionf());
  rotations.insert(Quaternionf({0, 0, 1}, 0));
  rotations.insert(Quaternionf({0, 0, 1}, 1));
  EXPECT_EQ(rotations.size(), 2U);

  std::unordered_set<CubeElement> const elements = {CubeElementIds::Vertex5, CubeElementIds::Edge13,
                                                    CubeElement(5)};
  EXPECT_EQ(elements.size(), 2U);
  std::unordered_set<CubeSpace> const spaces = {CubeSpaceIds::AxisX, CubeSpaceIds::PlaneXY, CubeSpace(3)};
  EXPECT_EQ(spaces.size(), 2U);
  std::unordered_set<CanonicalCubeElement> const canonical = {CanonicalCubeElement(1),
                                                              CanonicalCubeElement(CubeElement(8))};
  EXPECT_EQ(canonical.size(), 1U);
}

// 2^16 random hashes would occupy about 1 - 1/e of 2^16 buckets: 41,400, with a deviation of some hundreds.
TEST(Hash, SpreadsAGridOverTheLowBits) {
  std::unordered_set<std::size_t> low_bits;
  std::unordered_set<std::size_t> hashes;
  for (int x = 0; x < 256; ++x) {
    for (int y = 0; y < 256; ++y) {
      std::size_t const hash = HashOf(Vector<float, 2>(static_cast<float>(x), static_cast<float>(y)));
      hashes.insert(hash);
      low_bits.insert(hash & 0xffffU);
    }
  }
  EXPECT_EQ(hashes.size(), 65536U);
  EXPECT_GT(low_bits.size(), 40000U);
}

TEST(Hash, OneBitOfANumberChangesHalfOfItsBits) {
  constexpr unsigned seed = 31;
  std::mt19937 random(seed);
  int changed = 0;
  constexpr int rounds = 1000;
  for (int i = 0; i < rounds; ++i) {
    Vector<float, 3> vector;
    for (float& component : vector) component = std::uniform_real_distribution<float>(1, 2)(random);
    std::size_t const before = HashOf(vector);
    float& component = vector[random() % 3];
    component = std::bit_cast<float>(std::bit_cast<std::uint32_t>(component) ^ (1U << random() % 23));
    changed += std::popcount(before ^ HashOf(vector));
  }
  EXPECT_NEAR(static_cast<double>(changed) / rounds, 32, 1) << "seed " << seed;
}

#ifndef NDEBUG
TEST(HashDeathTest, AssertionsCatchAMovedFromValue) {
  auto const matrix = test::MovedFrom(Matrix<float>::Scale(2));
  auto const quaternion = test::MovedFrom(Quaternionf({0, 0, 1}, 1));
  EXPECT_DEATH(HashOf(matrix), "Assertion");
  EXPECT_DEATH(HashOf(quaternion), "Assertion");
}
#endif

}  // namespace
}  // namespace lum

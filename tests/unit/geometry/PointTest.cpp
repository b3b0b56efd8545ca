#include <gtest/gtest.h>

#include <type_traits>

#include "geometry/Point.h"

namespace lum {
namespace {

using P = Point<double, 3>;
using V = Vector<double, 3>;
static_assert(sizeof(Point<float, 3>) == 3 * sizeof(float));
static_assert(sizeof(Point<double, 2>) == 2 * sizeof(double));
static_assert(std::is_trivially_copyable_v<Point<float, 3>>);
static_assert(!std::is_convertible_v<V, P>, "a direction is not a position");
static_assert(sizeof(Origin) == 1);
static_assert(P() == P(Origin));
static_assert(P(Origin) == P(0, 0, 0));
static_assert(P(1, 2, 3).GetX() == 1);
static_assert(P(1, 2, 3).GetY() == 2);
static_assert(P(1, 2, 3).GetZ() == 3);
static_assert(P(1, 2, 3) - P(1, 1, 1) == V(0, 1, 2));
static_assert(P(1, 2, 3) + V(1, 1, 1) == P(2, 3, 4));
static_assert(P(1, 2, 3) - V(1, 1, 1) == P(0, 1, 2));
static_assert(P(1, 2, 3) - Origin == V(1, 2, 3));
static_assert(Origin + V(1, 2, 3) == P(1, 2, 3));
static_assert(P(1, 2, 3) != P(1, 2, 4));

TEST(Point, BindsToItsCoordinatesInOrder) {
  Point<float, 2> point(1, 2);
  auto& [x, y] = point;
  x = 5;
  EXPECT_EQ(point, (Point<float, 2>(5, 2)));
  EXPECT_EQ(y, point[1]);
  EXPECT_EQ(point.end() - point.begin(), 2);
}

TEST(Point, BindsFromAConstantAndATemporary) {
  Point<double, 3> const point(1, 2, 3);
  auto const& [x, y, z] = point;
  EXPECT_EQ(x + 10 * y + 100 * z, 321);
  EXPECT_EQ(point.end() - point.begin(), 3);
  auto [a, b] = Point<float, 2>(4, 5);
  EXPECT_EQ(a + 10 * b, 54);
}

TEST(Point, ComparesEveryCoordinate) {
  EXPECT_TRUE(P(1, 2, 3) == P(1, 2, 3));
  EXPECT_FALSE(P(1, 2, 3) == P(0, 2, 3));
  EXPECT_FALSE(P(1, 2, 3) == P(1, 0, 3));
  EXPECT_FALSE(P(1, 2, 3) == P(1, 2, 0));
  EXPECT_TRUE((Point<float, 2>(1, 2) != Point<float, 2>(1, 3)));
}

TEST(Point, ConvertsToTheOtherPrecisionWhenAsked) {
  static_assert(!std::is_convertible_v<P, Point<float, 3>>);
  static_assert(!std::is_convertible_v<Point<float, 3>, P>);
  EXPECT_EQ((Point<float, 3>(P(0.1, 2, -3))), (Point<float, 3>(0.1F, 2, -3)));
  EXPECT_EQ((Point<double, 2>(Point<float, 2>(0.1F, 2))), (Point<double, 2>(double{0.1F}, 2)));
}

TEST(Point, MovesByVectors) {
  Point<float, 3> point = Origin;
  point += Vector<float, 3>(1, 2, 3);
  point -= Vector<float, 3>(0, 1, 0);
  EXPECT_EQ(point, (Point<float, 3>(1, 1, 3)));
}

}  // namespace
}  // namespace lum

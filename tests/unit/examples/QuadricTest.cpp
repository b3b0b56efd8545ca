#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <random>

#include "surface/Quadric.h"

namespace surface {
namespace {

using Point = Quadric::Point;
using Vector = Quadric::Vector;

void ExpectNear(Point const& i_point, Point const& i_expected) {
  EXPECT_LT(lum::GetLength(i_point - i_expected), 1e-12)
      << i_point[0] << ", " << i_point[1] << ", " << i_point[2];
}

TEST(Quadric, OnePlaneGivesTheMassPoint) {
  Quadric quadric;
  quadric.Add({0.2, 0.1, 0.5}, {0, 0, 1});
  quadric.Add({0.6, 0.3, 0.5}, {0, 0, 1});
  auto const [point, rank, is_off] = quadric.Minimise();
  ExpectNear(point, {0.4, 0.2, 0.5});
  EXPECT_EQ(rank, 1);
  EXPECT_FALSE(is_off);
}

TEST(Quadric, TwoPlanesMeetInAnEdge) {
  Quadric quadric;
  quadric.Add({0.2, 0.1, 0.5}, {0, 0, 1});
  quadric.Add({0.3, 0.4, 0.9}, {1, 0, 0});
  auto const [point, rank, is_off] = quadric.Minimise();
  ExpectNear(point, {0.3, 0.25, 0.5});
  EXPECT_EQ(rank, 2);
  EXPECT_FALSE(is_off);
}

TEST(Quadric, ThreePlanesMeetInACorner) {
  Quadric quadric;
  quadric.Add({0.2, 0.1, 0.5}, {0, 0, 1});
  quadric.Add({0.3, 0.4, 0.9}, {1, 0, 0});
  quadric.Add({0.9, 0.7, 0.1}, {0, -1, 0});
  auto const [point, rank, is_off] = quadric.Minimise();
  ExpectNear(point, {0.3, 0.7, 0.5});
  EXPECT_EQ(rank, 3);
  EXPECT_FALSE(is_off);
}

// The edge x - y = 0.9, z = 0.5 cuts a corner of the cell. Its point closest to the mass point has x > 1.
TEST(Quadric, AnEdgeOutsideAtItsMinimumIsFollowedIntoTheCell) {
  double const root = std::sqrt(0.5);
  Quadric quadric;
  quadric.Add({0.95, 0.05, 0.7}, {root, -root, 0});
  quadric.Add({0.95, 0.05, 0.7}, {root, -root, 0});
  quadric.Add({0.9, 1, 0.5}, {0, 0, 1});
  quadric.Add({0.9, 1, 0.5}, {0, 0, 1});
  quadric.Add({0.9, 1, 0.5}, {0, 0, 1});
  auto const [point, rank, is_off] = quadric.Minimise();
  EXPECT_EQ(rank, 2);
  EXPECT_FALSE(is_off);
  ExpectNear(point, {1, 0.1, 0.5});
}

TEST(Quadric, AnEdgeThatDoesNotPassThroughTheCellIsOff) {
  double const root = std::sqrt(0.5);
  Quadric quadric;
  quadric.Add({0.5, 0.5, 0.9}, {root, 0, root});
  quadric.Add({0.7, 0.5, 0.9}, {-root, 0, root});
  auto const [point, rank, is_off] = quadric.Minimise();
  EXPECT_EQ(rank, 2) << "they meet in x = 0.6, z = 0.8";
  EXPECT_FALSE(is_off);
  ExpectNear(point, {0.6, 0.5, 0.8});

  Quadric outside;
  outside.Add({0.5, 0.5, 0.95}, {-root, 0, root});
  outside.Add({0.7, 0.5, 0.95}, {root, 0, root});
  auto const [moved, moved_rank, is_moved_off] = outside.Minimise();
  EXPECT_EQ(moved_rank, 2) << "they meet in x = 0.6, z = 1.05";
  EXPECT_TRUE(is_moved_off);
  ExpectNear(moved, {0.6, 0.5, 1});
}

TEST(Quadric, TheMinimumIsInTheCellAndNoPointOfTheCellIsBetter) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> in_cell(0, 1);
  std::normal_distribution<double> normal;
  int moved = 0;
  for (int round = 0; round < 2000; ++round) {
    Quadric quadric;
    std::array<Point, 4> points;
    std::array<Vector, 4> normals;
    for (std::size_t i = 0; i < points.size(); ++i) {
      points[i] = {in_cell(random), in_cell(random), in_cell(random)};
      normals[i] = lum::GetNormalized(Vector(normal(random), normal(random), normal(random)));
      quadric.Add(points[i], normals[i]);
    }
    auto const get_cost = [&](Point const& i_point) {
      double cost = 0;
      for (std::size_t i = 0; i < points.size(); ++i) {
        double const distance = lum::Dot(normals[i], i_point - points[i]);
        cost += distance * distance;
      }
      return cost;
    };
    auto const [point, rank, is_off] = quadric.Minimise();
    for (double const coordinate : point) {
      ASSERT_GE(coordinate, 0);
      ASSERT_LE(coordinate, 1);
      moved += coordinate == 0 || coordinate == 1 ? 1 : 0;
    }
    if (rank < 3 || is_off) continue;
    for (int trial = 0; trial < 20; ++trial) {
      ASSERT_LE(get_cost(point), get_cost({in_cell(random), in_cell(random), in_cell(random)}) + 1e-3);
    }
  }
  EXPECT_GT(moved, 100) << "too few minima on the border of the cell";
}

}  // namespace
}  // namespace surface

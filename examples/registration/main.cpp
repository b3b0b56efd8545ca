// registration OUTPUT.svg [--points N] [--noise SIGMA] [--angle DEGREES] [--seed N]
//
// Brings two clouds of points of one surface together that overlap in part, by iterating over closest points,
// and plots how it converges. Fails if it ends elsewhere than where the clouds were taken apart.

#include <geometry/Matrix.h>
#include <geometry/PseudoInverse.h>
#include <geometry/Quaternion.h>

#include <Eigen/Core>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <nanoflann.hpp>
#include <numbers>
#include <random>
#include <stdexcept>
#include <vector>

#include "common/Arguments.h"
#include "common/OutputFile.h"
#include "common/Plot.h"

namespace {

using Matrix = lum::Matrix<float>;
using Point = lum::Point<float, 3>;
using Vector = lum::Vector<float, 3>;

// In the form in which the search tree reads points.
struct Cloud {
  std::vector<Point> points;
  std::size_t kdtree_get_point_count() const { return points.size(); }
  float kdtree_get_pt(std::size_t i_index, std::size_t i_axis) const { return points[i_index][i_axis]; }
  template <class Box>
  bool kdtree_get_bbox(Box&) const {
    return false;
  }
};
using Tree = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<float, Cloud>, Cloud, 3>;

// A pebble with bumps, like no other way round, seen from the side where i_side * x is above -1/2.
Cloud Sample(std::size_t i_count, float i_side, double i_noise, std::mt19937& io_random) {
  std::normal_distribution<float> normal;
  Cloud cloud;
  while (cloud.points.size() < i_count) {
    Vector const d = lum::GetNormalized(Vector{normal(io_random), normal(io_random), normal(io_random)});
    float const radius =
        1 + 0.25F * std::sin(4 * d[0] + 1) + 0.25F * std::cos(5 * d[1] + d[2]) + 0.25F * d[2];
    if (i_side * d[0] < -0.5F) continue;
    cloud.points.push_back(Point() + d * (radius + static_cast<float>(i_noise) * normal(io_random)));
  }
  return cloud;
}

struct Pair {
  float squared_distance;
  Point from;
  Point to;
};

// The nearer ones of the pairs of closest points; the others are where the clouds do not overlap.
std::vector<Pair> FindPairs(std::vector<Point> const& i_points, Cloud const& i_cloud, Tree const& i_tree) {
  std::vector<Pair> pairs;
  for (Point const& point : i_points) {
    std::uint32_t nearest = 0;
    float squared_distance = 0;
    i_tree.knnSearch(point.data(), 1, &nearest, &squared_distance);
    pairs.push_back({squared_distance, point, i_cloud.points[nearest]});
  }
  std::size_t const kept = pairs.size() * 3 / 5;
  std::nth_element(
      pairs.begin(), pairs.begin() + static_cast<std::ptrdiff_t>(kept), pairs.end(),
      [](Pair const& i_a, Pair const& i_b) { return i_a.squared_distance < i_b.squared_distance; });
  pairs.resize(kept);
  return pairs;
}

// The rigid motion that takes the pairs closest together: about their middles, the rotation in the polar
// decomposition of the sum of to * from^T.
Matrix Align(std::vector<Pair> const& i_pairs) {
  auto const count = static_cast<float>(i_pairs.size());
  Vector from;
  Vector to;
  for (Pair const& pair : i_pairs) {
    from += (pair.from - lum::Origin) / count;
    to += (pair.to - lum::Origin) / count;
  }
  std::array<Vector, 3> columns;
  for (Pair const& pair : i_pairs) {
    Vector const arm = pair.from - lum::Origin - from;
    for (std::size_t axis = 0; axis < 3; ++axis) columns[axis] += (pair.to - lum::Origin - to) * arm[axis];
  }
  Matrix const covariance(lum::Origin, columns[0], columns[1], columns[2]);
  Eigen::Matrix3d const block = covariance.GetMatrix()->matrix().topLeftCorner<3, 3>().cast<double>();
  if (lum::CalculatePseudoInverse(block, 1e-6).rank < 2)
    throw std::runtime_error("the pairs fix no rotation");
  return Matrix::Translate(to) * lum::Quaternionf(covariance).GetAsMatrix() * Matrix::Translate(-from);
}

void Run(common::CommandLine const& i_line) {
  i_line.RequirePaths(
      1, "usage: registration OUTPUT.svg [--points N] [--noise SIGMA] [--angle DEGREES] [--seed N]");
  common::OutputFile file(i_line.GetPaths()[0]);
  std::size_t const count = i_line.GetCount("--points", 1000000, 4000);
  double const noise = i_line.GetNumber("--noise", 0.005);
  if (noise < 0 || noise > 1) throw std::invalid_argument("--noise takes a number from 0 to 1");
  double const angle = std::remainder(i_line.GetNumber("--angle", 35), 360.0) * std::numbers::pi / 180;
  std::mt19937 random(static_cast<unsigned>(i_line.GetCount("--seed", 1000000, 1)));
  lum::Quaternionf const turn(lum::GetNormalized(Vector(1, 2, 3)), static_cast<float>(angle));
  Matrix const truth = Matrix::Translate(0.3F, -0.2F, 0.4F) * turn.GetAsMatrix();
  Cloud const target = Sample(count, 1, noise, random);
  std::vector<Point> const home = Sample(count, -1, noise, random).points;
  std::vector<Point> source(count);
  lum::TransformPoints(truth.GetInverse(), home, source);

  Tree const tree(3, target);
  Matrix estimate;
  std::vector<Point> moved(count);
  std::vector<common::Curve> curves = {{"between pairs", "#c05a1c", {}}, {"from the truth", "#205a9e", {}}};
  std::vector<double>& apart = curves[0].values;
  for (int step = 0; step < 200; ++step) {
    lum::TransformPoints(estimate, source, moved);
    std::vector<Pair> const pairs = FindPairs(moved, target, tree);
    double squares = 0;
    for (Pair const& pair : pairs) squares += static_cast<double>(pair.squared_distance);
    apart.push_back(std::sqrt(squares / static_cast<double>(pairs.size())));
    squares = 0;
    for (std::size_t i = 0; i < count; ++i)
      squares += static_cast<double>(GetSquaredLength(moved[i] - home[i]));
    curves[1].values.push_back(std::sqrt(squares / static_cast<double>(count)));
    if (step > 0 && std::abs(apart[apart.size() - 2] - apart.back()) < 1e-5 * apart.back()) break;
    estimate = Align(pairs) * estimate;
  }
  common::WritePlot("Root mean square distance of the points", curves, file);
  file.Publish();

  Matrix const error = estimate * truth.GetInverse();
  auto const [x, y, z, w] = lum::Quaternionf(error).GetCoefficients();
  float const off = 2 * std::atan2(std::hypot(x, y, z), std::abs(w)) * 180 / std::numbers::pi_v<float>;
  std::printf("%zu iterations, pairs %.4f apart\n", apart.size() - 1, apart.back());
  std::printf("rotation off by %.3f degrees, translation by %.4f\n", static_cast<double>(off),
              static_cast<double>(GetLength(error * Point() - Point())));
  if (off > 1) throw std::runtime_error("the clouds settle in a wrong place");
}

}  // namespace

int main(int i_count, char** ip_words) {
  try {
    Run(common::CommandLine(i_count, ip_words, {"--points", "--noise", "--angle", "--seed"}));
    return 0;
  } catch (std::exception const& exception) {
    std::fprintf(stderr, "registration: %s\n", exception.what());
    return 1;
  }
}

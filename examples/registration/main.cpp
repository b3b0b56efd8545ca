// registration OUTPUT.svg [--points N] [--noise SIGMA] [--angle DEGREES] [--seed N]
//
// Registers two point clouds of one surface that overlap in part, by the iterative closest point method, and
// plots the convergence. Fails if the result is not the transform by which the clouds were separated.
//
// Sample makes the clouds, FindPairs and Align are the two halves of an iteration, Register iterates, and
// common/Plot.cpp draws the plot.

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
#include <limits>
#include <nanoflann.hpp>
#include <numbers>
#include <random>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "common/Arguments.h"
#include "common/OutputFiles.h"
#include "common/Plot.h"

namespace {

using Matrix = lum::Matrix<float>;
using Point = lum::Point<float, 3>;
using Vector = lum::Vector<float, 3>;

// Points with the member functions that the search tree requires.
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

// Samples a bumpy surface without symmetries, only where i_side * x of the direction is at least -1/2.
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

// Pairs each point with the closest one of the cloud and keeps the nearest three fifths of the pairs. The
// others are where the clouds do not overlap.
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

// The rigid motion that minimises the squared distances of the pairs. About the means of the points, it is
// the rotation in the polar decomposition of the sum of to * from^T.
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
    throw std::runtime_error("the pairs determine no rotation");
  return Matrix::Translate(to) * lum::Quaternionf(covariance).GetAsMatrix() * Matrix::Translate(-from);
}

// The root mean square distance.
double GetDistance(std::vector<Pair> const& i_pairs) {
  double sum = 0;
  for (Pair const& pair : i_pairs) sum += static_cast<double>(pair.squared_distance);
  return std::sqrt(sum / static_cast<double>(i_pairs.size()));
}
double GetDistance(std::vector<Point> const& i_a, std::vector<Point> const& i_b) {
  double sum = 0;
  for (std::size_t i = 0; i < i_a.size(); ++i) {
    sum += static_cast<double>(GetSquaredLength(i_a[i] - i_b[i]));
  }
  return std::sqrt(sum / static_cast<double>(i_a.size()));
}

// The estimated transform, and the distances before each iteration.
struct Registration {
  Matrix estimate;
  std::vector<double> between_pairs;
  std::vector<double> from_truth;
};

// Moves i_source onto i_target until the distance of the pairs converges. i_true_places are the right places
// of the moved points, for the plot only.
Registration Register(std::vector<Point> const& i_source, Cloud const& i_target,
                      std::vector<Point> const& i_true_places) {
  constexpr int most_iterations = 200;
  constexpr double least_progress = 1e-5;  // relative to the distance
  Tree const tree(3, i_target);
  Registration result;
  std::vector<Point> moved(i_source.size());
  double previous = std::numeric_limits<double>::infinity();
  for (int iteration = 0; iteration < most_iterations; ++iteration) {
    lum::TransformPoints(result.estimate, i_source, moved);
    std::vector<Pair> const pairs = FindPairs(moved, i_target, tree);
    double const distance = GetDistance(pairs);
    result.between_pairs.push_back(distance);
    result.from_truth.push_back(GetDistance(moved, i_true_places));
    if (std::abs(previous - distance) < least_progress * distance) break;
    previous = distance;
    result.estimate = Align(pairs) * result.estimate;
  }
  return result;
}

// Prints the error of the estimate. Throws if the rotation is wrong by more than a degree.
void Report(Registration const& i_result, Matrix const& i_truth) {
  Matrix const error = i_result.estimate * i_truth.GetInverse();
  auto const [x, y, z, w] = lum::Quaternionf(error).GetCoefficients();
  float const angle = 2 * std::atan2(std::hypot(x, y, z), std::abs(w)) * 180 / std::numbers::pi_v<float>;
  std::printf("%zu iterations, pairs %.4f apart\n", i_result.between_pairs.size() - 1,
              i_result.between_pairs.back());
  std::printf("rotation off by %.3f degrees, translation by %.4f\n", static_cast<double>(angle),
              static_cast<double>(GetLength(error * Point() - Point())));
  if (angle > 1) throw std::runtime_error("the clouds converged to a wrong pose");
}

constexpr std::string_view help =
    "usage: registration OUTPUT.svg [--points N] [--noise SIGMA] [--angle DEGREES] [--seed N]\n"
    "\n"
    "Registers two point clouds that overlap in part and plots the convergence.\n"
    "\n"
    "  --points N       points of each cloud; 4000 if it is not given\n"
    "  --noise SIGMA    their standard deviation, from 0 to 1; 0.005 if it is not given\n"
    "  --angle DEGREES  the angle by which the clouds are separated; 35 if it is not given\n"
    "  --seed N         of the random points; 1 if it is not given\n";

void Run(common::CommandLine const& i_line) {
  i_line.RequirePaths(1, help);
  common::OutputFiles files;
  common::OutputFile& file = files.Add(i_line.GetPaths()[0]);
  std::size_t const count = i_line.GetCount("--points", 1000000, 4000);
  double const noise = i_line.GetNumber("--noise", 0.005);
  if (noise < 0 || noise > 1) throw std::invalid_argument("--noise takes a number from 0 to 1");
  double const angle = std::remainder(i_line.GetNumber("--angle", 35), 360.0) * std::numbers::pi / 180;
  std::mt19937 random(static_cast<unsigned>(i_line.GetCount("--seed", 1000000, 1)));

  lum::Quaternionf const rotation(lum::GetNormalized(Vector(1, 2, 3)), static_cast<float>(angle));
  Matrix const truth = Matrix::Translate(0.3F, -0.2F, 0.4F) * rotation.GetAsMatrix();
  Cloud const target = Sample(count, 1, noise, random);
  std::vector<Point> const true_places = Sample(count, -1, noise, random).points;
  std::vector<Point> source(count);
  lum::TransformPoints(truth.GetInverse(), true_places, source);

  Registration const result = Register(source, target, true_places);
  files.DelaySignals();
  common::WritePlot(
      "Root mean square distance of the points",
      {{"between pairs", "#c05a1c", result.between_pairs}, {"from the truth", "#205a9e", result.from_truth}},
      file);
  files.Publish();
  Report(result, truth);
}

}  // namespace

int main(int i_count, char** ip_words) {
  try {
    if (common::PrintHelp(i_count, ip_words, help)) return 0;
    Run(common::CommandLine(i_count, ip_words, {"--points", "--noise", "--angle", "--seed"}));
    return 0;
  } catch (std::exception const& exception) {
    common::PrintError("registration", exception);
    return 1;
  }
}

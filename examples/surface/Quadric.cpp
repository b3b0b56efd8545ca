#include "surface/Quadric.h"

#include <geometry/PseudoInverse.h>

namespace surface {
namespace {

// The normals are weighed so that the singular values of their sum of n n^T add up to 3, and the largest is 1
// or more. So each value that counts for the rank, by its ratio to the largest, is inverted too, by its size.
// What is below the tolerance comes from a surface that is curved within the cell, not from an edge.
constexpr double tolerance = 0.03;

// How far, as a part of the cell, a point may be off the planes and still count as on their edge or corner.
constexpr double largest_offset = 0.01;

Eigen::Vector3d ToEigen(Quadric::Vector const& i_vector) {
  auto const [x, y, z] = i_vector;
  return {x, y, z};
}

}  // namespace

void Quadric::Add(Point const& i_point, Vector const& i_normal) {
  Eigen::Vector3d const point = ToEigen(i_point - Point(lum::Origin));
  Eigen::Vector3d const normal = ToEigen(i_normal);
  m_normals += normal * normal.transpose();
  m_distances += normal * normal.dot(point);
  m_points += point;
  ++m_count;
}

Quadric::Minimum Quadric::Minimise() const {
  double const weight = 3 / m_count;
  Eigen::Matrix3d const normals = m_normals * weight;
  Eigen::Vector3d const distances = m_distances * weight;
  Eigen::Vector3d start = m_points / m_count;
  Eigen::Vector3d is_free = Eigen::Vector3d::Ones();
  Eigen::Vector3d point = start;
  Eigen::Vector3d minimum = start;
  int rank = 0;
  // A minimum outside of the cell is replaced by that on the side of the cell where it left, then on an edge
  // of that side, so that a vertex on an edge of the surface stays on it. There are three axes to leave by.
  for (int round = 0; round < 4; ++round) {
    Eigen::Matrix3d const free_normals = is_free.asDiagonal() * normals * is_free.asDiagonal();
    Eigen::Vector3d const residual = is_free.cwiseProduct(distances - normals * start);
    auto const [inverse, free_rank] = lum::CalculatePseudoInverse(free_normals, tolerance);
    point = start + inverse * residual;
    if (round == 0) {
      minimum = point;
      rank = free_rank;
    }
    Eigen::Vector3d const inside = point.cwiseMax(0).cwiseMin(1);
    int farthest = 0;
    if ((point - inside).cwiseAbs().maxCoeff(&farthest) == 0) break;
    start[farthest] = inside[farthest];
    is_free[farthest] = 0;
  }
  Eigen::Vector3d const move = point - minimum;
  bool const is_off = move.dot(normals * move) > largest_offset * largest_offset;
  return {{point.x(), point.y(), point.z()}, rank, is_off};
}

}  // namespace surface

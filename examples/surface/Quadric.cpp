#include "surface/Quadric.h"

#include <geometry/PseudoInverse.h>

namespace surface {
namespace {

// Below this, a singular value comes from a surface that is curved within the cell, not from an edge.
//
// CalculatePseudoInverse compares it with each value's ratio to the largest one for the rank, but with the
// value itself for the inverse. The weight makes the singular values of the sum of n n^T add up to 3, so the
// largest is at least 1, and every value that counts for the rank is also inverted.
constexpr double tolerance = 0.03;

// A vertex counts as lying on its edge or corner up to this distance, in cells.
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
  // If the minimum lies outside the cell, the farthest axis is fixed at the side of the cell and the minimum
  // is sought again, so that a vertex on an edge of the surface stays on it. There are three axes to fix.
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

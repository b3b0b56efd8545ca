#pragma once

#include <geometry/Point.h>
#include <geometry/Vector.h>

#include <Eigen/Core>

namespace surface {

/// Finds the point of a cell that is closest to several planes: the cell's vertex in dual contouring (Ju,
/// Losasso, Schaefer, Warren: Dual contouring of Hermite data, 2002).
///
/// Coordinates are relative to the cell, from 0 to 1.
class Quadric {
 public:
  using Point = lum::Point<double, 3>;
  using Vector = lum::Vector<double, 3>;

  struct Minimum {
    Point point;
    int rank;     ///< 1 if the planes agree, 2 if they form an edge, 3 if they form a corner
    bool is_off;  ///< whether the planes meet outside the cell, so that the point lies elsewhere
  };

  /// Adds the plane through a point with a unit normal.
  void Add(Point const& i_point, Vector const& i_normal);

  /// The point of the cell with the smallest sum of squared distances. If a line or plane of points has the
  /// same sum, the one closest to the mean of the planes' points. At least one plane must have been added.
  Minimum Minimise() const;

 private:
  Eigen::Matrix3d m_normals = Eigen::Matrix3d::Zero();    // sum of n n^T
  Eigen::Vector3d m_distances = Eigen::Vector3d::Zero();  // sum of n (n p)
  Eigen::Vector3d m_points = Eigen::Vector3d::Zero();     // sum of p
  double m_count = 0;
};

}  // namespace surface

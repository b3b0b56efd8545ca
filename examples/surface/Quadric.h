#pragma once

#include <geometry/Point.h>
#include <geometry/Vector.h>

#include <Eigen/Core>

namespace surface {

/// Finds the point that lies closest to a number of planes: the vertex that a cell gets in dual contouring.
/// (Ju, Losasso, Schaefer, Warren: Dual contouring of Hermite data, 2002.)
///
/// Coordinates are those of the cell, from 0 to 1.
class Quadric {
 public:
  using Point = lum::Point<double, 3>;
  using Vector = lum::Vector<double, 3>;

  struct Minimum {
    Point point;
    int rank;     ///< 1 where the planes agree, 2 where they form an edge, 3 where they form a corner
    bool is_off;  ///< whether the planes meet outside of the cell, and the point is not where they do
  };

  /// A plane by a point on it and its unit normal.
  void Add(Point const& i_point, Vector const& i_normal);

  /// The sum of squared distances is smallest here among the points of the cell; where it is the same along a
  /// line or plane, this is the point closest to the mass point, the mean of the points. At least one plane
  /// must have been added.
  Minimum Minimise() const;

 private:
  Eigen::Matrix3d m_normals = Eigen::Matrix3d::Zero();    // sum of n n^T
  Eigen::Vector3d m_distances = Eigen::Vector3d::Zero();  // sum of n (n p)
  Eigen::Vector3d m_points = Eigen::Vector3d::Zero();     // sum of p
  double m_count = 0;
};

}  // namespace surface

#pragma once

#include <geometry/Matrix.h>
#include <geometry/Point.h>
#include <geometry/Vector.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace surface {

/// The vector with unit length, also if its squares overflow or underflow. The fallback if it has length zero
/// or is not finite, such as the gradient of a flat field, or a sum of normals that cancel.
lum::Vector<double, 3> NormalizedOr(lum::Vector<double, 3> const& i_fallback,
                                    lum::Vector<double, 3> const& i_vector);

/// A closed surface of triangles that are counterclockwise as seen from outside.
struct Mesh {
  struct Vertex {
    lum::Point<double, 3> position;
    lum::Vector<double, 3> normal;  ///< of unit length, outwards
    int rank;                       ///< 1 for a smooth piece, 2 for an edge, 3 for a corner
    bool is_off;                    ///< whether the edge or corner lies outside the vertex's cell
  };

  std::vector<Vertex> vertices;
  std::vector<std::array<std::uint32_t, 3>> triangles;

  /// Appends another mesh, whose first i_shared_vertices vertices are the last ones of this mesh.
  void Append(Mesh const& i_other, std::size_t i_shared_vertices);

  /// Transforms positions and normals. Reverses the triangles if the transform mirrors.
  void Transform(lum::Matrix<double> const& i_transform);

  /// The enclosed volume: the sum of the signed tetrahedra from the origin to each triangle.
  double GetVolume() const;

  /// The cross product of two edges: along the outward normal, with twice the triangle's area as its length.
  lum::Vector<double, 3> GetDoubledArea(std::array<std::uint32_t, 3> const& i_triangle) const;
};

}  // namespace surface

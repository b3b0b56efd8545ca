#pragma once

#include <geometry/Matrix.h>
#include <geometry/Point.h>
#include <geometry/Vector.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace surface {

/// A closed surface of triangles that go counter-clockwise as seen from outside.
struct Mesh {
  struct Vertex {
    lum::Point<double, 3> position;
    lum::Vector<double, 3> normal;  ///< of unit length, outwards
    int rank;                       ///< 1 for a smooth piece, 2 for an edge, 3 for a corner
    bool is_off;                    ///< whether the edge or corner lies outside of the vertex's cell
  };

  std::vector<Vertex> vertices;
  std::vector<std::array<std::uint32_t, 3>> triangles;

  /// Adds another mesh, whose first vertices are the last ones of this mesh.
  void Append(Mesh const& i_other, std::size_t i_shared_vertices);

  /// Carries the mesh along; the order of the triangles' vertices too, when the transform mirrors.
  void Transform(lum::Matrix<double> const& i_transform);

  /// What it encloses, by the divergence theorem: the tetrahedra from the origin to each triangle.
  double GetVolume() const;

  /// The sum of two edges' cross product: along the outward normal, twice as long as the triangle is large.
  lum::Vector<double, 3> GetDoubledArea(std::array<std::uint32_t, 3> const& i_triangle) const;
};

}  // namespace surface

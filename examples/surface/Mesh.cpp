#include "surface/Mesh.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace surface {

lum::Vector<double, 3> NormalizedOr(lum::Vector<double, 3> const& i_fallback,
                                    lum::Vector<double, 3> const& i_vector) {
  double const square = lum::GetSquaredLength(i_vector);
  if (std::isnormal(square)) return lum::GetNormalized(i_vector);
  auto const [x, y, z] = i_vector;
  double const largest = std::max({std::abs(x), std::abs(y), std::abs(z)});
  lum::Vector<double, 3> const scaled = i_vector / largest;
  return std::isnormal(lum::GetSquaredLength(scaled)) ? lum::GetNormalized(scaled) : i_fallback;
}

void Mesh::Append(Mesh const& i_other, std::size_t i_shared_vertices) {
  auto const offset = static_cast<std::uint32_t>(vertices.size() - i_shared_vertices);
  vertices.insert(vertices.end(), i_other.vertices.begin() + static_cast<std::ptrdiff_t>(i_shared_vertices),
                  i_other.vertices.end());
  triangles.reserve(triangles.size() + i_other.triangles.size());
  for (auto const& [a, b, c] : i_other.triangles) triangles.push_back({a + offset, b + offset, c + offset});
}

void Mesh::Transform(lum::Matrix<double> const& i_transform) {
  lum::Matrix<double> const normal_transform = i_transform.GetNormalTransform();
  for (Vertex& vertex : vertices) {
    vertex.position = i_transform * vertex.position;
    vertex.normal = NormalizedOr(vertex.normal, normal_transform * vertex.normal);
  }
  if (i_transform.GetDeterminant() < 0) {
    for (auto& [a, b, c] : triangles) std::swap(b, c);
  }
}

double Mesh::GetVolume() const {
  double sum = 0;
  for (auto const& triangle : triangles) {
    lum::Point<double, 3> const& a = vertices[triangle[0]].position;
    sum += lum::Dot(a - lum::Origin, GetDoubledArea(triangle));
  }
  return sum / 6;
}

lum::Vector<double, 3> Mesh::GetDoubledArea(std::array<std::uint32_t, 3> const& i_triangle) const {
  lum::Point<double, 3> const& a = vertices[i_triangle[0]].position;
  lum::Point<double, 3> const& b = vertices[i_triangle[1]].position;
  lum::Point<double, 3> const& c = vertices[i_triangle[2]].position;
  return lum::Cross(b - a, c - a);
}

}  // namespace surface

// Prints the orders of the cube's elements and their numbers in other libraries, as docs/cube.md shows them.
// The definitions of the other libraries stand here as the coordinates of vertices and the ends of lines; the
// numbers are computed from them with the library's constants.

#include <geometry/CanonicalCubeElement.h>
#include <geometry/CubeEdgeIterator.h>
#include <geometry/CubeFaceIterator.h>
#include <geometry/CubeVertexIterator.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using namespace lum::CubeElementIds;
using namespace lum::CubeSpaceIds;

template <class Range>
std::string List(Range const& i_range) {
  std::ostringstream text;
  char const* separator = "";
  for (auto const element : i_range) {
    text << separator << static_cast<unsigned>(element);
    separator = ", ";
  }
  return text.str();
}

// Fails the program if a rule of the page does not hold.
void Require(bool i_holds, char const* ip_rule) {
  if (!i_holds) throw std::logic_error(ip_rule);
}

void PrintOrders() {
  std::string const dot = " · ";
  using Edges = lum::CubeEdgeIterable<Cube>;
  using Faces = lum::CubeFaceIterable<Cube>;
  std::cout << "| `CubeVertexIterable<Cube>()` | " << List(lum::CubeVertexIterable<Cube>()) << " |\n"
            << "| `CubeEdgeIterable<Cube>()` | " << List(Edges()) << " |\n"
            << "| `CubeEdgeIterable<Cube>(AxisX)`, `AxisY`, `AxisZ` | " << List(Edges(AxisX)) << dot
            << List(Edges(AxisY)) << dot << List(Edges(AxisZ)) << " |\n"
            << "| `CubeFaceIterable<Cube>()` | " << List(Faces()) << " |\n"
            << "| `CubeFaceIterable<Cube>(AxisX)`, `AxisY`, `AxisZ` | " << List(Faces(AxisX)) << dot
            << List(Faces(AxisY)) << dot << List(Faces(AxisZ)) << " |\n"
            << "| `CanonicalEdgeIterable()`, `CanonicalFaceIterable()` | "
            << List(lum::CanonicalEdgeIterable()) << dot << List(lum::CanonicalFaceIterable()) << " |\n";

  constexpr std::array names = {"FaceX0", "FaceX1", "FaceY0", "FaceY1", "FaceZ0", "FaceZ1"};
  constexpr std::array named = {FaceX0, FaceX1, FaceY0, FaceY1, FaceZ0, FaceZ1};
  for (std::size_t i = 0; i < named.size(); ++i) {
    std::cout << "| " << static_cast<unsigned>(named[i]) << " (`" << names[i] << "`) | "
              << List(lum::CubeVertexIterable<Face>(named[i])) << " | "
              << List(lum::CubeEdgeIterable<Face>(named[i])) << " |\n";
  }
}

// The vertex at x, y, z.
Vertex GetVertex(std::array<unsigned, 3> const& i_position) {
  return Vertex{i_position[0] | i_position[1] << 1 | i_position[2] << 2};
}

// The edge between two vertices.
Edge GetEdge(Vertex i_start, Vertex i_end) {
  for (Edge const edge : lum::CubeEdgeIterable<Cube>()) {
    lum::CubeVertexIterable<Edge> const ends(edge);
    if (ends[0] == i_start && ends[1] == i_end) return edge;
  }
  throw std::logic_error("no edge has these ends");
}

// For each vertex of this library, its index among the vertices of another.
template <std::size_t Size>
std::string ListIndices(std::array<std::array<unsigned, 3>, Size> const& i_others) {
  std::string text;
  for (Vertex const vertex : lum::CubeVertexIterable<Cube>()) {
    auto const* const other = std::find_if(i_others.begin(), i_others.end(),
                                           [=](auto const& i_other) { return GetVertex(i_other) == vertex; });
    text += " " + std::to_string(other - i_others.begin()) + " |";
  }
  return text;
}

void PrintOtherLibraries() {
  using Positions = std::array<std::array<unsigned, 3>, 8>;
  // x changes fastest, then y, then z.
  constexpr Positions voxel = {
      {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}}};
  // Around the lower face, then around the upper one.
  constexpr Positions hexahedron = {
      {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}}};
  std::cout << "| Vertex here |";
  for (Vertex const vertex : lum::CubeVertexIterable<Cube>()) {
    std::cout << " " << static_cast<unsigned>(vertex) << " |";
  }
  std::cout << "\n| VTK's voxel (`VTK_VOXEL`) |" << ListIndices(voxel)
            << "\n| VTK's hexahedron (`VTK_HEXAHEDRON`) |" << ListIndices(hexahedron)
            << "\n| deal.II's cell |" << ListIndices(voxel) << "\n";

  // deal.II's faces by their vertices, and its lines by their ends.
  constexpr std::array<std::array<Vertex, 4>, 6> faces = {{{Vertex0, Vertex2, Vertex4, Vertex6},
                                                           {Vertex1, Vertex3, Vertex5, Vertex7},
                                                           {Vertex0, Vertex4, Vertex1, Vertex5},
                                                           {Vertex2, Vertex6, Vertex3, Vertex7},
                                                           {Vertex0, Vertex1, Vertex2, Vertex3},
                                                           {Vertex4, Vertex5, Vertex6, Vertex7}}};
  auto const* vertices = faces.begin();
  for (Face const face : lum::CubeFaceIterable<Cube>()) {
    Require(std::ranges::equal(lum::CubeVertexIterable<Face>(face), *vertices++), "the faces are deal.II's");
  }
  constexpr std::array<std::array<Vertex, 2>, 12> lines = {{{Vertex0, Vertex2},
                                                            {Vertex1, Vertex3},
                                                            {Vertex0, Vertex1},
                                                            {Vertex2, Vertex3},
                                                            {Vertex4, Vertex6},
                                                            {Vertex5, Vertex7},
                                                            {Vertex4, Vertex5},
                                                            {Vertex6, Vertex7},
                                                            {Vertex0, Vertex4},
                                                            {Vertex1, Vertex5},
                                                            {Vertex2, Vertex6},
                                                            {Vertex3, Vertex7}}};
  std::array<Edge, 12> edges{};
  std::ranges::transform(lines, edges.begin(),
                         [](auto const& i_line) { return GetEdge(i_line[0], i_line[1]); });
  std::cout << "Its lines 0 to 11 are the edges " << List(edges) << ".\n";
}

}  // namespace

int main() try {
  PrintOrders();
  PrintOtherLibraries();
} catch (std::exception const& exception) {
  std::cerr << exception.what() << '\n';
  return 1;
}

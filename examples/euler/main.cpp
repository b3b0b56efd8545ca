// euler [--radius VOXELS | INPUT.nii[.gz] --level V]
//
// Counts the faces, edges and vertices of the surface of a voxel solid, finds where the surface is pinched
// and checks its Euler characteristic. The solids are built in, or the voxels of a volume that reach a level.
//
// Complex counts, `solids` lists the built-in solids, and Report prints and checks one line.

#include <geometry/CanonicalCubeElement.h>
#include <geometry/CubeEdgeIterator.h>
#include <geometry/CubeElement.h>
#include <geometry/CubeFaceIterator.h>
#include <geometry/CubeVertexIterator.h>
#include <geometry/Vector.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "common/Arguments.h"
#include "common/Volume.h"

namespace {

using namespace lum::CubeElementIds;

// Coordinates in half voxels. Cell i has the coordinate 2 i + 1 along each axis. An element's coordinate is
// odd along the axes in which it extends and even along the others, so all cells that share an element
// compute the same place for it.
using Place = std::array<std::size_t, 3>;

Place GetPlace(Place const& i_cell, lum::CubeElement i_element) {
  std::size_t const position = i_element.GetIndex() & 7;
  std::size_t const free_axes = lum::CanonicalCubeElement(i_element).GetIndex();
  Place place = i_cell;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    place[axis] = i_cell[axis] - 1 + 2 * (position >> axis & 1) + (free_axes >> axis & 1);
  }
  return place;
}

// Whether the given ones of the eight cells around a vertex are connected through faces. The cells are
// numbered like the vertices of a cube, and two of them share a face where an edge joins their vertices.
bool IsConnected(unsigned i_cells) {
  unsigned reached = i_cells & (~i_cells + 1);  // the lowest bit that is set
  for (int step = 0; step < 7; ++step) {        // a path through eight cells has at most seven steps
    for (Edge const edge : lum::CubeEdgeIterable<Cube>()) {
      unsigned ends = 0;
      for (Vertex const end : lum::CubeVertexIterable<Edge>(edge)) ends |= 1U << static_cast<unsigned>(end);
      if ((i_cells & ends) == ends && (reached & ends) != 0) reached |= ends;
    }
  }
  return reached == i_cells;
}

using Counts = std::array<long, 4>;  // of elements, by dimension
long GetCharacteristic(Counts const& i_n) { return i_n[0] - i_n[1] + i_n[2] - i_n[3]; }

class Complex {
 public:
  Complex(Place const& i_size, std::function<bool(Place const&)> const& i_is_inside) {
    // Surrounded by a layer of empty cells, so that every cell of the solid has neighbours.
    for (std::size_t axis = 0; axis < 3; ++axis) m_extent[axis] = 2 * (i_size[axis] + 2);
    m_labels.resize(m_extent[0] * m_extent[1] * m_extent[2]);
    std::vector<Place> cells;
    for (std::size_t index = 0; index < i_size[0] * i_size[1] * i_size[2]; ++index) {
      Place const voxel = {index % i_size[0], index / i_size[0] % i_size[1], index / i_size[0] / i_size[1]};
      if (i_is_inside(voxel)) cells.push_back({2 * voxel[0] + 3, 2 * voxel[1] + 3, 2 * voxel[2] + 3});
    }
    for (Place const& cell : cells) {
      Label(cell, WholeCube, in_solid, solid);
      for (Face const face : lum::CubeFaceIterable<Cube>()) Label(cell, face, in_solid, solid);
      for (Edge const edge : lum::CubeEdgeIterable<Cube>()) Label(cell, edge, in_solid, solid);
      for (Vertex const vertex : lum::CubeVertexIterable<Cube>()) Label(cell, vertex, in_solid, solid);
    }
    for (Place const& cell : cells) AddSurface(cell);
  }

  Counts solid{};
  Counts surface{};
  long pinched_edges = 0;
  long pinched_vertices = 0;

 private:
  // In an edge's label, the bits from one_face upwards count the faces of the surface that meet there.
  static constexpr std::uint8_t in_solid = 1, on_surface = 2, one_face = 4;

  std::uint8_t& At(Place const& i_place) {
    return m_labels[i_place[0] + m_extent[0] * (i_place[1] + m_extent[1] * i_place[2])];
  }

  // Labels an element and counts it. Returns false if the element had the label already.
  bool Label(Place const& i_cell, lum::CubeElement i_element, std::uint8_t i_label, Counts& io_counts) {
    std::uint8_t& label = At(GetPlace(i_cell, i_element));
    if ((label & i_label) != 0) return false;
    label = static_cast<std::uint8_t>(label | i_label);
    ++io_counts[lum::CanonicalCubeElement(i_element).GetDimensionality()];
    return true;
  }

  void AddSurface(Place const& i_cell) {
    for (Face const face : lum::CubeFaceIterable<Cube>()) {
      Place neighbour = GetPlace(i_cell, face);
      for (std::size_t axis = 0; axis < 3; ++axis) neighbour[axis] = 2 * neighbour[axis] - i_cell[axis];
      if (At(neighbour) != 0) continue;
      Label(i_cell, face, on_surface, surface);
      for (Edge const edge : lum::CubeEdgeIterable<Face>(face)) {
        Label(i_cell, edge, on_surface, surface);
        std::uint8_t const label = At(GetPlace(i_cell, edge)) += one_face;
        if (label / one_face == 4) ++pinched_edges;
      }
      for (Vertex const vertex : lum::CubeVertexIterable<Face>(face)) {
        if (Label(i_cell, vertex, on_surface, surface)) CheckVertex(GetPlace(i_cell, vertex));
      }
    }
  }

  // A vertex is pinched unless the cells around it are connected inside the solid, and outside too. GetPlace
  // finds these cells, since they lie around a vertex as the vertices lie around a cell.
  void CheckVertex(Place const& i_vertex) {
    unsigned cells = 0;
    for (Vertex const side : lum::CubeVertexIterable<Cube>()) {
      if (At(GetPlace(i_vertex, side)) != 0) cells |= 1U << static_cast<unsigned>(side);
    }
    if (!IsConnected(cells) || !IsConnected(cells ^ 255U)) ++pinched_vertices;
  }

  Place m_extent{};
  std::vector<std::uint8_t> m_labels;
};

using Vector = lum::Vector<double, 3>;

struct Solid {
  char const* name;
  long surface;  // its Euler characteristic
  bool (*is_inside)(Vector const& i_p);
};

// Within the cube from -1 to 1.
constexpr std::array<Solid, 6> solids = {{
    {"ball", 2, [](auto i_p) { return GetLength(i_p) < 0.9; }},
    {"hollow ball", 4, [](auto i_p) { return std::abs(GetLength(i_p) - 0.6) < 0.3; }},
    {"torus", 0, [](auto i_p) { return std::hypot(std::hypot(i_p[0], i_p[1]) - 0.6, i_p[2]) < 0.3; }},
    {"double torus", -2,
     [](auto i_p) { return std::hypot(std::hypot(std::abs(i_p[0]) - 0.4, i_p[1]) - 0.4, i_p[2]) < 0.15; }},
    {"boxes at an edge", 3, [](auto i_p) { return i_p[0] * i_p[1] > 0 && std::abs(i_p[2]) < 0.5; }},
    {"boxes at a corner", 3, [](auto i_p) { return i_p[0] * i_p[1] > 0 && i_p[0] * i_p[2] > 0; }},
}};

// Prints one line and returns the characteristic of the surface. Throws if that is not twice the solid's,
// which it must be where no vertex is pinched.
long Report(char const* ip_name, Complex const& i_complex) {
  auto const& [vertices, edges, faces, none] = i_complex.surface;
  long const surface = GetCharacteristic(i_complex.surface);
  long const solid = GetCharacteristic(i_complex.solid);
  std::printf("%-18s%8ld%8ld%8ld%9ld%8ld%8ld%7ld%9ld\n", ip_name, i_complex.solid[3], faces, edges, vertices,
              surface, solid, i_complex.pinched_edges, i_complex.pinched_vertices);
  if (surface == 2 * solid || i_complex.pinched_vertices > 0) return surface;
  throw std::logic_error("the surface of a solid is miscounted");
}

constexpr std::string_view help =
    "usage: euler [--radius VOXELS | INPUT.nii[.gz] --level V]\n"
    "\n"
    "Counts the faces, edges and vertices of the surfaces of voxel solids.\n"
    "\n"
    "  --radius VOXELS  half the width of the built-in solids; 20 if it is not given\n"
    "  --level V        the solid consists of the voxels of the volume that reach this value\n";

void Run(common::CommandLine const& i_line) {
  bool const has_volume = i_line.Has("--level");
  if (i_line.GetPaths().size() > 1) throw std::invalid_argument(common::GetUsage(help));
  if (has_volume && i_line.GetPaths().empty()) {
    throw std::invalid_argument("--level has no effect without a volume");
  }
  if (!has_volume && !i_line.GetPaths().empty()) throw std::invalid_argument("a volume needs --level V");
  if (has_volume && i_line.Has("--radius")) throw std::invalid_argument("--radius has no effect on a volume");
  double const level = i_line.GetNumber("--level", 0);
  std::size_t const radius = i_line.GetCount("--radius", 200, 20);
  common::Volume const volume = has_volume ? common::ReadVolume(i_line.GetPaths()[0]) : common::Volume{};
  std::puts("                    voxels   faces   edges vertices   V-E+F   solid  pinched: E, V");
  if (has_volume) {
    auto const is_inside = [&](Place const& i_v) { return volume.At(i_v[0], i_v[1], i_v[2]) >= level; };
    Report("volume", Complex(volume.size, is_inside));
    return;
  }
  for (Solid const& solid : solids) {
    auto const is_inside = [&](Place const& i_v) {
      Vector place;
      for (std::size_t axis = 0; axis < 3; ++axis) place[axis] = static_cast<double>(i_v[axis]) + 0.5;
      return solid.is_inside(place / static_cast<double>(radius) - Vector(1, 1, 1));
    };
    long const surface = Report(solid.name, Complex({2 * radius, 2 * radius, 2 * radius}, is_inside));
    if (surface != solid.surface) throw std::runtime_error(std::string(solid.name) + " has a wrong V-E+F");
  }
}

}  // namespace

int main(int i_count, char** ip_words) {
  try {
    if (common::PrintHelp(i_count, ip_words, help)) return 0;
    Run(common::CommandLine(i_count, ip_words, {"--level", "--radius"}));
    return 0;
  } catch (std::exception const& exception) {
    common::PrintError("euler", exception);
    return 1;
  }
}

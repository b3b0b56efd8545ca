#include "surface/Contour.h"

#include <geometry/CanonicalCubeElement.h>
#include <geometry/CubeEdgeIterator.h>
#include <geometry/CubeVertexIterator.h>
#include <geometry/LinearInterpolation.h>
#include <geometry/RootFinding.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

#include "surface/Quadric.h"

namespace surface {
namespace {

using lum::CanonicalEdgeIterable;
using lum::CubeEdgeIterable;
using lum::CubeVertexIterable;
using lum::CanonicalCubeElementIds::CanonicalEdge;
using lum::CubeElementIds::Cube;
using lum::CubeElementIds::Edge;
using lum::CubeElementIds::Vertex;

constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

// A corner of the grid, or the cell of which it is vertex 0.
using Index = std::array<std::size_t, 3>;

Index GetCorner(Index const& i_cell, Vertex i_vertex) {
  auto const bits = static_cast<unsigned>(i_vertex);
  return {i_cell[0] + (bits & 1U), i_cell[1] + (bits >> 1 & 1U), i_cell[2] + (bits >> 2 & 1U)};
}

// The intersection of the surface with a grid edge.
struct Crossing {
  Point point;
  Vector normal;
};

Point InCell(Point const& i_point, Point const& i_origin) { return lum::Origin + (i_point - i_origin); }

// The corners of equal z, and the edges that start there, within the layer and up to the next one.
struct CornerLayer {
  std::vector<double> values;
  std::vector<Crossing> crossings;
  std::array<std::vector<std::uint32_t>, 3> crossing_of_edge;  // by axis
};

// The result of one sweep.
struct Share {
  Mesh mesh;
  std::size_t shared_vertices = 0;  // the first ones of the mesh, equal to the last ones of the share below
};

// Contours the edges that start in a range of layers of corners. Includes the vertices of the cells just
// below the first layer, because quadrilaterals around the first edges need them.
class Sweep {
 public:
  Sweep(Field const& i_field, std::size_t i_first_layer, std::size_t i_last_layer);

  Share Run(std::function<void()> const& i_begin_layer);

 private:
  // The index within a layer of a corner, or of the cell above it.
  std::size_t At(Index const& i_index) const { return i_index[0] + m_size[0] * i_index[1]; }
  CornerLayer& LayerOf(Index const& i_corner) { return m_corners[i_corner[2] % 2]; }
  std::vector<std::uint32_t>& VerticesOf(Index const& i_cell) { return m_vertices[i_cell[2] % 2]; }
  double ValueAt(Index const& i_corner) { return LayerOf(i_corner).values[At(i_corner)]; }
  bool IsInside(Index const& i_corner) { return ValueAt(i_corner) > 0; }

  template <class Visit>
  void ForEachInLayer(std::size_t i_z, std::size_t i_margin, Visit const& i_visit) const;

  void Evaluate(std::size_t i_z);
  void FindCrossings(std::size_t i_z, CanonicalEdge i_edge);
  Crossing FindCrossing(Index const& i_start, std::size_t i_axis) const;
  void PlaceVertex(Index const& i_cell);
  Quadric::Minimum Sharpen(std::vector<Crossing> const& i_crossings, Point const& i_origin,
                           Quadric::Minimum const& i_minimum) const;
  void AddQuads(Index const& i_corner);
  void AddQuad(std::array<std::uint32_t, 4> const& i_vertices);

  Field const& m_field;
  Index m_size;
  std::size_t m_first_layer;
  std::size_t m_last_layer;
  std::array<CornerLayer, 2> m_corners;                  // even and odd z
  std::array<std::vector<std::uint32_t>, 2> m_vertices;  // of the cells above those corners
  Mesh m_mesh;
};

Sweep::Sweep(Field const& i_field, std::size_t i_first_layer, std::size_t i_last_layer)
    : m_field(i_field), m_size(i_field.GetSize()), m_first_layer(i_first_layer), m_last_layer(i_last_layer) {}

template <class Visit>
void Sweep::ForEachInLayer(std::size_t i_z, std::size_t i_margin, Visit const& i_visit) const {
  for (std::size_t y = 0; y + i_margin < m_size[1]; ++y) {
    for (std::size_t x = 0; x + i_margin < m_size[0]; ++x) i_visit(Index{x, y, i_z});
  }
}

Share Sweep::Run(std::function<void()> const& i_begin_layer) {
  constexpr CanonicalEdgeIterable axes;
  std::size_t const start = m_first_layer == 0 ? 0 : m_first_layer - 1;
  std::size_t shared_vertices = 0;
  for (std::size_t z = start; z <= m_last_layer; ++z) {
    i_begin_layer();
    Evaluate(z);
    FindCrossings(z, axes[0]);
    FindCrossings(z, axes[1]);
    if (z == start) continue;
    FindCrossings(z - 1, axes[2]);
    VerticesOf({0, 0, z - 1}).assign(m_size[0] * m_size[1], none);
    ForEachInLayer(z - 1, 1, [this](Index const& i_cell) { PlaceVertex(i_cell); });
    if (z == m_first_layer) {
      shared_vertices = m_mesh.vertices.size();
    } else {
      ForEachInLayer(z - 1, 0, [this](Index const& i_corner) { AddQuads(i_corner); });
    }
  }
  return {std::move(m_mesh), shared_vertices};
}

void Sweep::Evaluate(std::size_t i_z) {
  CornerLayer& layer = LayerOf({0, 0, i_z});
  layer.values.clear();
  layer.crossings.clear();
  for (auto& crossings : layer.crossing_of_edge) crossings.assign(m_size[0] * m_size[1], none);
  ForEachInLayer(i_z, 0, [&](Index const& i_corner) {
    auto const [x, y, z] = i_corner;
    layer.values.push_back(
        m_field.Evaluate({static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)}));
  });
}

// Finds the crossings of the edges along one axis that start in a layer.
void Sweep::FindCrossings(std::size_t i_z, CanonicalEdge i_edge) {
  std::size_t const axis = CanonicalEdgeIterable::IndexOf(i_edge);
  CornerLayer& layer = LayerOf({0, 0, i_z});
  ForEachInLayer(i_z, 0, [&](Index const& i_start) {
    Index const end = GetCorner(i_start, Vertex{static_cast<unsigned>(i_edge)});
    if (end[axis] == m_size[axis] || IsInside(i_start) == IsInside(end)) return;
    layer.crossing_of_edge[axis][At(i_start)] = static_cast<std::uint32_t>(layer.crossings.size());
    layer.crossings.push_back(FindCrossing(i_start, axis));
  });
}

Crossing Sweep::FindCrossing(Index const& i_start, std::size_t i_axis) const {
  auto const [x, y, z] = i_start;
  Point const start(static_cast<double>(x), static_cast<double>(y), static_cast<double>(z));
  Vector direction;
  direction[i_axis] = 1;
  auto const along = [&](double i_t) { return m_field.Evaluate(start + direction * i_t); };
  double const t = lum::RootFinding::RegulaFalsi(along, {0, 1}, m_field.GetTolerance());

  Point const point = start + direction * t;
  Vector const inwards = direction * (along(0) > 0 ? -1.0 : 1.0);
  return {point, -NormalizedOr(inwards, m_field.GetGradient(point))};
}

void Sweep::PlaceVertex(Index const& i_cell) {
  std::size_t inside = 0;
  for (Vertex const vertex : CubeVertexIterable<Cube>())
    if (IsInside(GetCorner(i_cell, vertex))) ++inside;
  if (inside == 0 || inside == CubeVertexIterable<Cube>::size()) return;

  Point const origin(static_cast<double>(i_cell[0]), static_cast<double>(i_cell[1]),
                     static_cast<double>(i_cell[2]));
  Quadric quadric;
  Vector normals;
  std::vector<Crossing> crossings;
  for (Edge const edge : CubeEdgeIterable<Cube>()) {
    std::size_t const axis = CanonicalEdgeIterable::IndexOf(lum::CanonicalCubeElement(edge).GetAsEdge());
    Index const start = GetCorner(i_cell, CubeVertexIterable<Edge>(edge)[0]);
    CornerLayer const& layer = LayerOf(start);
    std::uint32_t const crossing = layer.crossing_of_edge[axis][At(start)];
    if (crossing == none) continue;
    crossings.push_back(layer.crossings[crossing]);
    quadric.Add(InCell(crossings.back().point, origin), crossings.back().normal);
    normals += crossings.back().normal;
  }
  Quadric::Minimum minimum = quadric.Minimise();
  if (minimum.rank > 1) minimum = Sharpen(crossings, origin, minimum);
  VerticesOf(i_cell)[At(i_cell)] = static_cast<std::uint32_t>(m_mesh.vertices.size());
  m_mesh.vertices.push_back({origin + (minimum.point - lum::Origin),
                             NormalizedOr(crossings.back().normal, normals), minimum.rank, minimum.is_off});
}

// Places a vertex on an edge or corner more precisely, with tangent planes close to the first result. If the
// surface is curved, the tangent planes at the crossings miss the edge.
Quadric::Minimum Sweep::Sharpen(std::vector<Crossing> const& i_crossings, Point const& i_origin,
                                Quadric::Minimum const& i_minimum) const {
  constexpr double closeness = 0.3;  // of a touching point: 0 at the first result, 1 at the crossing
  Point const first = i_origin + (i_minimum.point - lum::Origin);
  Quadric quadric;
  for (Crossing const& crossing : i_crossings) {
    Point const close = lum::LinearInterpolation(first, crossing.point, closeness);
    Vector const gradient = m_field.GetGradient(close);
    double const square = lum::GetSquaredLength(gradient);
    if (!std::isnormal(square)) return i_minimum;
    Point const touch = close - gradient * (m_field.Evaluate(close) / square);
    quadric.Add(InCell(touch, i_origin), -lum::GetNormalized(gradient));
  }
  Quadric::Minimum const second = quadric.Minimise();
  return second.rank == i_minimum.rank ? second : i_minimum;
}

// Adds a quadrilateral around each crossed edge that starts at this corner. It joins the vertices of the four
// cells that share the edge. All four exist, because no edge on the border of the grid is crossed.
void Sweep::AddQuads(Index const& i_corner) {
  for (CanonicalEdge const canonical : CanonicalEdgeIterable()) {
    std::size_t const axis = CanonicalEdgeIterable::IndexOf(canonical);
    if (LayerOf(i_corner).crossing_of_edge[axis][At(i_corner)] == none) continue;
    std::array<std::uint32_t, 4> quad{};
    CubeEdgeIterable<Cube> const parallel(lum::CubeSpaceIds::Orientation{static_cast<unsigned>(canonical)});
    for (Edge const edge : parallel) {
      auto const [x, y, z] = GetCorner({0, 0, 0}, CubeVertexIterable<Edge>(edge)[0]);
      Index const cell = {i_corner[0] - x, i_corner[1] - y, i_corner[2] - z};
      quad[parallel.IndexOf(edge)] = VerticesOf(cell)[At(cell)];
    }
    // In the iterable's order, cells 1 and 2 lie opposite each other. The order 0, 1, 3, 2 is
    // counterclockwise as seen from the edge's end, which is outside if the start is inside.
    if (IsInside(i_corner)) {
      AddQuad({quad[0], quad[1], quad[3], quad[2]});
    } else {
      AddQuad({quad[0], quad[2], quad[3], quad[1]});
    }
  }
}

// Splits along the diagonal whose two triangles are closer to one plane.
void Sweep::AddQuad(std::array<std::uint32_t, 4> const& i_vertices) {
  auto const [a, b, c, d] = i_vertices;
  using Triangle = std::array<std::uint32_t, 3>;
  auto const get_flatness = [this](Triangle const& i_first, Triangle const& i_second) {
    Vector const first = m_mesh.GetDoubledArea(i_first);
    Vector const second = m_mesh.GetDoubledArea(i_second);
    return lum::Dot(first, second) / (lum::GetLength(first) * lum::GetLength(second));
  };
  bool const is_ac_flatter = get_flatness({a, b, c}, {a, c, d}) >= get_flatness({a, b, d}, {b, c, d});
  if (is_ac_flatter) {
    m_mesh.triangles.insert(m_mesh.triangles.end(), {Triangle{a, b, c}, Triangle{a, c, d}});
  } else {
    m_mesh.triangles.insert(m_mesh.triangles.end(), {Triangle{a, b, d}, Triangle{b, c, d}});
  }
}

}  // namespace

// Each thread sweeps its share of the layers and only reads the field. The shares are appended in order, so
// the mesh has the same bits as that of a single sweep.
Mesh Contour(Field const& i_field, Progress const& i_progress, std::size_t i_threads) {
  constexpr std::size_t smallest_share = 8;  // since two neighbours both evaluate the layer between them
  std::size_t const size = i_field.GetSize()[2];
  if (size < 2) return {};
  std::size_t const layers = size - 1;
  std::size_t const count =
      std::clamp<std::size_t>(layers / smallest_share, 1, std::max<std::size_t>(i_threads, 1));

  // No other data depends on these two; the results pass through the futures.
  std::atomic<std::size_t> begun = 0;
  std::atomic<bool> is_ended = false;
  auto const show_progress = [&] {
    i_progress(std::min(1.0, static_cast<double>(begun) / static_cast<double>(layers + 2 * count)));
  };
  auto const begin_layer_here = [&] {
    ++begun;
    show_progress();
  };
  auto const begin_layer_elsewhere = [&] {
    if (is_ended) throw std::runtime_error("the contouring has ended");
    ++begun;
  };
  auto const sweep = [&](std::size_t i_number, std::function<void()> const& i_begin_layer) {
    return Sweep(i_field, layers * i_number / count, layers * (i_number + 1) / count).Run(i_begin_layer);
  };

  std::vector<std::future<Share>> others;
  // Stops the other threads if an exception leaves this function. It is destroyed before the futures, whose
  // destructors wait for their threads.
  struct End {
    ~End() { is_ended = true; }
    std::atomic<bool>& is_ended;
  } const end{is_ended};
  // If no thread can be started, a share is swept on this thread when its result is requested.
  constexpr auto policy = std::launch::async | std::launch::deferred;
  for (std::size_t i = 1; i < count; ++i) {
    others.push_back(std::async(policy, sweep, i, begin_layer_elsewhere));
  }
  Mesh mesh = sweep(0, begin_layer_here).mesh;
  for (std::future<Share>& other : others) {
    while (other.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout) show_progress();
    Share const share = other.get();
    mesh.Append(share.mesh, share.shared_vertices);
  }
  mesh.Transform(i_field.GetGridToWorld());
  i_progress(1);
  return mesh;
}

}  // namespace surface

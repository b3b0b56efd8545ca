#include <geometry/CubeEdgeIterator.h>
#include <geometry/CubeFaceIterator.h>
#include <geometry/CubeVertexIterator.h>
#include <geometry/LinearInterpolation.h>
#include <geometry/RootFinding.h>

#include <cstdio>
#include <exception>

namespace {

using namespace lum::CubeElementIds;
using Point = lum::Point<double, 3>;

Point GetPosition(Vertex i_vertex) {
  Point position;
  for (unsigned axis = 0; axis < 3; ++axis) position[axis] = static_cast<unsigned>(i_vertex) >> axis & 1U;
  return position;
}

Point GetPoint(Edge i_edge, double i_t) {
  lum::CubeVertexIterable<Edge> const ends(i_edge);
  return LinearInterpolation(GetPosition(ends[0]), GetPosition(ends[1]), i_t);
}

// A ball: negative inside.
double GetField(Point const& i_point) { return GetSquaredLength(i_point - Point(0.1, 0.2, 0.3)) - 0.8; }

}  // namespace

int main() try {
  for (Face const face : lum::CubeFaceIterable<Cube>()) {
    for (Edge const edge : lum::CubeEdgeIterable<Face>(face)) {
      auto const field = [=](double i_t) { return GetField(GetPoint(edge, i_t)); };
      if ((field(0) < 0) == (field(1) < 0)) continue;
      auto const [x, y, z] = GetPoint(edge, lum::RootFinding::RegulaFalsi(field, {0, 1}, 1e-9));
      std::printf("face %u, edge %u: (%.3f, %.3f, %.3f)\n", static_cast<unsigned>(face),
                  static_cast<unsigned>(edge), x, y, z);
    }
  }
} catch (std::exception const& exception) {
  std::puts(exception.what());
  return 1;
}

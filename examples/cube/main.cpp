// cube
//
// Writes an SVG picture of the unit cube with its 27 numbered elements to standard output.
//
// DrawCube draws everything; Drawing holds the projection; GetMiddle places the numbers.

#include <geometry/CubeEdgeIterator.h>
#include <geometry/CubeElement.h>
#include <geometry/CubeFaceIterator.h>
#include <geometry/CubeVertexIterator.h>
#include <geometry/Matrix.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <string_view>

#include "common/Arguments.h"

namespace {

using lum::CubeEdgeIterable;
using lum::CubeFaceIterable;
using lum::CubeVertexIterable;
using namespace lum::CubeElementIds;

using Point = lum::Point<double, 3>;
using Vector = lum::Vector<double, 3>;

Point GetPosition(Vertex i_vertex) {
  auto const bits = static_cast<unsigned>(i_vertex);
  return {static_cast<double>(bits & 1U), static_cast<double>(bits >> 1 & 1U),
          static_cast<double>(bits >> 2 & 1U)};
}

// The middle of an edge, a face or the cube.
template <class Element>
Point GetMiddle(Element i_element) {
  Vector sum;
  for (Vertex const vertex : CubeVertexIterable<Element>(i_element)) sum += GetPosition(vertex) - Point();
  return lum::Origin + sum / static_cast<double>(CubeVertexIterable<Element>::size());
}

// Seen along the y axis, from slightly above and from the right.
bool IsVisible(Face i_face) { return i_face == FaceY0 || i_face == FaceX1 || i_face == FaceZ1; }
bool IsVisible(Edge i_edge) {
  return std::ranges::any_of(CubeFaceIterable<Cube>(), [=](Face i_face) {
    CubeEdgeIterable<Face> const edges(i_face);
    return IsVisible(i_face) && std::ranges::find(edges, i_edge) != edges.end();
  });
}

// Pixels: x to the right, y down.
class Drawing {
 public:
  void DrawLine(Point const& i_from, Point const& i_to, char const* ip_style) const {
    auto const [x1, y1, z1] = m_to_pixels * i_from;
    auto const [x2, y2, z2] = m_to_pixels * i_to;
    std::printf("<line x1='%.1f' y1='%.1f' x2='%.1f' y2='%.1f' %s/>\n", x1, y1, x2, y2, ip_style);
  }

  void DrawText(Point const& i_place, char const* ip_text) const {
    auto const [x, y, z] = m_to_pixels * i_place;
    std::printf("<text x='%.1f' y='%.1f' fill='#444'>%s</text>\n", x, y + 6, ip_text);
  }

  void DrawNumber(Point const& i_place, lum::CubeElement i_element, char const* ip_colour) const {
    auto const [x, y, z] = m_to_pixels * i_place;
    std::printf("<rect x='%.1f' y='%.1f' width='34' height='26' rx='%s' fill='%s'/>\n", x - 17, y - 13,
                i_element.GetIndex() < 8 ? "13" : "5", ip_colour);
    std::printf("<text x='%.1f' y='%.1f' fill='#fff'>%u</text>\n", x, y + 6, i_element.GetIndex());
  }

 private:
  lum::Matrix<double> m_to_pixels{Point(90, 520, 0), Vector(330, 0, 0), Vector(220, -130, 0),
                                  Vector(0, -330, 1)};
};

void DrawAxes(Drawing const& i_drawing) {
  constexpr std::array<char const*, 3> names = {"x", "y", "z"};
  for (std::size_t axis = 0; axis < names.size(); ++axis) {
    Point const origin;
    Vector direction;
    direction[axis] = 1;
    i_drawing.DrawLine(origin + direction, origin + direction * 1.16, "stroke='#999' stroke-width='2'");
    i_drawing.DrawText(origin + direction * 1.22, names[axis]);
  }
}

void DrawCube() {
  std::puts(
      "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 720 580' width='720' height='580'\n"
      "     font-family='sans-serif' font-size='17' text-anchor='middle'>");
  std::puts("<rect width='720' height='580' rx='10' fill='#fff'/>");
  Drawing const drawing;
  DrawAxes(drawing);
  for (Edge const edge : CubeEdgeIterable<Cube>()) {
    CubeVertexIterable<Edge> const ends(edge);
    drawing.DrawLine(GetPosition(ends[0]), GetPosition(ends[1]),
                     IsVisible(edge) ? "stroke='#333' stroke-width='2'"
                                     : "stroke='#999' stroke-width='2' stroke-dasharray='6 5'");
  }
  drawing.DrawNumber(GetMiddle(WholeCube), WholeCube, "#555");
  for (Face const face : CubeFaceIterable<Cube>()) {
    drawing.DrawNumber(GetMiddle(face), face, IsVisible(face) ? "#c05a1c" : "#dba27c");
  }
  for (Edge const edge : CubeEdgeIterable<Cube>()) drawing.DrawNumber(GetMiddle(edge), edge, "#2a7d46");
  for (Vertex const vertex : CubeVertexIterable<Cube>()) {
    drawing.DrawNumber(GetPosition(vertex), vertex, "#205a9e");
  }
  std::puts("</svg>");
}

constexpr std::string_view help =
    "usage: cube\n"
    "\n"
    "Writes an SVG picture of the unit cube with its 27 numbered elements to standard output.\n";

}  // namespace

int main(int i_count, char** ip_words) {
  try {
    if (common::PrintHelp(i_count, ip_words, help)) return 0;
    common::CommandLine(i_count, ip_words, {}).RequirePaths(0, help);
    DrawCube();
    return 0;
  } catch (std::exception const& exception) {
    common::PrintError("cube", exception);
    return 1;
  }
}

// The cube's identifiers, spaces and ranges with arbitrary 32-bit values: every call throws exactly when its
// message says so, and otherwise gives the result of its formula with shifts modulo 32.

#include <bit>
#include <functional>
#include <stdexcept>
#include <string_view>

#include "Bytes.h"
#include "geometry/CanonicalCubeElement.h"
#include "geometry/CubeEdgeIterator.h"
#include "geometry/CubeFaceIterator.h"
#include "geometry/CubeVertexIterator.h"

namespace {

using lum::test::Require;
using Word = unsigned int;
using namespace lum::CubeElementIds;
using lum::CubeSpaceIds::Orientation;
using lum::CubeSpaceIds::Plane;

constexpr char const* no_orientation = "[CubeSpace] Cannot return space as orientation.";
constexpr char const* no_plane = "[CubeSpace] Cannot return space as plane.";
constexpr char const* invalid_edges = "[CubeEdgeIterator] CubeEdgeIterable has invalid space";
constexpr char const* invalid_faces = "[CubeFaceIterator] CubeFaceIterable has invalid space";
constexpr char const* no_edge = "[CanonicalCubeElement] Cannot return element as edge";
constexpr char const* no_face = "[CanonicalCubeElement] Cannot return element as face";

Word Left(Word i_x, Word i_s) { return i_x << i_s % 32; }
Word Right(Word i_x, Word i_s) { return i_x >> i_s % 32; }
Word Turn(Word i_x, Word i_s) { return Left(i_x, i_s) % 7; }

// `ip_message` is null for a call that must not throw.
template <class Call>
void Expect(char const* ip_message, Word i_expected, Call const& i_call) {
  try {
    Word const value = static_cast<Word>(i_call());
    Require(ip_message == nullptr, "a call that must throw throws");
    Require(value == i_expected, "a value");
  } catch (std::invalid_argument const& exception) {
    Require(ip_message != nullptr && std::string_view(exception.what()) == ip_message, "a message");
  }
}

char const* Unless(bool i_is_valid, char const* ip_message) { return i_is_valid ? nullptr : ip_message; }

// The axis that is not in the plane, or 0.
Word GetNormal(Word i_plane) {
  Word const rest = (i_plane & 7U) ^ 7U;
  return std::has_single_bit(rest) ? rest : 0;
}

void CheckSpaces(Word i_value) {
  lum::CubeSpace const space(i_value);
  Expect(Unless(std::popcount(i_value) == 1, no_orientation), i_value,
         [&] { return space.GetAsOrientation(); });
  Expect(Unless(std::popcount(i_value) == 2, no_plane), i_value, [&] { return space.GetAsPlane(); });
  Expect(nullptr, 7 - i_value % 8, [&] { return lum::GetPerpendicularPlane(Orientation{i_value}); });
  Expect(Unless(GetNormal(i_value) != 0, no_orientation), GetNormal(i_value),
         [&] { return lum::GetNormalOrientation(Plane{i_value}); });
  lum::CanonicalCubeElement const canonical(i_value);
  Expect(Unless(std::popcount(i_value) == 1, no_edge), i_value, [&] { return canonical.GetAsEdge(); });
  Expect(Unless(std::popcount(i_value) == 2, no_face), i_value, [&] { return canonical.GetAsFace(); });
  Expect(nullptr, static_cast<Word>(std::popcount(i_value)), [&] { return canonical.GetDimensionality(); });
}

void CheckVertices(Word i_context, Word i_value, Word i_index) {
  lum::CubeVertexIterable<Edge> const of_edge(Edge{i_context});
  Expect(nullptr, Left(i_index % 2, i_context >> 4) | (i_context & 7U), [&] { return of_edge[i_index % 2]; });
  Expect(nullptr, ((i_value ^ i_context) & 7U) >> ((i_context >> 4) & 3U),
         [&] { return of_edge.IndexOf(Vertex{i_value}); });
  lum::CubeVertexIterable<Face> const of_face(Face{i_context});
  Expect(nullptr, Turn(i_index % 4, ((i_context >> 4) ^ 3U) + 1) | (i_context & 7U),
         [&] { return of_face[i_index % 4]; });
  Expect(nullptr, Turn((i_value ^ i_context) & 7U, (4 - ((i_context >> 4) & 3U)) ^ 3U),
         [&] { return of_face.IndexOf(Vertex{i_value}); });
}

void CheckEdges(Word i_context, Word i_value, Word i_index) {
  int const bits = std::popcount(i_context);
  char const* const message = Unless(bits == 1 || bits == 3, invalid_edges);
  lum::CubeEdgeIterable<Cube> const of_cube(Orientation{i_context});
  Expect(message, bits == 1 ? 4 : 12, [&] { return of_cube.size(); });
  Expect(message, bits == 1 ? 4 : 12, [&] { return of_cube.end() - of_cube.begin(); });
  Word const index = i_index % 12;
  Word const o = bits == 1 ? i_context : Left(1, index >> 2);
  Expect(message, Left(o, 3) | Turn(index & 3U, (o >> 1) + 1), [&] { return of_cube[index]; });
  Word const axis = (i_value >> 4) & 3U;
  Word const along = Turn(i_value & 7U, (axis + 1) ^ 3U);
  Expect(nullptr, bits == 1 ? along : (4 * axis | along), [&] { return of_cube.IndexOf(Edge{i_value}); });

  lum::CubeEdgeIterable<Face> const of_face(Face{i_context});
  Word const n = (i_context >> 3) ^ 7U;
  Word const s = (i_index % 4 >> 1) + 1;
  Word const offset = Turn(Left(i_index & 1U, n >> 1), s ^ 3U);
  Expect(nullptr, Left(Turn(n, s), 3) | ((i_context & 7U) ^ offset), [&] { return of_face[i_index % 4]; });
  Word const d = i_context ^ i_value;
  Expect(nullptr, Right(d & 7U, d >> 4) | (Turn(i_value >> 3, (i_context >> 4) - 1) & 6U),
         [&] { return of_face.IndexOf(Edge{i_value}); });
}

void CheckFaces(Word i_context, Word i_value, Word i_index) {
  Word const space = 7 - i_context % 8;
  int const bits = std::popcount(space);
  char const* const message = Unless(bits == 2 || bits == 3, invalid_faces);
  lum::CubeFaceIterable<Cube> const faces(Orientation{i_context});
  Expect(message, bits == 2 ? 2 : 6, [&] { return faces.size(); });
  Word const index = i_index % 6;
  Word const n = bits == 2 ? GetNormal(space) : Left(1, index >> 1);
  Expect(message, (Left(n, 3) ^ 56U) | Left(index & 1U, n >> 1), [&] { return faces[index]; });
  Word const normal = GetNormal(i_value >> 3);
  Word const side = Right(i_value & 7U, normal >> 1);
  Expect(Unless(normal != 0, no_orientation), bits == 2 ? side : (2 * (normal >> 1) | side),
         [&] { return faces.IndexOf(Face{i_value}); });

  lum::CubeFaceIterator<Cube> const any(Plane{i_context}, false);
  Word const any_normal =
      std::popcount(i_context) == 2 ? GetNormal(i_context) : Left(1, static_cast<Word>(index >> 1));
  Expect(Unless(any_normal != 0, no_orientation),
         (Left(any_normal, 3) ^ 56U) | Left(index & 1U, any_normal >> 1),
         [&] { return any[static_cast<std::ptrdiff_t>(index)]; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* ip_data, std::size_t i_size) {
  lum::test::Bytes bytes(ip_data, i_size);
  auto const context = bytes.Take<Word>();
  auto const value = bytes.Take<Word>();
  auto const index = bytes.Take<std::uint8_t>();
  CheckSpaces(context);
  CheckVertices(context, value, index);
  CheckEdges(context, value, index);
  CheckFaces(context, value, index);
  return 0;
}

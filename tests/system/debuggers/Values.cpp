// Values of every type. A debugger shows them where `Stop` is called.

#include <array>
#include <limits>
#include <utility>
#include <vector>

#include "Utility/optional.h"
#include "geometry/CanonicalCubeElement.h"
#include "geometry/CubeElement.h"
#include "geometry/CubeElementIds.h"
#include "geometry/CubeSpace.h"
#include "geometry/CubeSpaceIds.h"
#include "geometry/Matrix.h"
#include "geometry/Plane.h"
#include "geometry/Point.h"
#include "geometry/Quaternion.h"
#include "geometry/Range.h"
#include "geometry/Vector.h"
#include "tests/system/debuggers/Stop.h"

namespace {

using namespace lum;
using namespace lum::CanonicalCubeElementIds;
using namespace lum::CubeElementIds;
namespace Space = lum::CubeSpaceIds;

void ShowPlainValues() {
  Vector<float, 3> const vector(1, -2.5F, 0.1F);
  Vector<double, 2> const flat(1e300, -0.0);
  Point<double, 3> const point(0.1, 100, std::numeric_limits<double>::quiet_NaN());
  Point<float, 2> const corner(16777216, std::numeric_limits<float>::infinity());
  Point<float, 3> const points[2] = {{1, 2, 3}, {4, 5, 6}};
  Plane<float> const plane(3, 0, -4, 10);
  Plane<double> const level(0, 0, 1, 0.5);
  Range<double> const range(-1.0 / 3, 1);
  Range<float> const empty_range(2, 1);
  Range<int> const numbers(-3, 3);
  optional<int> const full = 5;
  optional<int> const none = nullopt;
  optional<Vector<float, 3>> const nested = vector;
  optional<optional<Range<double>>> const twice = optional<Range<double>>(range);
  Vector<float, 3> const& reference = vector;
  Vector<float, 3> const* const pointer = &vector;
  StopWith(vector, flat, point, corner, points, plane, level, range, empty_range, numbers, full, none, nested,
           twice, reference, pointer);
}

void ShowMatrices() {
  Matrix<float> const identity;
  Matrix<float> const translation = Matrix<float>::Translate(1, 2, 3);
  Matrix<float> const copy = translation;
  Matrix<double> const flattened = Matrix<double>::Scale(0.5, 2, 0);
  Matrix<float> const own_identity = Matrix<float>::Translate(0, 0, 0);
  Matrix<float> const without(identity.GetMatrix(), {});
  Matrix<double> moved;
  Matrix<double> const taken = std::move(moved);
  Quaternionf const turn(Vector<float, 3>(0, 0, 1), 1.5707964F);
  Quaternionf const none;
  Quaternionf moved_turn(turn);
  Quaternionf const taken_turn = std::move(moved_turn);
  auto const& handle = translation.GetMatrixInverse();
  auto const& empty_handle = flattened.GetMatrixInverse();
  std::vector<Matrix<float>> const matrices{identity, translation};
  optional<Quaternionf> const perhaps = none;
  // NOLINTBEGIN(bugprone-use-after-move): moved-from values are shown too
  StopWith(identity, translation, copy, flattened, own_identity, without, moved, taken, turn, none,
           moved_turn, taken_turn, handle, empty_handle, matrices, perhaps);
  // NOLINTEND(bugprone-use-after-move)
}

// The memory of a value that is not constructed yet.
void ShowGarbage() {
  alignas(8) static std::array<unsigned char, 64> bytes;
  bytes.fill(0x5a);
  auto const& matrix = reinterpret_cast<Matrix<float> const&>(bytes);
  auto const& quaternion = reinterpret_cast<Quaternionf const&>(bytes);
  auto const& handle = reinterpret_cast<Matrix<double>::ObjectHandle const&>(bytes);
  StopWith(matrix, quaternion, handle);
}

void ShowCube() {
  std::array<Vertex, 9> vertices;
  for (unsigned int i = 0; i < 9; ++i) vertices[i] = Vertex{i};
  std::array<Edge, 14> const edges = {Edge01, Edge23, Edge45, Edge67, Edge02, Edge13,  Edge46,
                                      Edge57, Edge04, Edge15, Edge26, Edge37, Edge{9}, Edge{48}};
  std::array<Face, 8> const faces = {FaceX0, FaceX1, FaceY0, FaceY1, FaceZ0, FaceZ1, Face{25}, Face{8}};
  std::array<Cube, 2> const cubes = {WholeCube, Cube{57}};
  std::array<Space::Orientation, 4> const orientations = {Space::AxisX, Space::AxisY, Space::AxisZ,
                                                          Space::Orientation{3}};
  std::array<Space::Plane, 4> const planes = {Space::PlaneXY, Space::PlaneXZ, Space::PlaneYZ,
                                              Space::Plane{7}};
  std::array<Space::Volume, 2> const volumes = {Space::VolumeXYZ, Space::Volume{8}};
  std::array<CubeElement, 6> const elements = {Vertex6,   Edge57,          FaceY1,
                                               WholeCube, CubeElement(25), CubeElement(4000000000U)};
  std::array<CubeSpace, 5> const spaces = {Space::AxisY, Space::PlaneXZ, Space::VolumeXYZ, CubeSpace(0),
                                           CubeSpace(9)};
  std::array<CanonicalCubeElement, 5> const canonical = {
      CanonicalVertex{0}, CanonicalEdge{4}, CanonicalFace{5}, CanonicalCube{7}, CanonicalCubeElement(8)};
  CanonicalVertex const canonical_vertex{0};
  CanonicalEdge const canonical_edge{1};
  CanonicalFace const canonical_face{6};
  CanonicalCube const canonical_cube{7};
  CanonicalEdge const no_edge{3};
  StopWith(vertices, edges, faces, cubes, orientations, planes, volumes, elements, spaces, canonical,
           canonical_vertex, canonical_edge, canonical_face, canonical_cube, no_edge);
}

}  // namespace

int main() {
  ShowPlainValues();
  ShowMatrices();
  ShowGarbage();
  ShowCube();
  return 0;
}

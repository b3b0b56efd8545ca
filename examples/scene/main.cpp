// scene OUTPUT.png [--nodes N] [--frames N]
//
// A scene graph of boxes that rotate on the faces of other boxes. Updates their world transforms frame by
// frame, then draws a picture by picking a box for each pixel through the inverses.
//
// MakeNodes builds the graph, Update computes the world transforms, GetRay is the camera, Pick finds the box
// that a ray hits, GetColour shades the hit, and Draw calls these for each pixel.

#include <geometry/Matrix.h>
#include <geometry/Quaternion.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "common/Arguments.h"
#include "common/Conversion.h"
#include "common/OutputFiles.h"
#include "common/Picture.h"

namespace {

using Matrix = lum::Matrix<float>;
using Point = lum::Point<float, 3>;
using Vector = lum::Vector<float, 3>;

// A box from -1/2 to 1/2 along each axis of its own coordinates.
struct Node {
  std::size_t parent;
  std::size_t depth;
  Vector normal;  // of the parent's face on which this box stands, and the axis of its rotation
  Matrix mount;   // from the centre of this box to the parent
  std::size_t first_child = 0;
  std::size_t end_child = 0;  // one past the last child
  Matrix world = {};
};
using Nodes = std::vector<Node>;

// The points origin + t direction. Transforms preserve t, because the direction is not normalised.
struct Ray {
  Point origin;
  Vector direction;
};

struct Hit {
  float t = std::numeric_limits<float>::infinity();
  std::size_t node = 0;
  std::size_t axis = 0;  // normal to the face that is hit
};

constexpr std::array<Vector, 3> axes = {Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)};

// The size of a box relative to its parent. It is not uniform, so a rotated child is sheared.
constexpr Vector shrink(0.5F, 0.5F, 0.44F);

// A sphere of this radius around a box's centre contains the box and all its descendants: a child's centre is
// at most 3/4 away, and the child's own sphere is at most half as large, so 3/4 + 1/2 * 3/2 = 3/2 suffices.
constexpr float reach = 1.5F;

// Parents precede their children, and the children of one box are consecutive.
Nodes MakeNodes(std::size_t i_count) {
  Nodes nodes{{0, 0, axes[2], {}}};
  for (std::size_t index = 0; index < nodes.size(); ++index) {
    nodes[index].first_child = nodes.size();
    for (std::size_t face = 0; face < 6 && nodes.size() < i_count; ++face) {
      Vector const normal = axes[face / 2] * (face % 2 == 0 ? -1.0F : 1.0F);
      if (index != 0 && normal == -nodes[index].normal) continue;  // the box stands on this face
      Matrix const mount = Matrix::Translate(normal * (0.5F + 0.5F * shrink[face / 2]));
      nodes.push_back({index, nodes[index].depth + 1, normal, mount});
    }
    nodes[index].end_child = nodes.size();
  }
  return nodes;
}

void Update(Nodes& io_nodes, float i_angle) {
  static Matrix const smaller = Matrix::Scale(shrink[0], shrink[1], shrink[2]);
  for (Node& node : io_nodes) {
    Matrix const turn = lum::Quaternionf(node.normal, i_angle).GetAsMatrix();
    node.world = node.depth == 0 ? turn : io_nodes[node.parent].world * (node.mount * turn * smaller);
  }
}

float GetLargestDeviation(Nodes const& i_nodes) {
  float largest = 0;
  for (Node const& node : i_nodes) {
    Matrix const product = node.world * node.world.GetInverse();
    for (int entry = 0; entry < 16; ++entry) {
      largest = std::max(largest, std::abs(product.GetAsPtr()[entry] - (entry % 5 == 0 ? 1.0F : 0.0F)));
    }
  }
  return largest;
}

// Intersects the ray with the box in the box's coordinates, then with its children. Along an axis that is
// perpendicular to the ray, a and b are infinite, and have the same sign if the ray misses the box.
void Pick(Nodes const& i_nodes, std::size_t i_node, Ray const& i_ray, Hit& io_best) {
  Node const& node = i_nodes[i_node];
  Matrix const to_node = node.world.GetInverse();
  Point const origin = to_node * i_ray.origin;
  Vector const direction = to_node * i_ray.direction;
  if (GetSquaredLength(Cross(origin - Point(), direction)) > reach * reach * Dot(direction, direction))
    return;
  Hit hit{0, i_node};
  float exit = io_best.t;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    float const a = (-0.5F - origin[axis]) / direction[axis];
    float const b = (0.5F - origin[axis]) / direction[axis];
    if (std::min(a, b) > hit.t) hit = {std::min(a, b), i_node, axis};
    exit = std::min(exit, std::max(a, b));
  }
  if (hit.t < exit) io_best = hit;
  for (auto child = node.first_child; child < node.end_child; ++child) Pick(i_nodes, child, i_ray, io_best);
}

// The same result without inverses: transforms the faces of every box to the world and intersects them there.
Hit PickInWorld(Nodes const& i_nodes, Ray const& i_ray) {
  Hit nearest;
  for (std::size_t index = 0; index < i_nodes.size(); ++index) {
    Matrix const& world = i_nodes[index].world;
    for (std::size_t face = 0; face < 6; ++face) {
      std::size_t const axis = face / 2;
      Vector const a = world * axes[(axis + 1) % 3];
      Vector const b = world * axes[(axis + 2) % 3];
      Vector const offset = i_ray.origin - world * (Point() + axes[axis] * (face % 2 == 0 ? -0.5F : 0.5F));
      float const volume = Dot(i_ray.direction, Cross(b, a));
      float const along_a = Dot(i_ray.direction, Cross(b, offset)) / volume;
      float const along_b = Dot(i_ray.direction, Cross(offset, a)) / volume;
      float const t = Dot(offset, Cross(a, b)) / volume;
      bool const is_met = std::max(std::abs(along_a), std::abs(along_b)) <= 0.5F && t >= 0;
      if (is_met && t < nearest.t) nearest = {t, index, axis};
    }
  }
  return nearest;
}

constexpr std::size_t width = 800, height = 600;

Ray GetRay(std::size_t i_column, std::size_t i_row) {
  constexpr float distance = 6;
  constexpr float focal_length = 2.3F * height;  // in pixels
  static Vector const back = lum::GetNormalized(Vector(2, -3, 1.6F));
  static Vector const right = lum::GetNormalized(Cross(axes[2], back));
  static Matrix const camera(Point() + back * distance, right, Cross(back, right), back);
  float const x = static_cast<float>(i_column) - 0.5F * (width - 1);
  float const y = 0.5F * (height - 1) - static_cast<float>(i_row);
  return {camera * Point(), camera * Vector(x, y, -focal_length)};
}

Vector GetColour(Nodes const& i_nodes, Hit const& i_hit) {
  constexpr Vector light(0.2F, -0.6F, 0.8F);
  constexpr Vector background(24, 24, 28);
  // By depth in the graph.
  constexpr std::array<Vector, 3> colours = {Vector(38, 92, 160), Vector(236, 232, 222), Vector(206, 60, 44)};
  if (!std::isfinite(i_hit.t)) return background;
  Node const& node = i_nodes[i_hit.node];
  Vector const normal = lum::GetNormalized(node.world.GetNormalTransform() * axes[i_hit.axis]);
  return colours[node.depth % 3] * (0.35F + 0.65F * std::abs(Dot(normal, light)));
}

// Returns the mean time of a frame in milliseconds.
double UpdateRepeatedly(std::size_t i_frames, Nodes& io_nodes) {
  auto const start = std::chrono::steady_clock::now();
  for (std::size_t frame = 1; frame <= i_frames; ++frame) Update(io_nodes, 0.01F * static_cast<float>(frame));
  std::chrono::duration<double, std::milli> const time = std::chrono::steady_clock::now() - start;
  return time.count() / static_cast<double>(i_frames);
}

struct Drawing {
  common::Picture picture{width, height, {}};
  std::size_t hits = 0;         // of the picks that are compared with PickInWorld
  std::size_t differences = 0;  // of these picks
};

Drawing Draw(Nodes const& i_nodes) {
  constexpr std::size_t stride = 997;  // between compared pixels, because PickInWorld is slow
  Drawing drawing;
  for (std::size_t pixel = 0; pixel < width * height; ++pixel) {
    Ray const ray = GetRay(pixel % width, pixel / width);
    Hit hit;
    Pick(i_nodes, 0, ray, hit);
    for (float const value : GetColour(i_nodes, hit)) {
      drawing.picture.pixels.push_back(common::ToInteger<std::uint8_t>(static_cast<double>(value)));
    }
    if (pixel % stride != 0) continue;
    Hit const expected = PickInWorld(i_nodes, ray);
    if (std::isfinite(expected.t)) ++drawing.hits;
    bool const is_different = hit.node != expected.node || std::abs(hit.t - expected.t) > 1e-4F * hit.t;
    if (is_different) ++drawing.differences;
  }
  return drawing;
}

constexpr std::string_view help =
    "usage: scene OUTPUT.png [--nodes N] [--frames N]\n"
    "\n"
    "Turns a scene graph of boxes and draws it by picking a box for each pixel.\n"
    "\n"
    "  --nodes N   boxes in the graph; 10000 if it is not given\n"
    "  --frames N  times that the graph is updated; 60 if it is not given\n";

void Run(common::CommandLine const& i_line) {
  i_line.RequirePaths(1, help);
  common::OutputFiles files;
  common::OutputFile& file = files.Add(i_line.GetPaths()[0]);
  Nodes nodes = MakeNodes(i_line.GetCount("--nodes", 1000000, 10000));
  std::size_t const frames = i_line.GetCount("--frames", 100000, 60);
  double const frame_time = UpdateRepeatedly(frames, nodes);
  Drawing const drawing = Draw(nodes);
  files.DelaySignals();
  common::WritePng(drawing.picture, file);
  files.Publish();
  std::printf("%zu nodes, %zu deep; %zu frames of %.2f ms\n", nodes.size(), nodes.back().depth, frames,
              frame_time);
  std::printf("world * inverse deviates from the identity by %.1e\n",
              static_cast<double>(GetLargestDeviation(nodes)));
  std::printf("%zu picks hit, %zu differ from the picks without inverses\n", drawing.hits,
              drawing.differences);
  if (drawing.differences > 0) throw std::logic_error("picks through inverses are wrong");
}

}  // namespace

int main(int i_count, char** ip_words) {
  try {
    if (common::PrintHelp(i_count, ip_words, help)) return 0;
    Run(common::CommandLine(i_count, ip_words, {"--nodes", "--frames"}));
    return 0;
  } catch (std::exception const& exception) {
    common::PrintError("scene", exception);
    return 1;
  }
}

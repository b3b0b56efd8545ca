#include "surface/Draw.h"

#include <geometry/Matrix.h>
#include <geometry/Vector.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <vector>

#include "common/Conversion.h"

// Draw, at the end, runs four passes over a Canvas of samples:
//   DrawMesh        the triangles: depth, shading, and whether the back of the surface is seen
//   DrawInside      the cut of the clip plane
//   DrawSharpEdges  lines along edges and dots at corners
//   AverageSamples  the pixels, with the background
namespace surface {
namespace {

using Point = lum::Point<float, 3>;
using Vector = lum::Vector<float, 3>;

constexpr std::size_t samples_per_pixel = 3;  // along each side

struct Box {
  lum::Point<double, 3> low{infinity, infinity, infinity};
  lum::Point<double, 3> high{-infinity, -infinity, -infinity};

  static constexpr double infinity = std::numeric_limits<double>::infinity();

  lum::Vector<double, 3> GetMiddle() const { return ((low - lum::Origin) + (high - lum::Origin)) / 2; }
};

Box GetBox(Mesh const& i_mesh, lum::Matrix<double> const& i_transform) {
  Box box;
  for (Mesh::Vertex const& vertex : i_mesh.vertices) {
    lum::Point<double, 3> const point = i_transform * vertex.position;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      box.low[axis] = std::min(box.low[axis], point[axis]);
      box.high[axis] = std::max(box.high[axis], point[axis]);
    }
  }
  return box;
}

[[noreturn]] void RefuseToDraw() {
  throw std::runtime_error("the surface is too large, too small, too flat or too far away to be drawn");
}

bool IsFinite(lum::Matrix<double> const& i_matrix) {
  double const* const p_values = i_matrix.GetAsPtr();
  return std::all_of(p_values, p_values + 16, [](double i_value) { return std::isfinite(i_value); });
}

// Rotates the mesh and fits it between -1 and 1, the range of the picture.
lum::Matrix<double> GetWorldToView(Mesh const& i_mesh, lum::Quaternionf const& i_rotation,
                                   bool i_is_turning) {
  lum::Matrix<double> const rotation(i_rotation.GetAsMatrix());
  auto const [low, high] = GetBox(i_mesh, i_is_turning ? lum::Matrix<double>() : rotation);
  lum::Vector<double, 3> const middle = Box{low, high}.GetMiddle();
  auto const [width, height, depth] = high - low;
  constexpr double margin = 1.08;
  // At any rotation, a box stays within its diagonal.
  double const extent = i_is_turning ? std::hypot(width, height, depth) : margin * std::max(width, height);
  if (!(extent > 0)) RefuseToDraw();
  lum::Matrix<double> const fit =
      lum::Matrix<double>::Normalize(extent, extent, extent) * lum::Matrix<double>::Translate(-middle);
  return i_is_turning ? rotation * fit : fit * rotation;
}

struct Sample {
  float depth = -std::numeric_limits<float>::infinity();
  bool is_inside = false;  // the back of the surface, visible through the clip plane
  Colour colour{};
};

Colour Shade(Colour const& i_colour, Vector const& i_normal) {
  static Vector const key = lum::GetNormalized(Vector(-0.5F, 0.65F, 0.75F));
  static Vector const fill = lum::GetNormalized(Vector(0.8F, 0.1F, 0.5F));
  static Vector const halfway = lum::GetNormalized(key + Vector(0, 0, 1));
  float const light = 0.22F + 0.10F * i_normal.GetY() + 0.68F * std::max(0.0F, lum::Dot(i_normal, key)) +
                      0.22F * std::max(0.0F, lum::Dot(i_normal, fill));
  float const gloss = 0.18F * std::pow(std::max(0.0F, lum::Dot(i_normal, halfway)), 32.0F);
  Colour shaded{};
  for (std::size_t channel = 0; channel < 3; ++channel) {
    // Light is additive in linear intensity; colours are stored as its square root.
    float const colour = static_cast<float>(i_colour[channel]) / 255;
    float const intensity = colour * colour * light + gloss;
    shaded[channel] = common::ToByte(255 * std::sqrt(static_cast<double>(intensity)));
  }
  return shaded;
}

// A square of samples, x from the left and y from the bottom, that covers the coordinates from -1 to 1.
class Canvas {
 public:
  explicit Canvas(std::size_t i_size) : m_size(i_size), m_samples(i_size * i_size) {}

  std::size_t GetSize() const { return m_size; }
  Sample& At(std::size_t i_x, std::size_t i_y) { return m_samples[i_x + m_size * i_y]; }
  Sample const& At(std::size_t i_x, std::size_t i_y) const { return m_samples[i_x + m_size * i_y]; }

  float ToCoordinate(std::size_t i_sample) const {
    return (static_cast<float>(i_sample) + 0.5F) / static_cast<float>(m_size) * 2 - 1;
  }
  // The first sample between two coordinates, and one past the last.
  std::array<std::size_t, 2> GetSamples(float i_low, float i_high) const {
    auto const size = static_cast<float>(m_size);
    float const first = std::ceil((i_low + 1) / 2 * size - 0.5F);
    float const last = std::floor((i_high + 1) / 2 * size - 0.5F);
    return {common::ToInteger<std::size_t>(static_cast<double>(std::clamp(first, 0.0F, size))),
            common::ToInteger<std::size_t>(static_cast<double>(std::clamp(last + 1, 0.0F, size)))};
  }

 private:
  std::size_t m_size;
  std::vector<Sample> m_samples;
};

struct Corner {
  Point position;
  Vector normal;
};
using Corners = std::array<Corner, 3>;

bool IsCutAway(std::optional<lum::Plane<float>> const& i_clip, Point const& i_point) {
  return i_clip && lum::GetSignedDistance(*i_clip, i_point) > 0;
}

// Twice the signed area of the triangle a, b, (x, y), positive if it is counterclockwise.
float GetArea(Point const& i_a, Point const& i_b, float i_x, float i_y) {
  return (i_b.GetX() - i_a.GetX()) * (i_y - i_a.GetY()) - (i_b.GetY() - i_a.GetY()) * (i_x - i_a.GetX());
}

void DrawTriangle(Corners const& i_corners, Colour const& i_colour,
                  std::optional<lum::Plane<float>> const& i_clip, Canvas& io_canvas) {
  Point const& a = i_corners[0].position;
  Point const& b = i_corners[1].position;
  Point const& c = i_corners[2].position;
  float const area = GetArea(a, b, c.GetX(), c.GetY());
  if (area == 0) return;
  auto const [left, right] = std::minmax({a.GetX(), b.GetX(), c.GetX()});
  auto const [bottom, top] = std::minmax({a.GetY(), b.GetY(), c.GetY()});
  auto const [first_x, end_x] = io_canvas.GetSamples(left, right);
  auto const [first_y, end_y] = io_canvas.GetSamples(bottom, top);
  for (std::size_t j = first_y; j < end_y; ++j) {
    float const y = io_canvas.ToCoordinate(j);
    for (std::size_t i = first_x; i < end_x; ++i) {
      float const x = io_canvas.ToCoordinate(i);
      std::array<float, 3> const weights = {GetArea(b, c, x, y) / area, GetArea(c, a, x, y) / area,
                                            GetArea(a, b, x, y) / area};
      if (*std::min_element(weights.begin(), weights.end()) < 0) continue;
      float const z = weights[0] * a.GetZ() + weights[1] * b.GetZ() + weights[2] * c.GetZ();
      Sample& sample = io_canvas.At(i, j);
      if (z <= sample.depth) continue;
      if (IsCutAway(i_clip, Point(x, y, z))) continue;
      Vector normal;
      for (std::size_t corner = 0; corner < 3; ++corner) normal += i_corners[corner].normal * weights[corner];
      sample = {z, area < 0, Shade(i_colour, lum::GetNormalized(normal))};
    }
  }
}

Point ToFloat(lum::Point<double, 3> const& i_point) {
  auto const [x, y, z] = i_point;
  return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}
Vector ToFloat(lum::Vector<double, 3> const& i_vector) {
  auto const [x, y, z] = i_vector;
  return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

// Only the coordinates of the view, which lie between -1 and 1, are rounded to float. Those of the world may
// be too large, or too far from the origin.
std::vector<Point> ToView(Mesh const& i_mesh, lum::Matrix<double> const& i_world_to_view) {
  std::vector<Point> positions;
  positions.reserve(i_mesh.vertices.size());
  for (Mesh::Vertex const& vertex : i_mesh.vertices) {
    positions.push_back(ToFloat(i_world_to_view * vertex.position));
    for (float const coordinate : positions.back()) {
      if (!std::isfinite(coordinate)) RefuseToDraw();
    }
  }
  return positions;
}

// The product of the plane and a matrix that scales by much is no plane, because its normal underflows.
lum::Plane<float> ToView(lum::Plane<double> const& i_plane, lum::Matrix<double> const& i_world_to_view) {
  auto const [a, b, c, d] = [&] {
    try {
      lum::Plane<double> const plane = i_world_to_view * i_plane;
      return std::array<double, 4>{plane.GetA(), plane.GetB(), plane.GetC(), plane.GetD()};
    } catch (std::invalid_argument const&) {
      RefuseToDraw();
    }
  }();
  if (!std::isfinite(a + b + c)) RefuseToDraw();
  return {static_cast<float>(a), static_cast<float>(b), static_cast<float>(c), static_cast<float>(d)};
}

void DrawMesh(Mesh const& i_mesh, std::vector<Point> const& i_positions, Colour const& i_colour,
              lum::Matrix<double> const& i_world_to_view, std::optional<lum::Plane<float>> const& i_clip,
              Progress const& i_progress, Canvas& io_canvas) {
  lum::Matrix<double> const normal_transform = i_world_to_view.GetNormalTransform();
  lum::Vector<double, 3> const towards_eye(0, 0, 1);
  auto const to_view = [&](lum::Vector<double, 3> const& i_normal) {
    return ToFloat(NormalizedOr(towards_eye, normal_transform * i_normal));
  };
  std::size_t drawn = 0;
  for (auto const& triangle : i_mesh.triangles) {
    if (drawn++ % 4096 == 0)
      i_progress(static_cast<double>(drawn) / static_cast<double>(i_mesh.triangles.size()));
    Vector const flat = to_view(i_mesh.GetDoubledArea(triangle));
    Corners corners{};
    for (std::size_t corner = 0; corner < 3; ++corner) {
      std::uint32_t const vertex = triangle[corner];
      // At an edge or corner, each triangle uses its own normal, so that the edge looks sharp.
      Vector const normal = i_mesh.vertices[vertex].rank > 1 ? flat : to_view(i_mesh.vertices[vertex].normal);
      corners[corner] = {i_positions[vertex], normal};
    }
    DrawTriangle(corners, i_colour, i_clip, io_canvas);
  }
}

// Draws a stroke from a to b, or a dot if they are equal, except where the mesh lies in front of it.
void DrawStroke(Point const& i_a, Point const& i_b, float i_radius, Colour const& i_colour,
                std::optional<lum::Plane<float>> const& i_clip, Canvas& io_canvas) {
  constexpr float depth_tolerance = 3;  // in radii, because strokes lie on the surface
  Vector const side = i_b - i_a;
  auto const [left, right] = std::minmax({i_a.GetX(), i_b.GetX()});
  auto const [bottom, top] = std::minmax({i_a.GetY(), i_b.GetY()});
  auto const [first_x, end_x] = io_canvas.GetSamples(left - i_radius, right + i_radius);
  auto const [first_y, end_y] = io_canvas.GetSamples(bottom - i_radius, top + i_radius);
  float const square = side.GetX() * side.GetX() + side.GetY() * side.GetY();
  for (std::size_t j = first_y; j < end_y; ++j) {
    for (std::size_t i = first_x; i < end_x; ++i) {
      float const x = io_canvas.ToCoordinate(i) - i_a.GetX();
      float const y = io_canvas.ToCoordinate(j) - i_a.GetY();
      float const along =
          square > 0 ? std::clamp((x * side.GetX() + y * side.GetY()) / square, 0.0F, 1.0F) : 0;
      if (std::hypot(x - along * side.GetX(), y - along * side.GetY()) > i_radius) continue;
      Point const point = i_a + side * along;
      Sample& sample = io_canvas.At(i, j);
      bool const is_hidden = point.GetZ() + depth_tolerance * i_radius < sample.depth;
      if (is_hidden || IsCutAway(i_clip, point)) continue;
      sample = {std::max(sample.depth, point.GetZ()), false, i_colour};
    }
  }
}

void DrawSharpEdges(Mesh const& i_mesh, std::vector<Point> const& i_positions, Palette const& i_palette,
                    std::optional<lum::Plane<float>> const& i_clip, Canvas& io_canvas) {
  constexpr float line_radius = 0.004F;
  constexpr float dot_radius = 0.011F;
  for (auto const& triangle : i_mesh.triangles) {
    for (std::size_t corner = 0; corner < 3; ++corner) {
      std::uint32_t const start = triangle[corner];
      std::uint32_t const end = triangle[(corner + 1) % 3];
      if (i_mesh.vertices[start].rank < 2 || i_mesh.vertices[end].rank < 2) continue;
      DrawStroke(i_positions[start], i_positions[end], line_radius, i_palette[1], i_clip, io_canvas);
    }
  }
  for (std::size_t vertex = 0; vertex < i_positions.size(); ++vertex) {
    if (i_mesh.vertices[vertex].rank < 3) continue;
    DrawStroke(i_positions[vertex], i_positions[vertex], dot_radius, i_palette[2], i_clip, io_canvas);
  }
}

// Colours the samples that show the back of the surface: there, the clip plane cuts the inside.
void DrawInside(View const& i_view, lum::Plane<float> const& i_clip,
                lum::Matrix<double> const& i_world_to_view, Canvas& io_canvas) {
  lum::Matrix<double> const view_to_world = i_world_to_view.GetInverse();
  for (std::size_t j = 0; j < io_canvas.GetSize(); ++j) {
    for (std::size_t i = 0; i < io_canvas.GetSize(); ++i) {
      Sample& sample = io_canvas.At(i, j);
      if (!sample.is_inside) continue;
      float const x = io_canvas.ToCoordinate(i);
      float const y = io_canvas.ToCoordinate(j);
      float const z = (i_clip.GetD() - i_clip.GetA() * x - i_clip.GetB() * y) / i_clip.GetC();
      lum::Point<double, 3> const point(static_cast<double>(x), static_cast<double>(y),
                                        static_cast<double>(z));
      sample.colour = i_view.inside(view_to_world * point);
    }
  }
}

// A grey that is lighter at the top.
float GetBackground(std::size_t i_row, std::size_t i_rows) {
  return 250 - 34 * static_cast<float>(i_row) / static_cast<float>(i_rows);
}

common::Picture AverageSamples(Canvas const& i_canvas, std::size_t i_size) {
  common::Picture picture{i_size, i_size, {}};
  picture.pixels.reserve(3 * i_size * i_size);
  constexpr float weight = 1.0F / (samples_per_pixel * samples_per_pixel);
  for (std::size_t row = 0; row < i_size; ++row) {
    std::size_t const first_y = samples_per_pixel * (i_size - 1 - row);
    for (std::size_t column = 0; column < i_size; ++column) {
      std::array<float, 3> sum{};
      for (std::size_t y = first_y; y < first_y + samples_per_pixel; ++y) {
        for (std::size_t x = samples_per_pixel * column; x < samples_per_pixel * (column + 1); ++x) {
          Sample const& sample = i_canvas.At(x, y);
          bool const is_empty = sample.depth == -std::numeric_limits<float>::infinity();
          for (std::size_t channel = 0; channel < 3; ++channel) {
            sum[channel] +=
                is_empty ? GetBackground(row, i_size) : static_cast<float>(sample.colour[channel]);
          }
        }
      }
      for (float const channel : sum) {
        picture.pixels.push_back(common::ToByte(static_cast<double>(channel * weight)));
      }
    }
  }
  return picture;
}

}  // namespace

lum::Quaternionf LookAt(double i_angle) {
  constexpr auto quarter = static_cast<float>(std::numbers::pi / 2);
  constexpr float tilt = 0.25F;
  lum::Quaternionf const turned({0, 0, 1}, static_cast<float>(i_angle));
  lum::Quaternionf const upright({1, 0, 0}, -quarter);
  lum::Quaternionf const tilted({1, 0, 0}, tilt);
  return tilted * upright * turned;
}

lum::Quaternionf Turn(double i_angle, std::size_t i_step, std::size_t i_steps) {
  // Slerp interpolates along the shorter arc, so a full turn is divided into three.
  constexpr double third = 2 * std::numbers::pi / 3;
  std::size_t const before = 3 * i_step / i_steps;
  double const from = i_angle + third * static_cast<double>(before);
  double const part =
      3 * static_cast<double>(i_step) / static_cast<double>(i_steps) - static_cast<double>(before);
  return LookAt(from).Slerp(static_cast<float>(part), LookAt(from + third));
}

common::Picture Draw(Mesh const& i_mesh, View const& i_view, Progress const& i_progress) {
  lum::Matrix<double> const world_to_view = GetWorldToView(i_mesh, i_view.rotation, i_view.is_turning);
  if (!IsFinite(world_to_view) || !world_to_view.HasInverse() || !IsFinite(world_to_view.GetInverse())) {
    RefuseToDraw();
  }
  auto const positions = ToView(i_mesh, world_to_view);
  std::optional<lum::Plane<float>> clip;
  if (i_view.clip) clip = ToView(*i_view.clip, world_to_view);
  Canvas canvas(samples_per_pixel * i_view.size);
  DrawMesh(i_mesh, positions, i_view.palette[0], world_to_view, clip, i_progress, canvas);
  if (clip) DrawInside(i_view, *clip, world_to_view, canvas);
  if (i_view.palette[1] != i_view.palette[0]) DrawSharpEdges(i_mesh, positions, i_view.palette, clip, canvas);
  return AverageSamples(canvas, i_view.size);
}

}  // namespace surface

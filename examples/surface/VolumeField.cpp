#include "surface/VolumeField.h"

#include <geometry/CubeVertexIterator.h>
#include <geometry/Range.h>
#include <geometry/TrilinearInterpolation.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace surface {
namespace {

// All digits that tell it from its neighbours, and no more.
std::string Print(double i_value) {
  std::array<char, 32> text{};
  auto const [end, error] = std::to_chars(text.data(), text.data() + text.size(), i_value);
  return {text.data(), end};
}

// Blending along an edge is linear: false position meets zero at once, but for rounding.
constexpr double relative_tolerance = 1e-9;

double GetTolerance(common::Volume const& i_volume) {
  lum::Range<double> const range = GetRange(i_volume);
  return std::max(relative_tolerance * (range.GetUpper() - range.GetLower()),
                  std::numeric_limits<double>::denorm_min());
}

}  // namespace

lum::Range<double> GetRange(common::Volume const& i_volume) {
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -lowest;
  for (double const value : i_volume.values) {
    if (!std::isfinite(value)) continue;
    lowest = std::min(lowest, value);
    highest = std::max(highest, value);
  }
  return {lowest, highest};
}

VolumeField::VolumeField(common::Volume const& i_volume, double i_level)
    : Field({{i_volume.size[0] + 2, i_volume.size[1] + 2, i_volume.size[2] + 2},
             i_volume.voxel_to_world * lum::Matrix<double>::Translate(-1, -1, -1),
             surface::GetTolerance(i_volume),
             1}),
      m_volume(i_volume),
      m_level(i_level),
      m_lowest(GetRange(i_volume).GetLower()) {
  lum::Range<double> const range = GetRange(i_volume);
  if (range.IsEmpty()) throw std::invalid_argument("none of the volume's values is finite");
  if (!std::isfinite(range.GetUpper() - range.GetLower())) {
    throw std::invalid_argument("the volume's values range too far: from " + Print(range.GetLower()) +
                                " to " + Print(range.GetUpper()));
  }
  if (i_level >= range.GetLower() && i_level < range.GetUpper()) return;
  throw std::invalid_argument("the volume never crosses the level " + Print(i_level) +
                              ": its values range from " + Print(range.GetLower()) + " to " +
                              Print(range.GetUpper()));
}

double VolumeField::Evaluate(Point const& i_grid_point) const {
  auto const [x, y, z] = i_grid_point;
  std::array<double, 3> const low = {std::floor(x), std::floor(y), std::floor(z)};
  std::array<double, 8> values{};
  for (lum::CubeElementIds::Vertex const vertex : lum::CubeVertexIterable<lum::CubeElementIds::Cube>()) {
    auto const bits = static_cast<unsigned>(vertex);
    values[bits] = AtCorner({low[0] + (bits & 1U), low[1] + (bits >> 1 & 1U), low[2] + (bits >> 2 & 1U)});
  }
  return lum::TrilinearInterpolation(values, {x - low[0], y - low[1], z - low[2]});
}

double VolumeField::AtCorner(std::array<double, 3> const& i_corner) const {
  double value = m_lowest;
  bool is_voxel = true;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    is_voxel = is_voxel && i_corner[axis] >= 1 && i_corner[axis] <= static_cast<double>(m_volume.size[axis]);
  }
  if (is_voxel) {
    value = m_volume.At(static_cast<std::size_t>(i_corner[0]) - 1, static_cast<std::size_t>(i_corner[1]) - 1,
                        static_cast<std::size_t>(i_corner[2]) - 1);
    if (!std::isfinite(value)) value = m_lowest;
  }
  return value - m_level;
}

}  // namespace surface

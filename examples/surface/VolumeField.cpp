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

#include "common/Conversion.h"

namespace surface {
namespace {

// The shortest text that reads back as the same number.
std::string Print(double i_value) {
  std::array<char, 32> text{};
  auto const [end, error] = std::to_chars(text.data(), text.data() + text.size(), i_value);
  return {text.data(), end};
}

// Interpolation along an edge is linear, so regula falsi finds the root in one step, apart from rounding.
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
      m_lowest(GetRange(i_volume).GetLower()),
      m_is_finite(std::all_of(i_volume.values.begin(), i_volume.values.end(),
                              [](double i_value) { return std::isfinite(i_value); })) {
  lum::Range<double> const range = GetRange(i_volume);
  if (range.IsEmpty()) throw std::invalid_argument("none of the volume's values is finite");
  if (!std::isfinite(range.GetUpper() - range.GetLower())) {
    throw std::invalid_argument("the range of the volume's values overflows: from " +
                                Print(range.GetLower()) + " to " + Print(range.GetUpper()));
  }
  if (i_level >= range.GetLower() && i_level < range.GetUpper()) return;
  throw std::invalid_argument("the volume never crosses the level " + Print(i_level) +
                              ": its values range from " + Print(range.GetLower()) + " to " +
                              Print(range.GetUpper()));
}

double VolumeField::Evaluate(Point const& i_grid_point) const {
  auto const [x, y, z] = i_grid_point;
  Point const low(std::floor(x), std::floor(y), std::floor(z));
  if (low == i_grid_point) return AtCorner(low);
  return lum::TrilinearInterpolation(AtCorners(low), lum::Origin + (i_grid_point - low));
}

// The first branch needs no check of each corner. It serves most cells, which lie between finite voxels.
std::array<double, 8> VolumeField::AtCorners(Point const& i_low) const {
  using lum::CubeElementIds::Vertex;
  constexpr lum::CubeVertexIterable<lum::CubeElementIds::Cube> corners;
  std::array<double, 8> values{};
  if (m_is_finite && IsVoxel(i_low) && IsVoxel(i_low + Vector(1, 1, 1))) {
    std::size_t const width = m_volume.size[0];
    std::size_t const height = m_volume.size[1];
    std::size_t const first = GetVoxel(i_low);
    for (Vertex const vertex : corners) {
      auto const bits = static_cast<unsigned>(vertex);
      std::size_t const step = (bits & 1U) + width * ((bits >> 1 & 1U) + height * (bits >> 2 & 1U));
      values[bits] = m_volume.values[first + step] - m_level;
    }
  } else {
    for (Vertex const vertex : corners) {
      auto const bits = static_cast<unsigned>(vertex);
      values[bits] = AtCorner(i_low + Vector(bits & 1U, bits >> 1 & 1U, bits >> 2 & 1U));
    }
  }
  return values;
}

double VolumeField::AtCorner(Point const& i_corner) const {
  double value = m_lowest;
  if (IsVoxel(i_corner)) value = m_volume.values[GetVoxel(i_corner)];
  return (std::isfinite(value) ? value : m_lowest) - m_level;
}

bool VolumeField::IsVoxel(Point const& i_corner) const {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (!(i_corner[axis] >= 1 && i_corner[axis] <= static_cast<double>(m_volume.size[axis]))) return false;
  }
  return true;
}

std::size_t VolumeField::GetVoxel(Point const& i_corner) const {
  auto const [x, y, z] = i_corner;
  using common::ToInteger;
  return m_volume.GetIndex(ToInteger<std::size_t>(x) - 1, ToInteger<std::size_t>(y) - 1,
                           ToInteger<std::size_t>(z) - 1);
}

}  // namespace surface

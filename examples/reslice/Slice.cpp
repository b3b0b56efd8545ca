#include "reslice/Slice.h"

#include <geometry/Point.h>
#include <geometry/Quaternion.h>
#include <geometry/Range.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>
#include <stdexcept>

#include "common/Conversion.h"

namespace reslice {
namespace {

using Point = lum::Point<double, 3>;
using Vector = lum::Vector<double, 3>;

// Rounds a component that is almost -1, 0 or 1. In single precision, a quarter turn leaves about 1e-7 instead
// of 0, which would blend neighbouring voxels in a slice that lies on the grid.
double Snap(float i_component) {
  float const nearest = std::round(i_component);
  return static_cast<double>(std::abs(i_component - nearest) < 1e-6F ? nearest : i_component);
}

Vector Rotate(lum::Quaternionf const& i_rotation, lum::Vector<float, 3> const& i_vector) {
  auto const [x, y, z] = i_rotation.Transform(i_vector);
  return {Snap(x), Snap(y), Snap(z)};
}

// The middle voxel, never a point between two, so that the pixels of an unrotated slice fall on voxels.
Point GetMiddle(common::Volume const& i_volume) {
  Point middle;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    std::size_t const voxel = i_volume.size[axis] / 2;
    middle[axis] = static_cast<double>(voxel);
  }
  return middle;
}

bool IsFinite(lum::Matrix<double> const& i_matrix) {
  double const* const p_values = i_matrix.GetAsPtr();
  return std::all_of(p_values, p_values + 16, [](double i_value) { return std::isfinite(i_value); });
}

// The extent of a slice from its middle, in pixels.
struct Extent {
  double left;
  double right;
  double down;
  double up;
};

Extent GetExtent(std::size_t i_size) {
  std::size_t const before = i_size / 2;
  auto const low = static_cast<double>(before);
  auto const high = static_cast<double>(i_size - 1 - before);
  return {low, high, low, high};
}

// The smallest extent that contains the centres of all voxels.
Extent GetExtent(common::Volume const& i_volume, lum::Matrix<double> const& i_voxel_to_plane) {
  Extent extent{};
  for (unsigned corner = 0; corner < 8; ++corner) {
    Point voxel;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if ((corner >> axis & 1) != 0) voxel[axis] = static_cast<double>(i_volume.size[axis] - 1);
    }
    auto const [x, y, z] = i_voxel_to_plane * voxel;
    extent.left = std::max(extent.left, std::floor(-x));
    extent.right = std::max(extent.right, std::floor(x));
    extent.down = std::max(extent.down, std::floor(-y));
    extent.up = std::max(extent.up, std::floor(y));
  }
  return extent;
}

// Where the volume, with the half voxels around it, begins and ends along a direction, in millimetres from
// the middle voxel.
lum::Range<double> GetReach(common::Volume const& i_volume, Vector const& i_direction) {
  Point const middle = GetMiddle(i_volume);
  double begin = 0;
  double end = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    Vector step;
    step[axis] = 1;
    double const length = lum::Dot(i_direction, i_volume.voxel_to_world * step);
    double const first = length * (-0.5 - middle[axis]);
    double const last = length * (static_cast<double>(i_volume.size[axis]) - 0.5 - middle[axis]);
    begin += std::min(first, last);
    end += std::max(first, last);
  }
  return {begin, end};
}

void RequireHit(common::Volume const& i_volume, Vector const& i_normal, double i_offset) {
  lum::Range<double> const reach = GetReach(i_volume, i_normal);
  if (reach.Contains(i_offset)) return;
  std::ostringstream message;
  message << std::setprecision(10) << "at --offset " << i_offset
          << " the slice misses the volume, which reaches from " << reach.GetLower() << " to "
          << reach.GetUpper() << " mm along the slice's normal";
  throw std::invalid_argument(message.str());
}

}  // namespace

Slice PlaceSlice(common::Volume const& i_volume, Placement const& i_placement) {
  if (!(lum::GetLength(i_placement.axis) > 0)) throw std::invalid_argument("the axis has length zero");
  lum::Quaternionf const rotation(lum::GetNormalized(i_placement.axis),
                                  static_cast<float>(i_placement.angle));
  Vector const x = Rotate(rotation, {1, 0, 0});
  Vector const y = Rotate(rotation, {0, 1, 0});
  Vector const z = Rotate(rotation, {0, 0, 1});
  RequireHit(i_volume, z, i_placement.offset);
  Point const middle = i_volume.voxel_to_world * GetMiddle(i_volume) + z * i_placement.offset;

  lum::Matrix<double> const plane_to_world(middle, x, y, z);
  Extent const extent = i_placement.size
                            ? GetExtent(*i_placement.size)
                            : GetExtent(i_volume, plane_to_world.GetInverse() * i_volume.voxel_to_world);
  if (!(std::max(extent.left + extent.right, extent.down + extent.up) < static_cast<double>(largest_size))) {
    throw std::invalid_argument(
        "the slice would be more than 16384 pixels wide or high; --size makes it smaller");
  }
  lum::Matrix<double> const pixel_to_world =
      plane_to_world * lum::Matrix<double>::Translate(-extent.left, -extent.down, 0);
  if (!IsFinite(pixel_to_world) || !IsFinite(i_volume.voxel_to_world.GetInverse() * pixel_to_world)) {
    throw std::invalid_argument("the volume is too large, too small, too flat or too far away to be sliced");
  }
  return {common::ToInteger<std::size_t>(extent.left + extent.right) + 1,
          common::ToInteger<std::size_t>(extent.down + extent.up) + 1, pixel_to_world};
}

Samples Resample(common::Volume const& i_volume, Slice const& i_slice) {
  lum::Matrix<double> const pixel_to_voxel = i_volume.voxel_to_world.GetInverse() * i_slice.pixel_to_world;
  Samples samples;
  samples.reserve(i_slice.width * i_slice.height);
  bool is_hit = false;
  std::vector<Point> points(i_slice.width);
  for (std::size_t row = 0; row < i_slice.height; ++row) {
    auto const y = static_cast<double>(i_slice.height - 1 - row);
    for (std::size_t column = 0; column < i_slice.width; ++column) {
      points[column] = Point(static_cast<double>(column), y, 0);
    }
    lum::TransformPoints(pixel_to_voxel, points, points);
    for (Point const& point : points) samples.push_back(i_volume.Sample(point));
    is_hit = is_hit || std::any_of(points.begin(), points.end(),
                                   [&](Point const& i_point) { return i_volume.Contains(i_point); });
  }
  if (!is_hit) {
    throw std::invalid_argument(
        "no pixel of the slice lies in the volume; a larger --size or another --offset shows more");
  }
  return samples;
}

}  // namespace reslice

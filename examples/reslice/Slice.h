#pragma once

#include <geometry/Matrix.h>
#include <geometry/Vector.h>

#include <cstddef>
#include <optional>
#include <vector>

#include "common/Volume.h"

namespace reslice {

/// The largest width and height of a slice, in pixels.
constexpr std::size_t largest_size = 16384;

/// The position of the slice plane. Without a rotation, it is parallel to the world's x and y axes, through
/// the volume's middle voxel.
struct Placement {
  lum::Vector<float, 3> axis{0, 0, 1};  ///< the axis of the rotation, of any length but zero
  double angle = 0;                     ///< of the rotation, in radians, right-handed
  double offset = 0;                    ///< millimetres along the rotated normal
  /// Pixels along each side. If empty, the slice shows the whole volume.
  std::optional<std::size_t> size = std::nullopt;
};

/// A grid of pixels of one square millimetre. Columns run along the plane's x axis; row 0 is at the top.
struct Slice {
  std::size_t width;
  std::size_t height;
  /// Transforms (column, height - 1 - row, 0) to millimetres in the world.
  lum::Matrix<double> pixel_to_world;
};

/// Interpolated values, row by row from the top; NaN outside the volume.
using Samples = std::vector<double>;

/// Throws `std::invalid_argument` if the axis has length zero, the plane misses the volume or a side exceeds
/// `largest_size`.
Slice PlaceSlice(common::Volume const& i_volume, Placement const& i_placement);

/// Samples the volume at the centre of each pixel. Throws `std::invalid_argument` if all lie outside.
Samples Resample(common::Volume const& i_volume, Slice const& i_slice);

}  // namespace reslice

#pragma once

#include <geometry/Matrix.h>
#include <geometry/Vector.h>

#include <cstddef>
#include <optional>
#include <vector>

#include "common/Volume.h"

namespace reslice {

/// How the slice plane lies. Unturned it spans the world's x and y axes through the volume's middle voxel.
struct Placement {
  lum::Vector<float, 3> axis{0, 0, 1};  ///< what the plane is turned about, of any length but zero
  double angle = 0;                     ///< radians, right-handed
  double offset = 0;                    ///< millimetres along the turned normal
  std::optional<std::size_t> size =
      std::nullopt;  ///< pixels along each side; as many as show the whole volume if empty
};

/// A grid of pixels of one square millimetre in the world: column right along the plane's x axis, row 0 on
/// top.
struct Slice {
  std::size_t width;
  std::size_t height;
  /// Takes (column, height - 1 - row, 0) to millimetres in the world.
  lum::Matrix<double> pixel_to_world;
};

/// A picture in the slice's order, row by row from the top; NaN outside the volume.
using Samples = std::vector<double>;

/// An axis of length zero, and a slice of more than 16384 pixels along a side, throw `std::invalid_argument`.
Slice PlaceSlice(common::Volume const& i_volume, Placement const& i_placement);

Samples Resample(common::Volume const& i_volume, Slice const& i_slice);

}  // namespace reslice

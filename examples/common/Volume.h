#pragma once

#include <geometry/Matrix.h>
#include <geometry/Point.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace common {

/// A scalar volume and its position in the world.
///
/// Voxel (i, j, k) is centred at the voxel coordinates (i, j, k).
struct Volume {
  std::array<std::size_t, 3> size;     ///< voxels along each axis, none zero
  lum::Matrix<double> voxel_to_world;  ///< to millimetres; affine and invertible
  std::vector<double> values;          ///< the first index varies fastest

  std::size_t GetIndex(std::size_t i_i, std::size_t i_j, std::size_t i_k) const {
    return i_i + size[0] * (i_j + size[1] * i_k);
  }
  double At(std::size_t i_i, std::size_t i_j, std::size_t i_k) const {
    return values[GetIndex(i_i, i_j, i_k)];
  }

  /// Whether the voxel coordinates lie at most half a voxel outside the outermost centres.
  bool Contains(lum::Point<double, 3> const& i_voxel) const;

  /// The trilinear interpolation at voxel coordinates, and NaN outside the volume.
  ///
  /// Coordinates within 1e-9 of a whole number count as that number. Only voxels whose weight is above zero
  /// count: at a voxel's centre, the result is exactly that voxel's value, even beside voxels that are NaN.
  double Sample(lum::Point<double, 3> const& i_voxel) const;
};

/// Reads a NIfTI-1 or NIfTI-2 file of single real numbers, which may be compressed. Of a pair, either name
/// may be given. 64-bit integers are rounded to the nearest double. Throws `std::runtime_error` with a
/// one-line message on failure.
Volume ReadVolume(std::string const& i_path);

}  // namespace common

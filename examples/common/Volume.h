#pragma once

#include <geometry/Matrix.h>
#include <geometry/Point.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace common {

/// A scalar volume and where it lies in the world.
///
/// Voxel (i, j, k) is centred at the voxel coordinates (i, j, k); voxel_to_world takes those to millimetres.
struct Volume {
  std::array<std::size_t, 3> size;     ///< voxels along each axis, none zero
  lum::Matrix<double> voxel_to_world;  ///< affine, with its inverse
  std::vector<double> values;          ///< the first axis varies fastest

  std::size_t GetIndex(std::size_t i_i, std::size_t i_j, std::size_t i_k) const {
    return i_i + size[0] * (i_j + size[1] * i_k);
  }
  double At(std::size_t i_i, std::size_t i_j, std::size_t i_k) const {
    return values[GetIndex(i_i, i_j, i_k)];
  }

  /// The trilinear blend at voxel coordinates; NaN outside the voxels, which reach half a voxel beyond their
  /// centres. At a voxel's centre it is the voxel's value exactly.
  double Sample(lum::Point<double, 3> const& i_voxel) const;
};

/// Reads a NIfTI file. What cannot be read throws `std::runtime_error` with one line of text.
Volume ReadVolume(std::string const& i_path);

}  // namespace common

#pragma once

#include <geometry/Matrix.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace common {

/// What the header of a NIfTI-1 or NIfTI-2 file says of a volume.
struct NiftiHeader {
  std::array<std::size_t, 3> size;     ///< voxels along each axis; at most 2^57 in all
  int datatype;                        ///< a `DT_` code of nifti1.h
  bool is_swapped;                     ///< whether numbers are in the other byte order
  bool is_pair;                        ///< whether the voxels are in a file of their own
  std::int64_t voxels_begin;           ///< the place of the first voxel in its file, in bytes
  double slope;                        ///< values are multiplied by it, unless it is 0,
  double intercept;                    ///< and this is added; both are finite
  lum::Matrix<double> voxel_to_world;  ///< to millimetres; affine and invertible
};

/// The size of the longer of the two headers. A file with one volume may be shorter.
constexpr std::size_t largest_nifti_header = 540;

/// Parses the beginning of a file. Throws `std::runtime_error` with a one-line message that begins with the
/// path.
NiftiHeader ParseNiftiHeader(std::span<unsigned char const> i_bytes, std::string const& i_path);

/// The refusal of values of the type with this `DT_` code.
std::runtime_error MakeTypeError(std::string const& i_path, int i_datatype);

}  // namespace common

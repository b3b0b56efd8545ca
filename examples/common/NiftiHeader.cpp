#include "common/NiftiHeader.h"

#include <nifti2_io.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

// libnifti converts the bytes of a header. It does not open the file: nifti_image_read prints errors whatever
// its debug level, moves voxels that begin within the header, and takes the voxels of a pair from a file of
// another kind if there is none of the right name.

namespace common {
namespace {

static_assert(sizeof(nifti_1_header) == 348 && sizeof(nifti_2_header) == largest_nifti_header);

struct FreeImage {
  void operator()(nifti_image* ip_image) const { nifti_image_free(ip_image); }
};
using Image = std::unique_ptr<nifti_image, FreeImage>;

Image Convert(nifti_1_header const& i_header) { return Image(nifti_convert_n1hdr2nim(i_header, nullptr)); }
Image Convert(nifti_2_header const& i_header) { return Image(nifti_convert_n2hdr2nim(i_header, nullptr)); }

// libnifti replaces sizes below 1 by 1. It writes outside of its copy of the sizes if their number is wrong.
template <class Header>
std::array<std::size_t, 3> GetSize(Header const& i_header, std::string const& i_path) {
  if (i_header.dim[0] < 1 || i_header.dim[0] > 7) {
    throw std::runtime_error(i_path + " has a damaged NIfTI header");
  }
  auto const* const p_end = i_header.dim + 1 + i_header.dim[0];
  auto const* const p_others = std::min(i_header.dim + 4, p_end);
  if (std::any_of(p_others, p_end, [](auto i_size) { return i_size > 1; })) {
    throw std::runtime_error(i_path + " has more than three dimensions");
  }
  if (std::any_of(i_header.dim + 1, p_others, [](auto i_size) { return i_size < 1; })) {
    throw std::runtime_error(i_path + " holds no voxels");
  }
  std::array<std::size_t, 3> size = {1, 1, 1};
  std::copy(i_header.dim + 1, p_others, size.begin());
  std::size_t largest = std::size_t{1} << 57;  // no file holds as many voxels of 8 bytes
  for (std::size_t const count : size) largest /= count;
  if (largest == 0) throw std::runtime_error(i_path + " is truncated or damaged");
  return size;
}

// NIfTI-1 has the offset as a float. Rounding to long double changes only places that no file has.
std::int64_t GetVoxelsBegin(long double i_offset, std::size_t i_smallest, std::string const& i_path) {
  std::string const voxels = i_path + " says that its voxels begin ";
  if (i_offset < static_cast<long double>(i_smallest)) {
    throw std::runtime_error(voxels + (i_smallest > 0 ? "before the end of the header" : "before the file"));
  }
  if (i_offset >= 0x1p63L) throw std::runtime_error(voxels + "after the end of the file");
  if (i_offset != std::floor(i_offset)) {
    throw std::runtime_error(voxels + "at a byte that is not a whole number");
  }
  return static_cast<std::int64_t>(i_offset);
}

// libnifti replaces numbers that are not finite by 0.
template <class Header>
bool IsQuaternionFinite(Header const& i_header) {
  return std::isfinite(i_header.quatern_b + i_header.quatern_c + i_header.quatern_d + i_header.qoffset_x +
                       i_header.qoffset_y + i_header.qoffset_z);
}

// Unknown units count as millimetres.
double GetMillimetres(int i_units) {
  if (i_units == NIFTI_UNITS_METER) return 1000;
  return i_units == NIFTI_UNITS_MICRON ? 0.001 : 1;
}

lum::Matrix<double> MakeAffine(nifti_image const& i_image) {
  nifti_dmat44 const& rows = i_image.sform_code > 0 ? i_image.sto_xyz : i_image.qto_xyz;
  std::array<double, 16> values{};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      values[row + 4 * column] = rows.m[row][column] * GetMillimetres(i_image.xyz_units);
    }
  }
  values[15] = 1;
  return lum::Matrix<double>(values.data());
}

bool IsInvertible(lum::Matrix<double> const& i_affine) {
  lum::Matrix<double> const inverse = i_affine.GetInverse();
  auto const is_finite = [](double i_value) { return std::isfinite(i_value); };
  double const determinant = i_affine.GetDeterminant();
  return std::all_of(i_affine.GetAsPtr(), i_affine.GetAsPtr() + 16, is_finite) &&
         std::all_of(inverse.GetAsPtr(), inverse.GetAsPtr() + 16, is_finite) && std::isfinite(determinant) &&
         determinant != 0;
}

template <class Header>
NiftiHeader Parse(std::span<unsigned char const> i_bytes, int i_version, std::string const& i_path) {
  Header header{};
  std::memcpy(&header, i_bytes.data(), sizeof(Header));
  bool const is_swapped = header.sizeof_hdr != static_cast<int>(sizeof(Header));
  bool const is_pair = !NIFTI_ONEFILE(header);
  if (is_swapped) swap_nifti_header(&header, i_version);
  std::array<std::size_t, 3> const size = GetSize(header, i_path);
  std::int64_t const voxels_begin = GetVoxelsBegin(header.vox_offset, is_pair ? 0 : sizeof(Header), i_path);
  // libnifti prints an error for a type of unknown size.
  int bytes_of_voxel = 0;
  nifti_datatype_sizes(header.datatype, &bytes_of_voxel, nullptr);
  if (bytes_of_voxel == 0) throw MakeTypeError(i_path, header.datatype);
  // Three dimensions, because libnifti checks the spacing only of axes that are counted. No offset, because
  // libnifti converts it to int.
  header.dim[0] = 3;
  std::copy(size.begin(), size.end(), header.dim + 1);
  header.vox_offset = 0;
  Image const image = Convert(header);
  if (!image) throw std::runtime_error(i_path + " has a damaged NIfTI header");
  lum::Matrix<double> const affine = MakeAffine(*image);
  bool const has_quaternion = image->sform_code <= 0 && image->qform_code > 0;
  if ((has_quaternion && !IsQuaternionFinite(header)) || !IsInvertible(affine)) {
    throw std::runtime_error(i_path + " has an affine that cannot be inverted");
  }
  return {size,         image->datatype,  is_swapped,       is_pair,
          voxels_begin, image->scl_slope, image->scl_inter, affine};
}

}  // namespace

NiftiHeader ParseNiftiHeader(std::span<unsigned char const> i_bytes, std::string const& i_path) {
  // The messages here replace libnifti's own. Set once, so that threads may read volumes at the same time.
  [[maybe_unused]] static bool const is_silent = (nifti_set_debug_level(0), true);
  nifti_2_header header{};  // for its alignment
  std::size_t const size = std::min(i_bytes.size(), sizeof(header));
  std::copy_n(i_bytes.begin(), size, reinterpret_cast<unsigned char*>(&header));
  int const version = nifti_header_version(reinterpret_cast<char const*>(&header), size);
  if (version == 1) return Parse<nifti_1_header>(i_bytes, version, i_path);
  // libnifti does not compare the second half of the signature.
  bool const is_version_2 =
      version == 2 && size == sizeof(header) && std::memcmp(header.magic + 4, "\r\n\032\n", 4) == 0;
  if (!is_version_2) throw std::runtime_error(i_path + " is not a NIfTI file");
  return Parse<nifti_2_header>(i_bytes, version, i_path);
}

std::runtime_error MakeTypeError(std::string const& i_path, int i_datatype) {
  return std::runtime_error(i_path + " has values of type " + nifti_datatype_string(i_datatype) + " (" +
                            std::to_string(i_datatype) + "), which is not supported");
}

}  // namespace common

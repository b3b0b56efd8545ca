#include "common/Volume.h"

#include <geometry/TrilinearInterpolation.h>
#include <nifti1_io.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <stdexcept>

namespace common {
namespace {

struct FreeImage {
  void operator()(nifti_image* ip_image) const { nifti_image_free(ip_image); }
};
using Image = std::unique_ptr<nifti_image, FreeImage>;

// NIfTI stores matrices by rows, lum by columns.
lum::Matrix<double> ToMatrix(mat44 const& i_affine) {
  std::array<double, 16> values{};
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      values[row + 4 * column] = static_cast<double>(i_affine.m[row][column]);
    }
  }
  return lum::Matrix<double>(values.data());
}

// Replaces nifti_image_load, which accepts truncated files and turns NaNs into 0. zlib reads uncompressed
// files too, and detects compressed ones that are truncated or damaged. The buffer grows with the bytes that
// are read, because a damaged header may claim any number of them.
std::vector<unsigned char> ReadBytes(nifti_image const& i_image, std::size_t i_count) {
  constexpr std::size_t largest_read = std::size_t{1} << 24;
  std::vector<unsigned char> bytes;
  gzFile file = gzopen(i_image.iname, "rb");
  bool is_whole = file != nullptr && gzseek(file, i_image.iname_offset, SEEK_SET) == i_image.iname_offset;
  while (is_whole && bytes.size() < i_count) {
    std::size_t const done = bytes.size();
    std::size_t const wanted = std::min(i_count - done, largest_read);
    bytes.resize(done + wanted);
    int const read = gzread(file, &bytes[done], static_cast<unsigned>(wanted));
    is_whole = read > 0;
    bytes.resize(is_whole ? done + static_cast<std::size_t>(read) : done);
  }
  // Reads to the end of the file, where zlib verifies the checksum. Other data may follow the voxels.
  std::array<unsigned char, 4096> rest{};
  int read_on = is_whole ? 1 : 0;
  while (read_on > 0) read_on = gzread(file, rest.data(), static_cast<unsigned>(rest.size()));
  is_whole = is_whole && read_on == 0;
  if ((file != nullptr && gzclose_r(file) != Z_OK) || !is_whole) {
    throw std::runtime_error(std::string(i_image.iname) + " is truncated or damaged");
  }
  return bytes;
}

template <class T>
std::vector<double> ReadValues(nifti_image const& i_image) {
  std::size_t const count = i_image.nvox;
  std::vector<unsigned char> bytes = ReadBytes(i_image, count * sizeof(T));
  if (i_image.swapsize > 1 && i_image.byteorder != nifti_short_order()) {
    nifti_swap_Nbytes(count, i_image.swapsize, bytes.data());
  }
  std::vector<double> values(count);
  for (std::size_t voxel = 0; voxel < count; ++voxel) {
    T value{};
    std::memcpy(&value, &bytes[voxel * sizeof(T)], sizeof(T));
    values[voxel] = static_cast<double>(value);
  }
  return values;
}

using Reader = std::vector<double> (*)(nifti_image const&);

// Null for every type but single real numbers.
Reader GetReader(int i_datatype) {
  switch (i_datatype) {
    case DT_UINT8:
      return &ReadValues<std::uint8_t>;
    case DT_INT8:
      return &ReadValues<std::int8_t>;
    case DT_UINT16:
      return &ReadValues<std::uint16_t>;
    case DT_INT16:
      return &ReadValues<std::int16_t>;
    case DT_UINT32:
      return &ReadValues<std::uint32_t>;
    case DT_INT32:
      return &ReadValues<std::int32_t>;
    case DT_FLOAT32:
      return &ReadValues<float>;
    case DT_FLOAT64:
      return &ReadValues<double>;
    default:
      return nullptr;
  }
}

}  // namespace

double Volume::Sample(lum::Point<double, 3> const& i_voxel) const {
  std::array<std::size_t, 3> low{};
  std::array<std::size_t, 3> high{};
  lum::Point<double, 3> in_cell;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    auto const last = static_cast<double>(size[axis] - 1);
    if (!(i_voxel[axis] >= -0.5 && i_voxel[axis] <= last + 0.5))
      return std::numeric_limits<double>::quiet_NaN();
    double const clamped = std::clamp(i_voxel[axis], 0.0, last);
    double const floor = std::floor(clamped);
    low[axis] = static_cast<std::size_t>(floor);
    high[axis] = std::min(low[axis] + 1, size[axis] - 1);
    in_cell[axis] = clamped - floor;
  }
  std::array<double, 8> corners{};
  for (std::size_t corner = 0; corner < 8; ++corner) {
    corners[corner] = At((corner & 1) != 0 ? high[0] : low[0], (corner & 2) != 0 ? high[1] : low[1],
                         (corner & 4) != 0 ? high[2] : low[2]);
  }
  return lum::TrilinearInterpolation(corners, in_cell);
}

Volume ReadVolume(std::string const& i_path) {
  nifti_set_debug_level(0);  // the error messages here replace libnifti's own
  if (!std::ifstream(i_path)) throw std::runtime_error("cannot open " + i_path);
  if (is_nifti_file(i_path.c_str()) <= 0) throw std::runtime_error(i_path + " is not a NIfTI file");
  Image const image(nifti_image_read(i_path.c_str(), 0));
  if (!image) throw std::runtime_error(i_path + " has a damaged NIfTI header");
  if (image->nt > 1 || image->nu > 1 || image->nv > 1 || image->nw > 1) {
    throw std::runtime_error(i_path + " has more than three dimensions");
  }
  Reader const read_values = GetReader(image->datatype);
  if (read_values == nullptr) {
    throw std::runtime_error(i_path + " has values of type " + nifti_datatype_string(image->datatype) +
                             ", which is not supported");
  }
  if (image->nx < 1 || image->ny < 1 || image->nz < 1) throw std::runtime_error(i_path + " holds no voxels");
  lum::Matrix<double> const voxel_to_world =
      ToMatrix(image->sform_code > 0 ? image->sto_xyz : image->qto_xyz);
  double const determinant = voxel_to_world.GetDeterminant();
  if (!std::isfinite(determinant) || determinant == 0) {
    throw std::runtime_error(i_path + " has an affine that cannot be inverted");
  }

  Volume volume{{static_cast<std::size_t>(image->nx), static_cast<std::size_t>(image->ny),
                 static_cast<std::size_t>(image->nz)},
                voxel_to_world,
                read_values(*image)};
  if (image->scl_slope != 0) {
    auto const slope = static_cast<double>(image->scl_slope);
    auto const intercept = static_cast<double>(image->scl_inter);
    for (double& value : volume.values) value = value * slope + intercept;
  }
  return volume;
}

}  // namespace common

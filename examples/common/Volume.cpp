#include "common/Volume.h"

#include <geometry/TrilinearInterpolation.h>
#include <nifti2_io.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "common/NiftiHeader.h"

namespace common {
namespace {

struct Close {
  void operator()(gzFile ip_file) const { gzclose_r(ip_file); }
};
using File = std::unique_ptr<gzFile_s, Close>;

// zlib reads uncompressed files too, and detects compressed ones that are truncated or damaged.
File Open(std::string const& i_path) {
  File file(std::ifstream(i_path) ? gzopen(i_path.c_str(), "rb") : nullptr);
  if (!file) throw std::runtime_error("cannot open " + i_path);
  return file;
}

// The other half of a pair: i_path with another ending, compressed or not, whichever exists.
std::string GetOther(std::string const& i_path, std::string_view i_ending, std::string_view i_other) {
  std::string stem = i_path;
  if (stem.ends_with(".gz")) stem.resize(stem.size() - 3);
  stem.resize(stem.size() - i_ending.size());
  stem += i_other;
  return !std::filesystem::exists(stem) && std::filesystem::exists(stem + ".gz") ? stem + ".gz" : stem;
}

bool IsHalf(std::string const& i_path, std::string_view i_ending) {
  return i_path.ends_with(i_ending) || i_path.ends_with(std::string(i_ending) + ".gz");
}

// The paths are equal, except for a pair.
struct Found {
  std::string header_path;
  std::string voxels_path;
  NiftiHeader header;
};

Found FindHeader(std::string const& i_path) {
  std::string const path = IsHalf(i_path, ".img") ? GetOther(i_path, ".img", ".hdr") : i_path;
  File const file = Open(path);
  std::array<unsigned char, largest_nifti_header> bytes{};
  int const count = gzread(file.get(), bytes.data(), bytes.size());
  NiftiHeader header = ParseNiftiHeader({bytes.data(), static_cast<std::size_t>(std::max(count, 0))}, path);
  if (!header.is_pair) return {path, path, header};
  if (!IsHalf(path, ".hdr")) {
    throw std::runtime_error(path + " is half of a pair, but its name does not end in .hdr");
  }
  return {path, GetOther(path, ".hdr", ".img"), header};
}

// The buffer grows with the bytes that are read, because a damaged header may claim any number of them.
std::vector<unsigned char> ReadBytes(std::string const& i_path, std::int64_t i_begin, std::size_t i_count) {
  constexpr std::size_t largest_read = std::size_t{1} << 24;
  File file = Open(i_path);
  std::vector<unsigned char> bytes;
  int read = 0;
  bool is_whole = gzseek(file.get(), i_begin, SEEK_SET) == i_begin;
  while (is_whole && bytes.size() < i_count) {
    std::size_t const done = bytes.size();
    std::size_t const wanted = std::min(i_count - done, largest_read);
    bytes.resize(done + wanted);
    read = gzread(file.get(), &bytes[done], static_cast<unsigned>(wanted));
    is_whole = read > 0;
    bytes.resize(is_whole ? done + static_cast<std::size_t>(read) : done);
  }
  if (bytes.empty() && gzeof(file.get()) != 0) {
    throw std::runtime_error(i_path + " says that its voxels begin after the end of the file");
  }
  // Reads to the end of the file, where zlib verifies the checksum. Other data may follow the voxels.
  std::array<unsigned char, 4096> rest{};
  int read_on = is_whole ? 1 : 0;
  while (read_on > 0) read_on = gzread(file.get(), rest.data(), static_cast<unsigned>(rest.size()));
  is_whole = is_whole && read_on == 0;
  if (gzclose_r(file.release()) != Z_OK || !is_whole) {
    throw std::runtime_error(i_path + " is truncated or damaged");
  }
  return bytes;
}

template <class T>
std::vector<double> ReadValues(Found const& i_found) {
  auto const [x, y, z] = i_found.header.size;
  std::size_t const count = x * y * z;
  std::vector<unsigned char> bytes =
      ReadBytes(i_found.voxels_path, i_found.header.voxels_begin, count * sizeof(T));
  if (i_found.header.is_swapped && sizeof(T) > 1) {
    nifti_swap_Nbytes(static_cast<std::int64_t>(count), sizeof(T), bytes.data());
  }
  std::vector<double> values(count);
  for (std::size_t voxel = 0; voxel < count; ++voxel) {
    T value{};
    std::memcpy(&value, &bytes[voxel * sizeof(T)], sizeof(T));
    values[voxel] = static_cast<double>(value);
  }
  return values;
}

using Reader = std::vector<double> (*)(Found const&);

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
    case DT_UINT64:
      return &ReadValues<std::uint64_t>;
    case DT_INT64:
      return &ReadValues<std::int64_t>;
    case DT_FLOAT32:
      return &ReadValues<float>;
    case DT_FLOAT64:
      return &ReadValues<double>;
    default:
      return nullptr;
  }
}

// Rounding moves a point that lies at a voxel by much less than this. A weight that is due to rounding alone
// would make the result NaN beside a voxel that is NaN.
double Snap(double i_coordinate) {
  constexpr double largest_error = 1e-9;
  double const nearest = std::round(i_coordinate);
  return std::abs(i_coordinate - nearest) < largest_error ? nearest : i_coordinate;
}

}  // namespace

bool Volume::Contains(lum::Point<double, 3> const& i_voxel) const {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    auto const last = static_cast<double>(size[axis] - 1);
    if (!(i_voxel[axis] >= -0.5 && i_voxel[axis] <= last + 0.5)) return false;
  }
  return true;
}

double Volume::Sample(lum::Point<double, 3> const& i_voxel) const {
  if (!Contains(i_voxel)) return std::numeric_limits<double>::quiet_NaN();
  std::array<std::size_t, 3> low{};
  std::array<std::size_t, 3> high{};
  lum::Point<double, 3> in_cell;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    double const inside = Snap(std::clamp(i_voxel[axis], 0.0, static_cast<double>(size[axis] - 1)));
    double const floor = std::floor(inside);
    low[axis] = static_cast<std::size_t>(floor);
    in_cell[axis] = inside - floor;
    high[axis] = in_cell[axis] > 0 ? low[axis] + 1 : low[axis];
  }
  if (low == high) return At(low[0], low[1], low[2]);
  // A corner of weight zero has the value of one that counts, so it makes no difference.
  std::array<double, 8> corners{};
  for (std::size_t corner = 0; corner < 8; ++corner) {
    corners[corner] = At((corner & 1) != 0 ? high[0] : low[0], (corner & 2) != 0 ? high[1] : low[1],
                         (corner & 4) != 0 ? high[2] : low[2]);
  }
  return lum::TrilinearInterpolation(corners, in_cell);
}

Volume ReadVolume(std::string const& i_path) {
  Found const found = FindHeader(i_path);
  NiftiHeader const& header = found.header;
  Reader const read_values = GetReader(header.datatype);
  if (read_values == nullptr) throw MakeTypeError(found.header_path, header.datatype);
  Volume volume{header.size, header.voxel_to_world, read_values(found)};
  if (header.slope != 0) {
    for (double& value : volume.values) value = value * header.slope + header.intercept;
  }
  return volume;
}

}  // namespace common

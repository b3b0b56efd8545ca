// Intact NIfTI files with arbitrary affines, values and requests: the voxels that are read must be those that
// were written, and reslice and surface use the volume, or refuse it by an error of one line. Arbitrary bytes
// rarely have an affine that can be inverted.

#include <nifti1.h>
#include <nifti2.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <iterator>
#include <type_traits>
#include <vector>

#include "Bytes.h"
#include "UseVolume.h"

namespace {

using lum::test::Bytes;
using lum::test::Require;

// Small numbers, or small numbers times a power of 2, or arbitrary bits.
template <class T>
T TakeNumber(Bytes& io_bytes, std::size_t i_kind) {
  if (i_kind == 0) return static_cast<T>(io_bytes.Take<std::int8_t>()) / 4;
  if (i_kind == 1)
    return std::ldexp(static_cast<T>(io_bytes.Take<std::int8_t>()), 8 * io_bytes.Take<std::int8_t>());
  return io_bytes.Take<T>();
}

template <class T>
void Append(std::vector<std::uint8_t>& io_file, T const& i_value) {
  auto const bytes = std::bit_cast<std::array<std::uint8_t, sizeof(T)>>(i_value);
  io_file.insert(io_file.end(), bytes.begin(), bytes.end());
}

template <class Header>
Header TakeHeader(Bytes& io_bytes) {
  using Number = std::remove_cvref_t<decltype(Header().pixdim[0])>;
  Header header{};
  header.sizeof_hdr = sizeof(Header);
  constexpr std::array<char, 8> magic = {'n', '+', '2', 0, '\r', '\n', '\032', '\n'};
  std::copy_n(magic.begin(), sizeof(header.magic), std::begin(header.magic));
  if (sizeof(Header) == sizeof(nifti_1_header)) header.magic[2] = '1';
  header.dim[0] = 3;
  for (int axis = 1; axis <= 3; ++axis) header.dim[axis] = static_cast<short>(1 + io_bytes.TakeIndex(3));
  header.datatype = DT_FLOAT64;
  header.bitpix = 64;
  header.vox_offset = sizeof(Header);
  header.xyzt_units = static_cast<decltype(header.xyzt_units)>(io_bytes.TakeIndex(8));
  header.sform_code = io_bytes.TakeIndex(2) == 0;
  header.qform_code = 1;
  std::size_t const kind = io_bytes.TakeIndex(3);
  auto const number = [&] { return TakeNumber<Number>(io_bytes, kind); };
  std::generate(std::begin(header.srow_x), std::end(header.srow_x), number);
  std::generate(std::begin(header.srow_y), std::end(header.srow_y), number);
  std::generate(std::begin(header.srow_z), std::end(header.srow_z), number);
  if (header.sform_code == 0) {
    std::generate_n(std::begin(header.pixdim), 4, number);
    header.quatern_b = header.srow_x[0];
    header.quatern_c = header.srow_x[1];
    header.quatern_d = header.srow_x[2];
    header.qoffset_x = header.srow_y[0];
    header.qoffset_y = header.srow_y[1];
    header.qoffset_z = header.srow_y[2];
  }
  return header;
}

struct Request {
  reslice::Placement placement;
  lum::test::SurfaceRequest surface;
};

Request TakeRequest(Bytes& io_bytes) {
  Request request;
  auto const number = [&] { return static_cast<float>(io_bytes.Take<std::int8_t>()) / 8; };
  request.placement = {.axis = {number(), number(), number()}, .angle = number(), .offset = number()};
  if (io_bytes.TakeFlag()) request.placement.offset = TakeNumber<double>(io_bytes, 1);
  if (io_bytes.TakeFlag()) request.placement.size = 1 + io_bytes.TakeIndex(32);
  request.surface.level_part = io_bytes.Take<std::uint8_t>() / 256.0;
  request.surface.is_clipped = io_bytes.TakeFlag();
  request.surface.is_turning = io_bytes.TakeFlag();
  std::array<double, 4> plane{};
  std::size_t const kind = io_bytes.TakeIndex(2);
  for (double& value : plane) value = TakeNumber<double>(io_bytes, kind);
  lum::test::RunOrRefuse([&] { request.surface.clip = {plane[0], plane[1], plane[2], plane[3]}; });
  return request;
}

template <class Header>
void Run(Bytes& io_bytes) {
  auto const header = TakeHeader<Header>(io_bytes);
  Request const request = TakeRequest(io_bytes);
  std::vector<std::uint8_t> file;
  Append(file, header);
  std::vector<double> values(static_cast<std::size_t>(header.dim[1] * header.dim[2] * header.dim[3]));
  std::size_t const kind = io_bytes.TakeIndex(3);
  for (double& value : values) {
    value = TakeNumber<double>(io_bytes, kind);
    Append(file, value);
  }
  std::optional<common::Volume> const volume = lum::test::ReadFile(file);
  if (!volume) return;
  auto const are_same = [](double i_a, double i_b) {
    return i_a == i_b || (std::isnan(i_a) && std::isnan(i_b));
  };
  Require(std::ranges::equal(volume->values, values, are_same), "the values of the voxels");
  lum::test::UseSlice(*volume, request.placement);
  lum::test::UseSurface(*volume, request.surface);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* ip_data, std::size_t i_size) {
  Bytes bytes(ip_data, i_size);
  if (bytes.TakeFlag()) {
    Run<nifti_1_header>(bytes);
  } else {
    Run<nifti_2_header>(bytes);
  }
  return 0;
}

#include "common/NiftiHeader.h"

#include <nifti1.h>
#include <nifti2.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

// Only the layouts and constants come from libnifti. Its functions print errors of their own, move voxels
// that begin within the header, and accept places outside of the file.

namespace common {
namespace {

static_assert(sizeof(nifti_1_header) == 348 && sizeof(nifti_2_header) == largest_nifti_header);

using Rows = std::array<std::array<double, 4>, 3>;

// The fields of either header in this machine's byte order.
template <class Header>
class Fields {
 public:
  Fields(Header const& i_header, bool i_is_swapped) : m_header(i_header), m_is_swapped(i_is_swapped) {}

  template <class T>
  auto Get(T Header::*ip_field) const {
    return Convert(m_header.*ip_field);
  }
  template <class T, std::size_t Size>
  std::array<T, Size> Get(T (Header::*ip_field)[Size]) const {
    std::array<T, Size> values{};
    for (std::size_t item = 0; item < Size; ++item) values[item] = Convert((m_header.*ip_field)[item]);
    return values;
  }

 private:
  template <class T>
  T Convert(T i_value) const {
    auto bytes = std::bit_cast<std::array<unsigned char, sizeof(T)>>(i_value);
    if (m_is_swapped) std::reverse(bytes.begin(), bytes.end());
    return std::bit_cast<T>(bytes);
  }

  Header const& m_header;
  bool m_is_swapped;
};

template <class T>
double ToDouble(T i_value) {
  return static_cast<double>(i_value);
}

// The rotation by the quaternion (a, b, c, d) with a >= 0, with columns of the voxels' sizes. The formula is
// that of nifti1.h, method 2.
template <class Header>
Rows GetQuaternionRows(Fields<Header> const& i_fields, std::array<double, 3> i_spacing, bool i_is_mirrored) {
  double b = ToDouble(i_fields.Get(&Header::quatern_b));
  double c = ToDouble(i_fields.Get(&Header::quatern_c));
  double d = ToDouble(i_fields.Get(&Header::quatern_d));
  double const squares = b * b + c * c + d * d;
  double const rest = 1 - squares;
  double a = 0;
  // Half a turn, apart from rounding: the other three are of unit length.
  if (rest < 1e-7) {
    double const length = std::sqrt(squares);
    b /= length;
    c /= length;
    d /= length;
  } else {
    a = std::sqrt(rest);
  }
  for (double& spacing : i_spacing) spacing = spacing > 0 ? spacing : 1;
  if (i_is_mirrored) i_spacing[2] = -i_spacing[2];
  auto const [x, y, z] = i_spacing;
  return {{{(a * a + b * b - c * c - d * d) * x, 2 * (b * c - a * d) * y, 2 * (b * d + a * c) * z,
            ToDouble(i_fields.Get(&Header::qoffset_x))},
           {2 * (b * c + a * d) * x, (a * a + c * c - b * b - d * d) * y, 2 * (c * d - a * b) * z,
            ToDouble(i_fields.Get(&Header::qoffset_y))},
           {2 * (b * d - a * c) * x, 2 * (c * d + a * b) * y, (a * a + d * d - c * c - b * b) * z,
            ToDouble(i_fields.Get(&Header::qoffset_z))}}};
}

template <class Header>
Rows GetRows(Fields<Header> const& i_fields) {
  if (i_fields.Get(&Header::sform_code) > 0) {
    auto const get_row = [&](auto ip_field) {
      auto const [x, y, z, offset] = i_fields.Get(ip_field);
      return std::array{ToDouble(x), ToDouble(y), ToDouble(z), ToDouble(offset)};
    };
    return {get_row(&Header::srow_x), get_row(&Header::srow_y), get_row(&Header::srow_z)};
  }
  auto const pixdim = i_fields.Get(&Header::pixdim);
  std::array<double, 3> spacing{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    double const given = ToDouble(pixdim[axis + 1]);
    spacing[axis] = std::isfinite(given) && given != 0 ? given : 1;
  }
  if (i_fields.Get(&Header::qform_code) > 0) return GetQuaternionRows(i_fields, spacing, pixdim[0] < 0);
  return {{{spacing[0], 0, 0, 0}, {0, spacing[1], 0, 0}, {0, 0, spacing[2], 0}}};
}

// Unknown units count as millimetres.
double GetMillimetres(int i_units) {
  int const of_space = i_units & 7;
  if (of_space == NIFTI_UNITS_METER) return 1000;
  return of_space == NIFTI_UNITS_MICRON ? 0.001 : 1;
}

lum::Matrix<double> MakeAffine(Rows const& i_rows, double i_scale, std::string const& i_path) {
  std::array<double, 16> values{};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      values[row + 4 * column] = i_rows[row][column] * i_scale;
    }
  }
  values[15] = 1;
  lum::Matrix<double> affine(values.data());
  lum::Matrix<double> const inverse = affine.GetInverse();
  auto const is_finite = [](lum::Matrix<double> const& i_matrix) {
    return std::all_of(i_matrix.GetAsPtr(), i_matrix.GetAsPtr() + 16,
                       [](double i_v) { return std::isfinite(i_v); });
  };
  double const determinant = affine.GetDeterminant();
  if (!is_finite(affine) || !is_finite(inverse) || !std::isfinite(determinant) || determinant == 0) {
    throw std::runtime_error(i_path + " has an affine that cannot be inverted");
  }
  return affine;
}

template <class Dimensions>
std::array<std::size_t, 3> GetSize(Dimensions const& i_dimensions, std::string const& i_path) {
  if (i_dimensions[0] < 1 || i_dimensions[0] > 7) {
    throw std::runtime_error(i_path + " has a damaged NIfTI header");
  }
  auto const count = static_cast<std::size_t>(i_dimensions[0]);
  for (std::size_t axis = 4; axis <= count; ++axis) {
    if (i_dimensions[axis] > 1) throw std::runtime_error(i_path + " has more than three dimensions");
  }
  std::array<std::size_t, 3> size = {1, 1, 1};
  for (std::size_t axis = 1; axis <= std::min(count, size.size()); ++axis) {
    if (i_dimensions[axis] < 1) throw std::runtime_error(i_path + " holds no voxels");
    size[axis - 1] = static_cast<std::size_t>(i_dimensions[axis]);
  }
  return size;
}

// NIfTI-1 has the offset as a float.
template <class T>
std::int64_t GetVoxelsBegin(T i_offset, std::size_t i_smallest, std::string const& i_path) {
  std::string const voxels = i_path + " says that its voxels begin ";
  if (i_offset < static_cast<T>(i_smallest)) {
    throw std::runtime_error(voxels + (i_smallest > 0 ? "before the end of the header" : "before the file"));
  }
  if constexpr (std::is_floating_point_v<T>) {
    if (i_offset >= 0x1p63F) throw std::runtime_error(voxels + "after the end of the file");
    if (i_offset != std::floor(i_offset)) {
      throw std::runtime_error(voxels + "at a byte that is not a whole number");
    }
  }
  return static_cast<std::int64_t>(i_offset);
}

template <class Header>
NiftiHeader Parse(Header const& i_header, bool i_is_pair, std::string const& i_path) {
  bool const is_swapped = i_header.sizeof_hdr != static_cast<int>(sizeof(Header));
  Fields<Header> const fields(i_header, is_swapped);
  return {GetSize(fields.Get(&Header::dim), i_path),
          fields.Get(&Header::datatype),
          is_swapped,
          i_is_pair,
          GetVoxelsBegin(fields.Get(&Header::vox_offset), i_is_pair ? 0 : sizeof(Header), i_path),
          ToDouble(fields.Get(&Header::scl_slope)),
          ToDouble(fields.Get(&Header::scl_inter)),
          MakeAffine(GetRows(fields), GetMillimetres(fields.Get(&Header::xyzt_units)), i_path)};
}

// Whether the bytes are a header of this type in either byte order, with this magic.
template <class Header>
bool Read(std::span<unsigned char const> i_bytes, std::string_view i_magic, Header& o_header) {
  if (i_bytes.size() < sizeof(Header)) return false;
  std::memcpy(&o_header, i_bytes.data(), sizeof(Header));
  constexpr int size = sizeof(Header);
  bool const is_size =
      o_header.sizeof_hdr == size || Fields<Header>(o_header, true).Get(&Header::sizeof_hdr) == size;
  return is_size && std::memcmp(o_header.magic, i_magic.data(), i_magic.size()) == 0;
}

}  // namespace

NiftiHeader ParseNiftiHeader(std::span<unsigned char const> i_bytes, std::string const& i_path) {
  using namespace std::string_view_literals;
  nifti_1_header one{};
  if (Read(i_bytes, "n+1\0"sv, one)) return Parse(one, false, i_path);
  if (Read(i_bytes, "ni1\0"sv, one)) return Parse(one, true, i_path);
  nifti_2_header two{};
  if (Read(i_bytes, "n+2\0\r\n\032\n"sv, two)) return Parse(two, false, i_path);
  if (Read(i_bytes, "ni2\0\r\n\032\n"sv, two)) return Parse(two, true, i_path);
  throw std::runtime_error(i_path + " is not a NIfTI file");
}

std::string GetDatatypeName(int i_datatype) {
  constexpr std::array<std::pair<int, char const*>, 7> names = {{{DT_BINARY, "BINARY"},
                                                                 {DT_COMPLEX64, "COMPLEX64"},
                                                                 {DT_RGB24, "RGB24"},
                                                                 {DT_FLOAT128, "FLOAT128"},
                                                                 {DT_COMPLEX128, "COMPLEX128"},
                                                                 {DT_COMPLEX256, "COMPLEX256"},
                                                                 {DT_RGBA32, "RGBA32"}}};
  for (auto const& [datatype, name] : names) {
    if (datatype == i_datatype) return name;
  }
  return std::to_string(i_datatype);
}

}  // namespace common

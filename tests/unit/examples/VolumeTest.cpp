#include <gtest/gtest.h>
#include <nifti1.h>
#include <nifti2.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "common/Volume.h"
#include "tests/unit/examples/ProgramTest.h"

namespace common {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

constexpr std::array<char, 8> magic_2 = {'n', '+', '2', 0, '\r', '\n', '\032', '\n'};

// A header of 2 x 2 x 2 voxels of float64 right behind it, with voxels of 2 x 3 x 4.
template <class Header>
Header MakeHeader() {
  Header header{};
  header.sizeof_hdr = sizeof(Header);
  std::copy_n(magic_2.begin(), sizeof(header.magic), std::begin(header.magic));
  if (sizeof(Header) == sizeof(nifti_1_header)) header.magic[2] = '1';
  header.dim[0] = 3;
  std::fill_n(&header.dim[1], 3, 2);
  header.datatype = DT_FLOAT64;
  header.bitpix = 64;
  header.vox_offset = sizeof(Header) + 4;
  for (int axis = 1; axis <= 3; ++axis) header.pixdim[axis] = static_cast<float>(axis + 1);
  return header;
}

// Voxel v has the value v + 1/4.
std::vector<double> MakeValues() {
  std::vector<double> values(8);
  for (std::size_t voxel = 0; voxel < 8; ++voxel) values[voxel] = static_cast<double>(voxel) + 0.25;
  return values;
}

template <class T>
void Append(std::vector<char>& io_bytes, T const& i_value) {
  std::size_t const end = io_bytes.size();
  io_bytes.resize(end + sizeof(T));
  std::memcpy(&io_bytes[end], &i_value, sizeof(T));
}

template <class Header, class T = double>
std::vector<char> MakeFile(Header const& i_header, std::vector<T> const& i_values) {
  std::vector<char> bytes;
  Append(bytes, i_header);
  bytes.resize(bytes.size() + 4);
  for (T const& value : i_values) Append(bytes, value);
  return bytes;
}

// Reverses the bytes of each number that the reader needs, at its place in the header, and of each value.
template <class Header>
std::vector<char> SwapBytes(std::vector<char> i_bytes) {
  Header const layout{};
  auto const* const p_begin = reinterpret_cast<char const*>(&layout);
  auto const swap = [&](auto const& i_field, std::size_t i_count = 1) {
    std::size_t const size = sizeof(i_field) / i_count;
    std::ptrdiff_t const field = reinterpret_cast<char const*>(&i_field) - p_begin;
    for (std::size_t item = 0; item < i_count; ++item) {
      auto const begin = i_bytes.begin() + field + static_cast<std::ptrdiff_t>(item * size);
      std::reverse(begin, begin + static_cast<std::ptrdiff_t>(size));
    }
  };
  swap(layout.sizeof_hdr);
  swap(layout.dim, 8);
  swap(layout.datatype);
  swap(layout.bitpix);
  swap(layout.pixdim, 8);
  swap(layout.vox_offset);
  for (auto begin = i_bytes.begin() + sizeof(Header) + 4; begin != i_bytes.end(); begin += 8) {
    std::reverse(begin, begin + 8);
  }
  return i_bytes;
}

std::array<double, 12> GetAffine(Volume const& i_volume) {
  std::array<double, 12> rows{};
  for (std::size_t entry = 0; entry < 12; ++entry) {
    rows[entry] = i_volume.voxel_to_world(static_cast<int>(entry / 4), static_cast<int>(entry % 4));
  }
  return rows;
}

class VolumeTest : public test::ProgramTest {
 protected:
  VolumeTest() : ProgramTest("reslice", RESLICE_PROGRAM) {}

  template <class Header>
  Volume Read(Header const& i_header) const {
    return ReadVolume(WriteBytes("a.nii", MakeFile(i_header, MakeValues())));
  }

  // The message of the refusal; empty if the file is read.
  std::string GetRefusal(std::vector<char> const& i_bytes) const {
    try {
      ReadVolume(WriteBytes("a.nii", i_bytes));
    } catch (std::runtime_error const& exception) {
      return exception.what();
    }
    return {};
  }

  template <class Header>
  void ExpectOffsetRefused(Header i_header, decltype(i_header.vox_offset) i_offset,
                           std::string const& i_text) const {
    i_header.vox_offset = i_offset;
    EXPECT_EQ(GetRefusal(MakeFile(i_header, MakeValues())), In("a.nii") + i_text) << i_offset;
  }

  std::string WriteCompressed(std::string const& i_name, std::vector<char> const& i_bytes) const {
    gzFile_s* const file = gzopen(In(i_name).c_str(), "wb");
    gzwrite(file, i_bytes.data(), static_cast<unsigned>(i_bytes.size()));
    gzclose(file);
    return In(i_name);
  }
};

TEST_F(VolumeTest, IsInMillimetresWhateverTheUnit) {
  auto header = MakeHeader<nifti_1_header>();
  header.srow_x[1] = 8;
  header.srow_y[0] = 16;
  header.srow_z[2] = 32;
  header.srow_x[3] = 64;
  for (auto const& [unit, factor] : {std::pair(NIFTI_UNITS_UNKNOWN, 1.0),
                                     {NIFTI_UNITS_METER, 1000.0},
                                     {NIFTI_UNITS_MM, 1.0},
                                     {NIFTI_UNITS_MICRON, 0.001}}) {
    SCOPED_TRACE(unit);
    double const f = factor;
    header.xyzt_units = static_cast<char>(unit | NIFTI_UNITS_MSEC);
    header.sform_code = NIFTI_XFORM_SCANNER_ANAT;
    EXPECT_EQ(GetAffine(Read(header)),
              (std::array{0.0, 8 * f, 0.0, 64 * f, 16 * f, 0.0, 0.0, 0.0, 0.0, 0.0, 32 * f, 0.0}));
    header.sform_code = NIFTI_XFORM_UNKNOWN;
    EXPECT_EQ(GetAffine(Read(header)),
              (std::array{2 * f, 0.0, 0.0, 0.0, 0.0, 3 * f, 0.0, 0.0, 0.0, 0.0, 4 * f, 0.0}));
    header.qform_code = NIFTI_XFORM_SCANNER_ANAT;
    header.qoffset_y = 5;
    EXPECT_EQ(GetAffine(Read(header)),
              (std::array{2 * f, 0.0, 0.0, 0.0, 0.0, 3 * f, 0.0, 5 * f, 0.0, 0.0, 4 * f, 0.0}));
    header.qform_code = NIFTI_XFORM_UNKNOWN;
  }
}

// A quarter turn about z sends x to y and y to -x; a negative first entry of pixdim mirrors z.
TEST_F(VolumeTest, ARotationByAQuaternionMayMirror) {
  auto header = MakeHeader<nifti_2_header>();
  header.qform_code = NIFTI_XFORM_SCANNER_ANAT;
  header.quatern_d = std::sqrt(0.5);
  header.qoffset_z = 7;
  header.pixdim[0] = -1;
  std::array<double, 12> const expected = {0, -3, 0, 0, 2, 0, 0, 0, 0, 0, -4, 7};
  std::array<double, 12> const affine = GetAffine(Read(header));
  for (std::size_t entry = 0; entry < 12; ++entry) EXPECT_NEAR(affine[entry], expected[entry], 1e-15);
  // A half turn about the same axis, slightly too long: the real part is 0.
  header.quatern_d = 1.0000001;
  EXPECT_NEAR(Read(header).voxel_to_world(0, 0), -2, 1e-15);
}

TEST_F(VolumeTest, ReadsBothVersionsInBothByteOrders) {
  std::vector<char> const one = MakeFile(MakeHeader<nifti_1_header>(), MakeValues());
  std::vector<char> const two = MakeFile(MakeHeader<nifti_2_header>(), MakeValues());
  for (std::vector<char> const& bytes :
       {one, SwapBytes<nifti_1_header>(one), two, SwapBytes<nifti_2_header>(two)}) {
    Volume const volume = ReadVolume(WriteBytes("a.nii", bytes));
    EXPECT_EQ(volume.size, (std::array<std::size_t, 3>{2, 2, 2}));
    EXPECT_EQ(volume.values, MakeValues());
    EXPECT_EQ(volume.voxel_to_world(2, 2), 4);
  }
}

TEST_F(VolumeTest, ReadsIntegersOf64Bits) {
  auto header = MakeHeader<nifti_2_header>();
  std::vector<std::int64_t> const values = {INT64_MIN, -1, 0, 1, 1LL << 53, 7, 8, 9};
  header.datatype = DT_INT64;
  EXPECT_EQ(ReadVolume(WriteBytes("a.nii", MakeFile(header, values))).values,
            (std::vector<double>{-0x1p63, -1, 0, 1, 0x1p53, 7, 8, 9}));
  header.datatype = DT_UINT64;
  EXPECT_EQ(ReadVolume(WriteBytes("a.nii", MakeFile(header, values))).values,
            (std::vector<double>{0x1p63, 0x1p64, 0, 1, 0x1p53, 7, 8, 9}));
}

TEST_F(VolumeTest, ReadsAPairByEitherName) {
  auto header = MakeHeader<nifti_1_header>();
  header.magic[1] = 'i';
  header.vox_offset = 16;
  std::vector<char> const whole = MakeFile(header, MakeValues());
  std::vector<char> const head(whole.begin(), whole.begin() + 348);
  std::vector<char> const voxels(whole.begin() + 336, whole.end());  // 16 bytes before the values
  WriteBytes("plain.hdr", head);
  WriteBytes("plain.img", voxels);
  WriteCompressed("packed.hdr.gz", head);
  WriteCompressed("packed.img.gz", voxels);
  for (std::string const name : {"plain.hdr", "plain.img", "packed.hdr.gz", "packed.img.gz"}) {
    EXPECT_EQ(ReadVolume(In(name)).values, MakeValues()) << name;
  }
  EXPECT_EQ(GetRefusal(head), In("a.nii") + " is half of a pair, but its name does not end in .hdr");
  std::filesystem::remove(In("plain.img"));
  ExpectRefusal(In("plain.hdr") + " " + In("a.png"), "cannot open " + In("plain.img"), {});
}

TEST_F(VolumeTest, RefusesVoxelsWithinTheHeader) {
  auto const one = MakeHeader<nifti_1_header>();
  for (float const offset : {-1.0F, 0.0F, 347.0F}) {
    ExpectOffsetRefused(one, offset, " says that its voxels begin before the end of the header");
  }
  auto const two = MakeHeader<nifti_2_header>();
  for (std::int64_t const offset : {INT64_MIN, std::int64_t{352}, std::int64_t{539}}) {
    ExpectOffsetRefused(two, offset, " says that its voxels begin before the end of the header");
  }
}

TEST_F(VolumeTest, RefusesVoxelsOutsideTheFile) {
  auto const one = MakeHeader<nifti_1_header>();
  for (float const offset : {416.0F, 1e9F, 1e30F, std::numeric_limits<float>::infinity()}) {
    ExpectOffsetRefused(one, offset, " says that its voxels begin after the end of the file");
  }
  ExpectOffsetRefused(one, 360, " is truncated or damaged");  // the voxels end after the end of the file
  ExpectOffsetRefused(MakeHeader<nifti_2_header>(), INT64_MAX,
                      " says that its voxels begin after the end of the file");
  for (float const offset : {std::numeric_limits<float>::quiet_NaN(), 352.5F}) {
    ExpectOffsetRefused(one, offset, " says that its voxels begin at a byte that is not a whole number");
  }
}

TEST_F(VolumeTest, RefusesSizesThatNoFileHas) {
  auto header = MakeHeader<nifti_2_header>();
  for (std::int64_t const size : {std::int64_t{1} << 21, std::int64_t{1} << 32, INT64_MAX}) {
    std::fill_n(&header.dim[1], 3, size);
    EXPECT_EQ(GetRefusal(MakeFile(header, MakeValues())), In("a.nii") + " is truncated or damaged") << size;
  }
  header.dim[2] = -1;
  EXPECT_EQ(GetRefusal(MakeFile(header, MakeValues())), In("a.nii") + " holds no voxels");
  header.dim[0] = 8;
  EXPECT_EQ(GetRefusal(MakeFile(header, MakeValues())), In("a.nii") + " has a damaged NIfTI header");
}

// In version 2, libnifti would write outside of its copy of the header.
TEST_F(VolumeTest, RefusesNumbersOfDimensionsThatNoFileHas) {
  auto two = MakeHeader<nifti_2_header>();
  for (std::int64_t const count :
       {INT64_MIN, std::int64_t{-1}, std::int64_t{0}, std::int64_t{8}, INT64_MAX}) {
    two.dim[0] = count;
    std::vector<char> const bytes = MakeFile(two, MakeValues());
    EXPECT_EQ(GetRefusal(bytes), In("a.nii") + " has a damaged NIfTI header") << count;
    EXPECT_EQ(GetRefusal(SwapBytes<nifti_2_header>(bytes)), In("a.nii") + " has a damaged NIfTI header")
        << count;
  }
  auto one = MakeHeader<nifti_1_header>();
  one.dim[0] = 0x300;  // three in the other byte order
  EXPECT_EQ(GetRefusal(MakeFile(one, MakeValues())), In("a.nii") + " has a damaged NIfTI header");
}

TEST_F(VolumeTest, RefusesOtherTypesByNameAndNumber) {
  auto header = MakeHeader<nifti_1_header>();
  for (auto const& [type, name] : {std::pair(DT_UNKNOWN, "UNKNOWN (0)"),
                                   {DT_BINARY, "BINARY (1)"},
                                   {DT_COMPLEX64, "COMPLEX64 (32)"},
                                   {DT_ALL, "**ILLEGAL** (255)"},
                                   {DT_FLOAT128, "FLOAT128 (1536)"},
                                   {-1, "**ILLEGAL** (-1)"}}) {
    header.datatype = static_cast<short>(type);
    testing::internal::CaptureStderr();
    std::string const refusal = GetRefusal(MakeFile(header, MakeValues()));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(refusal, In("a.nii") + " has values of type " + name + ", which is not supported");
  }
}

// A transfer that changes the ends of lines changes these bytes.
TEST_F(VolumeTest, RefusesADamagedSignatureOfVersion2) {
  auto header = MakeHeader<nifti_2_header>();
  header.magic[4] = '\n';
  EXPECT_EQ(GetRefusal(MakeFile(header, MakeValues())), In("a.nii") + " is not a NIfTI file");
}

TEST_F(VolumeTest, RefusesAnAffineWithoutFiniteInverse) {
  std::string const refusal = In("a.nii") + " has an affine that cannot be inverted";
  for (double const value : {nan, infinity, -infinity}) {
    auto header = MakeHeader<nifti_2_header>();
    header.qform_code = NIFTI_XFORM_SCANNER_ANAT;
    header.quatern_c = value;
    EXPECT_EQ(GetRefusal(MakeFile(header, MakeValues())), refusal) << value;
    header.quatern_c = 0;
    header.qoffset_z = value;
    EXPECT_EQ(GetRefusal(MakeFile(header, MakeValues())), refusal) << value;
    header.sform_code = NIFTI_XFORM_SCANNER_ANAT;
    header.srow_x[0] = header.srow_y[1] = header.srow_z[2] = 1;
    EXPECT_EQ(GetRefusal(MakeFile(header, MakeValues())), "") << "only the other affine counts";
    header.srow_y[3] = value;
    EXPECT_EQ(GetRefusal(MakeFile(header, MakeValues())), refusal) << value;
    header.srow_y[3] = 0;
    header.srow_z[2] = 0;
    EXPECT_EQ(GetRefusal(MakeFile(header, MakeValues())), refusal) << "no inverse";
  }
}

// A picture may leave out the size of its voxels along the third axis, and all that follows.
TEST_F(VolumeTest, ReadsAPicture) {
  auto header = MakeHeader<nifti_1_header>();
  header.dim[0] = 2;
  header.dim[1] = 4;
  header.dim[3] = -7;
  header.pixdim[3] = 0;
  Volume const volume = Read(header);
  EXPECT_EQ(volume.size, (std::array<std::size_t, 3>{4, 2, 1}));
  EXPECT_EQ(GetAffine(volume), (std::array<double, 12>{2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 1, 0}));
}

TEST_F(VolumeTest, ASlopeThatIsNotFiniteCountsAsNone) {
  auto header = MakeHeader<nifti_1_header>();
  header.scl_inter = 3;
  for (double const slope : {nan, infinity, 0.0}) {
    header.scl_slope = static_cast<float>(slope);
    EXPECT_EQ(Read(header).values, MakeValues()) << slope;
  }
  header.scl_slope = 1;
  header.scl_inter = static_cast<float>(nan);
  EXPECT_EQ(Read(header).values, MakeValues());
}

// Each byte of the header in turn gets another value.
TEST_F(VolumeTest, ADamagedHeaderIsAnErrorOfOneLine) {
  std::vector<char> const one = MakeFile(MakeHeader<nifti_1_header>(), MakeValues());
  std::vector<char> const two = MakeFile(MakeHeader<nifti_2_header>(), MakeValues());
  for (auto const& [good, value] : {std::pair(one, 0x7f),
                                    {SwapBytes<nifti_1_header>(one), 0xff},
                                    {two, 0xff},
                                    {SwapBytes<nifti_2_header>(two), 0x7f}}) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::vector<std::string> refusals;
    for (std::size_t byte = 0; byte < good.size() - 64; ++byte) {
      std::vector<char> bytes = good;
      bytes[byte] = static_cast<char>(value);
      refusals.push_back(GetRefusal(bytes));
    }
    std::string const errors = testing::internal::GetCapturedStderr();
    std::string const output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(errors, "");
    EXPECT_EQ(output, "");
    for (std::string const& refusal : refusals) EXPECT_EQ(refusal.find('\n'), std::string::npos) << refusal;
    EXPECT_GT(
        std::count_if(refusals.begin(), refusals.end(), [](auto const& i_text) { return !i_text.empty(); }),
        20);
  }
}

TEST_F(VolumeTest, ASampleAtAVoxelDoesNotDependOnItsNeighbours) {
  Volume volume{{3, 3, 3}, lum::Matrix<double>(), std::vector<double>(27, nan)};
  volume.values[volume.GetIndex(1, 1, 1)] = 5;
  EXPECT_EQ(volume.Sample({1, 1, 1}), 5);
  EXPECT_EQ(volume.Sample({1, 1 + 1e-12, 1 - 1e-12}), 5) << "apart from rounding, at the voxel";
  EXPECT_TRUE(std::isnan(volume.Sample({1, 1, 1.001})));
  EXPECT_TRUE(std::isnan(volume.Sample({0, 1, 1})));
  volume.values[volume.GetIndex(1, 1, 2)] = 7;
  EXPECT_EQ(volume.Sample({1, 1, 1.25}), 5.5) << "only these two voxels count";
  volume.values[volume.GetIndex(1, 2, 1)] = infinity;
  EXPECT_EQ(volume.Sample({1, 2, 1}), infinity);
  EXPECT_EQ(volume.Sample({1, 1, 1.25}), 5.5);
}

}  // namespace
}  // namespace common

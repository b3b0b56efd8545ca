#include <gtest/gtest.h>
#include <nifti1.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "common/Picture.h"
#include "common/Volume.h"
#include "reslice/Slice.h"
#include "tests/unit/examples/ProgramTest.h"

namespace reslice {
namespace {

namespace fs = std::filesystem;

using common::Picture;
using common::ReadVolume;
using common::StretchContrast;
using common::Volume;

Volume const& GetHead() {
  static Volume const head = ReadVolume(HEAD_VOLUME);
  return head;
}

class Reslice : public test::ProgramTest {
 protected:
  Reslice() : ProgramTest("reslice", RESLICE_PROGRAM) {}

  void ExpectRefusal(std::string const& i_arguments, std::string const& i_text) const {
    ProgramTest::ExpectRefusal(i_arguments, i_text, {In("refused.png")});
  }
};

TEST_F(Reslice, AStraightSliceOfTheHeadEqualsTheVoxels) {
  Volume const& head = GetHead();
  ASSERT_EQ(head.size, (std::array<std::size_t, 3>{181, 217, 181}));
  Slice const slice = PlaceSlice(head, {});
  ASSERT_EQ(slice.width, 181U);
  ASSERT_EQ(slice.height, 217U);
  Samples const samples = Resample(head, slice);
  std::size_t differences = 0;
  for (std::size_t j = 0; j < 217; ++j) {
    for (std::size_t i = 0; i < 181; ++i) {
      if (samples[(216 - j) * 181 + i] != head.At(i, j, 90)) ++differences;
    }
  }
  EXPECT_EQ(differences, 0U);
  EXPECT_GT(*std::max_element(samples.begin(), samples.end()), 0);
}

// Turned by 90 degrees about z, the plane's x axis is the world's y axis and its y axis the world's -x axis.
TEST_F(Reslice, AQuarterTurnEqualsTheTransposedFlippedSlice) {
  Volume const& head = GetHead();
  Slice const slice = PlaceSlice(head, {.angle = std::numbers::pi / 2});
  ASSERT_EQ(slice.width, 217U);
  ASSERT_EQ(slice.height, 181U);
  Samples const samples = Resample(head, slice);
  std::size_t differences = 0;
  for (std::size_t row = 0; row < 181; ++row) {
    for (std::size_t column = 0; column < 217; ++column) {
      if (samples[row * 217 + column] != head.At(row, column, 90)) ++differences;
    }
  }
  EXPECT_EQ(differences, 0U);
}

TEST_F(Reslice, AnOffsetMovesAlongTheNormal) {
  Volume const& head = GetHead();
  Samples const samples = Resample(head, PlaceSlice(head, {.offset = 20}));
  EXPECT_EQ(samples[(216 - 100) * 181 + 80], head.At(80, 100, 110));
}

TEST_F(Reslice, TransformsPixelsToVoxelsAndBack) {
  Volume const& head = GetHead();
  Slice const slice = PlaceSlice(head, {.axis = {1, 0.3F, -0.2F}, .angle = 1.1, .offset = -7.5});
  lum::Matrix<double> const pixel_to_voxel = head.voxel_to_world.GetInverse() * slice.pixel_to_world;
  double largest = 0;
  for (std::size_t column = 0; column < slice.width; column += 9) {
    for (std::size_t row = 0; row < slice.height; row += 7) {
      lum::Point<double, 3> const pixel(static_cast<double>(column), static_cast<double>(row), 0);
      lum::Point<double, 3> const voxel = pixel_to_voxel * pixel;
      largest = std::max(largest, lum::GetLength(pixel_to_voxel.GetInverse() * voxel - pixel));
      EXPECT_GT(lum::GetLength(voxel - pixel), 1e-3) << "the transform is not the identity";
    }
  }
  EXPECT_LT(largest, 1e-9);
}

TEST_F(Reslice, ASliceByTheInverseOfTheInverseHasTheSameSamples) {
  Volume const& head = GetHead();
  Slice const slice = PlaceSlice(head, {.axis = {0.2F, 1, 0}, .angle = 0.7});
  lum::Matrix<double> const there = head.voxel_to_world.GetInverse() * slice.pixel_to_world;
  Slice again = slice;
  lum::Matrix<double> const back = there.GetInverse();
  // Made from the values of the inverse only, so that its inverse is computed anew.
  again.pixel_to_world = head.voxel_to_world * lum::Matrix<double>(back.GetAsPtr()).GetInverse();
  Samples const first = Resample(head, slice);
  Samples const second = Resample(head, again);
  std::size_t compared = 0;
  for (std::size_t pixel = 0; pixel < first.size(); ++pixel) {
    if (std::isnan(first[pixel]) || std::isnan(second[pixel])) continue;
    ++compared;
    ASSERT_NEAR(first[pixel], second[pixel], 1e-9);
  }
  EXPECT_GT(compared, 10000U);
}

TEST_F(Reslice, ReadsInt16) {
  Volume const volume = ReadVolume(WriteVolume<std::int16_t>("a.nii", DT_INT16, m_straight));
  EXPECT_EQ(volume.size, (std::array<std::size_t, 3>{5, 4, 3}));
  EXPECT_EQ(volume.voxel_to_world(0, 3), -2);
  EXPECT_EQ(volume.At(3, 2, 1), ValueOf(3 + 5 * (2 + 4 * 1)));
  Samples const samples = Resample(volume, PlaceSlice(volume, {}));
  ASSERT_EQ(samples.size(), 20U);
  EXPECT_EQ(samples[0], volume.At(0, 3, 1)) << "row 0 is the top row";
  EXPECT_EQ(samples[19], volume.At(4, 0, 1));
}

TEST_F(Reslice, ReadsFloat32AndScales) {
  Volume const volume = ReadVolume(WriteVolume<float>("a.nii", DT_FLOAT32, m_straight, 0.5F, 3));
  EXPECT_EQ(volume.At(4, 3, 2), ValueOf(59) * 0.5 + 3);
}

TEST_F(Reslice, AMirroredAffineShowsTheWorldNotTheVoxelOrder) {
  Volume const volume = ReadVolume(
      WriteVolume<std::int16_t>("a.nii", DT_INT16, {{{-1, 0, 0, 2}, {0, 1, 0, -1}, {0, 0, 1, 5}}}));
  EXPECT_LT(volume.voxel_to_world.GetDeterminant(), 0);
  Samples const samples = Resample(volume, PlaceSlice(volume, {}));
  ASSERT_EQ(samples.size(), 20U);
  for (std::size_t column = 0; column < 5; ++column) EXPECT_EQ(samples[column], volume.At(4 - column, 3, 1));
}

TEST_F(Reslice, InterpolatesLargerVoxels) {
  Volume const volume =
      ReadVolume(WriteVolume<std::int16_t>("a.nii", DT_INT16, {{{2, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 2, 0}}}));
  Slice const slice = PlaceSlice(volume, {});
  EXPECT_EQ(slice.width, 9U);
  EXPECT_EQ(slice.height, 7U);
  Samples const samples = Resample(volume, slice);
  EXPECT_EQ(samples[6 * 9 + 1], (volume.At(0, 0, 1) + volume.At(1, 0, 1)) / 2);
}

TEST_F(Reslice, SamplesOutsideTheVolumeAreNaN) {
  Volume const volume = ReadVolume(WriteVolume<float>("a.nii", DT_FLOAT32, m_straight));
  EXPECT_TRUE(std::isnan(volume.Sample({-0.51, 0, 0})));
  EXPECT_EQ(volume.Sample({-0.5, 0, 0}), volume.At(0, 0, 0));
  EXPECT_EQ(volume.Sample({4.5, 3.5, 2.5}), volume.At(4, 3, 2));
  EXPECT_TRUE(std::isnan(volume.Sample({0, 0, 2.51})));
  Samples const samples = Resample(volume, PlaceSlice(volume, {.size = 8}));
  ASSERT_EQ(samples.size(), 64U);
  EXPECT_EQ(std::count_if(samples.begin(), samples.end(), [](double i_s) { return std::isnan(i_s); }), 44);
}

TEST_F(Reslice, StretchesTheContrastAndLeavesOutsideBlack) {
  Picture const picture = StretchContrast(2, 2, {10, 30, std::nan(""), 20});
  EXPECT_EQ(picture.pixels, (std::vector<std::uint8_t>{0, 255, 0, 128}));
}

TEST_F(Reslice, StretchesTheContrastOfTheFiniteSamples) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  Picture const picture = StretchContrast(3, 2, {10, infinity, 30, -infinity, 20, infinity});
  EXPECT_EQ(picture.pixels, (std::vector<std::uint8_t>{0, 255, 255, 0, 128, 255}));
  EXPECT_EQ(StretchContrast(2, 1, {infinity, -infinity}).pixels, (std::vector<std::uint8_t>{0, 0}));
  EXPECT_EQ(StretchContrast(2, 1, {infinity, 7}).pixels, (std::vector<std::uint8_t>{0, 0}));
}

TEST_F(Reslice, WritesAPicture) {
  std::string const input = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight);
  ASSERT_EQ(Run(input + " " + In("a.png") + " --axis 0,0,2 --angle 90 --size 6"), 0);
  std::vector<char> const picture = ReadBytes(In("a.png"));
  ASSERT_GT(picture.size(), 24U);
  EXPECT_EQ(std::string(&picture[1], 3), "PNG");
  EXPECT_EQ(picture[19], 6) << "the width";
  EXPECT_EQ(picture[23], 6) << "the height";
  EXPECT_TRUE(ReadBytes(In("err")).empty());
  EXPECT_FALSE(HasTemporaryFile());
}

TEST_F(Reslice, RefusesWhatIsNotAVolume) {
  std::string const output = " " + In("refused.png");
  ExpectRefusal(In("missing.nii") + output, "cannot open");
  ExpectRefusal(WriteBytes("text.nii", std::vector<char>(1000, 'x')) + output, "not a NIfTI file");
  ExpectRefusal(WriteBytes("empty.nii", {}) + output, "not a NIfTI file");
  ExpectRefusal(m_folder.string() + output, "not a NIfTI file");
}

TEST_F(Reslice, RefusesATruncatedFile) {
  std::string const output = " " + In("refused.png");
  std::vector<char> bytes = ReadBytes(WriteVolume<float>("a.nii", DT_FLOAT32, m_straight));
  bytes.pop_back();
  ExpectRefusal(WriteBytes("short.nii", bytes) + output, "truncated or damaged");
  bytes.resize(200);
  ExpectRefusal(WriteBytes("header.nii", bytes) + output, "not a NIfTI file");
  bytes = ReadBytes(HEAD_VOLUME);
  bytes.resize(bytes.size() / 2);
  ExpectRefusal(WriteBytes("short.nii.gz", bytes) + output, "truncated or damaged");
}

// The header claims 32767 x 32767 x 32767 voxels of int16, for which no memory is allocated.
TEST_F(Reslice, RefusesAHeaderThatClaimsMoreThanTheFileHolds) {
  std::vector<char> bytes = ReadBytes(WriteVolume<std::int16_t>("a.nii", DT_INT16, m_straight));
  for (std::size_t const dimension : {42U, 44U, 46U}) {
    bytes[dimension] = static_cast<char>(0xff);
    bytes[dimension + 1] = 0x7f;
  }
  ExpectRefusal(WriteBytes("claims.nii", bytes) + " " + In("refused.png"), "truncated or damaged");
}

TEST_F(Reslice, RefusesASliceThatWouldBeTooLarge) {
  std::string const input =
      WriteVolume<float>("large.nii", DT_FLOAT32, {{{1e8F, 0, 0, 0}, {0, 1e8F, 0, 0}, {0, 0, 1e8F, 0}}});
  ExpectRefusal(input + " " + In("refused.png"), "more than 16384 pixels");
  EXPECT_EQ(Run(input + " " + In("a.png") + " --size 100"), 0);
}

// Along z, the volume reaches from half a voxel below the first slice of voxels to half a voxel above the
// last.
TEST_F(Reslice, RefusesASliceThatMissesTheVolume) {
  std::string const command =
      WriteVolume<float>("a.nii", DT_FLOAT32, m_straight) + " " + In("refused.png") + " --offset ";
  ExpectRefusal(command + "1.75",
                "at --offset 1.75 the slice misses the volume, which reaches from -1.5 to 1.5");
  ExpectRefusal(command + "-2", "at --offset -2 the slice misses the volume, which reaches from -1.5 to 1.5");
  ExpectRefusal(command + "1e300", "at --offset 1e+300 the slice misses the volume");
  ExpectRefusal(command + "3 --axis 0,1,0 --angle 90", "the volume, which reaches from -2.5 to 2.5");
  EXPECT_EQ(Run(WriteVolume<float>("a.nii", DT_FLOAT32, m_straight) + " " + In("a.png") + " --offset 1.5"),
            0);
}

// The voxels lie along the diagonal of x and z, so a plane above the middle meets them aside from it.
TEST_F(Reslice, RefusesASliceWithoutAPixelInTheVolume) {
  std::string const command =
      WriteVolume<float>("a.nii", DT_FLOAT32, {{{0, 0, 9, 0}, {0, 1, 0, 0}, {1, 0, 9, 0}}}) + " ";
  ExpectRefusal(command + In("refused.png") + " --offset 9 --size 3",
                "no pixel of the slice lies in the volume; a larger --size or another --offset shows more");
  EXPECT_EQ(Run(command + In("a.png") + " --offset 9 --size 30"), 0);
}

// Voxels of a size that is not a sum of powers of two, so that positions in the volume are rounded.
TEST_F(Reslice, AStraightSliceBesideVoxelsWithoutAValueEqualsTheVoxels) {
  Volume volume = ReadVolume(
      WriteVolume<float>("a.nii", DT_FLOAT32, {{{0.7F, 0, 0, -3.1F}, {0, 1, 0, -1}, {0, 0, 0.9F, 5.3F}}}));
  for (std::size_t j = 0; j < 4; ++j) {
    for (std::size_t i = 0; i < 5; ++i) {
      for (std::size_t const k : {0U, 2U}) volume.values[volume.GetIndex(i, j, k)] = std::nan("");
    }
  }
  Samples const samples = Resample(volume, PlaceSlice(volume, {}));
  ASSERT_EQ(samples.size(), 12U);
  EXPECT_EQ(std::count_if(samples.begin(), samples.end(), [](double i_s) { return std::isnan(i_s); }), 0);
  EXPECT_EQ(samples[1], volume.At(2, 3, 1)) << "the middle column, at the top";
}

TEST_F(Reslice, TakesAxesOfAnyLengthAndAnglesOfAnySize) {
  std::string const input = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight) + " ";
  ASSERT_EQ(Run(input + In("a.png") + " --axis 1,2,0 --angle 65"), 0);
  std::vector<char> const expected = ReadBytes(In("a.png"));
  std::string const command = input + In("b.png") + " ";
  for (char const* const arguments : {"--axis 1e20,2e20,0 --angle 65", "--axis 1e300,2e300,0 --angle 65",
                                      "--axis 1e-30,2e-30,0 --angle 65", "--axis 1,2,0 --angle 360065"}) {
    ASSERT_EQ(Run(command + arguments), 0) << arguments;
    EXPECT_EQ(ReadBytes(In("b.png")), expected) << arguments;
  }
  EXPECT_EQ(Run(command + "--axis 1,2,0 --angle 1e300"), 0);
  EXPECT_EQ(ReadText(In("out")).find(": 1 x 1 mm"), std::string::npos);
}

TEST_F(Reslice, RefusesADamagedCompressedFile) {
  std::vector<char> bytes = ReadBytes(HEAD_VOLUME);
  bytes[bytes.size() - 6] ^= 1;  // in the checksum
  ExpectRefusal(WriteBytes("damaged.nii.gz", bytes) + " " + In("refused.png"), "truncated or damaged");
}

TEST_F(Reslice, RefusesAFourthDimension) {
  std::vector<char> bytes = ReadBytes(WriteVolume<float>("a.nii", DT_FLOAT32, m_straight));
  bytes[40] = 4;  // dimensions
  bytes[46] = 2;  // slices along the third
  bytes[48] = 2;  // and the fourth
  ExpectRefusal(WriteBytes("4d.nii", bytes) + " " + In("refused.png"), "more than three dimensions");
}

TEST_F(Reslice, RefusesATypeThatIsNotOneRealNumber) {
  std::vector<char> bytes = ReadBytes(WriteVolume<double>("a.nii", DT_FLOAT64, m_straight));
  bytes[70] = 32;  // two floats: complex
  ExpectRefusal(WriteBytes("complex.nii", bytes) + " " + In("refused.png"), "COMPLEX64");
}

TEST_F(Reslice, RefusesAnAffineWithoutAnInverse) {
  std::string const input =
      WriteVolume<float>("flat.nii", DT_FLOAT32, {{{1, 0, 0, 0}, {0, 1, 0, 0}, {1, 1, 0, 0}}});
  ExpectRefusal(input + " " + In("refused.png"), "cannot be inverted");
}

TEST_F(Reslice, RefusesBadOptions) {
  std::string const paths = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight) + " " + In("refused.png");
  ExpectRefusal(paths + " --angle 3 --axis 0,0,0", "--axis takes an axis X,Y,Z whose length is not zero");
  ExpectRefusal(paths + " --angle 3 --axis 1,2", "takes numbers X,Y,Z");
  ExpectRefusal(paths + " --angle 3 --axis 1,2,nan", "--axis takes a number, not \"nan\"");
  ExpectRefusal(paths + " --angle ninety", "--angle takes a number, not \"ninety\"");
  ExpectRefusal(paths + " --offset 1mm", "--offset takes a number, not \"1mm\"");
  ExpectRefusal(paths + " --offset", "takes a value");
  ExpectRefusal(paths + " --size 0", "from 1 to 16384");
  ExpectRefusal(paths + " --size 2.5", "from 1 to 16384");
  ExpectRefusal(paths + " --tilt 3", "unknown option --tilt");
  ExpectRefusal(paths + " third", "usage");
  ExpectRefusal("", "usage");
}

TEST_F(Reslice, RefusesAnOutputThatCannotBeWritten) {
  std::string const input = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight);
  ExpectRefusal(input + " " + In("no/such/folder.png"), "cannot write");
  fs::create_directory(In("folder.png"));
  ExpectRefusal(input + " " + In("folder.png"), "cannot write");
}

TEST_F(Reslice, AFailureKeepsAnOlderPicture) {
  WriteBytes("old.png", {'o', 'l', 'd'});
  EXPECT_EQ(Run(In("missing.nii") + " " + In("old.png")), 1);
  EXPECT_EQ(ReadBytes(In("old.png")), (std::vector<char>{'o', 'l', 'd'}));
}

}  // namespace
}  // namespace reslice

#include <gtest/gtest.h>
#include <nifti1.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <exception>
#include <filesystem>
#include <limits>
#include <numbers>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "common/OutputFiles.h"
#include "common/Picture.h"
#include "common/Volume.h"
#include "reslice/Slice.h"
#include "surface/Options.h"
#include "surface/Program.h"
#include "tests/unit/examples/ProgramTest.h"

// The programs on volumes with any affine: they succeed or end with one line, and never read past memory.
namespace {

class Affines : public test::ProgramTest {
 protected:
  Affines() : ProgramTest("surface", "") {}

  float Draw(std::vector<float> const& i_values) { return i_values[m_random() % i_values.size()]; }
  float DrawPower(float i_low, float i_high) {
    float const sign = m_random() % 2 == 0 ? 1 : -1;
    return sign * std::pow(10.0F, std::uniform_real_distribution<float>(i_low, i_high)(m_random));
  }
  template <class Entry>
  Affine Fill(Entry const& i_entry) {
    Affine affine{};
    for (auto& row : affine) std::generate(row.begin(), row.end(), i_entry);
    return affine;
  }

  // Cycles through the kinds.
  Affine DrawAffine(unsigned i_number) {
    using Limits = std::numeric_limits<float>;
    auto const draw_unit = [this] { return std::uniform_real_distribution<float>(-1, 1)(m_random); };
    Affine affine = Fill(draw_unit);
    std::size_t const row = m_random() % 3;
    std::size_t const column = m_random() % 4;
    switch (i_number % 10) {
      case 0:  // sheared, negative
        return affine;
      case 1:  // huge
        return Fill([this] { return DrawPower(30, 38.5F); });
      case 2:  // tiny
        return Fill([this] { return DrawPower(-37, -20); });
      case 3:  // denormal
        return Fill([this] { return DrawPower(-45, -38); });
      case 4:  // entries of any size
        return Fill([this] { return DrawPower(-45, 38.5F); });
      case 5:  // nearly singular
        affine[1] = affine[0];
        affine[1][row] = std::nextafter(affine[1][row], 2.0F);
        return affine;
      case 6:  // not finite, or at the ends of the range
        affine[row][column] = Draw({Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                                    Limits::max(), -Limits::max(), Limits::denorm_min(), 0.0F, -0.0F});
        return affine;
      case 7:  // far away
        for (auto& values : affine) values[3] = DrawPower(4, 38.5F);
        return affine;
      case 8:  // a scale that differs along the axes
        affine = {};
        for (std::size_t axis = 0; axis < 3; ++axis) affine[axis][axis] = DrawPower(-45, 38.5F);
        return affine;
      default:  // one large or small row
        for (float& value : affine[row]) value *= DrawPower(-45, 38.5F);
        return affine;
    }
  }

  // A ball of 5 x 4 x 3 voxels.
  std::string WriteBall(Affine const& i_affine) {
    std::vector<float> values;
    for (float k = -1; k < 2; ++k) {
      for (float j = -1.5F; j < 2; ++j) {
        for (float i = -2; i < 3; ++i) values.push_back(10 - std::hypot(i, j, k));
      }
    }
    return WriteVolume("a.nii", DT_FLOAT32, {5, 4, 3}, values, i_affine);
  }

  // Returns the message of the exception, or an empty text.
  template <class Work>
  static std::string GetMessage(Work const& i_work) {
    try {
      i_work();
      return "";
    } catch (std::exception const& exception) {
      return exception.what();
    }
  }

  void Reslice(std::string const& i_input, unsigned i_number) {
    common::Volume const volume = common::ReadVolume(i_input);
    reslice::Placement placement;
    placement.axis = {1, 0.5F, static_cast<float>(i_number % 7)};
    placement.angle = i_number % 3;
    if (i_number % 2 == 0) placement.size = 1 + i_number % 30;
    reslice::Slice slice = reslice::PlaceSlice(volume, placement);
    // A slice may have 16384 x 16384 pixels, which take long. The first rows do.
    slice.width = std::min<std::size_t>(slice.width, 40);
    slice.height = std::min<std::size_t>(slice.height, 40);
    common::OutputFiles files({i_input});
    common::WritePng(common::StretchContrast(slice.width, slice.height, reslice::Resample(volume, slice)),
                     files.Add(In("a.png")));
    files.Publish();
  }

  void ContourAndDraw(std::string const& i_input, unsigned i_number) {
    surface::Options options;
    options.input = i_input;
    options.level = 8.2;
    options.mesh = In("a.ply");
    if (i_number % 3 != 0) options.picture = In("b.png");
    if (i_number % 2 == 0) {
      options.frames = 2;
      options.turntable_folder = In("frames");
    }
    if (i_number % 5 < 3) options.clip.emplace(0.5, -0.4, 0.7, i_number % 5 == 0 ? 0 : 1e30);
    options.is_quiet = true;
    options.picture_size = 12;
    options.frame_size = 8;
    surface::Program(options, [] {}).Run();
  }

  // Whether all positions and normals of the mesh are finite, and the normals of unit length.
  bool IsMeshFinite() const {
    std::string const file = ReadText(In("a.ply"));
    std::string const end = "end_header\n";
    std::size_t place = file.find(end) + end.size();
    std::size_t const vertices = std::stoul(file.substr(file.find("vertex ") + 7));
    for (std::size_t vertex = 0; vertex < vertices; ++vertex, place += 27) {
      std::array<float, 6> numbers{};
      std::memcpy(numbers.data(), &file.at(place), sizeof(numbers));
      if (!std::all_of(numbers.begin(), numbers.end(),
                       [](float i_number) { return std::isfinite(i_number); }))
        return false;
      if (!(std::abs(std::hypot(numbers[3], numbers[4], numbers[5]) - 1) < 1e-5F)) return false;
    }
    return vertices > 0;
  }

  static constexpr unsigned m_seed = 20261122;
  std::mt19937 m_random{m_seed};
};

TEST_F(Affines, TheProgramsSucceedOrEndWithOneLine) {
  SCOPED_TRACE(testing::Message() << "seed " << m_seed);
  int sliced = 0;
  int drawn = 0;
  int refused = 0;
  for (unsigned number = 0; number < 1000; ++number) {
    SCOPED_TRACE(number);
    std::string const input = WriteBall(DrawAffine(number));
    std::string const of_reslice = GetMessage([&] { Reslice(input, number); });
    std::string const of_surface = GetMessage([&] { ContourAndDraw(input, number); });
    for (std::string const& message : {of_reslice, of_surface}) {
      EXPECT_EQ(message.find('\n'), std::string::npos) << message;
      EXPECT_EQ(message.find("i_"), std::string::npos) << message << " names a parameter of lum";
      EXPECT_EQ(message.find("::"), std::string::npos) << message << " names a type";
      EXPECT_EQ(message.find("whole numbers"), std::string::npos) << "a conversion was the first check";
    }
    EXPECT_FALSE(HasTemporaryFile());
    bool const has_mesh = std::filesystem::exists(In("a.ply"));
    EXPECT_EQ(has_mesh, of_surface.empty()) << of_surface;
    EXPECT_TRUE(!has_mesh || IsMeshFinite());
    sliced += of_reslice.empty() ? 1 : 0;
    drawn += of_surface.empty() ? 1 : 0;
    refused += of_reslice.empty() && of_surface.empty() ? 0 : 1;
    std::filesystem::remove(In("a.ply"));
    std::filesystem::remove_all(In("frames"));
  }
  EXPECT_GT(sliced, 200);
  EXPECT_GT(drawn, 300);
  EXPECT_GT(refused, 200);
}

}  // namespace

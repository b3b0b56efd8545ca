#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "common/Picture.h"
#include "tests/unit/examples/ProgramTest.h"
#include "tests/unit/examples/ReadPng.h"

namespace {

using Pixel = std::array<std::uint8_t, 3>;

class Scene : public test::ProgramTest {
 protected:
  struct Printed {
    std::size_t nodes;
    std::size_t depth;
    std::size_t frames;
    double time;
    double deviation;
    std::size_t hits;
    std::size_t differences;
  };

  Scene() : ProgramTest("scene", SCENE_PROGRAM) {}

  Printed Draw(std::string const& i_options) const {
    EXPECT_EQ(Run(In("scene.png") + i_options), 0);
    EXPECT_EQ(ReadText(In("err")), "");
    Printed printed{};
    EXPECT_EQ(std::sscanf(ReadText(In("out")).c_str(),
                          "%zu nodes, %zu deep; %zu frames of %lf ms\n"
                          "world * inverse deviates from the identity by %lf\n"
                          "%zu picks hit, %zu differ from the picks without inverses\n",
                          &printed.nodes, &printed.depth, &printed.frames, &printed.time, &printed.deviation,
                          &printed.hits, &printed.differences),
              7)
        << ReadText(In("out"));
    return printed;
  }

  common::Picture ReadPicture() const { return test::ReadPng(In("scene.png")); }

  static Pixel GetPixel(common::Picture const& i_picture, std::size_t i_column, std::size_t i_row) {
    Pixel pixel{};
    std::copy_n(&i_picture.pixels[3 * (i_column + i_picture.width * i_row)], 3, pixel.begin());
    return pixel;
  }

  static std::size_t CountHits(common::Picture const& i_picture) {
    std::size_t hits = 0;
    for (std::size_t row = 0; row < i_picture.height; ++row) {
      for (std::size_t column = 0; column < i_picture.width; ++column) {
        if (GetPixel(i_picture, column, row) != background) ++hits;
      }
    }
    return hits;
  }

  static constexpr Pixel background = {24, 24, 28};
};

TEST_F(Scene, PicksTheSameOfTenThousandNodesAsWithoutInverses) {
  Printed const printed = Draw("");
  EXPECT_EQ(printed.nodes, 10000U);
  EXPECT_EQ(printed.depth, 6U) << "1 + 6 (1 + 5 + 25 + 125 + 625) is less than 10000";
  EXPECT_EQ(printed.frames, 60U);
  EXPECT_GT(printed.time, 0);
  EXPECT_LT(printed.deviation, 5e-6);
  EXPECT_GT(printed.deviation, 0) << "the products are rounded";
  EXPECT_GT(printed.hits, 100U);
  EXPECT_EQ(printed.differences, 0U);
}

// The outline of one box, found by projecting its corners in plain arithmetic.
TEST_F(Scene, OneBoxCoversItsOutline) {
  constexpr double angle = 0.5;
  Draw(" --nodes 1 --frames 50");
  common::Picture const picture = ReadPicture();
  ASSERT_EQ(picture.width, 800U);
  ASSERT_EQ(picture.height, 600U);

  double const to_ground = std::hypot(2, 3);
  double const length = std::hypot(2, 3, 1.6);
  using Corner = std::array<double, 2>;
  std::vector<Corner> corners;
  for (unsigned corner = 0; corner < 8; ++corner) {
    double const a = (corner & 1) != 0 ? 0.5 : -0.5;
    double const b = (corner & 2) != 0 ? 0.5 : -0.5;
    double const z = (corner & 4) != 0 ? 0.5 : -0.5;
    double const x = a * std::cos(angle) - b * std::sin(angle);
    double const y = a * std::sin(angle) + b * std::cos(angle);
    double const right = (3 * x + 2 * y) / to_ground;
    double const towards = (2 * x - 3 * y + 1.6 * z) / length;
    double const up = (to_ground * z - 1.6 * (2 * x - 3 * y) / to_ground) / length;
    double const scale = 2.3 * 600 / (6 - towards);
    corners.push_back({right * scale, up * scale});
  }
  // The area of the convex hull: the triangles from the origin to the edges that have all corners on their
  // left.
  double area = 0;
  for (Corner const& p : corners) {
    for (Corner const& q : corners) {
      auto const is_left = [&](Corner const& i_r) {
        return (q[0] - p[0]) * (i_r[1] - p[1]) - (q[1] - p[1]) * (i_r[0] - p[0]) >= 0;
      };
      if (&p != &q && std::all_of(corners.begin(), corners.end(), is_left)) {
        area += (p[0] * q[1] - p[1] * q[0]) / 2;
      }
    }
  }
  EXPECT_GT(area, 50000);
  EXPECT_NEAR(static_cast<double>(CountHits(picture)), area, 0.01 * area);
}

TEST_F(Scene, ManyBoxesCoverMoreThanOne) {
  Draw(" --nodes 1");
  std::size_t const one = CountHits(ReadPicture());
  Pixel const middle = GetPixel(ReadPicture(), 400, 300);
  EXPECT_GT(middle[2], middle[0]) << "the first box is blue";
  EXPECT_EQ(Draw(" --nodes 7").depth, 1U);
  EXPECT_GT(CountHits(ReadPicture()), one * 3 / 2);
}

TEST_F(Scene, FramesTurnTheBoxes) {
  Draw(" --nodes 7 --frames 1");
  std::vector<char> const first = ReadBytes(In("scene.png"));
  Draw(" --nodes 7 --frames 1");
  EXPECT_EQ(ReadBytes(In("scene.png")), first);
  Draw(" --nodes 7 --frames 30");
  EXPECT_NE(ReadBytes(In("scene.png")), first);
}

TEST_F(Scene, RefusesBadArguments) {
  std::string const output = In("refused.png");
  ExpectRefusal("", "usage: scene", {output});
  ExpectRefusal(output + " other.png", "usage: scene", {output});
  ExpectRefusal(output + " --nodes 0", "--nodes takes a whole number from 1 to 1000000", {output});
  ExpectRefusal(output + " --frames many", "--frames takes a number, not \"many\"", {output});
  ExpectRefusal(output + " --frames", "--frames takes a value", {output});
  ExpectRefusal(output + " --depth 3", "unknown option --depth", {output});
  ExpectRefusal(In("no/such/folder.png") + " --nodes 2", "cannot write", {});
  std::filesystem::create_directory(In("folder.png"));
  ExpectRefusal(In("folder.png"), "it is a folder", {});
}

}  // namespace

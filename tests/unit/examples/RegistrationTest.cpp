#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "common/OutputFiles.h"
#include "common/Plot.h"
#include "tests/unit/examples/ProgramTest.h"

namespace {

class Registration : public test::ProgramTest {
 protected:
  struct Printed {
    std::size_t iterations;
    double apart;
    double degrees;
    double shift;
  };

  Registration() : ProgramTest("registration", REGISTRATION_PROGRAM) {}

  Printed Register(std::string const& i_options, int i_status = 0) const {
    EXPECT_EQ(Run(In("plot.svg") + i_options), i_status);
    Printed printed{};
    EXPECT_EQ(std::sscanf(ReadText(In("out")).c_str(),
                          "%zu iterations, pairs %lf apart\n"
                          "rotation off by %lf degrees, translation by %lf\n",
                          &printed.iterations, &printed.apart, &printed.degrees, &printed.shift),
              4)
        << ReadText(In("out"));
    return printed;
  }

  struct Place {
    double x;
    double y;
  };

  // The lines of a plot, in the coordinates of the picture.
  static std::vector<std::vector<Place>> ReadLines(std::string const& i_path) {
    std::vector<std::vector<Place>> lines;
    std::string const text = ReadText(i_path);
    std::string const opening = "points='";
    for (std::size_t at = text.find(opening); at != std::string::npos; at = text.find(opening, at + 1)) {
      std::size_t const begin = at + opening.size();
      std::istringstream points(text.substr(begin, text.find('\'', begin) - begin));
      lines.emplace_back();
      char comma = 0;
      for (Place place{}; points >> place.x >> comma >> place.y;) lines.back().push_back(place);
    }
    return lines;
  }
};

TEST_F(Registration, FindsTheTransform) {
  Printed const printed = Register("");
  EXPECT_EQ(ReadText(In("err")), "");
  EXPECT_GT(printed.iterations, 10U);
  EXPECT_LT(printed.iterations, 150U);
  EXPECT_LT(printed.degrees, 0.3);
  EXPECT_LT(printed.shift, 0.005);
  EXPECT_LT(printed.apart, 0.05) << "of 4000 points on a surface of about 4 pi";
}

TEST_F(Registration, GivesTheSameResultFromAnyModerateAngle) {
  Printed const straight = Register(" --angle 0");
  for (char const* const angle : {"-30", "20", "390"}) {
    Printed const turned = Register(std::string(" --angle ") + angle);
    EXPECT_NEAR(turned.degrees, straight.degrees, 0.05) << angle;
    EXPECT_NEAR(turned.apart, straight.apart, 1e-4) << angle;
  }
}

TEST_F(Registration, MorePointsGiveASmallerError) {
  Printed const few = Register(" --points 1000 --angle 20");
  Printed const many = Register(" --points 16000 --angle 20");
  EXPECT_LT(many.apart, 0.5 * few.apart);
  EXPECT_LT(many.degrees, few.degrees);
}

TEST_F(Registration, OtherSeedsGiveOtherClouds) {
  for (char const* const seed : {"2", "3", "4", "5"}) {
    Printed const printed = Register(std::string(" --seed ") + seed);
    EXPECT_LT(printed.degrees, 1) << seed;
    EXPECT_LT(printed.shift, 0.01) << seed;
  }
  EXPECT_NE(Register(" --seed 2").apart, Register(" --seed 3").apart);
}

TEST_F(Registration, PlotsEveryIteration) {
  Printed const printed = Register("");
  auto const lines = ReadLines(In("plot.svg"));
  ASSERT_EQ(lines.size(), 2U);
  for (auto const& line : lines) {
    ASSERT_EQ(line.size(), printed.iterations + 1);
    EXPECT_LT(line.front().y, line.back().y) << "the distance decreases";
  }
  EXPECT_LT(lines[0].back().y, lines[1].back().y) << "pairs stay as far apart as the points of a cloud";
}

TEST_F(Registration, ReportsAWrongResultAndPlotsIt) {
  Printed const printed = Register(" --angle 120", 1);
  EXPECT_GT(printed.degrees, 1);
  EXPECT_EQ(ReadText(In("err")), "registration: the clouds converged to a wrong pose\n");
  EXPECT_EQ(ReadLines(In("plot.svg")).size(), 2U);
}

TEST_F(Registration, RefusesPairsThatFixNoRotation) {
  ExpectRefusal(In("refused.svg") + " --points 1", "the pairs determine no rotation", {In("refused.svg")});
  ExpectRefusal(In("refused.svg") + " --points 2", "the pairs determine no rotation", {In("refused.svg")});
}

TEST_F(Registration, RefusesBadArguments) {
  std::string const output = In("refused.svg");
  ExpectRefusal("", "usage: registration", {output});
  ExpectRefusal(output + " --noise -0.1", "--noise takes a number from 0 to 1", {output});
  ExpectRefusal(output + " --noise 1.1", "--noise takes a number from 0 to 1", {output});
  ExpectRefusal(output + " --noise inf", "--noise takes a number, not \"inf\"", {output});
  ExpectRefusal(output + " --points 2.5", "--points takes a whole number", {output});
  ExpectRefusal(output + " --seed", "--seed takes a value", {output});
  ExpectRefusal(output + " --turn 3", "unknown option --turn", {output});
  ExpectRefusal(In("no/such/folder.svg") + " --points 100", "cannot write", {});
}

TEST_F(Registration, APlotIsLogarithmic) {
  common::OutputFiles files;
  common::OutputFile& file = files.Add(In("decades.svg"));
  common::WritePlot("Decades", {{"falling", "#000", {100, 10, 1, 0.1}}}, file);
  files.Publish();
  auto const lines = ReadLines(In("decades.svg"));
  ASSERT_EQ(lines.size(), 1U);
  ASSERT_EQ(lines[0].size(), 4U);
  for (std::size_t step = 1; step < 4; ++step) {
    EXPECT_NEAR(lines[0][step].y - lines[0][step - 1].y, lines[0][1].y - lines[0][0].y, 0.01);
    EXPECT_NEAR(lines[0][step].x - lines[0][step - 1].x, lines[0][1].x - lines[0][0].x, 0.01);
  }
  for (std::string const label : {">0.1<", ">1<", ">10<", ">100<", ">Decades<", ">falling<"}) {
    EXPECT_NE(ReadText(In("decades.svg")).find(label), std::string::npos) << label;
  }
}

TEST_F(Registration, APlotOfOneValueHasAScale) {
  common::OutputFiles files;
  common::OutputFile& file = files.Add(In("one.svg"));
  common::WritePlot("One", {{"single", "#000", {1}}}, file);
  files.Publish();
  auto const lines = ReadLines(In("one.svg"));
  ASSERT_EQ(lines.size(), 1U);
  ASSERT_EQ(lines[0].size(), 1U);
  EXPECT_TRUE(std::isfinite(lines[0][0].x));
  EXPECT_TRUE(std::isfinite(lines[0][0].y));
}

}  // namespace

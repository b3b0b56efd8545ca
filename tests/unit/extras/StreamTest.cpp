#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <utility>

#include "extras/Stream.h"
#include "tests/support/Comma.h"
#include "tests/support/MovedFrom.h"

// Outside namespace lum, so that argument-dependent lookup finds the operators.
namespace callers {
namespace {

template <class Value>
std::string TextOf(Value const& i_value) {
  std::ostringstream stream;
  stream << i_value;
  return stream.str();
}

template <class Value>
concept Printable = requires(std::ostream& io_stream, Value const& i_value) {
  io_stream << i_value;
};

}  // namespace
}  // namespace callers

namespace lum {
namespace {

using callers::Printable;
using callers::TextOf;

struct Unprintable {};
static_assert(Printable<optional<double>>);
static_assert(Printable<optional<Vector<float, 2>>>);
static_assert(!Printable<Unprintable>);
static_assert(!Printable<optional<Unprintable>>);

TEST(Stream, WritesEveryKindOfValue) {
  EXPECT_EQ(TextOf(Vector<float, 2>(1, -2.5F)), "(1, -2.5)");
  EXPECT_EQ(TextOf(Vector<double, 3>(1, 2, 3)), "(1, 2, 3)");
  EXPECT_EQ(TextOf(Point<float, 3>(4, 5, 6)), "(4, 5, 6)");
  EXPECT_EQ(TextOf(Point<double, 2>(Origin)), "(0, 0)");
  EXPECT_EQ(TextOf(Plane<double>(0, 3, 4, 10)), "(0, 0.6, 0.8, 2)");
  EXPECT_EQ(TextOf(Range<double>(-1, 0.5)), "[-1, 0.5]");
  EXPECT_EQ(TextOf(Range<int>(3, 2)), "[3, 2]");
  EXPECT_EQ(TextOf(Quaternionf({1, 0, 0}, 0)), "(0, 0, 0, 1)");
  EXPECT_EQ(TextOf(Matrix<float>::Translate(5, 6, 7)),
            "((1, 0, 0, 5), (0, 1, 0, 6), (0, 0, 1, 7), (0, 0, 0, 1))");
  EXPECT_EQ(TextOf(Matrix<double>::Scale(2, 3, 4)),
            "((2, 0, 0, 0), (0, 3, 0, 0), (0, 0, 4, 0), (0, 0, 0, 1))");
}

TEST(Stream, WritesWhatIsNotFinite) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(TextOf(Vector<float, 3>(infinity, -infinity, std::numeric_limits<float>::quiet_NaN())),
            "(inf, -inf, nan)");
  EXPECT_EQ(TextOf(Vector<float, 2>(-0.0F, 0)), "(-0, 0)");
}

TEST(Stream, WritesAnOptionalAsItsValue) {
  EXPECT_EQ(TextOf(optional<Vector<float, 2>>(Vector<float, 2>(1, 2))), "(1, 2)");
  EXPECT_EQ(TextOf(optional<double>(1.5)), "1.5");
  EXPECT_EQ(TextOf(optional<double>()), "nullopt");
  EXPECT_EQ(TextOf(Range<Range<int>>({1, 2}, {3, 4})), "[[1, 2], [3, 4]]");
}

TEST(Stream, WritesTheIdentifiersThatTheLibraryDoesNotWrite) {
  EXPECT_EQ(TextOf(CubeElement(17)), "CubeElement with value: 17");
  EXPECT_EQ(TextOf(CubeSpace(6)), "CubeSpace with value: 6");
  EXPECT_EQ(TextOf(CanonicalCubeElement(7)), "CanonicalCubeElement with value: 7");
  using namespace CanonicalCubeElementIds;
  EXPECT_EQ(TextOf(CanonicalVertex{0}), "CanonicalCubeElementIds::CanonicalVertex with value: 0");
  EXPECT_EQ(TextOf(CanonicalEdge{4}), "CanonicalCubeElementIds::CanonicalEdge with value: 4");
  EXPECT_EQ(TextOf(CanonicalFace{5}), "CanonicalCubeElementIds::CanonicalFace with value: 5");
  EXPECT_EQ(TextOf(CanonicalCube{7}), "CanonicalCubeElementIds::CanonicalCube with value: 7");
}

TEST(Stream, KeepsTheOperatorsOfTheLibrary) {
  using namespace CubeElementIds;
  std::ostringstream stream;
  stream << std::setw(40) << Edge13;
  EXPECT_EQ(stream.str(), "       CubeElementIds::Edge with value: 17") << "the width applies to the prefix";
}

TEST(Stream, FollowsNotationPrecisionSignAndCase) {
  Vector<double, 2> const vector(1.0 / 3, -1024);
  std::ostringstream stream;
  stream << std::setprecision(3) << vector << std::fixed << vector << std::showpos << std::scientific
         << std::uppercase << vector << std::hexfloat << vector;
  EXPECT_EQ(stream.str(),
            "(0.333, -1.02e+03)(0.333, -1024.000)(+3.333E-01, -1.024E+03)(+0X1.5555555555555P-2, -0X1P+10)");
}

TEST(Stream, FollowsTheBaseForIdentifiers) {
  std::ostringstream stream;
  stream << std::hex << std::showbase << std::setfill('.') << std::setw(6) << CubeElement(17);
  EXPECT_EQ(stream.str(), "CubeElement with value: ..0x11");
}

TEST(Stream, GivesItsWidthToEveryNumber) {
  std::ostringstream stream;
  stream << std::setfill('*') << std::setw(4) << Vector<float, 3>(1, -2, 3) << std::left << std::setw(3)
         << Range<int>(-1, 2) << std::internal << std::setw(3) << Range<int>(-1, 2);
  EXPECT_EQ(stream.str(), "(***1, **-2, ***3)[-1*, 2**][-*1, **2]");
  std::ostringstream columns;
  columns << std::setw(2) << Matrix<float>::Translate(5, 6, 7);
  EXPECT_EQ(columns.str(), "(( 1,  0,  0,  5), ( 0,  1,  0,  6), ( 0,  0,  1,  7), ( 0,  0,  0,  1))");
}

TEST(Stream, GivesItsWidthToWhatAnOptionalWrites) {
  std::ostringstream stream;
  stream << std::setw(3) << optional<Vector<float, 2>>(Vector<float, 2>(1, 2)) << std::setw(9)
         << optional<int>();
  EXPECT_EQ(stream.str(), "(  1,   2)  nullopt");
}

TEST(Stream, ResetsTheWidthAndNothingElse) {
  std::ostringstream stream;
  stream << std::setfill('#') << std::setprecision(2) << std::scientific << std::left << std::showpos;
  auto const flags = stream.flags();
  stream << std::setw(20) << Matrix<double>();
  EXPECT_EQ(stream.width(), 0);
  EXPECT_EQ(stream.fill(), '#');
  EXPECT_EQ(stream.precision(), 2);
  EXPECT_EQ(stream.flags(), flags);
}

TEST(Stream, SeparatesBySemicolonsWhereTheLocaleWritesCommas) {
  std::ostringstream stream;
  stream.imbue(test::MakeCommaLocale());
  stream << std::fixed << std::setprecision(1) << Vector<double, 2>(1234.5, 2) << Range<double>(0, 1);
  EXPECT_EQ(stream.str(), "(1.234,5; 2,0)[0,0; 1,0]");
}

TEST(Stream, SeparatesBySemicolonsWhereTheLocaleGroupsByCommas) {
  class Grouping : public std::numpunct<char> {
    std::string do_grouping() const override { return "\3"; }
  };
  std::ostringstream stream;
  stream.imbue({std::locale::classic(), new Grouping});
  stream << Range<int>(1000, 2000);
  EXPECT_EQ(stream.str(), "[1,000; 2,000]");
}

TEST(Stream, WritesNothingToAStreamThatFailed) {
  std::ostringstream stream;
  stream.setstate(std::ios_base::failbit);
  stream << Matrix<float>();
  EXPECT_EQ(stream.str(), "");
  EXPECT_EQ(stream.rdstate(), std::ios_base::failbit);
}

#ifndef NDEBUG
TEST(StreamDeathTest, AssertionsCatchAMovedFromValue) {
  auto const matrix = test::MovedFrom(Matrix<float>::Scale(2));
  auto const quaternion = test::MovedFrom(Quaternionf({0, 0, 1}, 1));
  EXPECT_DEATH(TextOf(matrix), "Assertion");
  EXPECT_DEATH(TextOf(quaternion), "Assertion");
}
#endif

}  // namespace
}  // namespace lum

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include "extras/FmtFormat.h"
#include "extras/Stream.h"
#include "tests/support/Comma.h"

namespace lum {
namespace {

struct Unprintable {};
template <class Value>
concept Formattable = fmt::is_formattable<Value>::value;
static_assert(Formattable<Vector<float, 3>>);
static_assert(Formattable<optional<int>>);
static_assert(!Formattable<Unprintable>);
static_assert(!Formattable<optional<Unprintable>>);

TEST(FmtFormat, WritesEveryKindOfValue) {
  EXPECT_EQ(fmt::format("{}", Vector<float, 2>(0.1F, -2.5F)), "(0.1, -2.5)")
      << "the shortest text of a float";
  EXPECT_EQ(fmt::format("{}", Vector<double, 3>(1, 2, 3)), "(1, 2, 3)");
  EXPECT_EQ(fmt::format("{}", Point<float, 3>(4, 5, 6)), "(4, 5, 6)");
  EXPECT_EQ(fmt::format("{}", Plane<double>(0, 3, 4, 10)), "(0, 0.6, 0.8, 2)");
  EXPECT_EQ(fmt::format("{}", Range<double>(-1, 0.5)), "[-1, 0.5]");
  EXPECT_EQ(fmt::format("{}", Quaternionf()), "(0, 0, 0, 1)");
  EXPECT_EQ(fmt::format("{}", Matrix<double>::Translate(5, 6, 7)),
            "((1, 0, 0, 5), (0, 1, 0, 6), (0, 0, 1, 7), (0, 0, 0, 1))");
}

TEST(FmtFormat, AppliesTheOptionsToEveryNumber) {
  Vector<float, 3> const vector(1, 2.5F, -3);
  EXPECT_EQ(fmt::format("{:.2f}|{:+}", vector, vector), "(1.00, 2.50, -3.00)|(+1, +2.5, -3)");
  EXPECT_EQ(fmt::format("{:*^7.1f}", vector), "(**1.0**, **2.5**, *-3.0**)");
  EXPECT_EQ(fmt::format("{:#.0f}", vector), "(1., 2., -3.)");
  EXPECT_EQ(fmt::format("{:06.1E}", Range<double>(1, 20)), "[1.0E+00, 2.0E+01]");
  EXPECT_EQ(fmt::format("{:03}", Range<int>(1, 20)), "[001, 020]");
  EXPECT_EQ(fmt::format("{:3}", Matrix<float>::Scale(2)),
            "((  2,   0,   0,   0), (  0,   2,   0,   0), (  0,   0,   2,   0), (  0,   0,   0,   1))");
}

TEST(FmtFormat, TakesWidthAndPrecisionFromArguments) {
  Vector<double, 2> const vector(1.25, 2);
  EXPECT_EQ(fmt::format("{:{}.{}f}", vector, 6, 1), "(   1.2,    2.0)");
  EXPECT_EQ(fmt::format("{0:{1}}", vector, 5), "( 1.25,     2)");
  EXPECT_EQ(fmt::format("{:{SIZE_L}}", vector, fmt::arg("SIZE_L", 5)), "( 1.25,     2)");
}

TEST(FmtFormat, SeparatesBySemicolonsInTheFormOfALocale) {
  std::locale const comma = test::MakeCommaLocale();
  Vector<double, 2> const vector(1.5, 2);
  EXPECT_EQ(fmt::format(comma, "{:L}", vector), "(1,5; 2)");
  EXPECT_EQ(fmt::format(comma, "{:.1Lf}", vector), "(1,5; 2,0)");
  EXPECT_EQ(fmt::format(comma, "{:.1f}", vector), "(1.5, 2.0)");
  EXPECT_EQ(fmt::format(comma, "{:L}", Range<int>(1000, 2000)), "[1.000; 2.000]");
  EXPECT_EQ(fmt::format(std::locale::classic(), "{:L}", vector), "(1.5; 2)") << "in the form of any locale";
}

TEST(FmtFormat, DistinguishesLAsFillFromLForLocale) {
  std::locale const comma = test::MakeCommaLocale();
  Vector<double, 2> const vector(1.5, 2);
  EXPECT_EQ(fmt::format(comma, "{:L<4}", vector), "(1.5L, 2LLL)");
  EXPECT_EQ(fmt::format(comma, "{:L<}", vector), "(1.5, 2)");
  EXPECT_EQ(fmt::format(comma, "{:L<4f}", vector), "(1.500000, 2.000000)");
  EXPECT_EQ(fmt::format(comma, "{:L<4L}", vector), "(1,5L; 2LLL)");
}

TEST(FmtFormat, WritesAnOptionalAsItsValue) {
  EXPECT_EQ(fmt::format("{:.1f}", optional<Vector<float, 2>>(Vector<float, 2>(1, 2))), "(1.0, 2.0)");
  EXPECT_EQ(fmt::format("{:4}|", optional<int>(3)), "   3|");
  EXPECT_EQ(fmt::format("{:20.1f}|", optional<Vector<float, 2>>()), "nullopt|");
}

TEST(FmtFormat, WritesWhatIsNotFinite) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(fmt::format("{}", Vector<float, 3>(infinity, -infinity, nan)), "(inf, -inf, nan)");
  EXPECT_EQ(fmt::format("{:05.1f}", Vector<float, 2>(1, infinity)), "(001.0,   inf)") << "no zeros before it";
  EXPECT_EQ(fmt::format("{}", Vector<float, 2>(-0.0F, 0)), "(-0, 0)");
}

template <class Value>
std::string RefusalOf(char const* ip_format, Value const& i_value) {
  try {
    return "nothing refused: " + fmt::format(fmt::runtime(ip_format), i_value);
  } catch (fmt::format_error const& error) {
    return error.what();
  }
}

TEST(FmtFormat, RefusesOptionsAsOneNumberDoes) {
  Vector<float, 2> const vector(1, 2);
  for (char const* const format : {"{:d}", "{:s}", "{:.f}", "{:q}"}) {
    std::string const refusal = RefusalOf(format, 1.0F);
    EXPECT_FALSE(refusal.starts_with("nothing")) << refusal;
    EXPECT_EQ(RefusalOf(format, vector), refusal) << format;
    EXPECT_EQ(RefusalOf(format, Matrix<float>()), refusal) << format;
    EXPECT_EQ(RefusalOf(format, optional<float>()), refusal) << format;
  }
  EXPECT_EQ(RefusalOf("{:.1f}", CubeElement(3)), RefusalOf("{:.1f}", 3U));
}

TEST(FmtFormat, WritesIntoWhatTheCallerGives) {
  char text[8] = "-------";
  auto const result = fmt::format_to_n(text, 5, "{}", Vector<float, 2>(1, 2));
  EXPECT_EQ(std::string(text), "(1, 2--");
  EXPECT_EQ(result.size, 6U);
  EXPECT_EQ(fmt::format("{}", std::vector<Point<float, 2>>{{1, 2}, {3, 4}}), "[(1, 2), (3, 4)]");
}

template <class Identifier>
void ExpectTextOfStream(Identifier i_identifier) {
  std::ostringstream stream;
  stream << i_identifier;
  EXPECT_EQ(fmt::format("{}", i_identifier), stream.str());
}
template <class... Identifiers>
void ExpectTextOfStreams(Identifiers... i_identifiers) {
  (ExpectTextOfStream(i_identifiers), ...);
}

TEST(FmtFormat, WritesIdentifiersAsStreamsDo) {
  using namespace CubeElementIds;
  using namespace CubeSpaceIds;
  using namespace CanonicalCubeElementIds;
  ExpectTextOfStreams(Vertex5, Edge13, FaceY1, WholeCube, AxisY, PlaneXZ, VolumeXYZ);
  ExpectTextOfStreams(CubeElement(17), CubeSpace(6), CanonicalCubeElement(7));
  ExpectTextOfStreams(CanonicalVertex{0}, CanonicalEdge{4}, CanonicalFace{5}, CanonicalCube{7});
  EXPECT_EQ(fmt::format("{:#04x}", Edge13), "CubeElementIds::Edge with value: 0x11");
}

}  // namespace
}  // namespace lum

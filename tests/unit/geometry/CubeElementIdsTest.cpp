#include <gtest/gtest.h>

#include <array>
#include <set>
#include <sstream>
#include <string>
#include <type_traits>

#include "geometry/CubeElementIds.h"
#include "tests/support/Cube.h"

namespace lum::CubeElementIds {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<Vertex>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Edge>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Face>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Cube>, unsigned int>);

constexpr int f = test::free_axis;

static_assert(static_cast<unsigned int>(Vertex0) == test::Encode({0, 0, 0}));
static_assert(static_cast<unsigned int>(Vertex1) == test::Encode({1, 0, 0}));
static_assert(static_cast<unsigned int>(Vertex2) == test::Encode({0, 1, 0}));
static_assert(static_cast<unsigned int>(Vertex3) == test::Encode({1, 1, 0}));
static_assert(static_cast<unsigned int>(Vertex4) == test::Encode({0, 0, 1}));
static_assert(static_cast<unsigned int>(Vertex5) == test::Encode({1, 0, 1}));
static_assert(static_cast<unsigned int>(Vertex6) == test::Encode({0, 1, 1}));
static_assert(static_cast<unsigned int>(Vertex7) == test::Encode({1, 1, 1}));
static_assert(static_cast<unsigned int>(Edge01) == test::Encode({f, 0, 0}));
static_assert(static_cast<unsigned int>(Edge23) == test::Encode({f, 1, 0}));
static_assert(static_cast<unsigned int>(Edge45) == test::Encode({f, 0, 1}));
static_assert(static_cast<unsigned int>(Edge67) == test::Encode({f, 1, 1}));
static_assert(static_cast<unsigned int>(Edge02) == test::Encode({0, f, 0}));
static_assert(static_cast<unsigned int>(Edge13) == test::Encode({1, f, 0}));
static_assert(static_cast<unsigned int>(Edge46) == test::Encode({0, f, 1}));
static_assert(static_cast<unsigned int>(Edge57) == test::Encode({1, f, 1}));
static_assert(static_cast<unsigned int>(Edge04) == test::Encode({0, 0, f}));
static_assert(static_cast<unsigned int>(Edge15) == test::Encode({1, 0, f}));
static_assert(static_cast<unsigned int>(Edge26) == test::Encode({0, 1, f}));
static_assert(static_cast<unsigned int>(Edge37) == test::Encode({1, 1, f}));
static_assert(static_cast<unsigned int>(FaceX0) == test::Encode({0, f, f}));
static_assert(static_cast<unsigned int>(FaceX1) == test::Encode({1, f, f}));
static_assert(static_cast<unsigned int>(FaceY0) == test::Encode({f, 0, f}));
static_assert(static_cast<unsigned int>(FaceY1) == test::Encode({f, 1, f}));
static_assert(static_cast<unsigned int>(FaceZ0) == test::Encode({f, f, 0}));
static_assert(static_cast<unsigned int>(FaceZ1) == test::Encode({f, f, 1}));
static_assert(static_cast<unsigned int>(WholeCube) == test::Encode({f, f, f}));

template <class Id>
std::string Print(Id i_id) {
  std::ostringstream stream;
  stream << "<" << i_id << ">";
  return stream.str();
}

// The names of edges are the vertices that they join, those of vertices their numbers.
TEST(CubeElementIds, TheConstantsHaveTheirValues) {
  EXPECT_EQ(
      (std::array{Vertex0, Vertex1, Vertex2, Vertex3, Vertex4, Vertex5, Vertex6, Vertex7}),
      (std::array{Vertex{0}, Vertex{1}, Vertex{2}, Vertex{3}, Vertex{4}, Vertex{5}, Vertex{6}, Vertex{7}}));
  EXPECT_EQ((std::array{Edge01, Edge23, Edge45, Edge67}),
            (std::array{Edge{8}, Edge{10}, Edge{12}, Edge{14}}));
  EXPECT_EQ((std::array{Edge02, Edge13, Edge46, Edge57}),
            (std::array{Edge{16}, Edge{17}, Edge{20}, Edge{21}}));
  EXPECT_EQ((std::array{Edge04, Edge15, Edge26, Edge37}),
            (std::array{Edge{32}, Edge{33}, Edge{34}, Edge{35}}));
  EXPECT_EQ((std::array{FaceX0, FaceX1, FaceY0, FaceY1, FaceZ0, FaceZ1}),
            (std::array{Face{48}, Face{49}, Face{40}, Face{42}, Face{24}, Face{28}}));
  EXPECT_EQ(WholeCube, Cube{56});
}

TEST(CubeElementIds, All27ValuesDiffer) {
  std::set<unsigned int> values;
  for (test::Coordinates const& element : test::GetElements()) values.insert(test::Encode(element));
  EXPECT_EQ(values.size(), 27U);
  EXPECT_EQ(*values.rbegin(), 56U);
}

TEST(CubeElementIds, ArePrintedWithTypeAndValue) {
  EXPECT_EQ(Print(Vertex{5}), "<CubeElementIds::Vertex with value: 5>");
  EXPECT_EQ(Print(Edge{17}), "<CubeElementIds::Edge with value: 17>");
  EXPECT_EQ(Print(Face{48}), "<CubeElementIds::Face with value: 48>");
  EXPECT_EQ(Print(Cube{56}), "<CubeElementIds::Cube with value: 56>");
  EXPECT_EQ(Print(Cube{4294967295U}), "<CubeElementIds::Cube with value: 4294967295>");
}

TEST(CubeElementIds, PrintingReturnsTheStream) {
  std::ostringstream stream;
  EXPECT_EQ(&(stream << Vertex0), &stream);
  EXPECT_EQ(&(stream << Edge01), &stream);
  EXPECT_EQ(&(stream << FaceX0), &stream);
  EXPECT_EQ(&(stream << WholeCube), &stream);
}

}  // namespace
}  // namespace lum::CubeElementIds

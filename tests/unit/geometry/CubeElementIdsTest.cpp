#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <type_traits>

#include "geometry/CubeElementIds.h"
#include "tests/support/Cube.h"

namespace lum::CubeElementIds {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<Vertex>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Edge>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Face>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Cube>, unsigned int>);

// The value of each constant, from the coordinates of its element.
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

// An edge is named by the vertices that it joins, a vertex by its number.
static_assert(Vertex0 == Vertex{0});
static_assert(Vertex1 == Vertex{1});
static_assert(Vertex2 == Vertex{2});
static_assert(Vertex3 == Vertex{3});
static_assert(Vertex4 == Vertex{4});
static_assert(Vertex5 == Vertex{5});
static_assert(Vertex6 == Vertex{6});
static_assert(Vertex7 == Vertex{7});
static_assert(Edge01 == Edge{8});
static_assert(Edge23 == Edge{10});
static_assert(Edge45 == Edge{12});
static_assert(Edge67 == Edge{14});
static_assert(Edge02 == Edge{16});
static_assert(Edge13 == Edge{17});
static_assert(Edge46 == Edge{20});
static_assert(Edge57 == Edge{21});
static_assert(Edge04 == Edge{32});
static_assert(Edge15 == Edge{33});
static_assert(Edge26 == Edge{34});
static_assert(Edge37 == Edge{35});
static_assert(FaceX0 == Face{48});
static_assert(FaceX1 == Face{49});
static_assert(FaceY0 == Face{40});
static_assert(FaceY1 == Face{42});
static_assert(FaceZ0 == Face{24});
static_assert(FaceZ1 == Face{28});
static_assert(WholeCube == Cube{56});

using test::Print;

TEST(CubeElementIds, All27ValuesDiffer) {
  std::set<unsigned int> values;
  auto const insert = [&values](auto... i_ids) { (values.insert(static_cast<unsigned int>(i_ids)), ...); };
  insert(Vertex0, Vertex1, Vertex2, Vertex3, Vertex4, Vertex5, Vertex6, Vertex7);
  insert(Edge01, Edge23, Edge45, Edge67, Edge02, Edge13, Edge46, Edge57, Edge04, Edge15, Edge26, Edge37);
  insert(FaceX0, FaceX1, FaceY0, FaceY1, FaceZ0, FaceZ1);
  insert(WholeCube);
  EXPECT_EQ(values.size(), 27U);
  EXPECT_EQ(*values.rbegin(), 56U);
}

TEST(CubeElementIds, PrintTheirTypeAndValue) {
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

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <random>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "geometry/CanonicalCubeElement.h"
#include "tests/support/Cube.h"
#include "tests/support/Ordered.h"
#include "tests/support/Throws.h"

namespace lum {
namespace {

using namespace CanonicalCubeElementIds;

char const* const no_edge = "[CanonicalCubeElement] Cannot return element as edge";
char const* const no_face = "[CanonicalCubeElement] Cannot return element as face";

static_assert(std::is_same_v<std::underlying_type_t<CanonicalVertex>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<CanonicalEdge>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<CanonicalFace>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<CanonicalCube>, unsigned int>);
static_assert(sizeof(CanonicalCubeElement) == 4);
static_assert(std::is_trivially_copyable_v<CanonicalCubeElement>);

static_assert(CanonicalEdgeIterable::size() == 3);
static_assert(CanonicalFaceIterable::size() == 3);
static_assert(CanonicalEdgeIterable::IndexOf(CanonicalEdge{4}) == 2);
static_assert(CanonicalFaceIterable::IndexOf(CanonicalFace{6}) == 0);

constexpr std::array<CanonicalEdge, 3> edges = {CanonicalEdge{1}, CanonicalEdge{2}, CanonicalEdge{4}};
constexpr std::array<CanonicalFace, 3> faces = {CanonicalFace{6}, CanonicalFace{5}, CanonicalFace{3}};
static_assert(test::CheckList(CanonicalEdgeIterable(), edges));
static_assert(test::CheckList(CanonicalFaceIterable(), faces));
static_assert(test::CheckWalk(CanonicalEdgeIterator(false)));
static_assert(test::CheckWalk(CanonicalFaceIterator(false)));

static_assert(CanonicalCubeElement(CubeElement(CubeElementIds::Edge13)).GetIndex() == 2);
static_assert(CanonicalCubeElement(CubeElement(CubeElementIds::FaceY1)).GetDimensionality() == 2);
static_assert(CanonicalCubeElement(4).GetAsEdge() == CanonicalEdge{4});
static_assert(CanonicalCubeElement(5).GetAsFace() == CanonicalFace{5});

TEST(CanonicalCubeElement, KeepsTheValueOfAnyIdentifier) {
  EXPECT_EQ(CanonicalCubeElement(CanonicalVertex{0}).GetIndex(), 0U);
  EXPECT_EQ(CanonicalCubeElement(CanonicalEdge{2}).GetIndex(), 2U);
  EXPECT_EQ(CanonicalCubeElement(CanonicalFace{5}).GetIndex(), 5U);
  EXPECT_EQ(CanonicalCubeElement(CanonicalCube{7}).GetIndex(), 7U);
  EXPECT_EQ(CanonicalCubeElement(4294967295U).GetIndex(), 4294967295U) << "nothing is checked";
}

TEST(CanonicalCubeElement, HoldsTheFreeAxesOfAnElementNotItsPosition) {
  for (test::Coordinates const& coordinates : test::GetElements()) {
    unsigned int const value = test::Encode(coordinates);
    CanonicalCubeElement const canonical{CubeElement(value)};
    test::Coordinates at_origin = coordinates;
    for (int& coordinate : at_origin) coordinate = coordinate == test::free_axis ? test::free_axis : 0;
    EXPECT_EQ(canonical.GetDimensionality(), static_cast<unsigned int>(test::GetDimension(coordinates)))
        << value;
    EXPECT_EQ(canonical.GetIndex(), test::Encode(at_origin) / 8) << value;
  }
  EXPECT_EQ(CanonicalCubeElement(CubeElementIds::Edge13).GetAsEdge(), CanonicalEdge{2});
  EXPECT_EQ(CanonicalCubeElement(CubeElementIds::FaceY1).GetAsFace(), CanonicalFace{5});
  EXPECT_EQ(CanonicalCubeElement(CubeElementIds::Vertex7).GetIndex(), 0U);
  EXPECT_EQ(CanonicalCubeElement(CubeElementIds::WholeCube).GetIndex(), 7U);
}

TEST(CanonicalCubeElement, ComparesByValue) {
  EXPECT_EQ(CanonicalCubeElement(CubeElementIds::Edge01), CanonicalCubeElement(CubeElementIds::Edge23));
  EXPECT_NE(CanonicalCubeElement(CubeElementIds::Edge01), CanonicalCubeElement(CubeElementIds::Edge02));
  EXPECT_TRUE(test::IsOrdered(CanonicalCubeElement(1U), CanonicalCubeElement(2U)));
}

TEST(CanonicalCubeElement, TheDimensionIsTheNumberOfBits) {
  EXPECT_EQ(CanonicalCubeElement(0U).GetDimensionality(), 0U);
  EXPECT_EQ(CanonicalCubeElement(7U).GetDimensionality(), 3U);
  EXPECT_EQ(CanonicalCubeElement(4294967295U).GetDimensionality(), 32U);
}

TEST(CanonicalCubeElement, ConversionsCountTheBitsOfTheWholeValue) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (unsigned int round = 0; round < 2000; ++round) {
    auto const value = static_cast<unsigned int>(round < 1024 ? round : random());
    CanonicalCubeElement const element(value);
    ASSERT_EQ(element.GetDimensionality(), static_cast<unsigned int>(std::popcount(value)));
    if (std::popcount(value) == 1) {
      ASSERT_EQ(element.GetAsEdge(), CanonicalEdge{value});
    } else {
      ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)element.GetAsEdge(); }, no_edge)) << value;
    }
    if (std::popcount(value) == 2) {
      ASSERT_EQ(element.GetAsFace(), CanonicalFace{value});
    } else {
      ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)element.GetAsFace(); }, no_face)) << value;
    }
  }
}

TEST(CanonicalCubeElement, AVertexIsNoEdgeAndTheCubeNoFace) {
  EXPECT_TRUE(
      test::Throws<std::invalid_argument>([] { (void)CanonicalCubeElement(0U).GetAsEdge(); }, no_edge));
  EXPECT_TRUE(
      test::Throws<std::invalid_argument>([] { (void)CanonicalCubeElement(7U).GetAsFace(); }, no_face));
  EXPECT_EQ(CanonicalCubeElement(5U).GetAsFace(), CanonicalFace{5});
}

TEST(CanonicalCubeElement, EdgesAreListedByTheirAxis) {
  EXPECT_EQ(test::GetValues(CanonicalEdgeIterable()), (std::vector<unsigned int>{1, 2, 4}));
  EXPECT_EQ(CanonicalEdgeIterator(true) - CanonicalEdgeIterator(false), 3);
  EXPECT_EQ(CanonicalEdgeIterable()[0], CanonicalEdge{1});
  EXPECT_EQ(CanonicalEdgeIterable()[2], CanonicalEdge{4});
}

TEST(CanonicalCubeElement, FacesAreListedByTheirNormal) {
  EXPECT_EQ(test::GetValues(CanonicalFaceIterable()), (std::vector<unsigned int>{6, 5, 3}));
  EXPECT_EQ(CanonicalFaceIterator(true) - CanonicalFaceIterator(false), 3);
  EXPECT_EQ(CanonicalFaceIterable()[0], CanonicalFace{6});
  EXPECT_EQ(CanonicalFaceIterable()[2], CanonicalFace{3});
}

TEST(CanonicalCubeElement, IteratorsAreOrderedByTheirIndex) {
  EXPECT_TRUE(test::IsOrdered(CanonicalEdgeIterator(false), CanonicalEdgeIterator(true)));
  EXPECT_TRUE(test::IsOrdered(CanonicalFaceIterator(false), CanonicalFaceIterator(true)));
}

TEST(CanonicalCubeElement, TheIndexOfAnyValueIsDefined) {
  EXPECT_EQ(CanonicalEdgeIterable::IndexOf(CanonicalEdge{3}), 1U);
  constexpr unsigned seed = 4711;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (unsigned int round = 0; round < 2000; ++round) {
    auto const value = static_cast<unsigned int>(round < 64 ? round : random());
    ASSERT_EQ(CanonicalEdgeIterable::IndexOf(CanonicalEdge{value}), value / 2);
    ASSERT_EQ(CanonicalFaceIterable::IndexOf(CanonicalFace{value}), value / 2 ^ 3U);
  }
}

}  // namespace
}  // namespace lum

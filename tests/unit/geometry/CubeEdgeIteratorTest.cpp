#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <iterator>
#include <random>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "geometry/CubeEdgeIterator.h"
#include "tests/support/Cube.h"
#include "tests/support/Ordered.h"
#include "tests/support/Throws.h"

namespace lum {
namespace {

using namespace CubeElementIds;
using CubeSpaceIds::Orientation;

template <class Container>
struct CheckSize {
  static_assert(std::is_trivially_copyable_v<CubeEdgeIterator<Container>>);
  static_assert(std::is_trivially_copyable_v<CubeEdgeIterable<Container>>);
  static_assert(sizeof(CubeEdgeIterator<Container>) == 8);
  static_assert(sizeof(CubeEdgeIterable<Container>) == 4);
};
template struct CheckSize<Cube>;
template struct CheckSize<Face>;
static_assert(CubeEdgeIterable<Face>::size() == 4);
static_assert(std::is_same_v<decltype(CubeEdgeIterable<Cube>().IndexOf(Edge01)), unsigned long>);

constexpr auto all_edges = test::ListForAllAxes<Edge, 4>(&test::ListEdges<Edge>);

template <Orientation axis>
constexpr bool axis_lists_its_edges =
    test::CheckList(CubeEdgeIterable<Cube>(axis), test::ListEdges<Edge>(static_cast<unsigned int>(axis) / 2));
static_assert(axis_lists_its_edges<CubeSpaceIds::AxisX>);
static_assert(axis_lists_its_edges<CubeSpaceIds::AxisY>);
static_assert(axis_lists_its_edges<CubeSpaceIds::AxisZ>);

template <Face face>
constexpr bool face_lists_its_edges = test::CheckList(
    CubeEdgeIterable<Face>(face), test::ListEdgesOfFace<Edge>(test::Decode(static_cast<unsigned int>(face))));
static_assert(face_lists_its_edges<FaceX0>);
static_assert(face_lists_its_edges<FaceX1>);
static_assert(face_lists_its_edges<FaceY0>);
static_assert(face_lists_its_edges<FaceY1>);
static_assert(face_lists_its_edges<FaceZ0>);
static_assert(face_lists_its_edges<FaceZ1>);

static_assert(test::CheckList(CubeEdgeIterable<Cube>(), all_edges));
static_assert(test::CheckWalk(CubeEdgeIterator<Cube>(false)));
static_assert(test::CheckWalk(CubeEdgeIterator<Cube>(CubeSpaceIds::AxisZ, false)));
static_assert(test::CheckWalk(CubeEdgeIterator<Face>(FaceY1, false)));

using test::GetValues;
using Values = std::vector<unsigned int>;

TEST(CubeEdgeIterator, TheCubeListsFourEdgesAlongEachAxis) {
  EXPECT_EQ(GetValues(CubeEdgeIterable<Cube>()), (Values{8, 10, 12, 14, 16, 20, 17, 21, 32, 33, 34, 35}));
  EXPECT_EQ(CubeEdgeIterable<Cube>()[6], Edge13);
  EXPECT_EQ(CubeEdgeIterable<Cube>().IndexOf(Edge13), 6U);
}

TEST(CubeEdgeIterator, AnAxisListsItsFourEdges) {
  EXPECT_EQ(GetValues(CubeEdgeIterable<Cube>(CubeSpaceIds::AxisX)), (Values{8, 10, 12, 14}));
  EXPECT_EQ(GetValues(CubeEdgeIterable<Cube>(CubeSpaceIds::AxisY)), (Values{16, 20, 17, 21}));
  EXPECT_EQ(GetValues(CubeEdgeIterable<Cube>(CubeSpaceIds::AxisZ)), (Values{32, 33, 34, 35}));
  EXPECT_EQ(CubeEdgeIterable<Cube>(CubeSpaceIds::AxisY).IndexOf(Edge13), 2U);
}

TEST(CubeEdgeIterator, FacesListTwoPairsOfParallelEdges) {
  EXPECT_EQ(GetValues(CubeEdgeIterable<Face>(FaceX0)), (Values{16, 20, 32, 34}));
  EXPECT_EQ(GetValues(CubeEdgeIterable<Face>(FaceX1)), (Values{17, 21, 33, 35}));
  EXPECT_EQ(GetValues(CubeEdgeIterable<Face>(FaceY0)), (Values{32, 33, 8, 12}));
  EXPECT_EQ(GetValues(CubeEdgeIterable<Face>(FaceY1)), (Values{34, 35, 10, 14}));
  EXPECT_EQ(GetValues(CubeEdgeIterable<Face>(FaceZ0)), (Values{8, 10, 16, 17}));
  EXPECT_EQ(GetValues(CubeEdgeIterable<Face>(FaceZ1)), (Values{12, 14, 20, 21}));
  EXPECT_EQ(CubeEdgeIterable<Face>(FaceY0)[2], Edge01);
  EXPECT_EQ(CubeEdgeIterable<Face>(FaceY0).IndexOf(Edge01), 2U);
}

TEST(CubeEdgeIterator, EndsAreAfterTheLastElement) {
  EXPECT_EQ(CubeEdgeIterator<Cube>(true) - CubeEdgeIterator<Cube>(false), 12);
  EXPECT_EQ(
      CubeEdgeIterator<Cube>(CubeSpaceIds::AxisY, true) - CubeEdgeIterator<Cube>(CubeSpaceIds::AxisY, false),
      4);
  EXPECT_EQ(CubeEdgeIterator<Face>(FaceX1, true) - CubeEdgeIterator<Face>(FaceX1, false), 4);
}

TEST(CubeEdgeIterator, HoldsTheIndexThenTheContext) {
  using Words = std::array<unsigned int, 2>;
  EXPECT_EQ((std::bit_cast<Words>(CubeEdgeIterator<Cube>(true))), (Words{12, 7}));
  EXPECT_EQ((std::bit_cast<Words>(CubeEdgeIterator<Cube>(CubeSpaceIds::AxisY, true))), (Words{4, 2}));
  EXPECT_EQ((std::bit_cast<Words>(CubeEdgeIterator<Face>(FaceY1, false) + 3)), (Words{3, 42}));
}

TEST(CubeEdgeIterator, WalksLikeAPointer) {
  for (Orientation const axis : {CubeSpaceIds::AxisX, CubeSpaceIds::AxisY, CubeSpaceIds::AxisZ}) {
    SCOPED_TRACE(axis);
    test::CheckWalk(CubeEdgeIterator<Cube>(axis, false));
  }
  for (test::Coordinates const& element : test::faces) {
    Face const face{test::Encode(element)};
    SCOPED_TRACE(face);
    test::CheckWalk(CubeEdgeIterator<Face>(face, false));
  }
  EXPECT_NE(CubeEdgeIterator<Face>(FaceX0, false), CubeEdgeIterator<Face>(FaceX1, false))
      << "the context counts";
  EXPECT_NE(CubeEdgeIterator<Cube>(false), CubeEdgeIterator<Cube>(CubeSpaceIds::AxisX, false));
}

TEST(CubeEdgeIterator, ServesTheStandardAlgorithms) {
  CubeEdgeIterable<Cube> const edges;
  EXPECT_EQ(std::find(edges.begin(), edges.end(), Edge57) - edges.begin(), 7);
  EXPECT_EQ(std::count_if(edges.begin(), edges.end(), [](Edge i_edge) { return i_edge < Edge04; }), 8);
  EXPECT_EQ(*std::make_reverse_iterator(edges.end()), Edge37);
  EXPECT_EQ(*std::ranges::max_element(CubeEdgeIterable<Face>(FaceY0)), Edge15) << "outlives its iterable";
  Values sorted = GetValues(edges);
  std::ranges::sort(sorted);
  Values expected;
  for (test::Coordinates const& element : test::edges) expected.push_back(test::Encode(element));
  std::ranges::sort(expected);
  EXPECT_EQ(sorted, expected);
}

TEST(CubeEdgeIterator, TheNumberOfBitsDefinesTheSpace) {
  char const* const message = "[CubeEdgeIterator] CubeEdgeIterable has invalid space";
  for (unsigned int a = 0; a < 32; ++a) {
    for (unsigned int b = a; b < 32; ++b) {
      for (unsigned int c = b; c < 32; ++c) {
        unsigned int const space = 1U << a | 1U << b | 1U << c;
        CubeEdgeIterable<Cube> const edges(Orientation{space});
        if (std::popcount(space) == 2) {
          ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)edges.size(); }, message)) << space;
          ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)edges.begin(); }, message)) << space;
          ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)edges.end(); }, message)) << space;
          ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)edges[0]; }, message)) << space;
        } else if (std::popcount(space) == 3) {
          ASSERT_EQ(edges.size(), 12U);
          ASSERT_TRUE(std::ranges::equal(edges, all_edges)) << "all three axes for any three bits";
          ASSERT_EQ(edges.begin(), CubeEdgeIterator<Cube>(false));
          ASSERT_EQ(edges.end(), CubeEdgeIterator<Cube>(true));
        } else {
          ASSERT_EQ(edges.size(), 4U);
          ASSERT_EQ(edges.begin(), CubeEdgeIterator<Cube>(Orientation{space}, false));
          ASSERT_EQ(edges.end(), CubeEdgeIterator<Cube>(Orientation{space}, true));
          ASSERT_EQ(GetValues(edges).size(), 4U);
        }
      }
    }
  }
  for (unsigned int const space : {0U, 3U, 5U, 6U, 15U, 4294967295U}) {
    CubeEdgeIterable<Cube> const edges(Orientation{space});
    EXPECT_TRUE(test::Throws<std::invalid_argument>([&] { (void)edges.size(); }, message)) << space;
    EXPECT_TRUE(test::Throws<std::invalid_argument>([&] { (void)edges.begin(); }, message)) << space;
    EXPECT_TRUE(test::Throws<std::invalid_argument>([&] { (void)edges.end(); }, message)) << space;
    EXPECT_TRUE(test::Throws<std::invalid_argument>([&] { (void)edges[0]; }, message)) << space;
  }
}

TEST(CubeEdgeIterator, IsOrderedByItsIndexThenItsContext) {
  using CubeIterator = CubeEdgeIterator<Cube>;
  using FaceIterator = CubeEdgeIterator<Face>;
  EXPECT_TRUE(test::IsOrdered(CubeIterator(false), CubeIterator(CubeSpaceIds::AxisX, true)));
  EXPECT_TRUE(
      test::IsOrdered(CubeIterator(CubeSpaceIds::AxisX, false), CubeIterator(CubeSpaceIds::AxisZ, false)));
  EXPECT_TRUE(test::IsOrdered(FaceIterator(FaceX1, false), FaceIterator(FaceZ0, true)));
  EXPECT_TRUE(test::IsOrdered(FaceIterator(FaceZ0, false), FaceIterator(FaceX1, false)));
  EXPECT_EQ(CubeIterator(), CubeIterator(false));
  EXPECT_EQ(FaceIterator(), FaceIterator(Face{0}, false));
}

TEST(CubeEdgeIterator, AnIteratorWithoutOrientationListsAllAxes) {
  for (unsigned int const space : {0U, 3U, 15U}) {
    CubeEdgeIterator<Cube> const begin(Orientation{space}, false);
    for (std::ptrdiff_t i = 0; i < 12; ++i) EXPECT_EQ(begin[i], all_edges[static_cast<std::size_t>(i)]);
  }
}

// The documented formulas, in 64 bits, where no bit is shifted out.
using test::Turn;
std::uint64_t ExpectIndexOnCube(std::uint64_t i_space, std::uint64_t i_x) {
  std::uint64_t const axis = (i_x >> 4) & 3;
  std::uint64_t const along_axis = Turn(i_x & 7, (axis + 1) ^ 3);
  return std::popcount(i_space) == 1 ? along_axis : (4 * axis | along_axis);
}
std::uint64_t ExpectIndexOnFace(std::uint64_t i_face, std::uint64_t i_x) {
  std::uint64_t const d = i_face ^ i_x;
  return ((d & 7) >> (d >> 4)) | (Turn(i_x >> 3, (i_face >> 4) - 1) & 6);
}

TEST(CubeEdgeIterator, TheIndexOfAnyValueOnAnyContextIsDefined) {
  for (unsigned int value = 0; value < 64; ++value) {
    for (unsigned int space = 0; space < 64; ++space) {
      ASSERT_EQ(CubeEdgeIterable<Cube>(Orientation{space}).IndexOf(Edge{value}),
                ExpectIndexOnCube(space, value));
    }
    for (test::Coordinates const& face : test::faces) {
      unsigned int const context = test::Encode(face);
      ASSERT_EQ(CubeEdgeIterable<Face>(Face{context}).IndexOf(Edge{value}),
                ExpectIndexOnFace(context, value));
    }
  }
}

TEST(CubeEdgeIterator, AnyValueIsDefined) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (unsigned int round = 0; round < 2000; ++round) {
    auto const context = static_cast<unsigned int>(random());
    auto const value = static_cast<unsigned int>(random());
    CubeEdgeIterable<Face> const edges(Face{context});
    // Shift counts are taken modulo 32.
    unsigned int const d = context ^ value;
    unsigned int const turned = ((value >> 3) << (((context >> 4) - 1) % 32)) % 7;
    ASSERT_EQ(edges.IndexOf(Edge{value}), ((d & 7U) >> ((d >> 4) % 32)) | (turned & 6U));
    Values expected;
    unsigned int const n = (context >> 3) ^ 7U;
    for (unsigned int i = 0; i < 4; ++i) {
      unsigned int const s = i / 2 + 1;
      unsigned int const offset = (((i & 1U) << ((n >> 1) % 32)) << (s ^ 3U)) % 7;
      expected.push_back(((n << s) % 7) << 3 | ((context & 7U) ^ offset));
    }
    ASSERT_EQ(GetValues(edges), expected);
    ASSERT_EQ(CubeEdgeIterable<Cube>().IndexOf(Edge{value}), ExpectIndexOnCube(7, value));
  }
}

}  // namespace
}  // namespace lum

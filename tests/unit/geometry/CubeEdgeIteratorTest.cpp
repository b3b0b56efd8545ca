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
constexpr bool is_small_value = std::is_trivially_copyable_v<CubeEdgeIterator<Container>>&&
                                    std::is_trivially_copyable_v<CubeEdgeIterable<Container>> &&
                                sizeof(CubeEdgeIterator<Container>) == 8 &&
                                sizeof(CubeEdgeIterable<Container>) == 4;
static_assert(is_small_value<Cube> && is_small_value<Face>);
static_assert(CubeEdgeIterable<Face>::size() == 4);
static_assert(std::is_same_v<decltype(CubeEdgeIterable<Cube>().IndexOf(Edge01)), unsigned long>);

constexpr auto all_edges = test::ListForAllAxes<Edge, 4>(&test::ListEdges<Edge>);

constexpr bool DoAxesListTheirEdges() {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (!test::Lists(CubeEdgeIterable<Cube>(Orientation{1U << axis}), test::ListEdges<Edge>(axis)))
      return false;
  }
  return true;
}
constexpr bool DoFacesListTheirEdges() {
  return std::ranges::all_of(test::faces, [](test::Coordinates const& i_face) {
    return test::Lists(CubeEdgeIterable<Face>(Face{test::Encode(i_face)}),
                       test::ListEdgesOfFace<Edge>(i_face));
  });
}
static_assert(test::Lists(CubeEdgeIterable<Cube>(), all_edges));
static_assert(DoAxesListTheirEdges() && DoFacesListTheirEdges());
static_assert(test::Walks(CubeEdgeIterator<Cube>(false)) &&
              test::Walks(CubeEdgeIterator<Face>(FaceY1, false)) &&
              test::Walks(CubeEdgeIterator<Cube>(CubeSpaceIds::AxisZ, false)));

template <class Range>
std::vector<unsigned int> Collect(Range const& i_range) {
  std::vector<unsigned int> values;
  for (Edge const edge : i_range) values.push_back(static_cast<unsigned int>(edge));
  return values;
}
using Values = std::vector<unsigned int>;

TEST(CubeEdgeIterator, TheCubeListsFourAlongEachAxis) {
  EXPECT_EQ(Collect(CubeEdgeIterable<Cube>()), (Values{8, 10, 12, 14, 16, 20, 17, 21, 32, 33, 34, 35}));
  EXPECT_TRUE(test::Lists(CubeEdgeIterable<Cube>(), all_edges));
  EXPECT_EQ(CubeEdgeIterable<Cube>()[6], Edge13);
  EXPECT_EQ(CubeEdgeIterable<Cube>().IndexOf(Edge13), 6U);
}

TEST(CubeEdgeIterator, AnAxisListsItsFour) {
  EXPECT_EQ(Collect(CubeEdgeIterable<Cube>(CubeSpaceIds::AxisX)), (Values{8, 10, 12, 14}));
  EXPECT_EQ(Collect(CubeEdgeIterable<Cube>(CubeSpaceIds::AxisY)), (Values{16, 20, 17, 21}));
  EXPECT_EQ(Collect(CubeEdgeIterable<Cube>(CubeSpaceIds::AxisZ)), (Values{32, 33, 34, 35}));
  EXPECT_TRUE(DoAxesListTheirEdges());
  EXPECT_EQ(CubeEdgeIterable<Cube>(CubeSpaceIds::AxisY).IndexOf(Edge13), 2U);
}

TEST(CubeEdgeIterator, FacesListTwoPairs) {
  EXPECT_EQ(Collect(CubeEdgeIterable<Face>(FaceX0)), (Values{16, 20, 32, 34}));
  EXPECT_EQ(Collect(CubeEdgeIterable<Face>(FaceX1)), (Values{17, 21, 33, 35}));
  EXPECT_EQ(Collect(CubeEdgeIterable<Face>(FaceY0)), (Values{32, 33, 8, 12}));
  EXPECT_EQ(Collect(CubeEdgeIterable<Face>(FaceY1)), (Values{34, 35, 10, 14}));
  EXPECT_EQ(Collect(CubeEdgeIterable<Face>(FaceZ0)), (Values{8, 10, 16, 17}));
  EXPECT_EQ(Collect(CubeEdgeIterable<Face>(FaceZ1)), (Values{12, 14, 20, 21}));
  EXPECT_TRUE(DoFacesListTheirEdges());
  EXPECT_EQ(CubeEdgeIterable<Face>(FaceY0)[2], Edge01);
  EXPECT_EQ(CubeEdgeIterable<Face>(FaceY0).IndexOf(Edge01), 2U);
}

TEST(CubeEdgeIterator, EndsAreBehindTheLast) {
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
  EXPECT_TRUE(test::Walks(CubeEdgeIterator<Cube>(false)));
  for (Orientation const axis : {CubeSpaceIds::AxisX, CubeSpaceIds::AxisY, CubeSpaceIds::AxisZ}) {
    EXPECT_TRUE(test::Walks(CubeEdgeIterator<Cube>(axis, false)));
  }
  for (test::Coordinates const& face : test::faces) {
    EXPECT_TRUE(test::Walks(CubeEdgeIterator<Face>(Face{test::Encode(face)}, false)));
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
  Values sorted = Collect(edges);
  std::ranges::sort(sorted);
  Values expected;
  for (test::Coordinates const& element : test::edges) expected.push_back(test::Encode(element));
  std::ranges::sort(expected);
  EXPECT_EQ(sorted, expected);
}

TEST(CubeEdgeIterator, TheNumberOfBitsDecidesAboutTheSpace) {
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
          ASSERT_TRUE(std::ranges::equal(edges, all_edges)) << "all three axes, whatever the bits";
          ASSERT_EQ(edges.begin(), CubeEdgeIterator<Cube>(false));
          ASSERT_EQ(edges.end(), CubeEdgeIterator<Cube>(true));
        } else {
          ASSERT_EQ(edges.size(), 4U);
          ASSERT_EQ(edges.begin(), CubeEdgeIterator<Cube>(Orientation{space}, false));
          ASSERT_EQ(edges.end(), CubeEdgeIterator<Cube>(Orientation{space}, true));
          ASSERT_EQ(Collect(edges).size(), 4U);
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

TEST(CubeEdgeIterator, AnIteratorOfNoOrientationTakesTheAxesInTurn) {
  for (unsigned int const space : {0U, 3U, 15U}) {
    CubeEdgeIterator<Cube> const begin(Orientation{space}, false);
    for (std::ptrdiff_t i = 0; i < 12; ++i) EXPECT_EQ(begin[i], all_edges[static_cast<std::size_t>(i)]);
  }
}

// As documented, in arithmetic that loses no bits.
std::uint64_t Turn(std::uint64_t i_bits, std::uint64_t i_count) { return (i_bits << i_count) % 7; }
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

TEST(CubeEdgeIterator, AnyBitsAtAllAreDefined) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (unsigned int round = 0; round < 2000; ++round) {
    auto const context = static_cast<unsigned int>(random());
    auto const value = static_cast<unsigned int>(random());
    CubeEdgeIterable<Face> const edges(Face{context});
    // Shifts by more than all bits take their count modulo 32.
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
    ASSERT_EQ(Collect(edges), expected);
    ASSERT_EQ(CubeEdgeIterable<Cube>().IndexOf(Edge{value}), ExpectIndexOnCube(7, value));
  }
}

}  // namespace
}  // namespace lum

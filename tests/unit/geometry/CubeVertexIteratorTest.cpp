#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <iterator>
#include <random>
#include <type_traits>
#include <vector>

#include "geometry/CubeVertexIterator.h"
#include "tests/support/Cube.h"
#include "tests/support/Ordered.h"

namespace lum {
namespace {

using namespace CubeElementIds;

template <class Container>
struct CheckSize {
  static_assert(std::is_trivially_copyable_v<CubeVertexIterator<Container>>);
  static_assert(std::is_trivially_copyable_v<CubeVertexIterable<Container>>);
  static_assert(sizeof(CubeVertexIterator<Container>) <= 8);
};
template struct CheckSize<Cube>;
template struct CheckSize<Face>;
template struct CheckSize<Edge>;
static_assert(sizeof(CubeVertexIterator<Cube>) == 4, "the index alone");
static_assert(std::is_empty_v<CubeVertexIterable<Cube>>);

// Sizes, and the index in the cube, need no object.
static_assert(CubeVertexIterable<Cube>::size() == 8);
static_assert(CubeVertexIterable<Face>::size() == 4);
static_assert(CubeVertexIterable<Edge>::size() == 2);
static_assert(CubeVertexIterable<Cube>::IndexOf(Vertex6) == 6);
static_assert(std::is_same_v<decltype(CubeVertexIterable<Cube>::IndexOf(Vertex0)), unsigned long>);

template <Face face>
constexpr bool face_lists_its_vertices =
    test::CheckList(CubeVertexIterable<Face>(face),
                    test::ListVerticesOfFace<Vertex>(test::Decode(static_cast<unsigned int>(face))));
static_assert(face_lists_its_vertices<FaceX0>);
static_assert(face_lists_its_vertices<FaceX1>);
static_assert(face_lists_its_vertices<FaceY0>);
static_assert(face_lists_its_vertices<FaceY1>);
static_assert(face_lists_its_vertices<FaceZ0>);
static_assert(face_lists_its_vertices<FaceZ1>);

template <Edge edge>
constexpr bool edge_lists_its_vertices =
    test::CheckList(CubeVertexIterable<Edge>(edge),
                    test::ListVerticesOfEdge<Vertex>(test::Decode(static_cast<unsigned int>(edge))));
static_assert(edge_lists_its_vertices<Edge01>);
static_assert(edge_lists_its_vertices<Edge23>);
static_assert(edge_lists_its_vertices<Edge45>);
static_assert(edge_lists_its_vertices<Edge67>);
static_assert(edge_lists_its_vertices<Edge02>);
static_assert(edge_lists_its_vertices<Edge13>);
static_assert(edge_lists_its_vertices<Edge46>);
static_assert(edge_lists_its_vertices<Edge57>);
static_assert(edge_lists_its_vertices<Edge04>);
static_assert(edge_lists_its_vertices<Edge15>);
static_assert(edge_lists_its_vertices<Edge26>);
static_assert(edge_lists_its_vertices<Edge37>);

static_assert(test::CheckList(CubeVertexIterable<Cube>(), test::ListVertices<Vertex>()));
static_assert(test::CheckWalk(CubeVertexIterator<Cube>(false)));
static_assert(test::CheckWalk(CubeVertexIterator<Face>(FaceY1, false)));
static_assert(test::CheckWalk(CubeVertexIterator<Edge>(Edge57, false)));

using test::GetValues;
using Values = std::vector<unsigned int>;

TEST(CubeVertexIterator, TheCubeListsItsVerticesByNumber) {
  EXPECT_EQ(GetValues(CubeVertexIterable<Cube>()), (Values{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(GetValues(CubeVertexIterable<Cube>(WholeCube)), (Values{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(GetValues(CubeVertexIterable<Cube>(Cube{3})), (Values{0, 1, 2, 3, 4, 5, 6, 7})) << "for any cube";
}

TEST(CubeVertexIterator, FacesListTheirVerticesByCoordinateNotAround) {
  EXPECT_EQ(GetValues(CubeVertexIterable<Face>(FaceX0)), (Values{0, 2, 4, 6}));
  EXPECT_EQ(GetValues(CubeVertexIterable<Face>(FaceX1)), (Values{1, 3, 5, 7}));
  EXPECT_EQ(GetValues(CubeVertexIterable<Face>(FaceY0)), (Values{0, 4, 1, 5}));
  EXPECT_EQ(GetValues(CubeVertexIterable<Face>(FaceY1)), (Values{2, 6, 3, 7}));
  EXPECT_EQ(GetValues(CubeVertexIterable<Face>(FaceZ0)), (Values{0, 1, 2, 3}));
  EXPECT_EQ(GetValues(CubeVertexIterable<Face>(FaceZ1)), (Values{4, 5, 6, 7}));
  EXPECT_EQ(CubeVertexIterable<Face>(FaceY0).IndexOf(Vertex5), 3U);
}

TEST(CubeVertexIterator, EdgesListTheirStartThenTheirEnd) {
  EXPECT_EQ(GetValues(CubeVertexIterable<Edge>(Edge57)), (Values{5, 7}));
  for (test::Coordinates const& edge : test::edges) {
    unsigned int const value = test::Encode(edge);
    EXPECT_EQ(GetValues(CubeVertexIterable<Edge>(Edge{value})), (Values{value % 8, value % 8 + value / 8}));
  }
}

TEST(CubeVertexIterator, EndsAreAfterTheLastElement) {
  EXPECT_EQ(CubeVertexIterator<Cube>(true) - CubeVertexIterator<Cube>(false), 8);
  EXPECT_EQ(CubeVertexIterator<Face>(FaceX1, true) - CubeVertexIterator<Face>(FaceX1, false), 4);
  EXPECT_EQ(CubeVertexIterator<Edge>(Edge01, true) - CubeVertexIterator<Edge>(Edge01, false), 2);
}

TEST(CubeVertexIterator, HoldsTheIndexThenTheContext) {
  using Words = std::array<unsigned int, 2>;
  EXPECT_EQ((std::bit_cast<Words>(CubeVertexIterator<Face>(FaceY1, true))), (Words{4, 42}));
  EXPECT_EQ((std::bit_cast<Words>(CubeVertexIterator<Edge>(Edge37, false) + 1)), (Words{1, 35}));
  EXPECT_EQ(std::bit_cast<unsigned int>(CubeVertexIterator<Cube>(true)), 8U);
}

TEST(CubeVertexIterator, WalksLikeAPointer) {
  for (test::Coordinates const& element : test::faces) {
    Face const face{test::Encode(element)};
    SCOPED_TRACE(face);
    test::CheckWalk(CubeVertexIterator<Face>(face, false));
  }
  for (test::Coordinates const& element : test::edges) {
    Edge const edge{test::Encode(element)};
    SCOPED_TRACE(edge);
    test::CheckWalk(CubeVertexIterator<Edge>(edge, false));
  }
  EXPECT_NE(CubeVertexIterator<Face>(FaceX0, false), CubeVertexIterator<Face>(FaceX1, false))
      << "the context counts";
  EXPECT_NE(CubeVertexIterator<Edge>(Edge01, false), CubeVertexIterator<Edge>(Edge02, false));
}

TEST(CubeVertexIterator, IsOrderedByItsIndexThenItsContext) {
  using FaceIterator = CubeVertexIterator<Face>;
  using EdgeIterator = CubeVertexIterator<Edge>;
  EXPECT_TRUE(test::IsOrdered(CubeVertexIterator<Cube>(false), CubeVertexIterator<Cube>(true)));
  EXPECT_TRUE(test::IsOrdered(FaceIterator(FaceX1, false), FaceIterator(FaceZ0, true)));
  EXPECT_TRUE(test::IsOrdered(FaceIterator(FaceZ0, false), FaceIterator(FaceX1, false)));
  EXPECT_TRUE(test::IsOrdered(EdgeIterator(Edge37, false), EdgeIterator(Edge01, true)));
  EXPECT_TRUE(test::IsOrdered(EdgeIterator(Edge01, false), EdgeIterator(Edge37, false)));
  EXPECT_EQ(FaceIterator(), FaceIterator(Face{0}, false));
  EXPECT_EQ(EdgeIterator(), EdgeIterator(Edge{0}, false));
}

TEST(CubeVertexIterator, ServesTheStandardAlgorithms) {
  CubeVertexIterable<Cube> const vertices;
  EXPECT_EQ(std::find(vertices.begin(), vertices.end(), Vertex6) - vertices.begin(), 6);
  EXPECT_EQ(std::distance(vertices.begin(), vertices.end()), 8);
  EXPECT_EQ(std::ranges::lower_bound(vertices, Vertex3) - vertices.begin(), 3);
  EXPECT_EQ(*std::make_reverse_iterator(vertices.end()), Vertex7);
  EXPECT_EQ(*std::ranges::max_element(CubeVertexIterable<Face>(FaceY0)), Vertex5) << "outlives its iterable";
}

// The documented formulas, in 64 bits, where no bit is shifted out.
using test::Turn;
std::uint64_t ExpectIndexOnEdge(std::uint64_t i_edge, std::uint64_t i_x) {
  return ((i_x ^ i_edge) & 7) >> ((i_edge >> 4) & 3);
}
std::uint64_t ExpectIndexOnFace(std::uint64_t i_face, std::uint64_t i_x) {
  return Turn((i_x ^ i_face) & 7, (4 - ((i_face >> 4) & 3)) ^ 3);
}

TEST(CubeVertexIterator, TheIndexOfAnyValueOnAnyContextIsDefined) {
  for (unsigned int context = 0; context < 64; ++context) {
    for (unsigned int value = 0; value < 64; ++value) {
      ASSERT_EQ(CubeVertexIterable<Cube>::IndexOf(Vertex{value}), value);
      ASSERT_EQ(CubeVertexIterable<Edge>(Edge{context}).IndexOf(Vertex{value}),
                ExpectIndexOnEdge(context, value));
      ASSERT_EQ(CubeVertexIterable<Face>(Face{context}).IndexOf(Vertex{value}),
                ExpectIndexOnFace(context, value));
    }
  }
}

TEST(CubeVertexIterator, AnyValueIsDefined) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (unsigned int round = 0; round < 2000; ++round) {
    auto const context = static_cast<unsigned int>(random());
    auto const value = static_cast<unsigned int>(random());
    ASSERT_EQ(CubeVertexIterable<Edge>(Edge{context}).IndexOf(Vertex{value}),
              ExpectIndexOnEdge(context, value));
    ASSERT_EQ(CubeVertexIterable<Face>(Face{context}).IndexOf(Vertex{value}),
              ExpectIndexOnFace(context, value));
    // Shift counts are taken modulo 32.
    unsigned int const on_edge = 1U << ((context >> 4) % 32);
    ASSERT_EQ(GetValues(CubeVertexIterable<Edge>(Edge{context})),
              (Values{context & 7U, on_edge | (context & 7U)}));
    Values on_face;
    for (unsigned int i = 0; i < 4; ++i) {
      on_face.push_back((i << ((((context >> 4) ^ 3U) + 1) % 32)) % 7 | (context & 7U));
    }
    ASSERT_EQ(GetValues(CubeVertexIterable<Face>(Face{context})), on_face);
  }
}

}  // namespace
}  // namespace lum

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

#include "geometry/CubeFaceIterator.h"
#include "tests/support/Cube.h"
#include "tests/support/Ordered.h"
#include "tests/support/Throws.h"

namespace lum {
namespace {

using namespace CubeElementIds;
using CubeSpaceIds::Orientation;
using CubeSpaceIds::Plane;

char const* const invalid_space = "[CubeFaceIterator] CubeFaceIterable has invalid space";
char const* const no_orientation = "[CubeSpace] Cannot return space as orientation.";

static_assert(std::is_trivially_copyable_v<CubeFaceIterator<Cube>>);
static_assert(sizeof(CubeFaceIterator<Cube>) == 8);
static_assert(std::is_trivially_copyable_v<CubeFaceIterable<Cube>>);
static_assert(sizeof(CubeFaceIterable<Cube>) == 4);
static_assert(std::is_same_v<decltype(CubeFaceIterable<Cube>().IndexOf(FaceX0)), unsigned long>);

constexpr auto all_faces = test::ListForAllAxes<Face, 2>(&test::ListFaces<Face>);

template <Orientation axis>
constexpr bool axis_lists_its_faces =
    test::CheckList(CubeFaceIterable<Cube>(axis), test::ListFaces<Face>(static_cast<unsigned int>(axis) / 2));
static_assert(axis_lists_its_faces<CubeSpaceIds::AxisX>);
static_assert(axis_lists_its_faces<CubeSpaceIds::AxisY>);
static_assert(axis_lists_its_faces<CubeSpaceIds::AxisZ>);

static_assert(test::CheckList(CubeFaceIterable<Cube>(), all_faces));
static_assert(test::CheckWalk(CubeFaceIterator<Cube>(false)));
static_assert(test::CheckWalk(CubeFaceIterator<Cube>(CubeSpaceIds::PlaneXZ, false)));

using test::GetValues;
using Values = std::vector<unsigned int>;

TEST(CubeFaceIterator, TheCubeListsTwoFacesAcrossEachAxis) {
  EXPECT_EQ(GetValues(CubeFaceIterable<Cube>()), (Values{48, 49, 40, 42, 24, 28}));
  EXPECT_EQ(CubeFaceIterable<Cube>().IndexOf(FaceY1), 3U);
}

TEST(CubeFaceIterator, AnAxisListsTheTwoFacesAcrossIt) {
  EXPECT_EQ(GetValues(CubeFaceIterable<Cube>(CubeSpaceIds::AxisX)), (Values{48, 49}));
  EXPECT_EQ(GetValues(CubeFaceIterable<Cube>(CubeSpaceIds::AxisY)), (Values{40, 42}));
  EXPECT_EQ(GetValues(CubeFaceIterable<Cube>(CubeSpaceIds::AxisZ)), (Values{24, 28}));
  EXPECT_EQ(CubeFaceIterable<Cube>(CubeSpaceIds::AxisY).IndexOf(FaceY1), 1U);
}

TEST(CubeFaceIterator, EndsAreAfterTheLastElement) {
  EXPECT_EQ(CubeFaceIterator<Cube>(true) - CubeFaceIterator<Cube>(false), 6);
  EXPECT_EQ(CubeFaceIterator<Cube>(CubeSpaceIds::PlaneXY, true) -
                CubeFaceIterator<Cube>(CubeSpaceIds::PlaneXY, false),
            2);
}

TEST(CubeFaceIterator, HoldsTheIndexThenTheContext) {
  using Words = std::array<unsigned int, 2>;
  EXPECT_EQ((std::bit_cast<Words>(CubeFaceIterator<Cube>(true))), (Words{6, 7}));
  EXPECT_EQ((std::bit_cast<Words>(CubeFaceIterator<Cube>(CubeSpaceIds::PlaneXZ, true))), (Words{2, 5}));
  EXPECT_EQ((std::bit_cast<Words>(CubeFaceIterable<Cube>(CubeSpaceIds::AxisY).begin())), (Words{0, 5}));
}

TEST(CubeFaceIterator, WalksLikeAPointer) {
  for (Plane const plane : {CubeSpaceIds::PlaneXY, CubeSpaceIds::PlaneXZ, CubeSpaceIds::PlaneYZ}) {
    SCOPED_TRACE(plane);
    test::CheckWalk(CubeFaceIterator<Cube>(plane, false));
    EXPECT_NE(CubeFaceIterator<Cube>(plane, false), CubeFaceIterator<Cube>(false)) << "the context counts";
  }
}

TEST(CubeFaceIterator, ServesTheStandardAlgorithms) {
  CubeFaceIterable<Cube> const faces;
  EXPECT_EQ(std::find(faces.begin(), faces.end(), FaceZ0) - faces.begin(), 4);
  EXPECT_EQ(*std::make_reverse_iterator(faces.end()), FaceZ1);
  EXPECT_EQ(*std::ranges::max_element(CubeFaceIterable<Cube>()), FaceX1) << "outlives its iterable";
  Values sorted = GetValues(faces);
  std::ranges::sort(sorted);
  Values expected;
  for (test::Coordinates const& element : test::faces) expected.push_back(test::Encode(element));
  std::ranges::sort(expected);
  EXPECT_EQ(sorted, expected);
}

// The space of the faces holds the axes that the orientation does not: only its low three bits count.
TEST(CubeFaceIterator, TheOtherAxesDefineTheSpace) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (unsigned int round = 0; round < 1000; ++round) {
    auto const value = static_cast<unsigned int>(round < 64 ? round : random());
    SCOPED_TRACE(value);
    CubeFaceIterable<Cube> const faces(Orientation{value});
    switch (3 - std::popcount(value % 8)) {
      case 3:
        test::CheckList(faces, all_faces);
        ASSERT_EQ(faces.begin(), CubeFaceIterator<Cube>(false));
        ASSERT_EQ(faces.end(), CubeFaceIterator<Cube>(true));
        break;
      case 2:
        test::CheckList(faces, test::ListFaces<Face>(static_cast<std::size_t>(value % 8 / 2)));
        break;
      default:
        ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)faces.size(); }, invalid_space)) << value;
        ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)faces.begin(); }, invalid_space))
            << value;
        ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)faces.end(); }, invalid_space)) << value;
        ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)faces[0]; }, invalid_space)) << value;
    }
  }
}

// 9 has two bits, but its low three do not leave a single axis.
TEST(CubeFaceIterator, AnIteratorWithoutAPlaneThrowsWhenDereferenced) {
  for (unsigned int a = 0; a < 32; ++a) {
    for (unsigned int b = a + 1; b < 32; ++b) {
      unsigned int const plane = 1U << a | 1U << b;
      CubeFaceIterator<Cube> const begin(Plane{plane}, false);
      if (b < 3) {
        ASSERT_NO_THROW((void)*begin);
      } else {
        ASSERT_TRUE(test::Throws<std::invalid_argument>([&] { (void)*begin; }, no_orientation)) << plane;
      }
    }
  }
}

TEST(CubeFaceIterator, IsOrderedByItsIndexThenItsContext) {
  using Iterator = CubeFaceIterator<Cube>;
  EXPECT_TRUE(test::IsOrdered(Iterator(CubeSpaceIds::PlaneYZ, false), Iterator(CubeSpaceIds::PlaneXY, true)));
  EXPECT_TRUE(
      test::IsOrdered(Iterator(CubeSpaceIds::PlaneXY, false), Iterator(CubeSpaceIds::PlaneYZ, false)));
  EXPECT_EQ(Iterator(), Iterator(false));
}

TEST(CubeFaceIterator, AnIteratorOfAnyOtherSpaceListsAllAxes) {
  for (unsigned int const space : {0U, 1U, 7U, 15U}) {
    CubeFaceIterator<Cube> const begin(Plane{space}, false);
    for (std::ptrdiff_t i = 0; i < 6; ++i) EXPECT_EQ(begin[i], all_faces[static_cast<std::size_t>(i)]);
  }
}

// As documented: twice the number of the axis that is not free, plus the coordinate along it.
TEST(CubeFaceIterator, TheIndexOfAnyValueThatSpansAPlaneIsDefined) {
  constexpr unsigned seed = 4711;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (unsigned int round = 0; round < 2000; ++round) {
    auto const value = static_cast<unsigned int>(round < 64 ? round : random());
    for (unsigned int space = 0; space < 8; ++space) {
      CubeFaceIterable<Cube> const faces(Orientation{space});
      unsigned int const normal = 7 - value / 8 % 8;
      if (normal != 1 && normal != 2 && normal != 4) {
        ASSERT_TRUE(
            test::Throws<std::invalid_argument>([&] { (void)faces.IndexOf(Face{value}); }, no_orientation))
            << value;
        continue;
      }
      unsigned int const axis = normal / 2;
      unsigned int const side = value % 8 >> axis;
      ASSERT_EQ(faces.IndexOf(Face{value}), std::popcount(space) == 1 ? side : (2 * axis | side));
    }
  }
}

TEST(CubeFaceIterator, AVertexHasNoIndexAmongFaces) {
  EXPECT_TRUE(test::Throws<std::invalid_argument>([] { (void)CubeFaceIterable<Cube>().IndexOf(Face{3}); },
                                                  no_orientation));
}

}  // namespace
}  // namespace lum

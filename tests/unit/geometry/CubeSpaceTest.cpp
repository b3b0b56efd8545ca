#include <gtest/gtest.h>

#include <bit>
#include <concepts>
#include <random>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "geometry/CubeSpace.h"
#include "tests/support/Ordered.h"
#include "tests/support/Throws.h"

namespace lum {
namespace {

using namespace CubeSpaceIds;

char const* const no_orientation = "[CubeSpace] Cannot return space as orientation.";
char const* const no_plane = "[CubeSpace] Cannot return space as plane.";

static_assert(sizeof(CubeSpace) == 4);
static_assert(std::is_trivially_copyable_v<CubeSpace>);
static_assert(!std::convertible_to<unsigned int, CubeSpace>, "no implicit conversion from a number");
static_assert(CubeSpace(1).GetAsOrientation() == AxisX);
static_assert(CubeSpace(2).GetAsOrientation() == AxisY);
static_assert(CubeSpace(4).GetAsOrientation() == AxisZ);
static_assert(CubeSpace(3).GetAsPlane() == PlaneXY);
static_assert(CubeSpace(5).GetAsPlane() == PlaneXZ);
static_assert(CubeSpace(6).GetAsPlane() == PlaneYZ);
static_assert(CubeSpace(9).GetAsPlane() == Plane{9}, "a bit above the axes counts");
static_assert(GetPerpendicularPlane(AxisX) == PlaneYZ);
static_assert(GetPerpendicularPlane(AxisY) == PlaneXZ);
static_assert(GetPerpendicularPlane(AxisZ) == PlaneXY);
static_assert(GetNormalOrientation(PlaneYZ) == AxisX);
static_assert(GetNormalOrientation(PlaneXZ) == AxisY);
static_assert(GetNormalOrientation(PlaneXY) == AxisZ);

// Zero, all bits, every value with one to three bits, and random values.
std::vector<unsigned int> GetValues() {
  constexpr unsigned seed = 20261121;
  std::vector<unsigned int> values = {0, ~0U};
  for (unsigned int a = 0; a < 32; ++a) {
    for (unsigned int b = 0; b < 32; ++b) {
      for (unsigned int c = 0; c < 32; ++c) values.push_back(1U << a | 1U << b | 1U << c);
    }
  }
  std::mt19937 random(seed);
  for (int i = 0; i < 1000; ++i) values.push_back(static_cast<unsigned int>(random()));
  return values;
}

TEST(CubeSpace, KeepsTheValueOfAnyIdentifier) {
  constexpr CubeSpace axis = AxisZ;
  constexpr CubeSpace plane = PlaneYZ;
  constexpr CubeSpace volume = VolumeXYZ;
  constexpr CubeSpace any(4294967295U);
  EXPECT_EQ(axis.GetIndex(), 4U);
  EXPECT_EQ(plane.GetIndex(), 6U);
  EXPECT_EQ(volume.GetIndex(), 7U);
  EXPECT_EQ(any.GetIndex(), 4294967295U) << "nothing is checked";
}

TEST(CubeSpace, ComparesByValue) {
  EXPECT_EQ(CubeSpace(AxisX), CubeSpace(1U));
  EXPECT_NE(CubeSpace(AxisX), CubeSpace(PlaneXY));
  EXPECT_TRUE(test::IsOrdered(CubeSpace(AxisX), CubeSpace(AxisY)));
}

TEST(CubeSpace, IsAnOrientationWhenOneBitIsSet) {
  for (unsigned int const value : GetValues()) {
    if (std::has_single_bit(value)) {
      ASSERT_EQ(CubeSpace(value).GetAsOrientation(), Orientation{value});
    } else {
      ASSERT_TRUE(test::Throws<std::invalid_argument>([=] { (void)CubeSpace(value).GetAsOrientation(); },
                                                      no_orientation))
          << value;
    }
  }
}

TEST(CubeSpace, IsAPlaneWhenTwoBitsAreSet) {
  for (unsigned int const value : GetValues()) {
    if (std::popcount(value) == 2) {
      ASSERT_EQ(CubeSpace(value).GetAsPlane(), Plane{value});
    } else {
      ASSERT_TRUE(test::Throws<std::invalid_argument>([=] { (void)CubeSpace(value).GetAsPlane(); }, no_plane))
          << value;
    }
  }
}

TEST(CubeSpace, TheEmptyAndTheWholeSpaceAreNeither) {
  for (unsigned int const value : {0U, 7U}) {
    EXPECT_TRUE(test::Throws<std::invalid_argument>([=] { (void)CubeSpace(value).GetAsOrientation(); },
                                                    no_orientation));
    EXPECT_TRUE(test::Throws<std::invalid_argument>([=] { (void)CubeSpace(value).GetAsPlane(); }, no_plane));
  }
}

TEST(CubeSpace, ThePerpendicularPlaneHoldsTheOtherAxes) {
  for (unsigned int const value : GetValues()) {
    ASSERT_EQ(GetPerpendicularPlane(Orientation{value}), Plane{7 - value % 8});
  }
}

TEST(CubeSpace, TheNormalIsTheRemainingAxis) {
  for (unsigned int const value : GetValues()) {
    unsigned int const remaining = 7 - value % 8;
    if (remaining == 1 || remaining == 2 || remaining == 4) {
      ASSERT_EQ(GetNormalOrientation(Plane{value}), Orientation{remaining});
    } else {
      ASSERT_TRUE(test::Throws<std::invalid_argument>([=] { (void)GetNormalOrientation(Plane{value}); },
                                                      no_orientation))
          << value;
    }
  }
}

}  // namespace
}  // namespace lum

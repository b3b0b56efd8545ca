#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>

#include "geometry/CubeSpaceIds.h"
#include "tests/support/Cube.h"

namespace lum::CubeSpaceIds {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<Orientation>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Plane>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Volume>, unsigned int>);

static_assert(AxisX == Orientation{1});
static_assert(AxisY == Orientation{2});
static_assert(AxisZ == Orientation{4});
static_assert(PlaneXY == Plane{3});
static_assert(PlaneXZ == Plane{5});
static_assert(PlaneYZ == Plane{6});
static_assert(VolumeXYZ == Volume{7});

using test::Print;

TEST(CubeSpaceIds, PrintTheirTypeAndValue) {
  EXPECT_EQ(Print(Orientation{4}), "<CubeSpaceIds::Orientation with value: 4>");
  EXPECT_EQ(Print(Plane{6}), "<CubeSpaceIds::Plane with value: 6>");
  EXPECT_EQ(Print(Volume{7}), "<CubeSpaceIds::Volume with value: 7>");
}

TEST(CubeSpaceIds, PrintAnyValue) {
  EXPECT_EQ(Print(Orientation{0}), "<CubeSpaceIds::Orientation with value: 0>");
  EXPECT_EQ(Print(Plane{4294967295U}), "<CubeSpaceIds::Plane with value: 4294967295>");
}

TEST(CubeSpaceIds, PrintingReturnsTheStream) {
  std::ostringstream stream;
  EXPECT_EQ(&(stream << AxisX), &stream);
  EXPECT_EQ(&(stream << PlaneXY), &stream);
  EXPECT_EQ(&(stream << VolumeXYZ), &stream);
}

}  // namespace
}  // namespace lum::CubeSpaceIds

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <type_traits>

#include "geometry/CubeSpaceIds.h"

namespace lum::CubeSpaceIds {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<Orientation>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Plane>, unsigned int>);
static_assert(std::is_same_v<std::underlying_type_t<Volume>, unsigned int>);

template <class Id>
std::string Print(Id i_id) {
  std::ostringstream stream;
  stream << "<" << i_id << ">";
  return stream.str();
}

TEST(CubeSpaceIds, TheConstantsHaveTheirValues) {
  static_assert(AxisX == Orientation{1} && AxisY == Orientation{2} && AxisZ == Orientation{4});
  static_assert(PlaneXY == Plane{3} && PlaneXZ == Plane{5} && PlaneYZ == Plane{6});
  static_assert(VolumeXYZ == Volume{7});
  EXPECT_EQ(static_cast<unsigned int>(AxisX), 1U);
  EXPECT_EQ(static_cast<unsigned int>(AxisY), 2U);
  EXPECT_EQ(static_cast<unsigned int>(AxisZ), 4U);
  EXPECT_EQ(static_cast<unsigned int>(PlaneXY), 3U);
  EXPECT_EQ(static_cast<unsigned int>(PlaneXZ), 5U);
  EXPECT_EQ(static_cast<unsigned int>(PlaneYZ), 6U);
  EXPECT_EQ(static_cast<unsigned int>(VolumeXYZ), 7U);
}

TEST(CubeSpaceIds, ArePrintedWithTypeAndValue) {
  EXPECT_EQ(Print(Orientation{4}), "<CubeSpaceIds::Orientation with value: 4>");
  EXPECT_EQ(Print(Plane{6}), "<CubeSpaceIds::Plane with value: 6>");
  EXPECT_EQ(Print(Volume{7}), "<CubeSpaceIds::Volume with value: 7>");
}

TEST(CubeSpaceIds, ArePrintedWhateverTheValue) {
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

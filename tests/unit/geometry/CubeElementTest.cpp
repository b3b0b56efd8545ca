#include <gtest/gtest.h>

#include <concepts>
#include <type_traits>

#include "geometry/CubeElement.h"
#include "tests/support/Ordered.h"

namespace lum {
namespace {

using namespace CubeElementIds;

static_assert(sizeof(CubeElement) == 4);
static_assert(std::is_trivially_copyable_v<CubeElement>);
static_assert(!std::convertible_to<unsigned int, CubeElement>, "no implicit conversion from a number");

TEST(CubeElement, KeepsTheValueOfAnyIdentifier) {
  constexpr CubeElement vertex = Vertex5;
  constexpr CubeElement edge = Edge13;
  constexpr CubeElement face = FaceX0;
  constexpr CubeElement cube = WholeCube;
  constexpr CubeElement any(4294967295U);
  EXPECT_EQ(vertex.GetIndex(), 5U);
  EXPECT_EQ(edge.GetIndex(), 17U);
  EXPECT_EQ(face.GetIndex(), 48U);
  EXPECT_EQ(cube.GetIndex(), 56U);
  EXPECT_EQ(any.GetIndex(), 4294967295U) << "nothing is checked";
}

TEST(CubeElement, ComparesByValue) {
  EXPECT_EQ(CubeElement(Edge13), CubeElement(17U));
  EXPECT_NE(CubeElement(Edge13), CubeElement(Edge02));
  EXPECT_TRUE(test::IsOrdered(CubeElement(Vertex7), CubeElement(Edge01)));
}

}  // namespace
}  // namespace lum

#include <gtest/gtest.h>

#include <concepts>
#include <type_traits>

#include "geometry/CubeElement.h"
#include "tests/support/Ordered.h"

namespace lum {
namespace {

using namespace CubeElementIds;

static_assert(sizeof(CubeElement) == 4 && std::is_trivially_copyable_v<CubeElement>);
static_assert(!std::convertible_to<unsigned int, CubeElement>, "a number is no element by itself");
static_assert(CubeElement(Vertex{5}).GetIndex() == 5 && CubeElement(Edge{17}).GetIndex() == 17 &&
              CubeElement(Face{48}).GetIndex() == 48 && CubeElement(Cube{56}).GetIndex() == 56);

TEST(CubeElement, KeepsTheValueOfAnyIdentifier) {
  EXPECT_EQ(CubeElement(Vertex5).GetIndex(), 5U);
  EXPECT_EQ(CubeElement(Edge13).GetIndex(), 17U);
  EXPECT_EQ(CubeElement(FaceX0).GetIndex(), 48U);
  EXPECT_EQ(CubeElement(WholeCube).GetIndex(), 56U);
  EXPECT_EQ(CubeElement(4294967295U).GetIndex(), 4294967295U) << "nothing is checked";
}

TEST(CubeElement, ComparesByValue) {
  EXPECT_EQ(CubeElement(Edge13), CubeElement(17U));
  EXPECT_NE(CubeElement(Edge13), CubeElement(Edge02));
  EXPECT_TRUE(test::IsOrdered(CubeElement(Vertex7), CubeElement(Edge01)));
}

}  // namespace
}  // namespace lum

#include <gtest/gtest.h>

#include "Utility/optional.h"

namespace lum {
namespace {

TEST(Optional, IsEmptyByDefault) { EXPECT_FALSE(optional<int>().has_value()); }

}  // namespace
}  // namespace lum

#include <gtest/gtest.h>

#include <stdexcept>

#include "Utility/Lazy.h"
#include "support/Throws.h"

namespace lum {
namespace {

TEST(Lazy, RefusesAnEmptyFunction) {
  EXPECT_TRUE(test::Throws<std::invalid_argument>([] { Lazy<int> lazy{std::function<int()>()}; },
                                                  "i_function must be callable."));
}

}  // namespace
}  // namespace lum

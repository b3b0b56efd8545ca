#pragma once

#include <gtest/gtest.h>

#include <limits>

namespace lum::test {

/// The types that a typed test runs with.
using Precisions = testing::Types<float, double>;

/// Base of the fixtures of typed tests.
template <class T>
class PrecisionTest : public testing::Test {
 protected:
  static constexpr T nan = std::numeric_limits<T>::quiet_NaN();
  static constexpr T infinity = std::numeric_limits<T>::infinity();
};

}  // namespace lum::test

#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <ios>
#include <random>

#include "geometry/Matrix.h"

namespace lum::test {

template <class T>
using Values = std::array<T, 16>;

/// The 16 values of a matrix, column by column.
template <class T>
Values<T> ValuesOf(Matrix<T> const& i_matrix) {
  Values<T> values;
  std::copy_n(i_matrix.GetAsPtr(), 16, values.begin());
  return values;
}
template <class T>
Values<T> InverseValuesOf(Matrix<T> const& i_matrix) {
  return ValuesOf(i_matrix.GetInverse());
}

template <class T>
Values<T> Diagonal(T i_x, T i_y, T i_z) {
  return {i_x, 0, 0, 0, 0, i_y, 0, 0, 0, 0, i_z, 0, 0, 0, 0, 1};
}

/// Succeeds when the bytes are the same, including the signs of zeros and NaNs; otherwise names the first
/// value that differs.
template <class T>
testing::AssertionResult AreSameBits(Values<T> const& i_actual, Values<T> const& i_expected) {
  for (std::size_t i = 0; i < i_actual.size(); ++i) {
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): the bytes are compared
    if (std::memcmp(&i_actual[i], &i_expected[i], sizeof(T)) == 0) continue;
    return testing::AssertionFailure()
           << "value " << i << " is " << std::hexfloat << i_actual[i] << ", not " << i_expected[i];
  }
  return testing::AssertionSuccess();
}

/// Succeeds when every value is finite; otherwise names the first that is not.
template <class Range>
testing::AssertionResult AreFinite(Range const& i_values) {
  std::size_t index = 0;
  for (auto const value : i_values) {
    if (!std::isfinite(value)) return testing::AssertionFailure() << "value " << index << " is " << value;
    ++index;
  }
  return testing::AssertionSuccess() << testing::PrintToString(i_values);
}

/// Values between -1 and 1 from a seeded generator.
template <class T>
Values<T> MakeRandomValues(std::mt19937& io_random) {
  std::uniform_real_distribution<T> number(-1, 1);
  Values<T> values;
  for (T& value : values) value = number(io_random);
  return values;
}

}  // namespace lum::test

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <random>

#include "geometry/Matrix.h"

namespace lum::test {

template <class T>
using Values = std::array<T, 16>;

/// The 16 values of a matrix, or of a handle onto a transform, column by column.
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

/// Whether the bytes are the same: signs of zeros and NaNs count.
template <class T>
bool AreSameBits(Values<T> const& i_a, Values<T> const& i_b) {
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): bytes are what is asked for
  return std::memcmp(i_a.data(), i_b.data(), sizeof(i_a)) == 0;
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

#pragma once

#include <array>
#include <cstddef>
#include <cstring>

#include "geometry/internal/Lanes.h"

namespace lum::internal {

/// A column of a transform: four numbers in SIMD vectors of 16 bytes, the width that every supported
/// processor has. Arithmetic is by component, each rounded as the scalar operation rounds it.
///
/// Only the library's own sources may include this header: the compiler flags of a caller could contract the
/// operations that are inlined into it.
template <class T>
class Column {
 public:
  Column(T i_x, T i_y, T i_z, T i_w) noexcept {
    if constexpr (kParts == 1) {
      m_parts[0] = Part{i_x, i_y, i_z, i_w};
    } else {
      m_parts[0] = Part{i_x, i_y};
      m_parts[1] = Part{i_z, i_w};
    }
  }

  static Column Load(T const* ip_values) noexcept {
    Column column;
    std::memcpy(&column.m_parts, ip_values, sizeof(m_parts));
    return column;
  }

  void Store(T* op_values) const noexcept { std::memcpy(op_values, &m_parts, sizeof(m_parts)); }

  /// Writes the first three numbers, by one store of 8 or 16 bytes and one of the rest. Three single stores
  /// could not be forwarded to a wider load, such as that of a function which returns the result.
  void StoreThree(T* op_values) const noexcept {
    if constexpr (kParts == 1) {
      auto const pairs = reinterpret_cast<Pairs>(m_parts[0]);
      auto const first = pairs[0];
      std::memcpy(op_values, &first, sizeof(first));
      op_values[2] = m_parts[0][2];
    } else {
      std::memcpy(op_values, m_parts.data(), sizeof(Part));
      op_values[2] = m_parts[1][0];
    }
  }

  friend Column operator+(Column const& i_a, Column const& i_b) noexcept {
    Column sum;
    for (std::size_t i = 0; i < kParts; ++i) sum.m_parts[i] = i_a.m_parts[i] + i_b.m_parts[i];
    return sum;
  }
  friend Column operator*(Column const& i_column, T i_factor) noexcept {
    Column product;
    for (std::size_t i = 0; i < kParts; ++i) product.m_parts[i] = i_column.m_parts[i] * i_factor;
    return product;
  }

 private:
  Column() = default;

  using Part = Lanes<T>;
  using Pairs = long long __attribute__((vector_size(16)));
  static constexpr std::size_t kParts = 4 / kLanes<T>;

  std::array<Part, kParts> m_parts;
};

}  // namespace lum::internal

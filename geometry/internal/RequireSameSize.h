#pragma once

#include <cstddef>
#include <stdexcept>

namespace lum::internal {

/// Throws `std::invalid_argument` if the sizes of an input and an output array differ.
inline void RequireSameSize(std::size_t i_from, std::size_t i_to) {
  if (i_from != i_to) {
    throw std::invalid_argument("arrays to transform from and to must be of the same size");
  }
}

}  // namespace lum::internal

#pragma once

#include <bit>

#include "geometry/internal/RequireCpp20.h"

namespace lum::internal {

/// The bit arithmetic of the cube's topology.
///
/// Arithmetic is unsigned and defined for every argument. Shift counts are taken modulo 32, like those of the
/// processor, so invalid identifiers give an unspecified value and not undefined behaviour.

constexpr unsigned int ShiftLeft(unsigned int i_bits, unsigned int i_count) noexcept {
  return i_bits << (i_count & 31U);
}

constexpr unsigned int ShiftRight(unsigned int i_bits, unsigned int i_count) noexcept {
  return i_bits >> (i_count & 31U);
}

/// The number of set bits.
constexpr unsigned int CountBits(unsigned int i_bits) noexcept {
  return static_cast<unsigned int>(std::popcount(i_bits));
}

/// The number of the axis of an orientation: 0, 1, 2 for 1, 2, 4. Unspecified for other values.
constexpr unsigned int GetAxisNumber(unsigned int i_axis) noexcept { return i_axis >> 1; }

/// Rotates three bits, not all set, towards the higher ones. Since 8 = 1 (mod 7), a bit that is shifted out
/// above bit 2 returns at bit 0. Rotations by s and by 3 - s are inverse to each other.
constexpr unsigned int Rotate(unsigned int i_bits, unsigned int i_count) noexcept {
  return ShiftLeft(i_bits, i_count) % 7;
}

}  // namespace lum::internal

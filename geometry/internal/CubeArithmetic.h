#pragma once

#include <bit>

namespace lum::internal {

/// The bit arithmetic that the topology of the cube rests on.
///
/// All of it is unsigned and defined for every argument: counts of shifts are taken modulo 32, as the
/// processor does anyway, so identifiers that name nothing give some number and no undefined behaviour.

constexpr unsigned int ShiftLeft(unsigned int i_bits, unsigned int i_count) noexcept {
  return i_bits << (i_count & 31U);
}

constexpr unsigned int ShiftRight(unsigned int i_bits, unsigned int i_count) noexcept {
  return i_bits >> (i_count & 31U);
}

/// The number of set bits, of all 32.
constexpr unsigned int CountBits(unsigned int i_bits) noexcept {
  return static_cast<unsigned int>(std::popcount(i_bits));
}

/// The number of an axis given by its value: 0, 1, 2 for 1, 2, 4. Meant for those three only.
constexpr unsigned int GetAxisNumber(unsigned int i_axis) noexcept { return i_axis >> 1; }

/// Turns three bits, not all set, cyclically towards the higher ones: as 8 is 1 modulo 7, what is shifted out
/// above bit 2 comes in at bit 0. Turning by s and then by 3 - s gives back the bits.
constexpr unsigned int Rotate(unsigned int i_bits, unsigned int i_count) noexcept {
  return ShiftLeft(i_bits, i_count) % 7;
}

}  // namespace lum::internal

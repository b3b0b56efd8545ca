#pragma once

#include <compare>
#include <stdexcept>

#include "geometry/CubeSpaceIds.h"
#include "geometry/internal/CubeArithmetic.h"

namespace lum {

/// A set of the cube's axes, with checked conversions to the identifiers of each size.
///
///     bit    2   1   0
///          +---+---+---+
///          | z | y | x |      one bit set: an orientation, two: a plane, three: the volume
///          +---+---+---+
///
/// A plain value, safe from any thread. Construction checks nothing. The conversions check only the number of
/// set bits of the whole value, so 9 converts to a plane.
class CubeSpace {
 public:
  ///@{
  /// From the bits, or an identifier of any size.
  explicit constexpr CubeSpace(unsigned int i_index) noexcept : m_index(i_index) {}
  constexpr CubeSpace(CubeSpaceIds::Orientation i_orientation) noexcept
      : m_index(static_cast<unsigned int>(i_orientation)) {}
  constexpr CubeSpace(CubeSpaceIds::Plane i_plane) noexcept : m_index(static_cast<unsigned int>(i_plane)) {}
  constexpr CubeSpace(CubeSpaceIds::Volume i_volume) noexcept
      : m_index(static_cast<unsigned int>(i_volume)) {}
  ///@}

  /// The bits.
  constexpr unsigned int GetIndex() const noexcept { return m_index; }

  /// Throws `std::invalid_argument` unless exactly one bit is set.
  constexpr CubeSpaceIds::Orientation GetAsOrientation() const;
  /// Throws `std::invalid_argument` unless exactly two bits are set.
  constexpr CubeSpaceIds::Plane GetAsPlane() const;

  /// Compares the bits.
  friend constexpr auto operator<=>(CubeSpace const&, CubeSpace const&) noexcept = default;

 private:
  unsigned int m_index;
};

constexpr CubeSpaceIds::Orientation CubeSpace::GetAsOrientation() const {
  if (internal::CountBits(m_index) != 1) {
    throw std::invalid_argument("[CubeSpace] Cannot return space as orientation.");
  }
  return CubeSpaceIds::Orientation{m_index};
}

constexpr CubeSpaceIds::Plane CubeSpace::GetAsPlane() const {
  if (internal::CountBits(m_index) != 2) {
    throw std::invalid_argument("[CubeSpace] Cannot return space as plane.");
  }
  return CubeSpaceIds::Plane{m_index};
}

/// The plane of the two other axes.
constexpr CubeSpaceIds::Plane GetPerpendicularPlane(CubeSpaceIds::Orientation i_orientation) noexcept {
  return CubeSpaceIds::Plane{~static_cast<unsigned int>(i_orientation) & 7U};
}

/// The axis whose bit is clear in a plane. Bits above the low three are ignored. Throws
/// `std::invalid_argument`, like `GetAsOrientation`, unless exactly one of the low three bits is clear.
constexpr CubeSpaceIds::Orientation GetNormalOrientation(CubeSpaceIds::Plane i_plane) {
  return CubeSpace((static_cast<unsigned int>(i_plane) & 7U) ^ 7U).GetAsOrientation();
}

}  // namespace lum

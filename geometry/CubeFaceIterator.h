#pragma once

#include <ranges>
#include <stdexcept>

#include "geometry/CubeElementIds.h"
#include "geometry/CubeSpace.h"
#include "geometry/CubeSpaceIds.h"
#include "geometry/internal/CubeArithmetic.h"
#include "geometry/internal/IndexIterator.h"

/// \file
/// The faces of the cube, all six or the two with a given normal, as random access ranges.
///
/// A face is computed from its index i in the range, without tables. Its layout is
///
///     bit    5   4   3   2   1   0
///          +---+---+---+---+---+---+
///          | z | y | x | z | y | x |      the two axes that it spans, then its position along the third
///          +---+---+---+---+---+---+
///
///     of the cube          (n << 3 ^ 56) | (i & 1) << k      k = i >> 1 numbers the normal axis, n = 1 << k
///     with a normal n      (n << 3 ^ 56) | (i & 1) << k      k = n >> 1
///
/// An even index gives the face at coordinate 0 along the normal, and an odd index gives the face at
/// coordinate 1.
///
/// Iterators and ranges are small values, safe from any thread. Iterators may outlive their range.
namespace lum {

/// \tparam ContainingElement  `CubeElementIds::Cube`
template <class ContainingElement>
class CubeFaceIterator;
template <class ContainingElement>
class CubeFaceIterable;

/// Iterates over faces of the cube.
template <>
class CubeFaceIterator<CubeElementIds::Cube>
    : public internal::IndexIterator<CubeFaceIterator<CubeElementIds::Cube>, CubeElementIds::Face> {
 public:
  constexpr CubeFaceIterator() noexcept = default;
  /// At the first of all six faces, or at the end.
  explicit constexpr CubeFaceIterator(bool i_end) noexcept : IndexIterator(i_end ? 6 : 0) {}
  /// At the first of the two faces parallel to a plane, or at the end.
  constexpr CubeFaceIterator(CubeSpaceIds::Plane i_plane, bool i_end) noexcept
      : IndexIterator(i_end ? 2 : 0), m_space(i_plane) {}

  /// The face, computed. Throws `std::invalid_argument`, like `GetNormalOrientation`, if the plane has two
  /// set bits that are not two axes, such as 9.
  constexpr CubeElementIds::Face operator*() const {
    auto const normal = static_cast<unsigned int>(GetNormal());
    unsigned int const position = internal::ShiftLeft(GetIndex() & 1U, internal::GetAxisNumber(normal));
    return CubeElementIds::Face{((normal << 3) ^ 56U) | position};
  }

  /// Compares the indices, then the spaces.
  friend constexpr auto operator<=>(CubeFaceIterator const&, CubeFaceIterator const&) noexcept = default;

 private:
  constexpr CubeSpaceIds::Orientation GetNormal() const {
    if (internal::CountBits(m_space.GetIndex()) == 2) return GetNormalOrientation(m_space.GetAsPlane());
    return CubeSpaceIds::Orientation{internal::ShiftLeft(1, GetIndex() >> 1)};
  }

  CubeSpace m_space = CubeSpaceIds::VolumeXYZ;
};

/// All six faces, two for each normal and x first, or the two faces with one normal.
///
/// `size`, `begin`, `end` and `operator[]` throw `std::invalid_argument` if the space perpendicular to the
/// given axis is neither a plane nor the volume. `IndexOf` does not check the axis.
template <>
class CubeFaceIterable<CubeElementIds::Cube> {
 public:
  using Iterator = CubeFaceIterator<CubeElementIds::Cube>;  ///< The iterator of the range.

  constexpr CubeFaceIterable() noexcept = default;
  /// The two faces with this normal.
  explicit constexpr CubeFaceIterable(CubeSpaceIds::Orientation i_normal) noexcept
      : m_space(GetPerpendicularPlane(i_normal)) {}

  ///@{
  /// A random access range of 6 or 2 elements. Indices are not checked.
  constexpr unsigned long size() const { return IsWholeCube() ? 6 : 2; }
  constexpr Iterator begin() const { return At(false); }
  constexpr Iterator end() const { return At(true); }
  constexpr CubeElementIds::Face operator[](unsigned long i_index) const {
    return *(begin() + static_cast<Iterator::difference_type>(i_index));
  }
  ///@}
  /// The index of a face, among all faces or among those with its normal.
  ///
  /// Throws `std::invalid_argument` if the free axes of the element are not a plane. Unspecified for a face
  /// that is not in the range.
  constexpr unsigned long IndexOf(CubeElementIds::Face i_face) const {
    auto const face = static_cast<unsigned int>(i_face);
    auto const normal =
        static_cast<unsigned int>(GetNormalOrientation(CubeSpaceIds::Plane{(face >> 3) & 7U}));
    unsigned int const axis = internal::GetAxisNumber(normal);
    unsigned int const side = (face & 7U) >> axis;
    return internal::CountBits(m_space.GetIndex()) == 2 ? side : (2 * axis) | side;
  }

 private:
  constexpr bool IsWholeCube() const {
    unsigned int const count = internal::CountBits(m_space.GetIndex());
    if (count != 2 && count != 3) {
      throw std::invalid_argument("[CubeFaceIterator] CubeFaceIterable has invalid space");
    }
    return count == 3;
  }
  constexpr Iterator At(bool i_end) const {
    return IsWholeCube() ? Iterator(i_end) : Iterator(m_space.GetAsPlane(), i_end);
  }

  CubeSpace m_space = CubeSpaceIds::VolumeXYZ;
};

}  // namespace lum

/// \cond
template <class ContainingElement>
inline constexpr bool std::ranges::enable_borrowed_range<lum::CubeFaceIterable<ContainingElement>> = true;
/// \endcond

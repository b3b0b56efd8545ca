#pragma once

#include <ranges>
#include <stdexcept>

#include "geometry/CubeElementIds.h"
#include "geometry/CubeSpace.h"
#include "geometry/CubeSpaceIds.h"
#include "geometry/internal/CubeArithmetic.h"
#include "geometry/internal/IndexIterator.h"

/// \file
/// The faces of the cube, all six or the two across one axis, as random access ranges.
///
/// No tables: a face is computed from its index i in the range. Its layout is
///
///     bit    5   4   3   2   1   0
///          +---+---+---+---+---+---+
///          | z | y | x | z | y | x |      the two axes that it spans, then its position along the third
///          +---+---+---+---+---+---+
///
///     of the cube          (n << 3 ^ 56) | (i & 1) << k      k = i >> 1 numbers the normal axis, n = 1 << k
///     across one axis n    (n << 3 ^ 56) | (i & 1) << k      k = n >> 1
///
/// So even indices give the face at coordinate 0 along the normal, odd ones the face at coordinate 1.
///
/// Iterators and iterables are small values: iterators outlive their iterable, and all are safe from any
/// thread.
namespace lum {

/// \tparam ContainingElement  `CubeElementIds::Cube`
template <class ContainingElement>
class CubeFaceIterator;
template <class ContainingElement>
class CubeFaceIterable;

/// Over faces of the cube.
template <>
class CubeFaceIterator<CubeElementIds::Cube>
    : public internal::IndexIterator<CubeFaceIterator<CubeElementIds::Cube>, CubeElementIds::Face> {
 public:
  constexpr CubeFaceIterator() noexcept = default;
  /// Over all six faces.
  explicit constexpr CubeFaceIterator(bool i_end) noexcept : IndexIterator(i_end ? 6 : 0) {}
  /// Over the two that span a plane.
  constexpr CubeFaceIterator(CubeSpaceIds::Plane i_plane, bool i_end) noexcept
      : IndexIterator(i_end ? 2 : 0), m_space(i_plane) {}

  /// The face, computed. Throws `std::invalid_argument` for two bits that are no plane, as
  /// `GetNormalOrientation` does.
  constexpr CubeElementIds::Face operator*() const {
    auto const normal = static_cast<unsigned int>(GetNormal());
    unsigned int const position = internal::ShiftLeft(GetIndex() & 1U, internal::GetAxisNumber(normal));
    return CubeElementIds::Face{((normal << 3) ^ 56U) | position};
  }

  /// By index, then by context.
  friend constexpr auto operator<=>(CubeFaceIterator const&, CubeFaceIterator const&) noexcept = default;

 private:
  constexpr CubeSpaceIds::Orientation GetNormal() const {
    if (internal::CountBits(m_space.GetIndex()) == 2) return GetNormalOrientation(m_space.GetAsPlane());
    return CubeSpaceIds::Orientation{internal::ShiftLeft(1, GetIndex() >> 1)};
  }

  CubeSpace m_space = CubeSpaceIds::VolumeXYZ;
};

/// All six faces, two across each axis, x first; or the two across one axis.
///
/// `size`, `begin`, `end` and `operator[]` throw `std::invalid_argument` when what the axis leaves of the
/// three is neither a plane nor all of them; `IndexOf` does not check it.
template <>
class CubeFaceIterable<CubeElementIds::Cube> {
 public:
  using Iterator = CubeFaceIterator<CubeElementIds::Cube>;  ///< Its iterator.

  constexpr CubeFaceIterable() noexcept = default;
  /// The faces whose normal is this axis.
  explicit constexpr CubeFaceIterable(CubeSpaceIds::Orientation i_normal) noexcept
      : m_space(GetPerpendicularPlane(i_normal)) {}

  ///@{
  /// A standard random access range of 6 or 2; indices are not checked.
  constexpr unsigned long size() const { return IsWholeCube() ? 6 : 2; }
  constexpr Iterator begin() const { return At(false); }
  constexpr Iterator end() const { return At(true); }
  constexpr CubeElementIds::Face operator[](unsigned long i_index) const {
    return *(begin() + static_cast<Iterator::difference_type>(i_index));
  }
  ///@}
  /// The index of a face, among all or across its axis.
  ///
  /// Throws `std::invalid_argument` for an element whose free axes are not a plane; a face from outside gives
  /// some number.
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

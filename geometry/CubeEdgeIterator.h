#pragma once

#include <ranges>
#include <stdexcept>

#include "geometry/CubeElementIds.h"
#include "geometry/CubeSpace.h"
#include "geometry/CubeSpaceIds.h"
#include "geometry/internal/CubeArithmetic.h"
#include "geometry/internal/IndexIterator.h"

/// \file
/// All edges of the cube, its edges along one axis, and the edges of a face, as random access ranges.
///
/// An edge is computed from its index i in the range, without tables. Its layout is
///
///     bit    5   4   3   2   1   0
///          +---+---+---+---+---+---+
///          | z | y | x | z | y | x |      its axis o, then its start vertex
///          +---+---+---+---+---+---+
///
///     of the cube          o << 3 | rot(i & 3, k + 1)      k = i >> 2 numbers the axis, o = 1 << k
///     along one axis o     o << 3 | rot(i & 3, k + 1)      k = o >> 1
///     of a face f          o << 3 | ((f & 7) ^ offset)     o = rot(n, s), offset = rot(i & 1 ? n : 0, s ^ 3)
///                                                          with n the normal axis and s = (i >> 1) + 1
///
/// where rot rotates three bits cyclically. The range of a face with normal n therefore begins with its two
/// edges along rot(n, 1), the second of them shifted along rot(n, 2). Its two edges along rot(n, 2) follow,
/// the second of them shifted along rot(n, 1).
///
/// Iterators and ranges are small values, safe from any thread. Iterators may outlive their range. `IndexOf`
/// of an element that is not in the range is unspecified.
namespace lum {

/// \tparam ContainingElement  `CubeElementIds::Cube` or `Face`
template <class ContainingElement>
class CubeEdgeIterator;
template <class ContainingElement>
class CubeEdgeIterable;

/// Iterates over edges of the cube.
template <>
class CubeEdgeIterator<CubeElementIds::Cube>
    : public internal::IndexIterator<CubeEdgeIterator<CubeElementIds::Cube>, CubeElementIds::Edge> {
 public:
  constexpr CubeEdgeIterator() noexcept = default;
  /// At the first of all 12 edges, or at the end.
  explicit constexpr CubeEdgeIterator(bool i_end) noexcept : IndexIterator(i_end ? 12 : 0) {}
  /// At the first of the four edges along one axis, or at the end.
  constexpr CubeEdgeIterator(CubeSpaceIds::Orientation i_orientation, bool i_end) noexcept
      : IndexIterator(i_end ? 4 : 0), m_space(i_orientation) {}

  /// The edge, computed.
  constexpr CubeElementIds::Edge operator*() const {
    auto const orientation = static_cast<unsigned int>(GetOrientation());
    unsigned int const start = internal::Rotate(GetIndex() & 3U, internal::GetAxisNumber(orientation) + 1);
    return CubeElementIds::Edge{(orientation << 3) | start};
  }

  /// Compares the indices, then the containing elements.
  friend constexpr auto operator<=>(CubeEdgeIterator const&, CubeEdgeIterator const&) noexcept = default;

 private:
  constexpr CubeSpaceIds::Orientation GetOrientation() const {
    if (internal::CountBits(m_space.GetIndex()) == 1) return m_space.GetAsOrientation();
    return CubeSpaceIds::Orientation{internal::ShiftLeft(1, GetIndex() >> 2)};
  }

  CubeSpace m_space = CubeSpaceIds::VolumeXYZ;
};

/// Iterates over the edges of a face.
template <>
class CubeEdgeIterator<CubeElementIds::Face>
    : public internal::IndexIterator<CubeEdgeIterator<CubeElementIds::Face>, CubeElementIds::Edge> {
 public:
  constexpr CubeEdgeIterator() noexcept = default;
  /// At the first of the four edges of a face, or at the end.
  constexpr CubeEdgeIterator(CubeElementIds::Face i_face, bool i_end) noexcept
      : IndexIterator(i_end ? 4 : 0), m_face(i_face) {}

  /// The edge, computed.
  constexpr CubeElementIds::Edge operator*() const noexcept {
    auto const face = static_cast<unsigned int>(m_face);
    unsigned int const normal = (face >> 3) ^ 7U;
    unsigned int const turn = (GetIndex() >> 1) + 1;
    unsigned int const orientation = internal::Rotate(normal, turn);
    unsigned int const offset =
        internal::Rotate(internal::ShiftLeft(GetIndex() & 1U, internal::GetAxisNumber(normal)), turn ^ 3U);
    return CubeElementIds::Edge{(orientation << 3) | ((face & 7U) ^ offset)};
  }

  /// Compares the indices, then the containing elements.
  friend constexpr auto operator<=>(CubeEdgeIterator const&, CubeEdgeIterator const&) noexcept = default;

 private:
  CubeElementIds::Face m_face{};
};

/// All 12 edges, four along each axis and x first, or the four edges along one axis.
///
/// `size`, `begin`, `end` and `operator[]` throw `std::invalid_argument` if the number of set bits of the
/// space is neither 1 nor 3. `IndexOf` does not check the space.
template <>
class CubeEdgeIterable<CubeElementIds::Cube> {
 public:
  using Iterator = CubeEdgeIterator<CubeElementIds::Cube>;  ///< The iterator of the range.

  constexpr CubeEdgeIterable() noexcept = default;
  /// The edges along an axis. The axis is checked when the range is used.
  explicit constexpr CubeEdgeIterable(CubeSpaceIds::Orientation i_orientation) noexcept
      : m_space(i_orientation) {}

  ///@{
  /// A random access range of 12 or 4 elements. Indices are not checked.
  constexpr unsigned long size() const { return IsWholeCube() ? 12 : 4; }
  constexpr Iterator begin() const { return At(false); }
  constexpr Iterator end() const { return At(true); }
  constexpr CubeElementIds::Edge operator[](unsigned long i_index) const {
    return *(begin() + static_cast<Iterator::difference_type>(i_index));
  }
  ///@}
  /// The index of an edge, among all edges or among those along its axis.
  constexpr unsigned long IndexOf(CubeElementIds::Edge i_edge) const noexcept {
    auto const edge = static_cast<unsigned int>(i_edge);
    unsigned int const axis = (edge >> 4) & 3U;
    unsigned int const along_axis = internal::Rotate(edge & 7U, (axis + 1) ^ 3U);
    return internal::CountBits(m_space.GetIndex()) == 1 ? along_axis : (4 * axis) | along_axis;
  }

 private:
  constexpr bool IsWholeCube() const {
    unsigned int const count = internal::CountBits(m_space.GetIndex());
    if (count != 1 && count != 3) {
      throw std::invalid_argument("[CubeEdgeIterator] CubeEdgeIterable has invalid space");
    }
    return count == 3;
  }
  constexpr Iterator At(bool i_end) const {
    return IsWholeCube() ? Iterator(i_end) : Iterator(m_space.GetAsOrientation(), i_end);
  }

  CubeSpace m_space = CubeSpaceIds::VolumeXYZ;
};

/// The four edges of a face, two along each of its axes.
template <>
class CubeEdgeIterable<CubeElementIds::Face> {
 public:
  using Iterator = CubeEdgeIterator<CubeElementIds::Face>;  ///< The iterator of the range.

  /// The edges of this face, which is not checked.
  explicit constexpr CubeEdgeIterable(CubeElementIds::Face i_face) noexcept : m_face(i_face) {}

  ///@{
  /// A random access range of 4 elements. Indices are not checked.
  static constexpr unsigned long size() noexcept { return 4; }
  constexpr Iterator begin() const noexcept { return {m_face, false}; }
  constexpr Iterator end() const noexcept { return {m_face, true}; }
  constexpr CubeElementIds::Edge operator[](unsigned long i_index) const noexcept {
    return *(begin() + static_cast<Iterator::difference_type>(i_index));
  }
  ///@}
  /// The index of an edge of the face.
  constexpr unsigned long IndexOf(CubeElementIds::Edge i_edge) const noexcept {
    auto const face = static_cast<unsigned int>(m_face);
    auto const edge = static_cast<unsigned int>(i_edge);
    unsigned int const difference = face ^ edge;
    unsigned int const is_shifted = internal::ShiftRight(difference & 7U, difference >> 4);
    unsigned int const is_second_pair = internal::Rotate(edge >> 3, (face >> 4) - 1) & 6U;
    return is_shifted | is_second_pair;
  }

 private:
  CubeElementIds::Face m_face;
};

}  // namespace lum

/// \cond
template <class ContainingElement>
inline constexpr bool std::ranges::enable_borrowed_range<lum::CubeEdgeIterable<ContainingElement>> = true;
/// \endcond

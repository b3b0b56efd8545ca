#pragma once

#include <ranges>

#include "geometry/CubeElementIds.h"
#include "geometry/internal/CubeArithmetic.h"
#include "geometry/internal/IndexIterator.h"

/// \file
/// The vertices of the cube, of a face and of an edge, as random access ranges.
///
/// A vertex is computed from its index i in the range, without tables. The layout of the containing element
/// is
///
///     bit    5   4   3   2   1   0
///          +---+---+---+---+---+---+
///          | z | y | x | z | y | x |      free axes, then position
///          +---+---+---+---+---+---+
///
///     of the cube    i
///     of an edge e   i << (e >> 4) | (e & 7)     bit 0 of i is moved to the edge's axis
///     of a face f    rot(i, s) | (f & 7)         bits 0 and 1 of i are moved to the two axes that cyclically
///                                                follow the normal, with s the normal's number plus 1
///
/// where rot rotates three bits cyclically. The vertices of a face are in the order of these bits, which is
/// not an order around the face: the second and third are diagonal to each other.
///
/// Iterators and ranges are small values, safe from any thread. Iterators may outlive their range. Nothing is
/// checked and nothing throws. `IndexOf` of an element that is not in the range is unspecified.
namespace lum {

/// \tparam ContainingElement  `CubeElementIds::Cube`, `Face` or `Edge`
template <class ContainingElement>
class CubeVertexIterator;
template <class ContainingElement>
class CubeVertexIterable;

/// Iterates over the vertices of the cube.
template <>
class CubeVertexIterator<CubeElementIds::Cube>
    : public internal::IndexIterator<CubeVertexIterator<CubeElementIds::Cube>, CubeElementIds::Vertex> {
 public:
  constexpr CubeVertexIterator() noexcept = default;
  /// At the first vertex, or at the end.
  explicit constexpr CubeVertexIterator(bool i_end) noexcept : IndexIterator(i_end ? 8 : 0) {}

  /// The vertex, computed.
  constexpr CubeElementIds::Vertex operator*() const noexcept { return CubeElementIds::Vertex{GetIndex()}; }

  /// Compares the indices.
  friend constexpr auto operator<=>(CubeVertexIterator const&, CubeVertexIterator const&) noexcept = default;
};

/// Iterates over the vertices of a face.
template <>
class CubeVertexIterator<CubeElementIds::Face>
    : public internal::IndexIterator<CubeVertexIterator<CubeElementIds::Face>, CubeElementIds::Vertex> {
 public:
  constexpr CubeVertexIterator() noexcept = default;
  /// At the first vertex of a face, or at the end.
  constexpr CubeVertexIterator(CubeElementIds::Face i_face, bool i_end) noexcept
      : IndexIterator(i_end ? 4 : 0), m_face(i_face) {}

  /// The vertex, computed.
  constexpr CubeElementIds::Vertex operator*() const noexcept {
    auto const face = static_cast<unsigned int>(m_face);
    unsigned int const turn = ((face >> 4) ^ 3U) + 1;
    return CubeElementIds::Vertex{internal::Rotate(GetIndex(), turn) | (face & 7U)};
  }

  /// Compares the indices, then the containing elements.
  friend constexpr auto operator<=>(CubeVertexIterator const&, CubeVertexIterator const&) noexcept = default;

 private:
  CubeElementIds::Face m_face{};
};

/// Iterates over the vertices of an edge.
template <>
class CubeVertexIterator<CubeElementIds::Edge>
    : public internal::IndexIterator<CubeVertexIterator<CubeElementIds::Edge>, CubeElementIds::Vertex> {
 public:
  constexpr CubeVertexIterator() noexcept = default;
  /// At the first vertex of an edge, or at the end.
  constexpr CubeVertexIterator(CubeElementIds::Edge i_edge, bool i_end) noexcept
      : IndexIterator(i_end ? 2 : 0), m_edge(i_edge) {}

  /// The vertex, computed.
  constexpr CubeElementIds::Vertex operator*() const noexcept {
    auto const edge = static_cast<unsigned int>(m_edge);
    return CubeElementIds::Vertex{internal::ShiftLeft(GetIndex(), edge >> 4) | (edge & 7U)};
  }

  /// Compares the indices, then the containing elements.
  friend constexpr auto operator<=>(CubeVertexIterator const&, CubeVertexIterator const&) noexcept = default;

 private:
  CubeElementIds::Edge m_edge{};
};

/// The eight vertices of the cube, 0 to 7.
template <>
class CubeVertexIterable<CubeElementIds::Cube> {
 public:
  using Iterator = CubeVertexIterator<CubeElementIds::Cube>;  ///< The iterator of the range.

  constexpr CubeVertexIterable() noexcept = default;
  /// There is one cube, so the argument does not matter.
  explicit constexpr CubeVertexIterable(CubeElementIds::Cube) noexcept {}

  ///@{
  /// A random access range of 8 elements. Indices are not checked.
  static constexpr unsigned long size() noexcept { return 8; }
  constexpr Iterator begin() const noexcept { return Iterator(false); }
  constexpr Iterator end() const noexcept { return Iterator(true); }
  constexpr CubeElementIds::Vertex operator[](unsigned long i_index) const noexcept {
    return *(begin() + static_cast<Iterator::difference_type>(i_index));
  }
  ///@}
  /// The index of a vertex, which is its value.
  static constexpr unsigned long IndexOf(CubeElementIds::Vertex i_vertex) noexcept {
    return static_cast<unsigned int>(i_vertex);
  }
};

/// The four vertices of a face. The second and third are diagonal to each other.
template <>
class CubeVertexIterable<CubeElementIds::Face> {
 public:
  using Iterator = CubeVertexIterator<CubeElementIds::Face>;  ///< The iterator of the range.

  /// The vertices of this face, which is not checked.
  explicit constexpr CubeVertexIterable(CubeElementIds::Face i_face) noexcept : m_face(i_face) {}

  ///@{
  /// A random access range of 4 elements. Indices are not checked.
  static constexpr unsigned long size() noexcept { return 4; }
  constexpr Iterator begin() const noexcept { return {m_face, false}; }
  constexpr Iterator end() const noexcept { return {m_face, true}; }
  constexpr CubeElementIds::Vertex operator[](unsigned long i_index) const noexcept {
    return *(begin() + static_cast<Iterator::difference_type>(i_index));
  }
  ///@}
  /// The index of a vertex of the face.
  constexpr unsigned long IndexOf(CubeElementIds::Vertex i_vertex) const noexcept {
    auto const face = static_cast<unsigned int>(m_face);
    unsigned int const turn = (4 - ((face >> 4) & 3U)) ^ 3U;
    return internal::Rotate((static_cast<unsigned int>(i_vertex) ^ face) & 7U, turn);
  }

 private:
  CubeElementIds::Face m_face;
};

/// The start vertex of the edge, then its end vertex.
template <>
class CubeVertexIterable<CubeElementIds::Edge> {
 public:
  using Iterator = CubeVertexIterator<CubeElementIds::Edge>;  ///< The iterator of the range.

  /// The vertices of this edge, which is not checked.
  explicit constexpr CubeVertexIterable(CubeElementIds::Edge i_edge) noexcept : m_edge(i_edge) {}

  ///@{
  /// A random access range of 2 elements. Indices are not checked.
  static constexpr unsigned long size() noexcept { return 2; }
  constexpr Iterator begin() const noexcept { return {m_edge, false}; }
  constexpr Iterator end() const noexcept { return {m_edge, true}; }
  constexpr CubeElementIds::Vertex operator[](unsigned long i_index) const noexcept {
    return *(begin() + static_cast<Iterator::difference_type>(i_index));
  }
  ///@}
  /// The index of a vertex of the edge: 0 or 1.
  constexpr unsigned long IndexOf(CubeElementIds::Vertex i_vertex) const noexcept {
    auto const edge = static_cast<unsigned int>(m_edge);
    return ((static_cast<unsigned int>(i_vertex) ^ edge) & 7U) >> ((edge >> 4) & 3U);
  }

 private:
  CubeElementIds::Edge m_edge;
};

}  // namespace lum

/// \cond
template <class ContainingElement>
inline constexpr bool std::ranges::enable_borrowed_range<lum::CubeVertexIterable<ContainingElement>> = true;
/// \endcond

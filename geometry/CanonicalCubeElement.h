#pragma once

#include <compare>
#include <ranges>
#include <stdexcept>

#include "geometry/CubeElement.h"
#include "geometry/internal/CubeArithmetic.h"
#include "geometry/internal/IndexIterator.h"

/// Identifiers of the eight canonical elements of the cube.
///
/// A canonical element is an element without its position: the set of axes along which it extends.
///
///     bit    2   1   0          value    element
///          +---+---+---+        0        the vertex
///          | z | y | x |        1, 2, 4  an edge, by its axis
///          +---+---+---+        3, 5, 6  a face, by the two axes that it spans
///                               7        the cube
///
/// The value of an element's canonical element is the element's value >> 3.
namespace lum::CanonicalCubeElementIds {

/// 0.
enum class CanonicalVertex : unsigned int {};
/// 1, 2 or 4.
enum class CanonicalEdge : unsigned int {};
/// 3, 5 or 6.
enum class CanonicalFace : unsigned int {};
/// 7.
enum class CanonicalCube : unsigned int {};

}  // namespace lum::CanonicalCubeElementIds

namespace lum {

/// A canonical element of any dimension, with checked conversions to edge and face.
///
/// A plain value, safe from any thread. Construction checks nothing. The conversions check only the number of
/// set bits of the whole value.
class CanonicalCubeElement {
 public:
  ///@{
  /// From the value, or an identifier of any dimension.
  explicit constexpr CanonicalCubeElement(unsigned int i_index) noexcept : m_index(i_index) {}
  constexpr CanonicalCubeElement(CanonicalCubeElementIds::CanonicalVertex i_vertex) noexcept
      : m_index(static_cast<unsigned int>(i_vertex)) {}
  constexpr CanonicalCubeElement(CanonicalCubeElementIds::CanonicalEdge i_edge) noexcept
      : m_index(static_cast<unsigned int>(i_edge)) {}
  constexpr CanonicalCubeElement(CanonicalCubeElementIds::CanonicalFace i_face) noexcept
      : m_index(static_cast<unsigned int>(i_face)) {}
  constexpr CanonicalCubeElement(CanonicalCubeElementIds::CanonicalCube i_cube) noexcept
      : m_index(static_cast<unsigned int>(i_cube)) {}
  ///@}
  /// From an element, without its position.
  explicit constexpr CanonicalCubeElement(CubeElement i_element) noexcept
      : m_index(i_element.GetIndex() >> 3) {}

  /// The value.
  constexpr unsigned int GetIndex() const noexcept { return m_index; }
  /// The number of set bits: 0 for the vertex, 1 for edges, 2 for faces, 3 for the cube.
  constexpr unsigned int GetDimensionality() const noexcept { return internal::CountBits(m_index); }
  /// Throws `std::invalid_argument` unless exactly one bit is set.
  constexpr CanonicalCubeElementIds::CanonicalEdge GetAsEdge() const;
  /// Throws `std::invalid_argument` unless exactly two bits are set.
  constexpr CanonicalCubeElementIds::CanonicalFace GetAsFace() const;

  /// Compares the values.
  friend constexpr auto operator<=>(CanonicalCubeElement const&,
                                    CanonicalCubeElement const&) noexcept = default;

 private:
  unsigned int m_index;
};

constexpr CanonicalCubeElementIds::CanonicalEdge CanonicalCubeElement::GetAsEdge() const {
  if (GetDimensionality() != 1) {
    throw std::invalid_argument("[CanonicalCubeElement] Cannot return element as edge");
  }
  return CanonicalCubeElementIds::CanonicalEdge{m_index};
}

constexpr CanonicalCubeElementIds::CanonicalFace CanonicalCubeElement::GetAsFace() const {
  if (GetDimensionality() != 2) {
    throw std::invalid_argument("[CanonicalCubeElement] Cannot return element as face");
  }
  return CanonicalCubeElementIds::CanonicalFace{m_index};
}

/// Element i is 1 << i.
class CanonicalEdgeIterator
    : public internal::IndexIterator<CanonicalEdgeIterator, CanonicalCubeElementIds::CanonicalEdge> {
 public:
  constexpr CanonicalEdgeIterator() noexcept = default;  ///< At the first of the three.
  /// At the first of the three, or at the end.
  explicit constexpr CanonicalEdgeIterator(bool i_end) noexcept : IndexIterator(i_end ? 3 : 0) {}

  /// The element, computed.
  constexpr CanonicalCubeElementIds::CanonicalEdge operator*() const noexcept {
    return CanonicalCubeElementIds::CanonicalEdge{internal::ShiftLeft(1, GetIndex())};
  }

  /// Compares the indices.
  friend constexpr auto operator<=>(CanonicalEdgeIterator const&,
                                    CanonicalEdgeIterator const&) noexcept = default;
};

/// Element i is (1 << i) ^ 7.
class CanonicalFaceIterator
    : public internal::IndexIterator<CanonicalFaceIterator, CanonicalCubeElementIds::CanonicalFace> {
 public:
  constexpr CanonicalFaceIterator() noexcept = default;  ///< At the first of the three.
  /// At the first of the three, or at the end.
  explicit constexpr CanonicalFaceIterator(bool i_end) noexcept : IndexIterator(i_end ? 3 : 0) {}

  /// The element, computed.
  constexpr CanonicalCubeElementIds::CanonicalFace operator*() const noexcept {
    return CanonicalCubeElementIds::CanonicalFace{internal::ShiftLeft(1, GetIndex()) ^ 7U};
  }

  /// Compares the indices.
  friend constexpr auto operator<=>(CanonicalFaceIterator const&,
                                    CanonicalFaceIterator const&) noexcept = default;
};

/// The three canonical edges in the order of their axes: 1, 2, 4. Nothing is checked; `IndexOf` of any other
/// value is unspecified. Iterators may outlive the range. Iterators and ranges are safe from any thread.
class CanonicalEdgeIterable {
 public:
  using Iterator = CanonicalEdgeIterator;  ///< The iterator of the range.

  ///@{
  /// A random access range of 3 elements. Indices are not checked.
  static constexpr unsigned long size() noexcept { return 3; }
  constexpr Iterator begin() const noexcept { return Iterator(false); }
  constexpr Iterator end() const noexcept { return Iterator(true); }
  constexpr CanonicalCubeElementIds::CanonicalEdge operator[](unsigned long i_index) const noexcept {
    return *(begin() + static_cast<Iterator::difference_type>(i_index));
  }
  ///@}
  /// The index of an edge, which is the number of its axis.
  static constexpr unsigned long IndexOf(CanonicalCubeElementIds::CanonicalEdge i_edge) noexcept {
    return static_cast<unsigned int>(i_edge) >> 1;
  }
};

/// The three canonical faces in the order of their normals: 6, 5, 3. Nothing is checked; `IndexOf` of any
/// other value is unspecified. Iterators may outlive the range. Iterators and ranges are safe from any
/// thread.
class CanonicalFaceIterable {
 public:
  using Iterator = CanonicalFaceIterator;  ///< The iterator of the range.

  ///@{
  /// A random access range of 3 elements. Indices are not checked.
  static constexpr unsigned long size() noexcept { return 3; }
  constexpr Iterator begin() const noexcept { return Iterator(false); }
  constexpr Iterator end() const noexcept { return Iterator(true); }
  constexpr CanonicalCubeElementIds::CanonicalFace operator[](unsigned long i_index) const noexcept {
    return *(begin() + static_cast<Iterator::difference_type>(i_index));
  }
  ///@}
  /// The index of a face, which is the number of its normal.
  static constexpr unsigned long IndexOf(CanonicalCubeElementIds::CanonicalFace i_face) noexcept {
    return (static_cast<unsigned int>(i_face) >> 1) ^ 3U;
  }
};

}  // namespace lum

/// \cond
template <>
inline constexpr bool std::ranges::enable_borrowed_range<lum::CanonicalEdgeIterable> = true;
template <>
inline constexpr bool std::ranges::enable_borrowed_range<lum::CanonicalFaceIterable> = true;
/// \endcond

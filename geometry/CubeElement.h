#pragma once

#include <compare>

#include "geometry/CubeElementIds.h"

namespace lum {

/// A vertex, edge or face of the unit cube, or the cube itself. CubeElementIds.h draws the layout of its
/// value.
///
/// A plain value, safe from any thread. Construction checks nothing.
class CubeElement {
 public:
  ///@{
  /// From the value, or an identifier of any dimension.
  explicit constexpr CubeElement(unsigned int i_index) noexcept : m_index(i_index) {}
  constexpr CubeElement(CubeElementIds::Vertex i_vertex) noexcept
      : m_index(static_cast<unsigned int>(i_vertex)) {}
  constexpr CubeElement(CubeElementIds::Edge i_edge) noexcept : m_index(static_cast<unsigned int>(i_edge)) {}
  constexpr CubeElement(CubeElementIds::Face i_face) noexcept : m_index(static_cast<unsigned int>(i_face)) {}
  constexpr CubeElement(CubeElementIds::Cube i_cube) noexcept : m_index(static_cast<unsigned int>(i_cube)) {}
  ///@}

  /// The value.
  constexpr unsigned int GetIndex() const noexcept { return m_index; }

  /// Compares the values.
  friend constexpr auto operator<=>(CubeElement const&, CubeElement const&) noexcept = default;

 private:
  unsigned int m_index;
};

}  // namespace lum

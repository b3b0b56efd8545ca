#pragma once

#include <iosfwd>

#include "geometry/internal/Export.h"

/// Identifiers of the 27 elements of the unit cube: 8 vertices, 12 edges, 6 faces and the cube itself.
///
/// They share one bit layout:
///
///     bit    31      6   5   4   3   2   1   0
///          +----...----+---+---+---+---+---+---+
///          | 0       0 | z | y | x | z | y | x |
///          +----...----+---+---+---+---+---+---+
///                       free axes   position
///
/// The free axes are the axes along which the element extends: a space as in CubeSpaceIds.h, or none for a
/// vertex. The position is the element's coordinate, 0 or 1, along each of the other axes. Its bits for free
/// axes are 0.
///
///     free axes              element >> 3
///     position               element & 7
///     dimension              the number of free axes
///     element                (free axes << 3) | position
///     free axes & position   0
///
/// So the position of an edge is its start vertex, and its end vertex is the start plus its orientation. The
/// position of a face is 0 if the face lies at coordinate 0, and its normal if it lies at coordinate 1. The
/// orientation of an edge is edge >> 3, and the number of its axis is edge >> 4.
///
/// The identifiers are plain values, safe from any thread. Conversion from a number checks nothing.
namespace lum::CubeElementIds {

/// 0 to 7: bit k is the coordinate along axis k.
enum class Vertex : unsigned int {};
/// Along x: 8, 10, 12, 14. Along y: 16, 17, 20, 21. Along z: 32 to 35.
enum class Edge : unsigned int {};
/// Perpendicular to x: 48, 49. Perpendicular to y: 40, 42. Perpendicular to z: 24, 28.
enum class Face : unsigned int {};
/// 56.
enum class Cube : unsigned int {};

///@{
/// The vertices, named by their values.
inline constexpr Vertex Vertex0{0};
inline constexpr Vertex Vertex1{1};
inline constexpr Vertex Vertex2{2};
inline constexpr Vertex Vertex3{3};
inline constexpr Vertex Vertex4{4};
inline constexpr Vertex Vertex5{5};
inline constexpr Vertex Vertex6{6};
inline constexpr Vertex Vertex7{7};
///@}

///@{
/// The edges, named by the vertices that they join.
inline constexpr Edge Edge01{8};
inline constexpr Edge Edge23{10};
inline constexpr Edge Edge45{12};
inline constexpr Edge Edge67{14};
inline constexpr Edge Edge02{16};
inline constexpr Edge Edge13{17};
inline constexpr Edge Edge46{20};
inline constexpr Edge Edge57{21};
inline constexpr Edge Edge04{32};
inline constexpr Edge Edge15{33};
inline constexpr Edge Edge26{34};
inline constexpr Edge Edge37{35};
///@}

///@{
/// The faces, named by their normal and their coordinate along it.
inline constexpr Face FaceX0{48};
inline constexpr Face FaceX1{49};
inline constexpr Face FaceY0{40};
inline constexpr Face FaceY1{42};
inline constexpr Face FaceZ0{24};
inline constexpr Face FaceZ1{28};
///@}

inline constexpr Cube WholeCube{56};  ///< The cube itself.

///@{
/// Prints the type and the value, for example "CubeElementIds::Edge with value: 17", without a newline.
LUM_EXPORT std::ostream& operator<<(std::ostream& io_stream, Vertex i_vertex);
LUM_EXPORT std::ostream& operator<<(std::ostream& io_stream, Edge i_edge);
LUM_EXPORT std::ostream& operator<<(std::ostream& io_stream, Face i_face);
LUM_EXPORT std::ostream& operator<<(std::ostream& io_stream, Cube i_cube);
///@}

}  // namespace lum::CubeElementIds

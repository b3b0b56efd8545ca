#pragma once

#include <iosfwd>

#include "geometry/internal/Export.h"

/// Identifiers of the spaces that one, two or three of the cube's axes span.
///
/// A space is a mask of axes:
///
///     bit    2   1   0          value    axes    space
///          +---+---+---+        1, 2, 4  one     Orientation: along an edge, or normal to a face
///          | z | y | x |        3, 5, 6  two     Plane: the directions that a face spans
///          +---+---+---+        7        three   Volume
///
/// The value of axis k is 1 << k. The number of the axis with value v is v >> 1: 0, 1, 2 for 1, 2, 4.
/// An orientation o and the plane p perpendicular to it are complements: o ^ p == 7.
///
/// The identifiers are plain values, safe from any thread. Conversion from a number checks nothing.
namespace lum::CubeSpaceIds {

/// One axis.
enum class Orientation : unsigned int {};
/// Two axes.
enum class Plane : unsigned int {};
/// All three axes.
enum class Volume : unsigned int {};

///@{
/// The spaces, named by their axes.
inline constexpr Orientation AxisX{1};
inline constexpr Orientation AxisY{2};
inline constexpr Orientation AxisZ{4};
inline constexpr Plane PlaneXY{3};
inline constexpr Plane PlaneXZ{5};
inline constexpr Plane PlaneYZ{6};
inline constexpr Volume VolumeXYZ{7};
///@}

///@{
/// Prints the type and the value, for example "CubeSpaceIds::Plane with value: 6", without a newline.
LUM_EXPORT std::ostream& operator<<(std::ostream& io_stream, Orientation i_orientation);
LUM_EXPORT std::ostream& operator<<(std::ostream& io_stream, Plane i_plane);
LUM_EXPORT std::ostream& operator<<(std::ostream& io_stream, Volume i_volume);
///@}

}  // namespace lum::CubeSpaceIds

#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <type_traits>

#include "geometry/CanonicalCubeElement.h"
#include "geometry/CubeElement.h"
#include "geometry/CubeElementIds.h"
#include "geometry/CubeSpace.h"
#include "geometry/CubeSpaceIds.h"
#include "geometry/Matrix.h"
#include "geometry/Plane.h"
#include "geometry/Point.h"
#include "geometry/Quaternion.h"
#include "geometry/Range.h"
#include "geometry/Vector.h"

/// \file
/// The texts of values, common to streams and formatters.
///
///     Vector, Point        (1, 2, 3)
///     Plane                (a, b, c, d)
///     Quaternionf          (x, y, z, w)
///     Range                [0, 1]
///     Matrix               ((1, 0, 0, 5), (0, 1, 0, 6), (0, 0, 1, 7), (0, 0, 0, 1)), row by row
///     cube identifiers     CubeElementIds::Edge with value: 17
///
/// `TextOf<Value>::Write` passes the pieces of a text to a writer, which has three member functions: `Number`
/// writes a number, `Separate` writes the separator between numbers, and `Text` writes all other characters.
namespace lum::internal {

/// For each type with a text: the type `Number` of its numbers, and the function `Write`.
template <class Value>
struct TextOf;

template <class Value>
concept HasText = requires {
  typename TextOf<Value>::Number;
};

template <class Writer, class Number>
void WriteList(Writer& io_writer, std::span<Number const> i_numbers) {
  io_writer.Text("(");
  for (std::size_t i = 0; i < i_numbers.size(); ++i) {
    if (i != 0) io_writer.Separate();
    io_writer.Number(i_numbers[i]);
  }
  io_writer.Text(")");
}

template <class T, std::size_t N>
struct TextOf<Vector<T, N>> {
  using Number = T;
  template <class Writer>
  static void Write(Writer& io_writer, Vector<T, N> const& i_vector) {
    WriteList(io_writer, std::span<T const>(i_vector));
  }
};

template <class T, std::size_t N>
struct TextOf<Point<T, N>> {
  using Number = T;
  template <class Writer>
  static void Write(Writer& io_writer, Point<T, N> const& i_point) {
    WriteList(io_writer, std::span<T const>(i_point));
  }
};

template <class T>
struct TextOf<Plane<T>> {
  using Number = T;
  template <class Writer>
  static void Write(Writer& io_writer, Plane<T> const& i_plane) {
    std::array<T, 4> const numbers{i_plane.GetA(), i_plane.GetB(), i_plane.GetC(), i_plane.GetD()};
    WriteList(io_writer, std::span<T const>(numbers));
  }
};

template <>
struct TextOf<Quaternionf> {
  using Number = float;
  template <class Writer>
  static void Write(Writer& io_writer, Quaternionf const& i_quaternion) {
    std::array<float, 4> const numbers = i_quaternion.GetCoefficients();
    WriteList(io_writer, std::span<float const>(numbers));
  }
};

template <class T>
struct TextOf<Range<T>> {
  using Number = T;
  template <class Writer>
  static void Write(Writer& io_writer, Range<T> const& i_range) {
    io_writer.Text("[");
    io_writer.Number(i_range.GetLower());
    io_writer.Separate();
    io_writer.Number(i_range.GetUpper());
    io_writer.Text("]");
  }
};

template <class T>
struct TextOf<Matrix<T>> {
  using Number = T;
  template <class Writer>
  static void Write(Writer& io_writer, Matrix<T> const& i_matrix) {
    T const* const v = i_matrix.GetAsPtr();
    io_writer.Text("(");
    for (std::size_t row = 0; row < 4; ++row) {
      if (row != 0) io_writer.Separate();
      std::array<T, 4> const numbers{v[row], v[row + 4], v[row + 8], v[row + 12]};
      WriteList(io_writer, std::span<T const>(numbers));
    }
    io_writer.Text(")");
  }
};

/// The text before an identifier's number; empty for other types. It equals the library's own text for the
/// identifiers that the library itself streams.
template <class Identifier>
inline constexpr std::string_view prefix_of{};
template <>
inline constexpr std::string_view prefix_of<CubeElement> = "CubeElement with value: ";
template <>
inline constexpr std::string_view prefix_of<CubeElementIds::Vertex> = "CubeElementIds::Vertex with value: ";
template <>
inline constexpr std::string_view prefix_of<CubeElementIds::Edge> = "CubeElementIds::Edge with value: ";
template <>
inline constexpr std::string_view prefix_of<CubeElementIds::Face> = "CubeElementIds::Face with value: ";
template <>
inline constexpr std::string_view prefix_of<CubeElementIds::Cube> = "CubeElementIds::Cube with value: ";
template <>
inline constexpr std::string_view prefix_of<CubeSpace> = "CubeSpace with value: ";
template <>
inline constexpr std::string_view prefix_of<CubeSpaceIds::Orientation> =
    "CubeSpaceIds::Orientation with value: ";
template <>
inline constexpr std::string_view prefix_of<CubeSpaceIds::Plane> = "CubeSpaceIds::Plane with value: ";
template <>
inline constexpr std::string_view prefix_of<CubeSpaceIds::Volume> = "CubeSpaceIds::Volume with value: ";
template <>
inline constexpr std::string_view prefix_of<CanonicalCubeElement> = "CanonicalCubeElement with value: ";
template <>
inline constexpr std::string_view prefix_of<CanonicalCubeElementIds::CanonicalVertex> =
    "CanonicalCubeElementIds::CanonicalVertex with value: ";
template <>
inline constexpr std::string_view prefix_of<CanonicalCubeElementIds::CanonicalEdge> =
    "CanonicalCubeElementIds::CanonicalEdge with value: ";
template <>
inline constexpr std::string_view prefix_of<CanonicalCubeElementIds::CanonicalFace> =
    "CanonicalCubeElementIds::CanonicalFace with value: ";
template <>
inline constexpr std::string_view prefix_of<CanonicalCubeElementIds::CanonicalCube> =
    "CanonicalCubeElementIds::CanonicalCube with value: ";

template <class Identifier>
requires(!prefix_of<Identifier>.empty()) struct TextOf<Identifier> {
  using Number = unsigned int;
  template <class Writer>
  static void Write(Writer& io_writer, Identifier i_identifier) {
    io_writer.Text(prefix_of<Identifier>);
    if constexpr (std::is_enum_v<Identifier>) {
      io_writer.Number(static_cast<unsigned int>(i_identifier));
    } else {
      io_writer.Number(i_identifier.GetIndex());
    }
  }
};

}  // namespace lum::internal

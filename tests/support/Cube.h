#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <ranges>
#include <sstream>
#include <string>
#include <vector>

namespace lum::test {

/// An element of the unit cube: its coordinate along each axis, 0 or 1, or `free_axis`.
using Coordinates = std::array<int, 3>;
constexpr int free_axis = 2;

/// All 27 elements.
constexpr std::array<Coordinates, 27> GetElements() {
  std::array<Coordinates, 27> elements{};
  std::size_t index = 0;
  for (int z = 0; z <= free_axis; ++z) {
    for (int y = 0; y <= free_axis; ++y) {
      for (int x = 0; x <= free_axis; ++x) elements[index++] = {x, y, z};
    }
  }
  return elements;
}

/// The number of free axes.
constexpr int GetDimension(Coordinates const& i_element) {
  return static_cast<int>(std::count(i_element.begin(), i_element.end(), free_axis));
}

/// The first axis that is free, or the first that is not.
constexpr std::size_t FindAxis(Coordinates const& i_element, bool i_is_free) {
  std::size_t axis = 0;
  while ((i_element[axis] == free_axis) != i_is_free) ++axis;
  return axis;
}

/// The value of the identifier: 8, 16, 32 for the free axes, 1, 2, 4 for coordinates of 1.
constexpr unsigned int Encode(Coordinates const& i_element) {
  constexpr std::array<unsigned int, 3> free_values = {8, 16, 32};
  constexpr std::array<unsigned int, 3> one_values = {1, 2, 4};
  unsigned int value = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (i_element[axis] == free_axis) value += free_values[axis];
    if (i_element[axis] == 1) value += one_values[axis];
  }
  return value;
}

/// The element of an identifier's value.
constexpr Coordinates Decode(unsigned int i_value) {
  std::array<Coordinates, 27> const elements = GetElements();
  return *std::ranges::find(elements, i_value, &Encode);
}

/// The elements of a dimension, 8, 12, 6 or 1 of them, in no particular order.
template <std::size_t Count>
constexpr std::array<Coordinates, Count> GetElementsOfDimension(int i_dimension) {
  std::array<Coordinates, Count> found{};
  std::ranges::copy_if(GetElements(), found.begin(),
                       [=](Coordinates const& i_element) { return GetDimension(i_element) == i_dimension; });
  return found;
}
constexpr std::array<Coordinates, 12> edges = GetElementsOfDimension<12>(1);
constexpr std::array<Coordinates, 6> faces = GetElementsOfDimension<6>(2);

/// A list of identifiers.
template <class Id, std::size_t N>
using Ids = std::array<Id, N>;

/// The vertices. x changes fastest, then y.
template <class Vertex>
constexpr Ids<Vertex, 8> ListVertices() {
  Ids<Vertex, 8> list{};
  auto next = list.begin();
  for (int z = 0; z < 2; ++z) {
    for (int y = 0; y < 2; ++y) {
      for (int x = 0; x < 2; ++x) *next++ = Vertex{Encode({x, y, z})};
    }
  }
  return list;
}

/// The edges along an axis. The coordinate along the cyclically next axis changes fastest.
template <class Edge>
constexpr Ids<Edge, 4> ListEdges(std::size_t i_axis) {
  Ids<Edge, 4> list{};
  auto next = list.begin();
  for (int second = 0; second < 2; ++second) {
    for (int first = 0; first < 2; ++first) {
      Coordinates edge{};
      edge[i_axis] = free_axis;
      edge[(i_axis + 1) % 3] = first;
      edge[(i_axis + 2) % 3] = second;
      *next++ = Edge{Encode(edge)};
    }
  }
  return list;
}

/// The faces across an axis: at coordinate 0, then at 1.
template <class Face>
constexpr Ids<Face, 2> ListFaces(std::size_t i_axis) {
  Coordinates face{free_axis, free_axis, free_axis};
  face[i_axis] = 0;
  Face const base{Encode(face)};
  face[i_axis] = 1;
  return {base, Face{Encode(face)}};
}

/// The concatenation of the lists of the three axes.
template <class Id, std::size_t N, class List>
constexpr Ids<Id, 3 * N> ListForAllAxes(List const& i_list) {
  Ids<Id, 3 * N> all{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    std::ranges::copy(i_list(axis), all.begin() + static_cast<std::ptrdiff_t>(axis * N));
  }
  return all;
}

/// The start and the end of an edge.
template <class Vertex>
constexpr Ids<Vertex, 2> ListVerticesOfEdge(Coordinates i_edge) {
  std::size_t const axis = FindAxis(i_edge, true);
  i_edge[axis] = 0;
  Vertex const start{Encode(i_edge)};
  i_edge[axis] = 1;
  return {start, Vertex{Encode(i_edge)}};
}

/// The vertices of a face. The coordinate along the cyclically next axis after its normal changes fastest.
template <class Vertex>
constexpr Ids<Vertex, 4> ListVerticesOfFace(Coordinates i_face) {
  std::size_t const normal = FindAxis(i_face, false);
  Ids<Vertex, 4> list{};
  auto next = list.begin();
  for (int second = 0; second < 2; ++second) {
    for (int first = 0; first < 2; ++first) {
      i_face[(normal + 1) % 3] = first;
      i_face[(normal + 2) % 3] = second;
      *next++ = Vertex{Encode(i_face)};
    }
  }
  return list;
}

/// The edges of a face: two along the cyclically next axis after its normal, then two along the one after. Of
/// each two, the edge at coordinate 0 comes first.
template <class Edge>
constexpr Ids<Edge, 4> ListEdgesOfFace(Coordinates const& i_face) {
  std::size_t const normal = FindAxis(i_face, false);
  Ids<Edge, 4> list{};
  auto next = list.begin();
  for (std::size_t pair = 0; pair < 2; ++pair) {
    for (int side = 0; side < 2; ++side) {
      Coordinates edge = i_face;
      edge[(normal + 1 + (1 - pair)) % 3] = side;
      *next++ = Edge{Encode(edge)};
    }
  }
  return list;
}

/// Three bits, not all set, rotated cyclically towards the higher ones: 8 is 1 modulo 7.
constexpr std::uint64_t Turn(std::uint64_t i_bits, std::uint64_t i_count) { return (i_bits << i_count) % 7; }

/// The text that an identifier prints, in angle brackets.
template <class Id>
std::string Print(Id i_id) {
  std::ostringstream stream;
  stream << '<' << i_id << '>';
  return stream.str();
}

/// The values of the identifiers in a range.
template <class Range>
std::vector<unsigned int> GetValues(Range const& i_range) {
  std::vector<unsigned int> values;
  for (auto const id : i_range) values.push_back(static_cast<unsigned int>(id));
  return values;
}

/// Reports that a check failed. It is not constexpr: in a static_assert the compiler stops at the check, and
/// names the values that led to it.
inline void Fail(char const* i_check) { ADD_FAILURE() << i_check << " is wrong"; }

/// Checks that a range lists just these elements, by every way to ask it, in a static_assert or at run time.
/// Returns true unless a static_assert has failed.
template <class Range, class Id, std::size_t N>
constexpr bool CheckList(Range const& i_range, Ids<Id, N> const& i_expected) {
  static_assert(std::ranges::random_access_range<Range> && std::ranges::sized_range<Range> &&
                std::ranges::common_range<Range> && std::ranges::borrowed_range<Range>);
  auto const begin = i_range.begin();
  auto const end = i_range.end();
  if (i_range.size() != N) Fail("size()");
  if (end - begin != static_cast<std::ptrdiff_t>(N)) Fail("end() - begin()");
  if (!std::ranges::equal(i_range, i_expected)) Fail("an element");
  if (!std::equal(std::make_reverse_iterator(end), std::make_reverse_iterator(begin), i_expected.rbegin(),
                  i_expected.rend())) {
    Fail("an element from the end");
  }
  for (std::size_t i = 0; i < N; ++i) {
    auto const offset = static_cast<std::ptrdiff_t>(i);
    if (i_range[i] != i_expected[i]) Fail("the subscript of the range");
    if (begin[offset] != i_expected[i]) Fail("the subscript of an iterator");
    if (i_range.IndexOf(i_expected[i]) != i) Fail("IndexOf()");
    if (std::ranges::find(i_range, i_expected[i]) - begin != offset) Fail("the position of an element");
  }
  return true;
}

/// Checks that an iterator moves and compares as those of random access do, in a static_assert or at run
/// time. It must be at the start of a range of two elements or more. Returns true unless a static_assert has
/// failed.
template <class Iterator>
constexpr bool CheckWalk(Iterator const i_begin) {
  static_assert(std::random_access_iterator<Iterator>);
  Iterator it = i_begin;
  if (it++ != i_begin) Fail("the result of it++");
  Iterator const next = it;
  if (next == i_begin) Fail("it++");
  if (next - i_begin != 1) Fail("the distance to the next");
  if (i_begin - next != -1) Fail("the distance to the one before");
  if (*next != i_begin[1]) Fail("begin[1]");
  if (i_begin + 1 != next) Fail("begin + 1");
  if (1 + i_begin != next) Fail("1 + begin");
  if (next - 1 != i_begin) Fail("next - 1");
  if (it-- != next) Fail("the result of it--");
  if (it != i_begin) Fail("it--");
  if (++it != next) Fail("++it");
  if (--it != i_begin) Fail("--it");
  if ((it += 1) != next) Fail("it += 1");
  if ((it -= 1) != i_begin) Fail("it -= 1");
  if (!(i_begin < next)) Fail("begin < next");
  if (!(next > i_begin)) Fail("next > begin");
  if (!(next >= i_begin)) Fail("next >= begin");
  if (!(i_begin <= next)) Fail("begin <= next");
  if ((i_begin <=> next) != std::strong_ordering::less) Fail("begin <=> next");
  return true;
}

}  // namespace lum::test

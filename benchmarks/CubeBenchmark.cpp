// The vertices of the cube's edges, by lum's bit arithmetic and from a table.

#include <array>
#include <cstddef>

#include "Register.h"
#include "Row.h"
#include "geometry/CubeEdgeIterator.h"
#include "geometry/CubeVertexIterator.h"

namespace lum::bench {
namespace {

using CubeElementIds::Cube;
using CubeElementIds::Edge;
using Values = std::array<unsigned int, 8>;

constexpr auto table = [] {
  std::array<std::array<unsigned char, 2>, 12> ends{};
  std::size_t next = 0;
  for (Edge const edge : CubeEdgeIterable<Cube>()) {
    CubeVertexIterable<Edge> const vertices(edge);
    ends[next++] = {static_cast<unsigned char>(vertices[0]), static_cast<unsigned char>(vertices[1])};
  }
  return ends;
}();

// The number of a cell's edges that a surface crosses. A value is 1 for corners above the surface, 0 below.
unsigned int CountByTable(Values const& i_values) {
  unsigned int crossed = 0;
  for (auto const& [start, end] : table) crossed += i_values[start] != i_values[end] ? 1U : 0U;
  return crossed;
}

unsigned int CountByIterators(Values const& i_values) {
  unsigned int crossed = 0;
  for (Edge const edge : CubeEdgeIterable<Cube>()) {
    CubeVertexIterable<Edge> const vertices(edge);
    auto const start = static_cast<unsigned int>(vertices[0]);
    auto const end = static_cast<unsigned int>(vertices[1]);
    crossed += i_values[start] != i_values[end] ? 1U : 0U;
  }
  return crossed;
}

template <class Count>
auto Unrolled(Count const& i_count) {
  return Repeat([i_count, values = Values{0, 1, 1, 0, 1, 0, 0, 1}]() mutable {
    benchmark::DoNotOptimize(values);
    return i_count(values);
  });
}

// The compiler cannot unroll the loop, because it does not know the number of edges.
template <class Ends>
auto InALoop(Ends const& i_ends) {
  return Repeat([i_ends, values = Values{0, 1, 1, 0, 1, 0, 0, 1}, count = std::size_t{12}]() mutable {
    benchmark::DoNotOptimize(values);
    benchmark::DoNotOptimize(count);
    unsigned int crossed = 0;
    for (std::size_t i = 0; i < count; ++i) {
      auto const [start, end] = i_ends(i);
      crossed += values[start] != values[end] ? 1U : 0U;
    }
    return crossed;
  });
}

using Ends = std::array<std::size_t, 2>;

}  // namespace

void Register() {
  Add("12 edges unrolled", "lum",
      Unrolled([](Values const& i_values) { return CountByIterators(i_values); }));
  Add("12 edges unrolled", "table", Unrolled([](Values const& i_values) { return CountByTable(i_values); }));
  Add("12 edges in a loop", "lum", InALoop([](std::size_t i) {
        CubeVertexIterable<Edge> const vertices{CubeEdgeIterable<Cube>()[i]};
        return Ends{static_cast<std::size_t>(vertices[0]), static_cast<std::size_t>(vertices[1])};
      }));
  Add("12 edges in a loop", "table", InALoop([](std::size_t i) { return Ends{table[i][0], table[i][1]}; }));
}

}  // namespace lum::bench

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace surface {

/// Red, green, blue.
using Colour = std::array<std::uint8_t, 3>;

/// The colours of vertices on smooth pieces, on edges and at corners. The colour of rank r is at r - 1.
using Palette = std::array<Colour, 3>;

constexpr Palette skin = {{{226, 188, 160}, {226, 188, 160}, {226, 188, 160}}};
constexpr Palette by_rank = {{{236, 232, 222}, {38, 92, 160}, {206, 60, 44}}};

/// Rank 0, of a vertex without singular values above the tolerance, counts as smooth.
constexpr Colour GetColour(Palette const& i_palette, int i_rank) {
  return i_palette[i_rank > 1 ? static_cast<std::size_t>(i_rank) - 1 : 0];
}

}  // namespace surface

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/OutputFiles.h"

namespace common {

/// Pixels row by row from the top, with one value each (grey, 0 black) or three (red, green, blue).
struct Picture {
  std::size_t width;
  std::size_t height;
  std::vector<std::uint8_t> pixels;
};

/// Maps samples to grey values. The darkest and the brightest 0.5 % of the finite ones saturate, and so do
/// infinities; NaNs are black.
Picture StretchContrast(std::size_t i_width, std::size_t i_height, std::vector<double> const& i_samples);

/// Writes a PNG file. Throws `std::runtime_error` with a one-line message on failure.
void WritePng(Picture const& i_picture, OutputFile& io_file);

}  // namespace common

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace reslice {

/// Grey values, 0 black, row by row from the top.
struct Picture {
  std::size_t width;
  std::size_t height;
  std::vector<std::uint8_t> pixels;
};

/// Spreads the samples over the grey values: the darkest and the brightest half percent saturate. NaNs are
/// black.
Picture StretchContrast(std::size_t i_width, std::size_t i_height, std::vector<double> const& i_samples);

/// Writes a PNG file, whole or not at all: what was at the path stays there on failure.
/// A file that cannot be written throws `std::runtime_error` with one line of text.
void WritePng(Picture const& i_picture, std::string const& i_path);

}  // namespace reslice

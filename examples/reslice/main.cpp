// reslice INPUT.nii[.gz] OUTPUT.png [--axis X,Y,Z] [--angle DEGREES] [--offset MM] [--size PIXELS]
//
// An oblique slice through a volume: pixels of one square millimetre, x to the right, y up.

#include <charconv>
#include <cmath>
#include <cstdio>
#include <exception>
#include <iostream>
#include <numbers>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "reslice/Picture.h"
#include "reslice/Slice.h"
#include "reslice/Volume.h"

namespace {

constexpr std::string_view usage =
    "usage: reslice INPUT.nii[.gz] OUTPUT.png [--axis X,Y,Z] [--angle DEGREES] [--offset MM] [--size PIXELS]";

constexpr double largest_size = 16384;

struct Arguments {
  std::vector<std::string> paths;
  reslice::Placement placement;
};

double ParseNumber(std::string_view i_option, std::string_view i_text) {
  double number = 0;
  auto const [end, error] = std::from_chars(i_text.data(), i_text.data() + i_text.size(), number);
  if (error != std::errc() || end != i_text.data() + i_text.size() || !std::isfinite(number)) {
    throw std::invalid_argument(std::string(i_option) + " does not take \"" + std::string(i_text) + '"');
  }
  return number;
}

lum::Vector<float, 3> ParseAxis(std::string_view i_option, std::string_view i_text) {
  std::size_t const first = i_text.find(',');
  std::size_t const second = i_text.find(',', first + 1);
  if (first == std::string_view::npos || second == std::string_view::npos) {
    throw std::invalid_argument(std::string(i_option) + " takes three numbers X,Y,Z");
  }
  return {static_cast<float>(ParseNumber(i_option, i_text.substr(0, first))),
          static_cast<float>(ParseNumber(i_option, i_text.substr(first + 1, second - first - 1))),
          static_cast<float>(ParseNumber(i_option, i_text.substr(second + 1)))};
}

std::size_t ParseSize(std::string_view i_option, std::string_view i_text) {
  double const size = ParseNumber(i_option, i_text);
  if (!(size >= 1 && size <= largest_size) || size != std::floor(size)) {
    throw std::invalid_argument(std::string(i_option) + " takes a whole number from 1 to 16384");
  }
  return static_cast<std::size_t>(size);
}

Arguments ParseArguments(std::vector<std::string_view> const& i_words) {
  Arguments arguments;
  for (std::size_t index = 0; index < i_words.size(); ++index) {
    std::string_view const word = i_words[index];
    if (!word.starts_with("--")) {
      arguments.paths.emplace_back(word);
      continue;
    }
    if (word != "--axis" && word != "--angle" && word != "--offset" && word != "--size") {
      throw std::invalid_argument("unknown option " + std::string(word));
    }
    if (++index == i_words.size()) throw std::invalid_argument(std::string(word) + " takes a value");
    std::string_view const value = i_words[index];
    reslice::Placement& placement = arguments.placement;
    if (word == "--axis") placement.axis = ParseAxis(word, value);
    if (word == "--angle") placement.angle = ParseNumber(word, value) * std::numbers::pi / 180;
    if (word == "--offset") placement.offset = ParseNumber(word, value);
    if (word == "--size") placement.size = ParseSize(word, value);
  }
  if (arguments.paths.size() != 2) throw std::invalid_argument(std::string(usage));
  return arguments;
}

}  // namespace

int main(int i_count, char** ip_words) {
  try {
    Arguments const arguments = ParseArguments({ip_words + 1, ip_words + i_count});
    reslice::Volume const volume = reslice::ReadVolume(arguments.paths[0]);
    reslice::Slice const slice = reslice::PlaceSlice(volume, arguments.placement);
    reslice::Samples const samples = reslice::Resample(volume, slice);
    reslice::WritePng(reslice::StretchContrast(slice.width, slice.height, samples), arguments.paths[1]);
    std::cout << arguments.paths[1] << ": " << slice.width << " x " << slice.height << " mm\n";
    return 0;
  } catch (std::exception const& exception) {
    std::cerr << "reslice: " << exception.what() << '\n';
    return 1;
  }
}

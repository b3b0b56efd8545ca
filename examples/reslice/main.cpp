// reslice INPUT.nii[.gz] OUTPUT.png [--axis X,Y,Z] [--angle DEGREES] [--offset MM] [--size PIXELS]
//
// An oblique slice through a volume: pixels of one square millimetre, x to the right, y up.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <exception>
#include <iostream>
#include <numbers>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "common/Arguments.h"
#include "common/OutputFile.h"
#include "common/Picture.h"
#include "common/Volume.h"
#include "reslice/Slice.h"

namespace {

constexpr std::string_view usage =
    "usage: reslice INPUT.nii[.gz] OUTPUT.png [--axis X,Y,Z] [--angle DEGREES] [--offset MM] [--size PIXELS]";

constexpr std::size_t largest_size = 16384;

struct Arguments {
  std::vector<std::string> paths;
  reslice::Placement placement;
};

lum::Vector<float, 3> ParseAxis(std::string_view i_option, std::string_view i_text) {
  std::vector<double> axis = common::ParseList(i_option, i_text, "X,Y,Z");
  // Only the direction counts, and floats hold no squares of very long or short axes.
  double const largest = std::max({std::abs(axis[0]), std::abs(axis[1]), std::abs(axis[2])});
  if (largest == 0) throw std::invalid_argument("the axis has length zero");
  for (double& component : axis) component /= largest;
  return {static_cast<float>(axis[0]), static_cast<float>(axis[1]), static_cast<float>(axis[2])};
}

// In radians, and within a turn: floats tell no degrees apart in large angles.
double ParseAngle(std::string_view i_option, std::string_view i_text) {
  return std::remainder(common::ParseNumber(i_option, i_text), 360.0) * std::numbers::pi / 180;
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
    if (word == "--angle") placement.angle = ParseAngle(word, value);
    if (word == "--offset") placement.offset = common::ParseNumber(word, value);
    if (word == "--size") placement.size = common::ParseCount(word, value, largest_size);
  }
  if (arguments.paths.size() != 2) throw std::invalid_argument(std::string(usage));
  return arguments;
}

}  // namespace

int main(int i_count, char** ip_words) {
  try {
    Arguments const arguments = ParseArguments({ip_words + 1, ip_words + i_count});
    common::Volume const volume = common::ReadVolume(arguments.paths[0]);
    reslice::Slice const slice = reslice::PlaceSlice(volume, arguments.placement);
    reslice::Samples const samples = reslice::Resample(volume, slice);
    common::OutputFile file(arguments.paths[1]);
    common::WritePng(common::StretchContrast(slice.width, slice.height, samples), file);
    file.Publish();
    std::cout << arguments.paths[1] << ": " << slice.width << " x " << slice.height << " mm\n";
    return 0;
  } catch (std::exception const& exception) {
    std::cerr << "reslice: " << exception.what() << '\n';
    return 1;
  }
}

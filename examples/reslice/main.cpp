// reslice INPUT.nii[.gz] OUTPUT.png [--axis X,Y,Z] [--angle DEGREES] [--offset MM] [--size PIXELS]
//
// Draws an oblique slice through a volume: pixels of one square millimetre, x to the right, y up.
//
// Slice.cpp places the slice and samples the volume. common/Volume.cpp reads and interpolates the volume, and
// common/Picture.cpp turns samples into greys and writes the file.

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
#include "common/OutputFiles.h"
#include "common/Picture.h"
#include "common/Volume.h"
#include "reslice/Slice.h"

namespace {

constexpr std::string_view help =
    "usage: reslice INPUT.nii[.gz] OUTPUT.png [--axis X,Y,Z] [--angle DEGREES] [--offset MM] [--size "
    "PIXELS]\n"
    "\n"
    "Draws an oblique slice through a volume: pixels of one square millimetre, x to the right, y up.\n"
    "\n"
    "  --axis X,Y,Z     the axis about which the slice is rotated; 0,0,1 if it is not given\n"
    "  --angle DEGREES  the angle of the rotation, right-handed\n"
    "  --offset MM      moves the slice along its normal\n"
    "  --size PIXELS    pixels along each side; without it, the slice shows the whole volume\n";

lum::Vector<float, 3> ParseAxis(std::string_view i_option, std::string_view i_text) {
  std::vector<double> axis = common::ParseList(i_option, i_text, "X,Y,Z");
  // Only the direction counts. In float, the squares of very long or short axes overflow or underflow.
  double const largest = std::max({std::abs(axis[0]), std::abs(axis[1]), std::abs(axis[2])});
  if (largest == 0) {
    throw std::invalid_argument(std::string(i_option) + " takes an axis X,Y,Z whose length is not zero");
  }
  for (double& component : axis) component /= largest;
  return {static_cast<float>(axis[0]), static_cast<float>(axis[1]), static_cast<float>(axis[2])};
}

reslice::Placement GetPlacement(common::CommandLine const& i_line) {
  reslice::Placement placement;
  if (i_line.Has("--axis") && !i_line.Has("--angle")) {
    throw std::invalid_argument("--axis has no effect without --angle");
  }
  if (i_line.Has("--axis")) placement.axis = ParseAxis("--axis", i_line.Get("--axis"));
  // Reduced to one turn first: a float cannot resolve degrees in a large angle.
  placement.angle = std::remainder(i_line.GetNumber("--angle", 0), 360.0) * std::numbers::pi / 180;
  placement.offset = i_line.GetNumber("--offset", placement.offset);
  if (i_line.Has("--size")) {
    placement.size = common::ParseCount("--size", i_line.Get("--size"), reslice::largest_size);
  }
  return placement;
}

}  // namespace

int main(int i_count, char** ip_words) {
  try {
    if (common::PrintHelp(i_count, ip_words, help)) return 0;
    common::CommandLine const line(i_count, ip_words, {"--axis", "--angle", "--offset", "--size"});
    reslice::Placement const placement = GetPlacement(line);
    line.RequirePaths(2, help);
    std::string const& input = line.GetPaths()[0];
    common::OutputFiles files({input});
    common::OutputFile& picture = files.Add(line.GetPaths()[1]);
    common::Volume const volume = common::ReadVolume(input);
    reslice::Slice const slice = reslice::PlaceSlice(volume, placement);
    reslice::Samples const samples = reslice::Resample(volume, slice);
    common::Picture const greys = common::StretchContrast(slice.width, slice.height, samples);
    files.DelaySignals();
    common::WritePng(greys, picture);
    files.Publish();
    std::cout << picture.GetPath() << ": " << slice.width << " x " << slice.height << " mm\n";
    return 0;
  } catch (std::exception const& exception) {
    common::PrintError("reslice", exception);
    return 1;
  }
}

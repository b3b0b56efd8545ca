#include "common/Picture.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <stdexcept>
#include <string>

#include "common/Conversion.h"

namespace common {

Picture StretchContrast(std::size_t i_width, std::size_t i_height, std::vector<double> const& i_samples) {
  std::vector<double> inside;
  std::copy_if(i_samples.begin(), i_samples.end(), std::back_inserter(inside),
               [](double i_sample) { return std::isfinite(i_sample); });
  std::sort(inside.begin(), inside.end());
  std::size_t const tail = inside.size() / 200;
  double const dark = inside.empty() ? 0 : inside[tail];
  double const bright = inside.empty() ? 0 : inside[inside.size() - 1 - tail];
  double const scale = bright > dark ? 255 / (bright - dark) : 0;

  Picture picture{i_width, i_height, {}};
  picture.pixels.reserve(i_samples.size());
  for (double const sample : i_samples) {
    picture.pixels.push_back(ToByte((sample - dark) * scale));
  }
  return picture;
}

void WritePng(Picture const& i_picture, OutputFile& io_file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(i_picture.width);
  image.height = static_cast<png_uint_32>(i_picture.height);
  bool const is_grey = i_picture.pixels.size() == i_picture.width * i_picture.height;
  image.format = is_grey ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;
  io_file.Write([&](std::FILE* op_stream) {
    if (png_image_write_to_stdio(&image, op_stream, 0, i_picture.pixels.data(), 0, nullptr) == 0) {
      throw std::runtime_error("cannot write " + io_file.GetPath() + ": " + image.message);
    }
  });
}

}  // namespace common

#pragma once

#include <gtest/gtest.h>
#include <png.h>

#include <string>

#include "common/Picture.h"

namespace test {

inline common::Picture ReadPng(std::string const& i_path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_NE(png_image_begin_read_from_file(&image, i_path.c_str()), 0) << i_path;
  image.format = PNG_FORMAT_RGB;
  common::Picture picture{image.width, image.height, {}};
  picture.pixels.resize(PNG_IMAGE_SIZE(image));
  EXPECT_NE(png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr), 0) << i_path;
  return picture;
}

}  // namespace test

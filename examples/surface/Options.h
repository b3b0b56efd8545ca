#pragma once

#include <geometry/Plane.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace surface {

/// The parsed command line.
struct Options {
  std::string input;  ///< a volume, empty for a solid
  double level = 0;
  std::string solid;  ///< the name of a solid, empty for a volume
  std::string mesh;
  std::string picture;     ///< empty for none
  std::size_t frames = 0;  ///< of the turntable
  std::string turntable_folder;
  std::optional<lum::Plane<double>> clip;
  bool is_quiet = false;
  std::size_t picture_size = 900;  ///< pixels along each side, no option
  std::size_t frame_size = 480;    ///< the same for the turntable
};

/// What --help prints.
extern std::string_view const help;

/// Throws `std::invalid_argument` with a one-line message.
Options ParseOptions(std::vector<std::string_view> const& i_words);

}  // namespace surface

#pragma once

#include <string>
#include <vector>

#include "common/OutputFiles.h"

namespace common {

/// One curve of a plot: a positive value for each iteration.
struct Curve {
  std::string name;
  std::string colour;
  std::vector<double> values;
};

/// Draws curves with a logarithmic scale as SVG. All curves must have the same number of values. Throws
/// `std::runtime_error` with a one-line message if the file cannot be written.
void WritePlot(std::string const& i_title, std::vector<Curve> const& i_curves, OutputFile& io_file);

}  // namespace common

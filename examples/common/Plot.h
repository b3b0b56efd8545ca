#pragma once

#include <string>
#include <vector>

#include "common/OutputFile.h"

namespace common {

/// One line of a plot: a value above zero for each iteration.
struct Curve {
  std::string name;
  std::string colour;
  std::vector<double> values;
};

/// Draws curves of equal numbers of steps, on a logarithmic scale, as SVG. What cannot be written throws
/// `std::runtime_error` with one line of text.
void WritePlot(std::string const& i_title, std::vector<Curve> const& i_curves, OutputFile& io_file);

}  // namespace common

#include "common/Plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <stdexcept>

namespace common {

void WritePlot(std::string const& i_title, std::vector<Curve> const& i_curves, OutputFile& io_file) {
  constexpr double left = 80, right = 560, top = 60, bottom = 350;
  double lowest = i_curves[0].values[0];
  double highest = lowest;
  for (Curve const& curve : i_curves) {
    auto const [low, high] = std::minmax_element(curve.values.begin(), curve.values.end());
    lowest = std::min(lowest, *low);
    highest = std::max(highest, *high);
  }
  double const low_power = std::floor(std::log10(lowest));
  double const high_power = std::max(std::ceil(std::log10(highest)), low_power + 1);
  std::size_t const last = i_curves[0].values.size() - 1;
  auto const to_x = [=](std::size_t i_step) {
    return left +
           (right - left) * static_cast<double>(i_step) / static_cast<double>(std::max<std::size_t>(last, 1));
  };
  auto const to_y = [=](double i_value) {
    return bottom - (bottom - top) * (std::log10(i_value) - low_power) / (high_power - low_power);
  };

  std::ofstream svg(io_file.Begin());
  svg << "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 760 420' width='760' height='420'\n"
         "     font-family='sans-serif' font-size='15' fill='#444'>\n"
         "<rect width='760' height='420' rx='10' fill='#fff'/>\n"
      << "<text x='" << left << "' y='" << top - 24 << "' font-weight='bold'>" << i_title << "</text>\n";
  auto const decades = static_cast<int>(high_power - low_power);
  for (int decade = 0; decade <= decades; ++decade) {
    double const value = std::pow(10, low_power + decade);
    double const y = to_y(value);
    svg << "<path d='M" << left << ' ' << y << "H" << right << "' stroke='#ddd'/>\n<text x='" << left - 10
        << "' y='" << y + 5 << "' text-anchor='end'>" << value << "</text>\n";
  }
  constexpr std::array<std::size_t, 9> ticks = {1, 2, 5, 10, 20, 50, 100, 200, 500};
  std::size_t const tick =
      *std::find_if(ticks.begin(), ticks.end() - 1, [=](std::size_t i_tick) { return last / i_tick <= 10; });
  for (std::size_t step = 0; step <= last; step += tick) {
    svg << "<text x='" << to_x(step) << "' y='" << bottom + 22 << "' text-anchor='middle'>" << step
        << "</text>\n";
  }
  svg << "<text x='" << (left + right) / 2 << "' y='" << bottom + 50
      << "' text-anchor='middle'>iteration</text>\n";
  for (Curve const& curve : i_curves) {
    svg << "<polyline fill='none' stroke-width='2' stroke='" << curve.colour << "' points='";
    for (std::size_t step = 0; step <= last; ++step)
      svg << to_x(step) << ',' << to_y(curve.values[step]) << ' ';
    svg << "'/>\n<text x='" << right + 8 << "' y='" << to_y(curve.values[last]) + 5 << "' fill='"
        << curve.colour << "'>" << curve.name << "</text>\n";
  }
  svg << "</svg>\n";
  if (!svg.flush()) throw std::runtime_error("cannot write " + io_file.GetPath());
}

}  // namespace common

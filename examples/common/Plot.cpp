#include "common/Plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <ostream>
#include <sstream>

#include "common/Conversion.h"

namespace common {
namespace {

constexpr double left = 80, right = 560, top = 60, bottom = 350;

// Draws into the rectangle above: iterations from left to right, values on a logarithmic scale.
class Plot {
 public:
  Plot(std::vector<Curve> const& i_curves, std::ostream& io_svg)
      : m_last_step(i_curves[0].values.size() - 1), m_svg(io_svg) {
    double lowest = i_curves[0].values[0];
    double highest = lowest;
    for (Curve const& curve : i_curves) {
      auto const [low, high] = std::minmax_element(curve.values.begin(), curve.values.end());
      lowest = std::min(lowest, *low);
      highest = std::max(highest, *high);
    }
    m_low_power = std::floor(std::log10(lowest));
    m_high_power = std::max(std::ceil(std::log10(highest)), m_low_power + 1);
  }

  void DrawDecades() {
    auto const decades = ToInteger<int>(m_high_power - m_low_power);
    for (int decade = 0; decade <= decades; ++decade) {
      double const value = std::pow(10, m_low_power + decade);
      double const y = ToY(value);
      m_svg << "<path d='M" << left << ' ' << y << "H" << right << "' stroke='#ddd'/>\n<text x='" << left - 10
            << "' y='" << y + 5 << "' text-anchor='end'>" << value << "</text>\n";
    }
  }

  // Numbers the iterations at the smallest of these steps that needs at most eleven numbers.
  void DrawIterations() {
    constexpr std::array<std::size_t, 9> ticks = {1, 2, 5, 10, 20, 50, 100, 200, 500};
    auto const is_wide_enough = [this](std::size_t i_tick) { return m_last_step / i_tick <= 10; };
    std::size_t const tick = *std::find_if(ticks.begin(), ticks.end() - 1, is_wide_enough);
    for (std::size_t step = 0; step <= m_last_step; step += tick) {
      m_svg << "<text x='" << ToX(step) << "' y='" << bottom + 22 << "' text-anchor='middle'>" << step
            << "</text>\n";
    }
    m_svg << "<text x='" << (left + right) / 2 << "' y='" << bottom + 50
          << "' text-anchor='middle'>iteration</text>\n";
  }

  void DrawCurve(Curve const& i_curve) {
    m_svg << "<polyline fill='none' stroke-width='2' stroke='" << i_curve.colour << "' points='";
    for (std::size_t step = 0; step <= m_last_step; ++step) {
      m_svg << ToX(step) << ',' << ToY(i_curve.values[step]) << ' ';
    }
    m_svg << "'/>\n<text x='" << right + 8 << "' y='" << ToY(i_curve.values[m_last_step]) + 5 << "' fill='"
          << i_curve.colour << "'>" << i_curve.name << "</text>\n";
  }

 private:
  double ToX(std::size_t i_step) const {
    auto const steps = static_cast<double>(std::max<std::size_t>(m_last_step, 1));
    return left + (right - left) * static_cast<double>(i_step) / steps;
  }
  double ToY(double i_value) const {
    return bottom - (bottom - top) * (std::log10(i_value) - m_low_power) / (m_high_power - m_low_power);
  }

  std::size_t m_last_step;
  std::ostream& m_svg;
  double m_low_power = 0;
  double m_high_power = 0;
};

}  // namespace

void WritePlot(std::string const& i_title, std::vector<Curve> const& i_curves, OutputFile& io_file) {
  std::ostringstream svg;
  svg << "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 760 420' width='760' height='420'\n"
         "     font-family='sans-serif' font-size='15' fill='#444'>\n"
         "<rect width='760' height='420' rx='10' fill='#fff'/>\n"
      << "<text x='" << left << "' y='" << top - 24 << "' font-weight='bold'>" << i_title << "</text>\n";
  Plot plot(i_curves, svg);
  plot.DrawDecades();
  plot.DrawIterations();
  for (Curve const& curve : i_curves) plot.DrawCurve(curve);
  svg << "</svg>\n";
  std::string const text = svg.str();
  io_file.Write([&](std::FILE* op_stream) { std::fwrite(text.data(), 1, text.size(), op_stream); });
}

}  // namespace common

// Draws docs/long-chains.svg: how far a point is from where it was, after it has been transformed and
// transformed back by a product of many steps. The steps are those of examples/recipes/FollowSteps.cpp.

#include <geometry/Matrix.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <iostream>
#include <numbers>
#include <string>

namespace {

constexpr std::array shown = {10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000, 50000, 100000};

/// The errors after each of the numbers of steps above.
struct Errors {
  std::array<double, shown.size()> stored;  ///< by the stored inverse, the product of the inverses
  std::array<double, shown.size()>
      rebuilt;  ///< by an inverse that is computed from the transform at that step
};

template <class T>
double GetError(lum::Matrix<T> const& i_pose) {
  lum::Point<T, 3> const point(1, 2, 3);
  return std::sqrt(static_cast<double>(GetSquaredLength(i_pose.GetInverse() * (i_pose * point) - point)));
}

template <class T>
Errors Measure() {
  auto const axis = lum::GetNormalized(lum::Vector<T, 3>(1, 2, 3));
  lum::Matrix<T> const step = lum::Matrix<T>::Rotate(axis, std::numbers::pi_v<T> / 1800) *
                              lum::Matrix<T>::Translate(T(0.01), T(0.02), T(0.03));
  Errors errors{};
  lum::Matrix<T> pose;
  int steps = 0;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    for (; steps < shown[i]; ++steps) pose *= step;
    errors.stored[i] = GetError(pose);
    errors.rebuilt[i] = GetError(lum::Matrix<T>(pose.GetAsPtr()));
  }
  return errors;
}

constexpr double left = 66, right = 400, top = 50, bottom = 300;
constexpr double lowest = -16, highest = 0;  // decades

double ToX(double i_steps) { return left + (right - left) * (std::log10(i_steps) - 1) / 4; }
double ToY(double i_error) {
  return bottom - (bottom - top) * (std::log10(i_error) - lowest) / (highest - lowest);
}

void DrawCurve(std::array<double, shown.size()> const& i_errors, std::string const& i_name,
               std::string const& i_style) {
  std::cout << "  <polyline fill='none' stroke-width='2' " << i_style << " points='";
  for (std::size_t i = 0; i < shown.size(); ++i) {
    std::cout << (i == 0 ? "" : " ") << ToX(shown[i]) << ',' << ToY(i_errors[i]);
  }
  std::cout << "'/>\n  <text x='" << right + 8 << "' y='" << ToY(i_errors.back()) + 5
            << "' text-anchor='start'>" << i_name << "</text>\n";
}

}  // namespace

int main() {
  std::cout << std::fixed << std::setprecision(0)
            << "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 560 356' font-family='sans-serif' "
               "font-size='14' text-anchor='middle' fill='#1d2a36'>\n"
               "  <title>Errors of there and back after many products, with the stored and a rebuilt "
               "inverse</title>\n"
               "  <rect width='560' height='356' rx='10' fill='#ffffff'/>\n"
               "  <text x='280' y='28' font-size='15' font-weight='bold'>Distance of a point from where it "
               "was, there and back</text>\n";
  for (int decade = 0; decade >= -16; decade -= 4) {
    double const y = ToY(std::pow(10, decade));
    std::cout << "  <path d='M " << left << ' ' << y << " H " << right << "' stroke='#c9d3dc'/>\n  <text x='"
              << left - 8 << "' y='" << y + 5 << "' text-anchor='end'>"
              << (decade == 0 ? "1" : "1e" + std::to_string(decade)) << "</text>\n";
  }
  for (int const steps : {10, 100, 1000, 10000, 100000}) {
    std::cout << "  <text x='" << ToX(steps) << "' y='" << bottom + 20 << "'>"
              << (steps < 10000 ? std::to_string(steps) : std::to_string(steps / 1000) + ",000")
              << "</text>\n";
  }
  std::cout << "  <text x='" << (left + right) / 2 << "' y='" << bottom + 42 << "'>products</text>\n";

  Errors const in_float = Measure<float>();
  Errors const in_double = Measure<double>();
  DrawCurve(in_float.stored, "float, stored", "stroke='#b83a2b'");
  DrawCurve(in_float.rebuilt, "float, rebuilt", "stroke='#b83a2b' stroke-dasharray='5 4'");
  DrawCurve(in_double.stored, "double, stored", "stroke='#2b5fa8'");
  DrawCurve(in_double.rebuilt, "double, rebuilt", "stroke='#2b5fa8' stroke-dasharray='5 4'");
  std::cout << "</svg>\n";
}

#pragma once

#include <cmath>
#include <limits>

namespace lum::test {

/// The rounds of regula falsi once more, step by step as they are documented: from two ends, each of which is
/// evaluated first, to the root, or to NaN where it is lost. What the function throws passes through.
template <class Function>
double FollowRegulaFalsi(Function const& i_function, double a, double b, double i_tolerance) {
  double fa = i_function(a);
  double fb = i_function(b);
  while (true) {
    double t = 0;
    if (std::fabs(fa) < std::numeric_limits<double>::infinity()) {
      t = (0 - fa) / (fb - fa);
    } else {
      t = (0 - fb) / (fb - fa) + 1;
    }
    double const x = b * t + (1 - t) * a;
    double const fx = i_function(x);
    if (fa * fx <= 0) {
      b = x;
      fb = fx;
    } else if (fx * fb <= 0) {
      a = x;
      fa = fx;
    } else {
      return std::nan("");
    }
    if (!(std::fabs(fx) > i_tolerance)) return x;
  }
}

}  // namespace lum::test

#include "geometry/RootFinding.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include "geometry/internal/StrictArithmetic.h"

namespace lum::RootFinding {

// The comparisons are written so that a NaN passes the checks and ends the iteration.
double RegulaFalsi(std::function<double(double)> const& i_function, Range<double> const& i_range,
                   double i_tolerance) {
  if (0.0 >= i_tolerance) {
    throw std::invalid_argument("[RootFinding] Cannot find a root with tolerance <= 0.0.");
  }
  if (i_range.IsEmpty()) throw std::invalid_argument("[RootFinding] Empty range given.");
  double const lower_value = i_function(i_range.GetLower());
  double const upper_value = i_function(i_range.GetUpper());
  if (lower_value * upper_value > 0) {
    throw std::invalid_argument(
        "[RootFinding] The function does not cross zero on the starting search interval.");
  }

  double a = i_range.GetLower();
  double b = i_range.GetUpper();
  double fa = i_function(a);
  double fb = i_function(b);
  for (;;) {
    double const t = std::abs(fa) < std::numeric_limits<double>::infinity() ? (0 - fa) / (fb - fa)
                                                                            : (0 - fb) / (fb - fa) + 1;
    double const x = b * t + (1 - t) * a;
    double const fx = i_function(x);
    if (fa * fx <= 0) {
      b = x;
      fb = fx;
    } else if (fx * fb <= 0) {
      a = x;
      fa = fx;
    } else {
      return std::numeric_limits<double>::quiet_NaN();
    }
    if (!(std::abs(fx) > i_tolerance)) return x;
  }
}

}  // namespace lum::RootFinding

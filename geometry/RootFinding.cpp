#include "geometry/RootFinding.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include "geometry/internal/StrictArithmetic.h"

namespace lum::RootFinding {

namespace {

// Two positions with the values there.
struct Bracket {
  double a;
  double b;
  double fa;
  double fb;

  // Where the straight line through the ends meets zero.
  double Estimate() const {
    double const t = std::abs(fa) < std::numeric_limits<double>::infinity() ? (0 - fa) / (fb - fa)
                                                                            : (0 - fb) / (fb - fa) + 1;
    return b * t + (1 - t) * a;
  }

  // Moves an end so that zero stays between the values. Returns false, and moves none, if neither can move.
  bool Narrow(double i_x, double i_value) {
    if (fa * i_value <= 0) {
      b = i_x;
      fb = i_value;
    } else if (i_value * fb <= 0) {
      a = i_x;
      fa = i_value;
    } else {
      return false;
    }
    return true;
  }
};

Bracket Evaluate(std::function<double(double)> const& i_function, Range<double> const& i_range) {
  double const fa = i_function(i_range.GetLower());
  double const fb = i_function(i_range.GetUpper());
  return {i_range.GetLower(), i_range.GetUpper(), fa, fb};
}

// The comparisons here and below are written so that a NaN passes the checks and ends the iteration.
void Check(Range<double> const& i_range, double i_tolerance) {
  if (0.0 >= i_tolerance) {
    throw std::invalid_argument("[RootFinding] Cannot find a root with tolerance <= 0.0.");
  }
  if (i_range.IsEmpty()) throw std::invalid_argument("[RootFinding] Empty range given.");
}

void RequireCrossing(Bracket const& i_bracket) {
  if (i_bracket.fa * i_bracket.fb > 0) {
    throw std::invalid_argument(
        "[RootFinding] The function does not cross zero on the starting search interval.");
  }
}

}  // namespace

double RegulaFalsi(std::function<double(double)> const& i_function, Range<double> const& i_range,
                   double i_tolerance) {
  Check(i_range, i_tolerance);
  RequireCrossing(Evaluate(i_function, i_range));
  Bracket bracket = Evaluate(i_function, i_range);
  for (;;) {
    double const x = bracket.Estimate();
    double const fx = i_function(x);
    if (!bracket.Narrow(x, fx)) return std::numeric_limits<double>::quiet_NaN();
    if (!(std::abs(fx) > i_tolerance)) return x;
  }
}

RegulaFalsiResult RegulaFalsiWithLimit(std::function<double(double)> const& i_function,
                                       Range<double> const& i_range, double i_tolerance,
                                       int i_max_evaluations) {
  Check(i_range, i_tolerance);
  if (i_max_evaluations < 2) {
    throw std::invalid_argument("[RootFinding] The search needs at least two evaluations.");
  }
  Bracket bracket = Evaluate(i_function, i_range);
  RequireCrossing(bracket);
  int evaluations = 2;
  while (evaluations < i_max_evaluations) {
    double const x = bracket.Estimate();
    if (std::isnan(x)) break;
    double const fx = i_function(x);
    ++evaluations;
    if (!bracket.Narrow(x, fx)) break;
    if (std::abs(fx) <= i_tolerance) return {x, {bracket.a, bracket.b}, evaluations, true};
  }
  bool const is_upper_better = std::abs(bracket.fb) < std::abs(bracket.fa) || std::isnan(bracket.fa);
  auto const [root, value] =
      is_upper_better ? std::pair(bracket.b, bracket.fb) : std::pair(bracket.a, bracket.fa);
  return {root, {bracket.a, bracket.b}, evaluations, std::abs(value) <= i_tolerance};
}

}  // namespace lum::RootFinding

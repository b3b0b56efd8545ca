#pragma once

#include <functional>

#include "geometry/Range.h"
#include "geometry/internal/Export.h"

namespace lum::RootFinding {

/// A zero of a function inside a bracketing interval, by the method of false position (regula falsi).
///
/// Let a, b be the ends and fa, fb the values there. Each iteration computes t = (0 - fa) / (fb - fa), or
/// t = (0 - fb) / (fb - fa) + 1 if fa is not finite, and evaluates the function at x = b t + (1 - t) a. x
/// replaces b if fa f(x) <= 0, else a if f(x) fb <= 0. The other end keeps its value (Press et al., Numerical
/// Recipes, 9.2), so the iteration converges slowly, from one side, if the function is strongly convex.
///
/// The iteration ends when |f(x)| <= tolerance. The width of the interval is not tested, and the number of
/// iterations is not limited. The iteration may never end
/// - if rounding keeps the function from reaching the tolerance,
/// - at a pole or a jump across zero,
/// - if the function is infinite at an end,
/// - if an estimate or a value at an end is NaN, and the function gives numbers for a NaN. An estimate is NaN
///   if the ends are equal, or if the values at both ends are infinite.
/// `RegulaFalsiWithLimit` always ends.
///
/// Safe from any thread if the function is.
///
/// \param i_function   a pure function: it is called twice at each end before the first iteration
/// \param i_range      the interval; its ends may be equal
/// \param i_tolerance  above 0, for the absolute value of the function; a NaN ends the first iteration
/// \returns the last x, or a quiet NaN if neither product is <= 0: if the value is NaN, if a zero meets an
///          infinity, or if values of the same sign at the ends were accepted because their product is 0
/// \throws std::invalid_argument  if the tolerance is 0 or less, if the range is empty, or if the values
///          at the ends have the same sign, tested in this order. An empty function throws
///          `std::bad_function_call` after the first two tests. Exceptions of the function are passed on.
LUM_EXPORT double RegulaFalsi(std::function<double(double)> const& i_function, Range<double> const& i_range,
                              double i_tolerance);

/// The result of `RegulaFalsiWithLimit`.
struct RegulaFalsiResult {
  /// The last estimate if |f| reached the tolerance there, else the end of the bracket with the lesser |f|,
  /// or the end where f is not NaN.
  double root;
  /// The last bracket. The product of the values at its ends is not above 0.
  Range<double> bracket;
  /// How many times the function was called.
  int evaluations;
  /// Whether |f(root)| <= tolerance.
  bool converged;
};

/// The same search, with a limit. It evaluates each end once, and then the same estimates.
///
/// It gives up when the limit is reached, before an estimate that is NaN, and after a value at which
/// `RegulaFalsi` returns NaN. The result then has the last bracket, which no such value has entered. The
/// search may give up with the range itself, for example if a value at an end is NaN.
///
/// Safe from any thread if the function is.
///
/// \param i_function         a pure function
/// \param i_range            the interval; its ends may be equal
/// \param i_tolerance        above 0, for the absolute value of the function; a NaN is never reached
/// \param i_max_evaluations  2 or more: the limit on the calls of the function, including those at the ends
/// \throws std::invalid_argument  as `RegulaFalsi`, and for a limit below 2 before the function is called
LUM_EXPORT RegulaFalsiResult RegulaFalsiWithLimit(std::function<double(double)> const& i_function,
                                                  Range<double> const& i_range, double i_tolerance,
                                                  int i_max_evaluations);

}  // namespace lum::RootFinding

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
/// iterations is not limited. The iteration may never end if rounding keeps the function from reaching the
/// tolerance, or if the function is infinite at an end.
///
/// Safe from any thread if the function is.
///
/// \param i_function   a pure function: it is called twice at each end before the first iteration
/// \param i_range      the interval; its ends may be equal
/// \param i_tolerance  above 0, for the absolute value of the function; a NaN ends the first iteration
/// \returns the last x, or a quiet NaN if neither product is <= 0, which happens only when a value is NaN.
///          Equal ends at a zero also give NaN, since t is 0 / 0.
/// \throws std::invalid_argument  if the tolerance is 0 or less, if the range is empty, or if the values
///          at the ends have the same sign, tested in this order. An empty function throws
///          `std::bad_function_call` after the first two tests. Exceptions of the function are passed on.
LUM_EXPORT double RegulaFalsi(std::function<double(double)> const& i_function, Range<double> const& i_range,
                              double i_tolerance);

}  // namespace lum::RootFinding

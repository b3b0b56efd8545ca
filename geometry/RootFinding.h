#pragma once

#include <functional>

#include "geometry/Range.h"
#include "geometry/internal/Export.h"

namespace lum::RootFinding {

/// A zero of a function inside a bracketing interval, by the method of false position (regula falsi).
///
/// With a, b the ends and fa, fb the values there, each round takes t = (0 - fa) / (fb - fa), or
/// (0 - fb) / (fb - fa) + 1 when fa is infinite, and evaluates the function at x = b t + (1 - t) a. x
/// replaces b when fa f(x) <= 0, else a when f(x) fb <= 0. It is plain false position: the end that stays
/// keeps its value, so a strongly convex function converges slowly, from one side. (Press et al., Numerical
/// Recipes, 9.2.)
///
/// The rounds end as soon as |f(x)| <= tolerance; the width of the interval is not looked at, and their
/// number is not bounded. A tolerance that rounding keeps the function from reaching, or an end at which it
/// is infinite, can keep them going for ever.
///
/// Safe from any thread if the function is.
///
/// \param i_function   must be pure: it is called twice at each end before the first round
/// \param i_range      the interval, whose ends may be equal
/// \param i_tolerance  for the absolute value of the function, above 0; a NaN ends after the first round
/// \returns the last x, or a quiet NaN when neither product of signs is <= 0, which takes a NaN among the
///          values. An interval of equal ends at a zero gives NaN too, as t is 0 / 0.
/// \throws std::invalid_argument  when the tolerance is 0 or less, when the range is empty, and when the
///          values at its ends have the same sign, in this order. An empty function throws
///          `std::bad_function_call` behind the first two; what the function throws passes through.
LUM_EXPORT double RegulaFalsi(std::function<double(double)> const& i_function, Range<double> const& i_range,
                              double i_tolerance);

}  // namespace lum::RootFinding

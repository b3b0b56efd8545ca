#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

/// The conditions that define regula falsi, checked on the record of a search. Nothing here runs a search.
namespace lum::test::regula_falsi {

/// One call of the function whose zero is searched.
struct Evaluation {
  double x;
  double value;
};

/// The calls of a search, in order, and what it returned.
struct Record {
  std::vector<Evaluation> evaluations;
  double result = 0;
  bool is_cut_off = false;  ///< the function threw instead of giving a value
};

/// Whether two numbers have the same bits, or both are NaN: the sign of a zero counts, that of a NaN does
/// not.
inline bool AreSame(double i_a, double i_b) {
  return std::bit_cast<std::uint64_t>(i_a) == std::bit_cast<std::uint64_t>(i_b) ||
         (std::isnan(i_a) && std::isnan(i_b));
}

// Arithmetic of 113 bits. A result rounded to double is the correctly rounded result for doubles, however the
// compiler contracts expressions: with 2 * 53 + 2 bits or more, the first rounding does not change the
// second.
__extension__ using Wide = __float128;

inline double Round(Wide i_exact) { return static_cast<double>(i_exact); }
inline double Add(double i_a, double i_b) { return Round(static_cast<Wide>(i_a) + static_cast<Wide>(i_b)); }
inline double Multiply(double i_a, double i_b) {
  return Round(static_cast<Wide>(i_a) * static_cast<Wide>(i_b));
}
inline double Divide(double i_a, double i_b) {
  return Round(static_cast<Wide>(i_a) / static_cast<Wide>(i_b));
}

/// Whether zero lies between two values of the function, or one of them is zero. This holds too where their
/// product underflows, as half of the least double rounds to 0. It does not hold for NaNs, and for zero and
/// infinity, whose product is a NaN.
inline bool AreAcrossZero(double i_a, double i_b) {
  if (std::isnan(i_a) || std::isnan(i_b)) return false;
  if (i_a == 0) return !std::isinf(i_b);
  if (i_b == 0) return !std::isinf(i_a);
  if (std::signbit(i_a) != std::signbit(i_b)) return true;
  Wide const half_of_least = static_cast<Wide>(std::numeric_limits<double>::denorm_min()) / 2;
  return static_cast<Wide>(i_a) * static_cast<Wide>(i_b) <= half_of_least;
}

/// Where the straight line through the ends of a bracket meets zero: the mean of the ends, weighted as
/// documented.
inline double MeetZero(Evaluation const& i_lower, Evaluation const& i_upper) {
  double const rise = Add(i_upper.value, -i_lower.value);
  double const weight = std::isfinite(i_lower.value) ? Divide(Add(0, -i_lower.value), rise)
                                                     : Add(1, Divide(Add(0, -i_upper.value), rise));
  return Add(Multiply(weight, i_upper.x), Multiply(Add(1, -weight), i_lower.x));
}

/// The first condition that the record of a search violates, or an empty text. The conditions:
///
/// 1. The search evaluates both ends of the interval twice, then one estimate in each round.
/// 2. Each end of the bracket is the last estimate on its side of the zero, or else the end of the interval.
///    The upper side is across zero from the lower end of the bracket.
/// 3. An estimate is the point where the line through the ends of the bracket meets zero.
/// 4. The first estimate that is on neither side is the last, and the result is a NaN.
/// 5. The first estimate whose value is not above the tolerance is the last, and the result is that estimate.
inline std::string FindViolation(Record const& i_record, double i_lower, double i_upper, double i_tolerance) {
  std::vector<Evaluation> const& all = i_record.evaluations;
  auto const say = [](std::size_t i_call, char const* i_what) {
    return "call " + std::to_string(i_call) + ' ' + i_what;
  };
  char const* const ends_early = i_record.is_cut_off ? "" : "the search ends too early";

  std::array<double, 4> const ends = {i_lower, i_upper, i_lower, i_upper};
  for (std::size_t call = 0; call < ends.size(); ++call) {
    if (call == all.size()) return ends_early;
    if (!AreSame(all[call].x, ends[call])) return say(call, "is not at the end of the interval");
  }
  Evaluation lower = all[2];
  Evaluation upper = all[3];
  for (std::size_t call = 4; call < all.size(); ++call) {
    Evaluation const& estimate = all[call];
    if (!AreSame(estimate.x, MeetZero(lower, upper))) return say(call, "is not where the line meets zero");
    bool const is_on_upper_side = AreAcrossZero(lower.value, estimate.value);
    bool const is_on_a_side = is_on_upper_side || AreAcrossZero(upper.value, estimate.value);
    if (!is_on_a_side || !(std::abs(estimate.value) > i_tolerance)) {
      if (call + 1 != all.size() || i_record.is_cut_off) return say(call, "should have been the last");
      double const expected = is_on_a_side ? estimate.x : std::numeric_limits<double>::quiet_NaN();
      return AreSame(i_record.result, expected) ? "" : "the result is not that of the last estimate";
    }
    (is_on_upper_side ? upper : lower) = estimate;
  }
  return ends_early;
}

}  // namespace lum::test::regula_falsi

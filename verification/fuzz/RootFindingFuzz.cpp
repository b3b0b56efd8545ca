// RegulaFalsi with arbitrary cubics, jumps, ranges and tolerances, against the conditions that define its
// estimates. RegulaFalsiWithLimit with the same, against RegulaFalsi.

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Bytes.h"
#include "geometry/RootFinding.h"
#include "tests/support/RegulaFalsi.h"

namespace {

// More calls than are of interest: false position may never end.
struct TooLong {};
constexpr std::size_t most_calls = 300;

struct Curve {
  double c0;
  double c1;
  double c3;
  double jump_at;
  double behind_jump;

  double operator()(double i_x) const {
    return i_x == jump_at ? behind_jump : (c3 * i_x * i_x + c1) * i_x + c0;
  }
};

enum class Outcome { kRoot, kTolerance, kRange, kNoCrossing };

struct Run {
  lum::test::regula_falsi::Record record;
  Outcome outcome = Outcome::kRoot;
};

Run Search(Curve const& i_curve, double i_lower, double i_upper, double i_tolerance) {
  Run run;
  auto const recorded = [&](double i_x) {
    if (run.record.evaluations.size() == most_calls) throw TooLong();
    run.record.evaluations.push_back({i_x, i_curve(i_x)});
    return run.record.evaluations.back().value;
  };
  try {
    run.record.result = lum::RootFinding::RegulaFalsi(recorded, {i_lower, i_upper}, i_tolerance);
  } catch (TooLong const&) {
    run.record.is_cut_off = true;
  } catch (std::invalid_argument const& exception) {
    std::string_view const text = exception.what();
    if (text == "[RootFinding] Cannot find a root with tolerance <= 0.0.") {
      run.outcome = Outcome::kTolerance;
    } else if (text == "[RootFinding] Empty range given.") {
      run.outcome = Outcome::kRange;
    } else {
      lum::test::Require(
          text == "[RootFinding] The function does not cross zero on the starting search interval.",
          "a message");
      run.outcome = Outcome::kNoCrossing;
    }
  }
  return run;
}

// Whether the product of two values is above zero; that of zero and infinity is a NaN.
bool AreOnOneSide(double i_a, double i_b) {
  bool const has_sign = !std::isnan(i_a) && !std::isnan(i_b) && i_a != 0 && i_b != 0;
  return has_sign && !lum::test::regula_falsi::AreAcrossZero(i_a, i_b);
}

Outcome ExpectOutcome(Curve const& i_curve, double i_lower, double i_upper, double i_tolerance) {
  if (0.0 >= i_tolerance) return Outcome::kTolerance;
  if (i_lower > i_upper) return Outcome::kRange;
  return AreOnOneSide(i_curve(i_lower), i_curve(i_upper)) ? Outcome::kNoCrossing : Outcome::kRoot;
}

// The search with a limit evaluates each end once, then the estimates of the search without one, as far as
// these are numbers and the limit allows. It finds the same root or gives up with the bracket of its last
// estimates.
void RequireTheSameWithLimit(Curve const& i_curve, Run const& i_run, double i_lower, double i_upper,
                             double i_tolerance, std::size_t i_limit) {
  using lum::test::regula_falsi::AreSame;
  std::vector<double> evaluated;
  auto const recorded = [&](double i_x) {
    evaluated.push_back(i_x);
    return i_curve(i_x);
  };
  auto const result = lum::RootFinding::RegulaFalsiWithLimit(recorded, {i_lower, i_upper}, i_tolerance,
                                                             static_cast<int>(i_limit));
  lum::test::Require(result.evaluations == static_cast<int>(evaluated.size()), "the number of evaluations");
  lum::test::Require(evaluated.size() >= 2 && evaluated.size() <= i_limit, "the limit");
  // The first two calls without limit are those that are repeated.
  auto const& all = i_run.record.evaluations;
  for (std::size_t i = 0; i < evaluated.size(); ++i) {
    lum::test::Require(i + 2 >= all.size() || AreSame(evaluated[i], all[i + 2].x), "the estimates");
  }
  bool const ends = !i_run.record.is_cut_off && all.size() - 2 <= i_limit;
  if (ends && !std::isnan(i_tolerance)) {
    bool const finds = !std::isnan(i_run.record.result);
    lum::test::Require(!finds || AreSame(result.root, i_run.record.result), "the root");
  }
  lum::test::Require(result.converged == (std::abs(i_curve(result.root)) <= i_tolerance),
                     "whether the search converges");
  double const lower = result.bracket.GetLower();
  double const upper = result.bracket.GetUpper();
  auto const is_evaluated = [&](double i_end) {
    return std::any_of(evaluated.begin(), evaluated.end(), [&](double i_x) { return AreSame(i_x, i_end); });
  };
  lum::test::Require(is_evaluated(lower) && is_evaluated(upper), "ends that were evaluated");
  bool const is_moved = !AreSame(lower, i_lower) || !AreSame(upper, i_upper);
  lum::test::Require(!is_moved || !AreOnOneSide(i_curve(lower), i_curve(upper)), "the bracket");
  lum::test::Require(AreSame(result.root, lower) || AreSame(result.root, upper), "a root at an end");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* ip_data, std::size_t i_size) {
  lum::test::Bytes bytes(ip_data, i_size);
  bool const is_plain = bytes.TakeFlag();
  // Small numbers make functions that cross zero; arbitrary bits make NaNs, infinities, overflow and
  // underflow.
  auto const take = [&] { return is_plain ? bytes.Take<std::int8_t>() / 8.0 : bytes.Take<double>(); };
  Curve const curve = {take(), take(), take(), take(), take()};
  double const lower = take();
  double const upper = take();
  double const tolerance = take();
  Run const run = Search(curve, lower, upper, tolerance);
  lum::test::Require(run.outcome == ExpectOutcome(curve, lower, upper, tolerance), "the outcome");
  if (run.outcome == Outcome::kRoot) {
    std::string const violation = lum::test::regula_falsi::FindViolation(run.record, lower, upper, tolerance);
    lum::test::Require(violation.empty(), violation.c_str());
    std::size_t const limit = 2 + bytes.TakeIndex(64);
    RequireTheSameWithLimit(curve, run, lower, upper, tolerance, limit);
  } else {
    std::size_t const calls = run.outcome == Outcome::kNoCrossing ? 2 : 0;
    lum::test::Require(run.record.evaluations.size() == calls, "the number of calls before a refusal");
  }
  return 0;
}

// RegulaFalsi with arbitrary cubics, jumps, ranges and tolerances, against the method written out.

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "Bytes.h"
#include "geometry/RootFinding.h"
#include "tests/support/RegulaFalsi.h"

namespace {

// More rounds than are of interest: false position may take for ever.
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

enum class Outcome { kRoot, kTolerance, kRange, kNoCrossing, kTooLong };

struct Run {
  std::vector<double> evaluated;
  Outcome outcome = Outcome::kRoot;
  double root = 0;
};

// What the curve gives, noted in the run, until it is too long.
auto Record(Curve const& i_curve, Run& io_run) {
  return [&i_curve, &io_run](double i_x) {
    if (io_run.evaluated.size() == most_calls) throw TooLong();
    io_run.evaluated.push_back(i_x);
    return i_curve(i_x);
  };
}

Run RunLibrary(Curve const& i_curve, double i_lower, double i_upper, double i_tolerance) {
  Run run;
  try {
    run.root = lum::RootFinding::RegulaFalsi(Record(i_curve, run), {i_lower, i_upper}, i_tolerance);
  } catch (TooLong const&) {
    run.outcome = Outcome::kTooLong;
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

Run RunMethod(Curve const& i_curve, double i_lower, double i_upper, double i_tolerance) {
  if (0.0 >= i_tolerance) return {{}, Outcome::kTolerance, 0};
  if (i_lower > i_upper) return {{}, Outcome::kRange, 0};
  Run run{{i_lower, i_upper}};
  if (i_curve(i_lower) * i_curve(i_upper) > 0) {
    run.outcome = Outcome::kNoCrossing;
    return run;
  }
  try {
    run.root = lum::test::FollowRegulaFalsi(Record(i_curve, run), i_lower, i_upper, i_tolerance);
  } catch (TooLong const&) {
    run.outcome = Outcome::kTooLong;
  }
  return run;
}

bool AreSame(double i_a, double i_b) { return i_a == i_b || (std::isnan(i_a) && std::isnan(i_b)); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* ip_data, std::size_t i_size) {
  lum::test::Bytes bytes(ip_data, i_size);
  bool const is_plain = bytes.TakeFlag();
  // Small numbers are what crosses zero; arbitrary bits are what breaks things.
  auto const take = [&] { return is_plain ? bytes.Take<std::int8_t>() / 8.0 : bytes.Take<double>(); };
  Curve const curve = {take(), take(), take(), take(), take()};
  double const lower = take();
  double const upper = take();
  double const tolerance = take();
  Run const run = RunLibrary(curve, lower, upper, tolerance);
  Run const expected = RunMethod(curve, lower, upper, tolerance);
  lum::test::Require(run.outcome == expected.outcome, "the outcome");
  lum::test::Require(run.evaluated.size() == expected.evaluated.size(), "the number of calls");
  for (std::size_t i = 0; i < run.evaluated.size(); ++i) {
    lum::test::Require(AreSame(run.evaluated[i], expected.evaluated[i]), "an iterate");
  }
  lum::test::Require(AreSame(run.root, expected.root), "the root");
  return 0;
}

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <functional>
#include <limits>
#include <numbers>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include "geometry/RootFinding.h"
#include "tests/support/RegulaFalsi.h"
#include "tests/support/Throws.h"

namespace lum::RootFinding {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
double const nan = std::nan("");

char const* const no_tolerance = "[RootFinding] Cannot find a root with tolerance <= 0.0.";
char const* const empty_range = "[RootFinding] Empty range given.";
char const* const no_crossing =
    "[RootFinding] The function does not cross zero on the starting search interval.";

using Function = std::function<double(double)>;

// What a call evaluated, in order, and what it returned.
struct Trace {
  std::vector<double> evaluated;
  double root;
};

Trace Record(Function const& i_function, Range<double> const& i_range, double i_tolerance) {
  Trace trace{{}, 0};
  auto const recorded = [&](double i_x) {
    trace.evaluated.push_back(i_x);
    return i_function(i_x);
  };
  trace.root = RegulaFalsi(recorded, i_range, i_tolerance);
  return trace;
}

// The same of the method written out.
Trace Expect(Function const& i_function, double i_lower, double i_upper, double i_tolerance) {
  Trace trace{{i_lower, i_upper}, 0};
  auto const recorded = [&](double i_x) {
    trace.evaluated.push_back(i_x);
    return i_function(i_x);
  };
  trace.root = test::FollowRegulaFalsi(recorded, i_lower, i_upper, i_tolerance);
  return trace;
}

bool AreSameBits(std::vector<double> const& i_a, std::vector<double> const& i_b) {
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): bytes are what is asked for
  return i_a.size() == i_b.size() && std::memcmp(i_a.data(), i_b.data(), i_a.size() * sizeof(double)) == 0;
}

void ExpectSameTrace(Function const& i_function, double i_lower, double i_upper, double i_tolerance) {
  SCOPED_TRACE(testing::Message() << "on " << i_lower << " to " << i_upper);
  Trace const trace = Record(i_function, {i_lower, i_upper}, i_tolerance);
  Trace const expected = Expect(i_function, i_lower, i_upper, i_tolerance);
  EXPECT_TRUE(AreSameBits(trace.evaluated, expected.evaluated))
      << trace.evaluated.size() << " evaluations, expected " << expected.evaluated.size();
  EXPECT_TRUE(trace.root == expected.root || (std::isnan(trace.root) && std::isnan(expected.root)));
}

TEST(RootFinding, ALineIsHitByTheFirstSecant) {
  Trace const trace = Record([](double i_x) { return i_x - 1; }, {0, 3}, 1e-12);
  EXPECT_NEAR(trace.root, 1, 1e-15);
  EXPECT_EQ(trace.evaluated.size(), 5U);
}

TEST(RootFinding, CallsTheFunctionTwiceAtEachEnd) {
  Trace const trace = Record([](double i_x) { return i_x - 1; }, {0, 4}, 1e-12);
  EXPECT_EQ(trace.evaluated, (std::vector<double>{0, 4, 0, 4, 1}));
}

TEST(RootFinding, TheRootOfTwoIsApproachedFromBelowWithTheUpperEndFixed) {
  Trace const trace = Record([](double i_x) { return i_x * i_x - 2; }, {0, 2}, 1e-12);
  EXPECT_NEAR(trace.root, std::numbers::sqrt2, 1e-12);
  ASSERT_GT(trace.evaluated.size(), 10U);
  double a = 0;
  for (std::size_t round = 4; round < trace.evaluated.size(); ++round) {
    double const x = trace.evaluated[round];
    EXPECT_GT(x, a);
    EXPECT_LT(x, std::numbers::sqrt2 + 1e-15);
    EXPECT_NEAR(x, a + (2 - a) * (2 - a * a) / (4 - a * a), 1e-15) << "the secant through (2, 2)";
    a = x;
  }
}

TEST(RootFinding, TheIteratesAreThoseOfTheMethod) {
  ExpectSameTrace([](double i_x) { return i_x * i_x - 2; }, 0, 2, 1e-12);
  ExpectSameTrace([](double i_x) { return 2 - i_x * i_x; }, 0, 2, 1e-12);
  ExpectSameTrace([](double i_x) { return std::cos(i_x) - i_x; }, -1, 3, 1e-14);
  ExpectSameTrace([](double i_x) { return std::exp(i_x) - 5; }, -4, 4, 1e-9);
  ExpectSameTrace([](double i_x) { return std::atan(i_x - 0.3); }, -8, 5, 1e-13);
  ExpectSameTrace([](double i_x) { return i_x < 0.5 ? -1.0 : 1e-3; }, 0, 1, 1e-2);
}

TEST(RootFinding, TheIteratesAreThoseOfTheMethodOnRandomCubics) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> number(-2, 2);
  int compared = 0;
  for (int round = 0; round < 2000; ++round) {
    double const c0 = number(random);
    double const c1 = number(random);
    double const c2 = number(random);
    Function const cubic = [=](double i_x) { return ((i_x + c2) * i_x + c1) * i_x + c0; };
    double const lower = number(random) - 2;
    double const upper = number(random) + 2;
    if (cubic(lower) * cubic(upper) > 0) continue;
    ++compared;
    ExpectSameTrace(cubic, lower, upper, 1e-6);
  }
  EXPECT_GT(compared, 500);
}

TEST(RootFinding, AZeroAtTheLowerEndIsReturnedAfterOneRound) {
  Trace const trace = Record([](double i_x) { return i_x - 2; }, {2, 5}, 1e-12);
  EXPECT_EQ(trace.root, 2);
  EXPECT_EQ(trace.evaluated, (std::vector<double>{2, 5, 2, 5, 2}));
}

TEST(RootFinding, AZeroAtTheUpperEndIsReturnedAfterOneRound) {
  Trace const trace = Record([](double i_x) { return i_x - 5; }, {2, 5}, 1e-12);
  EXPECT_EQ(trace.root, 5);
  EXPECT_EQ(trace.evaluated, (std::vector<double>{2, 5, 2, 5, 5}));
}

TEST(RootFinding, TheValueDecidesWhenToStopNotTheInterval) {
  Trace const loose = Record([](double i_x) { return i_x * i_x * i_x - 1; }, {0, 3}, 0.9);
  EXPECT_LE(std::abs(loose.root * loose.root * loose.root - 1), 0.9);
  EXPECT_GT(std::abs(loose.root - 1), 0.01) << "far from the root, and near enough in value";
  Trace const at_once = Record([](double i_x) { return i_x * i_x * i_x - 1; }, {0, 3}, 1);
  EXPECT_EQ(at_once.evaluated.size(), 5U);
}

TEST(RootFinding, AValueOfExactlyTheToleranceStops) {
  // The first secant from (-1, -3) to (3, 1) meets 0 at 2, where the value is the tolerance.
  Function const steps = [](double i_x) { return i_x < 0 ? -3.0 : i_x < 2.5 ? 0.25 : 1.0; };
  EXPECT_EQ(Record(steps, {-1, 3}, 0.25).evaluated, (std::vector<double>{-1, 3, -1, 3, 2}));
}

TEST(RootFinding, RefusesATolerance) {
  Function const line = [](double i_x) { return i_x; };
  for (double const tolerance : {0.0, -0.0, -1.0, -infinity}) {
    EXPECT_TRUE(test::Throws<std::invalid_argument>(
        [&] {
          RegulaFalsi(line, {-1, 1}, tolerance);
        },
        no_tolerance));
    EXPECT_TRUE(test::Throws<std::invalid_argument>(
        [&] {
          RegulaFalsi(line, {1, -1}, tolerance);
        },
        no_tolerance))
        << "before the range is looked at";
  }
}

TEST(RootFinding, RefusesAnEmptyRangeBeforeItCallsAnything) {
  EXPECT_TRUE(test::Throws<std::invalid_argument>([] { RegulaFalsi(nullptr, {1, -1}, 1e-9); }, empty_range));
  int calls = 0;
  auto const counting = [&calls](double i_x) {
    ++calls;
    return i_x;
  };
  EXPECT_TRUE(test::Throws<std::invalid_argument>(
      [&] {
        RegulaFalsi(counting, {1, -1}, 1e-9);
      },
      empty_range));
  EXPECT_EQ(calls, 0);
}

TEST(RootFinding, RefusesEndsOfTheSameSign) {
  auto const expect_refusal = [](double i_lower_value, double i_upper_value) {
    std::vector<double> evaluated;
    auto const step = [&](double i_x) {
      evaluated.push_back(i_x);
      return i_x < 0 ? i_lower_value : i_upper_value;
    };
    EXPECT_TRUE(test::Throws<std::invalid_argument>([&] { RegulaFalsi(step, {-1, 1}, 1e-9); }, no_crossing));
    EXPECT_EQ(evaluated, (std::vector<double>{-1, 1})) << "once at each end";
  };
  expect_refusal(1, 2);
  expect_refusal(-1, -2);
  expect_refusal(infinity, 1);
  expect_refusal(-infinity, -infinity);
}

TEST(RootFinding, ProductsThatUnderflowToZeroPassForACrossing) {
  // 1e-200 times 1e-200 is 0: the first round takes t = -1/0.
  EXPECT_TRUE(std::isnan(RegulaFalsi([](double i_x) { return i_x == i_x ? 1e-200 : nan; }, {0, 1}, 1e-300)));
}

// Gives these values one after the other, whatever it is asked for.
Function Script(std::vector<double> i_values) {
  return [values = std::move(i_values), next = std::size_t{0}](double) mutable { return values.at(next++); };
}

// The product of the values at the lower end and at the estimate underflows: the upper end moves, both ends
// have the same value then, and the next estimate is no number.
TEST(RootFinding, AProductThatUnderflowsMovesTheUpperEnd) {
  Trace const trace = Record(Script({1e-200, -1e-200, 1e-200, -1e-200, 1e-200, 0}), {0, 1}, 1e-250);
  ASSERT_EQ(trace.evaluated.size(), 6U);
  EXPECT_EQ(trace.evaluated[4], 0.5);
  EXPECT_TRUE(std::isnan(trace.evaluated[5]));
}

// With the first product just above underflow and the second below, the lower end moves.
TEST(RootFinding, AProductWithTheUpperEndThatUnderflowsMovesTheLowerEnd) {
  Trace const trace = Record(Script({2e-162, -1e-162, 2e-162, -1e-162, 2e-162, 0}), {0, 3}, 1e-250);
  ASSERT_EQ(trace.evaluated.size(), 6U);
  EXPECT_DOUBLE_EQ(trace.evaluated[4], 2);
  EXPECT_DOUBLE_EQ(trace.evaluated[5], 2 + 2.0 / 3);
}

// The values that count are those of the second evaluation at each end. Where they have the sign of the
// estimate, however small their product, there is no root to be found.
TEST(RootFinding, EndsThatBothHaveTheSignOfTheEstimateGiveNaN) {
  Trace const trace = Record(Script({1, -1, 1, 2, 0.25}), {0, 1}, 1e-3);
  EXPECT_TRUE(std::isnan(trace.root));
  EXPECT_EQ(trace.evaluated.size(), 5U);
}

TEST(RootFinding, AZeroOfTheUpperEndAloneMovesTheLowerEnd) {
  Trace const trace = Record(Script({1, 0, 1, 0, 1, 0}), {0, 1}, 1e-3);
  EXPECT_EQ(trace.evaluated.size(), 6U);
}

TEST(RootFinding, AnEmptyFunctionThrowsAtItsFirstCall) {
  EXPECT_THROW(RegulaFalsi(nullptr, {0, 1}, 1e-9), std::bad_function_call);
  EXPECT_TRUE(test::Throws<std::invalid_argument>([] { RegulaFalsi(nullptr, {0, 1}, 0); }, no_tolerance));
}

TEST(RootFinding, WhatTheFunctionThrowsPassesThrough) {
  for (int last_call = 1; last_call <= 6; ++last_call) {
    int calls = 0;
    auto const fails = [&](double i_x) {
      if (++calls == last_call) throw std::out_of_range("not here");
      return i_x * i_x - 2;
    };
    EXPECT_TRUE(test::Throws<std::out_of_range>([&] { RegulaFalsi(fails, {0, 2}, 1e-9); }, "not here"));
    EXPECT_EQ(calls, last_call);
  }
}

TEST(RootFinding, EqualEndsAwayFromAZeroAreRefused) {
  EXPECT_TRUE(test::Throws<std::invalid_argument>(
      [] {
        RegulaFalsi([](double i_x) { return i_x - 1; }, {2, 2}, 1e-9);
      },
      no_crossing));
}

TEST(RootFinding, EqualEndsAtAZeroGiveNaN) {
  Trace const trace = Record([](double i_x) { return i_x - 2; }, {2, 2}, 1e-9);
  EXPECT_TRUE(std::isnan(trace.root));
  ASSERT_EQ(trace.evaluated.size(), 5U);
  EXPECT_TRUE(std::isnan(trace.evaluated.back())) << "t is 0 / 0";
}

TEST(RootFinding, ANaNToleranceStopsAfterOneRound) {
  Trace const trace = Record([](double i_x) { return i_x * i_x - 2; }, {0, 2}, nan);
  EXPECT_EQ(trace.evaluated, (std::vector<double>{0, 2, 0, 2, 1}));
  EXPECT_EQ(trace.root, 1);
}

TEST(RootFinding, AnInfiniteToleranceStopsAfterOneRound) {
  EXPECT_EQ(RegulaFalsi([](double i_x) { return i_x * i_x - 2; }, {0, 2}, infinity), 1);
}

TEST(RootFinding, ANaNAtEitherEndPassesTheChecksAndGivesNaN) {
  Trace const lower = Record([](double i_x) { return i_x == 0 ? nan : i_x; }, {0, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(lower.root));
  EXPECT_EQ(lower.evaluated.size(), 5U);
  Trace const upper = Record([](double i_x) { return i_x == 1 ? nan : i_x - 0.5; }, {0, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(upper.root));
  EXPECT_EQ(upper.evaluated.size(), 5U);
}

TEST(RootFinding, ANaNInsideGivesNaN) {
  Trace const trace = Record([](double i_x) { return i_x == 0.5 ? nan : i_x - 0.5; }, {0, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(trace.root));
  EXPECT_EQ(trace.evaluated, (std::vector<double>{0, 1, 0, 1, 0.5}));
}

TEST(RootFinding, AnEndOfNaNMakesEverythingNaN) {
  Trace const trace = Record([](double i_x) { return i_x; }, {nan, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(trace.root));
  EXPECT_EQ(trace.evaluated.size(), 5U);
}

TEST(RootFinding, AnInfiniteValueAtTheLowerEndTakesTheOtherForm) {
  // t = (0 - 3) / (3 - -infinity) + 1 is 1, so x is the upper end, where the value is small enough.
  Function const step = [](double i_x) { return i_x == 0 ? -infinity : 3; };
  Trace const trace = Record(step, {0, 1}, 3);
  EXPECT_EQ(trace.evaluated, (std::vector<double>{0, 1, 0, 1, 1}));
  EXPECT_EQ(trace.root, 1);
  ExpectSameTrace(step, 0, 1, 3);
}

TEST(RootFinding, AnInfiniteValueAtTheUpperEndKeepsToTheLower) {
  // t = 1 / infinity is 0, so x is the lower end, where the value is small enough.
  Function const step = [](double i_x) { return i_x == 1 ? infinity : -1; };
  Trace const trace = Record(step, {0, 1}, 1);
  EXPECT_EQ(trace.evaluated, (std::vector<double>{0, 1, 0, 1, 0}));
  EXPECT_EQ(trace.root, 0);
}

TEST(RootFinding, InfiniteValuesAtBothEndsGiveNaN) {
  // t = -infinity / infinity.
  Trace const trace = Record([](double i_x) { return i_x == 0 ? -infinity : infinity * i_x; }, {0, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(trace.root));
  EXPECT_EQ(trace.evaluated.size(), 5U);
}

TEST(RootFinding, AnInfiniteRangeGivesNaN) {
  // 1 - t times an infinite end, with t = 0 or with both ends infinite.
  EXPECT_TRUE(
      std::isnan(RegulaFalsi([](double i_x) { return std::atan(i_x); }, {-infinity, infinity}, 1e-9)));
}

}  // namespace
}  // namespace lum::RootFinding

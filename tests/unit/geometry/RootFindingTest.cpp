#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
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

using test::regula_falsi::Record;

// Runs a search and records its calls.
Record Search(Function const& i_function, Range<double> const& i_range, double i_tolerance) {
  Record record;
  auto const recorded = [&](double i_x) {
    double const value = i_function(i_x);
    record.evaluations.push_back({i_x, value});
    return value;
  };
  record.result = RegulaFalsi(recorded, i_range, i_tolerance);
  return record;
}

std::vector<double> GetEvaluated(Record const& i_record) {
  std::vector<double> evaluated;
  for (auto const& [x, value] : i_record.evaluations) evaluated.push_back(x);
  return evaluated;
}

void ExpectRegulaFalsi(Function const& i_function, Range<double> const& i_range, double i_tolerance) {
  Record const record = Search(i_function, i_range, i_tolerance);
  EXPECT_EQ(test::regula_falsi::FindViolation(record, i_range.GetLower(), i_range.GetUpper(), i_tolerance),
            "")
      << "on " << i_range.GetLower() << " to " << i_range.GetUpper();
}

TEST(RootFinding, TheFirstEstimateIsTheZeroOfALine) {
  Record const record = Search([](double i_x) { return i_x - 1; }, {0, 3}, 1e-12);
  EXPECT_NEAR(record.result, 1, 1e-15);
  EXPECT_EQ(record.evaluations.size(), 5U);
}

TEST(RootFinding, CallsTheFunctionTwiceAtEachEnd) {
  Record const record = Search([](double i_x) { return i_x - 1; }, {0, 4}, 1e-12);
  EXPECT_EQ(GetEvaluated(record), (std::vector<double>{0, 4, 0, 4, 1}));
}

TEST(RootFinding, ApproachesTheRootOfTwoFromBelowWithTheUpperEndFixed) {
  Record const record = Search([](double i_x) { return i_x * i_x - 2; }, {0, 2}, 1e-12);
  EXPECT_NEAR(record.result, std::numbers::sqrt2, 1e-12);
  ASSERT_GT(record.evaluations.size(), 10U);
  double a = 0;
  for (std::size_t round = 4; round < record.evaluations.size(); ++round) {
    double const x = record.evaluations[round].x;
    EXPECT_GT(x, a);
    EXPECT_LT(x, std::numbers::sqrt2 + 1e-15);
    EXPECT_NEAR(x, a + (2 - a) * (2 - a * a) / (4 - a * a), 1e-15) << "the secant through (2, 2)";
    a = x;
  }
}

TEST(RootFinding, EstimatesFollowTheMethod) {
  ExpectRegulaFalsi([](double i_x) { return i_x * i_x - 2; }, {0, 2}, 1e-12);
  ExpectRegulaFalsi([](double i_x) { return 2 - i_x * i_x; }, {0, 2}, 1e-12);
  ExpectRegulaFalsi([](double i_x) { return std::cos(i_x) - i_x; }, {-1, 3}, 1e-14);
  ExpectRegulaFalsi([](double i_x) { return std::exp(i_x) - 5; }, {-4, 4}, 1e-9);
  ExpectRegulaFalsi([](double i_x) { return std::atan(i_x - 0.3); }, {-8, 5}, 1e-13);
  ExpectRegulaFalsi([](double i_x) { return i_x < 0.5 ? -1.0 : 1e-3; }, {0, 1}, 1e-2);
}

TEST(RootFinding, EstimatesOnRandomCubicsFollowTheMethod) {
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
    ExpectRegulaFalsi(cubic, {lower, upper}, 1e-6);
  }
  EXPECT_GT(compared, 500);
}

TEST(RootFinding, AZeroAtTheLowerEndIsReturnedAfterOneRound) {
  Record const record = Search([](double i_x) { return i_x - 2; }, {2, 5}, 1e-12);
  EXPECT_EQ(record.result, 2);
  EXPECT_EQ(GetEvaluated(record), (std::vector<double>{2, 5, 2, 5, 2}));
}

TEST(RootFinding, AZeroAtTheUpperEndIsReturnedAfterOneRound) {
  Record const record = Search([](double i_x) { return i_x - 5; }, {2, 5}, 1e-12);
  EXPECT_EQ(record.result, 5);
  EXPECT_EQ(GetEvaluated(record), (std::vector<double>{2, 5, 2, 5, 5}));
}

TEST(RootFinding, StopsByTheValueNotByTheInterval) {
  Record const loose = Search([](double i_x) { return i_x * i_x * i_x - 1; }, {0, 3}, 0.9);
  EXPECT_LE(std::abs(loose.result * loose.result * loose.result - 1), 0.9);
  EXPECT_GT(std::abs(loose.result - 1), 0.01) << "far from the root, but near it in value";
  Record const immediate = Search([](double i_x) { return i_x * i_x * i_x - 1; }, {0, 3}, 1);
  EXPECT_EQ(immediate.evaluations.size(), 5U);
}

TEST(RootFinding, AValueOfExactlyTheToleranceStops) {
  // The first secant from (-1, -3) to (3, 1) meets 0 at 2, where the value is the tolerance.
  Function const steps = [](double i_x) { return i_x < 0 ? -3.0 : i_x < 2.5 ? 0.25 : 1.0; };
  EXPECT_EQ(GetEvaluated(Search(steps, {-1, 3}, 0.25)), (std::vector<double>{-1, 3, -1, 3, 2}));
}

TEST(RootFinding, RefusesAToleranceThatIsNotPositive) {
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
        << "before the range is checked";
  }
}

TEST(RootFinding, RefusesAnEmptyRangeBeforeAnyCall) {
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

TEST(RootFinding, ProductsThatUnderflowCountAsACrossing) {
  // 1e-200 times 1e-200 is 0: the first round takes t = -1/0.
  EXPECT_TRUE(std::isnan(RegulaFalsi([](double i_x) { return i_x == i_x ? 1e-200 : nan; }, {0, 1}, 1e-300)));
}

// Returns these values one after the other, whatever the argument.
Function Script(std::vector<double> i_values) {
  return [values = std::move(i_values), next = std::size_t{0}](double) mutable { return values.at(next++); };
}

// The product of the values at the lower end and at the estimate underflows: the upper end moves, both ends
// have the same value then, and the next estimate is a NaN.
TEST(RootFinding, AProductThatUnderflowsMovesTheUpperEnd) {
  Record const record = Search(Script({1e-200, -1e-200, 1e-200, -1e-200, 1e-200, 0}), {0, 1}, 1e-250);
  ASSERT_EQ(record.evaluations.size(), 6U);
  EXPECT_EQ(record.evaluations[4].x, 0.5);
  EXPECT_TRUE(std::isnan(record.evaluations[5].x));
}

// With the first product just above underflow and the second below, the lower end moves.
TEST(RootFinding, AProductWithTheUpperEndThatUnderflowsMovesTheLowerEnd) {
  Record const record = Search(Script({2e-162, -1e-162, 2e-162, -1e-162, 2e-162, 0}), {0, 3}, 1e-250);
  ASSERT_EQ(record.evaluations.size(), 6U);
  EXPECT_DOUBLE_EQ(record.evaluations[4].x, 2);
  EXPECT_DOUBLE_EQ(record.evaluations[5].x, 2 + 2.0 / 3);
}

// The values that count are those of the second evaluation at each end. Where they have the sign of the
// estimate, the bracket is lost.
TEST(RootFinding, EndsThatBothHaveTheSignOfTheEstimateGiveNaN) {
  Record const record = Search(Script({1, -1, 1, 2, 0.25}), {0, 1}, 1e-3);
  EXPECT_TRUE(std::isnan(record.result));
  EXPECT_EQ(record.evaluations.size(), 5U);
}

TEST(RootFinding, AZeroAtTheUpperEndOnlyMovesTheLowerEnd) {
  Record const record = Search(Script({1, 0, 1, 0, 1, 0}), {0, 1}, 1e-3);
  EXPECT_EQ(record.evaluations.size(), 6U);
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
  Record const record = Search([](double i_x) { return i_x - 2; }, {2, 2}, 1e-9);
  EXPECT_TRUE(std::isnan(record.result));
  ASSERT_EQ(record.evaluations.size(), 5U);
  EXPECT_TRUE(std::isnan(record.evaluations.back().x)) << "t is 0 / 0";
}

TEST(RootFinding, ANaNToleranceStopsAfterOneRound) {
  Record const record = Search([](double i_x) { return i_x * i_x - 2; }, {0, 2}, nan);
  EXPECT_EQ(GetEvaluated(record), (std::vector<double>{0, 2, 0, 2, 1}));
  EXPECT_EQ(record.result, 1);
}

TEST(RootFinding, AnInfiniteToleranceStopsAfterOneRound) {
  EXPECT_EQ(RegulaFalsi([](double i_x) { return i_x * i_x - 2; }, {0, 2}, infinity), 1);
}

TEST(RootFinding, ANaNAtEitherEndPassesTheChecksAndGivesNaN) {
  Record const lower = Search([](double i_x) { return i_x == 0 ? nan : i_x; }, {0, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(lower.result));
  EXPECT_EQ(lower.evaluations.size(), 5U);
  Record const upper = Search([](double i_x) { return i_x == 1 ? nan : i_x - 0.5; }, {0, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(upper.result));
  EXPECT_EQ(upper.evaluations.size(), 5U);
}

TEST(RootFinding, ANaNInsideGivesNaN) {
  Record const record = Search([](double i_x) { return i_x == 0.5 ? nan : i_x - 0.5; }, {0, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(record.result));
  EXPECT_EQ(GetEvaluated(record), (std::vector<double>{0, 1, 0, 1, 0.5}));
}

TEST(RootFinding, AnEndThatIsNaNGivesNaN) {
  Record const record = Search([](double i_x) { return i_x; }, {nan, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(record.result));
  EXPECT_EQ(record.evaluations.size(), 5U);
}

TEST(RootFinding, AnInfiniteValueAtTheLowerEndTakesTheOtherFormula) {
  // t = (0 - 3) / (3 - -infinity) + 1 is 1, so x is the upper end, where the value is small enough.
  Function const step = [](double i_x) { return i_x == 0 ? -infinity : 3; };
  Record const record = Search(step, {0, 1}, 3);
  EXPECT_EQ(GetEvaluated(record), (std::vector<double>{0, 1, 0, 1, 1}));
  EXPECT_EQ(record.result, 1);
  ExpectRegulaFalsi(step, {0, 1}, 3);
}

TEST(RootFinding, AnInfiniteValueAtTheUpperEndGivesTheLowerEnd) {
  // t = 1 / infinity is 0, so x is the lower end, where the value is small enough.
  Function const step = [](double i_x) { return i_x == 1 ? infinity : -1; };
  Record const record = Search(step, {0, 1}, 1);
  EXPECT_EQ(GetEvaluated(record), (std::vector<double>{0, 1, 0, 1, 0}));
  EXPECT_EQ(record.result, 0);
}

TEST(RootFinding, InfiniteValuesAtBothEndsGiveNaN) {
  // t = -infinity / infinity.
  Record const record =
      Search([](double i_x) { return i_x == 0 ? -infinity : infinity * i_x; }, {0, 1}, 1e-9);
  EXPECT_TRUE(std::isnan(record.result));
  EXPECT_EQ(record.evaluations.size(), 5U);
}

TEST(RootFinding, AnInfiniteRangeGivesNaN) {
  // 1 - t times an infinite end, with t = 0 or with both ends infinite.
  EXPECT_TRUE(
      std::isnan(RegulaFalsi([](double i_x) { return std::atan(i_x); }, {-infinity, infinity}, 1e-9)));
}

// Ends a search that would not end. Returns the calls until then.
struct TooLong {};
std::vector<double> SearchForLong(Function const& i_function, Range<double> const& i_range) {
  std::vector<double> evaluated;
  auto const recorded = [&](double i_x) {
    if (evaluated.size() == 10000) throw TooLong();
    evaluated.push_back(i_x);
    return i_function(i_x);
  };
  EXPECT_THROW(RegulaFalsi(recorded, i_range, 1e-9), TooLong);
  return evaluated;
}

// Functions that give numbers for a NaN hide that an estimate is none.
TEST(RootFinding, NeverEndsWithFunctionsThatHideNaNs) {
  Function const sign = [](double i_x) { return i_x == 2 ? 0.0 : i_x > 2 ? 1.0 : -1.0; };
  EXPECT_TRUE(std::isnan(SearchForLong(sign, {2, 2}).back())) << "equal ends at a zero";
  Function const walls = [](double i_x) { return i_x <= 0 ? -infinity : i_x >= 1 ? infinity : 1.0; };
  EXPECT_TRUE(std::isnan(SearchForLong(walls, {0, 1}).back())) << "infinite values at both ends";
  Function const hole = [](double i_x) { return i_x == 0 ? nan : i_x > 0 ? 1.0 : -1.0; };
  EXPECT_TRUE(std::isnan(SearchForLong(hole, {0, 1}).back())) << "a NaN at an end";
}

TEST(RootFinding, NeverEndsAtAPole) {
  EXPECT_GT(SearchForLong([](double i_x) { return 1 / i_x; }, {-1, 2}).size(), 4U);
  EXPECT_EQ(SearchForLong([](double i_x) { return i_x == 1 ? infinity : -1.0; }, {0, 1}).back(), 0)
      << "an infinite value at one end: the estimate is the other end";
}

char const* const no_evaluations = "[RootFinding] The search needs at least two evaluations.";

// Runs a search with a limit and records its calls.
struct LimitedSearch {
  LimitedSearch(Function const& i_function, Range<double> const& i_range, double i_tolerance, int i_limit)
      : result(RegulaFalsiWithLimit(
            [&](double i_x) {
              evaluated.push_back(i_x);
              return i_function(i_x);
            },
            i_range, i_tolerance, i_limit)) {
    EXPECT_EQ(result.evaluations, static_cast<int>(evaluated.size()));
    EXPECT_LE(result.evaluations, i_limit);
  }

  std::vector<double> evaluated;
  RegulaFalsiResult result;
};

TEST(RootFindingWithLimit, ReturnsTheSameRootAfterTheSameEstimates) {
  constexpr unsigned seed = 20261122;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> number(-2, 2);
  int compared = 0;
  for (int round = 0; round < 500; ++round) {
    double const c0 = number(random);
    double const c1 = number(random);
    Function const cubic = [=](double i_x) { return (i_x * i_x + c1) * i_x + c0; };
    Range<double> const range(number(random) - 2, number(random) + 2);
    if (cubic(range.GetLower()) * cubic(range.GetUpper()) > 0) continue;
    ++compared;
    std::vector<double> expected = GetEvaluated(Search(cubic, range, 1e-9));
    expected.erase(expected.begin(), expected.begin() + 2);
    LimitedSearch const search(cubic, range, 1e-9, 1000000);
    EXPECT_EQ(search.evaluated, expected) << "each end is evaluated once";
    EXPECT_TRUE(search.result.converged);
    EXPECT_EQ(search.result.root, expected.back());
    EXPECT_TRUE(search.result.bracket.GetLower() == expected.back() ||
                search.result.bracket.GetUpper() == expected.back());
    EXPECT_LE(cubic(search.result.bracket.GetLower()) * cubic(search.result.bracket.GetUpper()), 0);
  }
  EXPECT_GT(compared, 100);
}

TEST(RootFindingWithLimit, GivesUpAtTheLimitWithItsBracket) {
  Function const parabola = [](double i_x) { return i_x * i_x - 2; };
  for (Range<double> const range : {Range<double>(0, 2), Range<double>(-2, 0)}) {
    std::vector<double> const evaluated = GetEvaluated(Search(parabola, range, 1e-12));
    for (int limit = 3; limit < 12; ++limit) {
      LimitedSearch const search(parabola, range, 1e-12, limit);
      double const last = evaluated[static_cast<std::size_t>(limit) + 1];
      EXPECT_FALSE(search.result.converged);
      EXPECT_EQ(search.result.evaluations, limit);
      EXPECT_EQ(search.result.root, last);
      EXPECT_EQ(search.result.bracket,
                range.GetLower() < 0 ? Range<double>(-2, last) : Range<double>(last, 2));
    }
  }
}

TEST(RootFindingWithLimit, ConvergesWithTheLastEvaluationAllowed) {
  Function const line = [](double i_x) { return i_x - 1; };
  EXPECT_TRUE(LimitedSearch(line, {0, 4}, 1e-12, 3).result.converged);
  EXPECT_EQ(LimitedSearch(line, {0, 4}, 1e-12, 3).result.root, 1);
}

TEST(RootFindingWithLimit, OfTwoReturnsTheRangeAndItsBetterEnd) {
  auto const search = [](double i_lower, double i_upper) {
    return LimitedSearch([](double i_x) { return i_x - 1; }, {i_lower, i_upper}, 1e-12, 2).result;
  };
  EXPECT_EQ(search(0, 4).root, 0);
  EXPECT_EQ(search(-4, 2).root, 2);
  EXPECT_EQ(search(0, 2).root, 0) << "the lower end if both are as good";
  EXPECT_EQ(LimitedSearch([](double i_x) { return 1 - i_x; }, {0, 4}, 1e-12, 2).result.root, 0)
      << "signs do not count";
  EXPECT_EQ(search(0, 4).bracket, Range<double>(0, 4));
  EXPECT_EQ(search(0, 4).evaluations, 2);
  EXPECT_FALSE(search(0, 4).converged);
  EXPECT_TRUE(search(1, 4).converged) << "the end is a zero";
  EXPECT_EQ(search(1, 4).root, 1);
}

TEST(RootFindingWithLimit, GivesUpWhereTheSearchWithoutLimitNeverEnds) {
  Function const step = [](double i_x) { return i_x < 0.3 ? -1.0 : 1.0; };
  LimitedSearch const jump(step, {0, 1}, 1e-9, 200);
  EXPECT_FALSE(jump.result.converged);
  EXPECT_EQ(jump.result.evaluations, 200);
  EXPECT_TRUE(jump.result.bracket.Contains(0.3));
  EXPECT_LT(jump.result.bracket.GetUpper() - jump.result.bracket.GetLower(), 1e-15);
  LimitedSearch const pole([](double i_x) { return 1 / i_x; }, {-1, 2}, 1e-9, 50);
  EXPECT_FALSE(pole.result.converged);
  EXPECT_EQ(pole.result.evaluations, 50);
}

TEST(RootFindingWithLimit, GivesUpBeforeAnEstimateThatIsNoNumber) {
  Function const sign = [](double i_x) { return i_x == 2 ? 0.0 : i_x > 2 ? 1.0 : -1.0; };
  LimitedSearch const equal(sign, {2, 2}, 1e-9, 100);
  EXPECT_EQ(equal.result.root, 2);
  EXPECT_EQ(equal.result.bracket, Range<double>(2, 2));
  EXPECT_EQ(equal.result.evaluations, 2);
  EXPECT_TRUE(equal.result.converged) << "the function is zero there";
  Function const walls = [](double i_x) { return i_x <= 0 ? -infinity : infinity; };
  LimitedSearch const infinite(walls, {0, 1}, 1e-9, 100);
  EXPECT_EQ(infinite.result.bracket, Range<double>(0, 1));
  EXPECT_EQ(infinite.result.evaluations, 2);
  EXPECT_FALSE(infinite.result.converged);
}

TEST(RootFindingWithLimit, ReturnsTheEndWithANumber) {
  for (double const value : {0.5, 0.0}) {
    for (double const end : {0.0, 1.0}) {
      LimitedSearch const hole([=](double i_x) { return i_x == end ? nan : value; }, {0, 1}, 1e-9, 100);
      EXPECT_EQ(hole.result.root, 1 - end);
      EXPECT_EQ(hole.result.bracket, Range<double>(0, 1));
      EXPECT_EQ(hole.result.evaluations, 2);
      EXPECT_EQ(hole.result.converged, value == 0);
    }
  }
}

TEST(RootFindingWithLimit, KeepsItsBracketAtAValueThatIsNoNumber) {
  LimitedSearch const hole([](double i_x) { return i_x == 0.5 ? nan : i_x - 0.5; }, {0, 1}, 1e-9, 100);
  EXPECT_EQ(hole.evaluated, (std::vector<double>{0, 1, 0.5}));
  EXPECT_EQ(hole.result.bracket, Range<double>(0, 1));
  EXPECT_EQ(hole.result.root, 0);
  EXPECT_FALSE(hole.result.converged);
}

TEST(RootFindingWithLimit, NeverConvergesWithAToleranceOfNaN) {
  LimitedSearch const search([](double i_x) { return i_x - 1; }, {0, 4}, nan, 5);
  EXPECT_FALSE(search.result.converged);
  EXPECT_EQ(search.result.root, 1);
}

TEST(RootFindingWithLimit, RefusesWhatTheSearchWithoutLimitRefuses) {
  auto const search = [](Function const& i_function, Range<double> const& i_range, double i_tolerance,
                         int i_limit) {
    return [=] { RegulaFalsiWithLimit(i_function, i_range, i_tolerance, i_limit); };
  };
  Function const line = [](double i_x) { return i_x; };
  EXPECT_TRUE(test::Throws<std::invalid_argument>(search(line, {1, -1}, 0, 1), no_tolerance));
  EXPECT_TRUE(test::Throws<std::invalid_argument>(search(nullptr, {1, -1}, 1, 1), empty_range));
  for (int const limit : {1, 0, -5}) {
    EXPECT_TRUE(test::Throws<std::invalid_argument>(search(nullptr, {-1, 1}, 1, limit), no_evaluations));
  }
  EXPECT_TRUE(test::Throws<std::invalid_argument>(search(line, {1, 2}, 1, 2), no_crossing));
  EXPECT_THROW(search(nullptr, {0, 1}, 1, 2)(), std::bad_function_call);
  Function const fails = [](double) -> double { throw std::out_of_range("not here"); };
  EXPECT_TRUE(test::Throws<std::out_of_range>(search(fails, {0, 1}, 1, 2), "not here"));
}

}  // namespace
}  // namespace lum::RootFinding

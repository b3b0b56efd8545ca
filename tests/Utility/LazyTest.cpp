#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include "Utility/Lazy.h"
#include "support/Throws.h"

namespace lum {
namespace {

int MakeSeven() { return 7; }

// Constant initialisation is what makes a Lazy usable before main; constinit refuses anything else.
constinit Lazy<int> constant_initialised(MakeSeven);

static_assert(!std::is_copy_constructible_v<Lazy<int>> && !std::is_copy_assignable_v<Lazy<int>>);
static_assert(!std::is_convertible_v<int (*)(), Lazy<int>>);

TEST(Lazy, RefusesAnEmptyFunction) {
  EXPECT_TRUE(test::Throws<std::invalid_argument>([] { Lazy<int> const lazy{std::function<int()>()}; },
                                                  "i_function must be callable."));
  EXPECT_TRUE(test::Throws<std::invalid_argument>(
      [] { Lazy<int> const lazy(static_cast<int (*)()>(nullptr)); }, "i_function must be callable."));
}

TEST(Lazy, RunsItsFactoryOnTheFirstRequestAndOnce) {
  int runs = 0;
  Lazy<int> const lazy([&runs] { return ++runs; });
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(lazy.GetValue(), 1);
  EXPECT_EQ(lazy.GetValue(), 1);
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(&lazy.GetValue(), &lazy.GetValue());
}

TEST(Lazy, TakesAPlainFunction) { EXPECT_EQ(constant_initialised.GetValue(), 7); }

TEST(Lazy, TriesAgainAfterAFactoryThatThrew) {
  int runs = 0;
  Lazy<int> const lazy([&runs] {
    if (++runs == 1) throw std::runtime_error("not yet");
    return 5;
  });
  EXPECT_TRUE(test::Throws<std::runtime_error>([&] { lazy.GetValue(); }, "not yet"));
  EXPECT_EQ(lazy.GetValue(), 5);
  EXPECT_EQ(runs, 2);
}

TEST(Lazy, ReleasesItsValueAtItsEnd) {
  auto value = std::make_shared<int>(3);
  {
    Lazy<std::shared_ptr<int>> const lazy([&value] { return value; });
    EXPECT_EQ(value.use_count(), 1);
    lazy.GetValue();
    EXPECT_EQ(value.use_count(), 2);
  }
  EXPECT_EQ(value.use_count(), 1);
}

TEST(Lazy, DestroysItsFactoryBeforeItsValue) {
  std::vector<char> order;
  auto const note = [&order](char i_what) {
    return std::shared_ptr<void>(nullptr, [&order, i_what](void*) { order.push_back(i_what); });
  };
  {
    Lazy<std::shared_ptr<void>> const lazy([factory = note('f'), &note] { return note('v'); });
    lazy.GetValue();
    order.clear();
  }
  EXPECT_EQ(order, (std::vector<char>{'f', 'v'}));
}

TEST(Lazy, AnUnusedOneNeverRunsItsFactory) {
  int runs = 0;
  {
    Lazy<int> const lazy([&runs] { return ++runs; });
  }
  EXPECT_EQ(runs, 0);
}

// All threads pass the barrier before any factory has run. Runs come one after the other, and the first of
// them throws: exactly one caller gets that exception, one of the others runs the factory again, and all of
// them read what it made.
TEST(Lazy, AFactoryThatThrewIsRunAgainByAWaitingThread) {
  constexpr std::size_t threads = 4;
  for (int round = 0; round < 100; ++round) {
    std::atomic<int> runs{0};
    std::atomic<int> failures{0};
    Lazy<int> const lazy([&runs] {
      if (++runs == 1) throw std::runtime_error("not yet");
      return 5;
    });
    std::barrier start(threads);
    {
      std::vector<std::jthread> workers;
      workers.reserve(threads);
      for (std::size_t i = 0; i < threads; ++i) {
        workers.emplace_back([&lazy, &start, &failures] {
          start.arrive_and_wait();
          try {
            EXPECT_EQ(lazy.GetValue(), 5);
          } catch (std::runtime_error const&) {
            ++failures;
          }
        });
      }
    }
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(runs, 2);
  }
}

// All threads pass the barrier before the value exists. The factory counts its runs; whoever did not run it
// waits, and then reads the same object.
TEST(Lazy, RunsItsFactoryOnceHoweverManyThreadsAsk) {
  constexpr std::size_t threads = 8;
  for (int round = 0; round < 200; ++round) {
    std::atomic<int> runs{0};
    Lazy<int> const lazy([&runs] { return ++runs; });
    std::barrier start(threads);
    std::vector<int const*> addresses(threads);
    {
      std::vector<std::jthread> workers;
      workers.reserve(threads);
      for (int const*& address : addresses) {
        workers.emplace_back([&lazy, &start, &address] {
          start.arrive_and_wait();
          address = &lazy.GetValue();
        });
      }
    }
    EXPECT_EQ(runs, 1);
    for (int const* const address : addresses) EXPECT_EQ(address, addresses[0]);
    EXPECT_EQ(*addresses[0], 1);
  }
}

}  // namespace
}  // namespace lum

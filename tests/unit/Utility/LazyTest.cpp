#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include "Utility/Lazy.h"
#include "tests/support/Throws.h"

namespace lum {
namespace {

int MakeSeven() { return 7; }

// Constant initialisation makes a Lazy usable before main; constinit refuses any other.
constinit Lazy<int> constant_initialised(MakeSeven);

static_assert(!std::is_copy_constructible_v<Lazy<int>>);
static_assert(!std::is_copy_assignable_v<Lazy<int>>);
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

// Neither assignable nor movable, and constructible from anything else.
class Fixed {
 public:
  explicit Fixed(int i_number) : m_number(i_number) {}
  template <class U>
  explicit Fixed(U const&) {}
  Fixed(Fixed const&) = delete;
  Fixed& operator=(Fixed const&) = delete;
  ~Fixed() = default;

  int GetNumber() const { return m_number; }
  Fixed const* GetPlaceOfMaking() const { return mp_made_at; }

 private:
  int m_number = -1;
  Fixed const* mp_made_at = this;
};

Fixed MakeFixed() { return Fixed(7); }

TEST(Lazy, MakesItsValueInPlace) {
  Lazy<Fixed> const from_function(MakeFixed);
  EXPECT_EQ(from_function.GetValue().GetNumber(), 7);
  EXPECT_EQ(from_function.GetValue().GetPlaceOfMaking(), &from_function.GetValue());
  int runs = 0;
  Lazy<Fixed> const from_lambda([&runs] {
    if (++runs == 1) throw std::runtime_error("not yet");
    return Fixed(8);
  });
  EXPECT_THROW(from_lambda.GetValue(), std::runtime_error);
  EXPECT_EQ(from_lambda.GetValue().GetNumber(), 8);
  EXPECT_EQ(from_lambda.GetValueIfCreated(), &from_lambda.GetValue());
}

TEST(Lazy, HoldsAValueThatCannotBeAssigned) {
  struct Constant {
    int const number;
  };
  Lazy<Constant> const lazy([] { return Constant{3}; });
  EXPECT_EQ(lazy.GetValue().number, 3);
  Lazy<int const> const number([] { return 4; });
  EXPECT_EQ(number.GetValue(), 4);
}

int runs_of_plain_function = 0;
int ThrowFirst() {
  if (++runs_of_plain_function == 1) throw std::runtime_error("not yet");
  return 5;
}

TEST(Lazy, TriesAgainAfterAPlainFunctionThatThrew) {
  runs_of_plain_function = 0;
  Lazy<int> const lazy(ThrowFirst);
  EXPECT_TRUE(test::Throws<std::runtime_error>([&] { lazy.GetValue(); }, "not yet"));
  EXPECT_EQ(lazy.GetValue(), 5);
  EXPECT_EQ(runs_of_plain_function, 2);
}

TEST(Lazy, DestroysItsValue) {
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

TEST(Lazy, NeverRunsItsFactoryUnlessUsed) {
  int runs = 0;
  {
    Lazy<int> const lazy([&runs] { return ++runs; });
  }
  EXPECT_EQ(runs, 0);
}

// All threads pass the barrier before the factory has run. Its runs exclude each other, and the first one
// throws. So exactly one caller gets the exception, one of the others runs the factory again, and the others
// read its value.
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

// All threads pass the barrier before the value exists. One thread runs the factory, which counts its runs.
// The others wait for it and read the same object.
TEST(Lazy, RunsItsFactoryOnceForManyThreads) {
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

// The factory ends some time after the second thread has announced its request. Whether that thread waits for
// the lock by then or comes later, it reads the value of the one run.
TEST(Lazy, AThreadThatWaitsForTheFactoryReadsItsValue) {
  std::atomic<bool> is_asking{false};
  int runs = 0;
  Lazy<int> const lazy([&is_asking, &runs] {
    while (!is_asking) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return ++runs;
  });
  std::jthread const maker([&lazy] { EXPECT_EQ(lazy.GetValue(), 1); });
  std::jthread const waiter([&lazy, &is_asking] {
    is_asking = true;
    EXPECT_EQ(lazy.GetValue(), 1);
  });
}

// The second thread sees by a relaxed flag that the value exists, so only the Lazy orders the construction of
// the value before its use. The thread sanitizer reports a weaker publication as a race.
TEST(Lazy, PublishesItsValueToALaterThread) {
  std::atomic<bool> is_made{false};
  Lazy<std::vector<int>> const lazy([] { return std::vector<int>{1, 2, 3}; });
  std::jthread const maker([&lazy, &is_made] {
    lazy.GetValue();
    is_made.store(true, std::memory_order_relaxed);
  });
  std::jthread const reader([&lazy, &is_made] {
    while (!is_made.load(std::memory_order_relaxed)) std::this_thread::yield();
    EXPECT_EQ(lazy.GetValue(), (std::vector<int>{1, 2, 3}));
  });
}

// The same for a thread that asks whether the value exists and does not make it.
TEST(Lazy, PublishesItsValueByGetValueIfCreated) {
  Lazy<std::vector<int>> const lazy([] { return std::vector<int>{1, 2, 3}; });
  std::jthread const maker([&lazy] { lazy.GetValue(); });
  std::jthread const reader([&lazy] {
    std::vector<int> const* value = nullptr;
    while ((value = lazy.GetValueIfCreated()) == nullptr) std::this_thread::yield();
    EXPECT_EQ(*value, (std::vector<int>{1, 2, 3}));
  });
}

}  // namespace
}  // namespace lum

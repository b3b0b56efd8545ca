#include <gtest/gtest.h>
#include <sys/single_threaded.h>

#include <atomic>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

#include "geometry/internal/SingleThread.h"
#include "tests/support/Stepping.h"

namespace lum::internal {
namespace {

using Counter = std::atomic<unsigned long>;

// This test must run first, before any other starts a thread.
TEST(SingleThread, IsTheVariableOfTheCLibraryForStandardTypesOnly) {
  EXPECT_EQ(IsSingleThreaded<Counter>(), static_cast<bool>(__libc_single_threaded));
  EXPECT_EQ(IsSingleThreaded<std::mutex>(), static_cast<bool>(__libc_single_threaded));
  EXPECT_FALSE(IsSingleThreaded<test::SteppedAtomic<unsigned long>>());
  EXPECT_FALSE(IsSingleThreaded<test::SteppedMutex>());
  Counter counter{5};
  EXPECT_EQ(FetchAdd(counter, 2), 5U);
  EXPECT_EQ(FetchSubtract(counter, 3), 7U);
  EXPECT_EQ(counter, 4U);
  std::mutex mutex;
  {
    ThreadLock const lock(mutex);
    if (__libc_single_threaded) {
      EXPECT_TRUE(mutex.try_lock()) << "the lock is elided while there is one thread";
      mutex.unlock();
    }
  }
  EXPECT_TRUE(mutex.try_lock());
  mutex.unlock();
}

TEST(SingleThread, EndsWithTheFirstThread) {
  std::thread([] { EXPECT_FALSE(IsSingleThreaded<Counter>()); }).join();
}

// With a second thread, the operations are atomic: no addition or subtraction is lost, and no two additions
// read the same value.
TEST(SingleThread, CountsOfThreadsAreAtomic) {
  constexpr unsigned long rounds = 20000;
  Counter counter{0};
  std::vector<unsigned char> seen(2 * rounds, 0);
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 2; ++i) {
      threads.emplace_back([&counter, &seen] {
        for (unsigned long round = 0; round < rounds; ++round) seen[FetchAdd(counter, 1)] = 1;
      });
    }
  }
  EXPECT_EQ(counter, 2 * rounds);
  for (unsigned char const is_seen : seen) ASSERT_EQ(is_seen, 1);
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 2; ++i) {
      threads.emplace_back([&counter] {
        for (unsigned long round = 0; round < rounds; ++round) FetchSubtract(counter, 1);
      });
    }
  }
  EXPECT_EQ(counter, 0U);
}

// The second thread exists before the lock is made, so the lock is not elided. It fails to lock the mutex
// while the first thread holds it.
TEST(SingleThread, TheLockExcludesOtherThreads) {
  std::mutex mutex;
  std::atomic<bool> is_held{false};
  std::atomic<bool> has_tried{false};
  std::jthread const other([&] {
    while (!is_held) std::this_thread::yield();
    EXPECT_FALSE(mutex.try_lock());
    has_tried = true;
  });
  {
    ThreadLock const lock(mutex);
    is_held = true;
    while (!has_tried) std::this_thread::yield();
  }
  EXPECT_TRUE(mutex.try_lock());
  mutex.unlock();
}

}  // namespace
}  // namespace lum::internal

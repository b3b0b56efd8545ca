// Threads take objects and return them in random order. Every owner stamps its object when it takes it, and
// must find the stamp when it returns it: two owners of one slot would overwrite each other's stamp. The
// address sanitizer finds accesses to freed blocks, the thread sanitizer unordered ones. At the end all
// blocks but one are freed.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "geometry/ObjectPool.h"
#include "tests/support/BlockCensus.h"
#include "tests/support/ObjectPoolTestAccess.h"

namespace lum {
namespace {

using Object = std::array<unsigned long, 8>;
using Pool = ObjectPool<Object, 32, 16>;
using PoolHandle = Pool::ObjectHandle;
using test::BlockCensus;

struct Stamped {
  PoolHandle handle;
  unsigned long stamp;
};

// Objects that one thread has taken and another will return.
struct Exchange {
  // Guards `objects`.
  std::mutex mutex;
  std::vector<Stamped> objects;
};

struct Load {
  unsigned threads;
  std::size_t live;  // the most objects that a thread holds
};

class ObjectPoolStress : public testing::TestWithParam<Load> {
 protected:
  static constexpr std::size_t kRounds = 200000;

  void Work(unsigned i_thread) {
    std::mt19937 random(kSeed + i_thread);
    unsigned long stamp = static_cast<unsigned long>(i_thread) << 48;
    std::vector<Stamped> own;
    for (std::size_t round = 0; round < kRounds; ++round) {
      std::size_t const target = random() % (GetParam().live + 1);
      while (own.size() < target) {
        if (own.size() + 2 <= target && random() % 2 == 0) {
          auto [first, second] = m_pool.CreateTwoObjects();
          own.push_back(Stamp(std::move(first), ++stamp));
          own.push_back(Stamp(std::move(second), ++stamp));
        } else {
          own.push_back(Stamp(m_pool.CreateObject(), ++stamp));
        }
      }
      std::shuffle(own.begin(), own.end(), random);
      if (round % 16 == 0) SwapWithOthers(own);
      std::size_t const kept = own.empty() ? 0 : random() % own.size();
      while (own.size() > kept) {
        Check(own.back());
        if (own.size() >= kept + 2 && random() % 2 == 0) {
          Check(own[own.size() - 2]);
          PoolHandle::ReleaseTogether(own.back().handle, own[own.size() - 2].handle);
          own.pop_back();
        }
        own.pop_back();
      }
    }
    for (Stamped const& stamped : own) Check(stamped);
  }

  Stamped Stamp(PoolHandle i_handle, unsigned long i_stamp) {
    i_handle->fill(i_stamp);
    if (i_handle.GetReferenceCount() != 1) ++m_wrong_counts;
    return {std::move(i_handle), i_stamp};
  }

  void Check(Stamped const& i_stamped) {
    for (unsigned long const value : *i_stamped.handle) {
      if (value != i_stamped.stamp) ++m_wrong_stamps;
    }
    if (i_stamped.handle.GetReferenceCount() != 1) ++m_wrong_counts;
  }

  void SwapWithOthers(std::vector<Stamped>& io_own) {
    std::lock_guard<std::mutex> const lock(m_exchange.mutex);
    std::swap(io_own, m_exchange.objects);
  }

  static constexpr unsigned kSeed = 20261121;

  // Before the pool, so that its first block is counted.
  BlockCensus m_census{sizeof(Pool::Block)};
  Pool m_pool;
  Exchange m_exchange;
  std::atomic<std::size_t> m_wrong_stamps{0};
  std::atomic<std::size_t> m_wrong_counts{0};
};

TEST_P(ObjectPoolStress, GivesEverySlotToOneOwner) {
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  {
    std::vector<std::jthread> workers;
    for (unsigned thread = 0; thread < GetParam().threads; ++thread) {
      workers.emplace_back([this, thread] { Work(thread); });
    }
  }
  for (Stamped const& stamped : m_exchange.objects) Check(stamped);
  m_exchange.objects.clear();
  EXPECT_EQ(m_wrong_stamps, 0U);
  EXPECT_EQ(m_wrong_counts, 0U);
  EXPECT_EQ(BlockCensus::GetMade() - BlockCensus::GetFreed(), 1U);
  auto* const current = ObjectPoolTestAccess::CurrentBlock(m_pool);
  EXPECT_EQ(ObjectPoolTestAccess::UseCount(*current).load(), 0U);
  for (unsigned slot = 0; slot < 32; ++slot) EXPECT_EQ(current->GetReferenceCount(slot)->load(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Loads, ObjectPoolStress,
                         testing::Values(Load{2, 2}, Load{2, 16}, Load{4, 8}, Load{4, 40}, Load{8, 4}),
                         [](auto const& i_info) {
                           return std::to_string(i_info.param.threads) + "ThreadsWith" +
                                  std::to_string(i_info.param.live) + "Objects";
                         });

}  // namespace
}  // namespace lum

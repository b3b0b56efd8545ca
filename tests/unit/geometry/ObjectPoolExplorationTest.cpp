// Small programs run on the library's own pool, block and handle under every interleaving with a bounded
// number of preemptions, and under random interleavings. A model knows the owner of each slot: a slot that is
// taken must have no owner, and a return is reported to the model before it starts. At the end every block is
// current or freed, the current block gives all its slots, and no freed block has been accessed.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "geometry/ObjectPool.h"
#include "tests/support/BlockCensus.h"
#include "tests/support/Exploration.h"
#include "tests/support/ObjectPoolTestAccess.h"
#include "tests/support/Stepping.h"

namespace lum {
namespace {

using Access = ObjectPoolTestAccess;
using test::BlockCensus;
using test::Exploration;
using test::Stepper;

// Chosen so that no other allocation has the size of a block, by which the census recognises blocks.
using Object = std::array<unsigned long, 11>;

/// A pool with blocks of `Size` slots, and the model of their owners.
template <std::size_t Size>
class World {
 public:
  using Pool = ObjectPool<Object, Size, 16, test::SteppedPolicy>;
  using PoolHandle = typename Pool::ObjectHandle;
  using Actors = std::vector<std::function<void()>>;

  World() : m_census(sizeof(typename Pool::Block), BlockCensus::Freed::kKeptAside) {
    Stepper::Observer() = [this](void const* ip_address) {
      if (BlockCensus::IsInFreedBlock(ip_address)) Fail("a freed block is accessed");
    };
    m_pool = std::make_unique<Pool>();
  }
  ~World() { Stepper::Observer() = nullptr; }

  PoolHandle Take() {
    PoolHandle handle = m_pool->CreateObject();
    Own(handle);
    return handle;
  }
  std::array<PoolHandle, 2> TakeTwo() {
    auto [first, second] = m_pool->CreateTwoObjects();
    Own(first);
    Own(second);
    return {std::move(first), std::move(second)};
  }
  PoolHandle Copy(PoolHandle const& i_handle) {
    ++m_owners[i_handle.Get()];
    return i_handle;
  }
  void Return(PoolHandle& io_handle) {
    Disown(io_handle);
    io_handle = PoolHandle();
  }
  void ReturnTogether(PoolHandle& io_first, PoolHandle& io_second) {
    Disown(io_first);
    Disown(io_second);
    PoolHandle::ReleaseTogether(io_first, io_second);
    if (io_first || io_second) Fail("a handle is bound after its release");
  }

  /// Checks the end of a program, which must have returned everything.
  void Finish() {
    if (!m_owners.empty()) Fail("the program returned less than it took");
    if (m_census.GetMade() - m_census.GetFreed() != 1) Fail("a block is left behind");
    std::size_t const made = m_census.GetMade();
    {
      std::array<PoolHandle, Size> all;
      for (PoolHandle& handle : all) handle = Take();
      if (m_census.GetMade() != made) Fail("a slot is lost");
      for (PoolHandle& handle : all) Return(handle);
    }
    m_pool.reset();
    if (m_census.GetMade() != m_census.GetFreed()) Fail("a block outlives its pool");
    if (m_census.GetFreedAgain() != 0) Fail("a block is freed twice");
  }

  /// Sets the positions as if `i_count` objects had been taken and returned before.
  void Preset(unsigned long i_count) {
    auto* const block = Access::CurrentBlock(*m_pool);
    Access::TakePosition(*block).store(i_count);
    Access::ReturnPosition(*block).store(i_count);
  }

  std::string const& GetFailure() const { return m_failure; }

 private:
  void Own(PoolHandle const& i_handle) {
    if (!m_owners.emplace(i_handle.Get(), 1).second) Fail("a slot has two owners");
    if (i_handle.GetReferenceCount() != 1) Fail("a fresh object is shared");
  }
  void Disown(PoolHandle const& i_handle) {
    auto const owner = m_owners.find(i_handle.Get());
    if (owner == m_owners.end()) return Fail("a slot without an owner is returned");
    if (--owner->second == 0) m_owners.erase(owner);
  }
  void Fail(char const* ip_what) {
    if (m_failure.empty()) m_failure = ip_what;
  }

  BlockCensus m_census;
  std::map<Object*, int> m_owners;
  std::unique_ptr<Pool> m_pool;
  std::string m_failure;
};

// docs/reliability.md has the sums of these figures, which tests/system/site compares.
void RecordExecutions(std::size_t i_searched, std::size_t i_walked) {
  testing::Test::RecordProperty("executions", std::to_string(i_searched));
  testing::Test::RecordProperty("random_executions", std::to_string(i_walked));
}

template <class Size>
class ObjectPoolExploration : public testing::Test {
 protected:
  using Ring = World<Size::value>;
  using PoolHandle = typename Ring::PoolHandle;
  using Actors = typename Ring::Actors;
  using MakeActors = std::function<Actors(Ring&)>;

  // Runs every interleaving with at most `i_preemptions`, then random ones.
  void Explore(char const* ip_name, std::size_t i_preemptions, MakeActors const& i_make) {
    std::optional<Ring> world;
    Exploration exploration;
    auto const start = [&] {
      world.reset();
      world.emplace();
      return i_make(*world);
    };
    Exploration::Program const program = {start, [&] { world->Finish(); }};
    auto const is_failed = [&] { return !world->GetFailure().empty(); };
    constexpr std::size_t walks = 3000;
    constexpr unsigned seed = 20261121;
    std::size_t const searched = exploration.SearchAll(program, i_preemptions, is_failed);
    EXPECT_FALSE(exploration.IsStuck()) << exploration.GetSchedule();
    ASSERT_EQ(world->GetFailure(), "") << exploration.GetSchedule();
    std::size_t const walked = exploration.WalkRandomly(program, walks, seed, is_failed);
    EXPECT_FALSE(exploration.IsStuck()) << exploration.GetSchedule();
    ASSERT_EQ(world->GetFailure(), "") << exploration.GetSchedule() << ", seed " << seed;
    EXPECT_EQ(walked, walks);
    EXPECT_GT(searched, 100U) << "the program has too few interleavings";
    RecordExecutions(searched, walked);
    std::cout << Size::value << " slots, " << ip_name << ": " << searched << " executions with at most "
              << i_preemptions << " preemptions, " << walked << " random ones\n";
  }
};

using Sizes = testing::Types<std::integral_constant<std::size_t, 2>, std::integral_constant<std::size_t, 3>>;
TYPED_TEST_SUITE(ObjectPoolExploration, Sizes);

// An actor that takes and returns `i_times`, and holds up to two objects.
template <class Ring>
std::function<void()> TakeAndReturn(Ring& io_world, int i_times) {
  return [&io_world, i_times] {
    typename Ring::PoolHandle first;
    for (int time = 0; time < i_times; ++time) {
      typename Ring::PoolHandle second = io_world.Take();
      if (first) io_world.Return(first);
      first = std::move(second);
    }
    io_world.Return(first);
  };
}

TYPED_TEST(ObjectPoolExploration, TwoThreadsTakeAndReturn) {
  this->Explore("2 threads take and return twice", 4, [](auto& io_world) {
    return typename TestFixture::Actors{TakeAndReturn(io_world, 2), TakeAndReturn(io_world, 2)};
  });
}

TYPED_TEST(ObjectPoolExploration, ThreeThreadsTakeAndReturn) {
  this->Explore("3 threads take and return", 3, [](auto& io_world) {
    return typename TestFixture::Actors{TakeAndReturn(io_world, 1), TakeAndReturn(io_world, 2),
                                        TakeAndReturn(io_world, 1)};
  });
}

TYPED_TEST(ObjectPoolExploration, FourThreadsTakeAndReturn) {
  this->Explore("4 threads take and return", 2, [](auto& io_world) {
    return typename TestFixture::Actors{TakeAndReturn(io_world, 1), TakeAndReturn(io_world, 1),
                                        TakeAndReturn(io_world, 1), TakeAndReturn(io_world, 1)};
  });
}

// A full block empties in another order than it was filled, while another actor takes objects.
TYPED_TEST(ObjectPoolExploration, AFullBlockEmptiesInAnyOrder) {
  this->Explore("a full block empties", 3, [](auto& io_world) {
    auto const held = std::make_shared<std::vector<typename TestFixture::PoolHandle>>();
    for (std::size_t i = 0; i < TypeParam::value; ++i) held->push_back(io_world.Take());
    auto const return_last = [&io_world, held] { io_world.Return(held->back()); };
    auto const return_others = [&io_world, held] {
      for (std::size_t i = 0; i + 1 < held->size(); ++i) io_world.Return((*held)[i]);
    };
    return typename TestFixture::Actors{return_last, return_others, TakeAndReturn(io_world, 1)};
  });
}

// An actor that takes two objects at once and returns them together, `i_times`.
template <class Ring>
std::function<void()> TakeAndReturnTwo(Ring& io_world, int i_times) {
  return [&io_world, i_times] {
    for (int time = 0; time < i_times; ++time) {
      auto handles = io_world.TakeTwo();
      io_world.ReturnTogether(handles[0], handles[1]);
    }
  };
}

TYPED_TEST(ObjectPoolExploration, TwoThreadsTakeAndReturnTwoAtOnce) {
  this->Explore("2 threads take and return two at once", 4, [](auto& io_world) {
    return typename TestFixture::Actors{TakeAndReturnTwo(io_world, 1), TakeAndReturnTwo(io_world, 2)};
  });
}

TYPED_TEST(ObjectPoolExploration, ThreeThreadsTakeOneOrTwo) {
  this->Explore("3 threads take one or two", 3, [](auto& io_world) {
    return typename TestFixture::Actors{TakeAndReturnTwo(io_world, 1), TakeAndReturn(io_world, 1),
                                        TakeAndReturnTwo(io_world, 1)};
  });
}

// The first of two objects is shared by two actors, and the last release returns it.
TYPED_TEST(ObjectPoolExploration, OneOfTwoIsShared) {
  this->Explore("one of two is shared", 2, [](auto& io_world) {
    using Pair = std::array<typename TestFixture::PoolHandle, 2>;
    auto const pair = std::make_shared<Pair>(io_world.TakeTwo());
    auto const shared = std::make_shared<Pair>();
    (*shared)[0] = io_world.Copy((*pair)[0]);
    auto const return_pair = [&io_world, pair] { io_world.ReturnTogether((*pair)[0], (*pair)[1]); };
    auto const take_and_return_shared = [&io_world, shared] {
      (*shared)[1] = io_world.Take();
      io_world.ReturnTogether((*shared)[0], (*shared)[1]);
    };
    return typename TestFixture::Actors{return_pair, take_and_return_shared, TakeAndReturnTwo(io_world, 1)};
  });
}

// Two owners of one object release it, and one of them takes another.
TYPED_TEST(ObjectPoolExploration, TheLastOfSharedHandlesReturnsTheObject) {
  this->Explore("shared handles", 3, [](auto& io_world) {
    auto const first = std::make_shared<typename TestFixture::PoolHandle>(io_world.Take());
    auto const second = std::make_shared<typename TestFixture::PoolHandle>(io_world.Copy(*first));
    auto const copy_and_return = [&io_world, first] {
      auto copy = io_world.Copy(*first);
      io_world.Return(*first);
      io_world.Return(copy);
    };
    auto const return_and_take = [&io_world, second] {
      io_world.Return(*second);
      auto other = io_world.Take();
      io_world.Return(other);
    };
    return typename TestFixture::Actors{copy_and_return, return_and_take, TakeAndReturn(io_world, 1)};
  });
}

// Positions wrap without a gap only in a ring whose size is a power of two.
TEST(ObjectPoolExplorationAtTheWrap, PositionsWrapUnderThreads) {
  std::optional<World<2>> world;
  Exploration exploration;
  auto const start = [&] {
    world.reset();
    world.emplace();
    world->Preset(~0UL - 2);
    return World<2>::Actors{TakeAndReturn(*world, 2), TakeAndReturnTwo(*world, 1), TakeAndReturn(*world, 2)};
  };
  Exploration::Program const program = {start, [&] { world->Finish(); }};
  auto const is_failed = [&] { return !world->GetFailure().empty(); };
  std::size_t const searched = exploration.SearchAll(program, 2, is_failed);
  EXPECT_FALSE(exploration.IsStuck()) << exploration.GetSchedule();
  EXPECT_EQ(world->GetFailure(), "") << exploration.GetSchedule();
  std::size_t const walked = exploration.WalkRandomly(program, 3000, 20261121, is_failed);
  EXPECT_EQ(world->GetFailure(), "") << exploration.GetSchedule();
  EXPECT_GT(searched, 100U);
  RecordExecutions(searched, walked);
  std::cout << "2 slots at the wrap: " << searched << " executions with at most 2 preemptions, " << walked
            << " random ones\n";
}

}  // namespace
}  // namespace lum

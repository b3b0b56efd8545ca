// Every test replays one interleaving of two or three threads step by step, on the library's own pool and
// block with stepped atomics and mutexes. Afterwards no slot has two owners, none is lost, no freed block was
// accessed or freed again, and every block is current or freed.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <memory>
#include <set>
#include <stdexcept>
#include <vector>

#include "geometry/ObjectPool.h"
#include "tests/support/BlockCensus.h"
#include "tests/support/ObjectPoolTestAccess.h"
#include "tests/support/Stepping.h"
#include "tests/support/Throws.h"

namespace lum {
namespace {

using Access = ObjectPoolTestAccess;
using test::BlockCensus;
using test::Operation;
using test::Stepper;

struct Object {
  std::array<unsigned long, 8> values;
};
using Pool = ObjectPool<Object, 32, 16, test::SteppedPolicy>;
using PoolHandle = Pool::ObjectHandle;

class ObjectPoolInterleaving : public testing::Test {
 protected:
  void SetUp() override {
    m_pool = std::make_unique<Pool>();
    m_first_block = Access::CurrentBlock(*m_pool);
    Stepper::Observer() = [this](void const* ip_address) {
      if (BlockCensus::IsInFreedBlock(ip_address)) ++m_late_accesses;
    };
  }

  void TearDown() override {
    m_handles.clear();
    // All blocks but the current one are freed, each once.
    EXPECT_EQ(m_census.GetMade() - m_census.GetFreed(), 1U);
    m_pool.reset();
    EXPECT_EQ(m_census.GetMade(), m_census.GetFreed());
    EXPECT_EQ(m_census.GetFreedAgain(), 0U);
    EXPECT_EQ(m_late_accesses, 0U);
    Stepper::Observer() = nullptr;
  }

  // Takes objects until `i_count` handles are held.
  void FillTo(std::size_t i_count) {
    while (m_handles.size() < i_count) m_handles.push_back(m_pool->CreateObject());
  }

  // Moves one of the held handles out.
  PoolHandle Extract(std::ptrdiff_t i_index) {
    PoolHandle handle = std::move(m_handles[static_cast<std::size_t>(i_index)]);
    m_handles.erase(m_handles.begin() + i_index);
    return handle;
  }

  std::set<Object*> GetDistinctObjects() const {
    std::set<Object*> objects;
    for (PoolHandle const& handle : m_handles) objects.insert(handle.Get());
    return objects;
  }

  void const* GetUseCount() const { return &Access::UseCount(*m_first_block); }
  void const* GetEntry(std::size_t i_position) const { return &Access::Entry(*m_first_block, i_position); }

  BlockCensus m_census{sizeof(Pool::Block), BlockCensus::Freed::kKeptAside};
  std::unique_ptr<Pool> m_pool;
  Pool::Block* m_first_block = nullptr;
  std::vector<PoolHandle> m_handles;
  std::size_t m_late_accesses = 0;
};

// A take stops between reading its ring entry and marking it. Without the lock, another thread could read the
// same entry now.
TEST_F(ObjectPoolInterleaving, ATakeIsNotOvertakenBeforeItMarksItsEntry) {
  PoolHandle first;
  PoolHandle second;
  {
    Stepper stepper;
    auto const take = stepper.Add([&] { first = m_pool->CreateObject(); });
    auto const other_take = stepper.Add([&] { second = m_pool->CreateObject(); });
    ASSERT_TRUE(stepper.RunTo(take, Operation::kStore, GetEntry(0)));
    stepper.Finish(other_take);
    ASSERT_TRUE(stepper.Finish(take));
    ASSERT_TRUE(stepper.Finish(other_take));
  }
  m_handles.push_back(std::move(first));
  m_handles.push_back(std::move(second));
  FillTo(32);
  EXPECT_EQ(GetDistinctObjects().size(), 32U);
  EXPECT_EQ(Access::CurrentBlock(*m_pool), m_first_block) << "a slot of the first block is lost";
}

// A return stops between claiming its ring position and storing its slot there. A later return makes room for
// a take, which must not read the old entry.
TEST_F(ObjectPoolInterleaving, ATakeDoesNotReadTheEntryOfAReturnInFlight) {
  FillTo(32);
  PoolHandle first = Extract(5);
  PoolHandle second = Extract(6);
  Stepper stepper;
  auto const return_first = stepper.Add([&] { first = PoolHandle(); });
  auto const return_second = stepper.Add([&] { second = PoolHandle(); });
  ASSERT_TRUE(stepper.RunTo(return_first, Operation::kStore, GetEntry(0)));
  ASSERT_TRUE(stepper.Finish(return_second));
  m_handles.push_back(m_pool->CreateObject());
  EXPECT_EQ(GetDistinctObjects().size(), m_handles.size()) << "a slot has two owners";
  ASSERT_TRUE(stepper.Finish(return_first));
}

// A return stops between storing its slot and lowering the count. The slot cannot be taken until then: the
// count would exceed the number of slots.
TEST_F(ObjectPoolInterleaving, ASlotIsFreeOnceItsReturnHasLoweredTheCount) {
  FillTo(32);
  PoolHandle handle = Extract(5);
  Stepper stepper;
  auto const release = stepper.Add([&] { handle = PoolHandle(); });
  ASSERT_TRUE(stepper.RunTo(release, Operation::kSubtract, GetUseCount()));
  m_handles.push_back(m_pool->CreateObject());
  EXPECT_NE(Access::CurrentBlock(*m_pool), m_first_block);
  ASSERT_TRUE(stepper.Finish(release));
}

// The same for two returns and a take of two slots.
TEST_F(ObjectPoolInterleaving, TwoSlotsAreFreeOnceTheirReturnsHaveLoweredTheCount) {
  FillTo(32);
  PoolHandle first = Extract(5);
  PoolHandle second = Extract(6);
  Stepper stepper;
  auto const release_first = stepper.Add([&] { first = PoolHandle(); });
  auto const release_second = stepper.Add([&] { second = PoolHandle(); });
  ASSERT_TRUE(stepper.RunTo(release_first, Operation::kSubtract, GetUseCount()));
  ASSERT_TRUE(stepper.RunTo(release_second, Operation::kSubtract, GetUseCount()));
  auto const two = m_pool->CreateTwoObjects();
  EXPECT_NE(Access::CurrentBlock(*m_pool), m_first_block);
  ASSERT_TRUE(stepper.Finish(release_first));
  ASSERT_TRUE(stepper.Finish(release_second));
}

// A return has emptied the current block and stops. Others fill the block, supersede it, empty it again and
// free it. The first return must not access it any more.
TEST_F(ObjectPoolInterleaving, AReturnDoesNotTouchTheBlockThatItEmptied) {
  PoolHandle only = m_pool->CreateObject();
  Stepper stepper;
  auto const last_return = stepper.Add([&] { only = PoolHandle(); });
  ASSERT_TRUE(stepper.RunTo(last_return, Operation::kSubtract, GetUseCount()));
  stepper.Step(last_return);
  FillTo(33);
  EXPECT_NE(Access::CurrentBlock(*m_pool), m_first_block);
  m_handles.clear();
  EXPECT_EQ(m_census.GetFreed(), 1U);
  ASSERT_TRUE(stepper.Finish(last_return));
  EXPECT_EQ(m_census.GetFreed(), 1U);
}

// The block is full when a thread starts to make the next one, and empty when that one is published. No
// return is left that could free it, so the publisher does.
TEST_F(ObjectPoolInterleaving, ABlockEmptiedBeforeItIsSupersededIsFreedByThePublisher) {
  FillTo(32);
  PoolHandle next;
  Stepper stepper;
  auto const publisher = stepper.Add([&] { next = m_pool->CreateObject(); });
  ASSERT_TRUE(stepper.RunTo(publisher, Operation::kOr, GetUseCount()));
  m_handles.clear();
  EXPECT_EQ(m_census.GetFreed(), 0U);
  ASSERT_TRUE(stepper.Finish(publisher));
  EXPECT_EQ(m_census.GetFreed(), 1U);
}

// A take finds the block full and stops before it undoes its reservation. Without the lock, the block could
// be superseded and emptied meanwhile, and the undo would empty it without freeing it.
TEST_F(ObjectPoolInterleaving, AnUndoneReservationLeavesNoBlockBehind) {
  FillTo(32);
  PoolHandle first;
  PoolHandle second;
  {
    Stepper stepper;
    auto const undo = stepper.Add([&] { first = m_pool->CreateObject(); });
    auto const publisher = stepper.Add([&] { second = m_pool->CreateObject(); });
    ASSERT_TRUE(stepper.RunTo(undo, Operation::kSubtract, GetUseCount()));
    stepper.Finish(publisher);
    m_handles.clear();
    ASSERT_TRUE(stepper.Finish(undo));
    ASSERT_TRUE(stepper.Finish(publisher));
  }
  EXPECT_NE(first.Get(), second.Get());
}

// The next block is allocated, and locking the mutex to publish it fails.
TEST_F(ObjectPoolInterleaving, ALockThatFailsBeforePublishingLosesNoBlock) {
  FillTo(32);
  // The first and the second attempt lock the mutex before the publication does.
  Access::CurrentBlockMutex(*m_pool).FailAfter(2);
  EXPECT_TRUE(
      test::Throws<std::runtime_error>([&] { m_pool->CreateObject(); }, "the mutex cannot be locked"));
  EXPECT_EQ(m_census.GetMade(), 2U);
  EXPECT_EQ(m_census.GetFreed(), 1U);
  Access::CurrentBlockMutex(*m_pool).FailAfter(-1);
  FillTo(33);
  EXPECT_EQ(GetDistinctObjects().size(), 33U);
}

// Each of the three locks of a call fails in turn. Nothing stays reserved or locked.
TEST_F(ObjectPoolInterleaving, ALockThatFailsLeavesThePoolAsItWas) {
  FillTo(32);
  for (int locks = 0; locks < 3; ++locks) {
    Access::CurrentBlockMutex(*m_pool).FailAfter(locks);
    EXPECT_THROW(m_pool->CreateObject(), std::runtime_error);
    EXPECT_EQ(Access::UseCount(*m_first_block).load(), 32U);
    EXPECT_EQ(Access::CurrentBlock(*m_pool), m_first_block);
  }
  Access::CurrentBlockMutex(*m_pool).FailAfter(-1);
  m_handles.pop_back();
  FillTo(32);
  EXPECT_EQ(GetDistinctObjects().size(), 32U);
  EXPECT_EQ(Access::CurrentBlock(*m_pool), m_first_block);
}

// Taking two objects, the last of a block and the first of the next, locks the mutex five times. Each time
// may fail.
TEST_F(ObjectPoolInterleaving, ALockThatFailsWhileTwoAreTakenLosesNothing) {
  FillTo(31);
  auto& mutex = Access::CurrentBlockMutex(*m_pool);
  for (int locks = 0; locks < 5; ++locks) {
    mutex.FailAfter(locks);
    EXPECT_TRUE(
        test::Throws<std::runtime_error>([&] { m_pool->CreateTwoObjects(); }, "the mutex cannot be locked"));
    mutex.FailAfter(-1);
    EXPECT_EQ(Access::UseCount(*m_first_block).load(), 31U);
    EXPECT_EQ(Access::CurrentBlock(*m_pool), m_first_block);
  }
  auto [first, second] = m_pool->CreateTwoObjects();
  m_handles.push_back(std::move(first));
  m_handles.push_back(std::move(second));
  EXPECT_EQ(GetDistinctObjects().size(), 33U);
}

// A thread that finds the creation mutex locked tries again, until it gets an object of the block that the
// other thread made.
TEST_F(ObjectPoolInterleaving, OnlyTheHolderOfTheCreationMutexAllocates) {
  FillTo(32);
  PoolHandle made;
  PoolHandle waited;
  Stepper stepper;
  auto const creator = stepper.Add([&] { made = m_pool->CreateObject(); });
  auto const waiter = stepper.Add([&] { waited = m_pool->CreateObject(); });
  ASSERT_TRUE(stepper.RunTo(creator, Operation::kOr, GetUseCount()));
  stepper.Finish(waiter);
  ASSERT_TRUE(stepper.Finish(creator));
  ASSERT_TRUE(stepper.Finish(waiter));
  EXPECT_EQ(m_census.GetMade(), 2U);
  EXPECT_NE(made.Get(), waited.Get());
}

// Two returns read the last value of the position, and the second resets it first. The first return then
// claims the next position, so no entry is written twice.
TEST_F(ObjectPoolInterleaving, TwoReturnsThatMeetAtTheLastPositionClaimOneEach) {
  auto& position = Access::ReturnPosition(*m_first_block);
  position.store(~0UL);
  Access::TakePosition(*m_first_block).store(~0UL);
  FillTo(32);
  PoolHandle first = Extract(5);
  PoolHandle second = Extract(6);
  {
    Stepper stepper;
    auto const return_first = stepper.Add([&] { first = PoolHandle(); });
    auto const return_second = stepper.Add([&] { second = PoolHandle(); });
    ASSERT_TRUE(stepper.RunTo(return_first, Operation::kCompareExchange, &position));
    ASSERT_TRUE(stepper.Finish(return_second));
    ASSERT_TRUE(stepper.Finish(return_first));
  }
  EXPECT_EQ(position.load(), 1U);
  FillTo(32);
  EXPECT_EQ(GetDistinctObjects().size(), 32U);
  EXPECT_EQ(Access::CurrentBlock(*m_pool), m_first_block) << "a slot of the first block is lost";
}

// The tests above rely on this: an actor blocks on a stepped mutex that another one holds.
TEST_F(ObjectPoolInterleaving, TheStepperSeesAnActorBlock) {
  Stepper stepper;
  PoolHandle first;
  PoolHandle second;
  auto const holder = stepper.Add([&] { first = m_pool->CreateObject(); });
  auto const blocked = stepper.Add([&] { second = m_pool->CreateObject(); });
  ASSERT_TRUE(stepper.RunTo(holder, Operation::kAdd, GetUseCount()));
  EXPECT_FALSE(stepper.Finish(blocked));
  ASSERT_TRUE(stepper.Finish(holder));
  ASSERT_TRUE(stepper.Finish(blocked));
  EXPECT_EQ(second.Get(), first.Get() + 1);
}

}  // namespace
}  // namespace lum

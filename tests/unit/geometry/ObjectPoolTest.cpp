#include <gtest/gtest.h>

#include <array>
#include <barrier>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include "geometry/ObjectPool.h"
#include "tests/support/BlockCensus.h"
#include "tests/support/ObjectPoolTestAccess.h"

namespace lum {
namespace {

using Access = ObjectPoolTestAccess;
using Object = std::array<unsigned long, 8>;
using Pool = ObjectPool<Object, 32, 16>;
using PoolHandle = Pool::ObjectHandle;
using test::BlockCensus;

std::vector<PoolHandle> CreateObjects(Pool& io_pool, std::size_t i_count) {
  std::vector<PoolHandle> handles;
  while (handles.size() < i_count) handles.push_back(io_pool.CreateObject());
  return handles;
}

TEST(ObjectPool, HandsOutTheSlotsOfOneBlockInOrder) {
  Pool pool;
  auto const handles = CreateObjects(pool, 32);
  for (std::size_t slot = 0; slot < 32; ++slot) {
    EXPECT_EQ(handles[slot].Get(), handles[0].Get() + slot);
    EXPECT_EQ(handles[slot].GetReferenceCount(), 1U);
  }
}

TEST(ObjectPool, StartsANewBlockWithTheThirtyThirdObject) {
  BlockCensus const census(sizeof(Pool::Block));
  Pool pool;
  auto const handles = CreateObjects(pool, 32);
  EXPECT_EQ(BlockCensus::GetMade(), 1U);
  PoolHandle const next = pool.CreateObject();
  EXPECT_EQ(BlockCensus::GetMade(), 2U);
  EXPECT_EQ(next.Get(), Access::CurrentBlock(pool)->GetObject(0));
}

TEST(ObjectPool, TakesTwoObjectsAsTwoCallsWould) {
  Pool pool;
  auto const handles = pool.CreateTwoObjects();
  EXPECT_EQ(handles.first.Get(), Access::CurrentBlock(pool)->GetObject(0));
  EXPECT_EQ(handles.second.Get(), Access::CurrentBlock(pool)->GetObject(1));
  EXPECT_EQ(handles.first.GetReferenceCount(), 1U);
  EXPECT_EQ(handles.second.GetReferenceCount(), 1U);
}

TEST(ObjectPool, TakesTheLastObjectOfABlockAndTheFirstOfTheNext) {
  BlockCensus const census(sizeof(Pool::Block));
  Pool pool;
  auto const earlier = CreateObjects(pool, 31);
  auto const handles = pool.CreateTwoObjects();
  EXPECT_EQ(BlockCensus::GetMade(), 2U);
  EXPECT_EQ(handles.first.Get(), earlier[0].Get() + 31);
  EXPECT_EQ(handles.second.Get(), Access::CurrentBlock(pool)->GetObject(0));
}

TEST(ObjectPool, ReturnsTwoObjectsTogether) {
  Pool pool;
  auto handles = CreateObjects(pool, 32);
  Object* const first = handles[7].Get();
  Object* const second = handles[3].Get();
  PoolHandle::ReleaseTogether(handles[7], handles[3]);
  EXPECT_FALSE(handles[7]);
  EXPECT_FALSE(handles[3]);
  EXPECT_EQ(Access::UseCount(*Access::CurrentBlock(pool)).load(), 30U);
  auto const again = pool.CreateTwoObjects();
  EXPECT_EQ(again.first.Get(), first);
  EXPECT_EQ(again.second.Get(), second);
  EXPECT_EQ(handles[7].GetReferenceCount(), 0U) << "of a released handle";
  EXPECT_EQ(handles[3].GetReferenceCount(), 0U) << "of a released handle";
}

TEST(ObjectPool, KeepsSharedObjectsWhenReleasingTogether) {
  Pool pool;
  for (auto const shared : {&Pool::TwoObjects::first, &Pool::TwoObjects::second}) {
    auto handles = pool.CreateTwoObjects();
    PoolHandle const other = handles.*shared;
    PoolHandle::ReleaseTogether(handles.first, handles.second);
    EXPECT_FALSE(handles.first);
    EXPECT_FALSE(handles.second);
    EXPECT_EQ(other.GetReferenceCount(), 1U);
    EXPECT_EQ(Access::UseCount(*Access::CurrentBlock(pool)).load(), 1U);
  }
}

TEST(ObjectPool, ReleasesTwoHandlesOntoOneObject) {
  Pool pool;
  PoolHandle first = pool.CreateObject();
  PoolHandle second = first;
  PoolHandle third = first;
  PoolHandle::ReleaseTogether(first, second);
  EXPECT_EQ(third.GetReferenceCount(), 1U);
  EXPECT_EQ(Access::UseCount(*Access::CurrentBlock(pool)).load(), 1U);
  PoolHandle fourth = third;
  PoolHandle::ReleaseTogether(third, fourth);
  EXPECT_FALSE(third);
  EXPECT_FALSE(fourth);
  EXPECT_EQ(Access::UseCount(*Access::CurrentBlock(pool)).load(), 0U);
}

TEST(ObjectPool, ReleasesABoundHandleTogetherWithAnEmptyOne) {
  Pool pool;
  PoolHandle bound = pool.CreateObject();
  PoolHandle empty;
  PoolHandle::ReleaseTogether(bound, empty);
  EXPECT_EQ(Access::UseCount(*Access::CurrentBlock(pool)).load(), 0U);
  bound = pool.CreateObject();
  PoolHandle::ReleaseTogether(empty, bound);
  EXPECT_EQ(Access::UseCount(*Access::CurrentBlock(pool)).load(), 0U);
  PoolHandle::ReleaseTogether(empty, bound);
  EXPECT_FALSE(empty);
  EXPECT_FALSE(bound);
}

TEST(ObjectPool, ReturnsObjectsOfTwoBlocksEachToItsBlock) {
  BlockCensus const census(sizeof(Pool::Block));
  Pool pool;
  auto earlier = CreateObjects(pool, 31);
  auto handles = pool.CreateTwoObjects();
  earlier.clear();
  PoolHandle::ReleaseTogether(handles.first, handles.second);
  EXPECT_EQ(BlockCensus::GetFreed(), 1U);
  EXPECT_EQ(Access::UseCount(*Access::CurrentBlock(pool)).load(), 0U);
}

TEST(ObjectPool, FreesASupersededBlockWithItsLastTwoObjects) {
  BlockCensus const census(sizeof(Pool::Block));
  Pool pool;
  auto handles = CreateObjects(pool, 32);
  PoolHandle const next = pool.CreateObject();
  while (handles.size() > 2) handles.pop_back();
  EXPECT_EQ(BlockCensus::GetFreed(), 0U);
  PoolHandle::ReleaseTogether(handles[0], handles[1]);
  EXPECT_EQ(BlockCensus::GetFreed(), 1U);
}

TEST(ObjectPool, ReusesReturnedObjectsInTheOrderOfTheirReturn) {
  Pool pool;
  auto handles = CreateObjects(pool, 32);
  std::vector<Object*> const returned = {handles[9].Get(), handles[3].Get(), handles[20].Get()};
  for (std::size_t const slot : {9U, 3U, 20U}) handles[slot] = PoolHandle();
  for (Object* const object : returned) {
    handles.push_back(pool.CreateObject());
    EXPECT_EQ(handles.back().Get(), object);
  }
}

TEST(ObjectPool, KeepsTheValuesOfARecycledObject) {
  Pool pool;
  auto handles = CreateObjects(pool, 32);
  *handles[4] = {1, 2, 3, 4, 5, 6, 7, 8};
  handles[4] = PoolHandle();
  PoolHandle const recycled = pool.CreateObject();
  EXPECT_EQ(*recycled, (Object{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(ObjectPool, FreesASupersededBlockWithItsLastObject) {
  BlockCensus const census(sizeof(Pool::Block));
  Pool pool;
  auto first_block = CreateObjects(pool, 32);
  PoolHandle const second_block = pool.CreateObject();
  while (first_block.size() > 1) first_block.pop_back();
  EXPECT_EQ(BlockCensus::GetFreed(), 0U);
  first_block.clear();
  EXPECT_EQ(BlockCensus::GetFreed(), 1U);
}

TEST(ObjectPool, KeepsItsCurrentBlockWhenTheLastObjectReturns) {
  BlockCensus const census(sizeof(Pool::Block));
  Pool pool;
  Object* const first = pool.CreateObject().Get();
  EXPECT_EQ(BlockCensus::GetFreed(), 0U);
  EXPECT_EQ(pool.CreateObject().Get(), first + 1);
}

TEST(ObjectPool, FreesItsCurrentBlockOnDestruction) {
  BlockCensus const census(sizeof(Pool::Block));
  {
    Pool pool;
    pool.CreateObject();
  }
  EXPECT_EQ(BlockCensus::GetFreed(), 1U);
}

TEST(ObjectPool, KeepsObjectsWithHandlesOnDestruction) {
  BlockCensus const census(sizeof(Pool::Block));
  PoolHandle survivor;
  {
    Pool pool;
    survivor = pool.CreateObject();
  }
  EXPECT_EQ(BlockCensus::GetFreed(), 0U);
  (*survivor)[7] = 7;
  survivor = PoolHandle();
  EXPECT_EQ(BlockCensus::GetFreed(), 1U);
}

TEST(ObjectPool, ReturnsTheObjectOnlyWithTheLastOfItsHandles) {
  Pool pool;
  auto handles = CreateObjects(pool, 32);
  Object* const object = handles[11].Get();
  PoolHandle copy = handles[11];
  handles[11] = PoolHandle();
  EXPECT_EQ(copy.GetReferenceCount(), 1U);
  EXPECT_EQ(Access::UseCount(*Access::CurrentBlock(pool)).load(), 32U);
  copy = PoolHandle();
  EXPECT_EQ(pool.CreateObject().Get(), object);
}

// Nothing is returned, so no take can meet a return in flight, and each block is superseded only when full.
// The number of blocks is therefore the number of objects divided by 32, rounded up, in every interleaving.
TEST(ObjectPool, ManyThreadsMakeOnlyTheBlocksThatTheyFill) {
  constexpr std::size_t threads = 8;
  constexpr std::size_t objects = 500;
  BlockCensus const census(sizeof(Pool::Block));
  Pool pool;
  std::vector<std::vector<PoolHandle>> handles(threads);
  {
    std::barrier start(threads);
    std::vector<std::jthread> workers;
    for (auto& own : handles) {
      workers.emplace_back([&] {
        start.arrive_and_wait();
        own = CreateObjects(pool, objects);
      });
    }
  }
  std::set<Object*> distinct;
  for (auto const& own : handles) {
    for (PoolHandle const& handle : own) distinct.insert(handle.Get());
  }
  EXPECT_EQ(distinct.size(), threads * objects);
  EXPECT_EQ(BlockCensus::GetMade(), (threads * objects + 31) / 32);
}

}  // namespace
}  // namespace lum

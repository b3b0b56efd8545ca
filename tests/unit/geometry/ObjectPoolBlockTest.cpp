#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "geometry/ObjectPoolBlock.h"
#include "tests/support/ObjectPoolTestAccess.h"

namespace lum {
namespace {

using Access = ObjectPoolTestAccess;
using Object = std::array<unsigned long, 8>;
using Block = ObjectPoolBlock<Object, 32, 16>;

constexpr unsigned long all_ones = ~0UL;

std::vector<std::size_t> TakeSlots(Block& io_block, std::size_t i_count) {
  std::vector<std::size_t> slots;
  while (slots.size() < i_count) slots.push_back(io_block.TakeSlot().value());
  return slots;
}

std::vector<std::size_t> Iota(std::size_t i_first, std::size_t i_last) {
  std::vector<std::size_t> slots;
  for (std::size_t slot = i_first; slot <= i_last; ++slot) slots.push_back(slot);
  return slots;
}

TEST(ObjectPoolBlock, HandsOutItsSlotsInOrder) {
  Block block;
  EXPECT_EQ(TakeSlots(block, 32), Iota(0, 31));
}

TEST(ObjectPoolBlock, RefusesASlotWhenFullAndUndoesTheReservation) {
  Block block;
  TakeSlots(block, 32);
  EXPECT_FALSE(block.TakeSlot());
  EXPECT_EQ(Access::UseCount(block).load(), 32U);
  EXPECT_EQ(Access::TakePosition(block).load(), 32U);
}

TEST(ObjectPoolBlock, HandsOutFreshSlotsBeforeReturnedOnes) {
  Block block;
  TakeSlots(block, 3);
  EXPECT_FALSE(block.ReturnSlot(block.GetObject(1)));
  EXPECT_EQ(TakeSlots(block, 29), Iota(3, 31));
  EXPECT_EQ(block.TakeSlot().value(), 1U);
  EXPECT_FALSE(block.TakeSlot());
}

TEST(ObjectPoolBlock, ReusesReturnedSlotsInTheOrderOfTheirReturn) {
  Block block;
  TakeSlots(block, 32);
  std::vector<std::size_t> const returned = {7, 31, 0, 16, 5};
  for (std::size_t const slot : returned) EXPECT_FALSE(block.ReturnSlot(block.GetObject(slot)));
  EXPECT_EQ(TakeSlots(block, 5), returned);
  EXPECT_FALSE(block.TakeSlot());
}

TEST(ObjectPoolBlock, TakesTwoSlotsAsTwoTakesWould) {
  Block block;
  for (std::size_t slot = 0; slot < 32; slot += 2) {
    EXPECT_EQ(block.TakeTwoSlots().value(), (std::array<std::size_t, 2>{slot, slot + 1}));
  }
  EXPECT_FALSE(block.TakeTwoSlots());
  EXPECT_EQ(Access::UseCount(block).load(), 32U);
  EXPECT_EQ(Access::TakePosition(block).load(), 32U);
}

TEST(ObjectPoolBlock, KeepsASingleSlotForASingleTake) {
  Block block;
  TakeSlots(block, 31);
  EXPECT_FALSE(block.TakeTwoSlots());
  EXPECT_EQ(Access::UseCount(block).load(), 31U);
  EXPECT_EQ(block.TakeSlot().value(), 31U);
}

// A take finds this state between the store of a return and its decrement of the count.
TEST(ObjectPoolBlock, TakesNoTwoSlotsWhileTheCountLeavesRoomForOne) {
  Block block;
  TakeSlots(block, 32);
  EXPECT_FALSE(block.ReturnTwoSlots(block.GetObject(9), block.GetObject(4)));
  Access::UseCount(block).store(31);
  EXPECT_FALSE(block.TakeTwoSlots());
  EXPECT_EQ(Access::UseCount(block).load(), 31U);
  EXPECT_EQ(Access::TakePosition(block).load(), 32U);
  EXPECT_EQ(block.TakeSlot().value(), 9U);
}

// A take finds a mark when a return has claimed the position and has not stored its slot yet.
TEST(ObjectPoolBlock, TakesNeitherSlotWhereOneIsMarked) {
  constexpr unsigned long mark = all_ones;
  for (std::size_t const marked : {0U, 1U}) {
    Block block;
    Access::Entry(block, marked) = mark;
    EXPECT_FALSE(block.TakeTwoSlots());
    EXPECT_EQ(Access::UseCount(block).load(), 0U);
    EXPECT_EQ(Access::TakePosition(block).load(), 0U);
    EXPECT_EQ(Access::Entry(block, 1 - marked), 1 - marked);
  }
}

TEST(ObjectPoolBlock, MarksWhatItHasTaken) {
  Block block;
  block.TakeTwoSlots();
  block.TakeSlot();
  for (std::size_t position = 0; position < 3; ++position) EXPECT_GE(Access::Entry(block, position), 32U);
  EXPECT_EQ(Access::Entry(block, 3), 3U);
}

TEST(ObjectPoolBlock, ReturnsTwoSlotsInTheirOrder) {
  Block block;
  TakeSlots(block, 32);
  EXPECT_FALSE(block.ReturnTwoSlots(block.GetObject(9), block.GetObject(4)));
  EXPECT_EQ(Access::UseCount(block).load(), 30U);
  EXPECT_EQ(Access::ReturnPosition(block).load(), 2U);
  EXPECT_EQ(TakeSlots(block, 2), (std::vector<std::size_t>{9, 4}));
}

TEST(ObjectPoolBlock, ReturnsAndTakesTwoSlotsAcrossTheWrap) {
  for (unsigned long const start : {all_ones - 2, all_ones - 1, all_ones}) {
    Block block;
    Access::TakePosition(block).store(start);
    Access::ReturnPosition(block).store(start);
    std::size_t const first = start % 32;
    std::size_t const second = (first + 1) % 32;
    EXPECT_EQ(block.TakeTwoSlots().value(), (std::array<std::size_t, 2>{first, second}));
    EXPECT_EQ(Access::TakePosition(block).load(), start + 2);
    EXPECT_FALSE(block.ReturnTwoSlots(block.GetObject(second), block.GetObject(first)));
    EXPECT_EQ(Access::Entry(block, first), second);
    EXPECT_EQ(Access::Entry(block, second), first);
    EXPECT_EQ(Access::ReturnPosition(block).load(), start + 2);
  }
}

TEST(ObjectPoolBlock, ReportsThatTheReturnOfTwoEmptiedASupersededBlock) {
  Block block;
  TakeSlots(block, 3);
  EXPECT_FALSE(block.Supersede());
  EXPECT_FALSE(block.ReturnSlot(block.GetObject(0)));
  EXPECT_TRUE(block.ReturnTwoSlots(block.GetObject(1), block.GetObject(2)));
}

TEST(ObjectPoolBlock, ResetsTheTakePositionAtItsLastValue) {
  Block block;
  Access::TakePosition(block).store(all_ones - 1);
  EXPECT_EQ(TakeSlots(block, 2), Iota(30, 31));
  EXPECT_EQ(Access::TakePosition(block).load(), 0U);
  EXPECT_EQ(block.TakeSlot().value(), 0U);
}

TEST(ObjectPoolBlock, ResetsTheReturnPositionAtItsLastValue) {
  Block block;
  TakeSlots(block, 3);
  Access::ReturnPosition(block).store(all_ones - 1);
  EXPECT_FALSE(block.ReturnSlot(block.GetObject(2)));
  EXPECT_EQ(Access::Entry(block, 30), 2U);
  EXPECT_EQ(Access::ReturnPosition(block).load(), all_ones);
  EXPECT_FALSE(block.ReturnSlot(block.GetObject(0)));
  EXPECT_EQ(Access::Entry(block, 31), 0U);
  EXPECT_EQ(Access::ReturnPosition(block).load(), 0U);
  EXPECT_FALSE(block.ReturnSlot(block.GetObject(1)));
  EXPECT_EQ(Access::Entry(block, 0), 1U);
}

TEST(ObjectPoolBlock, ReportsThatTheLastReturnEmptiedASupersededBlock) {
  Block block;
  TakeSlots(block, 2);
  EXPECT_FALSE(block.Supersede());
  EXPECT_FALSE(block.ReturnSlot(block.GetObject(0)));
  EXPECT_TRUE(block.ReturnSlot(block.GetObject(1)));
}

TEST(ObjectPoolBlock, ReportsThatASupersededBlockIsEmpty) {
  Block fresh;
  EXPECT_TRUE(fresh.Supersede());
  Block emptied;
  TakeSlots(emptied, 1);
  EXPECT_FALSE(emptied.ReturnSlot(emptied.GetObject(0))) << "the block is still current";
  EXPECT_TRUE(emptied.Supersede());
}

TEST(ObjectPoolBlock, StartsWithAllCountsAtZero) {
  Block block;
  for (std::size_t slot = 0; slot < 32; ++slot) EXPECT_EQ(block.GetReferenceCount(slot)->load(), 0U);
}

template <class T>
void ExpectPlacement() {
  using PlacedBlock = ObjectPoolBlock<T, 32, 16>;
  std::vector<std::byte> memory(sizeof(PlacedBlock) + 128);
  void* start = memory.data();
  std::size_t space = memory.size();
  ASSERT_NE(std::align(64, sizeof(PlacedBlock) + 64, start, space), nullptr);
  for (std::size_t offset = 0; offset <= 64; offset += alignof(PlacedBlock)) {
    SCOPED_TRACE(offset);
    auto* const block = new (static_cast<std::byte*>(start) + offset) PlacedBlock;
    auto const first = reinterpret_cast<std::uintptr_t>(block->GetObject(0));
    auto const begin = reinterpret_cast<std::uintptr_t>(block);
    EXPECT_EQ(first % 64, 0U);
    EXPECT_GE(first, begin);
    EXPECT_LE(first + 32 * sizeof(T), begin + sizeof(PlacedBlock));
    EXPECT_EQ(block->GetObject(31) - block->GetObject(0), 31);
    block->~PlacedBlock();
  }
}

TEST(ObjectPoolBlock, PlacesObjectsOnCacheLinesWhateverItsOwnAddress) {
  ExpectPlacement<std::array<float, 4>>();
  ExpectPlacement<std::array<float, 16>>();
  ExpectPlacement<std::array<double, 16>>();
}

}  // namespace
}  // namespace lum

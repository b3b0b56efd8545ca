#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "geometry/ObjectPoolBlock.h"
#include "geometry/ObjectPoolDeleter.h"
#include "tests/support/BlockCensus.h"
#include "tests/support/ObjectPoolTestAccess.h"

namespace lum {
namespace {

using Object = std::array<unsigned long, 8>;
using Block = ObjectPoolBlock<Object, 32, 16>;
struct Pool {};
using Deleter = ObjectPoolDeleter<Object, Pool, Block>;

TEST(ObjectPoolDeleter, IsCallableWithAPoolAndABlock) {
  Pool pool;
  Block block;
  EXPECT_TRUE(static_cast<bool>(Deleter{&pool, &block}));
  EXPECT_FALSE(static_cast<bool>(Deleter{nullptr, &block}));
  EXPECT_FALSE(static_cast<bool>(Deleter{&pool, nullptr}));
  EXPECT_FALSE(static_cast<bool>(Deleter{}));
}

TEST(ObjectPoolDeleter, PutsTheSlotOfTheObjectBackOnTheRing) {
  Pool pool;
  auto const block = std::make_unique<Block>();
  for (int taken = 0; taken < 6; ++taken) block->TakeSlot();
  Deleter{&pool, block.get()}(block->GetObject(4));
  EXPECT_EQ(ObjectPoolTestAccess::Entry(*block, 0), 4U);
  EXPECT_EQ(ObjectPoolTestAccess::UseCount(*block).load(), 5U);
}

TEST(ObjectPoolDeleter, FreesTheSupersededBlockThatItEmpties) {
  test::BlockCensus const census(sizeof(Block));
  Pool pool;
  auto* const block = new Block;
  block->TakeSlot();
  EXPECT_FALSE(block->Supersede());
  Deleter{&pool, block}(block->GetObject(0));
  EXPECT_EQ(test::BlockCensus::GetFreed(), 1U);
}

}  // namespace
}  // namespace lum

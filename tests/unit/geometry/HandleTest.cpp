#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "geometry/GlobalObjectPool.h"
#include "geometry/Handle.h"
#include "tests/support/Throws.h"

namespace lum {
namespace {

// What the deleter of a test does, and its last argument.
struct Pool {
  std::function<void()> on_return = [] {};
  int* last_returned = nullptr;
  int returns = 0;
};

struct Deleter {
  Pool* mp_pool = nullptr;
  explicit operator bool() const { return mp_pool != nullptr; }
  void operator()(int* ip_object) const {
    mp_pool->last_returned = ip_object;
    ++mp_pool->returns;
    mp_pool->on_return();
  }
};

using Count = std::atomic<unsigned long>;
using TestHandle = Handle<int, Count, Deleter>;

static_assert(std::is_nothrow_move_constructible_v<TestHandle>);
static_assert(sizeof(Handle<int, Count, Deleter>) == 3 * sizeof(void*));
static_assert(std::is_nothrow_copy_constructible_v<TestHandle>);
static_assert(!std::is_nothrow_move_assignable_v<TestHandle>, "this deleter may throw");
static_assert(std::is_nothrow_copy_assignable_v<QuaternionPoolTypes::ObjectHandle>);
static_assert(std::is_nothrow_move_assignable_v<QuaternionPoolTypes::ObjectHandle>);
static_assert(sizeof(QuaternionPoolTypes::ObjectHandle) == 4 * sizeof(void*));

class HandleOnObjects : public testing::Test {
 protected:
  TestHandle Bind(int& io_object, Count& io_count) { return {&io_object, &io_count, Deleter{&m_pool}}; }

  Pool m_pool;
  int m_first = 1;
  int m_second = 2;
  Count m_first_count{0};
  Count m_second_count{0};
};

TEST_F(HandleOnObjects, ChecksTheObjectThenTheCountThenTheDeleter) {
  using std::invalid_argument;
  EXPECT_TRUE(test::Throws<invalid_argument>([] { TestHandle(nullptr, nullptr, Deleter{}); },
                                             "ip_object cannot be nullptr"));
  EXPECT_TRUE(test::Throws<invalid_argument>([&] { TestHandle(nullptr, &m_first_count, Deleter{&m_pool}); },
                                             "ip_object cannot be nullptr"));
  EXPECT_TRUE(test::Throws<invalid_argument>([&] { TestHandle(&m_first, nullptr, Deleter{}); },
                                             "ip_reference_count cannot be nullptr"));
  EXPECT_TRUE(test::Throws<invalid_argument>([&] { TestHandle(&m_first, &m_first_count, Deleter{}); },
                                             "i_delete must be a callable function"));
  EXPECT_EQ(m_first_count, 0U);
  EXPECT_EQ(m_pool.returns, 0);
}

TEST_F(HandleOnObjects, RefusesAPooledObjectWithoutItsPoolOrItsBlock) {
  using Pooled = QuaternionPoolTypes;
  using Release = ObjectPoolDeleter<Pooled::Object, Pooled::ObjectPool, Pooled::ObjectPool::Block>;
  auto const block = std::make_unique<Pooled::ObjectPool::Block>();
  auto* const pool = Pooled::Global::m_pool.GetValue();
  auto* const count = block->GetReferenceCount(0);
  for (Release const& release : {Release{}, Release{pool, nullptr}, Release{nullptr, block.get()}}) {
    EXPECT_TRUE(test::Throws<std::invalid_argument>(
        [&] { Pooled::ObjectHandle(block->GetObject(0), count, release); },
        "i_delete must be a callable function"));
  }
  EXPECT_EQ(*count, 0U);
}

TEST_F(HandleOnObjects, CountsItsCopies) {
  {
    TestHandle const handle = Bind(m_first, m_first_count);
    EXPECT_EQ(handle.GetReferenceCount(), 1U);
    {
      std::vector<TestHandle> const copies(10, handle);
      EXPECT_EQ(handle.GetReferenceCount(), 11U);
    }
    EXPECT_EQ(handle.GetReferenceCount(), 1U);
    EXPECT_EQ(m_pool.returns, 0);
    EXPECT_EQ(handle.Get(), &m_first);
    EXPECT_EQ(*handle, 1);
    EXPECT_TRUE(handle);
  }
  EXPECT_EQ(m_first_count, 0U);
  EXPECT_EQ(m_pool.returns, 1);
  EXPECT_EQ(m_pool.last_returned, &m_first);
}

TEST_F(HandleOnObjects, Swaps) {
  TestHandle bound = Bind(m_first, m_first_count);
  TestHandle empty;
  bound.Swap(empty);
  EXPECT_FALSE(bound);
  EXPECT_EQ(empty.Get(), &m_first);
  EXPECT_EQ(empty.GetReferenceCount(), 1U);
  bound.Swap(empty);
  bound.Swap(bound);
  EXPECT_EQ(bound.Get(), &m_first);
  EXPECT_EQ(m_pool.returns, 0);
  bound = TestHandle();
  EXPECT_EQ(m_pool.last_returned, &m_first) << "the deleter is swapped too";
}

TEST_F(HandleOnObjects, AnEmptyHandleOwnsNothing) {
  TestHandle empty;
  EXPECT_FALSE(empty);
  EXPECT_EQ(empty.Get(), nullptr);
  EXPECT_EQ(empty.GetReferenceCount(), 0U);
  TestHandle const copy = empty;
  EXPECT_FALSE(copy);
  empty = TestHandle();
  EXPECT_EQ(m_pool.returns, 0);
}

TEST_F(HandleOnObjects, AMovedFromHandleIsEmptyAndTheCountUnchanged) {
  TestHandle source = Bind(m_first, m_first_count);
  TestHandle target = std::move(source);
  EXPECT_FALSE(source);  // NOLINT(bugprone-use-after-move): the test is about it
  EXPECT_EQ(target.GetReferenceCount(), 1U);
  source = Bind(m_second, m_second_count);
  EXPECT_EQ(*source, 2);
}

TEST_F(HandleOnObjects, SelfAssignmentDoesNotChangeTheCount) {
  TestHandle handle = Bind(m_first, m_first_count);
  TestHandle& alias = handle;
  handle = alias;
  EXPECT_EQ(m_first_count, 1U);
  handle = std::move(alias);
  EXPECT_EQ(m_first_count, 1U);
  EXPECT_EQ(handle.Get(), &m_first);
  EXPECT_EQ(m_pool.returns, 0);
}

// Assignment compares the objects, not their counts.
TEST_F(HandleOnObjects, AssignmentOfTheSameObjectWithAnotherCountKeepsTheCount) {
  m_second_count = 1;
  TestHandle handle = Bind(m_first, m_first_count);
  TestHandle other = Bind(m_first, m_second_count);
  handle = other;
  EXPECT_EQ(m_first_count, 1U);
  EXPECT_EQ(m_second_count, 2U);
  handle = std::move(other);
  EXPECT_EQ(m_first_count, 1U);
  EXPECT_EQ(m_second_count, 1U);
  EXPECT_EQ(m_pool.returns, 0);
}

TEST_F(HandleOnObjects, AssignmentOfTheSameObjectDoesNotChangeTheCount) {
  TestHandle first = Bind(m_first, m_first_count);
  TestHandle second = first;
  first = second;
  EXPECT_EQ(m_first_count, 2U);
  first = std::move(second);
  EXPECT_EQ(m_first_count, 1U) << "the reference of the source is dropped";
  EXPECT_FALSE(second);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(first.Get(), &m_first);
}

TEST_F(HandleOnObjects, AssignmentReleasesTheOldObject) {
  TestHandle target = Bind(m_first, m_first_count);
  TestHandle const source = Bind(m_second, m_second_count);
  target = source;
  EXPECT_EQ(m_pool.last_returned, &m_first);
  EXPECT_EQ(m_first_count, 0U);
  EXPECT_EQ(m_second_count, 2U);
  target = Bind(m_first, m_first_count);
  EXPECT_EQ(m_second_count, 1U);
}

TEST_F(HandleOnObjects, AssignmentToAMovedFromHandleReturnsNothing) {
  TestHandle target = Bind(m_first, m_first_count);
  TestHandle const holder = std::move(target);
  target = Bind(m_second, m_second_count);
  EXPECT_EQ(m_pool.returns, 0);
  EXPECT_EQ(m_first_count, 1U);
}

// If the target were still bound while its old object returns, an exception would leave it bound to a
// returned slot.
TEST_F(HandleOnObjects, AReleaseThatThrowsLeavesTheTargetEmptyAndTheSourceAsItWas) {
  TestHandle const source = Bind(m_second, m_second_count);
  TestHandle target = Bind(m_first, m_first_count);
  m_pool.on_return = [] { throw std::runtime_error("cannot return"); };
  EXPECT_TRUE(test::Throws<std::runtime_error>([&] { target = source; }, "cannot return"));
  EXPECT_FALSE(target);
  EXPECT_EQ(m_first_count, 0U);
  EXPECT_EQ(m_second_count, 1U);
  EXPECT_EQ(m_pool.returns, 1);
  m_pool.on_return = [] {};
}

TEST_F(HandleOnObjects, AReleaseThatThrowsWhileMovingLosesNoReference) {
  TestHandle const keeper = Bind(m_second, m_second_count);
  TestHandle source = keeper;
  TestHandle target = Bind(m_first, m_first_count);
  m_pool.on_return = [] { throw std::runtime_error("cannot return"); };
  EXPECT_TRUE(test::Throws<std::runtime_error>([&] { target = std::move(source); }, "cannot return"));
  m_pool.on_return = [] {};
  EXPECT_FALSE(target);
  EXPECT_FALSE(source);  // NOLINT(bugprone-use-after-move): the test is about it
  EXPECT_EQ(m_second_count, 1U) << "the moved reference is dropped";
  EXPECT_EQ(m_pool.returns, 1);
}

TEST_F(HandleOnObjects, TheTargetIsEmptyWhileItsOldObjectReturns) {
  TestHandle target = Bind(m_first, m_first_count);
  bool was_bound = true;
  m_pool.on_return = [&] { was_bound = static_cast<bool>(target); };
  target = Bind(m_second, m_second_count);
  EXPECT_FALSE(was_bound);
  was_bound = true;
  TestHandle const source = Bind(m_first, m_first_count);
  target = source;
  EXPECT_FALSE(was_bound);
  m_pool.on_return = [] {};
}

// Two threads hold a copy each and drop it, and one of them drops the last. The count changes by atomic
// operations only, so exactly one drop reads 1, when no other copy is left: the object returns once in each
// round.
TEST_F(HandleOnObjects, ReturnsTheObjectOnceFromConcurrentDrops) {
  constexpr int rounds = 2000;
  std::barrier meeting(2);
  std::array<TestHandle, 2> copies;
  for (int round = 0; round < rounds; ++round) {
    copies[0] = Bind(m_first, m_first_count);
    copies[1] = copies[0];
    {
      std::vector<std::jthread> threads;
      threads.reserve(copies.size());
      for (TestHandle& copy : copies) {
        threads.emplace_back([&copy, &meeting] {
          meeting.arrive_and_wait();
          TestHandle const another = copy;
          copy = TestHandle();
        });
      }
    }
    ASSERT_EQ(m_pool.returns, round + 1);
    ASSERT_EQ(m_first_count, 0U);
  }
}

// Records the memory order of every load, and is otherwise a plain counter.
struct RecordingCount {
  unsigned long load(std::memory_order i_order = std::memory_order_seq_cst) {
    order = i_order;
    return value;
  }
  void store(unsigned long i_value, std::memory_order) { value = i_value; }
  unsigned long fetch_add(unsigned long i_value) { return std::exchange(value, value + i_value); }
  unsigned long fetch_sub(unsigned long i_value) { return std::exchange(value, value - i_value); }

  unsigned long value = 0;
  std::memory_order order = std::memory_order_relaxed;
};

// A caller that reads a count of 1 may write the object, so the reads of former owners must happen before.
TEST_F(HandleOnObjects, ReadsTheCountWithAcquire) {
  RecordingCount count;
  Handle<int, RecordingCount, Deleter> const handle(&m_first, &count, Deleter{&m_pool});
  EXPECT_EQ(handle.GetReferenceCount(), 1U);
  EXPECT_TRUE(count.order == std::memory_order_acquire || count.order == std::memory_order_seq_cst);
}

}  // namespace
}  // namespace lum

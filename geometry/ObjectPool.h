#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>

#include "Utility/optional.h"
#include "geometry/Handle.h"
#include "geometry/ObjectPoolBlock.h"
#include "geometry/ObjectPoolDeleter.h"
#include "geometry/internal/Export.h"
#include "geometry/internal/ObjectPoolPolicy.h"
#include "geometry/internal/SingleThread.h"

namespace lum {

/// Creates handles onto fixed-size objects. An object returns to the pool when its last handle releases it.
///
/// Objects come from the current block. A new block supersedes a full one. A superseded block is freed when
/// the last of its objects returns. The pool keeps no list of blocks.
///
/// Thread safety: any number of threads may create objects and release handles at once. Handles may outlive
/// the pool. The destruction of the pool must not overlap with the creation of an object.
///
/// Lock order: the creation mutex, then the current-block mutex. The current-block mutex is never held across
/// an allocation. A return takes no lock.
///
/// The template parameters are those of `ObjectPoolBlock`.
template <class T, std::size_t Size, std::size_t Alignment, class Policy = internal::ObjectPoolPolicy>
class ObjectPool {
 public:
  /// A block of objects.
  using Block = ObjectPoolBlock<T, Size, Alignment, Policy>;
  /// A shared owner of an object.
  using ObjectHandle = Handle<T, typename Block::ReferenceCount, ObjectPoolDeleter<T, ObjectPool, Block>>;

  /// Allocates the first block. Passes on what the allocation throws.
  ObjectPool();
  ObjectPool(ObjectPool const&) = delete;
  ObjectPool& operator=(ObjectPool const&) = delete;
  /// Supersedes the current block, which is freed when the last of its objects has returned.
  ~ObjectPool();

  /// Returns the only handle onto an uninitialised object. The caller must write every value before it is
  /// read. A recycled object has its previous values.
  ///
  /// Passes on what allocating a block or locking a mutex throws. An error leaves the pool unchanged.
  ///
  /// Cost: one lock of the current-block mutex, which is elided while the process has never had a second
  /// thread. If no objects return, one in `Size` calls also allocates a block, locks that mutex twice more
  /// and locks the creation mutex.
  ObjectHandle CreateObject();
  /// The only handles onto two objects.
  struct TwoObjects {
    ObjectHandle first;   ///< Onto the object taken first.
    ObjectHandle second;  ///< Onto the object taken second.
  };
  /// The two objects that two calls of `CreateObject` would give, at little more than the cost of one call.
  /// Throws what those calls throw. An error leaves no object taken.
  TwoObjects CreateTwoObjects();

 private:
  friend struct ObjectPoolTestAccess;

  struct Slot {
    Block* block;
    std::size_t index;
  };

  LUM_HIDDEN ObjectHandle MakeHandle(Block& io_block, std::size_t i_slot) noexcept;
  LUM_HIDDEN Slot TakeSlotSlowly();
  LUM_HIDDEN optional<Slot> TakeFromCurrentBlock();
  LUM_HIDDEN Slot TakeFromNewBlock();

  // Never null. Guarded by m_current_block_mutex.
  Block* m_current_block;
  // Held by the one thread that creates the next block. Taken by try_lock only.
  typename Policy::Mutex m_creation_mutex;
  // Guards m_current_block, every take from that block, and its superseding.
  typename Policy::Mutex m_current_block_mutex;
};

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
ObjectPool<T, Size, Alignment, Policy>::ObjectPool() : m_current_block(new Block) {}

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
ObjectPool<T, Size, Alignment, Policy>::~ObjectPool() {
  if (m_current_block->Supersede()) delete m_current_block;
}

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
typename ObjectPool<T, Size, Alignment, Policy>::ObjectHandle
ObjectPool<T, Size, Alignment, Policy>::CreateObject() {
  auto const taken = TakeFromCurrentBlock();
  Slot const slot = taken ? *taken : TakeSlotSlowly();
  return MakeHandle(*slot.block, slot.index);
}

// Takes the objects one by one if the block does not have two free slots.
template <class T, std::size_t Size, std::size_t Alignment, class Policy>
typename ObjectPool<T, Size, Alignment, Policy>::TwoObjects
ObjectPool<T, Size, Alignment, Policy>::CreateTwoObjects() {
  {
    internal::ThreadLock<typename Policy::Mutex> const lock(m_current_block_mutex);
    Block& block = *m_current_block;
    if (auto const slots = block.TakeTwoSlots()) {
      return {MakeHandle(block, (*slots)[0]), MakeHandle(block, (*slots)[1])};
    }
  }
  return {CreateObject(), CreateObject()};
}

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
inline typename ObjectPool<T, Size, Alignment, Policy>::ObjectHandle
ObjectPool<T, Size, Alignment, Policy>::MakeHandle(Block& io_block, std::size_t i_slot) noexcept {
  return ObjectHandle(internal::FirstReference(), io_block.GetObject(i_slot),
                      io_block.GetReferenceCount(i_slot), {this, &io_block});
}

// A thread that finds the block full while another thread creates the next one retries at once. The wait is
// short: the other thread allocates one block, and a return may free a slot sooner.
template <class T, std::size_t Size, std::size_t Alignment, class Policy>
typename ObjectPool<T, Size, Alignment, Policy>::Slot
ObjectPool<T, Size, Alignment, Policy>::TakeSlotSlowly() {
  for (;;) {
    std::unique_lock<typename Policy::Mutex> const creation(m_creation_mutex, std::try_to_lock);
    // Since the last attempt another thread may have published a block, or objects may have come back.
    if (auto const slot = TakeFromCurrentBlock()) return *slot;
    if (creation.owns_lock()) return TakeFromNewBlock();
  }
}

// The slot is read from the ring under the lock. If a take only reserved its slot under the lock and read the
// ring afterwards, another take and a return could overwrite the entry before it is read.
template <class T, std::size_t Size, std::size_t Alignment, class Policy>
inline optional<typename ObjectPool<T, Size, Alignment, Policy>::Slot>
ObjectPool<T, Size, Alignment, Policy>::TakeFromCurrentBlock() {
  internal::ThreadLock<typename Policy::Mutex> const lock(m_current_block_mutex);
  if (auto const index = m_current_block->TakeSlot()) return Slot{m_current_block, *index};
  return nullopt;
}

// Called with m_creation_mutex held. This function owns the new block until it is published, so a lock that
// throws leaks nothing.
template <class T, std::size_t Size, std::size_t Alignment, class Policy>
typename ObjectPool<T, Size, Alignment, Policy>::Slot
ObjectPool<T, Size, Alignment, Policy>::TakeFromNewBlock() {
  auto block = std::make_unique<Block>();
  Slot const slot{block.get(), *block->TakeSlot()};
  std::unique_ptr<Block> empty;
  {
    internal::ThreadLock<typename Policy::Mutex> const lock(m_current_block_mutex);
    Block* const previous = std::exchange(m_current_block, block.release());
    if (previous->Supersede()) empty.reset(previous);
  }
  return slot;
}

}  // namespace lum

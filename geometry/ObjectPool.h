#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>

#include "Utility/optional.h"
#include "geometry/Handle.h"
#include "geometry/ObjectPoolBlock.h"
#include "geometry/ObjectPoolDeleter.h"
#include "geometry/internal/ObjectPoolPolicy.h"
#include "geometry/internal/SingleThread.h"

namespace lum {

/// Hands out fixed-size objects one at a time and takes them back when their last handle lets go.
///
/// Objects come from the current block. A full one is superseded by a new block and from then on belongs to
/// its outstanding objects: the last of them to return frees it. The pool keeps no list of blocks.
///
/// Thread safety: `CreateObject` and the release of handles from any number of threads at once. Handles may
/// outlive the pool; destroying it must not overlap with a call of `CreateObject`.
///
/// Lock order: the creation mutex, then the current-block mutex. The latter is never held across an
/// allocation, and returning an object takes no lock.
///
/// The template parameters are those of `ObjectPoolBlock`.
template <class T, std::size_t Size, std::size_t Alignment, class Policy = internal::ObjectPoolPolicy>
class ObjectPool {
 public:
  /// What it takes its objects from.
  using Block = ObjectPoolBlock<T, Size, Alignment, Policy>;
  /// What owns an object that is handed out.
  using ObjectHandle = Handle<T, typename Block::ReferenceCount, ObjectPoolDeleter<T, ObjectPool, Block>>;

  /// Allocates the first block; passes on what that throws.
  ObjectPool();
  ObjectPool(ObjectPool const&) = delete;
  ObjectPool& operator=(ObjectPool const&) = delete;
  /// Lets go of the current block, which the last of its outstanding objects frees.
  ~ObjectPool();

  /// The only handle onto an object whose contents are not initialised: the caller writes every value before
  /// the object is read. A recycled object still holds its previous values.
  ///
  /// Passes on what allocating a block or locking a mutex throws; the pool is unchanged then.
  ///
  /// Cost: a lock, or none while the process has never had a second thread; one in `Size` calls locks again
  /// and allocates a block, where none come back meanwhile.
  ObjectHandle CreateObject();
  /// The first handles onto two objects.
  struct TwoObjects {
    ObjectHandle first;   ///< Onto the one taken first.
    ObjectHandle second;  ///< Onto the one taken after it.
  };
  /// Two objects at once, for little more than one: those that two calls of `CreateObject` would give. Throws
  /// what they do, and has then returned what it took.
  TwoObjects CreateTwoObjects();

 private:
  friend struct ObjectPoolTestAccess;

  struct Slot {
    Block* block;
    std::size_t index;
  };

  ObjectHandle MakeHandle(Block& io_block, std::size_t i_slot) noexcept;
  Slot TakeSlotSlowly();
  optional<Slot> TakeFromCurrentBlock();
  Slot TakeFromNewBlock();

  // Never null. Guarded by m_current_block_mutex.
  Block* m_current_block;
  // Held by the one thread that is making the next block; taken with try_lock only.
  typename Policy::Mutex m_creation_mutex;
  // Guards m_current_block, every take from it, and its superseding.
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

// Where there are not two slots to be had at once, the objects are taken one by one.
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

// A thread that finds the block full while another makes the next one tries again at once: the new block is
// an allocation away, or a return may come first.
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

// The slot is read from the ring before the lock goes: a take that had only reserved could be overtaken by a
// take and a return of another slot, which would overwrite the entry that it is about to read.
template <class T, std::size_t Size, std::size_t Alignment, class Policy>
inline optional<typename ObjectPool<T, Size, Alignment, Policy>::Slot>
ObjectPool<T, Size, Alignment, Policy>::TakeFromCurrentBlock() {
  internal::ThreadLock<typename Policy::Mutex> const lock(m_current_block_mutex);
  if (auto const index = m_current_block->TakeSlot()) return Slot{m_current_block, *index};
  return nullopt;
}

// Called with m_creation_mutex held. Until the new block is published it is owned here, so that a lock that
// throws loses nothing.
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

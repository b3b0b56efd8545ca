#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "Utility/optional.h"
#include "geometry/internal/ObjectPoolPolicy.h"
#include "geometry/internal/SingleThread.h"

namespace lum {

/// A block of `Size` objects of T, with the ring of its free slots and a reference count for each object.
///
/// The ring hands slots out first in, first out. Takes read it in the same cyclic order in which returns
/// write it:
///
///     ring entry    0    1    2    3   ...  31        a slot index, or kTaken
///                        ^              ^
///         m_take_position mod 32        m_return_position mod 32
///
///     use count     bit 63: superseded, bits 0 to 62: objects handed out and reservations in flight
///
/// A take replaces the entry that it reads by kTaken. A return claims its position, stores its slot and only
/// then lowers the use count. The pool lets one take in at a time, so return n claims its position after take
/// n has read and marked there: no return overwrites an entry that is still to be read. A take that finds
/// kTaken has met a return between its claim and its store; it takes nothing and calls the block full.
///
/// Two slots may be taken, and returned, in one go: with the effect of two takes or returns in a row.
///
/// The block frees nothing itself: whoever brings the use count to "superseded, none in use" is told so by
/// the call that did it, and is the only one to be told.
///
/// Objects are raw storage. No constructor or destructor of T ever runs, and a recycled slot still holds the
/// bytes of its previous object.
///
/// Thread safety: `ReturnSlot` and `ReturnTwoSlots` from any number of threads at once. `TakeSlot`,
/// `TakeTwoSlots` and `Supersede` are serialised by the caller (the pool's current-block mutex, or a block
/// that no other thread knows yet).
///
/// \tparam T          the object, trivially destructible
/// \tparam Size       objects in the block; a power of two, so that the ring goes on without a gap when a
///                    position wraps
/// \tparam Alignment  the least alignment of the objects in bytes
/// \tparam Policy     what it synchronises with
template <class T, std::size_t Size, std::size_t Alignment, class Policy = internal::ObjectPoolPolicy>
class ObjectPoolBlock {
  static_assert(std::is_trivially_destructible_v<T>, "a pool never runs a destructor of its objects");
  static_assert(sizeof(unsigned long) == 8, "positions and marks are 64-bit words");
  static_assert(Size > 0 && Alignment > 0 && (Alignment & (Alignment - 1)) == 0);

 public:
  /// The count that the handles onto an object share.
  using ReferenceCount = typename Policy::template Atomic<unsigned long>;

  /// All slots free, in order.
  ObjectPoolBlock() noexcept;
  ObjectPoolBlock(ObjectPoolBlock const&) = delete;
  ObjectPoolBlock& operator=(ObjectPoolBlock const&) = delete;

  /// Reserves a slot and takes it from the ring; empty when the block is full.
  optional<std::size_t> TakeSlot() noexcept;
  /// Two slots in the order in which `TakeSlot` would give them; empty when there are not two to be had.
  optional<std::array<std::size_t, 2>> TakeTwoSlots() noexcept;

  /// Puts the slot of an object back on the ring. Lock-free.
  /// \return true when this left the superseded block empty: the caller frees it. Otherwise the caller must
  /// not touch the block again, since another thread may free it at any time.
  [[nodiscard]] bool ReturnSlot(T const* ip_object) noexcept;
  /// The same for two objects, the first of them first.
  [[nodiscard]] bool ReturnTwoSlots(T const* ip_first, T const* ip_second) noexcept;

  /// Marks the block as no longer current; from now on its last return frees it.
  /// \return true when no slot is in use: the caller frees the block.
  [[nodiscard]] bool Supersede() noexcept;

  /// The object of a slot below `Size`, unchecked.
  T* GetObject(std::size_t i_slot) noexcept { return m_objects + i_slot; }
  /// The count of a slot below `Size`, unchecked.
  ReferenceCount* GetReferenceCount(std::size_t i_slot) noexcept { return &m_reference_counts[i_slot]; }

 private:
  friend struct ObjectPoolTestAccess;

  using Counter = typename Policy::template Atomic<unsigned long>;
  using Entry = typename Policy::template AtomicRef<unsigned long>;

  // Enumerators, since static data members of an exported template would be exported too.
  enum : unsigned long {
    kSuperseded = 1UL << 63,
    kTaken = ~0UL,
    kLastPosition = ~0UL,
    // Objects stand on cache lines of their own where their size allows. Callers may also be compiled for
    // wide vectors and then use aligned accesses of up to 64 bytes on the objects that they are handed.
    kPlacement = std::max<std::size_t>(Alignment, 64)
  };

  static std::size_t ClaimPosition(Counter& io_position) noexcept;
  void StoreSlot(std::size_t i_position, T const* ip_object) noexcept;

  // Changed only by atomic read-modify-writes, or by one thread alone, so the one that reaches kSuperseded
  // alone is unique.
  Counter m_use_count{0};
  // Running count of takes. Only the one take that the caller lets in reads and writes it.
  Counter m_take_position{0};
  // Plain words, accessed only through atomic references once the block is shared: a take may look at an
  // entry that a return is about to store. A return stores with release and a take loads with acquire, so
  // that the new owner of a slot comes after the old one. Takes write marks one after the other, and a return
  // to a marked position comes after the take that marked it.
  std::array<unsigned long, Size> m_free_slots;
  // Running count of returns; each return owns the position that it claimed here.
  Counter m_return_position{0};
  // 0 while a slot is free; afterwards changed by the handles onto the slot's object.
  std::array<ReferenceCount, Size> m_reference_counts{};
  // The layout must not depend on alignof(T), which varies with the caller's vector flags: raw bytes with
  // room to move the first object up, and a pointer to it, set once before the block is shared.
  std::array<unsigned char, Size * sizeof(T) + kPlacement> m_storage;
  T* m_objects;
};

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
ObjectPoolBlock<T, Size, Alignment, Policy>::ObjectPoolBlock() noexcept {
  auto const address = reinterpret_cast<std::uintptr_t>(m_storage.data());
  m_objects = reinterpret_cast<T*>(m_storage.data() + (kPlacement - address % kPlacement) % kPlacement);
  for (std::size_t slot = 0; slot < Size; ++slot) m_free_slots[slot] = slot;
}

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
inline optional<std::size_t> ObjectPoolBlock<T, Size, Alignment, Policy>::TakeSlot() noexcept {
  if (internal::FetchAdd(m_use_count, 1) >= Size) {
    internal::FetchSubtract(m_use_count, 1);
    return nullopt;
  }
  unsigned long const position = m_take_position.load(std::memory_order_acquire);
  Entry entry(m_free_slots[position % Size]);
  unsigned long const slot = entry.load(std::memory_order_acquire);
  if (slot == kTaken) {
    internal::FetchSubtract(m_use_count, 1);
    return nullopt;
  }
  entry.store(kTaken, std::memory_order_release);
  m_take_position.store(position + 1, std::memory_order_release);
  return slot;
}

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
inline optional<std::array<std::size_t, 2>>
ObjectPoolBlock<T, Size, Alignment, Policy>::TakeTwoSlots() noexcept {
  if (internal::FetchAdd(m_use_count, 2) + 2 > Size) {
    internal::FetchSubtract(m_use_count, 2);
    return nullopt;
  }
  unsigned long const position = m_take_position.load(std::memory_order_acquire);
  Entry first_entry(m_free_slots[position % Size]);
  Entry second_entry(m_free_slots[(position + 1) % Size]);
  unsigned long const first = first_entry.load(std::memory_order_acquire);
  unsigned long const second = second_entry.load(std::memory_order_acquire);
  if (first == kTaken || second == kTaken) {
    internal::FetchSubtract(m_use_count, 2);
    return nullopt;
  }
  first_entry.store(kTaken, std::memory_order_release);
  second_entry.store(kTaken, std::memory_order_release);
  m_take_position.store(position + 2, std::memory_order_release);
  return std::array<std::size_t, 2>{first, second};
}

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
bool ObjectPoolBlock<T, Size, Alignment, Policy>::ReturnSlot(T const* ip_object) noexcept {
  StoreSlot(ClaimPosition(m_return_position), ip_object);
  return internal::FetchSubtract(m_use_count, 1) == (kSuperseded | 1);
}

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
bool ObjectPoolBlock<T, Size, Alignment, Policy>::ReturnTwoSlots(T const* ip_first,
                                                                 T const* ip_second) noexcept {
  unsigned long const position = internal::FetchAdd(m_return_position, 2);
  StoreSlot(position % Size, ip_first);
  StoreSlot((position + 1) % Size, ip_second);
  return internal::FetchSubtract(m_use_count, 2) == (kSuperseded | 2);
}

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
inline void ObjectPoolBlock<T, Size, Alignment, Policy>::StoreSlot(std::size_t i_position,
                                                                   T const* ip_object) noexcept {
  Entry(m_free_slots[i_position])
      .store(static_cast<unsigned long>(ip_object - m_objects), std::memory_order_release);
}

template <class T, std::size_t Size, std::size_t Alignment, class Policy>
bool ObjectPoolBlock<T, Size, Alignment, Policy>::Supersede() noexcept {
  return m_use_count.fetch_or(kSuperseded) == 0;
}

// At its last value the position is reset rather than left to wrap in the add, which comes to the same: the
// ring goes on where 2^64 is a multiple of its size. The plain load first keeps a compare-exchange that would
// fail off every other call.
template <class T, std::size_t Size, std::size_t Alignment, class Policy>
inline std::size_t ObjectPoolBlock<T, Size, Alignment, Policy>::ClaimPosition(Counter& io_position) noexcept {
  unsigned long last = kLastPosition;
  if (io_position.load() == kLastPosition && io_position.compare_exchange_strong(last, 0)) {
    return kLastPosition % Size;
  }
  return internal::FetchAdd(io_position, 1) % Size;
}

}  // namespace lum

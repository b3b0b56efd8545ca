#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "Utility/optional.h"
#include "geometry/internal/Export.h"
#include "geometry/internal/ObjectPoolPolicy.h"
#include "geometry/internal/SingleThread.h"

namespace lum {

/// A block of `Size` objects of T, with the ring of its free slots and a reference count for each object.
///
/// The ring is a first-in, first-out queue. Takes read its entries in the same cyclic order in which returns
/// write them:
///
///     ring entry    0    1    2    3   ...  31        a slot index, or kTaken
///                        ^              ^
///         m_take_position mod 32        m_return_position mod 32
///
///     use count     bit 63: superseded, bits 0 to 62: objects handed out and reservations in flight
///
/// A take replaces the entry that it reads by kTaken. A return claims its position, stores its slot and then
/// decrements the use count. The caller serialises takes, so return n claims its position after take n has
/// read and marked that entry: no return overwrites an entry that is still to be read. If a take reads
/// kTaken, a return has claimed that position and not yet stored its slot. The take then takes nothing and
/// treats the block as full.
///
/// Two slots can be taken, or returned, in one operation that is equivalent to two consecutive operations.
///
/// The block does not free itself. The one call that brings the use count to "superseded, none in use"
/// returns true, and its caller frees the block.
///
/// Objects are raw storage. No constructor or destructor of T ever runs, and a recycled slot has the bytes of
/// its previous object.
///
/// Thread safety: any number of threads may call `ReturnSlot` and `ReturnTwoSlots` at once. The caller
/// serialises `TakeSlot`, `TakeTwoSlots` and `Supersede`: under the pool's current-block mutex, or on a block
/// that no other thread knows yet.
///
/// \tparam T          the object, trivially destructible
/// \tparam Size       the number of objects; a power of two, so that positions wrap without a gap
/// \tparam Alignment  the minimum alignment of the objects in bytes
/// \tparam Policy     the atomics and the mutex
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

  /// Reserves a slot and takes it from the ring. Empty if the block is full, or treated as full.
  optional<std::size_t> TakeSlot() noexcept;
  /// Two slots, in the order in which `TakeSlot` would give them. Empty if the block does not have two free
  /// slots.
  optional<std::array<std::size_t, 2>> TakeTwoSlots() noexcept;

  /// Returns the slot of an object to the ring. Lock-free.
  /// \return true if this emptied a superseded block: the caller frees it. Otherwise the caller must not
  /// access the block again, since another thread may free it at any time.
  [[nodiscard]] bool ReturnSlot(T const* ip_object) noexcept;
  /// Returns the slots of two objects, in this order.
  [[nodiscard]] bool ReturnTwoSlots(T const* ip_first, T const* ip_second) noexcept;

  /// Marks the block as no longer current. The return that leaves no slot in use then returns true.
  /// \return true if no slot is in use: the caller frees the block.
  [[nodiscard]] bool Supersede() noexcept;

  /// The object of a slot below `Size`, unchecked.
  T* GetObject(std::size_t i_slot) noexcept { return m_objects + i_slot; }
  /// The count of a slot below `Size`, unchecked.
  ReferenceCount* GetReferenceCount(std::size_t i_slot) noexcept { return &m_reference_counts[i_slot]; }

 private:
  friend struct ObjectPoolTestAccess;

  using Counter = typename Policy::template Atomic<unsigned long>;
  using Entry = typename Policy::template AtomicRef<unsigned long>;

  // Enumerators, because static data members of an exported template would be exported too.
  enum : unsigned long {
    kSuperseded = 1UL << 63,
    kTaken = ~0UL,
    kLastPosition = ~0UL,
    // Objects start on a cache line, so objects whose size is a multiple of 64 share none. Callers that are
    // compiled for wide vectors need the alignment for aligned operations of up to 64 bytes.
    kPlacement = std::max<std::size_t>(Alignment, 64)
  };

  LUM_HIDDEN static std::size_t ClaimPosition(Counter& io_position) noexcept;
  LUM_HIDDEN void StoreSlot(std::size_t i_position, T const* ip_object) noexcept;

  // Changed by atomic read-modify-writes, or by the only thread of the process, so exactly one operation
  // brings it to kSuperseded.
  Counter m_use_count{0};
  // Running count of takes. Accessed only by takes, which the caller serialises.
  Counter m_take_position{0};
  // Plain words, accessed only through atomic references once the block is shared, because a take may read an
  // entry while a return stores it. A return stores with release and a take loads with acquire, so everything
  // that the old owner of a slot did happens before the new owner's use. Takes are serialised, and a return
  // stores to an entry only after a take has marked it.
  std::array<unsigned long, Size> m_free_slots;
  // Running count of returns. A read-modify-write gives each return a position of its own.
  Counter m_return_position{0};
  // 0 while a slot is free; otherwise changed by the handles that own the slot's object, as `Handle` says.
  std::array<ReferenceCount, Size> m_reference_counts{};
  // Raw bytes, because the layout must not depend on alignof(T), which varies with the compiler flags of
  // callers. The bytes leave room to align the first object.
  std::array<unsigned char, Size * sizeof(T) + kPlacement> m_storage;
  // The first object. Set once, before the block is shared.
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

// The last position is reset by a compare-exchange instead of wrapping in the addition. Both give the same
// ring order, since 2^64 is a multiple of the size. The load avoids a failing compare-exchange in every other
// call.
template <class T, std::size_t Size, std::size_t Alignment, class Policy>
inline std::size_t ObjectPoolBlock<T, Size, Alignment, Policy>::ClaimPosition(Counter& io_position) noexcept {
  unsigned long last = kLastPosition;
  if (io_position.load() == kLastPosition && io_position.compare_exchange_strong(last, 0)) {
    return kLastPosition % Size;
  }
  return internal::FetchAdd(io_position, 1) % Size;
}

}  // namespace lum

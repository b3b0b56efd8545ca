#pragma once

#include <atomic>
#include <concepts>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "geometry/internal/SingleThread.h"

namespace lum {

namespace internal {
/// Tag of the constructor for an object that no other handle owns.
struct FirstReference {};

/// A deleter that does not throw and can return two objects of one block in one call.
template <class D, class T>
concept PairDeleter = std::is_nothrow_invocable_v<D const&, T*> &&
    std::is_nothrow_invocable_v<D const&, T*, T*> && requires(D const& i_delete) {
  { i_delete.SharesBlock(i_delete) } -> std::same_as<bool>;
};
}  // namespace internal

/// A shared owner of one pooled object: pointers to the object and to its reference count, and the deleter
/// that returns the object to its pool.
///
/// A handle either owns an object and is included in its count, or is empty. The last handle that releases an
/// object calls the deleter with it. The object is neither destroyed nor cleared.
///
/// Cost: a copy is one increment and never allocates. A move changes no count. Counts are atomic; while the
/// process has never had a second thread, they are changed by relaxed loads and stores.
///
/// Thread safety: distinct handles that own one object may be copied, assigned and destroyed on different
/// threads. Exactly one of them makes the last release. A handle must not be written while another thread
/// uses it.
///
/// \tparam T  the object
/// \tparam C  its counter: an atomic unsigned integer that outlives every handle
/// \tparam D  the deleter: callable with a `T*`, testable as a boolean, empty when default-constructed
template <class T, class C, class D>
class Handle {
 public:
  /// An empty handle.
  Handle() noexcept = default;

  /// Increments the count of the object.
  ///
  /// A null object, a null count or an empty deleter throws `std::invalid_argument`, tested in this order. An
  /// error leaves the count unchanged.
  Handle(T* ip_object, C* ip_reference_count, D i_delete);

  /// Sets the count, which is 0, to 1. Arguments are not checked.
  Handle(internal::FirstReference, T* ip_object, C* ip_reference_count, D i_delete) noexcept;

  /// Shares the object. Increments its count.
  Handle(Handle const& i_other) noexcept;
  /// Takes over the object and leaves the other handle empty. Changes no count.
  Handle(Handle&& io_other) noexcept;
  /// Decrements the count. The last handle returns the object.
  ~Handle() {
    if (mp_object != nullptr && DropReference(*mp_reference_count)) m_delete(mp_object);
  }

  ///@{
  /// Shares or takes over the object of the other handle, and releases the previous object.
  ///
  /// Self-assignment, and copying another handle that owns the same object, leave the count unchanged. If the
  /// deleter throws, this handle is empty. A copied handle then has its previous count; a moved-from handle
  /// is empty and its object is released.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a counted copy is taken first
  Handle& operator=(Handle const& i_other) noexcept(kIsReleaseNoexcept);
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): noexcept if the deleter is
  Handle& operator=(Handle&& io_other) noexcept(kIsReleaseNoexcept);
  ///@}

  /// The object; null for an empty handle.
  T* Get() const noexcept { return mp_object; }
  ///@{
  /// The object. Undefined behaviour for an empty handle.
  T& operator*() const noexcept { return *mp_object; }
  T* operator->() const noexcept { return mp_object; }
  ///@}
  /// Whether the handle owns an object.
  explicit operator bool() const noexcept { return mp_object != nullptr; }

  /// A snapshot of the count, 0 for an empty handle. A count of 1 stays 1, because only an owner can
  /// increment it. The acquire load orders what former owners did with the object before what the caller does
  /// next.
  unsigned long GetReferenceCount() const noexcept;

  /// Exchanges the objects of the two handles. Changes no count.
  void Swap(Handle& io_other) noexcept;

  /// Releases both objects, that of the first handle first, and empties the handles. If each handle is the
  /// last owner of its object, and both objects are in one block, one call of the deleter returns both.
  static void ReleaseTogether(Handle& io_first,
                              Handle& io_second) noexcept requires internal::PairDeleter<D, T>;

 private:
  static constexpr bool kIsReleaseNoexcept = std::is_nothrow_invocable_v<D&, T*>;

  void Adopt(Handle& io_taken) noexcept(kIsReleaseNoexcept);
  void Release() noexcept(kIsReleaseNoexcept);
  static bool DropReference(C& io_reference_count) noexcept;

  T* mp_object = nullptr;
  // Changed by sequentially consistent additions and subtractions, so exactly one release reads 1. A sole
  // owner, or the only thread of a process, may store instead, since nothing else can change the count.
  C* mp_reference_count = nullptr;
  D m_delete{};
};

template <class T, class C, class D>
Handle<T, C, D>::Handle(T* ip_object, C* ip_reference_count, D i_delete)
    : mp_object(ip_object), mp_reference_count(ip_reference_count), m_delete(std::move(i_delete)) {
  if (mp_object == nullptr) throw std::invalid_argument("ip_object cannot be nullptr");
  if (mp_reference_count == nullptr) throw std::invalid_argument("ip_reference_count cannot be nullptr");
  if (!m_delete) throw std::invalid_argument("i_delete must be a callable function");
  internal::FetchAdd(*mp_reference_count, 1);
}

template <class T, class C, class D>
Handle<T, C, D>::Handle(internal::FirstReference, T* ip_object, C* ip_reference_count, D i_delete) noexcept
    : mp_object(ip_object), mp_reference_count(ip_reference_count), m_delete(std::move(i_delete)) {
  mp_reference_count->store(1, std::memory_order_release);
}

template <class T, class C, class D>
Handle<T, C, D>::Handle(Handle const& i_other) noexcept
    : mp_object(i_other.mp_object),
      mp_reference_count(i_other.mp_reference_count),
      m_delete(i_other.m_delete) {
  if (mp_reference_count != nullptr) internal::FetchAdd(*mp_reference_count, 1);
}

template <class T, class C, class D>
Handle<T, C, D>::Handle(Handle&& io_other) noexcept
    : mp_object(std::exchange(io_other.mp_object, nullptr)),
      mp_reference_count(std::exchange(io_other.mp_reference_count, nullptr)),
      m_delete(std::exchange(io_other.m_delete, D{})) {}

template <class T, class C, class D>
Handle<T, C, D>& Handle<T, C, D>::operator=(Handle const& i_other) noexcept(kIsReleaseNoexcept) {
  Handle taken(i_other);
  Adopt(taken);
  return *this;
}

template <class T, class C, class D>
Handle<T, C, D>& Handle<T, C, D>::operator=(Handle&& io_other) noexcept(kIsReleaseNoexcept) {
  Handle taken(std::move(io_other));
  Adopt(taken);
  return *this;
}

template <class T, class C, class D>
unsigned long Handle<T, C, D>::GetReferenceCount() const noexcept {
  return mp_reference_count == nullptr ? 0 : mp_reference_count->load(std::memory_order_acquire);
}

// Every assignment uses this. If both handles own the same object, `io_taken` keeps its reference, and its
// destructor decrements the count.
template <class T, class C, class D>
void Handle<T, C, D>::Adopt(Handle& io_taken) noexcept(kIsReleaseNoexcept) {
  if (mp_object == io_taken.mp_object) return;
  if (mp_object != nullptr) Release();
  Swap(io_taken);
}

template <class T, class C, class D>
void Handle<T, C, D>::Swap(Handle& io_other) noexcept {
  std::swap(mp_object, io_other.mp_object);
  std::swap(mp_reference_count, io_other.mp_reference_count);
  std::swap(m_delete, io_other.m_delete);
}

// The handle is emptied before the deleter is called. It therefore never points to a released object, even if
// the deleter throws or uses this handle.
template <class T, class C, class D>
void Handle<T, C, D>::Release() noexcept(kIsReleaseNoexcept) {
  T* const object = std::exchange(mp_object, nullptr);
  C* const reference_count = std::exchange(mp_reference_count, nullptr);
  D release = std::exchange(m_delete, D{});
  if (DropReference(*reference_count)) release(object);
}

// A count of 1 is this handle's own, so there is no other owner that could increment it. The acquire load
// orders what former owners did with the object before its return.
template <class T, class C, class D>
inline bool Handle<T, C, D>::DropReference(C& io_reference_count) noexcept {
  if (io_reference_count.load(std::memory_order_acquire) == 1) {
    io_reference_count.store(0, std::memory_order_release);
    return true;
  }
  return internal::FetchSubtract(io_reference_count, 1) == 1;
}

// The handles are emptied last, so the compiler sees that their destructors have nothing to do.
template <class T, class C, class D>
void Handle<T, C, D>::ReleaseTogether(Handle& io_first,
                                      Handle& io_second) noexcept requires internal::PairDeleter<D, T> {
  C* const first_count = io_first.mp_reference_count;
  C* const second_count = io_second.mp_reference_count;
  if (first_count == second_count) {
    if (first_count != nullptr && internal::FetchSubtract(*first_count, 2) == 2) {
      io_first.m_delete(io_first.mp_object);
    }
  } else {
    bool const is_first_last = first_count != nullptr && DropReference(*first_count);
    bool const is_second_last = second_count != nullptr && DropReference(*second_count);
    if (is_first_last && is_second_last && io_first.m_delete.SharesBlock(io_second.m_delete)) {
      io_first.m_delete(io_first.mp_object, io_second.mp_object);
    } else {
      if (is_first_last) io_first.m_delete(io_first.mp_object);
      if (is_second_last) io_second.m_delete(io_second.mp_object);
    }
  }
  io_first.mp_object = nullptr;
  io_first.mp_reference_count = nullptr;
  io_second.mp_object = nullptr;
  io_second.mp_reference_count = nullptr;
}

}  // namespace lum

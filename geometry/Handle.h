#pragma once

#include <atomic>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "geometry/internal/SingleThread.h"

namespace lum {

namespace internal {
/// Tag of the constructor for an object that nobody else knows yet.
struct FirstReference {};
}  // namespace internal

/// A shared owner of one pooled object: the object, its reference count and what returns it to its pool.
///
/// A handle is bound, and then included in the count, or empty: no object and no count. The last handle to
/// let go calls the deleter with the object, which is neither destroyed nor cleared.
///
/// Cost: a copy is one increment and never allocates, a move touches no count. Counts are changed atomically,
/// by plain stores while the process has never had a second thread.
///
/// Thread safety: distinct handles onto one object may be copied, assigned and destroyed on different threads
/// at once; exactly one of them makes the last release. One handle needs outside synchronisation as soon as
/// one thread writes it.
///
/// \tparam T  the object
/// \tparam C  its counter: an atomic unsigned integer that outlives every handle
/// \tparam D  the deleter: callable with a `T*`, testable as a boolean, empty when default-constructed
template <class T, class C, class D>
class Handle {
 public:
  /// Makes an empty handle.
  Handle() noexcept = default;

  /// Adds a reference to the object.
  ///
  /// A null object, a null count or a deleter that is not callable throws `std::invalid_argument`, tested in
  /// this order; no count is touched then.
  Handle(T* ip_object, C* ip_reference_count, D i_delete);

  /// The first handle onto an object whose count is 0: sets it to 1, without a test of the arguments.
  Handle(internal::FirstReference, T* ip_object, C* ip_reference_count, D i_delete) noexcept;

  /// Shares the object: one increment.
  Handle(Handle const& i_other) noexcept;
  /// Takes over the reference and leaves the other handle empty: no count is touched.
  Handle(Handle&& io_other) noexcept;
  /// Lets go: one decrement; of the last handle, a return of the object.
  ~Handle() {
    if (mp_object != nullptr && DropReference(*mp_reference_count)) m_delete(mp_object);
  }

  ///@{
  /// Shares or takes over the other's object, then lets go of its own.
  ///
  /// A self-assignment, or a copy from another handle onto the same object, leaves the count unchanged.
  /// A deleter that throws leaves this handle empty; the reference that was taken from the source is dropped.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a counted copy is taken first
  Handle& operator=(Handle const& i_other) noexcept(kReleasesQuietly);
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): as quiet as the deleter is
  Handle& operator=(Handle&& io_other) noexcept(kReleasesQuietly);
  ///@}

  /// The object; null for an empty handle.
  T* Get() const noexcept { return mp_object; }
  ///@{
  /// The object; undefined for an empty handle.
  T& operator*() const noexcept { return *mp_object; }
  T* operator->() const noexcept { return mp_object; }
  ///@}
  /// Whether it is bound.
  explicit operator bool() const noexcept { return mp_object != nullptr; }

  /// A snapshot of the count; 0 for an empty handle. A 1 stays 1, because only a holder can raise it. The
  /// acquire load orders whatever the former holders did with the object before what the caller does next.
  unsigned long GetReferenceCount() const noexcept;

  /// Exchanges what the two are bound to. Touches no count.
  void Swap(Handle& io_other) noexcept;

  /// Empties two handles, the first of them first. Where both are the last ones onto objects of one block,
  /// the deleter gets the two objects in one call.
  static void ReleaseTogether(Handle& io_first, Handle& io_second) noexcept;

 private:
  static constexpr bool kReleasesQuietly = std::is_nothrow_invocable_v<D&, T*>;

  void Adopt(Handle& io_taken) noexcept(kReleasesQuietly);
  void Release() noexcept(kReleasesQuietly);
  static bool DropReference(C& io_reference_count) noexcept;

  T* mp_object = nullptr;
  // Changed only by sequentially consistent adds and subtracts, so exactly one release sees the 1; and by
  // plain stores where one handle is all there is, or one thread.
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
Handle<T, C, D>& Handle<T, C, D>::operator=(Handle const& i_other) noexcept(kReleasesQuietly) {
  Handle taken(i_other);
  Adopt(taken);
  return *this;
}

template <class T, class C, class D>
Handle<T, C, D>& Handle<T, C, D>::operator=(Handle&& io_other) noexcept(kReleasesQuietly) {
  Handle taken(std::move(io_other));
  Adopt(taken);
  return *this;
}

template <class T, class C, class D>
unsigned long Handle<T, C, D>::GetReferenceCount() const noexcept {
  return mp_reference_count == nullptr ? 0 : mp_reference_count->load(std::memory_order_acquire);
}

// Every assignment comes through here. A reference that turns out to be surplus stays with `io_taken`, whose
// destructor drops it.
template <class T, class C, class D>
void Handle<T, C, D>::Adopt(Handle& io_taken) noexcept(kReleasesQuietly) {
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

// The fields are emptied first: were the deleter to throw, or to look at this handle, it would find nothing
// that is no longer owned.
template <class T, class C, class D>
void Handle<T, C, D>::Release() noexcept(kReleasesQuietly) {
  T* const object = std::exchange(mp_object, nullptr);
  C* const reference_count = std::exchange(mp_reference_count, nullptr);
  D release = std::exchange(m_delete, D{});
  if (DropReference(*reference_count)) release(object);
}

// A count of 1 is this handle's own, and no other is there that could raise it. The acquire load puts what
// former holders did with the object before its return.
template <class T, class C, class D>
inline bool Handle<T, C, D>::DropReference(C& io_reference_count) noexcept {
  if (io_reference_count.load(std::memory_order_acquire) == 1) {
    io_reference_count.store(0, std::memory_order_release);
    return true;
  }
  return internal::FetchSubtract(io_reference_count, 1) == 1;
}

// The handles are emptied last, where the compiler sees it: destructors that follow then cost nothing.
template <class T, class C, class D>
void Handle<T, C, D>::ReleaseTogether(Handle& io_first, Handle& io_second) noexcept {
  static_assert(kReleasesQuietly);
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

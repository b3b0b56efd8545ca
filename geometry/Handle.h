#pragma once

#include <atomic>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace lum {

/// A shared owner of one pooled object: the object, its reference count and what returns it to its pool.
///
/// A handle is bound, and then included in the count, or empty: all fields null. Copying is one atomic
/// increment and never allocates. The last handle to let go calls the deleter with the object, which is
/// neither destroyed nor cleared.
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

  Handle(Handle const& i_other) noexcept;
  Handle(Handle&& io_other) noexcept;
  ~Handle() { Release(); }

  /// A self-assignment, or one from another handle onto the same object, leaves the count unchanged.
  /// A deleter that throws leaves this handle empty; the reference that was taken from the source is dropped.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a counted copy is taken first
  Handle& operator=(Handle const& i_other) noexcept(kReleasesQuietly);
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): as quiet as the deleter is
  Handle& operator=(Handle&& io_other) noexcept(kReleasesQuietly);

  /// The object; null for an empty handle.
  T* Get() const noexcept { return mp_object; }
  /// The object; undefined for an empty handle.
  T& operator*() const noexcept { return *mp_object; }
  T* operator->() const noexcept { return mp_object; }
  explicit operator bool() const noexcept { return mp_object != nullptr; }

  /// A snapshot of the count; 0 for an empty handle. A 1 stays 1, because only a holder can raise it. The
  /// acquire load orders whatever the former holders did with the object before what the caller does next.
  unsigned long GetReferenceCount() const noexcept;

 private:
  static constexpr bool kReleasesQuietly = std::is_nothrow_invocable_v<D&, T*>;

  void Adopt(Handle& io_taken) noexcept(kReleasesQuietly);
  void Release() noexcept(kReleasesQuietly);

  T* mp_object = nullptr;
  // Changed only by sequentially consistent adds and subtracts, so exactly one release sees the 1.
  C* mp_reference_count = nullptr;
  D m_delete{};
};

template <class T, class C, class D>
Handle<T, C, D>::Handle(T* ip_object, C* ip_reference_count, D i_delete)
    : mp_object(ip_object), mp_reference_count(ip_reference_count), m_delete(std::move(i_delete)) {
  if (mp_object == nullptr) throw std::invalid_argument("ip_object cannot be nullptr");
  if (mp_reference_count == nullptr) throw std::invalid_argument("ip_reference_count cannot be nullptr");
  if (!m_delete) throw std::invalid_argument("i_delete must be a callable function");
  mp_reference_count->fetch_add(1);
}

template <class T, class C, class D>
Handle<T, C, D>::Handle(Handle const& i_other) noexcept
    : mp_object(i_other.mp_object),
      mp_reference_count(i_other.mp_reference_count),
      m_delete(i_other.m_delete) {
  if (mp_reference_count != nullptr) mp_reference_count->fetch_add(1);
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
  Release();
  std::swap(mp_object, io_taken.mp_object);
  std::swap(mp_reference_count, io_taken.mp_reference_count);
  std::swap(m_delete, io_taken.m_delete);
}

// The fields are emptied first: were the deleter to throw, or to look at this handle, it would find nothing
// that is no longer owned.
template <class T, class C, class D>
void Handle<T, C, D>::Release() noexcept(kReleasesQuietly) {
  T* const object = std::exchange(mp_object, nullptr);
  C* const reference_count = std::exchange(mp_reference_count, nullptr);
  D release = std::exchange(m_delete, D{});
  if (reference_count != nullptr && reference_count->fetch_sub(1) == 1) release(object);
}

}  // namespace lum

#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "Utility/optional.h"

namespace lum {

/// A value that a factory creates on the first request. Every later request returns the same value. What the
/// factory returns is made in place, so the value need not be assignable or movable. The destructor destroys
/// the factory, then the value if there is one.
///
/// Thread safety: any number of threads may request the value. One of them runs the factory while the others
/// wait; later calls cost one acquire load. A factory that requests the value of its own Lazy deadlocks. A
/// child that is forked while another thread runs the factory waits forever if it requests the value.
///
/// A Lazy with a plain function is constant-initialised (`constinit`). It works before any dynamic
/// initialisation has run, so values at namespace scope can be constructed in any link order.
///
/// \tparam T  the value
template <class T>
class Lazy {
 public:
  /// \param i_function  the factory; an empty one throws `std::invalid_argument`
  explicit Lazy(std::function<T()> i_function);

  /// \param i_function  the factory: the name of a plain function. The constructor above takes function
  /// pointers and lambdas.
  constexpr explicit Lazy(T (&i_function)()) noexcept : mp_function(&i_function) {}

  Lazy(Lazy const&) = delete;
  Lazy& operator=(Lazy const&) = delete;

  /// The value, created on the first call. If the factory throws, the exception is passed on, and the next
  /// call runs the factory again.
  T const& GetValue() const;
  /// The value if it has been created, null otherwise.
  T const* GetValueIfCreated() const noexcept {
    return m_is_created.load(std::memory_order_acquire) ? &*m_value : nullptr;
  }

 private:
  T const& CreateValue() const;

  // Written once, under m_mutex, by a release store after m_value. A thread whose acquire load reads true
  // sees the whole value without the lock.
  mutable std::atomic<bool> m_is_created{false};
  // Written under m_mutex before m_is_created is true, and read-only afterwards. Declared before the factory,
  // and so destroyed after it.
  mutable optional<T> m_value;
  // The factory: exactly one of mp_function and m_function is set. Never written after construction. A
  // std::function has no constexpr constructor, so a plain function has its own member.
  T (*mp_function)() = nullptr;
  optional<std::function<T()>> m_function;
  // Guards the creation of m_value. Held while the factory runs, so that it runs once.
  mutable std::mutex m_mutex;
};

template <class T>
Lazy<T>::Lazy(std::function<T()> i_function) : m_function(std::move(i_function)) {
  if (!*m_function) throw std::invalid_argument("i_function must be callable.");
}

template <class T>
T const& Lazy<T>::GetValue() const {
  if (m_is_created.load(std::memory_order_acquire)) return *m_value;
  return CreateValue();
}

template <class T>
T const& Lazy<T>::CreateValue() const {
  std::lock_guard<std::mutex> const lock(m_mutex);
  if (!m_is_created.load(std::memory_order_relaxed)) {
    m_value.EmplaceResultOf([this] { return mp_function != nullptr ? mp_function() : (*m_function)(); });
    m_is_created.store(true, std::memory_order_release);
  }
  return *m_value;
}

}  // namespace lum

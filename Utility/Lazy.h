#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "Utility/optional.h"

namespace lum {

/// A value that is made by a factory on the first request, once, and handed out unchanged afterwards. Its end
/// destroys the factory, then the value if it was made.
///
/// Thread safety: `GetValue` may be called from any number of threads. One of them runs the factory while
/// the others wait; afterwards a call costs one acquire load. A factory that asks its own Lazy for the value
/// deadlocks.
///
/// A Lazy given a plain function is constant-initialised (`constinit`): it works before any dynamic
/// initialisation has run, which is what lets values at namespace scope be built in any link order.
///
/// \tparam T  the value
template <class T>
class Lazy {
 public:
  /// \param i_function the factory; an empty one throws `std::invalid_argument`.
  explicit Lazy(std::function<T()> i_function);

  /// \param i_function the factory: a plain function, by its name. Pointers and lambdas go to the constructor
  /// above.
  constexpr explicit Lazy(T (&i_function)()) noexcept : mp_function(&i_function) {}

  Lazy(Lazy const&) = delete;
  Lazy& operator=(Lazy const&) = delete;

  /// The value, made on the first call.
  ///
  /// What the factory throws passes out and nothing is recorded: the next call runs the factory again.
  T const& GetValue() const;
  /// The value if it has been made, null otherwise.
  T const* GetValueIfCreated() const noexcept {
    return m_is_created.load(std::memory_order_acquire) ? &*m_value : nullptr;
  }

 private:
  T const& CreateValue() const;

  // Written once, under m_mutex, by a release store after m_value is in place. A thread whose acquire load
  // reads true therefore sees the whole value without the lock.
  mutable std::atomic<bool> m_is_created{false};
  // Written only under m_mutex and only before m_is_created is true; read-only afterwards. Declared before
  // the factory, so destroyed after it.
  mutable optional<T> m_value;
  // Never written after construction. Exactly one of the two is set: a std::function has no constexpr
  // constructor, so a plain function is kept beside it.
  T (*mp_function)() = nullptr;
  optional<std::function<T()>> m_function;
  // Guards the making of m_value: held while the factory runs, so that it runs once.
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
    m_value = mp_function != nullptr ? mp_function() : (*m_function)();
    m_is_created.store(true, std::memory_order_release);
  }
  return *m_value;
}

}  // namespace lum

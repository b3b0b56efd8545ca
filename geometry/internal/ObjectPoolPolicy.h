#pragma once

#include <atomic>
#include <mutex>

namespace lum::internal {

/// What pools and blocks synchronise with. The library uses the standard types. Tests substitute types that
/// hand control to a scheduler before every operation, so that the shipped code itself is what they step.
struct ObjectPoolPolicy {
  /// A word that several threads change.
  template <class Word>
  using Atomic = std::atomic<Word>;
  /// Access to a plain word that several threads use.
  template <class Word>
  using AtomicRef = std::atomic_ref<Word>;
  using Mutex = std::mutex;  ///< Guards the current block, and the making of the next.
};

}  // namespace lum::internal

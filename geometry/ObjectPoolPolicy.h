#pragma once

#include <atomic>
#include <mutex>

namespace lum {

/// What pools and blocks synchronise with. The library uses the standard types. Tests substitute types that
/// hand control to a scheduler before every operation, so that the shipped code itself is what they step.
struct ObjectPoolPolicy {
  template <class Word>
  using Atomic = std::atomic<Word>;
  template <class Word>
  using AtomicRef = std::atomic_ref<Word>;
  using Mutex = std::mutex;
};

}  // namespace lum

#pragma once

#include <atomic>
#include <mutex>

#include "geometry/internal/RequireCpp20.h"

namespace lum::internal {

/// The types by which pools and blocks synchronise: the standard ones. Tests substitute types that yield to a
/// scheduler before every operation, so that they step through the shipped code.
struct ObjectPoolPolicy {
  /// A word that several threads access.
  template <class Word>
  using Atomic = std::atomic<Word>;
  /// Atomic access to a plain word.
  template <class Word>
  using AtomicRef = std::atomic_ref<Word>;
  using Mutex = std::mutex;  ///< Guards the current block, and the creation of the next.
};

}  // namespace lum::internal

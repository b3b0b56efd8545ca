#pragma once

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif
#include <atomic>
#include <concepts>
#include <mutex>

#include "geometry/internal/RequireCpp20.h"

namespace lum::internal {

/// Whether relaxed loads and stores may replace the read-modify-writes of an atomic of this type, and a lock
/// of a mutex of this type may be elided, because the process has never had a second thread. Starting a
/// thread synchronises with the new thread, which therefore sees every earlier store. False for types other
/// than the standard ones, which tests substitute to observe every operation.
template <class Synchronised>
bool IsSingleThreaded() noexcept {
#if __has_include(<sys/single_threaded.h>)
  if constexpr (std::same_as<Synchronised, std::atomic<unsigned long>> ||
                std::same_as<Synchronised, std::mutex>) {
    return __libc_single_threaded;
  }
#endif
  return false;
}

/// Adds and returns the previous value, like a sequentially consistent atomic read-modify-write.
template <class Counter>
unsigned long FetchAdd(Counter& io_counter, unsigned long i_value) {
  if (IsSingleThreaded<Counter>()) {
    if constexpr (std::same_as<Counter, std::atomic<unsigned long>>) {
      unsigned long const before = io_counter.load(std::memory_order_relaxed);
      io_counter.store(before + i_value, std::memory_order_relaxed);
      return before;
    }
  }
  return io_counter.fetch_add(i_value);
}

/// Subtracts and returns the previous value, like a sequentially consistent atomic read-modify-write.
template <class Counter>
unsigned long FetchSubtract(Counter& io_counter, unsigned long i_value) {
  if (IsSingleThreaded<Counter>()) {
    if constexpr (std::same_as<Counter, std::atomic<unsigned long>>) {
      unsigned long const before = io_counter.load(std::memory_order_relaxed);
      io_counter.store(before - i_value, std::memory_order_relaxed);
      return before;
    }
  }
  return io_counter.fetch_sub(i_value);
}

/// Locks a mutex, or elides the lock while the process has never had a second thread. Code that a caller can
/// replace, such as an allocator, must not run while the lock is elided: it could start a thread, which would
/// not be locked out.
template <class Mutex>
class ThreadLock {
 public:
  explicit ThreadLock(Mutex& io_mutex) : mp_mutex(IsSingleThreaded<Mutex>() ? nullptr : &io_mutex) {
    if (mp_mutex != nullptr) mp_mutex->lock();
  }
  ThreadLock(ThreadLock const&) = delete;
  ThreadLock& operator=(ThreadLock const&) = delete;
  ~ThreadLock() {
    if (mp_mutex != nullptr) mp_mutex->unlock();
  }

 private:
  Mutex* mp_mutex;
};

}  // namespace lum::internal

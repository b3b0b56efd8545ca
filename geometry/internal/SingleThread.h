#pragma once

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif
#include <atomic>
#include <concepts>
#include <mutex>

namespace lum::internal {

/// Whether an operation on this atomic or mutex may be carried out by plain loads and stores, because the
/// process has never had a second thread. A thread that is started later sees whatever was done before. False
/// for types other than the standard ones, which tests substitute to watch every operation.
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

/// Adds and returns the value before, as an atomic read-modify-write that is sequentially consistent.
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

/// Subtracts and returns the value before, as `FetchAdd` does.
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

/// Holds a mutex, or nothing while the process has one thread. Nothing that a caller could replace may run
/// while it is held: a thread started in between would not be kept out.
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

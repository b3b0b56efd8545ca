#include "tests/support/AllocationPeak.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// Bytes allocated and not yet freed, and their maximum. The two are separate atomic counters: a thread raises
// the maximum until it is at least what that thread counted, so the order of threads does not matter.
std::atomic<std::size_t> live_bytes{0};
std::atomic<std::size_t> most_live_bytes{0};

void Count(std::size_t i_bytes) {
  std::size_t const live = live_bytes.fetch_add(i_bytes) + i_bytes;
  std::size_t most = most_live_bytes.load();
  while (most < live && !most_live_bytes.compare_exchange_weak(most, live)) {
  }
}

}  // namespace

namespace lum::test {

AllocationPeak::AllocationPeak() : m_at_start(live_bytes) { most_live_bytes = m_at_start; }
std::size_t AllocationPeak::GetBytes() const { return most_live_bytes - m_at_start; }

}  // namespace lum::test

// The other forms of the standard library call these.
void* operator new(std::size_t i_size) {
  void* const memory = std::malloc(i_size == 0 ? 1 : i_size);
  if (memory == nullptr) throw std::bad_alloc();
  Count(malloc_usable_size(memory));
  return memory;
}
void operator delete(void* ip_memory) noexcept {
  live_bytes -= malloc_usable_size(ip_memory);
  std::free(ip_memory);
}
void operator delete(void* ip_memory, std::size_t) noexcept {
  live_bytes -= malloc_usable_size(ip_memory);
  std::free(ip_memory);
}

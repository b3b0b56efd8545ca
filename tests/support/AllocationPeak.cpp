#include "support/AllocationPeak.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

// Bytes allocated and not yet freed, and the most there were. Used by one thread.
std::size_t live_bytes = 0;
std::size_t most_live_bytes = 0;

}  // namespace

namespace lum::test {

AllocationPeak::AllocationPeak() : m_at_start(live_bytes) { most_live_bytes = live_bytes; }
std::size_t AllocationPeak::GetBytes() const { return most_live_bytes - m_at_start; }

}  // namespace lum::test

// The forms that the standard library's other forms call.
void* operator new(std::size_t i_size) {
  void* const memory = std::malloc(i_size == 0 ? 1 : i_size);
  if (memory == nullptr) throw std::bad_alloc();
  live_bytes += malloc_usable_size(memory);
  most_live_bytes = std::max(most_live_bytes, live_bytes);
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

#include "tests/support/FailingAllocation.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

// How many allocations still succeed; negative while none fails. Used by one thread.
int allocations_before_failure = -1;

}  // namespace

namespace lum::test {

FailingAllocation::FailingAllocation(int i_allocations_before) {
  allocations_before_failure = i_allocations_before;
}
FailingAllocation::~FailingAllocation() { allocations_before_failure = -1; }

}  // namespace lum::test

// The other forms of the standard library call these.
void* operator new(std::size_t i_size) {
  if (allocations_before_failure == 0) throw std::bad_alloc();
  if (allocations_before_failure > 0) --allocations_before_failure;
  void* const memory = std::malloc(i_size == 0 ? 1 : i_size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* ip_memory) noexcept { std::free(ip_memory); }
void operator delete(void* ip_memory, std::size_t) noexcept { std::free(ip_memory); }

#include "tests/support/BlockCensus.h"

#include <atomic>
#include <cstdlib>
#include <iterator>
#include <mutex>
#include <new>
#include <set>

namespace lum::test {
namespace {

struct Counts {
  // Guards everything below.
  std::mutex mutex;
  std::size_t block_size = 0;
  bool keeps_freed = false;
  std::size_t made = 0;
  std::size_t freed = 0;
  std::size_t freed_again = 0;
  std::set<char const*> live;
  std::set<char const*> kept;
};

// Never destroyed: blocks are freed until the process ends.
Counts& GetCounts() {
  static auto* const counts = new Counts;
  return *counts;
}

// Set while a census counts; read by every allocation of the program.
std::atomic<bool> is_counting{false};

// Set while the census itself allocates.
thread_local bool is_inside = false;

void CountNew(void* ip_memory, std::size_t i_size) {
  Counts& counts = GetCounts();
  std::lock_guard<std::mutex> const lock(counts.mutex);
  if (i_size != counts.block_size) return;
  ++counts.made;
  counts.live.insert(static_cast<char const*>(ip_memory));
}

// Returns true if the memory must not be freed.
bool CountDelete(void* ip_memory) {
  Counts& counts = GetCounts();
  auto* const memory = static_cast<char const*>(ip_memory);
  std::lock_guard<std::mutex> const lock(counts.mutex);
  if (counts.kept.contains(memory)) {
    ++counts.freed_again;
    return true;
  }
  if (counts.live.erase(memory) == 0) return false;
  ++counts.freed;
  if (!counts.keeps_freed) return false;
  counts.kept.insert(memory);
  return true;
}

void* Allocate(std::size_t i_size) {
  void* const memory = std::malloc(i_size == 0 ? 1 : i_size);
  if (memory == nullptr) throw std::bad_alloc();
  if (is_counting && !is_inside) {
    is_inside = true;
    CountNew(memory, i_size);
    is_inside = false;
  }
  return memory;
}

void Free(void* ip_memory) noexcept {
  if (ip_memory != nullptr && is_counting && !is_inside) {
    is_inside = true;
    bool const is_kept = CountDelete(ip_memory);
    is_inside = false;
    if (is_kept) return;
  }
  std::free(ip_memory);
}

}  // namespace

BlockCensus::BlockCensus(std::size_t i_block_size, Freed i_freed) {
  Counts& counts = GetCounts();
  std::lock_guard<std::mutex> const lock(counts.mutex);
  counts.block_size = i_block_size;
  counts.keeps_freed = i_freed == Freed::kKeptAside;
  counts.made = counts.freed = counts.freed_again = 0;
  is_counting = true;
}

BlockCensus::~BlockCensus() {
  is_counting = false;
  Counts& counts = GetCounts();
  std::lock_guard<std::mutex> const lock(counts.mutex);
  for (char const* const memory : counts.kept) std::free(const_cast<char*>(memory));
  counts.kept.clear();
  counts.live.clear();
}

std::size_t BlockCensus::GetMade() {
  std::lock_guard<std::mutex> const lock(GetCounts().mutex);
  return GetCounts().made;
}

std::size_t BlockCensus::GetFreed() {
  std::lock_guard<std::mutex> const lock(GetCounts().mutex);
  return GetCounts().freed;
}

std::size_t BlockCensus::GetFreedAgain() {
  std::lock_guard<std::mutex> const lock(GetCounts().mutex);
  return GetCounts().freed_again;
}

bool BlockCensus::IsInFreedBlock(void const* ip_address) {
  Counts& counts = GetCounts();
  auto* const address = static_cast<char const*>(ip_address);
  std::lock_guard<std::mutex> const lock(counts.mutex);
  auto const after = counts.kept.upper_bound(address);
  return after != counts.kept.begin() && address < *std::prev(after) + counts.block_size;
}

}  // namespace lum::test

// The other forms of the standard library call these.
void* operator new(std::size_t i_size) { return lum::test::Allocate(i_size); }
void operator delete(void* ip_memory) noexcept { lum::test::Free(ip_memory); }
void operator delete(void* ip_memory, std::size_t) noexcept { lum::test::Free(ip_memory); }

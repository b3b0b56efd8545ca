#pragma once

#include <cstddef>

namespace lum::test {

/// Counts what is allocated and freed in blocks of one size, through the global operators that a program
/// linked with BlockCensus.cpp gets. One census at a time.
///
/// While it lives, a freed block is kept aside when asked for: a late access is then seen as such instead of
/// hitting memory that somebody else owns by now, and so is a second free.
class BlockCensus {
 public:
  enum class Freed { kToTheHeap, kKeptAside };

  explicit BlockCensus(std::size_t i_block_size, Freed i_freed = Freed::kToTheHeap);
  BlockCensus(BlockCensus const&) = delete;
  BlockCensus& operator=(BlockCensus const&) = delete;
  ~BlockCensus();

  static std::size_t GetMade();
  static std::size_t GetFreed();
  /// How often a block was freed that had been freed before; only where freed blocks are kept aside.
  static std::size_t GetFreedAgain();
  /// Whether the address lies in a block that was freed and kept aside.
  static bool IsInFreedBlock(void const* ip_address);
};

}  // namespace lum::test

#pragma once

#include <cstddef>

namespace lum::test {

/// Counts allocations of one size and their frees, in a program linked with BlockCensus.cpp, which replaces
/// the global operators. One census at a time.
///
/// With `kKeptAside`, freed blocks are not reused while the census exists, so that a late access or a second
/// free is recognised.
class BlockCensus {
 public:
  enum class Freed { kToTheHeap, kKeptAside };

  explicit BlockCensus(std::size_t i_block_size, Freed i_freed = Freed::kToTheHeap);
  BlockCensus(BlockCensus const&) = delete;
  BlockCensus& operator=(BlockCensus const&) = delete;
  ~BlockCensus();

  static std::size_t GetMade();
  static std::size_t GetFreed();
  /// How often a block was freed again. Needs `kKeptAside`.
  static std::size_t GetFreedAgain();
  /// Whether the address lies in a freed block. Needs `kKeptAside`.
  static bool IsInFreedBlock(void const* ip_address);
};

}  // namespace lum::test

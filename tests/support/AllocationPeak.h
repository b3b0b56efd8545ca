#pragma once

#include <cstddef>

namespace lum::test {

/// Follows the bytes that all threads allocate, in a program that has AllocationPeak.cpp as a source.
class AllocationPeak {
 public:
  AllocationPeak();

  /// The most bytes above those at the start that were allocated at once.
  std::size_t GetBytes() const;

 private:
  std::size_t m_at_start;
};

}  // namespace lum::test

#pragma once

#include <cstddef>

namespace lum::test {

/// Measures the bytes that all threads allocate, in a program linked with AllocationPeak.cpp.
class AllocationPeak {
 public:
  AllocationPeak();

  /// The maximum of the bytes allocated at one time, less those allocated at the start.
  std::size_t GetBytes() const;

 private:
  std::size_t m_at_start;
};

}  // namespace lum::test

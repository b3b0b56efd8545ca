#pragma once

namespace lum::test {

/// While it lives, the N-th allocation from now on throws `std::bad_alloc`, and so do all later ones. For one
/// thread, in a program linked with FailingAllocation.cpp.
class FailingAllocation {
 public:
  explicit FailingAllocation(int i_allocations_before);
  FailingAllocation(FailingAllocation const&) = delete;
  FailingAllocation& operator=(FailingAllocation const&) = delete;
  ~FailingAllocation();
};

}  // namespace lum::test

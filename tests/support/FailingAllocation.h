#pragma once

namespace lum::test {

/// While it exists, the first `i_allocations_before` allocations succeed and all later ones throw
/// `std::bad_alloc`. For one thread, in a program linked with FailingAllocation.cpp.
class FailingAllocation {
 public:
  explicit FailingAllocation(int i_allocations_before);
  FailingAllocation(FailingAllocation const&) = delete;
  FailingAllocation& operator=(FailingAllocation const&) = delete;
  ~FailingAllocation();
};

}  // namespace lum::test

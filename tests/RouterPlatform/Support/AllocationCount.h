#pragma once

#include <cstddef>
#include <limits>

/// Number of allocations through operator new in this process so far. Take the difference around what is to be judged.
std::size_t allocationCount() noexcept;

/// Number of allocations through operator new that have not been given back.
std::size_t liveAllocationCount() noexcept;

/// While it lives, the first `allowed` allocations of this thread through operator new succeed and the `failures` that
/// follow throw std::bad_alloc. One at a time in a thread.
class AllocationFailure {
 public:
  explicit AllocationFailure(std::size_t allowed,
                             std::size_t failures = std::numeric_limits<std::size_t>::max()) noexcept;
  AllocationFailure(AllocationFailure const&) = delete;
  AllocationFailure& operator=(AllocationFailure const&) = delete;
  ~AllocationFailure();
};

#pragma once

#include <cstddef>

/// Number of allocations through operator new in this process so far. Take the difference around what is to be judged.
std::size_t allocationCount() noexcept;

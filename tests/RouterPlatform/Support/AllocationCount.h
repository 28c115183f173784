#pragma once

#include <cstddef>

/// Number of allocations of this process so far: calls of operator new, and with a sanitizer those of malloc too. Take
/// the difference around what is to be judged.
std::size_t allocationCount() noexcept;

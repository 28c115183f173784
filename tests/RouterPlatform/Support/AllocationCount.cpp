#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <atomic>
#include <cstdlib>
#include <new>

// The array and nothrow forms of the standard library end in these.

namespace {
std::atomic<std::size_t> allocations{0};
}

std::size_t allocationCount() noexcept { return allocations.load(std::memory_order_relaxed); }

void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* const memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

// Every form is here, since a sanitizer has each of its own, and what one allocates another may not release.

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> releases{0};
constinit thread_local std::size_t allowedAllocations = unlimited;
constinit thread_local std::size_t failuresToCome = 0;

void* counted(void* memory) {
  if (!memory) throw std::bad_alloc();
  allocations.fetch_add(1, std::memory_order_relaxed);
  return memory;
}

void takeLeave() {
  if (allowedAllocations == unlimited) return;
  if (allowedAllocations > 0) {
    --allowedAllocations;
  } else if (failuresToCome > 0) {
    if (failuresToCome != unlimited) --failuresToCome;
    throw std::bad_alloc();
  }
}

void release(void* memory) noexcept {
  if (memory) releases.fetch_add(1, std::memory_order_relaxed);
  std::free(memory);
}

}  // namespace

std::size_t allocationCount() noexcept { return allocations.load(std::memory_order_relaxed); }
std::size_t liveAllocationCount() noexcept { return allocationCount() - releases.load(std::memory_order_relaxed); }

AllocationFailure::AllocationFailure(std::size_t allowed, std::size_t failures) noexcept {
  allowedAllocations = allowed;
  failuresToCome = failures;
}
AllocationFailure::~AllocationFailure() { allowedAllocations = unlimited; }

void* operator new(std::size_t size) {
  takeLeave();
  return counted(std::malloc(size ? size : 1));
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
  try {
    return operator new(size);
  } catch (std::bad_alloc const&) {
    return nullptr;
  }
}
void* operator new[](std::size_t size, std::nothrow_t const& nothrow) noexcept { return operator new(size, nothrow); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  takeLeave();
  auto const step = static_cast<std::size_t>(alignment);
  return counted(std::aligned_alloc(step, (size + step) / step * step));
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }

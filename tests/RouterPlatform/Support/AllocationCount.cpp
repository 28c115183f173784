#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <atomic>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define WITH_SANITIZER_ALLOCATOR
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define WITH_SANITIZER_ALLOCATOR
#endif
#endif

namespace {
std::atomic<std::size_t> allocations{0};
}

std::size_t allocationCount() noexcept { return allocations.load(std::memory_order_relaxed); }

#ifdef WITH_SANITIZER_ALLOCATOR

// The sanitizer has an allocator of its own, which must stay, and tells of every call.

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(void const volatile*, std::size_t),
                                                         void (*free_hook)(void const volatile*));

namespace {
[[maybe_unused]] int const installed = __sanitizer_install_malloc_and_free_hooks(
    [](void const volatile*, std::size_t) { allocations.fetch_add(1, std::memory_order_relaxed); },
    [](void const volatile*) {});
}

#else

// The other forms, but those for over-aligned types, end in these.

void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* const memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#endif

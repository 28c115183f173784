#pragma once

#include <RouterPlatform/SharedTable/Format.h>

#include <atomic>
#include <cstddef>

/// A slot's words, moved in and out beside other threads and processes. C++20 has no atomic memcpy: each word is an
/// atomic access, relaxed, and fences order the whole against the bucket. The thread sanitizer does not understand
/// fences; under it each word is released and acquired instead.
namespace SharedTable::SlotWords {

#if defined(__SANITIZE_THREAD__)
inline constexpr bool threadSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
inline constexpr bool threadSanitizer = true;
#else
inline constexpr bool threadSanitizer = false;
#endif
#else
inline constexpr bool threadSanitizer = false;
#endif

inline constexpr auto loadOrder = threadSanitizer ? std::memory_order_acquire : std::memory_order_relaxed;
inline constexpr auto storeOrder = threadSanitizer ? std::memory_order_release : std::memory_order_relaxed;

/// Before a slot is refilled. Pairs with `fenceAfterCopy` of a reader that meets one of the new words: the reader then
/// sees that the slot's former bucket has moved on.
inline void fenceBeforeFill() noexcept {
  if constexpr (!threadSanitizer) std::atomic_thread_fence(std::memory_order_release);
}

/// After a slot was copied and before the bucket is looked at again; pairs with `fenceBeforeFill`.
inline void fenceAfterCopy() noexcept {
  if constexpr (!threadSanitizer) std::atomic_thread_fence(std::memory_order_acquire);
}

/// Stores a row and its check word. The release store of the bucket that comes after makes them a reader's.
inline void fill(std::atomic<U64>* slot, void const* row, std::size_t words, RowCheck check) noexcept {
  auto const* octets = static_cast<std::byte const*>(row);
  for (std::size_t i = 0; i < words; ++i) {
    U64 word;
    std::memcpy(&word, octets + 8 * i, 8);
    check.add(word);
    slot[i].store(word, storeOrder);
  }
  slot[words].store(check.result(), storeOrder);
}

/// Copies the row out; whether its check word holds.
inline bool copy(std::atomic<U64> const* slot, void* row, std::size_t words, RowCheck check) noexcept {
  auto* octets = static_cast<std::byte*>(row);
  for (std::size_t i = 0; i < words; ++i) {
    U64 const word = slot[i].load(loadOrder);
    check.add(word);
    std::memcpy(octets + 8 * i, &word, 8);
  }
  return slot[words].load(loadOrder) == check.result();
}

}  // namespace SharedTable::SlotWords

#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

namespace Net {

/// Objects at rest, kept for their next use, at most `bound` of them. `T` has a member `T* nextFree_`. The owner locks.
template <class T>
class FreeList {
 public:
  explicit FreeList(Fwk::U64 bound) noexcept : bound_(bound) {}
  FreeList(FreeList const&) = delete;
  FreeList& operator=(FreeList const&) = delete;
  ~FreeList() {
    while (T* const object = take()) delete object;
  }

  /// An object, or null. The one put last comes first: it is the likeliest to be in the cache.
  T* take() noexcept {
    T* const object = first_;
    if (object) {
      first_ = object->nextFree_;
      --size_;
    }
    return object;
  }

  /// False: the list is full, and the object stays the caller's.
  bool put(T* object) noexcept {
    if (size_ == bound_) return false;
    object->nextFree_ = first_;
    first_ = object;
    ++size_;
    return true;
  }

 private:
  T* first_ = nullptr;
  Fwk::U64 size_ = 0;
  Fwk::U64 const bound_;
};

}  // namespace Net

#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

#include <atomic>

namespace Fwk {

/// How many instances of an entity type, made by `create`, are alive. Any thread.
class LiveCount {
 public:
  S64 value() const noexcept { return count_.load(std::memory_order_relaxed); }
  void add() noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
  void drop() noexcept { count_.fetch_sub(1, std::memory_order_relaxed); }

 private:
  // A plain counter: nothing is published through it, so every access is relaxed.
  std::atomic<S64> count_{0};
};

}  // namespace Fwk

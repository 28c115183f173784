#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

#include <atomic>

namespace Fwk {

/// How many instances of an entity type are alive. Any thread.
class LiveCount {
 public:
  S64 value() const noexcept { return count_.load(std::memory_order_relaxed); }
  void drop() noexcept { count_.fetch_sub(1, std::memory_order_relaxed); }

  /// Counts one instance while it is made; takes it back unless told to keep it.
  class Pending {
   public:
    explicit Pending(LiveCount& count) noexcept : count_(&count) {
      count.count_.fetch_add(1, std::memory_order_relaxed);
    }
    Pending(Pending const&) = delete;
    Pending& operator=(Pending const&) = delete;
    ~Pending() {
      if (count_) count_->drop();
    }
    void keep() noexcept { count_ = nullptr; }

   private:
    LiveCount* count_;
  };

 private:
  // A plain counter: nothing is published through it, so every access is relaxed.
  std::atomic<S64> count_{0};
};

}  // namespace Fwk

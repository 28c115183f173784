#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>

#include <atomic>
#include <string>
#include <string_view>
#include <vector>

/// Named counters of operations. A counter is looked up once and then incremented; nothing on that path takes a lock.
///
///     Stats::Counter& written = Stats::counter("routerNeighborRaIs");
///     ++written;
namespace Stats {

using Fwk::U64;

/// Counts up from 0 and wraps at 2^64. Any thread may read it. All users of a counter increment it in the same
/// way: by one thread only, or by any thread, which takes three times as long.
class Counter {
 public:
  explicit Counter(std::string_view name) : name_(name) {}
  Counter(Counter const&) = delete;
  Counter& operator=(Counter const&) = delete;

  std::string const& name() const noexcept { return name_; }
  U64 value() const noexcept { return value_.load(std::memory_order_relaxed); }

  /// By one thread: of two that do so at once, one may not be counted.
  Counter& operator++() noexcept {
    add(1);
    return *this;
  }
  void add(U64 count) noexcept { value_.store(value() + count, std::memory_order_relaxed); }

  /// By any thread.
  void addShared(U64 count) noexcept { value_.fetch_add(count, std::memory_order_relaxed); }

 private:
  std::string const name_;
  // Relaxed on all sides and without a partner: a count orders nothing, and one writer needs no read-modify-write.
  std::atomic<U64> value_{0};
};

/// The counter called `name`, made when it is asked for first. The same name gives the same counter, which lasts as
/// long as the process. Any thread; takes a lock, so keep the reference.
ROUTER_PLATFORM_EXPORT Counter& counter(std::string_view name);

/// A counter's name and value at one moment.
struct Sample {
  std::string name;
  U64 value;
  bool operator==(Sample const&) const = default;
};

/// All counters of the process, by name. Any thread; each value is read by itself, not all at one instant.
ROUTER_PLATFORM_EXPORT std::vector<Sample> snapshot();

}  // namespace Stats

#pragma once

#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Trace/Location.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

/// Trace messages with numbered levels, switched on per handle. A message that is off costs one relaxed load and one
/// branch; its parts are not evaluated.
///
///     static Trace::Handle const traceHandle("RouterAdvtUtils");
///     TRACE(traceHandle, 3, "Could not copy prefix as msgLen ( ", msgLen, " )");
///
/// All operations may be called from any thread.
namespace Trace {

/// Number of levels; they are numbered from 0.
inline constexpr unsigned levelCount = 64;

/// One source of messages, usually a static object. It enters itself into the process's list of handles, and gets
/// earlier settings that match it.
class ROUTER_PLATFORM_EXPORT Handle {
 public:
  explicit Handle(std::string_view name);
  ~Handle();
  Handle(Handle const&) = delete;
  Handle& operator=(Handle const&) = delete;

  std::string const& name() const noexcept { return name_; }

  /// Bit n is set when level n is enabled.
  std::uint64_t levels() const noexcept { return levels_.load(std::memory_order_relaxed); }
  void levelsIs(std::uint64_t mask) const noexcept { levels_.store(mask, std::memory_order_relaxed); }

  bool enabled(unsigned level) const noexcept { return level < levelCount && (levels() >> level & 1) != 0; }

 private:
  std::string name_;
  // Relaxed on both sides and without a partner: it publishes nothing but itself.
  mutable std::atomic<std::uint64_t> levels_{0};
};

/// A message on its way to the sink. The texts are valid during the call of the sink only.
struct Record {
  std::string_view handle;
  unsigned level;
  std::string_view source;
  int line;
  std::string_view function;
  std::string_view text;
};

/// Takes the messages. One thread at a time calls it. It must not throw; messages that it traces itself are dropped.
using Sink = std::function<void(Record const&)>;

/// Replaces the sink and returns the former one. No thread is running the former sink then, unless it called this
/// itself. An empty sink restores the one in force at start: one line per message on standard error,
/// `HANDLE/LEVEL SOURCE:LINE: FUNCTION: TEXT`, control characters as `\xNN`.
ROUTER_PLATFORM_EXPORT Sink sinkIs(Sink sink);

/// A settings text that cannot be read; `what()` gives the error and its place.
class ROUTER_PLATFORM_EXPORT SettingsError : public std::invalid_argument {
 public:
  SettingsError(std::size_t offset, std::string const& what) : std::invalid_argument(what), offset_(offset) {}
  std::size_t offset() const noexcept { return offset_; }

 private:
  std::size_t offset_;
};

/// Sets the levels of the handles whose names match, those made later included: `RouterAdvt*/0-3,8`. A setting is a
/// glob pattern (fnmatch(3)), a slash, and a list of levels and ranges; `*` is every level, an empty list none. Several
/// settings are separated by colons; a later one wins, and handles that match none keep their levels. Throws
/// `SettingsError`, and then nothing has changed.
///
/// At start the environment variable TRACE is read as such a text. An error in it is reported on standard error.
ROUTER_PLATFORM_EXPORT void levelsIs(std::string_view settings);

namespace detail {
ROUTER_PLATFORM_EXPORT void deliver(Handle const& handle, unsigned level, Location location, std::string_view text);

template <class... Parts>
[[gnu::cold, gnu::noinline]] void emit(Handle const& handle, unsigned level, Location location, Parts const&... parts) {
  deliver(handle, level, location, textOf(parts...));
}
}  // namespace detail

}  // namespace Trace

/// TRACE_AT(handle, level, location, parts...): a message with the given place, `Trace::Location{source, line,
/// function}`. Location and parts are evaluated only when the level is enabled.
#define TRACE_AT(handle, level, ...)                         \
  do {                                                       \
    if ((handle).enabled(level)) [[unlikely]]                \
      ::Trace::detail::emit((handle), (level), __VA_ARGS__); \
  } while (false)

/// TRACE(handle, level, parts...): a message whose text is the parts' plain texts, one after another.
#define TRACE(handle, level, ...) TRACE_AT(handle, level, ::Trace::Location::here(), __VA_ARGS__)

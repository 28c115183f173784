#include <RouterPlatform/Base/Printable.h>
#include <RouterPlatform/Trace/Trace.h>

#include <fnmatch.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace Trace {

namespace {

struct Setting {
  std::string pattern;
  std::uint64_t mask;

  bool matches(Handle const& handle) const { return fnmatch(pattern.c_str(), handle.name().c_str(), 0) == 0; }
};

/// Reads one settings text; offsets in errors count from its first character.
class SettingsReader {
 public:
  explicit SettingsReader(std::string_view text) : text_(text) {}

  std::vector<Setting> read() const {
    std::vector<Setting> settings;
    for (std::size_t begin = 0; begin <= text_.size();) {
      std::size_t const end = std::min(text_.find(':', begin), text_.size());
      if (end > begin) settings.push_back(setting(begin, end));
      begin = end + 1;
    }
    return settings;
  }

 private:
  [[noreturn]] void fail(std::size_t offset, char const* wrong) const {
    std::string what = "trace settings \"";
    appendTexts(what, text_, "\", character ", offset + 1, ": ", wrong);
    throw SettingsError(offset, what);
  }

  Setting setting(std::size_t begin, std::size_t end) const {
    std::size_t const slash = text_.substr(0, end).rfind('/');
    if (slash == std::string_view::npos || slash < begin)
      fail(end, "expected '/' and levels after the name of the handle");
    if (slash == begin) fail(begin, "expected the name of a handle, or a pattern");
    return {std::string(text_.substr(begin, slash - begin)), levels(slash + 1, end)};
  }

  std::uint64_t levels(std::size_t begin, std::size_t end) const {
    std::string_view const list = text_.substr(begin, end - begin);
    if (list.empty()) return 0;
    if (list == "*") return ~std::uint64_t{0};
    std::uint64_t mask = 0;
    for (std::size_t at = begin;; ++at) {
      unsigned const first = level(at, end);
      unsigned last = first;
      if (at < end && text_[at] == '-') last = level(++at, end);
      if (last < first) fail(at - 1, "the range ends before it begins");
      for (unsigned n = first; n <= last; ++n) mask |= std::uint64_t{1} << n;
      if (at == end) return mask;
      if (text_[at] != ',') fail(at, "expected ',' or '-' or ':'");
    }
  }

  /// Reads the number at `at`, and moves `at` behind it.
  unsigned level(std::size_t& at, std::size_t end) const {
    unsigned value = 0;
    auto const [stop, error] = std::from_chars(text_.data() + at, text_.data() + end, value);
    if (error == std::errc::invalid_argument) fail(at, "expected a level, 0 to 63");
    if (error != std::errc{} || value >= levelCount) fail(at, "levels go from 0 to 63");
    at = static_cast<std::size_t>(stop - text_.data());
    return value;
  }

  std::string_view text_;
};

/// One write per message, so that lines of several threads and processes do not mix.
void writeToStandardError(Record const& record) try {
  std::string line;
  appendTexts(line, record.handle, '/', record.level, ' ', record.source, ':', record.line, ": ", record.function,
              ": ");
  appendPrintable(line, record.text);
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
} catch (std::bad_alloc const&) {
  std::fputs("trace: a message was lost, out of memory\n", stderr);
}

/// The process's handles and the settings made so far. Never destroyed: handles in static objects may outlive it.
class Registry {
 public:
  static Registry& instance() {
    static Registry& registry = *new Registry;
    return registry;
  }

  void add(Handle const& handle) {
    std::lock_guard const lock(mutex_);
    handles_.push_back(&handle);
    for (Setting const& setting : settings_)
      if (setting.matches(handle)) handle.levelsIs(setting.mask);
  }

  void remove(Handle const& handle) {
    std::lock_guard const lock(mutex_);
    std::erase(handles_, &handle);
  }

  void apply(std::vector<Setting> settings) {
    std::lock_guard const lock(mutex_);
    for (Setting& setting : settings) {
      for (Handle const* handle : handles_)
        if (setting.matches(*handle)) handle->levelsIs(setting.mask);
      std::erase_if(settings_, [&](Setting const& old) { return old.pattern == setting.pattern; });
      settings_.push_back(std::move(setting));
    }
  }

 private:
  Registry() {
    char const* const text = std::getenv("TRACE");
    if (!text) return;
    try {
      settings_ = SettingsReader(text).read();
    } catch (SettingsError const& error) {
      std::string line = "environment variable TRACE: ";
      appendPrintable(line, error.what());
      std::fprintf(stderr, "%s\n", line.c_str());
    }
  }

  std::mutex mutex_;  // guards both lists
  std::vector<Handle const*> handles_;
  std::vector<Setting> settings_;  // in the order in which they were made; each pattern once
};

/// The sink in force. The mutex is held while the sink runs, so that a replaced sink is no longer in use. It is
/// recursive, because a sink may replace itself.
struct SinkPlace {
  static SinkPlace& instance() {
    static SinkPlace& place = *new SinkPlace;
    return place;
  }
  std::recursive_mutex mutex;
  std::shared_ptr<Sink const> sink = std::make_shared<Sink const>(writeToStandardError);
  bool running = false;
};

}  // namespace

Handle::Handle(std::string_view name) : name_(name) {
  Registry::instance().add(*this);
  SinkPlace::instance();  // made now, so that the first message allocates nothing for it
}

Handle::~Handle() {
  Registry::instance().remove(*this);
  levelsIs(0);  // messages after the end of a static handle are dropped
}

Sink sinkIs(Sink sink) {
  if (!sink) sink = writeToStandardError;
  auto next = std::make_shared<Sink const>(std::move(sink));
  SinkPlace& place = SinkPlace::instance();
  std::lock_guard const lock(place.mutex);
  return *std::exchange(place.sink, std::move(next));
}

void levelsIs(std::string_view settings) { Registry::instance().apply(SettingsReader(settings).read()); }

void detail::deliver(Handle const& handle, unsigned level, Location location, std::string_view text) {
  SinkPlace& place = SinkPlace::instance();
  std::lock_guard const lock(place.mutex);
  if (place.running) return;
  auto const sink = place.sink;  // keeps a sink alive that replaces itself
  struct Running {
    bool& flag;
    explicit Running(bool& f) : flag(f) { flag = true; }
    ~Running() { flag = false; }
  } const running(place.running);
  (*sink)({handle.name(), level, location.source, location.line, location.function, text});
}

}  // namespace Trace

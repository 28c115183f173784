#pragma once

#include <RouterPlatform/Trace/Trace.h>

#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Trace {

/// A message as it was traced.
struct CapturedRecord {
  std::string handle;
  unsigned level;
  std::string source;
  int line;
  std::string function;
  std::string text;

  friend void PrintTo(CapturedRecord const& r, std::ostream* os) {
    *os << r.handle << '/' << r.level << ' ' << r.source << ':' << r.line << ": " << r.function << ": " << r.text;
  }
};

/// Collects what is traced while it lives by handles that match `pattern`, at `levels`; switches them off at its end.
///
///     Trace::Capture capture("RouterAdvtUtils", "3,8");
///     ...
///     EXPECT_THAT(capture.texts(3), ElementsAre("After Network Boot option: 94"));
class Capture {
 public:
  explicit Capture(std::string pattern, std::string const& levels = "*")
      : pattern_(std::move(pattern)), former_(sinkIs([this](Record const& r) {
          records_.push_back({std::string(r.handle), r.level, std::string(r.source), r.line, std::string(r.function),
                              std::string(r.text)});
        })) {
    levelsIs(pattern_ + "/" + levels);
  }
  ~Capture() {
    levelsIs(pattern_ + "/");
    sinkIs(std::move(former_));
  }
  Capture(Capture const&) = delete;
  Capture& operator=(Capture const&) = delete;

  std::vector<CapturedRecord> const& records() const { return records_; }

  /// Texts of the messages of `level`, in order.
  std::vector<std::string> texts(unsigned level) const {
    std::vector<std::string> result;
    for (auto const& r : records_)
      if (r.level == level) result.push_back(r.text);
    return result;
  }

 private:
  std::string pattern_;
  std::vector<CapturedRecord> records_;
  Sink former_;
};

}  // namespace Trace

#pragma once

namespace Trace {

/// Where a message or an assertion stands. The texts are not copied; literals are meant.
struct Location {
  char const* source;
  int line;
  char const* function;

  /// The place of the call itself, when called without arguments.
  static constexpr Location here(char const* source = __builtin_FILE(), int line = __builtin_LINE(),
                                 char const* function = __builtin_FUNCTION()) noexcept {
    return {source, line, function};
  }
};

}  // namespace Trace

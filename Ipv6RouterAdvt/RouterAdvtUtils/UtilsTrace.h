#pragma once

#include <RouterPlatform/Trace/Trace.h>

/// The trace messages of the packet functions.
namespace RouterAdvt {

inline constexpr char const* utilsSource = "Ipv6RouterAdvt/RouterAdvtUtils";

extern Trace::Handle const utilsTrace;

/// A message of the packet functions; its parts are evaluated only when the level is enabled.
#define UTILS_TRACE(level, ...) \
  TRACE_AT(::RouterAdvt::utilsTrace, level, ::Trace::Location::here(::RouterAdvt::utilsSource), __VA_ARGS__)

}  // namespace RouterAdvt

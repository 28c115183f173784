#pragma once

#include <Ipv6RouterAdvt/Export.h>

/// The version of these headers. The build takes the version of the project from here.
#define ROUTER_ADVT_VERSION_MAJOR 0
#define ROUTER_ADVT_VERSION_MINOR 1
#define ROUTER_ADVT_VERSION_PATCH 0
/// The same as text: `MAJOR.MINOR.PATCH`.
#define ROUTER_ADVT_VERSION "0.1.0"

namespace RouterAdvt {

/// The version of the library that the program runs with: `ROUTER_ADVT_VERSION` as it was when the library was built.
ROUTER_ADVT_EXPORT char const* version() noexcept;

}  // namespace RouterAdvt

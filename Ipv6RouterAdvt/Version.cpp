#include <Ipv6RouterAdvt/Version.h>

namespace RouterAdvt {

char const* version() noexcept { return ROUTER_ADVT_VERSION; }

}  // namespace RouterAdvt

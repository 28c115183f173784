#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>

/// Entities that stand on their own. Each call makes a new one, every attribute at its default, notification active,
/// and returns the only reference to it. Throws std::bad_alloc, having undone everything.
namespace RouterAdvt {

ROUTER_ADVT_EXPORT Ptr<Config> configFactory(Name name);
ROUTER_ADVT_EXPORT Ptr<IntfConfig> intfConfigFactory(IntfId intfId);

}  // namespace RouterAdvt

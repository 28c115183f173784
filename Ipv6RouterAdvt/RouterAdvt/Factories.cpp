#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>

namespace RouterAdvt {

Ptr<Config> configFactory(Name name) { return Fwk::create<Config>(name); }
Ptr<IntfConfig> intfConfigFactory(IntfId intfId) { return Fwk::create<IntfConfig>(intfId); }

}  // namespace RouterAdvt

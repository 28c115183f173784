#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>

namespace RouterAdvt {

namespace {

/// Enters the model's types into the registry when the library is loaded. The order is part of the binary interface.
struct Registration {
  Registration() {
    for (Fwk::TypeRecord const* type : {
             &PrefixDefault::typeRecord(),
             &PrefixProfileEntry::typeRecord(),
             &PrefixConfigEntry::typeRecord(),
             &IntfConfig::typeRecord(),
             &LifeTimeHashMap::typeRecord(),
             &DNSServerConfigEntry::typeRecord(),
             &DNSSuffixConfigEntry::typeRecord(),
             &Config::typeRecord(),
         })
      Fwk::typeRegistry().add(*type);
  }
};

Registration const registration;

}  // namespace

}  // namespace RouterAdvt

#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <Ipv6RouterAdvt/RouterAdvt/RaPacketStatus.h>
#include <Ipv6RouterAdvt/RouterAdvt/RouterNeighborRaStatus.h>
#include <Ipv6RouterAdvt/RouterAdvt/RouterNeighborStatus.h>
#include <Ipv6RouterAdvt/RouterAdvt/Status.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>

namespace RouterAdvt {

namespace {

/// Enters the model's types into the registry when the library is loaded. The order is part of the binary interface.
struct Registration {
  Registration() {
    for (Fwk::TypeRecord const* type : {
             &Status::typeRecord(),
             &RaPacketStatus::typeRecord(),
             &RouterNeighbor::typeRecord(),
             &PrefixDefault::typeRecord(),
             &RouterNeighborStatus::typeRecord(),
             &RouterNeighborRaKey::typeRecord(),
             &RouterNeighborRa::typeRecord(),
             &PrefixProfileEntry::typeRecord(),
             &PrefixConfigEntry::typeRecord(),
             &RaPacket::typeRecord(),
             &IntfConfig::typeRecord(),
             &Table::RouterNeighborRaStatus::typeRecord(),
             &LifeTimeHashMap::typeRecord(),
             &DNSServerConfigEntry::typeRecord(),
             &DNSSuffixConfigEntry::typeRecord(),
             &RaPacketPrefixInfo::typeRecord(),
             &ProcFileDirDataSet::typeRecord(),
             &Config::typeRecord(),
             &IntfStatus::typeRecord(),
             &RouterNeighbors::typeRecord(),
         })
      Fwk::typeRegistry().add(*type);
  }
};

Registration const registration;

}  // namespace

}  // namespace RouterAdvt

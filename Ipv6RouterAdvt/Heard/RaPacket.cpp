#include <Ipv6RouterAdvt/Heard/RaPacket.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& RaPacket::typeRecord() {
  using namespace Fwk;
  static constexpr auto attrs = attributes<RaPacket>(
      scalar<&RaPacket::intfId>("intfId"),  //
      scalar<&RaPacket::curHopLimit, &RaPacket::curHopLimitIs>("curHopLimit"),
      scalar<&RaPacket::managedConfigFlag, &RaPacket::managedConfigFlagIs>("managedConfigFlag"),
      scalar<&RaPacket::otherConfigFlag, &RaPacket::otherConfigFlagIs>("otherConfigFlag"),
      scalar<&RaPacket::reachableTime, &RaPacket::reachableTimeIs>("reachableTime"),
      scalar<&RaPacket::retransTimer, &RaPacket::retransTimerIs>("retransTimer"),
      scalar<&RaPacket::mtuSpecified, &RaPacket::mtuSpecifiedIs>("mtuSpecified"),
      scalar<&RaPacket::mtu, &RaPacket::mtuIs>("mtu"),
      scalar<&RaPacket::srcIp6Addr, &RaPacket::srcIp6AddrIs>("srcIp6Addr"),
      scalar<&RaPacket::routerLifeTime, &RaPacket::routerLifeTimeIs>("routerLifeTime"),
      collection<&RaPacket::prefixInfo_>("prefixInfo"), computed<&RaPacket::isDeathPacket>("isDeathPacket"));
  static constexpr TypeRecord record = valueRecord<RaPacket>(attrs);
  return record;
}

}  // namespace RouterAdvt

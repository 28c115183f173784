#include <Ipv6RouterAdvt/Heard/RaPacketPrefixInfo.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& RaPacketPrefixInfo::typeRecord() {
  using namespace Fwk;
  static constexpr auto attrs = attributes<RaPacketPrefixInfo>(
      scalar<&RaPacketPrefixInfo::prefix>("prefix"),
      scalar<&RaPacketPrefixInfo::onLinkFlag, &RaPacketPrefixInfo::onLinkFlagIs>("onLinkFlag"),
      scalar<&RaPacketPrefixInfo::autoConfigFlag, &RaPacketPrefixInfo::autoConfigFlagIs>("autoConfigFlag"),
      scalar<&RaPacketPrefixInfo::validLifetime, &RaPacketPrefixInfo::validLifetimeIs>("validLifetime"),
      scalar<&RaPacketPrefixInfo::preferredLifetime, &RaPacketPrefixInfo::preferredLifetimeIs>("preferredLifetime"));
  static constexpr TypeRecord record = valueRecord<RaPacketPrefixInfo>(attrs);
  return record;
}

}  // namespace RouterAdvt

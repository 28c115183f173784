#include <Ipv6RouterAdvt/Heard/RaPacketStatus.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& RaPacketStatus::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs =
      attributes<RaPacketStatus>(collection<&RaPacketStatus::raPacket_>("raPacket", MemberOrder::arbitrary));
  static constexpr TypeRecord record = entityRecord<RaPacketStatus, Name>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

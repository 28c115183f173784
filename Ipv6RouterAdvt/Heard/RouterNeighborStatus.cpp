#include <Ipv6RouterAdvt/Heard/RouterNeighborStatus.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& RouterNeighborStatus::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<RouterNeighborStatus>(
      collection<&RouterNeighborStatus::routerNeighbor_>("routerNeighbor", MemberOrder::arbitrary),
      collection<&RouterNeighborStatus::neighbor_>("neighbor", MemberOrder::arbitrary));
  static constexpr TypeRecord record = entityRecord<RouterNeighborStatus, Name>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

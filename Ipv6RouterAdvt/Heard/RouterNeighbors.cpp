#include <Ipv6RouterAdvt/Heard/RouterNeighbors.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& RouterNeighbors::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<RouterNeighbors>(
      Fwk::key<&RouterNeighbors::intfId>("intfId"), collection<&RouterNeighbors::linkLocalAddr_>("linkLocalAddr"));
  static constexpr TypeRecord record = entityRecord<RouterNeighbors, IntfId>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

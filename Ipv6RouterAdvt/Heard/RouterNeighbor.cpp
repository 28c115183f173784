#include <Ipv6RouterAdvt/Heard/RouterNeighbor.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& RouterNeighbor::typeRecord() {
  using namespace Fwk;
  static constexpr auto attrs =
      attributes<RouterNeighbor>(scalar<&RouterNeighbor::intfId>("intfId"), scalar<&RouterNeighbor::vrf>("vrf"),
                                 scalar<&RouterNeighbor::linkLocalAddr>("linkLocalAddr"));
  static constexpr TypeRecord record = valueRecord<RouterNeighbor>(attrs);
  return record;
}

}  // namespace RouterAdvt

#include <Ipv6RouterAdvt/Heard/RouterNeighborRa.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& RouterNeighborRa::typeRecord() {
  using namespace Fwk;
  static constexpr auto attrs = attributes<RouterNeighborRa>(
      scalar<&RouterNeighborRa::key>("key"),
      scalar<&RouterNeighborRa::lastRaReceived, &RouterNeighborRa::lastRaReceivedIs>("lastRaReceived"));
  static constexpr TypeRecord record = valueRecord<RouterNeighborRa>(attrs);
  return record;
}

}  // namespace RouterAdvt

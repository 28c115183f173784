#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& LifeTimeHashMap::typeRecord() {
  using namespace Fwk;
  static constexpr auto attrs = attributes<LifeTimeHashMap>(collection<&LifeTimeHashMap::visited_>("visited"));
  static constexpr TypeRecord record = valueRecord<LifeTimeHashMap>(attrs);
  return record;
}

}  // namespace RouterAdvt

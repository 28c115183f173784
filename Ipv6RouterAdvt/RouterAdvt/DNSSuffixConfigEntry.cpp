#include <Ipv6RouterAdvt/RouterAdvt/DNSSuffixConfigEntry.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& DNSSuffixConfigEntry::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<DNSSuffixConfigEntry>(
      Fwk::key<&DNSSuffixConfigEntry::suffix>("suffix"),
      scalar<&DNSSuffixConfigEntry::lifetime, &DNSSuffixConfigEntry::lifetimeIs>("lifetime"),
      constant<&DNSSuffixConfigEntry::lifetimeDefault>("lifetimeDefault"),
      scalar<&DNSSuffixConfigEntry::lifetimeConfigured, &DNSSuffixConfigEntry::lifetimeConfiguredIs>(
          "lifetimeConfigured"),
      computedWithArgument<&DNSSuffixConfigEntry::validLifetime>("validLifetime"));
  static constexpr TypeRecord record = entityRecord<DNSSuffixConfigEntry, String>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

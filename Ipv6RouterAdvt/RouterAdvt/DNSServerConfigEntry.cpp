#include <Ipv6RouterAdvt/RouterAdvt/DNSServerConfigEntry.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& DNSServerConfigEntry::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<DNSServerConfigEntry>(
      Fwk::key<&DNSServerConfigEntry::ipAddr>("ipAddr"),
      scalar<&DNSServerConfigEntry::lifetime, &DNSServerConfigEntry::lifetimeIs>("lifetime"),
      constant<&DNSServerConfigEntry::lifetimeDefault>("lifetimeDefault"),
      scalar<&DNSServerConfigEntry::lifetimeConfigured, &DNSServerConfigEntry::lifetimeConfiguredIs>(
          "lifetimeConfigured"),
      computedWithArgument<&DNSServerConfigEntry::validLifetime>("validLifetime"));
  static constexpr TypeRecord record = entityRecord<DNSServerConfigEntry, Ip6Addr>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

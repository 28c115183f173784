#include <Ipv6RouterAdvt/RouterAdvt/PrefixProfileEntry.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& PrefixProfileEntry::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<PrefixProfileEntry>(
      scalar<&PrefixProfileEntry::noAdvertise, &PrefixProfileEntry::noAdvertiseIs>("noAdvertise"),
      scalar<&PrefixProfileEntry::validLifetime, &PrefixProfileEntry::validLifetimeIs>("validLifetime"),
      scalar<&PrefixProfileEntry::preferredLifetime, &PrefixProfileEntry::preferredLifetimeIs>("preferredLifetime"),
      scalar<&PrefixProfileEntry::noOnLink, &PrefixProfileEntry::noOnLinkIs>("noOnLink"),
      scalar<&PrefixProfileEntry::noAutoConfig, &PrefixProfileEntry::noAutoConfigIs>("noAutoConfig"));
  static constexpr TypeRecord record = entityRecord<PrefixProfileEntry, Name>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

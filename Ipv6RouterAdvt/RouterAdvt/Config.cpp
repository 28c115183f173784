#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& Config::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<Config>(
      collection<&Config::intf_>("intf", MemberOrder::arbitrary),  //
      scalar<&Config::hopLimit, &Config::hopLimitIs>("hopLimit"), constant<&Config::hopLimitDefault>("hopLimitDefault"),
      scalar<&Config::raConsistency, &Config::raConsistencyIs>("raConsistency"),
      constant<&Config::raConsistencyDefault>("raConsistencyDefault"),
      collection<&Config::prefixProfiles_>("prefixProfiles", MemberOrder::arbitrary));
  static constexpr TypeRecord record = entityRecord<Config, Name>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

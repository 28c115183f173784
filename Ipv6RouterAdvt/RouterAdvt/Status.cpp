#include <Ipv6RouterAdvt/RouterAdvt/Status.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& Status::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<Status>(
      collection<&Status::intf_>("intf", MemberOrder::arbitrary),
      scalar<&Status::routerAdvtDaemonActive, &Status::routerAdvtDaemonActiveIs>("routerAdvtDaemonActive"));
  static constexpr TypeRecord record = entityRecord<Status, Name>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

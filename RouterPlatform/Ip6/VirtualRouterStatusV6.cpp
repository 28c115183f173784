#include <RouterPlatform/Fwk/Attributes.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <RouterPlatform/Ip6/VirtualRouterStatusV6.h>

namespace Ip6 {

Fwk::TypeRecord const& VirtualRouterStatusV6::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs =
      attributes<VirtualRouterStatusV6>(collection<&VirtualRouterStatusV6::prefix_>("prefix"));
  static constexpr TypeRecord record = entityRecord<VirtualRouterStatusV6, Name>(attrs, live);
  return record;
}

namespace {

Fwk::TypeRegistration const registration(VirtualRouterStatusV6::typeRecord());

}  // namespace

}  // namespace Ip6

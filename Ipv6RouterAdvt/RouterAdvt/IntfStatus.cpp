#include <Ipv6RouterAdvt/RouterAdvt/IntfStatus.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& IntfStatus::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<IntfStatus>(Fwk::key<&IntfStatus::intfId>("intfId"),
                                                       child<&IntfStatus::cfgProcFileData_>("cfgProcFileData"),
                                                       child<&IntfStatus::nbrProcFileData_>("nbrProcFileData"));
  static constexpr TypeRecord record = entityRecord<IntfStatus, IntfId>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

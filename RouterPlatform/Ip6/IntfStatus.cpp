#include <RouterPlatform/Fwk/Attributes.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <RouterPlatform/Ip6/IntfStatus.h>

namespace Ip6 {

Fwk::TypeRecord const& IntfStatus::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<IntfStatus>(
      Fwk::key<&IntfStatus::intfId>("intfId"),  //
      collection<&IntfStatus::addr_>("addr"),
      scalar<&IntfStatus::nsRetransmitInterval, &IntfStatus::nsRetransmitIntervalIs>("nsRetransmitInterval"));
  static constexpr TypeRecord record = entityRecord<IntfStatus, Net::IntfId>(attrs, live);
  return record;
}

namespace {

Fwk::TypeRegistration const registration(IntfStatus::typeRecord());

}  // namespace

}  // namespace Ip6

#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& PrefixDefault::typeRecord() {
  using namespace Fwk;
  static constexpr auto attrs = attributes<PrefixDefault>(
      constant<&PrefixDefault::noAdvertise>("noAdvertise"), constant<&PrefixDefault::validLifetime>("validLifetime"),
      constant<&PrefixDefault::preferredLifetime>("preferredLifetime"), constant<&PrefixDefault::noOnLink>("noOnLink"),
      constant<&PrefixDefault::noAutoConfig>("noAutoConfig"));
  static constexpr TypeRecord record = valueRecord<PrefixDefault>(attrs);
  return record;
}

}  // namespace RouterAdvt

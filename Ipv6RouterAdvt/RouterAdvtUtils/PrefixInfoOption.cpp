#include <Ipv6RouterAdvt/RouterAdvtUtils/OptionWriter.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/PrefixInfoOption.h>
#include <RouterPlatform/Nd/Icmp6HdrOptions.h>

namespace RouterAdvt {

using Net::Icmp6HdrPrefixInfoOption;

void copyPrefixToRaMsgBuf(U8* buf, U64& msgLen, Ip6AddrWithMask const& prefix, bool noOnLink, bool noAutoConfig,
                          U32 preferredLifetime, U32 validLifetime) {
  auto& option = appendOption<Icmp6HdrPrefixInfoOption>(buf, msgLen);
  option.prefixLength = prefix.maskLen();
  if (!noOnLink) option.flags = Icmp6HdrPrefixInfoOption::onLinkBit;
  if (!noAutoConfig) option.flags |= Icmp6HdrPrefixInfoOption::autonomousBit;
  option.validLifetime = validLifetime;
  option.preferredLifetime = preferredLifetime;
  option.reserved2 = 0;
  prefix.address().copyTo(option.prefix);
}

}  // namespace RouterAdvt

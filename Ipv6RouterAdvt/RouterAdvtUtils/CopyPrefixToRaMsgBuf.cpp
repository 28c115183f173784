#include <Ipv6RouterAdvt/RouterAdvtUtils/CopyPrefixToRaMsgBuf.h>
#include <RouterPlatform/Nd/PrefixInfo.h>

#include <cstddef>

namespace RouterAdvt {

using Net::Icmp6HdrPrefixInfoOption;
using Net::Seconds32;

void copyPrefixToRaMsgBuf(U8* buf, U64& msgLen, Ip6AddrWithMask const& prefix, bool noOnLink, bool noAutoConfig,
                          U32 preferredLifetime, U32 validLifetime) {
  std::span<U8> const option(buf + msgLen, sizeof(Icmp6HdrPrefixInfoOption));
  U8& flags = option[offsetof(Icmp6HdrPrefixInfoOption, flags)];
  U8 const flagsBefore = noOnLink ? flags : U8{0};
  Net::FrameWriter out(option, 0, option.size());
  put(out, Net::PrefixInfo{.prefix = prefix,
                           .onLink = !noOnLink,
                           .autonomous = !noAutoConfig,
                           .validLifetime = Seconds32(validLifetime),
                           .preferredLifetime = Seconds32(preferredLifetime)});
  flags |= flagsBefore;
  msgLen += option.size();
}

}  // namespace RouterAdvt

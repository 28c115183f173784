#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/OptionWriter.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RecursiveDnsServerOption.h>
#include <RouterPlatform/Nd/Icmp6HdrOptions.h>

#include <algorithm>
#include <span>

namespace RouterAdvt {

using Net::Icmp6HdrRdnssOption;

namespace {

constexpr U64 addressSize = 16;

/// The servers of one lifetime.
struct ServerGroup {
  IntfConfig const& intfConfig;
  U32 intfLifetime;
  U32 lifetime;

  bool contains(DNSServerConfigEntry const& server) const { return server.validLifetime(intfLifetime) == lifetime; }

  U64 optionSize() const {
    auto const servers = intfConfig.dnsServers().frozen();
    auto const count = std::count_if(servers.begin(), servers.end(), [this](auto& s) { return contains(s); });
    return sizeof(Icmp6HdrRdnssOption) + addressSize * static_cast<U64>(count);
  }
};

/// Returns the size of the option.
U64 writeGroup(U8* buf, U64& msgLen, ServerGroup const& group) {
  U64 const start = msgLen;
  auto& option = appendOption<Icmp6HdrRdnssOption>(buf, msgLen);
  option.reserved = 0;
  option.lifetime = group.lifetime;
  U64 end = msgLen;
  for (DNSServerConfigEntry const& server : group.intfConfig.dnsServers().frozen()) {
    if (!group.contains(server)) continue;
    server.ipAddr().copyTo(std::span<U8, addressSize>(buf + end, addressSize));
    end += addressSize;
  }
  msgLen = end;
  option.length = static_cast<U8>((end - start) / 8);
  return end - start;
}

}  // namespace

void copyDNSServersWithSameLifeTimeToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize,
                                              Ptr<IntfConfig const> const& intfConfig) {
  U32 const intfLifetime = intfConfig->validDnsServersLifetime();
  U64 const sizeAtMost = sizeof(Icmp6HdrRdnssOption) + addressSize * intfConfig->dnsServers().size();
  LifeTimeHashMap visited;
  for (DNSServerConfigEntry const& server : intfConfig->dnsServers().frozen()) {
    ServerGroup const group{*intfConfig, intfLifetime, server.validLifetime(intfLifetime)};
    if (visited.visited(group.lifetime)) continue;
    if (msgLen + sizeAtMost > pktBufSize) {  // otherwise there is nothing to count
      U64 const size = group.optionSize();
      if (msgLen + size > pktBufSize) {
        traceCouldNotCopy("dnsServers", msgLen + size, pktBufSize);
        continue;
      }
    }
    if (writeGroup(buf, msgLen, group) == sizeAtMost) return;  // that was all of them
    visited.visitedIs(group.lifetime, true);
  }
}

}  // namespace RouterAdvt

#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/OptionWriter.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RecursiveDnsServerOption.h>
#include <RouterPlatform/Packet/Icmp6HdrOptions.h>

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

  U64 size() const {
    auto const servers = intfConfig.dnsServers().frozen();
    return static_cast<U64>(std::count_if(servers.begin(), servers.end(), [this](auto& s) { return contains(s); }));
  }
};

void writeGroup(U8* buf, U64& msgLen, ServerGroup const& group, U64 groupSize, LifeTimeHashMap& visited) {
  auto& option = appendOption<Icmp6HdrRdnssOption>(buf, msgLen, Icmp6HdrRdnssOption::typeValue);
  option.length = static_cast<U8>(2 * groupSize + 1);
  option.reserved = 0;
  option.lifetime = group.lifetime;
  for (DNSServerConfigEntry const& server : group.intfConfig.dnsServers().frozen()) {
    if (!group.contains(server)) continue;
    server.ipAddr().copyTo(std::span<U8, addressSize>(buf + msgLen, addressSize));
    msgLen += addressSize;
  }
  visited.visitedIs(group.lifetime, true);
}

}  // namespace

void copyDNSServersWithSameLifeTimeToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize,
                                              Ptr<IntfConfig const> const& intfConfig) {
  U32 const intfLifetime = intfConfig->validDnsServersLifetime();
  LifeTimeHashMap visited;
  for (DNSServerConfigEntry const& server : intfConfig->dnsServers().frozen()) {
    ServerGroup const group{*intfConfig, intfLifetime, server.validLifetime(intfLifetime)};
    if (visited.visited(group.lifetime)) continue;
    U64 const groupSize = group.size();
    U64 const optLen = addressSize * groupSize + sizeof(Icmp6HdrRdnssOption);
    if (msgLen + optLen > pktBufSize)
      traceCouldNotCopy("dnsServers", msgLen + optLen, pktBufSize);
    else
      writeGroup(buf, msgLen, group, groupSize, visited);
  }
}

}  // namespace RouterAdvt

#include <Ipv6RouterAdvt/RouterAdvtUtils/Icmp6ChecksumValid.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/UtilsTrace.h>

namespace RouterAdvt {

using Net::Icmp6Hdr;
using Net::IpChecksum;

// The line number in this message is part of the interface: log readers match it.
constexpr int entryLine = 598;

bool icmp6ChecksumValid(Ptr<Ip6PktInfo> const& pktInfo) {
  TRACE_AT(utilsTrace, 8, Trace::Location{utilsSource, entryLine, "icmp6ChecksumValid"},
           "bool RouterAdvt::icmp6ChecksumValid(const Ptr&)");
  Pkt& pkt = *pktInfo->packet();
  Icmp6Hdr& icmp6Hdr = *pkt.icmp6Hdr();
  auto const pseudoHdr = Net::Icmp6PseudoHdr::of(pktInfo->sourceAddr().octets(), pktInfo->destAddr().octets(),
                                                 static_cast<U32>(pkt.icmp6MsgLen()));
  IpChecksum const received(icmp6Hdr.checksum);
  icmp6Hdr.checksum = 0;
  IpChecksum const computed = icmp6Hdr.computedChecksum(pseudoHdr);
  icmp6Hdr.checksum = received.field();
  return received == computed;
}

}  // namespace RouterAdvt

#include <Ipv6RouterAdvt/RouterAdvtUtils/Icmp6ChecksumValid.h>
#include <RouterPlatform/Nd/RaHeader.h>
#include <programs/common/frames/RaValidity.h>

namespace Tool {

std::string raInvalidity(Fwk::Ptr<Net::Ip6PktInfo> const& info) {
  Net::Pkt& pkt = *info->packet();
  if (!info->sourceAddr().isLinkLocal()) return "its source is not a link-local address";
  if (info->hopLimit() != Net::Icmp6Hdr::neighborDiscoveryHopLimit)
    return "its hop limit is " + std::to_string(info->hopLimit()) + ", not " +
           std::to_string(Net::Icmp6Hdr::neighborDiscoveryHopLimit);
  if (!RouterAdvt::icmp6ChecksumValid(info)) return "its checksum is wrong";
  if (pkt.icmp6Hdr()->code != 0) return "its code is " + std::to_string(pkt.icmp6Hdr()->code) + ", not 0";
  if (pkt.icmp6MsgLen() < Net::RaHeader::size)
    return "it has " + std::to_string(pkt.icmp6MsgLen()) + " octets; " + std::to_string(Net::RaHeader::size) +
           " are the least";
  return {};
}

}  // namespace Tool

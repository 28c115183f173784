#include <RouterPlatform/Packet/Icmp6Hdr.h>

namespace Net {

IpChecksum Icmp6Hdr::computedChecksum(Icmp6PseudoHdr const& pseudoHdr) const noexcept {
  IpChecksumAccumulator sum;
  sum.add(&pseudoHdr, sizeof pseudoHdr);
  sum.add(this, pseudoHdr.upperLayerPacketLength);
  return sum.result();
}

void setIcmp6CheckSum(Ip6Hdr const& ip6Hdr, Icmp6Hdr& icmp6Hdr) noexcept {
  Icmp6PseudoHdr const pseudoHdr{.sourceAddress = ip6Hdr.sourceAddress,
                                 .destinationAddress = ip6Hdr.destinationAddress,
                                 .upperLayerPacketLength = U32{ip6Hdr.payloadLength},
                                 .zero = {},
                                 .nextHeader = Ip6NextHeader::icmp6};
  icmp6Hdr.checksum = 0;
  icmp6Hdr.checksum = icmp6Hdr.computedChecksum(pseudoHdr).field();
}

}  // namespace Net

#include <RouterPlatform/Packet/Icmp6Hdr.h>

namespace Net {

IpChecksum Icmp6Hdr::computedChecksum(Icmp6PseudoHdr const& pseudoHdr) const noexcept {
  IpChecksumAccumulator sum;
  sum.add(this, pseudoHdr.upperLayerPacketLength);
  sum.add(pseudoHdr);
  return sum.result();
}

void setIcmp6CheckSum(Ip6Hdr const& ip6Hdr, Icmp6Hdr& icmp6Hdr) noexcept {
  if (icmp6Hdr.checksum != 0) icmp6Hdr.checksum = 0;  // where it is, a store just before the sum would hold that up
  auto const pseudoHdr = Icmp6PseudoHdr::of(ip6Hdr.sourceAddress, ip6Hdr.destinationAddress, ip6Hdr.payloadLength);
  icmp6Hdr.checksum = icmp6Hdr.computedChecksum(pseudoHdr).field();
}

}  // namespace Net

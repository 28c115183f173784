#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>
#include <RouterPlatform/Packet/IpChecksum.h>

#include <array>

namespace Net {

/// The IPv6 pseudo-header, which an upper-layer checksum covers besides the message, RFC 8200 8.1.
struct Icmp6PseudoHdr {
  std::array<U8, 16> sourceAddress;
  std::array<U8, 16> destinationAddress;
  NetU32 upperLayerPacketLength;  ///< octets of the message
  std::array<U8, 3> zero;
  NetU8 nextHeader;

  /// The pseudo-header of an ICMPv6 message of `size` octets.
  static Icmp6PseudoHdr of(std::array<U8, 16> const& source, std::array<U8, 16> const& destination, U32 size) noexcept {
    return {.sourceAddress = source,
            .destinationAddress = destination,
            .upperLayerPacketLength = size,
            .zero = {},
            .nextHeader = Ip6NextHeader::icmp6};
  }
};
static_assert(sizeof(Icmp6PseudoHdr) == 40 && alignof(Icmp6PseudoHdr) == 1);

/// ICMPv6 header, RFC 4443 2.1; the body follows it.
struct Icmp6Hdr {
  static constexpr U8 routerSolicitation = 133;   ///< RFC 4861 4.1
  static constexpr U8 routerAdvertisement = 134;  ///< RFC 4861 4.2
  /// Hop Limit of every Neighbor Discovery message, RFC 4861 4.1 to 4.5: a router that forwarded it would lower it.
  /// Receivers drop an advertisement with any other, RFC 4861 6.1.2.
  static constexpr U8 neighborDiscoveryHopLimit = 255;

  NetU8 type;
  NetU8 code;
  NetU16 checksum;

  /// The checksum over the pseudo-header and the message that begins here, RFC 4443 2.3. It sums the octets as they
  /// are: to compute what belongs into the checksum field, set that to zero first.
  ///
  /// The pseudo-header's length is the only bound: the caller guarantees that so many octets are there.
  ROUTER_PLATFORM_EXPORT IpChecksum computedChecksum(Icmp6PseudoHdr const& pseudoHdr) const noexcept;
};
static_assert(sizeof(Icmp6Hdr) == 4 && alignof(Icmp6Hdr) == 1);

/// Fills in the checksum of an ICMPv6 message that follows its IPv6 header directly: its length is the Payload Length,
/// and the caller guarantees that so many octets are there.
ROUTER_PLATFORM_EXPORT void setIcmp6CheckSum(Ip6Hdr const& ip6Hdr, Icmp6Hdr& icmp6Hdr) noexcept;

}  // namespace Net

#pragma once

#include <RouterPlatform/Packet/NetInt.h>

#include <array>

namespace Net {

/// Values of a Next Header field.
namespace Ip6NextHeader {
inline constexpr U8 hopByHop = 0;      ///< RFC 8200 4.3
inline constexpr U8 routing = 43;      ///< RFC 8200 4.4
inline constexpr U8 fragment = 44;     ///< RFC 8200 4.5
inline constexpr U8 icmp6 = 58;        ///< RFC 4443 1
inline constexpr U8 destination = 60;  ///< RFC 8200 4.6
}  // namespace Ip6NextHeader

/// Least MTU of a link that carries IPv6, octets: RFC 8200 5.
inline constexpr U32 ip6MtuMin = 1280;

/// IPv6 header, RFC 8200 3.
struct Ip6Hdr {
  static constexpr U8 version6 = 6;  ///< RFC 8200 3

  NetU32 versionTrafficClassFlowLabel;  ///< 4, 8 and 20 bits
  NetU16 payloadLength;                 ///< octets behind this header, extension headers included
  NetU8 nextHeader;
  NetU8 hopLimit;
  std::array<U8, 16> sourceAddress;
  std::array<U8, 16> destinationAddress;

  U8 version() const { return static_cast<U8>(versionTrafficClassFlowLabel >> 28); }
  /// Sets the version; traffic class and flow label become 0.
  void versionIs(U8 v) { versionTrafficClassFlowLabel = static_cast<U32>(v) << 28; }
};
static_assert(sizeof(Ip6Hdr) == 40 && alignof(Ip6Hdr) == 1);

/// How the hop-by-hop, routing and destination headers begin, RFC 8200 4.
struct Ip6ExtensionHdr {
  NetU8 nextHeader;
  NetU8 hdrExtLen;     ///< units of 8 octets, not counting the first 8
  NetU8 routingType;   ///< in a routing header only, RFC 8200 4.4
  NetU8 segmentsLeft;  ///< in a routing header only: nodes still to visit

  /// Size in octets of the whole header.
  U64 size() const noexcept { return (U64{hdrExtLen} + 1) * 8; }
};
static_assert(sizeof(Ip6ExtensionHdr) == 4 && alignof(Ip6ExtensionHdr) == 1);

}  // namespace Net

#pragma once

#include <RouterPlatform/Packet/NetInt.h>

#include <array>

namespace Net {

/// Values of an EtherType field.
namespace EtherType {
inline constexpr U16 ip6 = 0x86dd;          ///< RFC 2464 3
inline constexpr U16 customerTag = 0x8100;  ///< IEEE 802.1Q C-tag
inline constexpr U16 serviceTag = 0x88a8;   ///< IEEE 802.1Q S-tag (802.1ad)
}  // namespace EtherType

/// Ethernet header without tags, RFC 2464 3.
struct EthernetHdr {
  std::array<U8, 6> destination;
  std::array<U8, 6> source;
  NetU16 etherType;  ///< of the payload, or of the tag that follows
};
static_assert(sizeof(EthernetHdr) == 14 && alignof(EthernetHdr) == 1);

/// The tag that follows an EtherType that names one, IEEE 802.1Q.
struct EthernetTagHdr {
  NetU16 tagControl;  ///< priority, drop eligible, VLAN identifier
  NetU16 etherType;   ///< of the payload, or of the next tag
};
static_assert(sizeof(EthernetTagHdr) == 4 && alignof(EthernetTagHdr) == 1);

}  // namespace Net

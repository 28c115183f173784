#pragma once

#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>
#include <RouterPlatform/Packet/NetInt.h>

namespace Net {

/// Body of a Router Advertisement between the ICMPv6 header and the options: octets 4 to 15 of the message, RFC 4861
/// 4.2 and RFC 4191 2.2.
struct Icmp6RouterAdvertisementHdr {
  static constexpr U8 managedConfigBit = 0x80;      ///< M
  static constexpr U8 otherConfigBit = 0x40;        ///< O
  static constexpr U8 homeAgentBit = 0x20;          ///< H, RFC 6275 7.1
  static constexpr U8 routerPreferenceBits = 0x18;  ///< Prf, RFC 4191 2.2
  static constexpr U8 routerPreferenceShift = 3;

  NetU8 curHopLimit;  ///< 0: unspecified
  NetU8 flags;
  NetU16 routerLifetime;  ///< seconds, 0: not a default router
  NetU32 reachableTime;   ///< milliseconds, 0: unspecified
  NetU32 retransTimer;    ///< milliseconds, 0: unspecified

  bool managedConfigFlag() const { return (flags & managedConfigBit) != 0; }
  bool otherConfigFlag() const { return (flags & otherConfigBit) != 0; }
  Icmp6RouterAdvtRouterPreferenceType routerPreference() const {
    return static_cast<Icmp6RouterAdvtRouterPreferenceType>((flags & routerPreferenceBits) >> routerPreferenceShift);
  }
};
static_assert(sizeof(Icmp6RouterAdvertisementHdr) == 12 && alignof(Icmp6RouterAdvertisementHdr) == 1);

}  // namespace Net

#pragma once

#include <RouterPlatform/Nd/FrameWriter.h>
#include <RouterPlatform/Nd/Units.h>
#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>
#include <RouterPlatform/Packet/HeaderAt.h>
#include <RouterPlatform/Packet/Icmp6Hdr.h>

#include <optional>

namespace Net {

///  0                   1                   2                   3
///  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |     Type      |     Code      |          Checksum             |  Icmp6Hdr
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// | Cur Hop Limit |M|O|H|Prf|Resvd|       Router Lifetime         |  RFC 4861 4.2; H: RFC 6275 7.1; Prf: RFC 4191 2.2
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                         Reachable Time                        |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                          Retrans Timer                        |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |   Options ...
///
/// Body of a Router Advertisement: octets 4 to 15 of the message.
struct Icmp6RouterAdvertisementHdr {
  static constexpr U8 managedConfigBit = 0x80;      ///< M
  static constexpr U8 otherConfigBit = 0x40;        ///< O
  static constexpr U8 homeAgentBit = 0x20;          ///< H
  static constexpr U8 routerPreferenceBits = 0x18;  ///< Prf
  static constexpr U8 routerPreferenceShift = 3;
  static constexpr U8 reservedBits = 0x07;  ///< Resvd

  NetU8 curHopLimit;
  NetU8 flags;
  NetU16 routerLifetime;  ///< seconds
  NetU32 reachableTime;   ///< milliseconds
  NetU32 retransTimer;    ///< milliseconds

  bool managedConfigFlag() const { return (flags & managedConfigBit) != 0; }
  bool otherConfigFlag() const { return (flags & otherConfigBit) != 0; }
  Icmp6RouterAdvtRouterPreferenceType routerPreference() const {
    return static_cast<Icmp6RouterAdvtRouterPreferenceType>((flags & routerPreferenceBits) >> routerPreferenceShift);
  }
};
static_assert(sizeof(Icmp6RouterAdvertisementHdr) == 12 && alignof(Icmp6RouterAdvertisementHdr) == 1);

/// The header of a Router Advertisement, RFC 4861 4.2.
struct RaHeader {
  /// Octets of the message before its options.
  static constexpr U64 size = sizeof(Icmp6Hdr) + sizeof(Icmp6RouterAdvertisementHdr);

  U8 curHopLimit = 0;  ///< 0: unspecified
  bool managedConfig = false;
  bool otherConfig = false;
  bool homeAgent = false;
  Icmp6RouterAdvtRouterPreferenceType routerPreference = Icmp6RouterAdvtRouterPreferenceType::medium;
  U8 reserved = 0;                  ///< as received; sent as 0
  Seconds16 routerLifetime{0};      ///< 0: not a default router
  Milliseconds32 reachableTime{0};  ///< 0: unspecified
  Milliseconds32 retransTimer{0};   ///< 0: unspecified
};

/// Writes the ICMPv6 header, its checksum 0, and the body. False: they do not fit, and nothing was written.
inline bool put(FrameWriter& out, RaHeader const& header) noexcept {
  struct Message {
    Icmp6Hdr icmp6;
    Icmp6RouterAdvertisementHdr body;
  };
  static_assert(sizeof(Message) == RaHeader::size);
  auto* const message = out.append<Message>();
  if (!message) return false;
  message->icmp6.type = Icmp6Hdr::routerAdvertisement;
  message->icmp6.code = 0;
  message->icmp6.checksum = 0;
  auto& body = message->body;
  body.curHopLimit = header.curHopLimit;
  body.flags = static_cast<U8>((header.managedConfig ? Icmp6RouterAdvertisementHdr::managedConfigBit : 0) |
                               (header.otherConfig ? Icmp6RouterAdvertisementHdr::otherConfigBit : 0) |
                               (header.homeAgent ? Icmp6RouterAdvertisementHdr::homeAgentBit : 0) |
                               static_cast<unsigned>(header.routerPreference)
                                   << Icmp6RouterAdvertisementHdr::routerPreferenceShift);
  body.routerLifetime = header.routerLifetime.count();
  body.reachableTime = header.reachableTime.count();
  body.retransTimer = header.retransTimer.count();
  return true;
}

/// The header of the message at `offset`; its ICMPv6 header is not looked at. Nothing: a field lies behind the end.
inline std::optional<RaHeader> takeRaHeader(std::span<U8 const> octets, U64 offset) noexcept {
  auto const* const body = headerAt<Icmp6RouterAdvertisementHdr>(octets, offset + sizeof(Icmp6Hdr));
  if (!body) return std::nullopt;
  return RaHeader{.curHopLimit = body->curHopLimit,
                  .managedConfig = body->managedConfigFlag(),
                  .otherConfig = body->otherConfigFlag(),
                  .homeAgent = (body->flags & Icmp6RouterAdvertisementHdr::homeAgentBit) != 0,
                  .routerPreference = body->routerPreference(),
                  .reserved = static_cast<U8>(body->flags & Icmp6RouterAdvertisementHdr::reservedBits),
                  .routerLifetime = Seconds16(body->routerLifetime),
                  .reachableTime = Milliseconds32(body->reachableTime),
                  .retransTimer = Milliseconds32(body->retransTimer)};
}

}  // namespace Net

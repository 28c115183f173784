#pragma once

#include <RouterPlatform/Nd/FrameWriter.h>
#include <RouterPlatform/Nd/OptionHead.h>
#include <RouterPlatform/Nd/Units.h>
#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>

#include <algorithm>
#include <array>
#include <optional>

namespace Net {

///  0                   1                   2                   3
///  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |     Type      |    Length     | Prefix Length |Resvd|Prf|Resvd|  RFC 4191 2.3
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                        Route Lifetime                         |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                   Prefix (Variable Length)                    |
/// :                                                               :
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
///
/// Up to the prefix, of which 0, 8 or 16 octets follow.
struct Icmp6HdrRouteInfoOption {
  static constexpr U8 typeValue = 24;              ///< RFC 4191 2.3
  static constexpr U8 routePreferenceBits = 0x18;  ///< Prf
  static constexpr U8 routePreferenceShift = 3;

  NetU8 type;
  NetU8 length;        ///< 1, 2 or 3
  NetU8 prefixLength;  ///< bits, 0 to 128
  NetU8 flags;
  NetU32 routeLifetime;  ///< seconds

  Icmp6RouterAdvtRouterPreferenceType routePreference() const {
    return static_cast<Icmp6RouterAdvtRouterPreferenceType>((flags & routePreferenceBits) >> routePreferenceShift);
  }
};
static_assert(sizeof(Icmp6HdrRouteInfoOption) == 8 && alignof(Icmp6HdrRouteInfoOption) == 1);

/// A route to a prefix through the sender.
struct RouteInfo {
  Ip6AddrWithMask prefix{};  ///< bits that the option has no octets for are 0; when received, any mask length
  Icmp6RouterAdvtRouterPreferenceType routePreference = Icmp6RouterAdvtRouterPreferenceType::medium;
  U8 reserved = 0;             ///< both fields, as received; sent as 0
  Seconds32 routeLifetime{0};  ///< `infiniteLifetime` is possible
};

/// With as few octets of the prefix as hold it. False: the option does not fit, and nothing was written.
inline bool put(FrameWriter& out, RouteInfo const& info) noexcept {
  U8 const bits = info.prefix.maskLen();
  U64 const prefixSize = bits == 0 ? 0 : bits <= 64 ? 8 : 16;
  if (!out.fits(sizeof(Icmp6HdrRouteInfoOption) + prefixSize)) return false;
  auto* const option = out.append<Icmp6HdrRouteInfoOption>();
  option->type = Icmp6HdrRouteInfoOption::typeValue;
  option->length = optionLength(sizeof *option + prefixSize);
  option->prefixLength = bits;
  option->flags =
      static_cast<U8>(static_cast<unsigned>(info.routePreference) << Icmp6HdrRouteInfoOption::routePreferenceShift);
  option->routeLifetime = info.routeLifetime.count();
  return out.append(std::span(info.prefix.address().octets()).first(prefixSize));
}

/// The option at `offset`, whatever its type. Nothing: the Length field is 0, or the option extends past the end.
inline std::optional<RouteInfo> takeRouteInfo(std::span<U8 const> octets, U64 offset) noexcept {
  auto const* const option = wholeOptionAt<Icmp6HdrRouteInfoOption>(octets, offset);
  if (!option) return std::nullopt;
  std::array<U8, 16> prefix{};
  std::span<U8 const> const body = bodyOf(option, octets, offset);
  std::ranges::copy(body.first(std::min(body.size(), prefix.size())), prefix.begin());
  return RouteInfo{.prefix = {Ip6Addr::fromBytes(prefix), option->prefixLength},
                   .routePreference = option->routePreference(),
                   .reserved = static_cast<U8>(option->flags & ~U8{Icmp6HdrRouteInfoOption::routePreferenceBits}),
                   .routeLifetime = Seconds32(option->routeLifetime)};
}

}  // namespace Net

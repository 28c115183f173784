#pragma once

#include <RouterPlatform/Nd/FrameWriter.h>
#include <RouterPlatform/Nd/OptionHead.h>
#include <RouterPlatform/Nd/Units.h>
#include <RouterPlatform/Net/Ip6Addr.h>
#include <RouterPlatform/Packet/HeaderAt.h>

#include <array>
#include <optional>

namespace Net {

///  0                   1                   2                   3
///  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |     Type      |     Length    |           Reserved            |  RFC 8106 5.1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                           Lifetime                            |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                                                               |
/// :            Addresses of IPv6 Recursive DNS Servers            :
/// |                                                               |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
///
/// Up to the addresses.
struct Icmp6HdrRdnssOption {
  static constexpr U8 typeValue = 25;  ///< RFC 8106 5.1

  NetU8 type;
  NetU8 length;  ///< 1, and 2 for each address
  NetU16 reserved;
  NetU32 lifetime;  ///< seconds
};
static_assert(sizeof(Icmp6HdrRdnssOption) == 8 && alignof(Icmp6HdrRdnssOption) == 1);

/// DNS servers of one lifetime: how many, and how long they may be used. The addresses follow one by one.
struct Rdnss {
  Seconds32 lifetime{0};  ///< `infiniteLifetime` is possible
  U64 serverCount = 0;
  U16 reserved = 0;  ///< as received; sent as 0

  /// Size in octets of an option with `serverCount` servers.
  static constexpr U64 size(U64 serverCount) noexcept {
    return sizeof(Icmp6HdrRdnssOption) + Ip6Addr::size * serverCount;
  }
};

/// Writes the option up to its addresses, which `putServer` writes: `serverCount` of them have to follow. False: the
/// whole option does not fit, and nothing was written.
inline bool put(FrameWriter& out, Rdnss const& rdnss) noexcept {
  if (!out.fits(Rdnss::size(rdnss.serverCount))) return false;
  auto* const option = out.append<Icmp6HdrRdnssOption>();
  option->type = Icmp6HdrRdnssOption::typeValue;
  option->length = optionLength(Rdnss::size(rdnss.serverCount));
  option->reserved = 0;
  option->lifetime = rdnss.lifetime.count();
  return true;
}
/// False: the address does not fit, and nothing was written.
inline bool putServer(FrameWriter& out, Ip6Addr const& server) noexcept {
  auto* const octets = out.append<std::array<U8, Ip6Addr::size>>();
  if (!octets) return false;
  server.copyTo(*octets);
  return true;
}

/// The option at `offset`, whatever its type, with as many servers as its length has room for. Nothing: the Length
/// field is 0, or the option extends past the end.
inline std::optional<Rdnss> takeRdnss(std::span<U8 const> octets, U64 offset) noexcept {
  auto const* const option = wholeOptionAt<Icmp6HdrRdnssOption>(octets, offset);
  if (!option) return std::nullopt;
  return Rdnss{
      .lifetime = Seconds32(option->lifetime), .serverCount = (option->length - 1U) / 2, .reserved = option->reserved};
}
/// Server `index` of the option at `offset`. Nothing: it lies behind the end.
inline std::optional<Ip6Addr> takeServer(std::span<U8 const> octets, U64 offset, U64 index) noexcept {
  auto const* const server = headerAt<std::array<U8, Ip6Addr::size>>(octets, offset + Rdnss::size(index));
  return server ? std::optional(Ip6Addr::fromBytes(*server)) : std::nullopt;
}

}  // namespace Net

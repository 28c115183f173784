#pragma once

#include <RouterPlatform/Nd/FrameWriter.h>
#include <RouterPlatform/Nd/OptionHead.h>
#include <RouterPlatform/Nd/Units.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>
#include <RouterPlatform/Packet/HeaderAt.h>

#include <array>
#include <optional>

namespace Net {

///  0                   1                   2                   3
///  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |     Type      |    Length     | Prefix Length |L|A|R|Reserved1|  RFC 4861 4.6.2; R: RFC 6275 7.2
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                         Valid Lifetime                        |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                       Preferred Lifetime                      |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                           Reserved2                           |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                                                               |
/// +                                                               +
/// |                                                               |
/// +                            Prefix                             +
/// |                                                               |
/// +                                                               +
/// |                                                               |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
struct Icmp6HdrPrefixInfoOption {
  static constexpr U8 typeValue = 3;            ///< RFC 4861 4.6.2
  static constexpr U8 onLinkBit = 0x80;         ///< L
  static constexpr U8 autonomousBit = 0x40;     ///< A
  static constexpr U8 routerAddressBit = 0x20;  ///< R
  static constexpr U8 reserved1Bits = 0x1f;

  NetU8 type;
  NetU8 length;        ///< 4
  NetU8 prefixLength;  ///< bits, 0 to 128
  NetU8 flags;
  NetU32 validLifetime;      ///< seconds
  NetU32 preferredLifetime;  ///< seconds
  NetU32 reserved2;
  std::array<U8, 16> prefix;

  bool onLinkFlag() const { return (flags & onLinkBit) != 0; }
  bool autoAddressFlag() const { return (flags & autonomousBit) != 0; }
};
static_assert(sizeof(Icmp6HdrPrefixInfoOption) == 32 && alignof(Icmp6HdrPrefixInfoOption) == 1);

/// A prefix and how hosts are to use it.
struct PrefixInfo {
  Ip6AddrWithMask prefix{};  ///< host bits are ignored by receivers, RFC 4861 4.6.2; when received, any mask length
  bool onLink = false;
  bool autonomous = false;
  bool routerAddress = false;
  U8 reserved1 = 0;                ///< as received; sent as 0; ignored by receivers, RFC 4861 4.6.2
  Seconds32 validLifetime{0};      ///< `infiniteLifetime` is possible
  Seconds32 preferredLifetime{0};  ///< `infiniteLifetime` is possible
  U32 reserved2 = 0;               ///< as received; sent as 0; ignored by receivers, RFC 4861 4.6.2
};

/// False: the option does not fit, and nothing was written.
inline bool put(FrameWriter& out, PrefixInfo const& info) noexcept {
  auto* const option = out.append<Icmp6HdrPrefixInfoOption>();
  if (!option) return false;
  option->type = Icmp6HdrPrefixInfoOption::typeValue;
  option->length = optionLength(sizeof *option);
  option->prefixLength = info.prefix.maskLen();
  option->flags = static_cast<U8>((info.onLink ? Icmp6HdrPrefixInfoOption::onLinkBit : 0) |
                                  (info.autonomous ? Icmp6HdrPrefixInfoOption::autonomousBit : 0) |
                                  (info.routerAddress ? Icmp6HdrPrefixInfoOption::routerAddressBit : 0));
  option->validLifetime = info.validLifetime.count();
  option->preferredLifetime = info.preferredLifetime.count();
  option->reserved2 = 0;
  info.prefix.address().copyTo(option->prefix);
  return true;
}

/// The option at `offset`, whatever its type and length. Nothing: a field lies behind the end.
inline std::optional<PrefixInfo> takePrefixInfo(std::span<U8 const> octets, U64 offset) noexcept {
  auto const* const option = headerAt<Icmp6HdrPrefixInfoOption>(octets, offset);
  if (!option) return std::nullopt;
  return PrefixInfo{.prefix = {Ip6Addr::fromBytes(option->prefix), option->prefixLength},
                    .onLink = option->onLinkFlag(),
                    .autonomous = option->autoAddressFlag(),
                    .routerAddress = (option->flags & Icmp6HdrPrefixInfoOption::routerAddressBit) != 0,
                    .reserved1 = static_cast<U8>(option->flags & Icmp6HdrPrefixInfoOption::reserved1Bits),
                    .validLifetime = Seconds32(option->validLifetime),
                    .preferredLifetime = Seconds32(option->preferredLifetime),
                    .reserved2 = option->reserved2};
}

}  // namespace Net

#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Nd/FrameWriter.h>
#include <RouterPlatform/Nd/OptionHead.h>
#include <RouterPlatform/Nd/Units.h>

#include <optional>
#include <string_view>

namespace Net {

///  0                   1                   2                   3
///  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |     Type      |     Length    |           Reserved            |  RFC 8106 5.2
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                           Lifetime                            |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                                                               |
/// :                Domain Names of DNS Search List                :
/// |                                                               |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
///
/// Up to the names. Each name is labels and a zero octet, RFC 1035 3.1; zero octets pad the last one.
struct Icmp6HdrDnsslOption {
  static constexpr U8 typeValue = 31;

  NetU8 type;
  NetU8 length;
  NetU16 reserved;
  NetU32 lifetime;  ///< seconds
};
static_assert(sizeof(Icmp6HdrDnsslOption) == 8 && alignof(Icmp6HdrDnsslOption) == 1);

/// A search list of one lifetime.
struct Dnssl {
  Seconds32 lifetime{0};        ///< `infiniteLifetime` is possible
  U16 reserved = 0;             ///< as received; sent as 0
  std::span<U8 const> names{};  ///< as received, with their padding; `putName` writes them
};

/// Writes the option up to its names. `putName` writes these one by one, and `closeDnssl` ends the option, so that its
/// length is right. False: that much does not fit, and nothing was written.
inline bool put(FrameWriter& out, Dnssl const& dnssl) noexcept {
  auto* const option = out.append<Icmp6HdrDnsslOption>();
  if (!option) return false;
  option->type = Icmp6HdrDnsslOption::typeValue;
  option->length = optionLength(sizeof *option);
  option->reserved = 0;
  option->lifetime = dnssl.lifetime.count();
  return true;
}
/// Writes `name` as labels and a zero octet. Empty labels, that behind a trailing dot too, are written as they are; a
/// label above 63 octets, which RFC 1035 3.1 does not allow, with the low 8 bits of its length.
///
/// The labels keep to the frame limit, the zero octet to the hard limit. A label that does not fit ends the name: the
/// labels before it are written, without a zero octet, and its place in `name` is returned. Nothing: all was written.
ROUTER_PLATFORM_EXPORT std::optional<U64> putName(FrameWriter& out, std::string_view name) noexcept;
/// Octets of padding that make the names, from `namesOffset` to here, a multiple of 8.
inline U64 dnsslPadding(FrameWriter const& out, U64 namesOffset) noexcept {
  return (namesOffset - out.offset()) % Icmp6HdrOption::lengthUnit;
}
/// Pads the names, which begin at `namesOffset`, up to the hard limit at most, and sets the length of their option.
inline void closeDnssl(FrameWriter& out, U64 namesOffset) noexcept {
  out.appendZeros(dnsslPadding(out, namesOffset));
  U64 const optionOffset = namesOffset - sizeof(Icmp6HdrDnsslOption);
  out.written(optionOffset)[1] = optionLength(out.offset() - optionOffset);
}

/// The option at `offset`, whatever its type. Refers to the octets. Nothing: the Length field is 0, or an octet that it
/// speaks of lies behind the end.
inline std::optional<Dnssl> takeDnssl(std::span<U8 const> octets, U64 offset) noexcept {
  auto const* const option = wholeOptionAt<Icmp6HdrDnsslOption>(octets, offset);
  if (!option) return std::nullopt;
  return Dnssl{
      .lifetime = Seconds32(option->lifetime), .reserved = option->reserved, .names = bodyOf(option, octets, offset)};
}

}  // namespace Net

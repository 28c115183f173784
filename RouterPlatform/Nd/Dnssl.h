#pragma once

#include <RouterPlatform/Nd/FrameWriter.h>
#include <RouterPlatform/Nd/OptionHead.h>
#include <RouterPlatform/Nd/Units.h>

#include <algorithm>
#include <bit>
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
  static constexpr U8 typeValue = 31;  ///< RFC 8106 5.2

  NetU8 type;
  NetU8 length;
  NetU16 reserved;
  NetU32 lifetime;  ///< seconds
};
static_assert(sizeof(Icmp6HdrDnsslOption) == 8 && alignof(Icmp6HdrDnsslOption) == 1);

/// A search list of one lifetime.
struct Dnssl {
  static constexpr U64 labelSizeMax = 63;  ///< octets, RFC 1035 2.3.4

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
namespace detail {
/// 0x80 in every octet of `word` that is a dot, 0 in the others. No octet's sum carries into the next one.
inline U64 flagsOfDots(U64 word) noexcept {
  constexpr U64 ones = 0x0101010101010101;
  U64 const zeroAtDots = word ^ ones * U64{'.'};
  return ~(((zeroAtDots & ones * 0x7f) + ones * 0x7f) | zeroAtDots) & ones * 0x80;
}

/// Writes `text` as labels. It stands one octet further on than the labels begin, so that every dot is where the length
/// of the label behind it belongs; a length is filled in where its label ends.
inline void putLabels(std::span<U8> labels, std::string_view text) noexcept {
  std::size_t label = 0;
  auto const endLabel = [&](std::size_t end) {
    labels[label] = static_cast<U8>(end - label);
    label = end + 1;
  };
  std::size_t at = 0;
  for (; at + 8 <= text.size(); at += 8) {
    U64 const word = wordFirstOctetLowest(text.data() + at);
    storeWordFirstOctetLowest(labels.subspan(1 + at).first<8>(), word);
    for (U64 dots = flagsOfDots(word); dots != 0; dots &= dots - 1)
      endLabel(at + static_cast<std::size_t>(std::countr_zero(dots)) / 8);
  }
  for (; at < text.size(); ++at) {
    labels[1 + at] = static_cast<U8>(text[at]);
    if (text[at] == '.') endLabel(at);
  }
  endLabel(text.size());
}

/// Writes the labels before the first one that does not fit, and returns where that begins. There is one.
inline U64 putLabelsThatFit(FrameWriter& out, std::string_view name) noexcept {
  std::size_t pos = 0, labelEnd = 0;
  while (out.fits((labelEnd = std::min(name.find('.', pos), name.size())) + 1)) pos = labelEnd + 1;
  if (pos > 0) putLabels(out.reserve(pos), name.substr(0, pos - 1));
  return pos;
}
}  // namespace detail

/// Writes `name` as labels and a zero octet. Empty labels, that behind a trailing dot too, are written as they are; a
/// label above 63 octets, which RFC 1035 3.1 does not allow, with the low 8 bits of its length.
///
/// The labels keep to the frame limit, the zero octet to the hard limit. A label that does not fit ends the name: the
/// labels before it are written, without a zero octet, and its place in `name` is returned. Nothing: all was written.
inline std::optional<U64> putName(FrameWriter& out, std::string_view name) noexcept {
  if (!name.empty()) {
    if (!out.fits(1 + name.size())) return detail::putLabelsThatFit(out, name);
    detail::putLabels(out.reserve(1 + name.size()), name);
  }
  out.appendZeros(1);
  return std::nullopt;
}
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

/// The option at `offset`, whatever its type. Refers to the octets. Nothing: the Length field is 0, or the option
/// extends past the end.
inline std::optional<Dnssl> takeDnssl(std::span<U8 const> octets, U64 offset) noexcept {
  auto const* const option = wholeOptionAt<Icmp6HdrDnsslOption>(octets, offset);
  if (!option) return std::nullopt;
  return Dnssl{
      .lifetime = Seconds32(option->lifetime), .reserved = option->reserved, .names = bodyOf(option, octets, offset)};
}

}  // namespace Net

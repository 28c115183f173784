#include <RouterPlatform/Net/Ip6AddrWithMask.h>

#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Net/BadText.h>

#include <algorithm>
#include <charconv>

namespace Net {

using Fwk::U8;

namespace {

Ip6Addr masked(Ip6Addr const& address, U8 maskLen) noexcept {
  auto octets = address.octets();
  int bits = maskLen;
  for (U8& octet : octets) {
    octet &= static_cast<U8>(0xff00 >> std::clamp(bits, 0, 8));
    bits -= 8;
  }
  return Ip6Addr::fromBytes(octets);
}

/// A decimal number from 0 to 255, without sign or leading zero.
std::optional<U8> parseMaskLen(std::string_view text) noexcept {
  U8 value = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  if (text.size() > 1 && text[0] == '0') return std::nullopt;
  return value;
}

}  // namespace

Ip6AddrWithMask::Ip6AddrWithMask(std::string_view text) {
  auto const value = parse(text);
  if (!value) detail::throwBadText(textTypeName, text);
  *this = *value;
}

std::optional<Ip6AddrWithMask> Ip6AddrWithMask::parse(std::string_view text) noexcept {
  auto const value = parsePrinted(text);
  return value && value->maskLen() <= maxMaskLen ? value : std::nullopt;
}

std::optional<Ip6AddrWithMask> Ip6AddrWithMask::parsePrinted(std::string_view text) noexcept {
  auto const slash = text.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  auto const address = Ip6Addr::parse(text.substr(0, slash));
  auto const maskLen = parseMaskLen(text.substr(slash + 1));
  if (!address || !maskLen) return std::nullopt;
  return Ip6AddrWithMask(*address, *maskLen);
}

void Ip6AddrWithMask::appendTo(std::string& out) const { Trace::appendTexts(out, address_, '/', maskLen_); }

Fwk::String Ip6AddrWithMask::toString() const { return Trace::textOf(*this); }

Ip6AddrWithMask Ip6AddrWithMask::subnet() const noexcept { return {masked(address_, maskLen_), maskLen_}; }

bool Ip6AddrWithMask::contains(Ip6Addr const& address) const noexcept {
  return masked(address, maskLen_) == masked(address_, maskLen_);
}

}  // namespace Net

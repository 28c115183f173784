#include <RouterPlatform/Net/EthAddr.h>

#include <RouterPlatform/Base/Hash.h>
#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Net/BadText.h>

namespace Net {

using Fwk::U64;
using Fwk::U8;

namespace {

constexpr int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

EthAddr::EthAddr(std::string_view text) {
  auto const value = parse(text);
  if (!value) detail::throwBadText(textTypeName, text);
  *this = *value;
}

EthAddr EthAddr::forMulticast(Ip6Addr const& group) noexcept {
  auto const& g = group.octets();
  return fromBytes(std::array<U8, size>{0x33, 0x33, g[12], g[13], g[14], g[15]});
}

std::optional<EthAddr> EthAddr::parse(std::string_view text) noexcept {
  if (text.size() != 3 * size - 1) return std::nullopt;
  EthAddr result;
  for (std::size_t i = 0; i < size; ++i) {
    int const high = hexValue(text[3 * i]);
    int const low = hexValue(text[3 * i + 1]);
    if (high < 0 || low < 0 || (i + 1 < size && text[3 * i + 2] != ':')) return std::nullopt;
    result.octets_[i] = static_cast<U8>(high << 4 | low);
  }
  return result;
}

void EthAddr::appendTo(std::string& out) const {
  static constexpr char hex[] = "0123456789abcdef";
  std::array<char, 3 * size - 1> text;
  text.fill(':');
  for (std::size_t i = 0; i < size; ++i) {
    text[3 * i] = hex[octets_[i] >> 4];
    text[3 * i + 1] = hex[octets_[i] & 15];
  }
  out.append(text.data(), text.size());
}

Fwk::String EthAddr::toString() const { return Trace::textOf(*this); }

U64 EthAddr::hash(U64 seed) const noexcept { return Fwk::hashBytes(octets_.data(), size, seed); }

}  // namespace Net

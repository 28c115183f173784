#include <RouterPlatform/Net/Ip6Addr.h>

#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Net/BadText.h>

#include <arpa/inet.h>

namespace Net {

Ip6Addr::Ip6Addr(std::string_view text) {
  auto const value = parse(text);
  if (!value) detail::throwBadText(textTypeName, text);
  *this = *value;
}

std::optional<Ip6Addr> Ip6Addr::parse(std::string_view text) noexcept {
  std::array<char, INET6_ADDRSTRLEN> terminated{};
  if (text.size() >= terminated.size() || text.find('\0') != std::string_view::npos) return std::nullopt;
  text.copy(terminated.data(), text.size());
  Ip6Addr result;
  if (inet_pton(AF_INET6, terminated.data(), result.octets_.data()) != 1) return std::nullopt;
  return result;
}

void Ip6Addr::appendTo(std::string& out) const {
  std::array<char, INET6_ADDRSTRLEN> text;
  out += inet_ntop(AF_INET6, octets_.data(), text.data(), text.size());  // cannot fail: the space is enough
}

Fwk::String Ip6Addr::toString() const { return Trace::textOf(*this); }

}  // namespace Net

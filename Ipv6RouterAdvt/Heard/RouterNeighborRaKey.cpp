#include <Ipv6RouterAdvt/Heard/RouterNeighborRaKey.h>
#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

String RouterNeighborRaKey::toStrep() const { return Trace::textOf(*this); }

/// The last minus is the one between: an address has none, the name of an interface may.
std::optional<RouterNeighborRaKey> RouterNeighborRaKey::parse(std::string_view text) noexcept {
  std::size_t const between = text.rfind('-');
  if (between == std::string_view::npos) return std::nullopt;
  std::optional<IntfId> const intfId = IntfId::parse(text.substr(0, between));
  std::optional<Ip6Addr> const neighborAddr = Ip6Addr::parse(text.substr(between + 1));
  if (!intfId || !neighborAddr) return std::nullopt;
  return RouterNeighborRaKey(*intfId, *neighborAddr);
}

Fwk::TypeRecord const& RouterNeighborRaKey::typeRecord() {
  using namespace Fwk;
  using HashWithSeedZero = U64 (RouterNeighborRaKey::*)() const noexcept;
  static constexpr HashWithSeedZero hashWithSeedZero = &RouterNeighborRaKey::hash;
  static constexpr auto attrs = attributes<RouterNeighborRaKey>(
      scalar<&RouterNeighborRaKey::intfId>("intfId"), scalar<&RouterNeighborRaKey::neighborAddr>("neighborAddr"),
      computed<&RouterNeighborRaKey::toStrep>("toStrep"), computed<hashWithSeedZero>("hash"));
  static constexpr TypeRecord record = valueRecord<RouterNeighborRaKey>(attrs);
  return record;
}

}  // namespace RouterAdvt

#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/ValueTypes.h>

#include <compare>
#include <optional>

namespace RouterAdvt {

/// Key of the table of neighbouring routers: an interface and a router on it. A plain value, flat, the same octets in
/// every process.
class ROUTER_ADVT_EXPORT RouterNeighborRaKey {
 public:
  enum Attr : AttrId {
    intfIdAttr = Fwk::firstOwnAttr,
    neighborAddrAttr,
    toStrepAttr,
    hashAttr,
  };

  /// No interface, and the unspecified address.
  RouterNeighborRaKey() = default;
  RouterNeighborRaKey(IntfId intfId, Ip6Addr const& neighborAddr) : intfId_(intfId), neighborAddr_(neighborAddr) {}

  /// Reads the text form at `pos` and moves `pos` behind it. Throws `Fwk::ParseError`.
  RouterNeighborRaKey(String::IteratorConst& pos, String::IteratorConst const& end);

  /// Interface on which the advertisement arrived.
  IntfId intfId() const { return intfId_; }
  /// Source address of the advertising router. RFC 4861 4.2.
  Ip6Addr neighborAddr() const { return neighborAddr_; }

  bool operator==(RouterNeighborRaKey const&) const noexcept = default;
  /// By interface, then by address.
  std::strong_ordering operator<=>(RouterNeighborRaKey const&) const noexcept = default;

  /// Whether the octets are those of a key: the interface's name has a size that a name can have.
  bool isSound() const noexcept { return intfId_.isSound(); }

  /// The same in every process and every binary for the same seed.
  U64 hash(U64 seed) const noexcept {
    return Fwk::HashAccumulator(seed).mix(intfId_.hash(seed)).mix(neighborAddr_.hash(seed)).result();
  }
  /// The hash with seed 0.
  U64 hash() const noexcept { return hash(0); }

  /// Interface and address with a minus between them: `Ethernet1-fe80::1`.
  String toStrep() const;
  /// Here and not in the library: readers of the shared table need the platform library alone.
  void appendTo(std::string& out) const {
    intfId_.appendTo(out);
    out += '-';
    neighborAddr_.appendTo(out);
  }
  /// Reads what `toStrep` gives.
  static std::optional<RouterNeighborRaKey> parse(std::string_view text) noexcept;
  static constexpr char const* textTypeName = "RouterAdvt::RouterNeighborRaKey";

  static constexpr char const* fwkTypeName = "RouterAdvt::RouterNeighborRaKey";
  static Fwk::TypeRecord const& typeRecord();

  static constexpr auto storedAttributes() {
    return std::tuple(Fwk::StoredAttribute{"intfId", &RouterNeighborRaKey::intfId_},
                      Fwk::StoredAttribute{"neighborAddr", &RouterNeighborRaKey::neighborAddr_});
  }

 private:
  IntfId intfId_;
  Ip6Addr neighborAddr_;
};

/// The text form.
ROUTER_ADVT_EXPORT String valueToStrep(RouterNeighborRaKey const& value);
ROUTER_ADVT_EXPORT std::ostream& operator<<(std::ostream& out, RouterNeighborRaKey const& value);

}  // namespace RouterAdvt

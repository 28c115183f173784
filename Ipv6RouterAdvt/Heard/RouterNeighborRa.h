#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborRaKey.h>
#include <Ipv6RouterAdvt/ValueTypes.h>
#include <RouterPlatform/SharedTable/RowType.h>

#include <array>

namespace RouterAdvt {

/// Where the table of neighbouring routers is, below the table directory, and the name of its collection.
inline constexpr char const* routerNeighborRaTablePath = "routing6/routerAdvt/routerNeighborRaStatus";
inline constexpr char const* routerNeighborRaCollection = "routerNeighborRa";

/// When a neighbouring router was last heard: a row of the table of neighbouring routers, which carries its own key. A
/// plain value, flat, the same octets in every process.
class ROUTER_ADVT_EXPORT RouterNeighborRa {
 public:
  enum Attr : AttrId {
    keyAttr = Fwk::firstOwnAttr,
    lastRaReceivedAttr,
  };

  RouterNeighborRa() = default;
  explicit RouterNeighborRa(RouterNeighborRaKey const& key, Seconds lastRaReceived = 0)
      : key_(key), lastRaReceived_(lastRaReceived) {}

  /// Reads the text form at `pos` and moves `pos` behind it. Throws `Fwk::ParseError`.
  RouterNeighborRa(String::IteratorConst& pos, String::IteratorConst const& end);

  RouterNeighborRaKey const& key() const { return key_; }

  /// When the last advertisement from this router arrived: seconds of the agent's clock, 0: never. A setter without a
  /// notification, for a row that is changed in place.
  Seconds lastRaReceived() const { return lastRaReceived_; }
  void lastRaReceivedIs(Seconds v) { lastRaReceived_ = v; }

  /// Whether the octets are those of a row: asked by readers of the shared table, which another user may have written.
  bool isSound() const noexcept { return key_.isSound(); }

  /// Times compare as floating-point numbers.
  bool operator==(RouterNeighborRa const&) const noexcept = default;

  static constexpr char const* fwkTypeName = "RouterAdvt::RouterNeighborRa";
  static Fwk::TypeRecord const& typeRecord();

  static constexpr auto storedAttributes() {
    return std::tuple(Fwk::StoredAttribute{"key", &RouterNeighborRa::key_},
                      Fwk::StoredAttribute{"lastRaReceived", &RouterNeighborRa::lastRaReceived_});
  }

  /// Layout of the row's octets, for readers of the shared table.
  static constexpr std::array tableFields{SharedTable::field<IntfId>("key.intfId"),
                                          SharedTable::field<Ip6Addr>("key.neighborAddr"),
                                          SharedTable::field<Seconds>("lastRaReceived")};

 private:
  RouterNeighborRaKey key_;
  Seconds lastRaReceived_ = 0;
};
static_assert(sizeof(RouterNeighborRa) == 56);

/// Text form of the row.
ROUTER_ADVT_EXPORT String valueToStrep(RouterNeighborRa const& value);
ROUTER_ADVT_EXPORT std::ostream& operator<<(std::ostream& out, RouterNeighborRa const& value);

}  // namespace RouterAdvt

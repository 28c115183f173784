#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Fwk/Collections.h>

namespace RouterAdvt {

/// The routers heard on one interface. Key: `intfId`. Parent: `RouterNeighborStatus`. Used by one thread at a time.
class ROUTER_ADVT_EXPORT RouterNeighbors final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    intfIdAttr = Fwk::firstOwnAttr,
    linkLocalAddrAttr,
  };

  explicit RouterNeighbors(IntfId intfId) : intfId_(intfId) {}
  static Ptr<RouterNeighbors> RouterNeighborsIs(IntfId intfId) { return Fwk::create<RouterNeighbors>(intfId); }

  /// Interface on which the routers were heard.
  IntfId intfId() const { return intfId_; }
  IntfId const& key() const noexcept { return intfId_; }

  /// Link-local addresses of the routers, in the order in which they were first heard.
  auto const& linkLocalAddr() const { return linkLocalAddr_; }
  /// Whether the address is there.
  bool linkLocalAddr(Ip6Addr const& key) const { return linkLocalAddr_.member(key); }
  /// Adds the address and notifies with it; nobody is notified when it is there already.
  void linkLocalAddrIs(Ip6Addr const& key) { linkLocalAddr_.memberIs(key); }
  /// Removes the address and notifies with it; returns whether it was there, without which nobody is notified.
  bool linkLocalAddrDel(Ip6Addr const& key) { return linkLocalAddr_.memberDel(key); }
  /// `linkLocalAddrDel` for every address.
  void linkLocalAddrDelAll() { linkLocalAddr_.memberDelAll(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::RouterNeighbors";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~RouterNeighbors() override = default;

  IntfId intfId_;
  Fwk::ValueSet<Ip6Addr> linkLocalAddr_{*this, linkLocalAddrAttr};
};

}  // namespace RouterAdvt

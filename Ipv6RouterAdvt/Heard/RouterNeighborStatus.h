#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighbor.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighbors.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Fwk/Collections.h>

namespace RouterAdvt {

/// The routers heard on the interfaces: one router as a value and the set of all, interface by interface. The two are
/// not tied to one another. Key: `name`. Used by one thread at a time.
class ROUTER_ADVT_EXPORT RouterNeighborStatus final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    routerNeighborAttr = Fwk::firstOwnAttr,
    neighborAttr,
  };

  explicit RouterNeighborStatus(Name name) : name_(name) {}

  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  /// Routers by their own `intfId`.
  auto const& routerNeighbor() const { return routerNeighbor_; }
  /// The router of that interface, or the default value.
  RouterNeighbor routerNeighbor(IntfId key) const { return routerNeighbor_.member(key); }
  /// Stores `router` in place of its interface's former one and notifies with the interface; an equal one changes
  /// nothing.
  void routerNeighborIs(RouterNeighbor const& router) { routerNeighbor_.memberIs(router.intfId(), router); }
  /// Removes and returns the router of that interface and notifies with the interface; the default value, and nobody
  /// notified, when there is none.
  RouterNeighbor routerNeighborDel(IntfId key) { return routerNeighbor_.memberDel(key); }
  /// `routerNeighborDel` for every router.
  void routerNeighborDelAll() { routerNeighbor_.memberDelAll(); }

  /// Sets of routers by interface. `neighbor(key)` gives the interface's set or null. `neighborIs(key)` gives it, made
  /// empty if it is not there, and then notified with the interface. `neighborDel(key)` takes it out, notifies with the
  /// interface and returns it; null, and nobody notified, when it is not there. `neighborDelAll()` does so for every
  /// set.
  auto const& neighbor() const { return neighbor_; }
  Ptr<RouterNeighbors> neighbor(IntfId key) const { return neighbor_.member(key); }
  Ptr<RouterNeighbors> neighborIs(IntfId key) { return neighbor_.memberIs(key); }
  Ptr<RouterNeighbors> neighborDel(IntfId key) { return neighbor_.memberDel(key); }
  void neighborDelAll() { neighbor_.memberDelAll(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::RouterNeighborStatus";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~RouterNeighborStatus() override = default;

  Name name_;
  Fwk::ValueCollection<IntfId, RouterNeighbor> routerNeighbor_{*this, routerNeighborAttr};
  Fwk::EntityCollection<IntfId, RouterNeighbors> neighbor_{*this, neighborAttr};
};

}  // namespace RouterAdvt

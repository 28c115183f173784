#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfStatus.h>
#include <RouterPlatform/Fwk/Collections.h>

namespace RouterAdvt {

/// Status of the agent, published by itself; root of the status tree. Key: `name`. Used by one thread at a time.
///
/// Collections: `x(key)` gives the member or null. `xIs(key)` gives the member, made with every default if it is not
/// there, and then notified with its key. `xDel(key)` takes the member out, notifies with the key and returns it; null,
/// and nobody notified, when it is not there. `xDelAll()` does so for every member. A mutator that makes a
/// member may throw std::bad_alloc, having changed nothing.
class ROUTER_ADVT_EXPORT Status final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    intfAttr = Fwk::firstOwnAttr,
    routerAdvtDaemonActiveAttr,
  };

  explicit Status(Name name) : name_(name) {}

  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  /// Interfaces, in the order in which they were added.
  auto const& intf() const { return intf_; }
  Ptr<IntfStatus> intf(IntfId key) const { return intf_.member(key); }
  Ptr<IntfStatus> intfIs(IntfId key) { return intf_.memberIs(key); }
  Ptr<IntfStatus> intfDel(IntfId key) { return intf_.memberDel(key); }
  void intfDelAll() { intf_.memberDelAll(); }

  /// Whether the agent is at work. An unchanged value notifies nobody, a changed one notifies with the attribute.
  bool routerAdvtDaemonActive() const { return routerAdvtDaemonActive_; }
  void routerAdvtDaemonActiveIs(bool v) { attrIs(routerAdvtDaemonActive_, v, routerAdvtDaemonActiveAttr); }

  static constexpr char const* fwkTypeName = "RouterAdvt::Status";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Status() override = default;

  Name name_;
  bool routerAdvtDaemonActive_ = false;
  Fwk::EntityCollection<IntfId, IntfStatus> intf_{*this, intfAttr};
};

}  // namespace RouterAdvt

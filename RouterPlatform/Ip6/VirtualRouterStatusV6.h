#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/Collections.h>
#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>

namespace Ip6 {

/// A first-hop-redundancy virtual router on an interface: the prefixes that are advertised on its behalf. Key: `name`.
/// Used by one thread at a time.
class ROUTER_PLATFORM_EXPORT VirtualRouterStatusV6 final : public Fwk::Entity {
 public:
  enum Attr : Fwk::AttrId { prefixAttr = Fwk::firstOwnAttr };

  explicit VirtualRouterStatusV6(Fwk::Name name) : name_(name) {}
  static Fwk::Ptr<VirtualRouterStatusV6> VirtualRouterStatusV6Is(Fwk::Name name) {
    return Fwk::create<VirtualRouterStatusV6>(name);
  }

  Fwk::Name name() const override { return name_; }
  Fwk::Name const& key() const noexcept { return name_; }

  /// Prefixes to advertise, host bits as they are, in the order in which they came.
  auto const& prefix() const { return prefix_; }
  /// Whether the prefix is there, host bits included.
  bool prefix(Net::Ip6AddrWithMask const& key) const { return prefix_.member(key); }
  /// Adds the prefix and notifies with it; nobody is notified when it is there already.
  void prefixIs(Net::Ip6AddrWithMask const& key) { prefix_.memberIs(key); }
  /// Removes the prefix and notifies with it; returns whether it was there, without which nobody is notified.
  bool prefixDel(Net::Ip6AddrWithMask const& key) { return prefix_.memberDel(key); }
  void prefixDelAll() { prefix_.memberDelAll(); }

  static constexpr char const* fwkTypeName = "Ip6::VirtualRouterStatusV6";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~VirtualRouterStatusV6() override = default;

  Fwk::Name name_;
  Fwk::ValueSet<Net::Ip6AddrWithMask> prefix_{*this, prefixAttr};
};

}  // namespace Ip6

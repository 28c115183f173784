#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Fwk/Entity.h>

namespace RouterAdvt {

/// A recursive DNS server to advertise on an interface. Key: `ipAddr`. Parent: `IntfConfig`.
/// Setters store any value; an unchanged one notifies nobody, a changed one notifies with the attribute. Used by one
/// thread at a time.
class ROUTER_ADVT_EXPORT DNSServerConfigEntry final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    ipAddrAttr = Fwk::firstOwnAttr,
    lifetimeAttr,
    lifetimeDefaultAttr,
    lifetimeConfiguredAttr,
    validLifetimeAttr,
  };

  explicit DNSServerConfigEntry(Ip6Addr const& ipAddr) : ipAddr_(ipAddr) {}
  static Ptr<DNSServerConfigEntry> DNSServerConfigEntryIs(Ip6Addr const& ipAddr) {
    return Fwk::create<DNSServerConfigEntry>(ipAddr);
  }

  Ip6Addr const& ipAddr() const { return ipAddr_; }
  Ip6Addr const& key() const noexcept { return ipAddr_; }

  /// Lifetime of its own, seconds; 0: no longer to be used, 0xffffffff: infinity. In force only with
  /// `lifetimeConfigured`. RFC 8106 5.1.
  U32 lifetime() const { return lifetime_; }
  void lifetimeIs(U32 v) { attrIs(lifetime_, v, lifetimeAttr); }
  /// Seconds. The model's own: the default of RFC 8106 5.1 is a multiple of MaxRtrAdvInterval.
  static constexpr U32 lifetimeDefault() { return 300; }

  /// Whether `lifetime` was configured. Setting `lifetime` does not set this.
  bool lifetimeConfigured() const { return lifetimeConfigured_; }
  void lifetimeConfiguredIs(bool v) { attrIs(lifetimeConfigured_, v, lifetimeConfiguredAttr); }

  /// The lifetime to advertise, seconds: the own one where configured, else `fallback`, which is the interface's.
  U32 validLifetime(U32 fallback) const { return lifetimeConfigured_ ? lifetime_ : fallback; }

  static constexpr char const* fwkTypeName = "RouterAdvt::DNSServerConfigEntry";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~DNSServerConfigEntry() override = default;

  Ip6Addr ipAddr_;
  U32 lifetime_ = lifetimeDefault();
  bool lifetimeConfigured_ = false;
};

}  // namespace RouterAdvt

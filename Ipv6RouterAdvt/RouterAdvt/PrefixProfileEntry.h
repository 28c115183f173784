#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <RouterPlatform/Fwk/Entity.h>

namespace RouterAdvt {

/// Named prefix parameters: a prefix that names the profile takes all five from here. Key: `name`. Parent: `Config`.
/// Setters store any value; an unchanged one notifies nobody, a changed one notifies with the attribute. Used by one
/// thread at a time.
class ROUTER_ADVT_EXPORT PrefixProfileEntry final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    noAdvertiseAttr = Fwk::firstOwnAttr,
    validLifetimeAttr,
    preferredLifetimeAttr,
    noOnLinkAttr,
    noAutoConfigAttr,
  };

  explicit PrefixProfileEntry(Name name) : name_(name) {}
  static Ptr<PrefixProfileEntry> PrefixProfileEntryIs(Name name) { return Fwk::create<PrefixProfileEntry>(name); }

  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  /// Whether the prefix is kept out of advertisements.
  bool noAdvertise() const { return noAdvertise_; }
  void noAdvertiseIs(bool v) { attrIs(noAdvertise_, v, noAdvertiseAttr); }

  /// Valid Lifetime, seconds; 0xffffffff: infinity. RFC 4861 6.2.1 AdvValidLifetime.
  U32 validLifetime() const { return validLifetime_; }
  void validLifetimeIs(U32 v) { attrIs(validLifetime_, v, validLifetimeAttr); }

  /// Preferred Lifetime, seconds; 0xffffffff: infinity. RFC 4861 6.2.1 AdvPreferredLifetime.
  U32 preferredLifetime() const { return preferredLifetime_; }
  void preferredLifetimeIs(U32 v) { attrIs(preferredLifetime_, v, preferredLifetimeAttr); }

  /// Whether the L flag stays clear. RFC 4861 4.6.2.
  bool noOnLink() const { return noOnLink_; }
  void noOnLinkIs(bool v) { attrIs(noOnLink_, v, noOnLinkAttr); }

  /// Whether the A flag stays clear. RFC 4861 4.6.2.
  bool noAutoConfig() const { return noAutoConfig_; }
  void noAutoConfigIs(bool v) { attrIs(noAutoConfig_, v, noAutoConfigAttr); }

  static constexpr char const* fwkTypeName = "RouterAdvt::PrefixProfileEntry";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~PrefixProfileEntry() override = default;

  Name name_;
  U32 validLifetime_ = PrefixDefault::validLifetime();
  U32 preferredLifetime_ = PrefixDefault::preferredLifetime();
  bool noAdvertise_ = PrefixDefault::noAdvertise();
  bool noOnLink_ = PrefixDefault::noOnLink();
  bool noAutoConfig_ = PrefixDefault::noAutoConfig();
};

}  // namespace RouterAdvt

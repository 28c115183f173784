#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <RouterPlatform/Fwk/Entity.h>

namespace Trace {
struct Location;
}  // namespace Trace

namespace RouterAdvt {

class PrefixProfileEntry;

/// A prefix to advertise on an interface. Key: `prefix`, host bits and mask length included. Parent: `IntfConfig`.
/// Setters store any value; an unchanged one notifies nobody, a changed one notifies with the attribute. Used by one
/// thread at a time.
///
/// The builder sends the five own parameters. The `...Value` operations give the effective ones: those of the profile
/// that `profile` names when the root `Config` has it, all five of them, otherwise the own ones.
class ROUTER_ADVT_EXPORT PrefixConfigEntry final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    prefixAttr = Fwk::firstOwnAttr,
    useProfileAttr,
    noAdvertiseAttr,
    validLifetimeAttr,
    preferredLifetimeAttr,
    noOnLinkAttr,
    noAutoConfigAttr,
    noAdvertiseValueAttr,
    validLifetimeValueAttr,
    preferredLifetimeValueAttr,
    noOnLinkValueAttr,
    noAutoConfigValueAttr,
    profileAttr,
  };

  explicit PrefixConfigEntry(Ip6AddrWithMask const& prefix) : prefix_(prefix) {}
  static Ptr<PrefixConfigEntry> PrefixConfigEntryIs(Ip6AddrWithMask const& prefix) {
    return Fwk::create<PrefixConfigEntry>(prefix);
  }

  Ip6AddrWithMask prefix() const { return prefix_; }
  Ip6AddrWithMask const& key() const noexcept { return prefix_; }

  /// Whether the profile that `profile` names exists, and so gives the effective parameters. An empty `profile` is a
  /// name like any other. Looked up on every call. False when the interface is in no `Config`; an entry that is in no
  /// interface is a programming error, which stops the process (here and in the `...Value` operations).
  bool useProfile() const;

  /// Whether the prefix is kept out of advertisements; the builder goes by this value, not by the profile's.
  bool noAdvertise() const { return noAdvertise_; }
  void noAdvertiseIs(bool v) { attrIs(noAdvertise_, v, noAdvertiseAttr); }

  /// Valid Lifetime, seconds; 0xffffffff: infinity. RFC 4861 6.2.1 AdvValidLifetime.
  U32 validLifetime() const { return validLifetime_; }
  void validLifetimeIs(U32 v) { attrIs(validLifetime_, v, validLifetimeAttr); }

  /// Preferred Lifetime, seconds; 0xffffffff: infinity. Not compared with the valid lifetime. RFC 4861 6.2.1
  /// AdvPreferredLifetime.
  U32 preferredLifetime() const { return preferredLifetime_; }
  void preferredLifetimeIs(U32 v) { attrIs(preferredLifetime_, v, preferredLifetimeAttr); }

  /// Whether the L flag stays clear. RFC 4861 4.6.2.
  bool noOnLink() const { return noOnLink_; }
  void noOnLinkIs(bool v) { attrIs(noOnLink_, v, noOnLinkAttr); }

  /// Whether the A flag stays clear. RFC 4861 4.6.2.
  bool noAutoConfig() const { return noAutoConfig_; }
  void noAutoConfigIs(bool v) { attrIs(noAutoConfig_, v, noAutoConfigAttr); }

  // The effective parameters: all five the profile's where `useProfile`, all five the own ones otherwise; lifetimes in
  // seconds, not compared with one another.
  bool noAdvertiseValue() const;       ///< of `noAdvertise`
  U32 validLifetimeValue() const;      ///< of `validLifetime`
  U32 preferredLifetimeValue() const;  ///< of `preferredLifetime`
  bool noOnLinkValue() const;          ///< of `noOnLink`
  bool noAutoConfigValue() const;      ///< of `noAutoConfig`

  /// Name of a profile of the root `Config`, which need not exist. Compared case-sensitively.
  String const& profile() const { return profile_; }
  void profileIs(String const& v) { attrIs(profile_, v, profileAttr); }

  static constexpr char const* fwkTypeName = "RouterAdvt::PrefixConfigEntry";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~PrefixConfigEntry() override = default;
  Ptr<PrefixProfileEntry const> appliedProfile(Trace::Location const& operation) const;

  U32 validLifetime_ = PrefixDefault::validLifetime();
  U32 preferredLifetime_ = PrefixDefault::preferredLifetime();
  String profile_;
  Ip6AddrWithMask prefix_;
  bool noAdvertise_ = PrefixDefault::noAdvertise();
  bool noOnLink_ = PrefixDefault::noOnLink();
  bool noAutoConfig_ = PrefixDefault::noAutoConfig();
};

}  // namespace RouterAdvt

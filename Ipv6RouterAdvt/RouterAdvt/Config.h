#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixProfileEntry.h>
#include <RouterPlatform/Fwk/Collections.h>

namespace RouterAdvt {

/// Root of the configuration: the interfaces to advertise on, and the profiles that prefixes may name.
/// Key: `name`. Setters store any value; an unchanged one notifies nobody, a changed one notifies with the attribute.
/// Used by one thread at a time.
///
/// Collections: `x(key)` gives the member or null. `xIs(key)` gives the member, made with every default if it is not
/// there, and then notified with its key. `xDel(key)` takes the member out, notifies with the key and returns it; null,
/// and nobody notified, when it is not there. `xDelAll()` does so for every member. A setter or a mutator that makes a
/// member may throw std::bad_alloc, having changed nothing. A text that is too long for an `IntfId` or a `Name` throws
/// std::length_error where it becomes one, also in a look-up.
class ROUTER_ADVT_EXPORT Config final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    intfAttr = Fwk::firstOwnAttr,
    hopLimitAttr,
    hopLimitDefaultAttr,
    raConsistencyAttr,
    raConsistencyDefaultAttr,
    prefixProfilesAttr,
  };

  explicit Config(Name name) : name_(name) {}

  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  /// Interfaces to advertise on, in the order in which they were configured.
  auto const& intf() const { return intf_; }
  Ptr<IntfConfig> intf(IntfId key) const { return intf_.member(key); }
  Ptr<IntfConfig> intfIs(IntfId key) { return intf_.memberIs(key); }
  Ptr<IntfConfig> intfDel(IntfId key) { return intf_.memberDel(key); }
  void intfDelAll() { intf_.memberDelAll(); }

  /// System-wide hop limit. Not advertised: each interface has its own.
  U32 hopLimit() const { return hopLimit_; }
  void hopLimitIs(U32 v) { attrIs(hopLimit_, v, hopLimitAttr); }
  static constexpr U32 hopLimitDefault() { return IntfConfig::hopLimitDefault(); }

  /// Whether the agent checks advertisements of other routers against its own. RFC 4861 6.2.7.
  bool raConsistency() const { return raConsistency_; }
  void raConsistencyIs(bool v) { attrIs(raConsistency_, v, raConsistencyAttr); }
  static constexpr bool raConsistencyDefault() { return false; }

  /// Prefix parameters by name. Removing a profile leaves the `profile` of prefixes that name it as it is.
  auto const& prefixProfiles() const { return prefixProfiles_; }
  Ptr<PrefixProfileEntry> prefixProfiles(Name const& key) const { return prefixProfiles_.member(key); }
  Ptr<PrefixProfileEntry> prefixProfilesIs(Name const& key) { return prefixProfiles_.memberIs(key); }
  Ptr<PrefixProfileEntry> prefixProfilesDel(Name const& key) { return prefixProfiles_.memberDel(key); }
  void prefixProfilesDelAll() { prefixProfiles_.memberDelAll(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::Config";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Config() override = default;

  Name name_;
  U32 hopLimit_ = hopLimitDefault();
  bool raConsistency_ = raConsistencyDefault();
  Fwk::EntityCollection<IntfId, IntfConfig> intf_{*this, intfAttr};
  Fwk::EntityCollection<Name, PrefixProfileEntry> prefixProfiles_{*this, prefixProfilesAttr};
};

}  // namespace RouterAdvt

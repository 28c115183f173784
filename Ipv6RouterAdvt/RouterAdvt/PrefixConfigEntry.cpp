#include <Ipv6RouterAdvt/ModelAssert.h>
#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixConfigEntry.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixProfileEntry.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

/// The profile that applies, or null; `operation` is what the assertion names.
// docs/adr/0003: why each operation passes its own place.
Ptr<PrefixProfileEntry const> PrefixConfigEntry::appliedProfile(Trace::Location const& operation) const {
  Ptr<IntfConfig const> const intfConfig = Fwk::ptrCast<IntfConfig const>(parent());
  ASSERT_AT(intfConfig, operation);
  Ptr<Config const> const config = Fwk::ptrCast<Config const>(intfConfig->parent());
  if (!config || !Name::fits(profile_)) return nullptr;
  return config->prefixProfiles(Name(profile_));
}

bool PrefixConfigEntry::useProfile() const {
  return static_cast<bool>(
      appliedProfile(operationAt(ModelLine::useProfile, "bool RouterAdvt::PrefixConfigEntry::useProfile() const")));
}

bool PrefixConfigEntry::noAdvertiseValue() const {
  auto const applied = appliedProfile(
      operationAt(ModelLine::noAdvertiseValue, "bool RouterAdvt::PrefixConfigEntry::noAdvertiseValue() const"));
  return applied ? applied->noAdvertise() : noAdvertise();
}

U32 PrefixConfigEntry::validLifetimeValue() const {
  auto const applied = appliedProfile(
      operationAt(ModelLine::validLifetimeValue, "U32 RouterAdvt::PrefixConfigEntry::validLifetimeValue() const"));
  return applied ? applied->validLifetime() : validLifetime();
}

U32 PrefixConfigEntry::preferredLifetimeValue() const {
  auto const applied = appliedProfile(operationAt(ModelLine::preferredLifetimeValue,
                                                  "U32 RouterAdvt::PrefixConfigEntry::preferredLifetimeValue() const"));
  return applied ? applied->preferredLifetime() : preferredLifetime();
}

bool PrefixConfigEntry::noOnLinkValue() const {
  auto const applied = appliedProfile(
      operationAt(ModelLine::noOnLinkValue, "bool RouterAdvt::PrefixConfigEntry::noOnLinkValue() const"));
  return applied ? applied->noOnLink() : noOnLink();
}

bool PrefixConfigEntry::noAutoConfigValue() const {
  auto const applied = appliedProfile(
      operationAt(ModelLine::noAutoConfigValue, "bool RouterAdvt::PrefixConfigEntry::noAutoConfigValue() const"));
  return applied ? applied->noAutoConfig() : noAutoConfig();
}

Fwk::TypeRecord const& PrefixConfigEntry::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<PrefixConfigEntry>(
      Fwk::key<&PrefixConfigEntry::prefix>("prefix"),  //
      computed<&PrefixConfigEntry::useProfile>("useProfile"),
      scalar<&PrefixConfigEntry::noAdvertise, &PrefixConfigEntry::noAdvertiseIs>("noAdvertise"),
      scalar<&PrefixConfigEntry::validLifetime, &PrefixConfigEntry::validLifetimeIs>("validLifetime"),
      scalar<&PrefixConfigEntry::preferredLifetime, &PrefixConfigEntry::preferredLifetimeIs>("preferredLifetime"),
      scalar<&PrefixConfigEntry::noOnLink, &PrefixConfigEntry::noOnLinkIs>("noOnLink"),
      scalar<&PrefixConfigEntry::noAutoConfig, &PrefixConfigEntry::noAutoConfigIs>("noAutoConfig"),
      computed<&PrefixConfigEntry::noAdvertiseValue>("noAdvertiseValue"),
      computed<&PrefixConfigEntry::validLifetimeValue>("validLifetimeValue"),
      computed<&PrefixConfigEntry::preferredLifetimeValue>("preferredLifetimeValue"),
      computed<&PrefixConfigEntry::noOnLinkValue>("noOnLinkValue"),
      computed<&PrefixConfigEntry::noAutoConfigValue>("noAutoConfigValue"),
      scalar<&PrefixConfigEntry::profile, &PrefixConfigEntry::profileIs>("profile"));
  static constexpr TypeRecord record = entityRecord<PrefixConfigEntry, Ip6AddrWithMask>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

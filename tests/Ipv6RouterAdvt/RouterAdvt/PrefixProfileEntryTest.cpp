#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::PrefixProfileEntry;

TEST(PrefixProfileEntry, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  AttributeRow const rows[] = {
      {258, PrefixProfileEntry::noAdvertiseAttr, "noAdvertise", AttributeKind::scalar, "bool", "false", true},
      {259, PrefixProfileEntry::validLifetimeAttr, "validLifetime", AttributeKind::scalar, "U32", "2592000", true},
      {260, PrefixProfileEntry::preferredLifetimeAttr, "preferredLifetime", AttributeKind::scalar, "U32", "604800",
       true},
      {261, PrefixProfileEntry::noOnLinkAttr, "noOnLink", AttributeKind::scalar, "bool", "false", true},
      {262, PrefixProfileEntry::noAutoConfigAttr, "noAutoConfig", AttributeKind::scalar, "bool", "false", true},
  };
  auto const profile = PrefixProfileEntry::PrefixProfileEntryIs("guest");
  EXPECT_STREQ(PrefixProfileEntry::typeRecord().name, "RouterAdvt::PrefixProfileEntry");
  expectAttributes(profile->fwkType(), Fwk::objectRef(*profile), rows);
}

TEST(PrefixProfileEntry, IsIdentifiedByItsName) {
  auto const profile = PrefixProfileEntry::PrefixProfileEntryIs("guest");
  EXPECT_EQ(profile->name(), "guest");
  EXPECT_EQ(PrefixProfileEntry::typeRecord().keyAttribute(), nullptr);
}

TEST(PrefixProfileEntry, EachSetterTellsOnceAndTouchesNothingElse) {
  auto const profile = PrefixProfileEntry::PrefixProfileEntryIs("guest");
  using T = PrefixProfileEntry;
  expectSetter(profile, 258, "noAdvertise", &T::noAdvertise, &T::noAdvertiseIs, false, true);
  expectSetter(profile, 259, "validLifetime", &T::validLifetime, &T::validLifetimeIs, 2592000, 0xffffffff);
  expectSetter(profile, 260, "preferredLifetime", &T::preferredLifetime, &T::preferredLifetimeIs, 604800, 0);
  expectSetter(profile, 261, "noOnLink", &T::noOnLink, &T::noOnLinkIs, false, true);
  expectSetter(profile, 262, "noAutoConfig", &T::noAutoConfig, &T::noAutoConfigIs, false, true);
}

TEST(PrefixProfileEntry, APreferredLifetimeAboveTheValidOneIsStoredAsItIs) {
  auto const profile = PrefixProfileEntry::PrefixProfileEntryIs("guest");
  profile->validLifetimeIs(10);
  profile->preferredLifetimeIs(20);
  EXPECT_EQ(profile->validLifetime(), 10u);
  EXPECT_EQ(profile->preferredLifetime(), 20u);
}

}  // namespace

#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::Config;
using RouterAdvt::configFactory;
using RouterAdvt::IntfConfig;
using RouterAdvt::PrefixConfigEntry;
using RouterAdvt::PrefixProfileEntry;
using RouterAdvt::U32;

TEST(PrefixConfigEntry, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  using enum AttributeKind;
  using T = PrefixConfigEntry;
  AttributeRow const rows[] = {
      {258, T::prefixAttr, "prefix", key, "Ip6AddrWithMask", "2001:db8::/64"},
      {259, T::useProfileAttr, "useProfile", computed, "bool", "false"},
      {260, T::noAdvertiseAttr, "noAdvertise", scalar, "bool", "false", true},
      {261, T::validLifetimeAttr, "validLifetime", scalar, "U32", "2592000", true},
      {262, T::preferredLifetimeAttr, "preferredLifetime", scalar, "U32", "604800", true},
      {263, T::noOnLinkAttr, "noOnLink", scalar, "bool", "false", true},
      {264, T::noAutoConfigAttr, "noAutoConfig", scalar, "bool", "false", true},
      {265, T::noAdvertiseValueAttr, "noAdvertiseValue", computed, "bool", "false"},
      {266, T::validLifetimeValueAttr, "validLifetimeValue", computed, "U32", "2592000"},
      {267, T::preferredLifetimeValueAttr, "preferredLifetimeValue", computed, "U32", "604800"},
      {268, T::noOnLinkValueAttr, "noOnLinkValue", computed, "bool", "false"},
      {269, T::noAutoConfigValueAttr, "noAutoConfigValue", computed, "bool", "false"},
      {270, T::profileAttr, "profile", scalar, "String", "", true},
  };
  auto const intf = RouterAdvt::intfConfigFactory("Ethernet1");
  auto const entry = intf->prefixesIs(prefixOf("2001:db8::/64"));
  EXPECT_STREQ(PrefixConfigEntry::typeRecord().name, "RouterAdvt::PrefixConfigEntry");
  expectAttributes(entry->fwkType(), Fwk::objectRef(*entry), rows);
}

TEST(PrefixConfigEntry, NameIsEmptyAndItsIdentityIsItsPrefix) {
  auto const entry = PrefixConfigEntry::PrefixConfigEntryIs(prefixOf("2001:db8::1/64"));
  EXPECT_TRUE(entry->name().empty());
  EXPECT_EQ(entry->prefix(), prefixOf("2001:db8::1/64"));
  EXPECT_EQ(entry->parent(), nullptr);
}

TEST(PrefixConfigEntry, EachSetterTellsOnceAndTouchesNothingElse) {
  using T = PrefixConfigEntry;
  auto const intf = RouterAdvt::intfConfigFactory("Ethernet1");
  auto const entry = intf->prefixesIs(prefixOf("2001:db8::/64"));
  expectSetter(entry, 260, "noAdvertise", &T::noAdvertise, &T::noAdvertiseIs, false, true);
  expectSetter(entry, 261, "validLifetime", &T::validLifetime, &T::validLifetimeIs, 2592000, 0);
  expectSetter(entry, 262, "preferredLifetime", &T::preferredLifetime, &T::preferredLifetimeIs, 604800, 0xffffffff);
  expectSetter(entry, 263, "noOnLink", &T::noOnLink, &T::noOnLinkIs, false, true);
  expectSetter(entry, 264, "noAutoConfig", &T::noAutoConfig, &T::noAutoConfigIs, false, true);
  expectSetter(entry, 270, "profile", &T::profile, &T::profileIs, RouterAdvt::String(), RouterAdvt::String("guest"));
}

/// The five effective parameters, to be compared at once.
struct Parameters {
  bool noAdvertise = false;
  U32 validLifetime = 2592000;
  U32 preferredLifetime = 604800;
  bool noOnLink = false;
  bool noAutoConfig = false;

  bool operator==(Parameters const&) const = default;
  friend void PrintTo(Parameters const& p, std::ostream* os) {
    *os << "noAdvertise " << p.noAdvertise << " validLifetime " << p.validLifetime << " preferredLifetime "
        << p.preferredLifetime << " noOnLink " << p.noOnLink << " noAutoConfig " << p.noAutoConfig;
  }
};

template <class Holder>
void set(Holder& holder, Parameters const& p) {
  holder.noAdvertiseIs(p.noAdvertise);
  holder.validLifetimeIs(p.validLifetime);
  holder.preferredLifetimeIs(p.preferredLifetime);
  holder.noOnLinkIs(p.noOnLink);
  holder.noAutoConfigIs(p.noAutoConfig);
}

Parameters effective(PrefixConfigEntry const& entry) {
  return {entry.noAdvertiseValue(), entry.validLifetimeValue(), entry.preferredLifetimeValue(), entry.noOnLinkValue(),
          entry.noAutoConfigValue()};
}

/// A prefix with parameters of its own on an interface of a root without profiles.
struct PrefixProfiles : testing::Test {
  Ptr<Config> config = configFactory("ra");
  Ptr<IntfConfig> intf = config->intfIs("Ethernet1");
  Ptr<PrefixConfigEntry> entry = intf->prefixesIs(prefixOf("2001:db8::/64"));
  Parameters const own{true, 100, 200, true, true};
  Parameters const others{false, 7, 3, false, false};
  Parameters const defaults;

  PrefixProfiles() { set(*entry, own); }
};

TEST_F(PrefixProfiles, AnEmptyProfileAndNoProfileOfEmptyNameGiveTheOwnValues) {
  config->prefixProfilesIs("guest");
  EXPECT_FALSE(entry->useProfile());
  EXPECT_EQ(effective(*entry), own);
}

TEST_F(PrefixProfiles, AnEmptyProfileSelectsAProfileOfEmptyName) {
  set(*config->prefixProfilesIs(""), others);
  EXPECT_TRUE(entry->useProfile());
  EXPECT_EQ(effective(*entry), others);
}

TEST_F(PrefixProfiles, TheProfilesDefaultWinsOverAnExplicitSettingOfTheEntry) {
  config->prefixProfilesIs("guest");
  entry->validLifetimeIs(100);
  entry->profileIs("guest");
  EXPECT_EQ(entry->validLifetimeValue(), 2592000u);
}

TEST_F(PrefixProfiles, AllFiveParametersComeFromTheProfile) {
  set(*config->prefixProfilesIs("guest"), others);
  entry->profileIs("guest");
  EXPECT_TRUE(entry->useProfile());
  EXPECT_EQ(effective(*entry), others);
  EXPECT_EQ(entry->validLifetime(), 100u) << "the own attributes are as they were";
}

TEST_F(PrefixProfiles, EachParameterIsTheProfilesOwnOfTheSameName) {
  auto const guest = config->prefixProfilesIs("guest");
  entry->profileIs("guest");
  set(*entry, defaults);
  guest->noAdvertiseIs(true);
  EXPECT_EQ(effective(*entry), (Parameters{.noAdvertise = true}));
  set(*guest, defaults);
  guest->validLifetimeIs(1);
  EXPECT_EQ(effective(*entry), (Parameters{.validLifetime = 1}));
  set(*guest, defaults);
  guest->preferredLifetimeIs(2);
  EXPECT_EQ(effective(*entry), (Parameters{.preferredLifetime = 2}));
  set(*guest, defaults);
  guest->noOnLinkIs(true);
  EXPECT_EQ(effective(*entry), (Parameters{.noOnLink = true}));
  set(*guest, defaults);
  guest->noAutoConfigIs(true);
  EXPECT_EQ(effective(*entry), (Parameters{.noAutoConfig = true}));
}

TEST_F(PrefixProfiles, AMissingProfileGivesTheOwnValuesUntilItIsThereAndAgainWhenItIsGone) {
  entry->profileIs("guest");
  EXPECT_FALSE(entry->useProfile());
  EXPECT_EQ(effective(*entry), own);
  config->prefixProfilesIs("guest");
  EXPECT_TRUE(entry->useProfile());
  EXPECT_EQ(effective(*entry), defaults);
  config->prefixProfilesDel("guest");
  EXPECT_FALSE(entry->useProfile());
  EXPECT_EQ(effective(*entry), own);
}

TEST_F(PrefixProfiles, RemovingAProfileLeavesTheNamesOfItInTheEntries) {
  config->prefixProfilesIs("guest");
  entry->profileIs("guest");
  Changes changes(*entry);
  config->prefixProfilesDel("guest");
  EXPECT_EQ(entry->profile(), "guest");
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST_F(PrefixProfiles, NamesThatDifferOnlyInLetterCaseDoNotMatch) {
  config->prefixProfilesIs("Guest");
  entry->profileIs("guest");
  EXPECT_FALSE(entry->useProfile());
  EXPECT_EQ(effective(*entry), own);
}

TEST_F(PrefixProfiles, NamesAreComparedWhole) {
  config->prefixProfilesIs("guest");
  for (char const* const profile : {"gues", "guest ", " guest", "guest2"}) {
    entry->profileIs(profile);
    EXPECT_FALSE(entry->useProfile()) << profile;
  }
  entry->profileIs(RouterAdvt::String(std::string("guest\0", 6)));
  EXPECT_FALSE(entry->useProfile());
}

TEST_F(PrefixProfiles, ANameTooLongForAnyProfileGivesTheOwnValues) {
  std::string const longest(RouterAdvt::Name::maxSize, 'p');
  config->prefixProfilesIs(longest);
  entry->profileIs(longest + "p");
  EXPECT_FALSE(entry->useProfile());
  EXPECT_EQ(effective(*entry), own);
  entry->profileIs(longest);
  EXPECT_TRUE(entry->useProfile());
  EXPECT_EQ(effective(*entry), defaults);
}

TEST_F(PrefixProfiles, WithoutARootTheOwnValuesHold) {
  config->prefixProfilesIs("guest");
  entry->profileIs("guest");
  config->intfDel("Ethernet1");
  EXPECT_FALSE(entry->useProfile());
  EXPECT_EQ(effective(*entry), own);
}

TEST_F(PrefixProfiles, OnAnInterfaceThatNeverHadARootTheOwnValuesHold) {
  auto const alone = RouterAdvt::intfConfigFactory("Ethernet2");
  auto const prefix = alone->prefixesIs(prefixOf("2001:db8::/64"));
  set(*prefix, own);
  prefix->profileIs("guest");
  EXPECT_FALSE(prefix->useProfile());
  EXPECT_EQ(effective(*prefix), own);
}

TEST_F(PrefixProfiles, WhenTheRootHasEndedTheOwnValuesHold) {
  config->prefixProfilesIs("guest");
  entry->profileIs("guest");
  config = nullptr;
  EXPECT_FALSE(entry->useProfile());
  EXPECT_EQ(effective(*entry), own);
}

TEST_F(PrefixProfiles, AChangedProfileShowsAtOnceInEveryPrefixThatNamesIt) {
  auto const guest = config->prefixProfilesIs("guest");
  auto const second = config->intfIs("Ethernet2")->prefixesIs(prefixOf("2001:db8:2::/64"));
  entry->profileIs("guest");
  second->profileIs("guest");
  guest->validLifetimeIs(11);
  EXPECT_EQ(entry->validLifetimeValue(), 11u);
  EXPECT_EQ(second->validLifetimeValue(), 11u);
  guest->validLifetimeIs(12);
  EXPECT_EQ(entry->validLifetimeValue(), 12u);
  EXPECT_EQ(second->validLifetimeValue(), 12u);
}

TEST_F(PrefixProfiles, APreferredLifetimeAboveTheValidOneIsGivenAsItIsFromEitherSource) {
  EXPECT_EQ(entry->preferredLifetimeValue(), 200u);
  EXPECT_EQ(entry->validLifetimeValue(), 100u);
  set(*config->prefixProfilesIs("guest"), {false, 5, 9, false, false});
  entry->profileIs("guest");
  EXPECT_EQ(entry->preferredLifetimeValue(), 9u);
  EXPECT_EQ(entry->validLifetimeValue(), 5u);
}

TEST_F(PrefixProfiles, TheEffectiveParametersAreReadThroughReflection) {
  set(*config->prefixProfilesIs("guest"), others);
  entry->profileIs("guest");
  auto const object = Fwk::objectRef(*entry);
  EXPECT_EQ(readText(object, 259), "true");
  EXPECT_EQ(readText(object, 265), "false");
  EXPECT_EQ(readText(object, 266), "7");
  EXPECT_EQ(readText(object, 267), "3");
  EXPECT_EQ(readText(object, 268), "false");
  EXPECT_EQ(readText(object, 269), "false");
}

// An entry that is in no interface cannot say what is effective.

struct OrphanRow {
  char const* name;
  void (*ask)(PrefixConfigEntry const&);
  char const* report;  ///< a regular expression
  friend void PrintTo(OrphanRow const& r, std::ostream* os) { *os << r.name; }
};
OrphanRow const orphanRows[] = {
    {"UseProfile", [](PrefixConfigEntry const& e) { e.useProfile(); },
     "^Ipv6RouterAdvt/RouterAdvt:10: bool RouterAdvt::PrefixConfigEntry::useProfile\\(\\) const: "
     "assertion \"intfConfig\" failed\n$"},
    {"NoAdvertiseValue", [](PrefixConfigEntry const& e) { e.noAdvertiseValue(); },
     "^Ipv6RouterAdvt/RouterAdvt:21: bool RouterAdvt::PrefixConfigEntry::noAdvertiseValue\\(\\) const: "
     "assertion \"intfConfig\" failed\n$"},
    {"ValidLifetimeValue", [](PrefixConfigEntry const& e) { e.validLifetimeValue(); },
     "^Ipv6RouterAdvt/RouterAdvt:35: U32 RouterAdvt::PrefixConfigEntry::validLifetimeValue\\(\\) const: "
     "assertion \"intfConfig\" failed\n$"},
    {"PreferredLifetimeValue", [](PrefixConfigEntry const& e) { e.preferredLifetimeValue(); },
     "^Ipv6RouterAdvt/RouterAdvt:49: U32 RouterAdvt::PrefixConfigEntry::preferredLifetimeValue\\(\\) const: "
     "assertion \"intfConfig\" failed\n$"},
    {"NoOnLinkValue", [](PrefixConfigEntry const& e) { e.noOnLinkValue(); },
     "^Ipv6RouterAdvt/RouterAdvt:63: bool RouterAdvt::PrefixConfigEntry::noOnLinkValue\\(\\) const: "
     "assertion \"intfConfig\" failed\n$"},
    {"NoAutoConfigValue", [](PrefixConfigEntry const& e) { e.noAutoConfigValue(); },
     "^Ipv6RouterAdvt/RouterAdvt:77: bool RouterAdvt::PrefixConfigEntry::noAutoConfigValue\\(\\) const: "
     "assertion \"intfConfig\" failed\n$"},
    {"ThroughReflection",
     [](PrefixConfigEntry const& e) { readText(Fwk::objectRef(e), PrefixConfigEntry::validLifetimeValueAttr); },
     "^Ipv6RouterAdvt/RouterAdvt:35: U32 RouterAdvt::PrefixConfigEntry::validLifetimeValue\\(\\) const: "
     "assertion \"intfConfig\" failed\n$"},
};
class OrphanPrefixDeathTest : public testing::TestWithParam<OrphanRow> {};
TEST_P(OrphanPrefixDeathTest, StopsTheProcessWhenItWasMadeDirectly) {
  auto const entry = PrefixConfigEntry::PrefixConfigEntryIs(prefixOf("2001:db8::/64"));
  EXPECT_DEATH(GetParam().ask(*entry), GetParam().report);
}
TEST_P(OrphanPrefixDeathTest, StopsTheProcessWhenItWasRemovedFromItsInterface) {
  auto const config = configFactory("ra");
  config->prefixProfilesIs("");
  auto const intf = config->intfIs("Ethernet1");
  intf->prefixesIs(prefixOf("2001:db8::/64"));
  auto const entry = intf->prefixesDel(prefixOf("2001:db8::/64"));
  EXPECT_DEATH(GetParam().ask(*entry), GetParam().report);
}
TEST_P(OrphanPrefixDeathTest, StopsTheProcessWhenItsInterfaceHasEnded) {
  auto intf = RouterAdvt::intfConfigFactory("Ethernet1");
  auto const entry = intf->prefixesIs(prefixOf("2001:db8::/64"));
  intf = nullptr;
  EXPECT_DEATH(GetParam().ask(*entry), GetParam().report);
}
INSTANTIATE_TEST_SUITE_P(All, OrphanPrefixDeathTest, testing::ValuesIn(orphanRows),
                         [](auto const& row) { return row.param.name; });

}  // namespace

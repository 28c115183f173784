#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::Config;
using RouterAdvt::configFactory;

TEST(Config, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  AttributeRow const rows[] = {
      {258, Config::intfAttr, "intf", AttributeKind::collection, "RouterAdvt::IntfConfig", nullptr},
      {259, Config::hopLimitAttr, "hopLimit", AttributeKind::scalar, "U32", "64", true},
      {260, Config::hopLimitDefaultAttr, "hopLimitDefault", AttributeKind::constant, "U32", "64"},
      {261, Config::raConsistencyAttr, "raConsistency", AttributeKind::scalar, "bool", "false", true},
      {262, Config::raConsistencyDefaultAttr, "raConsistencyDefault", AttributeKind::constant, "bool", "false"},
      {263, Config::prefixProfilesAttr, "prefixProfiles", AttributeKind::collection, "RouterAdvt::PrefixProfileEntry",
       nullptr},
  };
  auto const config = configFactory("ra");
  EXPECT_STREQ(Config::typeRecord().name, "RouterAdvt::Config");
  expectAttributes(config->fwkType(), Fwk::objectRef(*config), rows);
}

TEST(Config, KeysItsCollectionsByIntfIdAndName) {
  EXPECT_STREQ(Config::typeRecord().attribute("intf")->collection->keyTypeName, "IntfId");
  EXPECT_STREQ(Config::typeRecord().attribute("prefixProfiles")->collection->keyTypeName, "Name");
}

TEST(Config, IsIdentifiedByItsName) {
  auto const config = configFactory("ra");
  EXPECT_EQ(config->name(), "ra");
  EXPECT_EQ(config->fullName(), "ra");
  EXPECT_EQ(config->parent(), nullptr);
  EXPECT_EQ(config->parentAttrName(), "");
  EXPECT_EQ(Config::typeRecord().keyAttribute(), nullptr);
}

TEST(Config, EachSetterTellsOnceAndTouchesNothingElse) {
  auto const config = configFactory("ra");
  config->intfIs("Ethernet1");
  expectSetter(config, 259, "hopLimit", &Config::hopLimit, &Config::hopLimitIs, 64, 0xffffffff);
  expectSetter(config, 261, "raConsistency", &Config::raConsistency, &Config::raConsistencyIs, false, true);
}

TEST(Config, ConstantsAreTheSameForEveryInstance) {
  static_assert(Config::hopLimitDefault() == 64);
  static_assert(!Config::raConsistencyDefault());
  auto const config = configFactory("ra");
  config->hopLimitIs(1);
  config->raConsistencyIs(true);
  EXPECT_EQ(readText(Fwk::objectRef(*config), 260), "64");
  EXPECT_EQ(readText(Fwk::objectRef(*config), 262), "false");
}

TEST(Config, ProfileNamesAreComparedCaseSensitively) {
  auto const config = configFactory("ra");
  auto const guest = config->prefixProfilesIs("guest");
  EXPECT_EQ(config->prefixProfiles("Guest"), nullptr);
  EXPECT_NE(config->prefixProfilesIs("Guest"), guest);
  EXPECT_EQ(config->prefixProfiles().size(), 2u);
}

TEST(Config, InterfaceIdsAreComparedCaseSensitively) {
  auto const config = configFactory("ra");
  EXPECT_NE(config->intfIs("ethernet1"), config->intfIs("Ethernet1"));
  EXPECT_EQ(config->intf().size(), 2u);
}

TEST(Config, TheHopLimitsOfTheSystemAndOfAnInterfaceAreIndependent) {
  auto const config = configFactory("ra");
  auto const intf = config->intfIs("Ethernet1");
  config->hopLimitIs(10);
  EXPECT_EQ(intf->hopLimit(), 64u);
  EXPECT_EQ(config->intfIs("Ethernet2")->hopLimit(), 64u);
  intf->hopLimitIs(20);
  EXPECT_EQ(config->hopLimit(), 10u);
}

TEST(Config, AnInterfaceThatIsThereKeepsItsSettingsWhenItIsAskedForAgain) {
  auto const config = configFactory("ra");
  config->intfIs("Ethernet1")->raLifetimeIs(9);
  EXPECT_EQ(config->intfIs("Ethernet1")->raLifetime(), 9u);
}

TEST(Config, AProfileThatIsThereKeepsItsSettingsWhenItIsAskedForAgain) {
  auto const config = configFactory("ra");
  config->prefixProfilesIs("guest")->validLifetimeIs(9);
  EXPECT_EQ(config->prefixProfilesIs("guest")->validLifetime(), 9u);
}

TEST(Config, ChangesOfAMemberAreNotChangesOfTheRoot) {
  auto const config = configFactory("ra");
  auto const intf = config->intfIs("Ethernet1");
  Changes changes(*config);
  intf->raLifetimeIs(9);
  intf->prefixesIs(prefixOf("2001:db8::/64"));
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST(Config, TheFullNameIsThePathFromTheRoot) {
  auto const config = configFactory("ra");
  auto const intf = config->intfIs("Ethernet1");
  EXPECT_EQ(intf->fullName(), "ra/intf[Ethernet1]");
  EXPECT_EQ(config->prefixProfilesIs("guest")->fullName(), "ra/prefixProfiles[guest]");
  EXPECT_EQ(intf->prefixesIs(prefixOf("2001:db8::/64"))->fullName(), "ra/intf[Ethernet1]/prefixes[2001:db8::/64]");
  EXPECT_EQ(intf->dnsServersIs(addrOf("2001:db8::53"))->fullName(), "ra/intf[Ethernet1]/dnsServers[2001:db8::53]");
  EXPECT_EQ(intf->dnsSuffixesIs("example.com")->fullName(), "ra/intf[Ethernet1]/dnsSuffixes[example.com]");
}

TEST(Config, ATreeEndsWithItsRootUnlessPartsOfItAreHeld) {
  auto const configsBefore = liveCount<Config>();
  auto const intfsBefore = liveCount<RouterAdvt::IntfConfig>();
  auto const prefixesBefore = liveCount<RouterAdvt::PrefixConfigEntry>();
  auto config = configFactory("ra");
  config->intfIs("Ethernet1");
  auto const prefix = config->intfIs("Ethernet2")->prefixesIs(prefixOf("2001:db8::/64"));
  EXPECT_EQ(liveCount<RouterAdvt::IntfConfig>(), intfsBefore + 2);
  config = nullptr;
  EXPECT_EQ(liveCount<Config>(), configsBefore);
  EXPECT_EQ(liveCount<RouterAdvt::IntfConfig>(), intfsBefore);
  EXPECT_EQ(liveCount<RouterAdvt::PrefixConfigEntry>(), prefixesBefore + 1);
  EXPECT_EQ(prefix->parent(), nullptr);
  EXPECT_EQ(prefix->prefix(), prefixOf("2001:db8::/64"));
}

}  // namespace

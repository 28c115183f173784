#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

namespace {

using namespace ModelTest;
using Net::Icmp6RouterAdvtRouterPreferenceType;
using RouterAdvt::configFactory;
using RouterAdvt::IntfConfig;
using RouterAdvt::intfConfigFactory;
using RouterAdvt::U32;

TEST(IntfConfig, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  using enum AttributeKind;
  using T = IntfConfig;
  char const* const preference = "Icmp6RouterAdvtRouterPreferenceType";
  AttributeRow const rows[] = {
      {258, T::intfIdAttr, "intfId", key, "IntfId", "Ethernet1"},
      {259, T::raSuppressAttr, "raSuppress", scalar, "bool", "false", true},
      {260, T::raSuppressDefaultAttr, "raSuppressDefault", constant, "bool", "false"},
      {261, T::raSuppressRouterSolicitationResponseAttr, "raSuppressRouterSolicitationResponse", scalar, "bool",
       "false", true},
      {262, T::raSuppressRouterSolicitationResponseDefaultAttr, "raSuppressRouterSolicitationResponseDefault", constant,
       "bool", "false"},
      {263, T::raIntervalMaxMsecAttr, "raIntervalMaxMsec", scalar, "U32", "200000", true},
      {264, T::raIntervalMaxDefaultAttr, "raIntervalMaxDefault", constant, "U32", "200000"},
      {265, T::raIntervalMinMsecAttr, "raIntervalMinMsec", scalar, "U32", "0", true},
      {266, T::raIntervalMinDefaultAttr, "raIntervalMinDefault", constant, "U32", "0"},
      {267, T::raLifetimeAttr, "raLifetime", scalar, "U32", "1800", true},
      {268, T::raLifetimeDefaultAttr, "raLifetimeDefault", constant, "U32", "1800"},
      {269, T::raMtuSuppressAttr, "raMtuSuppress", scalar, "bool", "false", true},
      {270, T::raMtuSuppressDefaultAttr, "raMtuSuppressDefault", constant, "bool", "false"},
      {271, T::managedConfigFlagAttr, "managedConfigFlag", scalar, "bool", "false", true},
      {272, T::managedConfigFlagDefaultAttr, "managedConfigFlagDefault", constant, "bool", "false"},
      {273, T::otherConfigFlagAttr, "otherConfigFlag", scalar, "bool", "false", true},
      {274, T::otherConfigFlagDefaultAttr, "otherConfigFlagDefault", constant, "bool", "false"},
      {275, T::routerPreferenceAttr, "routerPreference", scalar, preference, "medium", true},
      {276, T::routerPreferenceDefaultAttr, "routerPreferenceDefault", constant, preference, "medium"},
      {277, T::prefixesAttr, "prefixes", collection, "RouterAdvt::PrefixConfigEntry", nullptr},
      {278, T::prefixesToAdvertiseAttr, "prefixesToAdvertise", computed, "bool", "false"},
      unreflectedRow(279, T::numPrefixesToAdvertiseAttr, "numPrefixesToAdvertise"),
      {280, T::nsIntervalMsecAttr, "nsIntervalMsec", scalar, "U32", "0", true},
      {281, T::nsIntervalMsecDefaultAttr, "nsIntervalMsecDefault", constant, "U32", "0"},
      {282, T::reachableTimeAttr, "reachableTime", scalar, "U32", "0", true},
      {283, T::reachableTimeDefaultAttr, "reachableTimeDefault", constant, "U32", "0"},
      {284, T::dnsServersAttr, "dnsServers", collection, "RouterAdvt::DNSServerConfigEntry", nullptr},
      {285, T::dnsServersLifetimeDefaultAttr, "dnsServersLifetimeDefault", constant, "U32", "300"},
      {286, T::dnsServersLifetimeAttr, "dnsServersLifetime", scalar, "U32", "300", true},
      {287, T::validDnsServersLifetimeAttr, "validDnsServersLifetime", computed, "U32", "300"},
      {288, T::dnsServersLifetimeConfiguredAttr, "dnsServersLifetimeConfigured", scalar, "bool", "false", true},
      {289, T::dnsSuffixesAttr, "dnsSuffixes", collection, "RouterAdvt::DNSSuffixConfigEntry", nullptr},
      {290, T::dnsSuffixesLifetimeDefaultAttr, "dnsSuffixesLifetimeDefault", constant, "U32", "300"},
      {291, T::dnsSuffixesLifetimeAttr, "dnsSuffixesLifetime", scalar, "U32", "300", true},
      {292, T::validDnsSuffixesLifetimeAttr, "validDnsSuffixesLifetime", computed, "U32", "300"},
      {293, T::dnsSuffixesLifetimeConfiguredAttr, "dnsSuffixesLifetimeConfigured", scalar, "bool", "false", true},
      {294, T::networkBootFileUrlAttr, "networkBootFileUrl", scalar, "String", "", true},
      {295, T::hopLimitAttr, "hopLimit", scalar, "U32", "64", true},
      {296, T::hopLimitDefaultAttr, "hopLimitDefault", constant, "U32", "64"},
      {297, T::hopLimitMaxAttr, "hopLimitMax", constant, "U32", "255"},
      {298, T::validHopLimitAttr, "validHopLimit", computed, "U32", "64"},
  };
  auto const intf = intfConfigFactory("Ethernet1");
  EXPECT_STREQ(IntfConfig::typeRecord().name, "RouterAdvt::IntfConfig");
  expectAttributes(intf->fwkType(), Fwk::objectRef(*intf), rows);
}

TEST(IntfConfig, KeysItsCollectionsByPrefixAddressAndSuffix) {
  EXPECT_STREQ(IntfConfig::typeRecord().attribute("prefixes")->collection->keyTypeName, "Ip6AddrWithMask");
  EXPECT_STREQ(IntfConfig::typeRecord().attribute("dnsServers")->collection->keyTypeName, "Ip6Addr");
  EXPECT_STREQ(IntfConfig::typeRecord().attribute("dnsSuffixes")->collection->keyTypeName, "String");
}

TEST(IntfConfig, ANewOneHasEveryDefaultAndNoMembers) {
  auto const intf = intfConfigFactory("Ethernet1");
  EXPECT_EQ(intf->raIntervalMaxMsec(), 200000u);
  EXPECT_EQ(intf->raIntervalMinMsec(), 0u);
  EXPECT_EQ(intf->raLifetime(), 1800u);
  EXPECT_EQ(intf->hopLimit(), 64u);
  EXPECT_EQ(intf->dnsServersLifetime(), 300u);
  EXPECT_EQ(intf->dnsSuffixesLifetime(), 300u);
  EXPECT_FALSE(intf->dnsServersLifetimeConfigured());
  EXPECT_FALSE(intf->dnsSuffixesLifetimeConfigured());
  EXPECT_FALSE(intf->raSuppress());
  EXPECT_FALSE(intf->raSuppressRouterSolicitationResponse());
  EXPECT_FALSE(intf->raMtuSuppress());
  EXPECT_FALSE(intf->managedConfigFlag());
  EXPECT_FALSE(intf->otherConfigFlag());
  EXPECT_EQ(static_cast<int>(intf->routerPreference()), 0);
  EXPECT_EQ(intf->nsIntervalMsec(), 0u);
  EXPECT_EQ(intf->reachableTime(), 0u);
  EXPECT_EQ(intf->networkBootFileUrl(), "");
  EXPECT_TRUE(intf->prefixes().empty());
  EXPECT_TRUE(intf->dnsServers().empty());
  EXPECT_TRUE(intf->dnsSuffixes().empty());
  EXPECT_EQ(intf->parent(), nullptr);
}

TEST(IntfConfig, ConstantsAreKnownToTheCompiler) {
  static_assert(!IntfConfig::raSuppressDefault());
  static_assert(!IntfConfig::raSuppressRouterSolicitationResponseDefault());
  static_assert(IntfConfig::raIntervalMaxDefault() == 200000);
  static_assert(IntfConfig::raIntervalMinDefault() == 0);
  static_assert(IntfConfig::raLifetimeDefault() == 1800);
  static_assert(!IntfConfig::raMtuSuppressDefault());
  static_assert(!IntfConfig::managedConfigFlagDefault());
  static_assert(!IntfConfig::otherConfigFlagDefault());
  static_assert(static_cast<int>(IntfConfig::routerPreferenceDefault()) == 0);
  static_assert(IntfConfig::nsIntervalMsecDefault() == 0);
  static_assert(IntfConfig::reachableTimeDefault() == 0);
  static_assert(IntfConfig::dnsServersLifetimeDefault() == 300);
  static_assert(IntfConfig::dnsSuffixesLifetimeDefault() == 300);
  static_assert(IntfConfig::hopLimitDefault() == 64);
  static_assert(IntfConfig::hopLimitMax() == 255);
}

TEST(IntfConfig, NameIsEmptyAndItsIdentityIsItsIntfId) {
  auto const intf = intfConfigFactory("Ethernet1");
  EXPECT_TRUE(intf->name().empty());
  EXPECT_EQ(intf->intfId(), "Ethernet1");
  EXPECT_EQ(intf->keyText(), "Ethernet1");
  ASSERT_NE(IntfConfig::typeRecord().keyAttribute(), nullptr);
  EXPECT_STREQ(IntfConfig::typeRecord().keyAttribute()->name, "intfId");
  EXPECT_EQ(readText(Fwk::objectRef(*intf), Fwk::nameAttr), "");
}

TEST(IntfConfig, EachSetterTellsOnceAndTouchesNothingElse) {
  using T = IntfConfig;
  auto const intf = configFactory("ra")->intfIs("Ethernet1");
  intf->prefixesIs(prefixOf("2001:db8::/64"));
  intf->dnsServersIs(addrOf("2001:db8::53"));
  intf->dnsSuffixesIs("example.com");
  U32 const most = 0xffffffff;
  expectSetter(intf, 259, "raSuppress", &T::raSuppress, &T::raSuppressIs, false, true);
  expectSetter(intf, 261, "raSuppressRouterSolicitationResponse", &T::raSuppressRouterSolicitationResponse,
               &T::raSuppressRouterSolicitationResponseIs, false, true);
  expectSetter(intf, 263, "raIntervalMaxMsec", &T::raIntervalMaxMsec, &T::raIntervalMaxMsecIs, 200000, most);
  expectSetter(intf, 265, "raIntervalMinMsec", &T::raIntervalMinMsec, &T::raIntervalMinMsecIs, 0, most);
  expectSetter(intf, 267, "raLifetime", &T::raLifetime, &T::raLifetimeIs, 1800, most);
  expectSetter(intf, 269, "raMtuSuppress", &T::raMtuSuppress, &T::raMtuSuppressIs, false, true);
  expectSetter(intf, 271, "managedConfigFlag", &T::managedConfigFlag, &T::managedConfigFlagIs, false, true);
  expectSetter(intf, 273, "otherConfigFlag", &T::otherConfigFlag, &T::otherConfigFlagIs, false, true);
  expectSetter(intf, 275, "routerPreference", &T::routerPreference, &T::routerPreferenceIs,
               Icmp6RouterAdvtRouterPreferenceType::medium, Icmp6RouterAdvtRouterPreferenceType::low);
  expectSetter(intf, 280, "nsIntervalMsec", &T::nsIntervalMsec, &T::nsIntervalMsecIs, 0, most);
  expectSetter(intf, 282, "reachableTime", &T::reachableTime, &T::reachableTimeIs, 0, most);
  expectSetter(intf, 286, "dnsServersLifetime", &T::dnsServersLifetime, &T::dnsServersLifetimeIs, 300, most);
  expectSetter(intf, 288, "dnsServersLifetimeConfigured", &T::dnsServersLifetimeConfigured,
               &T::dnsServersLifetimeConfiguredIs, false, true);
  expectSetter(intf, 291, "dnsSuffixesLifetime", &T::dnsSuffixesLifetime, &T::dnsSuffixesLifetimeIs, 300, most);
  expectSetter(intf, 293, "dnsSuffixesLifetimeConfigured", &T::dnsSuffixesLifetimeConfigured,
               &T::dnsSuffixesLifetimeConfiguredIs, false, true);
  expectSetter(intf, 294, "networkBootFileUrl", &T::networkBootFileUrl, &T::networkBootFileUrlIs, RouterAdvt::String(),
               RouterAdvt::String(std::string(5000, 'u')));
  expectSetter(intf, 295, "hopLimit", &T::hopLimit, &T::hopLimitIs, 64, most);
}

TEST(IntfConfig, AMinimumIntervalAboveTheMaximumIsAcceptedAsItIs) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->raIntervalMinMsecIs(300000);
  EXPECT_EQ(intf->raIntervalMinMsec(), 300000u);
  EXPECT_EQ(intf->raIntervalMaxMsec(), 200000u);
}

TEST(IntfConfig, AHopLimitOf1000IsStoredAsItIsAndLimitedOnlyWhenAdvertised) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->hopLimitIs(1000);
  EXPECT_EQ(intf->hopLimit(), 1000u);
  EXPECT_EQ(intf->validHopLimit(), 255u);
}

TEST(IntfConfig, SettingALifetimeForDnsEntriesDoesNotMarkItConfigured) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->dnsServersLifetimeIs(7);
  intf->dnsSuffixesLifetimeIs(8);
  EXPECT_FALSE(intf->dnsServersLifetimeConfigured());
  EXPECT_FALSE(intf->dnsSuffixesLifetimeConfigured());
}

TEST(IntfConfig, TheReservedPreferenceIsStoredAsItIs) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->routerPreferenceIs(Icmp6RouterAdvtRouterPreferenceType::reserved_);
  EXPECT_EQ(intf->routerPreference(), Icmp6RouterAdvtRouterPreferenceType::reserved_);
}

TEST(IntfConfig, APrefixThatIsThereKeepsItsSettingsWhenItIsAskedForAgain) {
  auto const intf = intfConfigFactory("Ethernet1");
  auto const entry = intf->prefixesIs(prefixOf("2001:db8::/64"));
  entry->validLifetimeIs(7);
  entry->noOnLinkIs(true);
  auto const again = intf->prefixesIs(prefixOf("2001:db8::/64"));
  EXPECT_EQ(again, entry);
  EXPECT_EQ(again->validLifetime(), 7u);
  EXPECT_TRUE(again->noOnLink());
}

TEST(IntfConfig, TwoPrefixesWithTheSameAddressAndDifferentMaskLengthsAreTwoMembers) {
  auto const intf = intfConfigFactory("Ethernet1");
  EXPECT_NE(intf->prefixesIs(prefixOf("2001:db8::/64")), intf->prefixesIs(prefixOf("2001:db8::/48")));
  EXPECT_EQ(intf->prefixes().size(), 2u);
}

TEST(IntfConfig, TwoPrefixesThatDifferInTheirHostBitsAreTwoMembers) {
  auto const intf = intfConfigFactory("Ethernet1");
  EXPECT_NE(intf->prefixesIs(prefixOf("2001:db8::/64")), intf->prefixesIs(prefixOf("2001:db8::1/64")));
  EXPECT_EQ(intf->prefixes(prefixOf("2001:db8::1/64"))->prefix(), prefixOf("2001:db8::1/64"));
}

TEST(IntfConfig, DnsServersAreComparedByAll128Bits) {
  auto const intf = intfConfigFactory("Ethernet1");
  auto const server = intf->dnsServersIs(addrOf("2001:db8::53"));
  EXPECT_EQ(intf->dnsServersIs(addrOf("2001:0db8:0::0053")), server);
  EXPECT_NE(intf->dnsServersIs(addrOf("2001:db8::52")), server);
  EXPECT_NE(intf->dnsServersIs(addrOf("a001:db8::53")), server);
  EXPECT_EQ(intf->dnsServers().size(), 3u);
}

TEST(IntfConfig, DnsSuffixesAreComparedExactly) {
  auto const intf = intfConfigFactory("Ethernet1");
  auto const suffix = intf->dnsSuffixesIs("example.com");
  EXPECT_EQ(intf->dnsSuffixes("Example.com"), nullptr);
  EXPECT_EQ(intf->dnsSuffixes("example.com."), nullptr);
  EXPECT_NE(intf->dnsSuffixesIs("Example.com"), suffix);
  EXPECT_NE(intf->dnsSuffixesIs("example.com."), suffix);
  EXPECT_NE(intf->dnsSuffixesIs(""), nullptr);
  EXPECT_EQ(intf->dnsSuffixes().size(), 4u);
}

// Which of the prefixes are advertised.

TEST(IntfConfig, WithoutPrefixesThereIsNothingToAdvertise) {
  auto const intf = intfConfigFactory("Ethernet1");
  U32 suppressed = 99;
  EXPECT_FALSE(intf->prefixesToAdvertise());
  EXPECT_EQ(intf->numPrefixesToAdvertise(&suppressed), 0u);
  EXPECT_EQ(suppressed, 0u);
}

TEST(IntfConfig, OfThreePrefixesWithOneSuppressedTwoAreAdvertised) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->prefixesIs(prefixOf("2001:db8:1::/64"));
  intf->prefixesIs(prefixOf("2001:db8:2::/64"))->noAdvertiseIs(true);
  intf->prefixesIs(prefixOf("2001:db8:3::/64"));
  U32 suppressed = 99;
  EXPECT_EQ(intf->numPrefixesToAdvertise(&suppressed), 2u);
  EXPECT_EQ(suppressed, 1u);
  EXPECT_EQ(intf->numPrefixesToAdvertise(nullptr), 2u);
  EXPECT_EQ(intf->numPrefixesToAdvertise(), 2u);
  EXPECT_TRUE(intf->prefixesToAdvertise());
}

TEST(IntfConfig, WithEveryPrefixSuppressedThereIsNothingToAdvertise) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->prefixesIs(prefixOf("2001:db8:1::/64"))->noAdvertiseIs(true);
  intf->prefixesIs(prefixOf("2001:db8:2::/64"))->noAdvertiseIs(true);
  U32 suppressed = 99;
  EXPECT_FALSE(intf->prefixesToAdvertise());
  EXPECT_EQ(intf->numPrefixesToAdvertise(&suppressed), 0u);
  EXPECT_EQ(suppressed, 2u);
}

TEST(IntfConfig, LookingThroughThePrefixesNeedsNoAllocation) {
  auto const intf = intfConfigFactory("Ethernet1");
  for (U32 i = 0; i < 100; ++i)
    intf->prefixesIs(prefixOf(("2001:db8:" + std::to_string(i) + "::/64").c_str()))->noAdvertiseIs(i != 99);
  auto const before = allocationCount();
  bool const any = intf->prefixesToAdvertise();
  U32 suppressed = 0;
  U32 const advertised = intf->numPrefixesToAdvertise(&suppressed);
  EXPECT_EQ(allocationCount(), before);
  EXPECT_TRUE(any);
  EXPECT_EQ(advertised, 1u);
  EXPECT_EQ(suppressed, 99u);
}

TEST(IntfConfig, APrefixBehindSuppressedOnesIsFound) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->prefixesIs(prefixOf("2001:db8:1::/64"))->noAdvertiseIs(true);
  intf->prefixesIs(prefixOf("2001:db8:2::/64"));
  EXPECT_TRUE(intf->prefixesToAdvertise());
}

TEST(IntfConfig, APrefixCountsAlthoughItsProfileSuppressesIt) {
  auto const config = configFactory("ra");
  config->prefixProfilesIs("hidden")->noAdvertiseIs(true);
  auto const intf = config->intfIs("Ethernet1");
  auto const entry = intf->prefixesIs(prefixOf("2001:db8::/64"));
  entry->profileIs("hidden");
  ASSERT_TRUE(entry->noAdvertiseValue());
  EXPECT_TRUE(intf->prefixesToAdvertise());
  U32 suppressed = 99;
  EXPECT_EQ(intf->numPrefixesToAdvertise(&suppressed), 1u);
  EXPECT_EQ(suppressed, 0u);
}

TEST(IntfConfig, ASuppressedPrefixDoesNotCountAlthoughItsProfileWouldAdvertiseIt) {
  auto const config = configFactory("ra");
  config->prefixProfilesIs("shown");
  auto const intf = config->intfIs("Ethernet1");
  auto const entry = intf->prefixesIs(prefixOf("2001:db8::/64"));
  entry->profileIs("shown");
  entry->noAdvertiseIs(true);
  ASSERT_FALSE(entry->noAdvertiseValue());
  EXPECT_FALSE(intf->prefixesToAdvertise());
  U32 suppressed = 99;
  EXPECT_EQ(intf->numPrefixesToAdvertise(&suppressed), 0u);
  EXPECT_EQ(suppressed, 1u);
}

// The lifetime of DNS entries, for servers and suffixes alike.

struct IntervalRow {
  U32 raIntervalMaxMsec;
  U32 lifetime;
  friend void PrintTo(IntervalRow const& r, std::ostream* os) { *os << r.raIntervalMaxMsec << "msec"; }
};
class DnsLifetimeFromInterval : public testing::TestWithParam<IntervalRow> {};
TEST_P(DnsLifetimeFromInterval, IsOneAndAHalfTimesTheMaximumIntervalInWholeSeconds) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->raIntervalMaxMsecIs(GetParam().raIntervalMaxMsec);
  EXPECT_EQ(intf->validDnsServersLifetime(), GetParam().lifetime);
  EXPECT_EQ(intf->validDnsSuffixesLifetime(), GetParam().lifetime);
}
INSTANTIATE_TEST_SUITE_P(All, DnsLifetimeFromInterval,
                         testing::Values(IntervalRow{200000, 300}, IntervalRow{4000, 6}, IntervalRow{4999, 6},
                                         IntervalRow{3000, 4}, IntervalRow{1000, 1}, IntervalRow{999, 0},
                                         IntervalRow{0, 0}, IntervalRow{0xffffffff, 6442450}),
                         [](auto const& row) { return std::to_string(row.param.raIntervalMaxMsec) + "msec"; });

TEST(IntfConfig, AnUnconfiguredDnsServersLifetimeIsIgnored) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->dnsServersLifetimeIs(1000);
  intf->raIntervalMaxMsecIs(4000);
  EXPECT_EQ(intf->validDnsServersLifetime(), 6u);
}

TEST(IntfConfig, AnUnconfiguredDnsSuffixesLifetimeIsIgnored) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->dnsSuffixesLifetimeIs(1000);
  intf->raIntervalMaxMsecIs(4000);
  EXPECT_EQ(intf->validDnsSuffixesLifetime(), 6u);
}

TEST(IntfConfig, AConfiguredDnsServersLifetimeOf0Is0) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->dnsServersLifetimeConfiguredIs(true);
  intf->dnsServersLifetimeIs(0);
  EXPECT_EQ(intf->validDnsServersLifetime(), 0u);
  EXPECT_EQ(intf->validDnsSuffixesLifetime(), 300u) << "the suffixes have a flag of their own";
}

TEST(IntfConfig, AConfiguredDnsSuffixesLifetimeOf0Is0) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->dnsSuffixesLifetimeConfiguredIs(true);
  intf->dnsSuffixesLifetimeIs(0);
  EXPECT_EQ(intf->validDnsSuffixesLifetime(), 0u);
  EXPECT_EQ(intf->validDnsServersLifetime(), 300u) << "the servers have a flag of their own";
}

TEST(IntfConfig, AConfiguredDnsLifetimeIsTakenExactlyAsItIsStored) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->dnsServersLifetimeConfiguredIs(true);
  intf->dnsSuffixesLifetimeConfiguredIs(true);
  intf->dnsServersLifetimeIs(0xffffffff);
  intf->dnsSuffixesLifetimeIs(0xfffffffe);
  EXPECT_EQ(intf->validDnsServersLifetime(), 0xffffffffu);
  EXPECT_EQ(intf->validDnsSuffixesLifetime(), 0xfffffffeu);
}

TEST(IntfConfig, ADnsLifetimeIsTheEntrysThenTheInterfacesThenThatOfTheInterval) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->raIntervalMaxMsecIs(4000);
  intf->dnsServersLifetimeIs(100);
  auto const server = intf->dnsServersIs(addrOf("2001:db8::53"));
  server->lifetimeIs(7);
  auto const lifetime = [&] { return server->validLifetime(intf->validDnsServersLifetime()); };
  EXPECT_EQ(lifetime(), 6u);
  intf->dnsServersLifetimeConfiguredIs(true);
  EXPECT_EQ(lifetime(), 100u);
  server->lifetimeConfiguredIs(true);
  EXPECT_EQ(lifetime(), 7u);
}

struct HopLimitRow {
  U32 hopLimit;
  U32 valid;
  friend void PrintTo(HopLimitRow const& r, std::ostream* os) { *os << r.hopLimit; }
};
class ValidHopLimit : public testing::TestWithParam<HopLimitRow> {};
TEST_P(ValidHopLimit, IsTheHopLimitButAtMost255) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->hopLimitIs(GetParam().hopLimit);
  EXPECT_EQ(intf->validHopLimit(), GetParam().valid);
  EXPECT_EQ(intf->hopLimit(), GetParam().hopLimit);
}
INSTANTIATE_TEST_SUITE_P(All, ValidHopLimit,
                         testing::Values(HopLimitRow{0, 0}, HopLimitRow{1, 1}, HopLimitRow{64, 64},
                                         HopLimitRow{255, 255}, HopLimitRow{256, 255}, HopLimitRow{4294967295, 255}),
                         [](auto const& row) { return "Of" + std::to_string(row.param.hopLimit); });

TEST(IntfConfig, DerivedOperationsChangeNothingAndTellNobody) {
  auto const intf = intfConfigFactory("Ethernet1");
  intf->prefixesIs(prefixOf("2001:db8::/64"));
  intf->hopLimitIs(1000);
  auto const before = snapshot(Fwk::objectRef(*intf));
  Changes changes(*intf);
  IntfConfig const& reader = *intf;
  U32 suppressed = 99;
  EXPECT_TRUE(reader.prefixesToAdvertise());
  EXPECT_EQ(reader.numPrefixesToAdvertise(&suppressed), 1u);
  EXPECT_EQ(reader.validDnsServersLifetime(), 300u);
  EXPECT_EQ(reader.validDnsSuffixesLifetime(), 300u);
  EXPECT_EQ(reader.validHopLimit(), 255u);
  EXPECT_EQ(snapshot(Fwk::objectRef(*intf)), before);
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST(IntfConfig, DerivedAttributesAreReadThroughReflectionAsTheyAreNow) {
  auto const intf = intfConfigFactory("Ethernet1");
  auto const object = Fwk::objectRef(*intf);
  intf->prefixesIs(prefixOf("2001:db8::/64"));
  intf->raIntervalMaxMsecIs(4000);
  intf->hopLimitIs(1000);
  EXPECT_EQ(readText(object, 278), "true");
  EXPECT_EQ(readText(object, 287), "6");
  EXPECT_EQ(readText(object, 292), "6");
  EXPECT_EQ(readText(object, 298), "255");
}

TEST(IntfConfig, ItsListOfPrefixesMayBeEmptiedWhileItIsWalked) {
  auto const intf = intfConfigFactory("Ethernet1");
  for (int i = 1; i <= 20; ++i) intf->prefixesIs(prefixOf(("2001:db8:" + std::to_string(i) + "::/64").c_str()));
  int met = 0;
  for (auto const& [key, entry] : intf->prefixes()) {
    EXPECT_EQ(key, entry->prefix());
    ++met;
    intf->prefixesDelAll();
  }
  EXPECT_EQ(met, 1);
  EXPECT_FALSE(intf->prefixesToAdvertise());
}

TEST(IntfConfig, ANewOneTakesAtMost400Octets) { EXPECT_LE(sizeof(IntfConfig), 400u); }

}  // namespace

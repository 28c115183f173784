#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::DNSServerConfigEntry;

TEST(DNSServerConfigEntry, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  using enum AttributeKind;
  using T = DNSServerConfigEntry;
  AttributeRow const rows[] = {
      {258, T::ipAddrAttr, "ipAddr", key, "Ip6Addr", "2001:db8::53"},
      {259, T::lifetimeAttr, "lifetime", scalar, "U32", "300", true},
      {260, T::lifetimeDefaultAttr, "lifetimeDefault", constant, "U32", "300"},
      {261, T::lifetimeConfiguredAttr, "lifetimeConfigured", scalar, "bool", "false", true},
      {262, T::validLifetimeAttr, "validLifetime", computed, "U32", nullptr},  // takes an argument
  };
  auto const entry = DNSServerConfigEntry::DNSServerConfigEntryIs(addrOf("2001:db8::53"));
  EXPECT_STREQ(DNSServerConfigEntry::typeRecord().name, "RouterAdvt::DNSServerConfigEntry");
  expectAttributes(entry->fwkType(), Fwk::objectRef(*entry), rows);
}

TEST(DNSServerConfigEntry, NameIsEmptyAndItsIdentityIsItsKey) {
  auto const entry = DNSServerConfigEntry::DNSServerConfigEntryIs(addrOf("2001:db8::53"));
  EXPECT_TRUE(entry->name().empty());
  EXPECT_EQ(entry->ipAddr(), addrOf("2001:db8::53"));
  EXPECT_EQ(entry->keyText(), "2001:db8::53");
  EXPECT_EQ(entry->parent(), nullptr);
}

TEST(DNSServerConfigEntry, EachSetterTellsOnceAndTouchesNothingElse) {
  using T = DNSServerConfigEntry;
  auto const intf = RouterAdvt::intfConfigFactory("Ethernet1");
  auto const entry = intf->dnsServersIs(addrOf("2001:db8::53"));
  expectSetter(entry, 259, "lifetime", &T::lifetime, &T::lifetimeIs, 300, 0xffffffff);
  expectSetter(entry, 261, "lifetimeConfigured", &T::lifetimeConfigured, &T::lifetimeConfiguredIs, false, true);
}

TEST(DNSServerConfigEntry, TheDefaultLifetimeIs300Seconds) {
  static_assert(DNSServerConfigEntry::lifetimeDefault() == 300);
}

TEST(DNSServerConfigEntry, SettingTheLifetimeDoesNotMarkItConfigured) {
  auto const entry = DNSServerConfigEntry::DNSServerConfigEntryIs(addrOf("2001:db8::53"));
  entry->lifetimeIs(7);
  EXPECT_FALSE(entry->lifetimeConfigured());
}

TEST(DNSServerConfigEntry, AnUnconfiguredLifetimeOf7GivesWayToTheFallbackOf300) {
  auto const entry = DNSServerConfigEntry::DNSServerConfigEntryIs(addrOf("2001:db8::53"));
  entry->lifetimeIs(7);
  EXPECT_EQ(entry->validLifetime(300), 300u);
}

TEST(DNSServerConfigEntry, TheUnconfiguredDefaultIsNeverUsed) {
  auto const entry = DNSServerConfigEntry::DNSServerConfigEntryIs(addrOf("2001:db8::53"));
  EXPECT_EQ(entry->validLifetime(5), 5u);
  EXPECT_EQ(entry->validLifetime(0), 0u);
}

TEST(DNSServerConfigEntry, AConfiguredLifetimeIsTakenExactlyAsItIsStored) {
  auto const entry = DNSServerConfigEntry::DNSServerConfigEntryIs(addrOf("2001:db8::53"));
  entry->lifetimeConfiguredIs(true);
  EXPECT_EQ(entry->validLifetime(5), 300u);
  entry->lifetimeIs(0);
  EXPECT_EQ(entry->validLifetime(5), 0u);
  entry->lifetimeIs(0xffffffff);
  EXPECT_EQ(entry->validLifetime(5), 0xffffffffu);
}

TEST(DNSServerConfigEntry, ItsValidLifetimeIsReadByReflectionForAFallback) {
  auto const entry = DNSServerConfigEntry::DNSServerConfigEntryIs(addrOf("2001:db8::53"));
  std::string text;
  EXPECT_TRUE(Fwk::readAttribute(Fwk::objectRef(*entry), "validLifetime", "600", text));
  EXPECT_EQ(text, "600");
  entry->lifetimeConfiguredIs(true);
  text.clear();
  EXPECT_TRUE(Fwk::readAttribute(Fwk::objectRef(*entry), DNSServerConfigEntry::validLifetimeAttr, "600", text));
  EXPECT_EQ(text, "300");
}

}  // namespace

#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::DNSSuffixConfigEntry;

TEST(DNSSuffixConfigEntry, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  using enum AttributeKind;
  using T = DNSSuffixConfigEntry;
  AttributeRow const rows[] = {
      {258, T::suffixAttr, "suffix", key, "String", "example.com"},
      {259, T::lifetimeAttr, "lifetime", scalar, "U32", "300", true},
      {260, T::lifetimeDefaultAttr, "lifetimeDefault", constant, "U32", "300"},
      {261, T::lifetimeConfiguredAttr, "lifetimeConfigured", scalar, "bool", "false", true},
      {262, T::validLifetimeAttr, "validLifetime", computed, "U32", nullptr},  // takes an argument
  };
  auto const entry = DNSSuffixConfigEntry::DNSSuffixConfigEntryIs("example.com");
  EXPECT_STREQ(DNSSuffixConfigEntry::typeRecord().name, "RouterAdvt::DNSSuffixConfigEntry");
  expectAttributes(entry->fwkType(), Fwk::objectRef(*entry), rows);
}

TEST(DNSSuffixConfigEntry, NameIsEmptyAndItsIdentityIsItsKey) {
  auto const entry = DNSSuffixConfigEntry::DNSSuffixConfigEntryIs("example.com");
  EXPECT_TRUE(entry->name().empty());
  EXPECT_EQ(entry->suffix(), "example.com");
  EXPECT_EQ(entry->keyText(), "example.com");
  EXPECT_EQ(entry->parent(), nullptr);
}

TEST(DNSSuffixConfigEntry, EachSetterTellsOnceAndTouchesNothingElse) {
  using T = DNSSuffixConfigEntry;
  auto const intf = RouterAdvt::intfConfigFactory("Ethernet1");
  auto const entry = intf->dnsSuffixesIs("example.com");
  expectSetter(entry, 259, "lifetime", &T::lifetime, &T::lifetimeIs, 300, 0xffffffff);
  expectSetter(entry, 261, "lifetimeConfigured", &T::lifetimeConfigured, &T::lifetimeConfiguredIs, false, true);
}

TEST(DNSSuffixConfigEntry, TheDefaultLifetimeIs300Seconds) {
  static_assert(DNSSuffixConfigEntry::lifetimeDefault() == 300);
}

TEST(DNSSuffixConfigEntry, SettingTheLifetimeDoesNotMarkItConfigured) {
  auto const entry = DNSSuffixConfigEntry::DNSSuffixConfigEntryIs("example.com");
  entry->lifetimeIs(7);
  EXPECT_FALSE(entry->lifetimeConfigured());
}

TEST(DNSSuffixConfigEntry, AnUnconfiguredLifetimeOf7GivesWayToTheFallbackOf300) {
  auto const entry = DNSSuffixConfigEntry::DNSSuffixConfigEntryIs("example.com");
  entry->lifetimeIs(7);
  EXPECT_EQ(entry->validLifetime(300), 300u);
}

TEST(DNSSuffixConfigEntry, TheUnconfiguredDefaultIsNeverUsed) {
  auto const entry = DNSSuffixConfigEntry::DNSSuffixConfigEntryIs("example.com");
  EXPECT_EQ(entry->validLifetime(5), 5u);
  EXPECT_EQ(entry->validLifetime(0), 0u);
}

TEST(DNSSuffixConfigEntry, AConfiguredLifetimeIsTakenExactlyAsItIsStored) {
  auto const entry = DNSSuffixConfigEntry::DNSSuffixConfigEntryIs("example.com");
  entry->lifetimeConfiguredIs(true);
  EXPECT_EQ(entry->validLifetime(5), 300u);
  entry->lifetimeIs(0);
  EXPECT_EQ(entry->validLifetime(5), 0u);
  entry->lifetimeIs(0xffffffff);
  EXPECT_EQ(entry->validLifetime(5), 0xffffffffu);
}

TEST(DNSSuffixConfigEntry, ItsValidLifetimeIsReadByReflectionForAFallback) {
  auto const entry = DNSSuffixConfigEntry::DNSSuffixConfigEntryIs("example.com");
  std::string text;
  EXPECT_TRUE(Fwk::readAttribute(Fwk::objectRef(*entry), "validLifetime", "600", text));
  EXPECT_EQ(text, "600");
  entry->lifetimeConfiguredIs(true);
  text.clear();
  EXPECT_TRUE(Fwk::readAttribute(Fwk::objectRef(*entry), DNSSuffixConfigEntry::validLifetimeAttr, "600", text));
  EXPECT_EQ(text, "300");
}

}  // namespace

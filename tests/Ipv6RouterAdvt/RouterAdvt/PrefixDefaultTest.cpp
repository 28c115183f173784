#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::PrefixDefault;

TEST(PrefixDefault, HasTheBuiltInPrefixParametersAsConstantsInTheirOrder) {
  AttributeRow const rows[] = {
      {258, PrefixDefault::noAdvertiseAttr, "noAdvertise", AttributeKind::constant, "bool", "false"},
      {259, PrefixDefault::validLifetimeAttr, "validLifetime", AttributeKind::constant, "U32", "2592000"},
      {260, PrefixDefault::preferredLifetimeAttr, "preferredLifetime", AttributeKind::constant, "U32", "604800"},
      {261, PrefixDefault::noOnLinkAttr, "noOnLink", AttributeKind::constant, "bool", "false"},
      {262, PrefixDefault::noAutoConfigAttr, "noAutoConfig", AttributeKind::constant, "bool", "false"},
  };
  PrefixDefault value;
  EXPECT_STREQ(PrefixDefault::typeRecord().name, "RouterAdvt::PrefixDefault");
  EXPECT_EQ(PrefixDefault::typeRecord().kind, Fwk::TypeKind::value);
  EXPECT_TRUE(PrefixDefault::typeRecord().baseAttributes().empty());
  expectAttributes(PrefixDefault::typeRecord(), {&value, &PrefixDefault::typeRecord()}, rows);
}

TEST(PrefixDefault, ConstantsAreKnownToTheCompiler) {
  static_assert(!PrefixDefault::noAdvertise());
  static_assert(PrefixDefault::validLifetime() == 2592000);
  static_assert(PrefixDefault::preferredLifetime() == 604800);
  static_assert(!PrefixDefault::noOnLink());
  static_assert(!PrefixDefault::noAutoConfig());
  static_assert(std::is_empty_v<PrefixDefault>, "nothing is stored");
}

TEST(PrefixDefault, AnyTwoAreEqual) {
  PrefixDefault const one, another;
  PrefixDefault const copy = one;
  EXPECT_TRUE(one == another);
  EXPECT_TRUE(one == one);
  EXPECT_TRUE(copy == another);
  EXPECT_FALSE(one != another);
}

TEST(PrefixDefault, ANewPrefixEntryAndANewProfileStartFromIt) {
  auto const entry = RouterAdvt::PrefixConfigEntry::PrefixConfigEntryIs(prefixOf("2001:db8::/64"));
  auto const profile = RouterAdvt::PrefixProfileEntry::PrefixProfileEntryIs("guest");
  EXPECT_EQ(entry->noAdvertise(), PrefixDefault::noAdvertise());
  EXPECT_EQ(entry->validLifetime(), PrefixDefault::validLifetime());
  EXPECT_EQ(entry->preferredLifetime(), PrefixDefault::preferredLifetime());
  EXPECT_EQ(entry->noOnLink(), PrefixDefault::noOnLink());
  EXPECT_EQ(entry->noAutoConfig(), PrefixDefault::noAutoConfig());
  EXPECT_EQ(profile->noAdvertise(), PrefixDefault::noAdvertise());
  EXPECT_EQ(profile->validLifetime(), PrefixDefault::validLifetime());
  EXPECT_EQ(profile->preferredLifetime(), PrefixDefault::preferredLifetime());
  EXPECT_EQ(profile->noOnLink(), PrefixDefault::noOnLink());
  EXPECT_EQ(profile->noAutoConfig(), PrefixDefault::noAutoConfig());
}

}  // namespace

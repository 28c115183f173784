#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::RaPacketPrefixInfo;

TEST(RaPacketPrefixInfo, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  using enum AttributeKind;
  using T = RaPacketPrefixInfo;
  AttributeRow const rows[] = {
      {258, T::prefixAttr, "prefix", scalar, "Ip6AddrWithMask", "::/0"},
      {259, T::onLinkFlagAttr, "onLinkFlag", scalar, "bool", "false", true},
      {260, T::autoConfigFlagAttr, "autoConfigFlag", scalar, "bool", "false", true},
      {261, T::validLifetimeAttr, "validLifetime", scalar, "U32", "0", true},
      {262, T::preferredLifetimeAttr, "preferredLifetime", scalar, "U32", "0", true},
  };
  RaPacketPrefixInfo info;
  EXPECT_STREQ(T::typeRecord().name, "RouterAdvt::RaPacketPrefixInfo");
  EXPECT_EQ(T::typeRecord().kind, Fwk::TypeKind::value);
  EXPECT_TRUE(T::typeRecord().baseAttributes().empty());
  expectAttributes(T::typeRecord(), {&info, &T::typeRecord()}, rows);
}

TEST(RaPacketPrefixInfo, TheDefaultOneMarksAnAbsentEntry) {
  RaPacketPrefixInfo const info;
  EXPECT_EQ(info.prefix(), prefixOf("::/0"));
  EXPECT_FALSE(info.onLinkFlag());
  EXPECT_FALSE(info.autoConfigFlag());
  EXPECT_EQ(info.validLifetime(), 0u);
  EXPECT_EQ(info.preferredLifetime(), 0u);
}

TEST(RaPacketPrefixInfo, MadeFromAPrefixItHasTheOtherDefaults) {
  RaPacketPrefixInfo const info(prefixOf("2001:db8::1/64"));
  EXPECT_EQ(info.prefix(), prefixOf("2001:db8::1/64"));
  EXPECT_FALSE(info.onLinkFlag());
  EXPECT_FALSE(info.autoConfigFlag());
  EXPECT_EQ(info.validLifetime(), 0u);
  EXPECT_EQ(info.preferredLifetime(), 0u);
}

TEST(RaPacketPrefixInfo, EachSetterStoresItsAttributeAloneAndMakesTheValueUnequal) {
  using T = RaPacketPrefixInfo;
  T const info(prefixOf("2001:db8::/64"));
  expectValueSetter(info, "onLinkFlag", &T::onLinkFlag, &T::onLinkFlagIs, false, true);
  expectValueSetter(info, "autoConfigFlag", &T::autoConfigFlag, &T::autoConfigFlagIs, false, true);
  expectValueSetter(info, "validLifetime", &T::validLifetime, &T::validLifetimeIs, 0, 0xffffffff);
  expectValueSetter(info, "preferredLifetime", &T::preferredLifetime, &T::preferredLifetimeIs, 0, 0xffffffff);
}

TEST(RaPacketPrefixInfo, IsUnequalWhenThePrefixDiffersInAddressOrLength) {
  RaPacketPrefixInfo const info(prefixOf("2001:db8::/64"));
  EXPECT_TRUE(info == RaPacketPrefixInfo(prefixOf("2001:db8::/64")));
  EXPECT_FALSE(info == RaPacketPrefixInfo(prefixOf("2001:db8::/63")));
  EXPECT_FALSE(info == RaPacketPrefixInfo(prefixOf("2001:db9::/64")));
  EXPECT_FALSE(info == RaPacketPrefixInfo());
}

TEST(RaPacketPrefixInfo, APrefixLengthAbove128IsKeptAsItIs) {
  RaPacketPrefixInfo const info(Net::Ip6AddrWithMask(addrOf("2001:db8::"), 200));
  EXPECT_EQ(info.prefix().maskLen(), 200);
  EXPECT_EQ(info, info);
}

}  // namespace

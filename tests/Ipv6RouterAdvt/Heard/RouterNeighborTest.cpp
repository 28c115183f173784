#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::RouterNeighbor;

RouterNeighbor const router("Ethernet1", "blue", addrOf("fe80::1"));

TEST(RouterNeighbor, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  using enum AttributeKind;
  using T = RouterNeighbor;
  AttributeRow const rows[] = {
      {258, T::intfIdAttr, "intfId", scalar, "IntfId", ""},
      {259, T::vrfAttr, "vrf", scalar, "VrfName", ""},
      {260, T::linkLocalAddrAttr, "linkLocalAddr", scalar, "Ip6Addr", "::"},
  };
  RouterNeighbor value;
  EXPECT_STREQ(T::typeRecord().name, "RouterAdvt::RouterNeighbor");
  EXPECT_EQ(T::typeRecord().kind, Fwk::TypeKind::value);
  expectAttributes(T::typeRecord(), {&value, &T::typeRecord()}, rows);
}

TEST(RouterNeighbor, TheDefaultOneHasEveryAttributeEmpty) {
  RouterNeighbor const value;
  EXPECT_EQ(value.intfId(), "");
  EXPECT_EQ(value.vrf(), "");
  EXPECT_TRUE(value.linkLocalAddr().isUnspecified());
}

TEST(RouterNeighbor, IsMadeFromAllThreeAttributesInTheirOrder) {
  EXPECT_EQ(router.intfId(), "Ethernet1");
  EXPECT_EQ(router.vrf(), "blue");
  EXPECT_EQ(router.linkLocalAddr(), addrOf("fe80::1"));
  auto const object = Fwk::objectRef(router);
  EXPECT_EQ(readText(object, 258), "Ethernet1");
  EXPECT_EQ(readText(object, 259), "blue");
  EXPECT_EQ(readText(object, 260), "fe80::1");
}

TEST(RouterNeighbor, IsEqualWhenAllThreeAttributesAre) {
  EXPECT_TRUE(router == RouterNeighbor("Ethernet1", "blue", addrOf("fe80::1")));
  EXPECT_FALSE(router == RouterNeighbor("Ethernet2", "blue", addrOf("fe80::1")));
  EXPECT_FALSE(router == RouterNeighbor("Ethernet1", "blue", addrOf("fe80::2")));
}

TEST(RouterNeighbor, WithEqualInterfaceAndAddressButAnotherVrfIsUnequal) {
  EXPECT_FALSE(router == RouterNeighbor("Ethernet1", "red", addrOf("fe80::1")));
  EXPECT_TRUE(router != RouterNeighbor("Ethernet1", "", addrOf("fe80::1")));
}

TEST(RouterNeighbor, NotIsTrueForTheDefaultValueAlone) {
  EXPECT_TRUE(!RouterNeighbor());
  EXPECT_TRUE(!RouterNeighbor("", "", Net::Ip6Addr()));
  EXPECT_FALSE(!RouterNeighbor("Ethernet1", "", Net::Ip6Addr()));
  EXPECT_FALSE(!RouterNeighbor("", "blue", Net::Ip6Addr()));
  EXPECT_FALSE(!RouterNeighbor("", "", addrOf("fe80::1")));
}

}  // namespace

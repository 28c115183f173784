#include <RouterPlatform/Ip6/VirtualRouterStatusV6.h>
#include <tests/RouterPlatform/Support/ModelTest.h>

namespace {

using namespace ModelTest;
using Ip6::VirtualRouterStatusV6;

TEST(VirtualRouterStatusV6, HasTheAttributeOfItsTableWithItsNumber) {
  AttributeRow const rows[] = {
      {258, VirtualRouterStatusV6::prefixAttr, "prefix", AttributeKind::collection, "Ip6AddrWithMask", nullptr},
  };
  auto const router = VirtualRouterStatusV6::VirtualRouterStatusV6Is("vrrp-1");
  EXPECT_STREQ(VirtualRouterStatusV6::typeRecord().name, "Ip6::VirtualRouterStatusV6");
  EXPECT_EQ(VirtualRouterStatusV6::typeRecord().kind, Fwk::TypeKind::entity);
  EXPECT_EQ(VirtualRouterStatusV6::typeRecord().keyAttribute(), nullptr);
  EXPECT_EQ(&router->fwkType(), &VirtualRouterStatusV6::typeRecord());
  expectAttributes(router->fwkType(), Fwk::objectRef(*router), rows);
}

TEST(VirtualRouterStatusV6, IsMadeWithItsNameAndWithoutPrefixes) {
  auto const before = liveCount<VirtualRouterStatusV6>();
  auto router = VirtualRouterStatusV6::VirtualRouterStatusV6Is("vrrp-1");
  EXPECT_EQ(router->name(), "vrrp-1");
  EXPECT_EQ(router->key(), "vrrp-1");
  EXPECT_EQ(router->keyText(), "vrrp-1");
  EXPECT_EQ(router->parent(), nullptr);
  EXPECT_TRUE(router->prefix().empty());
  EXPECT_EQ(router->references(), 1u);
  EXPECT_TRUE(router->hasNotificationActive());
  EXPECT_EQ(liveCount<VirtualRouterStatusV6>(), before + 1);
  router = nullptr;
  EXPECT_EQ(liveCount<VirtualRouterStatusV6>(), before);
}

TEST(VirtualRouterStatusV6, IsMadeFromTheTextOfItsName) {
  auto const made = VirtualRouterStatusV6::typeRecord().create("vrrp-2");
  ASSERT_NE(Fwk::ptrCast<VirtualRouterStatusV6>(made), nullptr);
  EXPECT_EQ(made->name(), "vrrp-2");
  EXPECT_EQ(VirtualRouterStatusV6::typeRecord().create(std::string(Fwk::Name::maxSize + 1, 'x')), nullptr);
}

TEST(VirtualRouterStatusV6, APrefixIsAddedOnceWithItsHostBitsAndTold) {
  auto const router = VirtualRouterStatusV6::VirtualRouterStatusV6Is("vrrp-1");
  Changes changes(*router);
  router->prefixIs(prefixOf("2001:db8::5/64"));
  router->prefixIs(prefixOf("2001:db8::5/64"));
  EXPECT_EQ(changes.take(), (ChangeList{{258, "2001:db8::5/64"}}));
  EXPECT_TRUE(router->prefix(prefixOf("2001:db8::5/64")));
  EXPECT_FALSE(router->prefix(prefixOf("2001:db8::/64")));
}

TEST(VirtualRouterStatusV6, APrefixIsRemovedOnceAndTold) {
  auto const router = VirtualRouterStatusV6::VirtualRouterStatusV6Is("vrrp-1");
  router->prefixIs(prefixOf("2001:db8::/64"));
  Changes changes(*router);
  EXPECT_TRUE(router->prefixDel(prefixOf("2001:db8::/64")));
  EXPECT_FALSE(router->prefixDel(prefixOf("2001:db8::/64")));
  EXPECT_EQ(changes.take(), (ChangeList{{258, "2001:db8::/64"}}));
  EXPECT_TRUE(router->prefix().empty());
}

TEST(VirtualRouterStatusV6, AllPrefixesAreRemovedInTheirOrderEachToldOfItsOwn) {
  auto const router = VirtualRouterStatusV6::VirtualRouterStatusV6Is("vrrp-1");
  for (char const* const text : {"2001:db8:3::/64", "2001:db8:1::/64"}) router->prefixIs(prefixOf(text));
  Changes changes(*router);
  router->prefixDelAll();
  EXPECT_EQ(changes.take(), (ChangeList{{258, "2001:db8:3::/64"}, {258, "2001:db8:1::/64"}}));
  EXPECT_TRUE(router->prefix().empty());
}

}  // namespace

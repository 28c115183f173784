#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::RouterNeighbors;

struct RouterNeighborsTest : testing::Test {
  Ptr<RouterNeighbors> neighbors = RouterNeighbors::RouterNeighborsIs("Ethernet1");
  Changes changes{*neighbors};

  static Change changeOf(char const* addr) { return {259, addr}; }
};

TEST_F(RouterNeighborsTest, HasTheAttributesOfItsTableWithTheirNumbers) {
  AttributeRow const rows[] = {
      {258, RouterNeighbors::intfIdAttr, "intfId", AttributeKind::key, "IntfId", "Ethernet1"},
      {259, RouterNeighbors::linkLocalAddrAttr, "linkLocalAddr", AttributeKind::collection, "Ip6Addr", nullptr},
  };
  EXPECT_STREQ(RouterNeighbors::typeRecord().name, "RouterAdvt::RouterNeighbors");
  expectAttributes(neighbors->fwkType(), Fwk::objectRef(*neighbors), rows);
  auto const& collection = *RouterNeighbors::typeRecord().attribute("linkLocalAddr")->collection;
  EXPECT_STREQ(collection.keyTypeName, "Ip6Addr");
  EXPECT_STREQ(collection.memberTypeName, "");
}

TEST_F(RouterNeighborsTest, NameIsEmptyAndItsIdentityIsItsIntfId) {
  EXPECT_TRUE(neighbors->name().empty());
  EXPECT_EQ(neighbors->intfId(), "Ethernet1");
  EXPECT_EQ(neighbors->parent(), nullptr);
  EXPECT_TRUE(neighbors->linkLocalAddr().empty());
}

TEST_F(RouterNeighborsTest, AddingAnAddressTellsOnceWithTheAddress) {
  neighbors->linkLocalAddrIs(addrOf("fe80::1"));
  EXPECT_EQ(changes.take(), ChangeList{changeOf("fe80::1")});
  EXPECT_TRUE(neighbors->linkLocalAddr(addrOf("fe80::1")));
  EXPECT_FALSE(neighbors->linkLocalAddr(addrOf("fe80::2")));
}

TEST_F(RouterNeighborsTest, ObserversFindTheNewStateAndAreGivenTheAddress) {
  std::vector<bool> present;
  Changes const looking(*neighbors, [&](Fwk::Notification const& told) {
    auto const* const key = told.key.as<Net::Ip6Addr>();
    ASSERT_NE(key, nullptr);
    present.push_back(neighbors->linkLocalAddr(*key));
  });
  neighbors->linkLocalAddrIs(addrOf("fe80::1"));
  neighbors->linkLocalAddrDel(addrOf("fe80::1"));
  EXPECT_EQ(present, (std::vector<bool>{true, false}));
}

TEST_F(RouterNeighborsTest, AddingAnAddressThatIsThereTellsNobody) {
  neighbors->linkLocalAddrIs(addrOf("fe80::1"));
  changes.take();
  neighbors->linkLocalAddrIs(addrOf("fe80::1"));
  EXPECT_EQ(changes.take(), ChangeList{});
  EXPECT_EQ(neighbors->linkLocalAddr().size(), 1u);
}

TEST_F(RouterNeighborsTest, RemovingReturnsWhetherTheAddressWasThereAndTellsOnlyThen) {
  neighbors->linkLocalAddrIs(addrOf("fe80::1"));
  changes.take();
  EXPECT_FALSE(neighbors->linkLocalAddrDel(addrOf("fe80::2")));
  EXPECT_EQ(changes.take(), ChangeList{});
  EXPECT_TRUE(neighbors->linkLocalAddrDel(addrOf("fe80::1")));
  EXPECT_EQ(changes.take(), ChangeList{changeOf("fe80::1")});
  EXPECT_FALSE(neighbors->linkLocalAddrDel(addrOf("fe80::1")));
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST_F(RouterNeighborsTest, RemovingAllTellsOncePerAddress) {
  for (char const* const addr : {"fe80::3", "fe80::1", "fe80::2"}) neighbors->linkLocalAddrIs(addrOf(addr));
  changes.take();
  neighbors->linkLocalAddrDelAll();
  EXPECT_EQ(changes.take(), (ChangeList{changeOf("fe80::3"), changeOf("fe80::1"), changeOf("fe80::2")}));
  EXPECT_TRUE(neighbors->linkLocalAddr().empty());
}

TEST_F(RouterNeighborsTest, IsWalkedInTheOrderOfAddition) {
  for (char const* const addr : {"fe80::3", "fe80::1", "fe80::2"}) neighbors->linkLocalAddrIs(addrOf(addr));
  std::vector<std::string> walked;
  for (Net::Ip6Addr const addr : neighbors->linkLocalAddr()) walked.push_back(addr.toString());
  EXPECT_EQ(walked, (std::vector<std::string>{"fe80::3", "fe80::1", "fe80::2"}));
}

TEST_F(RouterNeighborsTest, TheSetIsReadAndChangedThroughReflection) {
  auto const use = [&](Fwk::CollectionView const& addrs) {
    EXPECT_TRUE(addrs.set("fe80::1"));
    EXPECT_EQ(addrs.set("1").error, Fwk::ReflectionError::malformed);
    EXPECT_TRUE(addrs.contains("fe80::1"));
    EXPECT_FALSE(addrs.contains("fe80::2"));
    EXPECT_EQ(addrs.size(), 1u);
    EXPECT_TRUE(addrs.del("fe80::1"));
    EXPECT_EQ(addrs.del("fe80::1").error, Fwk::ReflectionError::noSuchMember);
  };
  EXPECT_TRUE(Fwk::reflectCollection(Fwk::objectRef(*neighbors), "linkLocalAddr", use));
  EXPECT_EQ(changes.take(), (ChangeList{changeOf("fe80::1"), changeOf("fe80::1")}));
}

}  // namespace

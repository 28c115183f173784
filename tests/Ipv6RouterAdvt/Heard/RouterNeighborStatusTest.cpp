#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::IntfId;
using RouterAdvt::RouterNeighbor;
using RouterAdvt::RouterNeighbors;
using RouterAdvt::RouterNeighborStatus;

RouterNeighbor routerOf(char const* intfId, char const* vrf = "", char const* addr = "fe80::1") {
  return RouterNeighbor(intfId, vrf, addrOf(addr));
}

struct RouterNeighborStatusTest : testing::Test {
  Ptr<RouterNeighborStatus> status = RouterAdvt::routerNeighborStatusFactory("routers");
  Changes changes{*status};

  static Change routerChangeOf(char const* intfId) { return {258, intfId}; }
  static Change neighborChangeOf(char const* intfId) { return {259, intfId}; }
};

TEST_F(RouterNeighborStatusTest, HasTheAttributesOfItsTableWithTheirNumbers) {
  using T = RouterNeighborStatus;
  AttributeRow const rows[] = {
      {258, T::routerNeighborAttr, "routerNeighbor", AttributeKind::collection, "RouterAdvt::RouterNeighbor", nullptr},
      {259, T::neighborAttr, "neighbor", AttributeKind::collection, "RouterAdvt::RouterNeighbors", nullptr},
  };
  EXPECT_STREQ(T::typeRecord().name, "RouterAdvt::RouterNeighborStatus");
  EXPECT_STREQ(T::typeRecord().attribute("routerNeighbor")->collection->keyTypeName, "IntfId");
  EXPECT_STREQ(T::typeRecord().attribute("neighbor")->collection->keyTypeName, "IntfId");
  expectAttributes(status->fwkType(), Fwk::objectRef(*status), rows);
}

TEST_F(RouterNeighborStatusTest, IsIdentifiedByItsNameAndEmptyAtFirst) {
  EXPECT_EQ(status->name(), "routers");
  EXPECT_TRUE(status->routerNeighbor().empty());
  EXPECT_TRUE(status->neighbor().empty());
}

TEST_F(RouterNeighborStatusTest, TheRouterOfAnAbsentInterfaceIsTheDefaultValue) {
  EXPECT_TRUE(!status->routerNeighbor("Ethernet1"));
}

TEST_F(RouterNeighborStatusTest, StoresARouterUnderItsOwnInterfaceAndTells) {
  status->routerNeighborIs(routerOf("Ethernet1", "blue"));
  EXPECT_EQ(changes.take(), ChangeList{routerChangeOf("Ethernet1")});
  EXPECT_EQ(status->routerNeighbor("Ethernet1"), routerOf("Ethernet1", "blue"));
}

TEST_F(RouterNeighborStatusTest, ObserversFindTheNewRouterAndAreGivenItsInterface) {
  RouterNeighbor seen;
  Changes const looking(*status, [&](Fwk::Notification const& told) {
    IntfId const* const key = told.key.as<IntfId>();
    ASSERT_NE(key, nullptr);
    seen = status->routerNeighbor(*key);
  });
  status->routerNeighborIs(routerOf("Ethernet1", "blue"));
  EXPECT_EQ(seen, routerOf("Ethernet1", "blue"));
  status->routerNeighborDel("Ethernet1");
  EXPECT_TRUE(!seen);
}

TEST_F(RouterNeighborStatusTest, AnEqualRouterTellsNobody) {
  status->routerNeighborIs(routerOf("Ethernet1", "blue"));
  changes.take();
  status->routerNeighborIs(routerOf("Ethernet1", "blue"));
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST_F(RouterNeighborStatusTest, ARouterThatDiffersOnlyInItsVrfOverwritesAndTellsOnce) {
  status->routerNeighborIs(routerOf("Ethernet1", "blue"));
  changes.take();
  status->routerNeighborIs(routerOf("Ethernet1", "red"));
  EXPECT_EQ(changes.take(), ChangeList{routerChangeOf("Ethernet1")});
  EXPECT_EQ(status->routerNeighbor("Ethernet1").vrf(), "red");
  EXPECT_EQ(status->routerNeighbor().size(), 1u);
}

TEST_F(RouterNeighborStatusTest, DeletingARouterReturnsItAndTells) {
  status->routerNeighborIs(routerOf("Ethernet1", "blue"));
  changes.take();
  EXPECT_EQ(status->routerNeighborDel("Ethernet1"), routerOf("Ethernet1", "blue"));
  EXPECT_EQ(changes.take(), ChangeList{routerChangeOf("Ethernet1")});
  EXPECT_TRUE(status->routerNeighbor().empty());
}

TEST_F(RouterNeighborStatusTest, DeletingAnAbsentRouterReturnsTheDefaultValueAndTellsNobody) {
  EXPECT_TRUE(!status->routerNeighborDel("Ethernet1"));
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST_F(RouterNeighborStatusTest, DeletingAllRoutersTellsOncePerInterface) {
  for (char const* const intfId : {"Ethernet2", "Ethernet1", "Ethernet3"}) status->routerNeighborIs(routerOf(intfId));
  changes.take();
  status->routerNeighborDelAll();
  EXPECT_EQ(changes.take(),
            (ChangeList{routerChangeOf("Ethernet2"), routerChangeOf("Ethernet1"), routerChangeOf("Ethernet3")}));
  EXPECT_TRUE(status->routerNeighbor().empty());
}

TEST_F(RouterNeighborStatusTest, AskingTwiceForTheNeighborsOfAnInterfaceMakesOneEntity) {
  auto const before = liveCount<RouterNeighbors>();
  auto const neighbors = status->neighborIs("Ethernet1");
  EXPECT_EQ(status->neighborIs("Ethernet1"), neighbors);
  EXPECT_EQ(liveCount<RouterNeighbors>(), before + 1);
  EXPECT_EQ(changes.take(), ChangeList{neighborChangeOf("Ethernet1")});
}

TEST_F(RouterNeighborStatusTest, TheTwoCollectionsAreNotTiedToOneAnother) {
  status->routerNeighborIs(routerOf("Ethernet1"));
  EXPECT_TRUE(status->neighbor().empty());
  status->neighborIs("Ethernet1")->linkLocalAddrIs(addrOf("fe80::1"));
  status->routerNeighborDel("Ethernet1");
  ASSERT_NE(status->neighbor("Ethernet1"), nullptr);
  EXPECT_TRUE(status->neighbor("Ethernet1")->linkLocalAddr(addrOf("fe80::1")));
  status->routerNeighborIs(routerOf("Ethernet1"));
  status->neighborDel("Ethernet1");
  EXPECT_EQ(status->routerNeighbor("Ethernet1"), routerOf("Ethernet1"));
}

TEST_F(RouterNeighborStatusTest, RemovedNeighborsKeepTheirAddressesWhileTheyAreHeld) {
  status->neighborIs("Ethernet1")->linkLocalAddrIs(addrOf("fe80::1"));
  auto const removed = status->neighborDel("Ethernet1");
  EXPECT_EQ(removed->parent(), nullptr);
  EXPECT_TRUE(removed->linkLocalAddr(addrOf("fe80::1")));
  EXPECT_TRUE(status->neighborIs("Ethernet1")->linkLocalAddr().empty());
}

TEST_F(RouterNeighborStatusTest, TheFullNameIsThePathFromTheRoot) {
  EXPECT_EQ(status->neighborIs("Ethernet1")->fullName(), "routers/neighbor[Ethernet1]");
}

}  // namespace

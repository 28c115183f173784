#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <new>

namespace {

using namespace ModelTest;
using RouterAdvt::IntfId;
using RouterAdvt::RaPacket;
using RouterAdvt::RaPacketPrefixInfo;
using RouterAdvt::RaPacketStatus;

RaPacket packetOf(char const* intfId, RouterAdvt::U16 routerLifeTime = 1800) {
  RaPacket packet{IntfId(intfId)};
  packet.routerLifeTimeIs(routerLifeTime);
  return packet;
}

void addPrefix(RaPacket& packet, char const* prefix, RouterAdvt::U32 preferredLifetime = 0) {
  RaPacketPrefixInfo info(prefixOf(prefix));
  info.preferredLifetimeIs(preferredLifetime);
  packet.prefixInfoIs(info.prefix(), info);
}

struct RaPacketStatusTest : testing::Test {
  Ptr<RaPacketStatus> status = Fwk::create<RaPacketStatus>("packets");
  Changes changes{*status};

  static Change changeOf(char const* intfId) { return {258, intfId}; }
};

TEST_F(RaPacketStatusTest, HasTheAttributesOfItsTableWithTheirNumbers) {
  AttributeRow const rows[] = {
      {258, RaPacketStatus::raPacketAttr, "raPacket", AttributeKind::collection, "RouterAdvt::RaPacket", nullptr}};
  EXPECT_STREQ(RaPacketStatus::typeRecord().name, "RouterAdvt::RaPacketStatus");
  EXPECT_STREQ(RaPacketStatus::typeRecord().attribute("raPacket")->collection->keyTypeName, "IntfId");
  expectAttributes(status->fwkType(), Fwk::objectRef(*status), rows);
}

TEST_F(RaPacketStatusTest, IsIdentifiedByItsNameAndEmptyAtFirst) {
  EXPECT_EQ(status->name(), "packets");
  EXPECT_EQ(status->parent(), nullptr);
  EXPECT_TRUE(status->raPacket().empty());
  EXPECT_TRUE(status->hasNotificationActive());
}

TEST_F(RaPacketStatusTest, AnAbsentInterfaceGivesAnEmptyPacket) {
  EXPECT_TRUE(!status->raPacket("Ethernet1"));
  EXPECT_EQ(status->raPacket("Ethernet1").intfId(), "");
}

TEST_F(RaPacketStatusTest, StoresAPacketUnderItsOwnInterfaceAndTells) {
  status->raPacketIs(packetOf("Ethernet1"));
  EXPECT_EQ(changes.take(), ChangeList{changeOf("Ethernet1")});
  EXPECT_EQ(status->raPacket("Ethernet1"), packetOf("Ethernet1"));
  EXPECT_TRUE(status->raPacket().contains("Ethernet1"));
  EXPECT_TRUE(!status->raPacket("Ethernet2"));
}

TEST_F(RaPacketStatusTest, ObserversFindTheNewPacketAndAreGivenItsInterface) {
  RaPacket seen;
  Changes const looking(*status, [&](Fwk::Notification const& told) {
    IntfId const* const key = told.key.as<IntfId>();
    ASSERT_NE(key, nullptr);
    seen = status->raPacket(*key);
  });
  status->raPacketIs(packetOf("Ethernet1", 5));
  EXPECT_EQ(seen, packetOf("Ethernet1", 5));
  status->raPacketIs(packetOf("Ethernet1", 6));
  EXPECT_EQ(seen, packetOf("Ethernet1", 6));
  status->raPacketDel("Ethernet1");
  EXPECT_TRUE(!seen);
}

TEST_F(RaPacketStatusTest, AnEqualPacketTellsNobody) {
  RaPacket packet = packetOf("Ethernet1");
  addPrefix(packet, "2001:db8::/64");
  status->raPacketIs(packet);
  changes.take();
  status->raPacketIs(packet);
  status->raPacketIs(RaPacket(packet));
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST_F(RaPacketStatusTest, APacketThatDiffersOnlyInOnePrefixesPreferredLifetimeOverwritesAndTellsOnce) {
  RaPacket packet = packetOf("Ethernet1");
  addPrefix(packet, "2001:db8:1::/64", 100);
  addPrefix(packet, "2001:db8:2::/64", 100);
  status->raPacketIs(packet);
  changes.take();
  addPrefix(packet, "2001:db8:2::/64", 99);
  status->raPacketIs(packet);
  EXPECT_EQ(changes.take(), ChangeList{changeOf("Ethernet1")});
  EXPECT_EQ(status->raPacket("Ethernet1").prefixInfo(prefixOf("2001:db8:2::/64")).preferredLifetime(), 99u);
}

TEST_F(RaPacketStatusTest, ANewerPacketReplacesThePrefixesToo) {
  RaPacket older = packetOf("Ethernet1");
  addPrefix(older, "2001:db8:1::/64");
  addPrefix(older, "2001:db8:2::/64");
  RaPacket newer = packetOf("Ethernet1");
  addPrefix(newer, "2001:db8:3::/64");
  status->raPacketIs(older);
  status->raPacketIs(newer);
  EXPECT_EQ(status->raPacket("Ethernet1"), newer);
  EXPECT_EQ(status->raPacket("Ethernet1").prefixInfo().size(), 1u);
}

// Equality walks the prefixes side by side, in their order.
TEST_F(RaPacketStatusTest, APacketWithTheSamePrefixesInAnotherOrderOverwritesAndTellsOnce) {
  RaPacket packet = packetOf("Ethernet1");
  addPrefix(packet, "2001:db8:1::/64");
  addPrefix(packet, "2001:db8:2::/64");
  RaPacket turned = packetOf("Ethernet1");
  addPrefix(turned, "2001:db8:2::/64");
  addPrefix(turned, "2001:db8:1::/64");
  status->raPacketIs(packet);
  changes.take();
  status->raPacketIs(turned);
  EXPECT_EQ(changes.take(), ChangeList{changeOf("Ethernet1")});
  EXPECT_EQ((*status->raPacket("Ethernet1").prefixInfo().begin()).key, prefixOf("2001:db8:2::/64"));
}

TEST_F(RaPacketStatusTest, HoldsOnePacketPerInterface) {
  status->raPacketIs(packetOf("Ethernet1", 1));
  status->raPacketIs(packetOf("Ethernet2", 2));
  status->raPacketIs(packetOf("Ethernet1", 3));
  EXPECT_EQ(status->raPacket().size(), 2u);
  EXPECT_EQ(status->raPacket("Ethernet1").routerLifeTime(), 3);
  EXPECT_EQ(status->raPacket("Ethernet2").routerLifeTime(), 2);
}

TEST_F(RaPacketStatusTest, WhatIsStoredAndReadAreCopies) {
  RaPacket packet = packetOf("Ethernet1", 1);
  status->raPacketIs(packet);
  packet.routerLifeTimeIs(2);
  RaPacket read = status->raPacket("Ethernet1");
  read.routerLifeTimeIs(3);
  EXPECT_EQ(status->raPacket("Ethernet1").routerLifeTime(), 1);
}

TEST_F(RaPacketStatusTest, DeletingReturnsThePacketAndTellsWhenItIsGone) {
  status->raPacketIs(packetOf("Ethernet1", 7));
  changes.take();
  EXPECT_EQ(status->raPacketDel("Ethernet1"), packetOf("Ethernet1", 7));
  EXPECT_EQ(changes.take(), ChangeList{changeOf("Ethernet1")});
  EXPECT_TRUE(!status->raPacket("Ethernet1"));
}

TEST_F(RaPacketStatusTest, DeletingAnAbsentInterfaceReturnsAnEmptyPacketAndTellsNobody) {
  status->raPacketIs(packetOf("Ethernet1"));
  changes.take();
  RaPacket const removed = status->raPacketDel("Ethernet2");
  EXPECT_TRUE(!removed);
  EXPECT_EQ(removed.intfId(), "");
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST_F(RaPacketStatusTest, DeletingAllTellsOncePerInterface) {
  for (char const* const intfId : {"Ethernet1", "Ethernet2", "Ethernet3"}) status->raPacketIs(packetOf(intfId));
  changes.take();
  status->raPacketDelAll();
  EXPECT_EQ(changes.take(), (ChangeList{changeOf("Ethernet1"), changeOf("Ethernet2"), changeOf("Ethernet3")}));
  EXPECT_TRUE(status->raPacket().empty());
}

TEST_F(RaPacketStatusTest, APacketThatFindsNoMemoryLeavesTheStoredOneWholeAndTellsNobody) {
  RaPacket former = packetOf("Ethernet1"), next = packetOf("Ethernet1", 0);
  addPrefix(former, "2001:db8::/64");
  for (char const* const prefix : {"2001:db8:1::/64", "2001:db8:2::/64", "2001:db8:3::/64", "2001:db8:4::/64",
                                   "2001:db8:5::/64", "2001:db8:6::/64"})
    addPrefix(next, prefix);
  auto const other = Fwk::create<RaPacketStatus>("others");  // the fixture's observer allocates
  other->raPacketIs(former);
  int told = 0;
  auto const subscription = Fwk::observe(other, [&](Fwk::Notification const&) { ++told; });
  std::size_t allowed = 0;
  for (bool stored = false; !stored; ++allowed) {
    try {
      AllocationFailure const failure(allowed);
      other->raPacketIs(next);
      stored = true;
    } catch (std::bad_alloc const&) {
      EXPECT_EQ(other->raPacket("Ethernet1"), former);
      EXPECT_EQ(told, 0);
    }
  }
  EXPECT_GT(allowed, 1U);
  EXPECT_EQ(other->raPacket("Ethernet1"), next);
  EXPECT_EQ(told, 1);
}

TEST_F(RaPacketStatusTest, DeletingAllAllocatesNothing) {
  for (char const* const intfId : {"Ethernet1", "Ethernet2", "Ethernet3"}) {
    RaPacket packet = packetOf(intfId);
    for (char const* const prefix :
         {"2001:db8:1::/64", "2001:db8:2::/64", "2001:db8:3::/64", "2001:db8:4::/64", "2001:db8:5::/64"})
      addPrefix(packet, prefix);
    status->raPacketIs(packet);
  }
  std::size_t const before = allocationCount();
  auto other = Fwk::create<RaPacketStatus>("others");  // without the observer that writes changes down
  for (auto const& [key, packet] : status->raPacket()) other->raPacketIs(packet);
  EXPECT_GT(allocationCount(), before);
  {
    AllocationFailure const failure(0);
    other->raPacketDelAll();
  }
  EXPECT_TRUE(other->raPacket().empty());
}

TEST_F(RaPacketStatusTest, IsWalkedInTheOrderOfInterfaces) {
  for (char const* const intfId : {"Ethernet2", "Ethernet1"}) status->raPacketIs(packetOf(intfId));
  status->raPacketIs(packetOf("Ethernet2", 3));
  std::vector<std::string> walked;
  for (auto const& [key, packet] : status->raPacket()) {
    EXPECT_EQ(key, packet.intfId());
    walked.push_back(key.toString());
  }
  EXPECT_EQ(walked, (std::vector<std::string>{"Ethernet2", "Ethernet1"}));
}

TEST_F(RaPacketStatusTest, AnObserverMayEmptyItWhileItIsTold) {
  int told = 0;
  Changes const emptying(*status, [&](Fwk::Notification const&) {
    if (++told == 1) status->raPacketDelAll();
  });
  status->raPacketIs(packetOf("Ethernet1"));
  EXPECT_TRUE(status->raPacket().empty());
  EXPECT_EQ(told, 2);
}

TEST_F(RaPacketStatusTest, ThePacketsAreReadThroughReflection) {
  status->raPacketIs(packetOf("Ethernet1", 0));
  int met = 0;
  auto const use = [&](Fwk::CollectionView const& packets) {
    EXPECT_EQ(packets.size(), 1u);
    EXPECT_TRUE(packets.contains("Ethernet1"));
    EXPECT_TRUE(packets.get("Ethernet1", [&](Fwk::MemberRef const& member) {
      ++met;
      EXPECT_EQ(member.value.type, &RaPacket::typeRecord());
      EXPECT_EQ(readText(member.value, 269), "true");
    }));
    EXPECT_EQ(packets.set("Ethernet2").error, Fwk::ReflectionError::notSettable);
    EXPECT_TRUE(packets.del("Ethernet1"));
  };
  EXPECT_TRUE(Fwk::reflectCollection(Fwk::objectRef(*status), "raPacket", use));
  EXPECT_EQ(met, 1);
  EXPECT_TRUE(status->raPacket().empty());
}

}  // namespace

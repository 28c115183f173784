#include <Ipv6RouterAdvt/Heard/RaPacketStatus.h>
#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>
#include <programs/common/trees/TreeReport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace Tool {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct TreeWatchTest : testing::Test {
  Fwk::Ptr<RouterAdvt::Config> config = RouterAdvt::configFactory("config");
  Fwk::Ptr<RouterAdvt::Status> status = RouterAdvt::statusFactory("status");
  TreeWatch watch;

  TreeWatchTest() {
    config->intfIs("E1");
    status->intfIs("E1");
    watch.rootsAre({config, status});
  }
  /// The first line of each change.
  std::vector<std::string> changes() {
    std::vector<std::string> lines;
    for (TreeChange const& change : watch.take()) {
      std::string const text = changeText(change);
      lines.push_back(text.substr(0, text.find('\n')));
    }
    return lines;
  }
  std::vector<std::string> events() {
    std::vector<std::string> lines;
    for (TreeChange const& change : watch.take()) lines.push_back(changeJson(change).dump());
    return lines;
  }
};

TEST_F(TreeWatchTest, NothingHasChangedAtFirst) { EXPECT_THAT(changes(), IsEmpty()); }

TEST_F(TreeWatchTest, AScalarIsToldOnceWithItsLastValue) {
  config->intf("E1")->raLifetimeIs(5);
  config->intf("E1")->raLifetimeIs(6);
  EXPECT_THAT(changes(), ElementsAre("config/intf[E1]/raLifetime = 6"));
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(TreeWatchTest, FreeTextIsQuotedOnOneLine) {
  config->intf("E1")->networkBootFileUrlIs("a\nb");
  EXPECT_THAT(changes(), ElementsAre("config/intf[E1]/networkBootFileUrl = \"a\\x0ab\""));
}

TEST_F(TreeWatchTest, AnEntityThatComesIsToldOnceWithAllThatIsInIt) {
  auto const intf = config->intfIs("E2");
  intf->raLifetimeIs(5);
  intf->prefixesIs(Net::Ip6AddrWithMask("2001:db8::/64"))->validLifetimeIs(7);
  auto const taken = watch.take();
  ASSERT_EQ(taken.size(), 1u);
  std::string const text = changeText(taken[0]);
  EXPECT_THAT(text, testing::StartsWith("config/intf[E2] added\n"));
  EXPECT_THAT(text, testing::HasSubstr("raLifetime"));
  EXPECT_THAT(text, testing::HasSubstr("prefixes[2001:db8::/64]\n"));
  Json const event = changeJson(taken[0]);
  EXPECT_EQ(event["event"], "added");
  EXPECT_EQ(event["path"], "config/intf[E2]");
  EXPECT_EQ(event["value"]["prefixes"]["2001:db8::/64"]["validLifetime"], 7);
}

TEST_F(TreeWatchTest, WhatCameBeforeIsWatchedLikeTheRest) {
  config->intfIs("E2")->prefixesIs(Net::Ip6AddrWithMask("2001:db8::/64"));
  changes();
  config->intf("E2")->prefixes(Net::Ip6AddrWithMask("2001:db8::/64"))->validLifetimeIs(7);
  EXPECT_THAT(changes(), ElementsAre("config/intf[E2]/prefixes[2001:db8::/64]/validLifetime = 7"));
}

TEST_F(TreeWatchTest, WhatComesAndGoesIsNotTold) {
  config->intfIs("E2");
  config->intfDel("E2");
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(TreeWatchTest, WhatGoesIsToldAloneWhateverChangedInItBefore) {
  config->intf("E1")->raLifetimeIs(5);
  config->intfDel("E1");
  EXPECT_THAT(events(), ElementsAre(R"({"event":"removed","path":"config/intf[E1]"})"));
}

TEST_F(TreeWatchTest, WhatGoesAndComesAgainIsToldAsBoth) {
  config->intfDel("E1");
  config->intfIs("E1");
  EXPECT_THAT(changes(), ElementsAre("config/intf[E1] removed", "config/intf[E1] added"));
}

TEST_F(TreeWatchTest, ChildrenComeAreReplacedAndGo) {
  status->intf("E1")->cfgProcFileDataIs("a")->fileDataIs("mtu", "1500\n");
  EXPECT_THAT(events(), ElementsAre(R"({"event":"added","path":"status/intf[E1]/cfgProcFileData","value":)"
                                    R"({"name":"a","fileData":{"mtu":"1500\n"}}})"));
  status->intf("E1")->cfgProcFileData()->fileDataIs("mtu", "1280\n");
  EXPECT_THAT(changes(), ElementsAre("status/intf[E1]/cfgProcFileData[a]/fileData[mtu] = \"1280\\x0a\""));
  status->intf("E1")->cfgProcFileDataIs("b");
  EXPECT_THAT(changes(), ElementsAre("status/intf[E1]/cfgProcFileData added"));
  status->intf("E1")->cfgProcFileDataDel();
  EXPECT_THAT(changes(), ElementsAre("status/intf[E1]/cfgProcFileData removed"));
}

TEST_F(TreeWatchTest, ValuesOfACollectionAreSetAndRemoved) {
  auto const files = status->intf("E1")->cfgProcFileDataIs("a");
  files->fileDataIs("x", "1");
  changes();
  files->fileDataIs("x", "2");
  files->fileDataIs("y", "3");
  EXPECT_THAT(events(),
              ElementsAre(R"({"event":"set","path":"status/intf[E1]/cfgProcFileData[a]/fileData[x]","value":"2"})",
                          R"({"event":"set","path":"status/intf[E1]/cfgProcFileData[a]/fileData[y]","value":"3"})"));
  files->fileDataDel("x");
  EXPECT_THAT(changes(), ElementsAre("status/intf[E1]/cfgProcFileData[a]/fileData[x] removed"));
}

TEST_F(TreeWatchTest, RecordsAndSetsOfAnyTreeAreTold) {
  auto const neighbors = RouterAdvt::routerNeighborStatusFactory("neighbors");
  auto const set = neighbors->neighborIs("E1");
  watch.rootsAre({neighbors});
  neighbors->routerNeighborIs({Net::IntfId("E1"), Net::VrfName("blue"), Net::Ip6Addr("fe80::1")});
  set->linkLocalAddrIs(Net::Ip6Addr("fe80::1"));
  EXPECT_THAT(changes(), ElementsAre("neighbors/routerNeighbor[E1] = Value('RouterAdvt::RouterNeighbor', ** {'intfId': "
                                     "'E1', 'vrf': 'blue', 'linkLocalAddr': 'fe80::1'})",
                                     "neighbors/neighbor[E1]/linkLocalAddr[fe80::1] added"));
  set->linkLocalAddrDel(Net::Ip6Addr("fe80::1"));
  EXPECT_THAT(changes(), ElementsAre("neighbors/neighbor[E1]/linkLocalAddr[fe80::1] removed"));
}

TEST_F(TreeWatchTest, AReceivedPacketIsOneValue) {
  Fwk::Ptr<RouterAdvt::RaPacketStatus> const packets = Fwk::create<RouterAdvt::RaPacketStatus>("packets");
  watch.rootsAre({packets});
  packets->raPacketIs(RouterAdvt::RaPacket("E1"));
  EXPECT_THAT(changes(), ElementsAre(testing::StartsWith("packets/raPacket[E1] = Value('RouterAdvt::RaPacket', ** {")));
}

TEST_F(TreeWatchTest, AKeyThatNobodyMayWriteIsFoundAllTheSame) {
  config->intf("E1")->prefixesIs(Net::Ip6AddrWithMask(Net::Ip6Addr("2001:db8::"), 200));
  EXPECT_THAT(changes(), ElementsAre("config/intf[E1]/prefixes[2001:db8::/200] added"));
}

TEST_F(TreeWatchTest, OtherRootsTakeThePlaceOfTheFormer) {
  auto const other = RouterAdvt::configFactory("other");
  config->hopLimitIs(3);
  watch.rootsAre({other});
  config->hopLimitIs(4);
  other->hopLimitIs(5);
  EXPECT_THAT(changes(), ElementsAre("other/hopLimit = 5"));
}

TEST_F(TreeWatchTest, TreesOfAllKindsAreShown) {
  auto const neighbors = RouterAdvt::routerNeighborStatusFactory("neighbors");
  neighbors->routerNeighborIs({Net::IntfId("E1"), Net::VrfName("blue"), Net::Ip6Addr("fe80::1")});
  status->intf("E1")->cfgProcFileDataIs("a")->fileDataIs("mtu", "1500\n");
  std::string const text = treesText({status, neighbors});
  EXPECT_THAT(text, testing::HasSubstr("cfgProcFileData[a]\n"));
  EXPECT_THAT(text, testing::ContainsRegex("fileData\\[mtu\\] +\"1500\\\\x0a\"\n"));
  EXPECT_THAT(text, testing::ContainsRegex("routerNeighbor\\[E1\\] +Value\\('RouterAdvt::RouterNeighbor'"));
  Json const json = treesJson({status, neighbors});
  EXPECT_EQ(json["status"]["intf"]["E1"]["cfgProcFileData"]["name"], "a");
  EXPECT_EQ(json["neighbors"]["routerNeighbor"]["E1"]["vrf"], "blue");
}

}  // namespace

}  // namespace Tool

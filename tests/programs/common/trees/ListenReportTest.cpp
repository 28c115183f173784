#include <programs/common/trees/ListenReport.h>
#include <programs/common/trees/RecordView.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace Tool {

namespace {

using Net::Ip6Addr;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

RouterAdvt::RaPacket advertOf(char const* router) {
  RouterAdvt::RaPacket packet(Net::IntfId("eth0"));
  packet.srcIp6AddrIs(Ip6Addr(router));
  packet.routerLifeTimeIs(1800);
  return packet;
}

struct ListenReportTest : testing::Test {
  std::ostringstream out;
  ListenReport words{out, false};
  ListenReport json{out, true};
};

TEST_F(ListenReportTest, ARouterComesAndGoesInALineEach) {
  words.onRouter(Ip6Addr("fe80::1"));
  words.onRouterGone(Ip6Addr("fe80::1"));
  EXPECT_EQ(out.str(), "router fe80::1 is heard\nrouter fe80::1 has withdrawn\n");
}

TEST_F(ListenReportTest, ARouterComesAndGoesInAnObjectEach) {
  json.onRouter(Ip6Addr("fe80::1"));
  json.onRouterGone(Ip6Addr("fe80::1"));
  EXPECT_EQ(out.str(),
            "{\"event\":\"router\",\"router\":\"fe80::1\"}\n{\"event\":\"routerGone\",\"router\":\"fe80::1\"}\n");
}

TEST_F(ListenReportTest, TheFirstAdvertisementIsShownAsAWhole) {
  words.onChange(advertOf("fe80::1"), {{"routerLifeTime", nullptr, 1800}});
  EXPECT_THAT(out.str(), AllOf(StartsWith("router fe80::1 advertises\n  intfId "), HasSubstr("\n  routerLifeTime ")));
}

TEST_F(ListenReportTest, OfALaterOneOnlyTheChange) {
  words.onChange(advertOf("fe80::1"), {{"routerLifeTime", 900, 1800}});
  EXPECT_EQ(out.str(), "router fe80::1 advertises a change\n  routerLifeTime  900 -> 1800\n");
}

TEST_F(ListenReportTest, JsonHasTheChangeAndTheRecord) {
  json.onChange(advertOf("fe80::1"), {{"routerLifeTime", 900, 1800}});
  Json const event = Json::parse(out.str());
  EXPECT_EQ(event["changes"].dump(), "{\"routerLifeTime\":[900,1800]}");
  EXPECT_EQ(event["record"]["routerLifeTime"], 1800);
}

TEST_F(ListenReportTest, WhatIsDroppedIsToldWithItsReason) {
  words.dropped(Ip6Addr("2001:db8::1"), "its checksum is wrong");
  EXPECT_EQ(out.str(), "dropped an advertisement from 2001:db8::1: its checksum is wrong\n");
}

TEST_F(ListenReportTest, TheSummaryLeavesOutWhatDidNotHappen) {
  words.summary({.heard = 1}, 1, std::chrono::milliseconds(1234));
  EXPECT_EQ(out.str(), "1 advertisement, 0 dropped, 1 router at the end, in 1.2 s\n");
}

TEST_F(ListenReportTest, TheSummaryHasAllThatHappened) {
  words.summary({.heard = 5, .notKept = 2, .dropped = 3, .lost = 4}, 0, std::chrono::seconds(60));
  EXPECT_EQ(
      out.str(),
      "5 advertisements, 2 of routers too many, 3 dropped, 4 lost as they came too fast, 0 routers at the end, in "
      "60.0 s\n");
}

TEST_F(ListenReportTest, TheSummaryAsAnObjectHasEveryCount) {
  json.summary({.heard = 5, .notKept = 2, .dropped = 3, .lost = 4}, 1, std::chrono::milliseconds(50));
  EXPECT_EQ(out.str(),
            "{\"event\":\"summary\",\"advertisements\":5,\"dropped\":3,\"notKept\":2,\"lost\":4,\"routers\":1,"
            "\"seconds\":0.1}\n");
}

}  // namespace

}  // namespace Tool

#include <RouterPlatform/Fwk/ObjectRef.h>
#include <programs/common/trees/RecordView.h>
#include <programs/common/trees/RouterWatch.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace Tool {

namespace {

using Fwk::U16;
using Fwk::U32;
using Fwk::U8;
using Net::Ip6Addr;
using RouterAdvt::RaPacket;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// The reports, one line per call.
struct Log final : RouterWatch::Observer {
  void onRouter(Ip6Addr const& router) override { lines.push_back(router.toString() + " heard"); }
  void onRouterGone(Ip6Addr const& router) override { lines.push_back(router.toString() + " gone"); }
  void onTooManyRouters() override { lines.emplace_back("too many"); }
  void onChange(RaPacket const& packet, std::vector<RecordChange> const& changes) override {
    bool const isFirst = changes.front().before.is_null();
    lines.push_back(packet.srcIp6Addr().toString() + (isFirst ? " first" : " changes"));
    if (!isFirst)
      for (RecordChange const& change : changes) lines.push_back(change.path);
  }
  /// The reports since the last call.
  std::vector<std::string> take() { return std::exchange(lines, {}); }

  std::vector<std::string> lines;
};

class RouterWatchTest : public testing::Test {
 protected:
  static RaPacket advert(Ip6Addr const& router, U16 lifetime = 1800) {
    RaPacket packet(Net::IntfId("eth0"));
    packet.srcIp6AddrIs(router);
    packet.routerLifeTimeIs(lifetime);
    return packet;
  }
  static RaPacket advert(char const* router, U16 lifetime = 1800) { return advert(Ip6Addr(router), lifetime); }
  /// fe80::1:0:0 and so on.
  static Ip6Addr numbered(U32 number) {
    std::array<U8, 16> octets{0xfe, 0x80};
    octets[11] = 1;
    std::memcpy(octets.data() + 12, &number, sizeof number);
    return Ip6Addr::fromBytes(octets);
  }
  Ip6Addr latestRouter() const { return watch.status().routerNeighbor(Net::IntfId("eth0")).linkLocalAddr(); }

  Log log;
  RouterWatch watch{Net::IntfId("eth0"), log};
};

TEST_F(RouterWatchTest, TellsARouterAndWhatItSaysFirst) {
  EXPECT_TRUE(watch.hear(advert("fe80::1")));
  EXPECT_THAT(log.take(), ElementsAre("fe80::1 heard", "fe80::1 first"));
  EXPECT_TRUE(watch.routers().linkLocalAddr(Ip6Addr("fe80::1")));
  EXPECT_EQ(latestRouter(), Ip6Addr("fe80::1"));
}

TEST_F(RouterWatchTest, TellsNothingWhenTheSameIsSaidAgain) {
  watch.hear(advert("fe80::1"));
  log.take();
  EXPECT_TRUE(watch.hear(advert("fe80::1")));
  EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(RouterWatchTest, TellsWhatHasChanged) {
  watch.hear(advert("fe80::1", 1800));
  log.take();
  watch.hear(advert("fe80::1", 600));
  EXPECT_THAT(log.take(), ElementsAre("fe80::1 changes", "routerLifeTime"));
}

TEST_F(RouterWatchTest, ComparesEachOfSeveralRoutersWithItself) {
  watch.hear(advert("fe80::1", 1800));
  watch.hear(advert("fe80::2", 600));
  log.take();
  watch.hear(advert("fe80::1", 1800));
  watch.hear(advert("fe80::2", 600));
  EXPECT_THAT(log.take(), IsEmpty());
  watch.hear(advert("fe80::1", 1801));
  EXPECT_THAT(log.take(), ElementsAre("fe80::1 changes", "routerLifeTime"));
}

TEST_F(RouterWatchTest, TellsThatARouterHasWithdrawn) {
  watch.hear(advert("fe80::1"));
  log.take();
  EXPECT_TRUE(watch.hear(advert("fe80::1", 0)));
  EXPECT_THAT(log.take(), ElementsAre("fe80::1 changes", "routerLifeTime", "isDeathPacket", "fe80::1 gone"));
  EXPECT_FALSE(watch.routers().linkLocalAddr(Ip6Addr("fe80::1")));
}

TEST_F(RouterWatchTest, TakesTheRecordOfTheInterfaceAwayWithItsRouter) {
  watch.hear(advert("fe80::1"));
  watch.hear(advert("fe80::1", 0));
  EXPECT_TRUE(!watch.status().routerNeighbor(Net::IntfId("eth0")));
}

TEST_F(RouterWatchTest, KeepsTheRecordOfTheInterfaceWhenAnotherRouterWithdraws) {
  watch.hear(advert("fe80::1"));
  watch.hear(advert("fe80::2"));
  watch.hear(advert("fe80::1", 0));
  EXPECT_EQ(latestRouter(), Ip6Addr("fe80::2"));
}

TEST_F(RouterWatchTest, TellsAllThatARouterSaysOnceItIsBack) {
  watch.hear(advert("fe80::1", 1800));
  watch.hear(advert("fe80::1", 0));
  log.take();
  watch.hear(advert("fe80::1", 1800));
  EXPECT_THAT(log.take(), ElementsAre("fe80::1 heard", "fe80::1 first"));
}

TEST_F(RouterWatchTest, KeepsNoMoreRoutersThanTheMostAndSaysSoOnce) {
  for (U32 i = 0; i < RouterWatch::routersMax; ++i) ASSERT_TRUE(watch.hear(advert(numbered(i))));
  log.take();
  EXPECT_FALSE(watch.hear(advert("fe80::1")));
  EXPECT_THAT(log.take(), ElementsAre("too many"));
  EXPECT_FALSE(watch.hear(advert("fe80::2")));
  EXPECT_FALSE(watch.hear(advert("fe80::1")));
  EXPECT_THAT(log.take(), IsEmpty());
  EXPECT_EQ(watch.routers().linkLocalAddr().size(), RouterWatch::routersMax);
}

TEST_F(RouterWatchTest, WatchesOnThoseThatItKeepsWhenThereAreTooMany) {
  for (U32 i = 0; i < RouterWatch::routersMax; ++i) watch.hear(advert(numbered(i)));
  log.take();
  EXPECT_TRUE(watch.hear(advert(numbered(0), 600)));
  EXPECT_THAT(log.take(), Contains("routerLifeTime"));
}

TEST_F(RouterWatchTest, HasRoomAgainWhenARouterWithdraws) {
  for (U32 i = 0; i < RouterWatch::routersMax; ++i) watch.hear(advert(numbered(i)));
  watch.hear(advert(numbered(7), 0));
  EXPECT_TRUE(watch.hear(advert("fe80::1")));
  EXPECT_FALSE(watch.hear(advert("fe80::2")));
}

}  // namespace

}  // namespace Tool

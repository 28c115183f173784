#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>
#include <programs/common/trees/NeighborReport.h>
#include <programs/common/trees/NeighborTable.h>

#include <gmock/gmock.h>
#include <stdlib.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <filesystem>
#include <limits>
#include <string>

namespace {

using namespace Tool;
using RouterAdvt::RouterNeighborRa;
using RouterAdvt::RouterNeighborRaKey;
using testing::HasSubstr;
using testing::Not;

RouterNeighborRa neighborOf(char const* intfId, char const* addr, double time) {
  return RouterNeighborRa(RouterNeighborRaKey(Net::IntfId(intfId), Net::Ip6Addr(addr)), time);
}

NeighborReport reportOf(std::vector<RouterNeighborRa> neighbors) {
  NeighborReport report;
  report.neighbors = std::move(neighbors);
  report.attached = true;
  report.writer.alive = true;
  report.writer.pid = 42;
  report.now = 1000;
  return report;
}

TEST(NeighborsText, ShowsInterfaceRouterAndAge) {
  EXPECT_EQ(
      neighborsText(reportOf({neighborOf("Ethernet1", "fe80::1", 992.5), neighborOf("Ethernet10", "fe80::2", 0)})),
      "interface   router   last advertisement\n"
      "Ethernet1   fe80::1  7.5 s ago\n"
      "Ethernet10  fe80::2  never\n");
}

TEST(NeighborsText, MakesInterfaceNamesPrintable) {
  EXPECT_EQ(neighborsText(reportOf({neighborOf("g\x1b[1m\xff\\", "fe80::1", 992.5)})),
            "interface       router   last advertisement\n"
            "g\\x1b[1m\\xff\\\\  fe80::1  7.5 s ago\n");
}

TEST(NeighborsText, MakesTheProblemPrintable) {
  NeighborReport report;
  report.problem = "/tables\x1b[1m\n";
  EXPECT_EQ(neighborsText(report), "the table cannot be read: /tables\\x1b[1m\\x0a\n");
}

TEST(NeighborsText, SaysWhenThereIsNone) { EXPECT_EQ(neighborsText(reportOf({})), "no neighbouring router\n"); }

TEST(NeighborsText, SaysWhenThereIsNoTable) {
  EXPECT_EQ(neighborsText(NeighborReport()), "there is no table: no program keeps one\n");
}

TEST(NeighborsText, ATimeAheadOfTheClockIsNow) {
  EXPECT_THAT(neighborsText(reportOf({neighborOf("Ethernet1", "fe80::1", 1005)})), HasSubstr("0.0 s ago"));
}

TEST(NeighborsText, SaysSinceWhenNoWriterIsAlive) {
  NeighborReport report = reportOf({});
  report.writer.alive = false;
  report.writer.createdTime = 1000000000;
  report.writer.changeTime = 940000000000;
  EXPECT_EQ(neighborsText(report),
            "no neighbouring router\n"
            "no writer is alive; the last sign of one is of 1970-01-01 00:15:40 UTC, 60.0 s ago\n");
}

TEST(NeighborsText, SaysWhenTheTableIsDamaged) {
  NeighborReport report = reportOf({});
  report.damagedPlaces = 2;
  EXPECT_THAT(neighborsText(report), HasSubstr("damaged in 2 places"));
}

TEST(NeighborsJson, HoldsWhatTheTextDoes) {
  NeighborReport report = reportOf({neighborOf("Ethernet1", "fe80::1", 992.46)});
  EXPECT_EQ(neighborsJson(report), Json::parse(R"({"table": true,
    "neighbors": [{"interface": "Ethernet1", "router": "fe80::1", "lastRaReceived": 992.46, "age": 7.5}],
    "writer": {"alive": true, "pid": 42}, "damagedPlaces": 0})"));
  report.writer.alive = false;
  report.writer.changeTime = 940000000000;
  EXPECT_EQ(neighborsJson(report)["writer"], Json::parse(R"({"alive": false, "pid": 42, "lastSign": 940.0})"));
  EXPECT_EQ(neighborsJson(NeighborReport()), Json::parse(R"({"table": false, "neighbors": []})"));
}

struct DurationRow {
  double seconds;
  char const* text;
};
TEST(DurationText, IsWhatPeopleSay) {
  DurationRow const rows[] = {
      {0, "0.0 s"},        {7.54, "7.5 s"},      {99.94, "99.9 s"},
      {100, "1 min 40 s"}, {120, "2 min"},       {3599, "59 min 59 s"},
      {3600, "1 h"},       {11100, "3 h 5 min"}, {86400, "1 d"},
      {187200, "2 d 4 h"}, {1e300, "for ever"},  {std::numeric_limits<double>::quiet_NaN(), "for ever"}};
  for (DurationRow const& row : rows) EXPECT_EQ(durationText(row.seconds), row.text) << row.seconds;
}

class NeighborTables : public testing::Test {
 protected:
  NeighborTables() {
    std::string name = (std::filesystem::temp_directory_path() / "neighbor-report-XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    directory_ = name;
    setenv("SHARED_TABLE_DIR", name.c_str(), 1);
  }
  ~NeighborTables() override {
    unsetenv("SHARED_TABLE_DIR");
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }
  std::string directory_;
};

TEST_F(NeighborTables, AreReadInTheOrderAskedForAndOfTheInterfaceAskedFor) {
  auto const rows = RouterAdvt::Table::routerNeighborRaStatusFactory("rows");
  Fwk::Ptr<Fwk::Entity> const root = RouterAdvt::routerNeighborStatusFactory("root");
  rows->parentIs(root.get(), 0);
  rows->routerNeighborRaIs(neighborOf("Ethernet2", "fe80::1", 5));
  rows->routerNeighborRaIs(neighborOf("Ethernet1", "fe80::2", 3));
  rows->routerNeighborRaIs(neighborOf("Ethernet1", "fe80::1", 7));
  RouterAdvt::RouterNeighborRaReader reader;
  ASSERT_FALSE(reader.attach());
  auto const routers = [&](char const* intf, NeighborReport::Order order) {
    std::string text;
    for (RouterNeighborRa const& n : readNeighbors(reader, Net::IntfId(intf), order, 10).neighbors)
      text += n.key().toStrep() + " ";
    return text;
  };
  EXPECT_EQ(routers("", NeighborReport::Order::intf), "Ethernet1-fe80::1 Ethernet1-fe80::2 Ethernet2-fe80::1 ");
  rows->routerNeighborRaIs(neighborOf("Ethernet3", "fe80::9", std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(routers("", NeighborReport::Order::age),
            "Ethernet3-fe80::9 Ethernet1-fe80::1 Ethernet2-fe80::1 Ethernet1-fe80::2 ");
  rows->routerNeighborRaDel(neighborOf("Ethernet3", "fe80::9", 0).key());
  EXPECT_EQ(routers("", NeighborReport::Order::age), "Ethernet1-fe80::1 Ethernet2-fe80::1 Ethernet1-fe80::2 ");
  EXPECT_EQ(routers("Ethernet2", NeighborReport::Order::intf), "Ethernet2-fe80::1 ");
  EXPECT_EQ(routers("Ethernet3", NeighborReport::Order::intf), "");
  rows->parentIs(nullptr, 0);
}

TEST_F(NeighborTables, AreKeptWithTheTimeOfTheClockAndEndWithTheirKeeper) {
  RouterAdvt::RouterNeighborRaReader reader;
  {
    NeighborTable table;
    EXPECT_EQ(table.problem(), "");
    table.hear("Ethernet1", Net::Ip6Addr("fe80::1"));
    table.hear("Ethernet1", Net::Ip6Addr("fe80::1"));
    ASSERT_FALSE(reader.attach());
    EXPECT_EQ(reader.count(), 1u);
    double const heard = reader.row(RouterNeighborRaKey("Ethernet1", Net::Ip6Addr("fe80::1"))).row.lastRaReceived();
    double const now = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    EXPECT_NEAR(heard, now, 60);
    NeighborTable second;
    EXPECT_THAT(second.problem(), HasSubstr("another writer"));
    second.hear("Ethernet1", Net::Ip6Addr("fe80::2"));
    EXPECT_EQ(reader.count(), 1u);
  }
  EXPECT_EQ(reader.attach().code, SharedTable::Errc::noTable);
}

}  // namespace

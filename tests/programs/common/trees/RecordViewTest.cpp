#include <Ipv6RouterAdvt/Heard/RaPacket.h>
#include <RouterPlatform/Fwk/ObjectRef.h>
#include <programs/common/trees/RecordView.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Tool {

namespace {

using Net::Ip6AddrWithMask;
using RouterAdvt::RaPacket;
using RouterAdvt::RaPacketPrefixInfo;
using testing::ElementsAre;
using testing::IsEmpty;

void addPrefix(RaPacket& packet, char const* text, Fwk::U32 validLifetime) {
  RaPacketPrefixInfo info{Ip6AddrWithMask(text)};
  info.validLifetimeIs(validLifetime);
  packet.prefixInfoIs(Ip6AddrWithMask(text), info);
}

RaPacket samplePacket(char const* intfId = "eth0") {
  RaPacket packet{Net::IntfId(intfId)};
  packet.srcIp6AddrIs(Net::Ip6Addr("fe80::1"));
  packet.routerLifeTimeIs(1800);
  addPrefix(packet, "2001:db8:2::/64", 20);
  addPrefix(packet, "2001:db8:1::/64", 10);
  return packet;
}

std::vector<RecordValue> valuesOf(RaPacket const& packet) { return recordValues(Fwk::objectRef(packet)); }

std::vector<std::string> pathsOf(auto const& items) {
  std::vector<std::string> paths;
  for (auto const& item : items) paths.push_back(item.path);
  return paths;
}

/// `PATH: BEFORE -> AFTER`.
std::vector<std::string> changesBetween(RaPacket const& before, RaPacket const& after) {
  std::vector<std::string> lines;
  for (RecordChange const& change : recordChanges(valuesOf(before), valuesOf(after)))
    lines.push_back(change.path + ": " + jsonText(change.before) + " -> " + jsonText(change.after));
  return lines;
}

TEST(RecordValues, AreAllThereInOrderThoseOfMembersToo) {
  EXPECT_THAT(
      pathsOf(valuesOf(samplePacket())),
      ElementsAre("intfId", "curHopLimit", "managedConfigFlag", "otherConfigFlag", "reachableTime", "retransTimer",
                  "mtuSpecified", "mtu", "srcIp6Addr", "routerLifeTime", "prefixInfo[2001:db8:2::/64]/prefix",
                  "prefixInfo[2001:db8:2::/64]/onLinkFlag", "prefixInfo[2001:db8:2::/64]/autoConfigFlag",
                  "prefixInfo[2001:db8:2::/64]/validLifetime", "prefixInfo[2001:db8:2::/64]/preferredLifetime",
                  "prefixInfo[2001:db8:1::/64]/prefix", "prefixInfo[2001:db8:1::/64]/onLinkFlag",
                  "prefixInfo[2001:db8:1::/64]/autoConfigFlag", "prefixInfo[2001:db8:1::/64]/validLifetime",
                  "prefixInfo[2001:db8:1::/64]/preferredLifetime", "isDeathPacket"));
}

TEST(RecordJson, ShowsACollectionAsAListInOrder) {
  Json const json = recordJson(Fwk::objectRef(samplePacket()));
  ASSERT_EQ(json["prefixInfo"].size(), 2U);
  EXPECT_EQ(json["prefixInfo"][0]["prefix"], "2001:db8:2::/64");
  EXPECT_EQ(json["prefixInfo"][1]["validLifetime"], 10);
  EXPECT_EQ(json["routerLifeTime"], 1800);
  EXPECT_EQ(json["isDeathPacket"], false);
}

TEST(RecordJson, ShowsAnEmptyCollectionAsAnEmptyList) {
  EXPECT_EQ(recordJson(Fwk::objectRef(RaPacket(Net::IntfId("eth0"))))["prefixInfo"], Json::array());
}

TEST(RecordText, SetsTheValuesInAColumn) {
  RaPacket packet(Net::IntfId("eth0"));
  packet.srcIp6AddrIs(Net::Ip6Addr("fe80::1"));
  EXPECT_EQ(recordText(Fwk::objectRef(packet)),
            "  intfId             eth0\n"
            "  curHopLimit        0\n"
            "  managedConfigFlag  false\n"
            "  otherConfigFlag    false\n"
            "  reachableTime      0\n"
            "  retransTimer       0\n"
            "  mtuSpecified       false\n"
            "  mtu                0\n"
            "  srcIp6Addr         fe80::1\n"
            "  routerLifeTime     0\n"
            "  isDeathPacket      true\n");
}

TEST(RecordText, LetsNoControlCharacterThrough) {
  EXPECT_THAT(recordText(Fwk::objectRef(samplePacket("a\x1b[m"))), testing::HasSubstr("a\\x1b[m"));
}

TEST(RecordChanges, AreNoneBetweenEqualRecords) {
  EXPECT_THAT(changesBetween(samplePacket(), samplePacket()), IsEmpty());
}

TEST(RecordChanges, AreNoneWhenOnlyTheOrderOfMembersDiffers) {
  RaPacket other = samplePacket();
  other.prefixInfoDel(Ip6AddrWithMask("2001:db8:2::/64"));
  addPrefix(other, "2001:db8:2::/64", 20);
  EXPECT_THAT(changesBetween(samplePacket(), other), IsEmpty());
}

TEST(RecordChanges, NameTheValuesThatDifferAndThoseThatFollow) {
  RaPacket after = samplePacket();
  after.routerLifeTimeIs(0);
  EXPECT_THAT(changesBetween(samplePacket(), after),
              ElementsAre("routerLifeTime: 1800 -> 0", "isDeathPacket: false -> true"));
}

TEST(RecordChanges, NameAMembersValueByItsKey) {
  RaPacket after = samplePacket();
  addPrefix(after, "2001:db8:1::/64", 11);
  EXPECT_THAT(changesBetween(samplePacket(), after),
              ElementsAre("prefixInfo[2001:db8:1::/64]/validLifetime: 10 -> 11"));
}

TEST(RecordChanges, TellWhatIsNewAndThenWhatIsGone) {
  RaPacket before(Net::IntfId("eth0"));
  addPrefix(before, "2001:db8:1::/64", 10);
  RaPacket after(Net::IntfId("eth0"));
  addPrefix(after, "2001:db8:2::/64", 20);
  auto const changes = changesBetween(before, after);
  ASSERT_EQ(changes.size(), 10U);
  EXPECT_EQ(changes[3], "prefixInfo[2001:db8:2::/64]/validLifetime: null -> 20");
  EXPECT_EQ(changes[8], "prefixInfo[2001:db8:1::/64]/validLifetime: 10 -> null");
}

TEST(RecordChanges, FromNothingAreAllValues) {
  EXPECT_EQ(pathsOf(recordChanges({}, valuesOf(samplePacket()))), pathsOf(valuesOf(samplePacket())));
}

TEST(ChangesText, SaysWhatIsAbsent) {
  EXPECT_EQ(changesText({{"mtu", 1400, 1500}, {"a/longer", nullptr, "text"}, {"gone", true, nullptr}}),
            "  mtu       1400 -> 1500\n"
            "  a/longer  absent -> text\n"
            "  gone      true -> absent\n");
}

TEST(ChangesJson, HoldsBothValuesOfEachPath) {
  EXPECT_EQ(jsonText(changesJson({{"mtu", 1400, 1500}, {"gone", true, nullptr}})),
            R"({"mtu":[1400,1500],"gone":[true,null]})");
}

TEST(JsonText, EscapesAllControlCharacters) {
  EXPECT_EQ(jsonText(Json{{"name", "\x1b\x7f\xc2\x80\xc2\x9f"}}), R"({"name":"\u001b\u007f\u0080\u009f"})");
}

TEST(JsonText, LeavesOtherCharactersAsTheyAre) {
  EXPECT_EQ(jsonText(Json{{"name", "~\xc2\xa0\xc3\x9f"}}), "{\"name\":\"~\xc2\xa0\xc3\x9f\"}");
}

TEST(JsonText, ReplacesWhatIsNoUtf8) { EXPECT_EQ(jsonText(Json{{"name", "a\xff"}}), "{\"name\":\"a\xef\xbf\xbd\"}"); }

}  // namespace

}  // namespace Tool

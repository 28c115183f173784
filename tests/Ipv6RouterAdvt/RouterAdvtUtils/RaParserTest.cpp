#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils.h>
#include <RouterPlatform/Packet/PktManager.h>
#include <tests/RouterPlatform/Nd/RaMessage.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <type_traits>

namespace RouterAdvt {

// How GoogleTest shows a packet.
void PrintTo(RaPacket const& packet, std::ostream* os) {
  *os << "{" << packet.intfId().view() << " hops " << int{packet.curHopLimit()} << " M " << packet.managedConfigFlag()
      << " O " << packet.otherConfigFlag() << " lifetime " << packet.routerLifeTime() << " mtu " << packet.mtu()
      << " prefixes " << packet.prefixInfo().size() << "}";
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

RaPacket parsed(Octets const& message) { return makeRaPacketType("Ethernet1", received(message)); }

bool isRejected(RaPacket const& packet) { return !packet && packet.intfId().empty(); }

/// The message in a packet that does not know where it ends.
Ptr<Ip6PktInfo> withoutLength(Octets const& data) {
  auto pkt = Net::globalPktManager().newPkt();
  pkt->dataIs(data);
  return Ip6PktInfo::make(std::move(pkt), raSource, raDest, 255);
}

/// The prefixes in order, with their valid lifetimes.
std::vector<std::pair<std::string, U32>> prefixesOf(RaPacket const& packet) {
  std::vector<std::pair<std::string, U32>> result;
  for (auto const& [prefix, info] : packet.prefixInfo()) result.emplace_back(prefix.toString(), info.validLifetime());
  return result;
}

// --- header

struct HeaderRow {
  char const* name;
  std::size_t offset;
  Octets octets;
  std::function<void(RaPacket&)> expect;  ///< sets the one attribute that follows from the octets
  friend void PrintTo(HeaderRow const& r, std::ostream* os) { *os << r.name; }
};

HeaderRow const headerRows[] = {
    {"CurHopLimit", 4, {0xfe}, [](RaPacket& p) { p.curHopLimitIs(254); }},
    {"ManagedFlag", 5, {0x80}, [](RaPacket& p) { p.managedConfigFlagIs(true); }},
    {"OtherFlag", 5, {0x40}, [](RaPacket& p) { p.otherConfigFlagIs(true); }},
    {"ReservedPreferenceAndHomeAgentBitsAreNotKept", 5, {0x3f}, [](RaPacket&) {}},
    {"RouterLifetime", 6, {0xfe, 0xdc}, [](RaPacket& p) { p.routerLifeTimeIs(0xfedc); }},
    {"ReachableTimeInMilliseconds", 8, {0xfe, 0xdc, 0xba, 0x98}, [](RaPacket& p) { p.reachableTimeIs(0xfedcba98); }},
    {"RetransTimerInMilliseconds", 12, {0xfe, 0xdc, 0xba, 0x98}, [](RaPacket& p) { p.retransTimerIs(0xfedcba98); }},
    {"TypeIsNotRead", 0, {1}, [](RaPacket&) {}},
    {"CodeIsNotRead", 1, {0xff}, [](RaPacket&) {}},
    {"ChecksumIsNotRead", 2, {0xff, 0xff}, [](RaPacket&) {}},
};

class RaParserHeader : public testing::TestWithParam<HeaderRow> {};

TEST_P(RaParserHeader, OctetsGoToTheirAttributeAndToNoOther) {
  HeaderRow const& row = GetParam();
  Octets message(16, 0);
  std::copy(row.octets.begin(), row.octets.end(), message.begin() + static_cast<std::ptrdiff_t>(row.offset));
  RaPacket expected(IntfId("Ethernet1"));
  expected.srcIp6AddrIs(raSource);
  row.expect(expected);
  EXPECT_EQ(parsed(message), expected);
}
INSTANTIATE_TEST_SUITE_P(Rows, RaParserHeader, testing::ValuesIn(headerRows),
                         [](auto const& row) { return row.param.name; });

TEST(RaParser, ReadsAMessageWithoutOptions) {
  RaPacket const packet = parsed(raHeader);
  EXPECT_EQ(packet.intfId(), "Ethernet1");
  EXPECT_EQ(packet.srcIp6Addr(), raSource);
  EXPECT_EQ(packet.curHopLimit(), 64);
  EXPECT_FALSE(packet.managedConfigFlag());
  EXPECT_FALSE(packet.otherConfigFlag());
  EXPECT_EQ(packet.routerLifeTime(), 1800);
  EXPECT_EQ(packet.reachableTime(), 30000U);
  EXPECT_EQ(packet.retransTimer(), 1000U);
  EXPECT_FALSE(packet.mtuSpecified());
  EXPECT_EQ(packet.mtu(), 0U);
  EXPECT_TRUE(packet.prefixInfo().empty());
}

TEST(RaParser, TakesAnySourceAddress) {
  Ip6Addr const global("2001:db8::1");
  EXPECT_EQ(makeRaPacketType("e", Ip6PktInfo::fromIcmp6Message(raHeader, global, raDest, 1).info).srcIp6Addr(), global);
}

TEST(RaParser, OfRouterLifetimeZeroGivesADeathPacket) {
  Octets message = raHeader;
  message[6] = message[7] = 0;
  EXPECT_TRUE(parsed(message).isDeathPacket());
  message[7] = 1;
  EXPECT_FALSE(parsed(message).isDeathPacket());
  message[6] = 1;
  message[7] = 0;
  EXPECT_FALSE(parsed(message).isDeathPacket());
}

TEST(RaParser, TakesHeaderFieldsThatAShortMessageLacksForZero) {
  Octets whole = raHeader;
  whole[5] = 0xc0;
  whole[15] = 0xe8;
  Octets zeroed = whole;
  Octets cut = whole;
  while (cut.size() > 4) {
    cut.pop_back();
    zeroed[cut.size()] = 0;
    EXPECT_EQ(parsed(cut), parsed(zeroed)) << cut.size();
    EXPECT_NE(parsed(cut), parsed(whole)) << cut.size();
  }
}

TEST(RaParser, FindsNoOptionsInFewerThan18Octets) {
  RaPacket const header = parsed(raHeader);
  EXPECT_EQ(parsed(raHeader + Octets{5}), header);
  EXPECT_EQ(parsed(raHeader + Octets{3}), header);
}

TEST(RaParser, ReadsTheHeaderOfAMessageOfUnknownLengthAndNoOptions) {
  auto const info = withoutLength(raHeader + mtuOption(1400) + otherOption(1, 0));
  ASSERT_EQ(info->packet()->icmp6MsgLen(), 0U);
  EXPECT_EQ(makeRaPacketType("Ethernet1", info), parsed(raHeader));
}

TEST(RaParser, ReadsNoMoreOfAMessageOfUnknownLengthThanThePacketHas) {
  Octets const cut(raHeader.begin(), raHeader.begin() + 8);
  RaPacket const packet = makeRaPacketType("Ethernet1", withoutLength(cut));
  EXPECT_EQ(packet.routerLifeTime(), 1800);
  EXPECT_EQ(packet.reachableTime(), 0U);
  EXPECT_TRUE(makeRaPacketType("Ethernet1", withoutLength({})).isDeathPacket());
}

TEST(RaParser, GivesThePacketOfTheEmptyInterfaceWhenThatIsAskedFor) {
  RaPacket const packet = makeRaPacketType(IntfId(), received(raHeader));
  EXPECT_TRUE(packet.intfId().empty());
  EXPECT_EQ(packet.routerLifeTime(), 1800);
}

// --- MTU

TEST(RaParser, TakesTheMtu) {
  RaPacket const packet = parsed(raHeader + mtuOption(0xfedcba98));
  EXPECT_TRUE(packet.mtuSpecified());
  EXPECT_EQ(packet.mtu(), 0xfedcba98U);
}

TEST(RaParser, TakesAnMtuOfZeroForSpecified) {
  RaPacket const packet = parsed(raHeader + mtuOption(0));
  EXPECT_TRUE(packet.mtuSpecified());
  EXPECT_EQ(packet.mtu(), 0U);
}

TEST(RaParser, LetsTheSecondMtuOptionOverwriteTheFirst) {
  EXPECT_EQ(parsed(raHeader + mtuOption(1400) + mtuOption(1300)).mtu(), 1300U);
}

TEST(RaParser, TakesTheMtuFromItsPlaceWhateverTheOptionsLength) {
  EXPECT_EQ(parsed(raHeader + mtuOption(1400, 2) + Octets(8, 0xee)).mtu(), 1400U);
}

TEST(RaParser, IgnoresReservedBitsOfAnMtuOption) {
  Octets option = mtuOption(1400);
  option[2] = option[3] = 0xff;
  EXPECT_EQ(parsed(raHeader + option), parsed(raHeader + mtuOption(1400)));
}

// --- Prefix Information

TEST(RaParser, TakesEveryFieldOfAPrefix) {
  Octets option = prefixOption();
  option[2] = 57;
  option[3] = 0x80;
  for (std::size_t i = 4; i < 32; ++i) option[i] = static_cast<U8>(i);
  RaPacket const packet = parsed(raHeader + option);
  Ip6AddrWithMask const prefix("1011:1213:1415:1617:1819:1a1b:1c1d:1e1f/57");
  ASSERT_EQ(packet.prefixInfo().size(), 1U);
  ASSERT_TRUE(packet.prefixInfo().contains(prefix));
  RaPacketPrefixInfo const info = packet.prefixInfo(prefix);
  EXPECT_EQ(info.prefix(), prefix);
  EXPECT_TRUE(info.onLinkFlag());
  EXPECT_FALSE(info.autoConfigFlag());
  EXPECT_EQ(info.validLifetime(), 0x04050607U);
  EXPECT_EQ(info.preferredLifetime(), 0x08090a0bU);
}

struct FlagsRow {
  char const* name;
  U8 flags;
  bool onLink, autoConfig;
  friend void PrintTo(FlagsRow const& r, std::ostream* os) { *os << r.name; }
};
FlagsRow const flagsRows[] = {
    {"NoFlags", 0x00, false, false}, {"OnLink", 0x80, true, false},        {"Autonomous", 0x40, false, true},
    {"Both", 0xc0, true, true},      {"ReservedBits", 0x3f, false, false}, {"EveryBit", 0xff, true, true},
};
class RaParserPrefixFlags : public testing::TestWithParam<FlagsRow> {};
TEST_P(RaParserPrefixFlags, AreReadFromTheirBits) {
  RaPacket const packet = parsed(raHeader + prefixOption({.flags = GetParam().flags}));
  RaPacketPrefixInfo const info = packet.prefixInfo(Ip6AddrWithMask("2001:db8:1::/64"));
  EXPECT_EQ(info.onLinkFlag(), GetParam().onLink);
  EXPECT_EQ(info.autoConfigFlag(), GetParam().autoConfig);
}
INSTANTIATE_TEST_SUITE_P(Rows, RaParserPrefixFlags, testing::ValuesIn(flagsRows),
                         [](auto const& row) { return row.param.name; });

TEST(RaParser, IgnoresTheReservedFieldOfAPrefix) {
  Octets option = prefixOption();
  for (std::size_t i = 12; i < 16; ++i) option[i] = 0xff;
  EXPECT_EQ(parsed(raHeader + option), parsed(raHeader + prefixOption()));
}

TEST(RaParser, KeepsTheOrderOfThePrefixes) {
  EXPECT_THAT(prefixesOf(parsed(raHeader + prefixOption({.subnet = 9}) + prefixOption({.subnet = 3}) +
                                prefixOption({.subnet = 7}))),
              ElementsAre(Pair("2001:db8:9::/64", 9), Pair("2001:db8:3::/64", 9), Pair("2001:db8:7::/64", 9)));
}

TEST(RaParser, LetsTheFirstOfTwoEqualPrefixesWin) {
  RaPacket const packet = parsed(raHeader + prefixOption({.flags = 0x80, .lifetime = 20}) +
                                 prefixOption({.flags = 0x40, .lifetime = 30}) + mtuOption(1400));
  EXPECT_THAT(prefixesOf(packet), ElementsAre(Pair("2001:db8:1::/64", 20)));
  EXPECT_FALSE(packet.prefixInfo(Ip6AddrWithMask("2001:db8:1::/64")).autoConfigFlag());
  EXPECT_EQ(packet.mtu(), 1400U) << "the walk goes on behind the second one";
}

TEST(RaParser, TakesEqualAddressesOfDifferentLengthsForTwoPrefixes) {
  EXPECT_THAT(prefixesOf(parsed(raHeader + prefixOption({.prefixLength = 64, .lifetime = 1}) +
                                prefixOption({.prefixLength = 48, .lifetime = 2}))),
              ElementsAre(Pair("2001:db8:1::/64", 1), Pair("2001:db8:1::/48", 2)));
}

TEST(RaParser, KeepsHostBits) {
  EXPECT_THAT(prefixesOf(parsed(raHeader + prefixOption({.subnet = 0x1fff, .prefixLength = 36}))),
              ElementsAre(Pair("2001:db8:1fff::/36", 9)));
}

TEST(RaParser, KeepsPrefixLengthsAbove128) {
  EXPECT_THAT(prefixesOf(parsed(raHeader + prefixOption({.prefixLength = 128}) + prefixOption({.prefixLength = 129}) +
                                prefixOption({.prefixLength = 255}))),
              ElementsAre(Pair("2001:db8:1::/128", 9), Pair("2001:db8:1::/129", 9), Pair("2001:db8:1::/255", 9)));
}

TEST(RaParser, ReadsTheFieldsOfAPrefixWhateverTheOptionsLength) {
  // Length 1 of a complete option: what follows begins inside it, where its lifetimes stand.
  Octets option = prefixOption({.length = 1});
  option[8] = 1;  // "type" of what stands at 8
  option[9] = 3;  // and its length: to the end
  EXPECT_THAT(prefixesOf(parsed(raHeader + option)), ElementsAre(Pair("2001:db8:1::/64", 9)));
  EXPECT_THAT(prefixesOf(parsed(raHeader + prefixOption({.length = 5}) + Octets(8, 0))),
              ElementsAre(Pair("2001:db8:1::/64", 9)));
}

// The entry of the all-zero prefix with nothing set equals one that is absent, so it does not count as the first.
TEST(RaParser, DoesNotTakeAPrefixThatIsAllZeroForKnown) {
  Octets zero = otherOption(3, 4, 0);
  Octets other = zero;
  other[3] = 0x80;
  RaPacket const twice = parsed(raHeader + zero + zero + mtuOption(1400));
  ASSERT_THAT(prefixesOf(twice), ElementsAre(Pair("::/0", 0)));
  EXPECT_EQ(twice.prefixInfo(Ip6AddrWithMask()), RaPacketPrefixInfo());
  EXPECT_EQ(twice.mtu(), 1400U);
  EXPECT_TRUE(parsed(raHeader + zero + other).prefixInfo(Ip6AddrWithMask()).onLinkFlag());
  EXPECT_TRUE(parsed(raHeader + other + zero).prefixInfo(Ip6AddrWithMask()).onLinkFlag());
}

TEST(RaParser, TakesMorePrefixesThanAnyFrameHolds) {
  Octets message = raHeader;
  for (U16 subnet = 0; subnet < 2'000; ++subnet) message = message + prefixOption({.subnet = subnet});
  RaPacket const packet = parsed(message);
  ASSERT_EQ(packet.prefixInfo().size(), 2'000U);
  EXPECT_EQ(prefixesOf(packet).back().first, "2001:db8:7cf::/64");
}

// --- other options

struct OtherRow {
  char const* name;
  Octets options;
  friend void PrintTo(OtherRow const& r, std::ostream* os) { *os << r.name; }
};
OtherRow const otherRows[] = {
    {"SourceLinkLayerAddress", otherOption(1, 1)},
    {"TargetLinkLayerAddress", otherOption(2, 1)},
    {"RouteInformation", otherOption(24, 3)},
    {"RdnssOfTwoServers", otherOption(25, 5)},
    {"RdnssOfEvenLength", otherOption(25, 4)},
    {"RdnssWithoutServers", otherOption(25, 1)},
    {"RdnssOf127Servers", otherOption(25, 255)},
    {"MoreThan127ServersInTwoOptions", otherOption(25, 255) + otherOption(25, 3)},
    {"SearchListWithALabelOf64Octets", otherOption(31, 9, 64)},
    {"SearchListWithALabelOf255Octets", otherOption(31, 33, 255)},
    {"NetworkBoot", otherOption(253, 4)},
    {"TypeZero", otherOption(0, 1)},
    {"TypeOfARouterAdvertisement", otherOption(134, 2)},
    {"LongestOption", otherOption(255, 255)},
};
class RaParserOtherOption : public testing::TestWithParam<OtherRow> {};
TEST_P(RaParserOtherOption, LeavesNoTraceAndHidesNothingBehindIt) {
  Octets const& other = GetParam().options;
  EXPECT_EQ(parsed(raHeader + other + mtuOption(1400) + other + prefixOption() + other),
            parsed(raHeader + mtuOption(1400) + prefixOption()));
}
INSTANTIATE_TEST_SUITE_P(Rows, RaParserOtherOption, testing::ValuesIn(otherRows),
                         [](auto const& row) { return row.param.name; });

// --- ends

TEST(RaParser, TakesOptionsThatEndWithTheMessage) {
  RaPacket const packet = parsed(raHeader + mtuOption(1400) + prefixOption());
  EXPECT_EQ(packet.prefixInfo().size(), 1U);
}

TEST(RaParser, IgnoresASingleOctetBehindTheLastOption) {
  for (U8 const octet : Octets{0, 3, 5, 255})
    EXPECT_EQ(parsed(raHeader + mtuOption(1400) + Octets{octet}), parsed(raHeader + mtuOption(1400)));
}

TEST(RaParser, EndsAtAnOtherOptionThatPassesTheEnd) {
  for (U8 const length : Octets{2, 255})
    EXPECT_EQ(parsed(raHeader + mtuOption(1400) + Octets{1, length, 0, 0, 0, 0, 0, 0}),
              parsed(raHeader + mtuOption(1400)));
}

TEST(RaParser, TakesFieldsThatAreThereOfAnOptionWhoseLengthPassesTheEnd) {
  EXPECT_EQ(parsed(raHeader + mtuOption(1400, 255)).mtu(), 1400U);
  EXPECT_THAT(prefixesOf(parsed(raHeader + prefixOption({.length = 255}))), ElementsAre(Pair("2001:db8:1::/64", 9)));
}

TEST(RaParser, TakesNothingOfAnMtuOptionCutAnywhere) {
  Octets const whole = raHeader + prefixOption() + mtuOption(1400);
  for (std::size_t lack = 1; lack <= 8; ++lack)
    EXPECT_EQ(parsed(Octets(whole.begin(), whole.end() - static_cast<std::ptrdiff_t>(lack))),
              parsed(raHeader + prefixOption()))
        << lack;
}

TEST(RaParser, TakesNothingOfAPrefixOptionCutAnywhere) {
  Octets const whole = raHeader + mtuOption(1400) + prefixOption();
  for (std::size_t lack = 1; lack <= 32; ++lack)
    EXPECT_EQ(parsed(Octets(whole.begin(), whole.end() - static_cast<std::ptrdiff_t>(lack))),
              parsed(raHeader + mtuOption(1400)))
        << lack;
}

/// A Prefix Information option of that length, and no octet more: the rest of its fields is what follows.
Octets shortPrefixOption(U8 length) {
  Octets option = prefixOption({.length = length});
  option.resize(std::size_t{8} * length);
  return option;
}

/// The first `size` octets.
Octets firstOf(std::size_t size, Octets octets) {
  octets.resize(size);
  return octets;
}

/// The option without type and length.
Octets bodyOf(Octets const& option) { return {option.begin() + 2, option.end()}; }

struct CutRow {
  char const* name;
  Octets options;     ///< with a Prefix Information option whose fields pass the end, and whose length does not
  Octets asIfItWere;  ///< the options that give the same
  friend void PrintTo(CutRow const& r, std::ostream* os) { *os << r.name; }
};
CutRow const cutRows[] = {
    {"OfLength1AtTheEnd", shortPrefixOption(1), {}},
    {"OfLength2AtTheEnd", shortPrefixOption(2), {}},
    {"OfLength3AtTheEnd", shortPrefixOption(3), {}},
    {"OfLength1BeforeAnMtu", shortPrefixOption(1) + mtuOption(1400), mtuOption(1400)},
    {"OfLength2BeforeAnMtu", shortPrefixOption(2) + mtuOption(1400), mtuOption(1400)},
    {"OfLength3BeforeAnOtherOption", shortPrefixOption(3) + Octets{1, 1, 0, 0, 0, 0, 0}, {}},
    {"OneOctetBeforeItsFieldsEnd", firstOf(31, shortPrefixOption(1) + times(3, mtuOption(1400))), mtuOption(1400)},
    {"TwiceBeforeAnMtu", times(2, shortPrefixOption(1)) + mtuOption(1400), mtuOption(1400)},
    // Those at 0 and 16 have all their fields, of which the last is what follows; those at 32 and 48 have not.
    {"SixtyThreeOctetsOfLength2", firstOf(63, times(4, shortPrefixOption(2))),
     Octets{3, 4} + bodyOf(shortPrefixOption(2)) + shortPrefixOption(2)},
    {"SixtyThreeOctetsOfLength2AndAnMtu", firstOf(63, times(3, shortPrefixOption(2)) + times(2, mtuOption(1400))),
     Octets{3, 4} + bodyOf(shortPrefixOption(2)) + shortPrefixOption(2) + mtuOption(1400)},
    {"SixtyThreeOctetsOfLength3", firstOf(63, times(3, shortPrefixOption(3))),
     Octets{3, 4} + bodyOf(shortPrefixOption(3)) + firstOf(8, shortPrefixOption(3))},
};
class RaParserCutPrefix : public testing::TestWithParam<CutRow> {};
TEST_P(RaParserCutPrefix, GivesNothingAndIsSkippedByItsLength) {
  EXPECT_EQ(parsed(raHeader + GetParam().options), parsed(raHeader + GetParam().asIfItWere));
}
INSTANTIATE_TEST_SUITE_P(Rows, RaParserCutPrefix, testing::ValuesIn(cutRows),
                         [](auto const& row) { return row.param.name; });

TEST(RaParser, TakesNoOctetsBehindTheMessage) {
  // The packet goes on behind the message; the message is what counts.
  Octets const message = raHeader + prefixOption();
  auto pkt = Net::globalPktManager().newPkt();
  pkt->dataIs(message);
  pkt->icmp6MsgIs(0, message.size() - 1);
  EXPECT_EQ(makeRaPacketType("Ethernet1", Ip6PktInfo::make(pkt, raSource, raDest, 255)), parsed(raHeader));
}

TEST(RaParser, ReadsTheHeaderWhateverTheLengthOfTheMessage) {
  auto pkt = Net::globalPktManager().newPkt();
  pkt->dataIs(raHeader + mtuOption(1400));
  auto const record = [&] { return makeRaPacketType("Ethernet1", Ip6PktInfo::make(pkt, raSource, raDest, 255)); };
  EXPECT_EQ(record(), parsed(raHeader)) << "not located";
  for (std::size_t length = 4; length <= raHeader.size(); ++length) {
    pkt->icmp6MsgIs(0, length);
    EXPECT_EQ(record(), parsed(raHeader)) << length;
  }
}

// --- length 0

struct ZeroRow {
  char const* name;
  Octets options;
  friend void PrintTo(ZeroRow const& r, std::ostream* os) { *os << r.name; }
};
ZeroRow const zeroRows[] = {
    {"SourceLinkLayerAddress", otherOption(1, 0)},
    {"Mtu", mtuOption(1400, 0)},
    {"FirstPrefix", prefixOption({.length = 0})},
    {"EqualPrefix", prefixOption() + prefixOption({.length = 0})},
    {"OtherPrefix", prefixOption() + prefixOption({.subnet = 2, .length = 0})},
    {"AllZeroPrefixAgain", otherOption(3, 4, 0) + Octets{3, 0} + Octets(30, 0)},
    {"MtuOfTwoOctets", {5, 0}},
    {"PrefixOfTwoOctets", {3, 0}},
    {"PrefixCutShort", {3, 0, 64, 0xc0, 0, 0, 0, 9}},
    {"UnknownOfTwoOctets", {200, 0}},
    {"TypeZeroToo", {0, 0}},
    {"Rdnss", otherOption(25, 0)},
    {"BehindOthers", mtuOption(1400) + prefixOption() + otherOption(25, 3) + otherOption(31, 0)},
    {"BetweenOthers", mtuOption(1400) + otherOption(1, 0) + prefixOption()},
    {"PaddingOfZeros", mtuOption(1400) + Octets(6, 0)},
    {"BehindACutPrefixOfLength1", shortPrefixOption(1) + otherOption(1, 0)},
    {"BehindACutPrefixOfLength2", shortPrefixOption(2) + otherOption(1, 0)},
    {"BehindACutPrefixOfLength3", shortPrefixOption(3) + Octets{1, 0}},
    {"BehindACutPrefixAndAnMtu", shortPrefixOption(1) + mtuOption(1400) + Octets{5, 0}},
};
class RaParserLengthZero : public testing::TestWithParam<ZeroRow> {};
TEST_P(RaParserLengthZero, RejectsTheMessage) { EXPECT_TRUE(isRejected(parsed(raHeader + GetParam().options))); }
TEST_P(RaParserLengthZero, IsTracedOnce) {
  auto const info = received(raHeader + GetParam().options);
  Trace::Capture capture("RouterAdvtUtils", "3");
  makeRaPacketType("Ethernet1", info);
  ASSERT_EQ(capture.records().size(), 1U);
  auto const& record = capture.records()[0];
  EXPECT_EQ(record.level, 3U);
  EXPECT_EQ(record.source, "Ipv6RouterAdvt/RouterAdvtUtils");
  EXPECT_EQ(record.line, 588);
  EXPECT_EQ(record.function, "makeRaPacketType");
  EXPECT_EQ(record.text, "Router Advertisement msg. has option with length 0 ");
}
INSTANTIATE_TEST_SUITE_P(Rows, RaParserLengthZero, testing::ValuesIn(zeroRows),
                         [](auto const& row) { return row.param.name; });

// --- long messages

TEST(RaParser, Takes64KiBOfOptions) {
  Octets const message = raHeader + times(8'188, otherOption(1, 1)) + mtuOption(1400);
  ASSERT_EQ(message.size(), 65'528U);
  EXPECT_EQ(parsed(message).mtu(), 1400U);
}

TEST(RaParser, GoesOnWhereTheOffsetWraps) {
  // An option of 32 octets at 65528 leads to 24, into the second option, which reads as an MTU option there.
  Octets message = raHeader + Octets{1, 2, 0, 0, 0, 0, 0, 0} + mtuOption(1300);
  message = message + times(8'187, otherOption(1, 1));
  ASSERT_EQ(message.size(), 65'528U);
  EXPECT_FALSE(parsed(message).mtuSpecified());
  RaPacket const packet = parsed(message + otherOption(1, 4));
  EXPECT_EQ(packet.mtu(), 1300U);
}

TEST(RaParser, RejectsAMessageWhoseWrapLeadsToTheHeadersCodeZero) {
  EXPECT_TRUE(isRejected(parsed(raHeader + times(8'190, otherOption(1, 1)))));
}

TEST(RaParser, EndsInAMessageOf16MiBWhateverItHolds) {
  constexpr std::size_t most = Net::Pkt::maxSize;
  EXPECT_TRUE(isRejected(parsed(Octets(most, 0))));
  for (U8 const octet : Octets{1, 3, 5, 255}) {
    Octets message(most, octet);
    message[1] = 1;
    EXPECT_EQ(parsed(message).intfId(), "Ethernet1") << int{octet};
  }
}

TEST(RaParser, Takes4000EqualPrefixes) {
  RaPacket const packet = parsed(raHeader + times(4'000, prefixOption()));
  EXPECT_THAT(prefixesOf(packet), ElementsAre(Pair("2001:db8:1::/64", 9)));
}

// What grows with the number of equal prefixes is the number of steps alone (OptionReaderTest): the table that they are
// looked up in keeps its one entry, and no memory is asked for.
TEST(RaParser, TakesNoMoreMemoryForMoreEqualPrefixes) {
  for (std::size_t const count : {1U, 1'000U, 2'000U, 4'000U}) {
    auto const info = received(raHeader + times(count, prefixOption()));
    std::size_t const before = allocationCount();
    RaPacket const packet = makeRaPacketType("Ethernet1", info);
    EXPECT_EQ(allocationCount(), before) << count;
    EXPECT_EQ(packet.prefixInfo().size(), 1U);
  }
}

/// A prefix that counts how often one is compared.
struct CountedPrefix {
  Ip6AddrWithMask prefix;
  static inline U64 comparisons = 0;

  U64 hash(U64 seed) const noexcept { return prefix.hash(seed); }
  bool operator==(CountedPrefix const& other) const noexcept {
    ++comparisons;
    return prefix == other.prefix;
  }
};

/// How many comparisons the lookups for that many prefix options take, `different` of which come in turn.
U64 comparisonsFor(U32 options, U32 different) {
  constexpr U32 inlineRoom = 4;
  static_assert(std::is_same_v<RaPacket::PrefixInfo, Fwk::OrderedMap<Ip6AddrWithMask, RaPacketPrefixInfo, inlineRoom>>);
  Fwk::OrderedMap<CountedPrefix, RaPacketPrefixInfo, inlineRoom> prefixes;
  CountedPrefix::comparisons = 0;
  for (U32 i = 0; i < options; ++i) {
    std::array<U8, 16> octets{0x20, 0x01, 0x0d, 0xb8};
    octets[6] = static_cast<U8>(i % different >> 8);
    octets[7] = static_cast<U8>(i % different);
    CountedPrefix const key{Ip6AddrWithMask(Ip6Addr::fromBytes(octets), 64)};
    if (!prefixes.find(key)) prefixes.set(key, RaPacketPrefixInfo(key.prefix));
  }
  return CountedPrefix::comparisons;
}

// The seed of the hash is the process's own: equal tags of different prefixes may come, by chance and seldom.
TEST(RaParser, FindsPrefixesWithoutComparingAllOfThem) {
  for (U32 const options : {100U, 1'000U, 4'000U}) {
    EXPECT_LT(comparisonsFor(options, options), 2 * options) << "all different";
    EXPECT_LT(comparisonsFor(options, options / 2), 2 * options) << "each one twice";
    EXPECT_EQ(comparisonsFor(options, 1), options - 1) << "all equal";
  }
}

// --- allocation, repetition, trace

TEST(RaParser, AllocatesNothingUpToFourPrefixes) {
  Octets message = raHeader + mtuOption(1400) + otherOption(25, 5);
  for (U16 subnet = 1; subnet <= 4; ++subnet) {
    message = message + prefixOption({.subnet = subnet});
    auto const info = received(message);
    std::size_t const before = allocationCount();
    RaPacket const packet = makeRaPacketType("Ethernet1", info);
    EXPECT_EQ(allocationCount(), before) << subnet;
    EXPECT_EQ(packet.prefixInfo().size(), subnet);
  }
}

/// A frame with that many prefixes.
Octets frameWithPrefixes(U32 prefixes) {
  auto const config = intfConfigFactory("Ethernet1");
  for (U32 i = 1; i <= prefixes; ++i) config->prefixesIs(Ip6AddrWithMask("2001:db8:" + std::to_string(i) + "::/64"));
  auto const pkt = makeIp6RaPkt(raSource, raDest, EthAddr("02:00:00:00:00:01"), EthAddr("33:33:00:00:00:01"),
                                Fwk::create<Ip6::IntfStatus>(IntfId("Ethernet1")), config, true, 1500, false, nullptr,
                                "Ethernet1", false);
  return {pkt->octets().begin(), pkt->octets().end()};
}

TEST(RaParser, AllocatesNothingFromFrameToRecordInSteadyState) {
  for (U32 prefixes = 0; prefixes <= 4; ++prefixes) {
    Octets const frame = frameWithPrefixes(prefixes);
    auto const receive = [&] {
      auto const info = Ip6PktInfo::fromEthernetFrame(frame).info;
      return icmp6ChecksumValid(info) && makeRaPacketType("Ethernet1", info).prefixInfo().size() == prefixes;
    };
    receive();
    std::size_t const before = allocationCount();
    bool const good = receive();
    EXPECT_EQ(allocationCount(), before) << prefixes;
    EXPECT_TRUE(good) << prefixes;
  }
}

TEST(RaParser, AllocatesNothingForARejectedMessage) {
  auto const info = received(raHeader + prefixOption() + otherOption(1, 0));
  std::size_t const before = allocationCount();
  RaPacket const packet = makeRaPacketType("Ethernet1", info);
  EXPECT_EQ(allocationCount(), before);
  EXPECT_TRUE(isRejected(packet));
}

TEST(RaParser, KeepsNoStateBetweenCalls) {
  Octets const message = raHeader + mtuOption(1400) + prefixOption();
  RaPacket const before = parsed(message);
  parsed(raHeader + prefixOption({.subnet = 2}) + otherOption(1, 0));
  EXPECT_EQ(parsed(message), before);
}

TEST(RaParser, LeavesThePacketAsItCame) {
  Octets const message = raHeader + mtuOption(1400) + prefixOption() + otherOption(1, 0);
  auto const info = received(message);
  makeRaPacketType("Ethernet1", info);
  auto const octets = info->packet()->octets();
  EXPECT_EQ(Octets(octets.begin(), octets.end()), message);
}

TEST(RaParser, TracesItsEntryAtLevel8) {
  auto const info = received(raHeader + mtuOption(1400) + prefixOption());
  Trace::Capture capture("RouterAdvtUtils");
  makeRaPacketType("Ethernet1/2", info);
  ASSERT_EQ(capture.records().size(), 1U);
  auto const& record = capture.records()[0];
  EXPECT_EQ(record.level, 8U);
  EXPECT_EQ(record.source, "Ipv6RouterAdvt/RouterAdvtUtils");
  EXPECT_EQ(record.line, 539);
  EXPECT_EQ(record.function, "makeRaPacketType");
  EXPECT_EQ(record.text,
            "RouterAdvt::RaPacket RouterAdvt::makeRaPacketType(IntfId, const Ptr<Ip6PktInfo>&) for Ethernet1/2");
}

TEST(RaParser, TracesNothingForAMessageThatItTakesAtLevel3) {
  auto const info = received(raHeader + mtuOption(1400) + otherOption(1, 200));
  Trace::Capture capture("RouterAdvtUtils", "0-7");
  makeRaPacketType("Ethernet1", info);
  EXPECT_THAT(capture.records(), IsEmpty());
}

TEST(RaParserDeathTest, WithoutAPacketIsAProgrammingError) {
  EXPECT_DEATH(makeRaPacketType("Ethernet1", Ip6PktInfo::make(nullptr, raSource, raDest, 255)), "");
}

}  // namespace
}  // namespace RouterAdvt

#include <RouterPlatform/Packet/PktManager.h>
#include <tests/Ipv6RouterAdvt/Support/Advert.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <thread>

namespace {

using namespace AdvertTest;
using testing::ElementsAre;

constexpr std::size_t curHopLimit = 58, flags = 59, routerLifetime = 60;

struct FieldRow {
  char const* name;
  std::size_t offset;
  char const* hex;
  void (*change)(Advert&) = [](Advert&) {};

  friend void PrintTo(FieldRow const& r, std::ostream* os) { *os << r.name; }
};

// A row is a field: where it stands and what it holds, as things are and after a change.
FieldRow const fieldRows[] = {
    {"EthernetDestination", 0, "333300000001"},
    {"EthernetDestinationAsGiven", 0, "0102030405ff", [](Advert& a) { a.dstMac = EthAddr("01:02:03:04:05:ff"); }},
    {"EthernetSource", 6, "020000000001"},
    {"EthernetSourceAsGiven", 6, "fe1213141516", [](Advert& a) { a.srcMac = EthAddr("fe:12:13:14:15:16"); }},
    {"EtherType", 12, "86dd"},
    {"VersionTrafficClassFlowLabel", 14, "60000000"},
    {"PayloadLength", 18, "0020"},
    {"PayloadLengthWithoutMtu", 18, "0018", [](Advert& a) { a.config->raMtuSuppressIs(true); }},
    {"NextHeader", 20, "3a"},
    {"HopLimit", 21, "ff"},
    {"HopLimitIsNotTheConfiguredOne", 21, "ff", [](Advert& a) { a.config->hopLimitIs(1); }},
    {"SourceAddress", 22, "fe800000000000000000000000000001"},
    {"SourceAddressAsGiven", 22, "20010db8000000000000000000000007",
     [](Advert& a) { a.srcAddr = Ip6Addr("2001:db8::7"); }},
    {"DestinationAddress", 38, "ff020000000000000000000000000001"},
    {"DestinationAddressAsGiven", 38, "fe80000000000000000000000000abcd",
     [](Advert& a) { a.dstAddr = Ip6Addr("fe80::abcd"); }},
    {"Icmp6Type", 54, "86"},
    {"Icmp6Code", 55, "00"},
    {"CurHopLimit", 58, "40"},
    {"CurHopLimit0", 58, "00", [](Advert& a) { a.config->hopLimitIs(0); }},
    {"CurHopLimit255", 58, "ff", [](Advert& a) { a.config->hopLimitIs(255); }},
    {"CurHopLimit256IsSentAs255", 58, "ff", [](Advert& a) { a.config->hopLimitIs(256); }},
    {"CurHopLimitAtMostIsSentAs255", 58, "ff", [](Advert& a) { a.config->hopLimitIs(4294967295); }},
    {"Flags", 59, "00"},
    {"RouterLifetime", 60, "0708"},
    {"RouterLifetime65535", 60, "ffff", [](Advert& a) { a.config->raLifetimeIs(65535); }},
    {"RouterLifetime65536IsTruncatedTo0", 60, "0000", [](Advert& a) { a.config->raLifetimeIs(65536); }},
    {"RouterLifetime70000IsTruncatedTo4464", 60, "1170", [](Advert& a) { a.config->raLifetimeIs(70000); }},
    {"RouterLifetimeAtMostIsTruncated", 60, "ffff", [](Advert& a) { a.config->raLifetimeIs(4294967295); }},
    {"ReachableTime", 62, "00000000"},
    {"ReachableTimeAsStored", 62, "01020304", [](Advert& a) { a.config->reachableTimeIs(0x01020304); }},
    {"ReachableTimeAtMost", 62, "ffffffff", [](Advert& a) { a.config->reachableTimeIs(4294967295); }},
    {"RetransTimer", 66, "00000000"},
    {"RetransTimerOfTheInterface", 66, "a1a2a3a4", [](Advert& a) { a.status->nsRetransmitIntervalIs(0xa1a2a3a4); }},
    {"RetransTimerIsNotTheConfiguredInterval", 66, "00000000", [](Advert& a) { a.config->nsIntervalMsecIs(1000); }},
    {"SourceLinkLayerAddressOption", 70, "0101020000000001"},
    {"SourceLinkLayerAddressOptionHasTheSourceMac", 70, "0101fe1213141516",
     [](Advert& a) { a.srcMac = EthAddr("fe:12:13:14:15:16"); }},
    {"MtuOption", 78, "05010000000005dc"},
    {"MtuOptionOfALinkMtu", 78, "0501000000000500", [](Advert& a) { a.mtu = 1280; }},
    {"MtuOptionOfTheLeastMtu", 78, "0501000000000056", [](Advert& a) { a.mtu = 86; }},
    {"MtuOptionAboveTheFrameSizeAsGiven", 78, "0501000000002328", [](Advert& a) { a.mtu = 9000; }},
    {"MtuOptionAtMost", 78, "050100007fffffff", [](Advert& a) { a.mtu = 2147483647; }},
};
class AdvertField : public testing::TestWithParam<FieldRow> {};
TEST_P(AdvertField, StandsInItsPlace) {
  FieldRow const& row = GetParam();
  Advert advert;
  row.change(advert);
  Octets const frame = advert.frame();
  Octets const expected = Frame::fromHex(row.hex);
  ASSERT_LE(row.offset + expected.size(), frame.size());
  EXPECT_EQ(Frame::toHex(Frame::View(frame).subspan(row.offset, expected.size())), row.hex);
}
INSTANTIATE_TEST_SUITE_P(Rows, AdvertField, testing::ValuesIn(fieldRows));

struct FlagsRow {
  char const* name;
  bool managed, other;
  Preference preference;
  U32 raLifetime;
  U8 flags;

  friend void PrintTo(FlagsRow const& r, std::ostream* os) { *os << r.name; }
};
FlagsRow const flagsRows[] = {
    {"Medium", false, false, Preference::medium, 1800, 0x00},
    {"MediumOther", false, true, Preference::medium, 1800, 0x40},
    {"MediumManaged", true, false, Preference::medium, 1800, 0x80},
    {"MediumManagedOther", true, true, Preference::medium, 1800, 0xc0},
    {"High", false, false, Preference::high, 1800, 0x08},
    {"HighOther", false, true, Preference::high, 1800, 0x48},
    {"HighManaged", true, false, Preference::high, 1800, 0x88},
    {"HighManagedOther", true, true, Preference::high, 1800, 0xc8},
    {"Low", false, false, Preference::low, 1800, 0x18},
    {"LowOther", false, true, Preference::low, 1800, 0x58},
    {"LowManaged", true, false, Preference::low, 1800, 0x98},
    {"LowManagedOther", true, true, Preference::low, 1800, 0xd8},
    {"MediumWithoutLifetime", false, false, Preference::medium, 0, 0x18},
    {"HighWithoutLifetime", false, false, Preference::high, 0, 0x18},
    {"LowWithoutLifetime", false, false, Preference::low, 0, 0x18},
    {"HighManagedOtherWithoutLifetime", true, true, Preference::high, 0, 0xd8},
    {"HighWithALifetimeTruncatedTo0", false, false, Preference::high, 65536, 0x18},
    {"HighWithALifetimeTruncatedTo4464", false, false, Preference::high, 70000, 0x08},
    {"ValueBeyondTheTwoBitsIsShiftedAsItIs", true, false, static_cast<Preference>(5), 1800, 0xa8},
    {"ValueBeyondTheTwoBitsLeavesTheLowBits0", false, false, static_cast<Preference>(255), 1800, 0xf8},
};
class AdvertFlags : public testing::TestWithParam<FlagsRow> {};
TEST_P(AdvertFlags, AreMadeOfTheSwitchesAndThePreference) {
  FlagsRow const& row = GetParam();
  Advert advert;
  advert.config->managedConfigFlagIs(row.managed);
  advert.config->otherConfigFlagIs(row.other);
  advert.config->routerPreferenceIs(row.preference);
  advert.config->raLifetimeIs(row.raLifetime);
  EXPECT_EQ(advert.frame()[flags], row.flags);
}
INSTANTIATE_TEST_SUITE_P(Rows, AdvertFlags, testing::ValuesIn(flagsRows));

struct LifetimeRow {
  char const* name;
  bool advertiseLifetime, deathPacket, useVirtualRouter, virtualRouterIsThere;
  U16 routerLifetime;
  U8 flags;

  friend void PrintTo(LifetimeRow const& r, std::ostream* os) { *os << r.name; }
};
LifetimeRow const lifetimeRows[] = {
    {"Ordinary", true, false, false, false, 1800, 0x08},
    {"DeathPacket", true, true, false, false, 0, 0x18},
    {"LifetimeNotAdvertised", false, false, false, false, 0, 0x18},
    {"LifetimeNotAdvertisedInADeathPacket", false, true, false, false, 0, 0x18},
    {"VirtualRouter", true, false, true, true, 1800, 0x08},
    {"VirtualRouterThatIsNotThere", true, false, true, false, 0, 0x18},
    {"VirtualRouterNotAdvertised", true, false, false, true, 1800, 0x08},
    {"DeathPacketOfAVirtualRouter", true, true, true, true, 0, 0x18},
    {"LifetimeNotAdvertisedOfAVirtualRouter", false, false, true, true, 0, 0x18},
};
class AdvertRouterLifetime : public testing::TestWithParam<LifetimeRow> {};
TEST_P(AdvertRouterLifetime, IsTheConfiguredOneOnlyWhenAllHolds) {
  LifetimeRow const& row = GetParam();
  Advert advert;
  advert.config->routerPreferenceIs(Preference::high);
  advert.advertiseLifetime = row.advertiseLifetime;
  advert.deathPacket = row.deathPacket;
  if (row.virtualRouterIsThere) advert.virtualPrefix("2001:db8::/64");
  advert.useVirtualRouter = row.useVirtualRouter;
  Octets const frame = advert.frame();
  EXPECT_EQ(Frame::u16At(frame, routerLifetime), row.routerLifetime);
  EXPECT_EQ(frame[flags], row.flags);
}
INSTANTIATE_TEST_SUITE_P(Rows, AdvertRouterLifetime, testing::ValuesIn(lifetimeRows));

struct PreferenceRow {
  char const* name;
  Preference preference;
  friend void PrintTo(PreferenceRow const& row, std::ostream* out) { *out << row.name; }
};
class ADeathPacket : public testing::TestWithParam<PreferenceRow> {};
TEST_P(ADeathPacket, HasBothPreferenceBitsWhateverThePreference) {
  Advert advert;
  advert.deathPacket = true;
  advert.config->routerPreferenceIs(GetParam().preference);
  Octets const frame = advert.frame();
  EXPECT_EQ(Frame::u16At(frame, routerLifetime), 0);
  EXPECT_EQ(frame[flags] & 0x18, 0x18);
}
INSTANTIATE_TEST_SUITE_P(Preferences, ADeathPacket,
                         testing::Values(PreferenceRow{"Medium", Preference::medium},
                                         PreferenceRow{"High", Preference::high},
                                         PreferenceRow{"Low", Preference::low}));

TEST(RaPktBuilder, ADeathPacketHasTheOptionsOfTheOrdinaryOne) {
  Advert advert = typicalAdvert();
  auto const ordinary = advert.options();
  advert.deathPacket = true;
  EXPECT_EQ(advert.options(), ordinary);
}

TEST(RaPktBuilder, TheHopLimitsAreTwo) {
  Advert advert;
  advert.config->hopLimitIs(17);
  Octets const frame = advert.frame();
  EXPECT_EQ(frame[21], 255);
  EXPECT_EQ(frame[curHopLimit], 17);
}

TEST(RaPktBuilder, TheLeastAdvertisementIsHeadersAndSourceAddress) {
  Advert advert;
  advert.config->raMtuSuppressIs(true);
  EXPECT_EQ(advert.frame().size(), 78U);
  EXPECT_THAT(advert.options(), ElementsAre("0101020000000001"));
}

TEST(RaPktBuilder, WithoutMtuOptionTheNextOptionTakesItsPlace) {
  Advert advert;
  advert.config->raMtuSuppressIs(true);
  advert.prefix("2001:db8::/64");
  EXPECT_EQ(advert.frame()[78], 3);
}

TEST(RaPktBuilder, OptionsComeInTheirOrder) {
  Advert advert = typicalAdvert();
  advert.config->networkBootFileUrlIs("tftp://[::1]/");
  std::string types;
  for (std::string const& option : advert.options()) types += option.substr(0, 2) + ' ';
  EXPECT_EQ(types, "01 05 03 03 19 1f fd ");
}

TEST(RaPktBuilder, ThePacketIsAsLongAsAllThatWasWritten) {
  Advert advert = typicalAdvert();
  Octets const frame = advert.frame();
  // Fixed part, source address and MTU, two prefixes, two servers, two names of 13 octets padded to 32.
  EXPECT_EQ(frame.size(), 70U + 8 + 8 + 64 + 40 + 8 + 32);
  EXPECT_EQ(Frame::u16At(frame, 18), frame.size() - 54);
}

TEST(RaPktBuilder, TheMtuLimitsTheFrame) {
  Advert advert;
  advert.prefix("2001:db8::/64");
  advert.mtu = 117;
  EXPECT_EQ(advert.frame().size(), 86U);
  advert.mtu = 118;
  EXPECT_EQ(advert.frame().size(), 118U);
}

TEST(RaPktBuilder, AtMtu86TheFixedPartJustFits) {
  Advert advert = typicalAdvert();
  advert.mtu = 86;
  EXPECT_THAT(advert.options(), ElementsAre("0101020000000001", "0501000000000056"));
}

TEST(RaPktBuilder, Mtu9000IsSaidInTheOptionButTheFrameHasAtMost1536Octets) {
  Advert advert;
  advert.mtu = 9000;
  for (int i = 0; i < 100; ++i) advert.prefix("2001:db8:" + std::to_string(i) + "::/64");
  EXPECT_THAT(advert.options(5), ElementsAre("0501000000002328"));
  EXPECT_EQ(advert.options(3).size(), 45U);  // (1536 - 86) / 32
  EXPECT_EQ(advert.frame().size(), 86U + 45 * 32);
}

TEST(RaPktBuilder, PrefixesThatTheFrameHasNoRoomForAreToldOnce) {
  Advert advert;
  advert.mtu = 9000;
  for (int i = 0; i < 100; ++i) advert.prefix("2001:db8:" + std::to_string(i) + "::/64");
  Trace::Capture capture("RouterAdvtUtils", "3");
  advert.pkt();
  std::vector<std::string> leftOut;
  for (std::string const& text : capture.texts(3))
    if (text.starts_with("Could not copy ")) leftOut.push_back(text);
  EXPECT_THAT(leftOut, ElementsAre("Could not copy prefix as msgLen ( 1526 ) > pktBufSize > ( 1536)"));
}

TEST(RaPktBuilder, OptionsOfWholeUnitsFillAtMost1534Octets) {
  Advert advert;
  advert.mtu = 9000;
  advert.config->raMtuSuppressIs(true);
  for (int i = 0; i < 45; ++i) advert.prefix("2001:db8:" + std::to_string(i) + "::/64");
  advert.config->networkBootFileUrlIs(std::string(1000, 'x'));  // 16 of the 18 octets that are left
  EXPECT_EQ(advert.frame().size(), 1534U);
}

TEST(RaPktBuilder, TheChecksumIsThatOfTheMessageAndItsPseudoHeader) {
  Advert advert = typicalAdvert();
  Octets const frame = advert.frame();
  EXPECT_EQ(Frame::u16At(frame, 56), Frame::icmp6Checksum(frame));
}

TEST(RaPktBuilder, TheChecksumDependsOnTheAddresses) {
  Advert advert;
  U16 const one = Frame::u16At(advert.frame(), 56);
  advert.dstAddr = Ip6Addr("fe80::7");
  Octets const frame = advert.frame();
  EXPECT_NE(Frame::u16At(frame, 56), one);
  EXPECT_EQ(Frame::u16At(frame, 56), Frame::icmp6Checksum(frame));
}

TEST(RaPktBuilder, ThePacketKnowsWhereItsHeadersAre) {
  auto const pkt = typicalAdvert().pkt();
  EXPECT_EQ(reinterpret_cast<U8*>(pkt->ip6Hdr()), pkt->data() + 14);
  EXPECT_EQ(reinterpret_cast<U8*>(pkt->icmp6Hdr()), pkt->data() + 54);
  EXPECT_EQ(pkt->icmp6MsgLen(), pkt->size() - 54);
}

TEST(RaPktBuilder, BuildingTwiceGivesTheSameOctets) {
  Advert const advert = typicalAdvert();
  EXPECT_EQ(advert.frame(), advert.frame());
}

/// The frame, and the zeros that there are behind every one, built where `fill` was in every octet of the buffer.
Octets frameAndTailIn(U8 fill, Advert const& advert) {
  {
    auto const former = Net::globalPktManager().newPkt();  // its buffer comes back next
    former->reserveHeadData(Net::PktManager::newPktCapacity - Pkt::minTailRoom);
    former->trimTailData(-static_cast<Fwk::S64>(former->tailRoom()));
    std::fill(former->octets().begin(), former->octets().end(), fill);
  }
  auto const pkt = advert.pkt();
  U64 const tail = std::min(pkt->tailRoom(), Pkt::minTailRoom);
  EXPECT_TRUE(std::all_of(pkt->data() + pkt->size(), pkt->data() + pkt->size() + tail, [](U8 o) { return o == 0; }));
  return {pkt->data(), pkt->data() + pkt->size() + tail};
}

struct BufferRow {
  char const* name;
  void (*change)(Advert&);

  friend void PrintTo(BufferRow const& r, std::ostream* os) { *os << r.name; }
};
BufferRow const bufferRows[] = {
    {"Headers", [](Advert&) {}},
    {"HeadersWithEveryFlag",
     [](Advert& a) {
       a.config->managedConfigFlagIs(true);
       a.config->otherConfigFlagIs(true);
       a.config->routerPreferenceIs(Preference::high);
     }},
    {"DeathPacket", [](Advert& a) { a.deathPacket = true; }},
    {"WithoutMtuOption", [](Advert& a) { a.config->raMtuSuppressIs(true); }},
    {"ConfiguredPrefixes",
     [](Advert& a) {
       a.prefix("2001:db8:1::/64");
       a.prefix("2001:db8:2::/64")->noOnLinkIs(true);
       a.prefix("2001:db8:3::/64")->noAutoConfigIs(true);
       a.prefix("2001:db8:4::/64")->noOnLinkIs(true);
       a.prefix("2001:db8:4::/64")->noAutoConfigIs(true);
     }},
    {"PrefixesOfAddresses",
     [](Advert& a) {
       for (char const* address : {"2001:db8:1::1/64", "fe80::1/64", "2001:db8:2::1/48"}) a.address(address);
     }},
    {"PrefixesOfAVirtualRouter",
     [](Advert& a) {
       a.prefix("2001:db8:1::/64")->noOnLinkIs(true);
       for (char const* prefix : {"2001:db8:1::/64", "2001:db8:2::/64"}) a.virtualPrefix(prefix);
     }},
    {"Servers",
     [](Advert& a) {
       a.server("2001:db8::1", 300);
       a.server("2001:db8::2", 600);
       a.server("2001:db8::3", 300);
     }},
    {"Suffixes",
     [](Advert& a) {
       for (char const* suffix : {"example.com", "", "a..b", "very.long.name.of.a.domain.example."})
         a.suffix(suffix, 300);
       a.suffix("example.net", 600);
     }},
    {"SuffixesUpTo9OctetsBehindTheMtu",
     [](Advert& a) {
       for (char const* suffix : {"aa", "bb", "cc", "dd", "ee", "f", "g", "h", "i", ""}) a.suffix(suffix, 300);
     }},
    {"NetworkBoot", [](Advert& a) { a.config->networkBootFileUrlIs("tftp://[2001:db8::7]/boot/firmware.efi"); }},
    {"Everything",
     [](Advert& a) {
       a.prefix("2001:db8:1::/64")->noOnLinkIs(true);
       a.server("2001:db8::1", 300);
       a.suffix("example.com", 300);
       a.suffix("lab.example", 60);
       a.config->networkBootFileUrlIs("tftp://[::1]/");
     }},
};
class AFrame : public testing::TestWithParam<BufferRow> {};
TEST_P(AFrame, CarriesNothingOfWhatItsBufferHeldWhereverTheMtuCutsIt) {
  Advert advert;
  GetParam().change(advert);
  U64 const whole = advert.frame().size();
  for (advert.mtu = 86; static_cast<U64>(advert.mtu) <= whole + 17; ++advert.mtu) {
    Octets const clean = frameAndTailIn(0, advert);
    ASSERT_EQ(Frame::toHex(frameAndTailIn(0xff, advert)), Frame::toHex(clean)) << advert.mtu;
    ASSERT_EQ(Frame::toHex(frameAndTailIn(0x5a, advert)), Frame::toHex(clean)) << advert.mtu;
  }
}
INSTANTIATE_TEST_SUITE_P(Rows, AFrame, testing::ValuesIn(bufferRows));

TEST(RaPktBuilder, TheCallerAloneOwnsThePacket) {
  U64 const before = Net::globalPktManager().pktCount();
  {
    auto const pkt = Advert().pkt();
    EXPECT_EQ(Net::globalPktManager().pktCount(), before + 1);
  }
  EXPECT_EQ(Net::globalPktManager().pktCount(), before);
}

TEST(RaPktBuilder, TheOctetsBehindTheFrameAreZeroWhateverTheBufferHeld) {
  {
    auto const former = Net::globalPktManager().newPkt();  // its buffer comes back next
    former->dataIs(Octets(2000, 0xab));
  }
  auto const pkt = typicalAdvert().pkt();
  U64 const frameSize = pkt->size();
  pkt->trimTailData(-static_cast<Fwk::S64>(pkt->tailRoom()));
  for (U64 at = frameSize; at < pkt->size(); ++at) ASSERT_EQ(pkt->data()[at], 0) << at;
}

TEST(RaPktBuilder, ARequestAndItsArgumentsGiveTheSameFrame) {
  Advert advert = typicalAdvert();
  advert.virtualPrefix("2001:db8:9::/64");
  advert.advertiseLifetime = false;
  advert.mtu = 1280;
  auto const pkt = RouterAdvt::build(advert);
  EXPECT_EQ(Octets(pkt->octets().begin(), pkt->octets().end()), advert.frame());
}

TEST(RaPktBuilder, ARequestGoesToAllNodesByDefault) {
  RouterAdvt::AdvertRequest const request;
  EXPECT_EQ(request.dstAddr, Ip6Addr("ff02::1"));
  EXPECT_EQ(request.dstMac, EthAddr::forMulticast(request.dstAddr));
  EXPECT_EQ(request.mtu, 1500);
}

TEST(RaPktBuilder, TheInterfaceIsNotUsed) {
  Advert const advert = typicalAdvert();
  auto const build = [&](IntfId intfId) {
    auto const pkt = RouterAdvt::makeIp6RaPkt(advert.srcAddr, advert.dstAddr, advert.srcMac, advert.dstMac,
                                              advert.status, advert.config, true, 1500, false, nullptr, intfId, false);
    return Octets(pkt->octets().begin(), pkt->octets().end());
  };
  EXPECT_EQ(build("Ethernet1"), build(""));
}

TEST(RaPktBuilder, ChangesNothingThatItReads) {
  Advert advert = typicalAdvert();
  advert.address("2001:db8::1/64");
  advert.frame();
  EXPECT_EQ(advert.config->prefixes().size(), 2U);
  EXPECT_EQ(advert.config->dnsServers().size(), 2U);
  EXPECT_EQ(advert.config->dnsSuffixes().size(), 2U);
  EXPECT_EQ(advert.status->addr().size(), 1U);
}

TEST(RaPktBuilder, SeveralThreadsMayBuildAtOnce) {
  bool const former = Fwk::threadSafePtrMode();
  Fwk::threadSafePtrModeIs(true);
  Advert const advert = typicalAdvert();
  Octets const expected = advert.frame();
  std::vector<int> wrong(4, 0);
  std::vector<std::thread> threads;
  for (int& count : wrong)
    threads.emplace_back([&] {
      for (int i = 0; i < 500; ++i) count += advert.frame() != expected;
    });
  for (auto& thread : threads) thread.join();
  EXPECT_THAT(wrong, testing::Each(0));
  Fwk::threadSafePtrModeIs(former);
}

}  // namespace

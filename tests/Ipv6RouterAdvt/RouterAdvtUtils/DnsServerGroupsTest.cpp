#include <Ipv6RouterAdvt/RouterAdvtUtils/DnsGroups.h>
#include <tests/Ipv6RouterAdvt/Support/Advert.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>

namespace {

using namespace AdvertTest;
using RouterAdvt::copyDNSServersWithSameLifeTimeToRaMsgBuf;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr U8 rdnss = 25;
constexpr char const* address1 = "20010db8000000000000000000000001";
constexpr char const* address2 = "20010db8000000000000000000000002";
constexpr char const* address3 = "20010db8000000000000000000000003";

/// "Could not copy ..." messages of one build.
std::vector<std::string> refusals(Advert const& advert) {
  Trace::Capture capture("RouterAdvtUtils", "3");
  advert.pkt();
  std::vector<std::string> found;
  for (std::string const& text : capture.texts(3))
    if (text.starts_with("Could not copy")) found.push_back(text);
  return found;
}

TEST(RecursiveDnsServerOption, OfOneServer) {
  Advert advert;
  advert.server("2001:db8::1", 0x01020304);
  EXPECT_THAT(advert.options(rdnss), ElementsAre("1903 0000 01020304"_hex + address1));
}

TEST(RecursiveDnsServerOption, HasAllServersOfOneLifetimeInTheirOrder) {
  Advert advert;
  for (char const* server : {"2001:db8::3", "2001:db8::1", "2001:db8::2"}) advert.server(server, 300);
  EXPECT_THAT(advert.options(rdnss), ElementsAre("1907 0000 0000012c"_hex + address3 + address1 + address2));
}

TEST(RecursiveDnsServerOption, ThreeServersOfTwoLifetimesAreTwoOptions) {
  Advert advert;
  advert.server("2001:db8::1", 300);
  advert.server("2001:db8::2", 600);
  advert.server("2001:db8::3", 300);
  EXPECT_THAT(advert.options(rdnss),
              ElementsAre("1905 0000 0000012c"_hex + address1 + address3, "1903 0000 00000258"_hex + address2));
}

TEST(RecursiveDnsServerOption, ThereIsNoneWithoutServers) {
  Advert advert;
  Trace::Capture capture("RouterAdvtUtils", "3");
  EXPECT_THAT(advert.options(rdnss), IsEmpty());
  EXPECT_THAT(capture.texts(3), testing::Contains("After Recursive DNS Server option: 86"));
}

struct LifetimeRow {
  char const* name;
  void (*change)(IntfConfig&, RouterAdvt::DNSServerConfigEntry&);
  char const* lifetime;

  friend void PrintTo(LifetimeRow const& r, std::ostream* os) { *os << r.name; }
};
LifetimeRow const lifetimeRows[] = {
    {"OneAndAHalfTimesTheDefaultInterval", [](auto&, auto&) {}, "0000012c"},
    {"OneAndAHalfTimesTheInterval", [](auto& c, auto&) { c.raIntervalMaxMsecIs(4999); }, "00000006"},
    {"0ForAnIntervalBelowOneSecond", [](auto& c, auto&) { c.raIntervalMaxMsecIs(999); }, "00000000"},
    {"TheInterfacesWhenConfigured",
     [](auto& c, auto&) {
       c.dnsServersLifetimeIs(1000);
       c.dnsServersLifetimeConfiguredIs(true);
     },
     "000003e8"},
    {"NotTheInterfacesUnlessConfigured", [](auto& c, auto&) { c.dnsServersLifetimeIs(1000); }, "0000012c"},
    {"NotThatOfSuffixes",
     [](auto& c, auto&) {
       c.dnsSuffixesLifetimeIs(1000);
       c.dnsSuffixesLifetimeConfiguredIs(true);
     },
     "0000012c"},
    {"TheServersOwnBeforeTheInterfaces",
     [](auto& c, auto& s) {
       c.dnsServersLifetimeIs(1000);
       c.dnsServersLifetimeConfiguredIs(true);
       s.lifetimeIs(7);
       s.lifetimeConfiguredIs(true);
     },
     "00000007"},
    {"NotTheServersOwnUnlessConfigured", [](auto&, auto& s) { s.lifetimeIs(7); }, "0000012c"},
    {"Infinity",
     [](auto&, auto& s) {
       s.lifetimeIs(0xffffffff);
       s.lifetimeConfiguredIs(true);
     },
     "ffffffff"},
    {"Zero",
     [](auto&, auto& s) {
       s.lifetimeIs(0);
       s.lifetimeConfiguredIs(true);
     },
     "00000000"},
};
class RecursiveDnsServerLifetime : public testing::TestWithParam<LifetimeRow> {};
TEST_P(RecursiveDnsServerLifetime, IsTheEffectiveOne) {
  Advert advert;
  GetParam().change(*advert.config, *advert.config->dnsServersIs(Ip6Addr("2001:db8::1")));
  EXPECT_THAT(advert.options(rdnss), ElementsAre("1903 0000"_hex + GetParam().lifetime + address1));
}
INSTANTIATE_TEST_SUITE_P(Rows, RecursiveDnsServerLifetime, testing::ValuesIn(lifetimeRows));

TEST(RecursiveDnsServerOption, AConfiguredLifetimeJoinsTheGroupOfTheSameFallback) {
  Advert advert;
  advert.config->dnsServersIs(Ip6Addr("2001:db8::1"));  // 300 by the interval
  advert.server("2001:db8::2", 300);
  EXPECT_THAT(advert.options(rdnss), ElementsAre("1905 0000 0000012c"_hex + address1 + address2));
}

TEST(RecursiveDnsServerOption, LifetimeZeroIsAGroupOfItsOwn) {
  Advert advert;
  advert.server("2001:db8::1", 0);
  advert.server("2001:db8::2", 5);
  advert.server("2001:db8::3", 0);
  EXPECT_THAT(advert.options(rdnss),
              ElementsAre("1905 0000 00000000"_hex + address1 + address3, "1903 0000 00000005"_hex + address2));
}

TEST(RecursiveDnsServerOption, AGroupThatDoesNotFitIsLeftOutWholeWithAMessageForEachServerAndALaterOneIsWritten) {
  Advert advert;
  advert.mtu = 86 + 40;
  advert.server("2001:db8::11", 300);
  advert.server("2001:db8::12", 300);
  advert.server("2001:db8::1", 600);
  advert.server("2001:db8::13", 300);
  EXPECT_THAT(advert.options(rdnss), ElementsAre("1903 0000 00000258"_hex + address1));
  EXPECT_THAT(refusals(advert), ElementsAre("Could not copy dnsServers as msgLen ( 142 ) > pktBufSize > ( 126)",
                                            "Could not copy dnsServers as msgLen ( 142 ) > pktBufSize > ( 126)",
                                            // behind the option of 24 octets
                                            "Could not copy dnsServers as msgLen ( 166 ) > pktBufSize > ( 126)"));
}

TEST(RecursiveDnsServerOption, AGroupMayFillTheFrameToItsLastOctet) {
  Advert advert;
  advert.server("2001:db8::1", 300);
  advert.mtu = 86 + 24;
  EXPECT_EQ(advert.frame().size(), 110U);
  EXPECT_THAT(refusals(advert), IsEmpty());
  advert.mtu = 86 + 23;
  EXPECT_EQ(advert.frame().size(), 86U);
  EXPECT_THAT(refusals(advert), ElementsAre("Could not copy dnsServers as msgLen ( 110 ) > pktBufSize > ( 109)"));
}

TEST(RecursiveDnsServerOption, MoreThan127ServersOfOneLifetimeFitIntoNoFrame) {
  Advert advert;
  advert.mtu = 9000;
  for (int i = 1; i <= 128; ++i) advert.server("2001:db8::" + std::to_string(i), 300);
  EXPECT_THAT(advert.options(rdnss), IsEmpty());
  EXPECT_THAT(refusals(advert),
              AllOf(SizeIs(128), Each("Could not copy dnsServers as msgLen ( 2142 ) > pktBufSize > ( 1536)")));
}

TEST(RecursiveDnsServerOption, ManyLifetimesAreAsManyOptions) {
  Advert advert;
  for (U32 i = 1; i <= 60; ++i) advert.server("2001:db8::" + std::to_string(i), i);
  auto const options = advert.options(rdnss);
  ASSERT_EQ(options.size(), 58U);  // (1500 - 86) / 24
  EXPECT_THAT(options, Each(StartsWith("19030000")));
  EXPECT_EQ(options[57].substr(8, 8), "0000003a");
}

// The writer alone.

TEST(CopyDnsServers, WritesEveryOctetOfItsOptionsAndNoOther) {
  Advert advert;
  advert.server("2001:db8::1", 300);
  advert.server("2001:db8::2", 600);
  OptionBuffer buf(100, 0);
  U64 msgLen = 10;
  copyDNSServersWithSameLifeTimeToRaMsgBuf(buf.data(), msgLen, 100, advert.config);
  EXPECT_EQ(msgLen, 58U);
  EXPECT_EQ(buf.hex(0, 58),
            std::string(20, 'e') + "19030000 0000012c"_hex + address1 + "19030000 00000258"_hex + address2);
  EXPECT_TRUE(buf.untouchedFrom(58));
}

TEST(CopyDnsServers, WritesNothingWhenNothingFits) {
  Advert advert;
  advert.server("2001:db8::1", 300);
  OptionBuffer buf(33, 0);
  U64 msgLen = 10;
  copyDNSServersWithSameLifeTimeToRaMsgBuf(buf.data(), msgLen, 33, advert.config);
  EXPECT_EQ(msgLen, 10U);
  EXPECT_TRUE(buf.untouchedFrom(0));
}

TEST(CopyDnsServers, KeepsTheLowEightBitsOfALengthThatNoFrameReaches) {
  Advert advert;
  for (int i = 1; i <= 128; ++i) advert.server("2001:db8::" + std::to_string(i), 300);
  OptionBuffer buf(4096, 0);
  U64 msgLen = 0;
  copyDNSServersWithSameLifeTimeToRaMsgBuf(buf.data(), msgLen, 4096, advert.config);
  EXPECT_EQ(msgLen, 8U + 128 * 16);
  EXPECT_EQ(buf.hex(0, 8),
            "1901 0000 0000012c"_hex);  // 257
}

}  // namespace

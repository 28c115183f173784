#include <tests/Ipv6RouterAdvt/Support/Advert.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>

// What a build says, at which level, in which order. (That no packet was to be had is said before the process stops:
// BuilderDeathTest.)

namespace {

using namespace AdvertTest;
using testing::Contains;
using testing::IsEmpty;

/// Messages of one build, as "LEVEL TEXT".
std::vector<std::string> messages(Advert const& advert) {
  Trace::Capture capture("RouterAdvtUtils");
  advert.pkt();
  std::vector<std::string> lines;
  for (auto const& record : capture.records()) lines.push_back(std::to_string(record.level) + ' ' + record.text);
  return lines;
}

struct MessageRow {
  char const* name;
  char const* message;
  void (*change)(Advert&) = [](Advert&) {};

  friend void PrintTo(MessageRow const& r, std::ostream* os) { *os << r.name; }
};

void linkLocalAddress(Advert& a) { a.address("fe80::1/64"); }
void configuredPrefix(Advert& a) { a.prefix("2001:db8:1::/64"); }
void suffixes(Advert& a) {
  a.suffix("example.com", 300);
  a.suffix("b", 600);
}
void crowdedSuffixes(Advert& a) {  // room for 16 octets of names, whose estimate is 16
  a.mtu = 86 + 24;
  for (char const* suffix : {"a", "b", "c", "d", "e", "f", "g", "h"}) a.suffix(suffix, 300);
}

// Every message that a build may leave.
MessageRow const messageRows[] = {
    {"CreateRaRawPacket",
     "8 create RA raw packet: smac dmac 02:00:00:00:00:01 33:33:00:00:00:01 sa da fe80::1 ff02::1"},
    {"OffsetOfIcmp6Hdr", "8 offset of icmp6Hdr 54"},
    {"RouterLifetime0InADeathPacket", "8 Sending pkt with routerLifetime 0", [](Advert& a) { a.deathPacket = true; }},
    {"RouterLifetime0NotAdvertised", "8 Sending pkt with routerLifetime 0",
     [](Advert& a) { a.advertiseLifetime = false; }},
    {"RouterLifetime0WithoutVirtualRouter", "8 Sending pkt with routerLifetime 0",
     [](Advert& a) { a.useVirtualRouter = true; }},
    {"NsRetransmitInterval", "8 ip6IntfStatusPtr->nsRetransmitInterval(): 4294967295",
     [](Advert& a) { a.status->nsRetransmitIntervalIs(4294967295); }},
    {"RouterPreferenceDefaultIsNotTheConfiguredOne", "8 intfRouterAdvtConfigPtr->routerPreferenceDefault(): medium",
     [](Advert& a) { a.config->routerPreferenceIs(Preference::high); }},
    {"RouterPreferenceToZeroInADeathPacket", "8 Set routerPreference to Zero", [](Advert& a) { a.deathPacket = true; }},
    {"RouterPreferenceToZeroForALifetimeOf0", "8 Set routerPreference to Zero",
     [](Advert& a) { a.config->raLifetimeIs(0); }},
    {"RouterPreferenceToZeroForALifetimeTruncatedTo0", "8 Set routerPreference to Zero",
     [](Advert& a) { a.config->raLifetimeIs(65536); }},
    {"AddingSrcLinkLayerOption", "8 Adding Src Link Layer option: "},
    {"AddingMtuOptionSaysTheLinkMtu", "8 Adding MTU option: 9000", [](Advert& a) { a.mtu = 9000; }},
    {"LengthAfterMtuOption", "8 Length after MTU option: 86"},
    {"SkipsAVirtualRouterPrefix", "3 PrefixList: noAdvertise set for prefix. Skip 2001:db8:1::/64",
     [](Advert& a) {
       a.virtualPrefix("2001:db8:1::/64");
       a.prefix("2001:db8:1::/64")->noAdvertiseIs(true);
     }},
    {"SkipsTheSubnetOfAnAddress", "3 PrefixList: noAdvertise set for prefix. Skip 2001:db8:1::9/64",
     [](Advert& a) {
       a.address("2001:db8:1::9/64");
       a.prefix("2001:db8:1::/64")->noAdvertiseIs(true);
     }},
    {"SkipsALinkLocalAddress", "3 PrefixList: Skip LinkLocal Address fe80::1/64", linkLocalAddress},
    {"CopiesAVirtualRouterPrefix", "3 Copy prefix: 2001:db8:1::/64 to MsgBuf",
     [](Advert& a) { a.virtualPrefix("2001:db8:1::/64"); }},
    {"CopiesAConfiguredPrefix", "8 Copy prefix: 2001:db8:1::/64 to MsgBuf", configuredPrefix},
    {"CopiesTheSubnetOfAnAddress", "3 Copy prefix: 2001:db8:1::/64 to MsgBuf",
     [](Advert& a) { a.address("2001:db8:1::9/64"); }},
    {"CouldNotCopyAVirtualRouterPrefix", "3 Could not copy prefix as msgLen ( 86 ) > pktBufSize > ( 117)",
     [](Advert& a) {
       a.mtu = 117;
       a.virtualPrefix("2001:db8:1::/64");
     }},
    {"CouldNotCopyAConfiguredPrefix", "3 Could not copy prefix as msgLen ( 86 ) > pktBufSize > ( 117)",
     [](Advert& a) {
       a.mtu = 117;
       configuredPrefix(a);
     }},
    {"CouldNotCopyTheSubnetOfAnAddress", "3 Could not copy prefix as msgLen ( 86 ) > pktBufSize > ( 117)",
     [](Advert& a) {
       a.mtu = 117;
       a.address("2001:db8:1::9/64");
     }},
    {"LengthAfterPrefixOption", "8 Length after prefix option: 118", configuredPrefix},
    {"LengthAfterPrefixOptionWithoutPrefix", "8 Length after prefix option: 86"},
    {"CouldNotCopyDnsServers", "3 Could not copy dnsServers as msgLen ( 110 ) > pktBufSize > ( 109)",
     [](Advert& a) {
       a.mtu = 109;
       a.server("2001:db8::53", 300);
     }},
    {"AfterRecursiveDnsServerOption", "3 After Recursive DNS Server option: 110",
     [](Advert& a) { a.server("2001:db8::53", 300); }},
    {"AfterRecursiveDnsServerOptionWithoutServer", "3 After Recursive DNS Server option: 86"},
    {"NumberOfDnsSuffixes", "8 Number of Dns Suffixes: 2intf lifetime: 300", suffixes},
    {"DnsSuffixLifetime", "8 dnsSuffixLifetime: 600visited: false", suffixes},
    {"DnsSuffixLifetimeVisited", "8 dnsSuffixLifetime: 300visited: true",
     [](Advert& a) {
       a.suffix("a", 300);
       a.suffix("b", 300);
     }},
    {"ComputingLengthDnsSuffix", "8 Computing Length DNS Suffix: example.com length: 20", suffixes},
    {"TotalLengthOfDnsSuffixes", "8 Total Length of DNS Suffixes: 20", suffixes},
    {"TotalLengthOfDnsSuffixesAfterPadding", "8 Total Length of DNS Suffixes after padding: 24", suffixes},
    {"PktBufSize", "8 PktBufSize: 1500", suffixes},
    {"PktBufSizeAtMost1536", "8 PktBufSize: 1536",
     [](Advert& a) {
       a.mtu = 9000;
       suffixes(a);
     }},
    {"CouldNotCopyDnsSuffixes", "3 Could not copy dnsSuffixes as msgLen ( 110 ) > pktBufSize > ( 109)",
     [](Advert& a) {
       a.mtu = 109;
       a.suffix("example.com", 300);
     }},
    {"BeforeEncodingDnsSuffix", "1 Before Encoding DNS Suffix: example.com length: 94", suffixes},
    {"BeforeEncodingAnEmptyDnsSuffix", "1 Before Encoding DNS Suffix:  length: 94",
     [](Advert& a) { a.suffix("", 300); }},
    {"CouldNotCopyDnsSuffix", "3 Could not copy dns suffx as msgLen ( 111 ) > pktBufSize > ( 110)", crowdedSuffixes},
    {"AfterEncodingDnsSuffix", "8 After Encoding DNS Suffix: example.com length: 107", suffixes},
    {"AfterEncodingAnEmptyDnsSuffix", "8 After Encoding DNS Suffix:  length: 95", [](Advert& a) { a.suffix("", 300); }},
    {"MsgLenBeforeAndAfterDnsSuffixes", "8 MsgLenBforeDnsSuffixes: 94MsgLenAfterDnsSuffixes:107", suffixes},
    {"NumBytesToPad", "8 numBytesToPad: 3at offset: 107", suffixes},
    {"NumBytesToPad0", "8 numBytesToPad: 0at offset: 102", [](Advert& a) { a.suffix("abcdef", 300); }},
    {"AfterDnsSuffixSearchListOption", "3 After DNS Suffix Search List option: 126", suffixes},
    {"AfterDnsSuffixSearchListOptionWithoutSuffix", "3 After DNS Suffix Search List option: 86"},
    {"AddingNetworkBootOption",
     "8 Adding network boot option: ", [](Advert& a) { a.config->networkBootFileUrlIs("tftp://[::1]/"); }},
    {"CouldNotCopyNetworkBootOption", "3 Could not copy network boot option as msgLen ( 94 ) > pktBufSize > ( 93)",
     [](Advert& a) {
       a.mtu = 93;
       a.config->networkBootFileUrlIs("tftp://[::1]/");
     }},
    {"AfterNetworkBootOption", "3 After Network Boot option: 110",
     [](Advert& a) { a.config->networkBootFileUrlIs("tftp://[::1]/"); }},
    {"AfterNetworkBootOptionWithoutUrl", "3 After Network Boot option: 86"},
    {"PayloadLength", "8 Ipv6 payload length 32"},
};
class ABuild : public testing::TestWithParam<MessageRow> {};
TEST_P(ABuild, Says) {
  Advert advert;
  GetParam().change(advert);
  EXPECT_THAT(messages(advert), Contains(GetParam().message));
}
INSTANTIATE_TEST_SUITE_P(Rows, ABuild, testing::ValuesIn(messageRows));

using Lines = std::vector<std::string>;

TEST(BuilderTrace, SaysAllOfATypicalBuildInThisOrder) {
  EXPECT_EQ(messages(typicalAdvert()),
            (Lines{"8 create RA raw packet: smac dmac 02:00:00:00:00:01 33:33:00:00:00:01 sa da fe80::1 ff02::1",
                   "8 offset of icmp6Hdr 54",
                   "8 ip6IntfStatusPtr->nsRetransmitInterval(): 0",
                   "8 intfRouterAdvtConfigPtr->routerPreferenceDefault(): medium",
                   "8 Adding Src Link Layer option: ",
                   "8 Adding MTU option: 1500",
                   "8 Length after MTU option: 86",
                   "8 Copy prefix: 2001:db8:1::/64 to MsgBuf",
                   "8 Copy prefix: 2001:db8:2::/64 to MsgBuf",
                   "8 Length after prefix option: 150",
                   "3 After Recursive DNS Server option: 190",
                   "8 Number of Dns Suffixes: 2intf lifetime: 300",
                   "8 dnsSuffixLifetime: 300visited: false",
                   "8 Computing Length DNS Suffix: example.com length: 20",
                   "8 Computing Length DNS Suffix: example.net length: 32",
                   "8 Total Length of DNS Suffixes: 32",
                   "8 Total Length of DNS Suffixes after padding: 32",
                   "8 PktBufSize: 1500",
                   "1 Before Encoding DNS Suffix: example.com length: 198",
                   "8 After Encoding DNS Suffix: example.com length: 211",
                   "1 Before Encoding DNS Suffix: example.net length: 211",
                   "8 After Encoding DNS Suffix: example.net length: 224",
                   "8 MsgLenBforeDnsSuffixes: 198MsgLenAfterDnsSuffixes:224",
                   "8 numBytesToPad: 6at offset: 224",
                   "8 dnsSuffixLifetime: 300visited: true",
                   "3 After DNS Suffix Search List option: 230",
                   "3 After Network Boot option: 230",
                   "8 Ipv6 payload length 176"}));
}

TEST(BuilderTrace, SaysAllOfADeathPacketInThisOrder) {
  Advert advert;
  advert.deathPacket = true;
  advert.config->raMtuSuppressIs(true);
  advert.address("fe80::1/64");
  advert.config->networkBootFileUrlIs("x");
  EXPECT_EQ(messages(advert),
            (Lines{"8 create RA raw packet: smac dmac 02:00:00:00:00:01 33:33:00:00:00:01 sa da fe80::1 ff02::1",
                   "8 offset of icmp6Hdr 54", "8 Sending pkt with routerLifetime 0",
                   "8 ip6IntfStatusPtr->nsRetransmitInterval(): 0",
                   "8 intfRouterAdvtConfigPtr->routerPreferenceDefault(): medium", "8 Set routerPreference to Zero",
                   "8 Adding Src Link Layer option: ", "3 PrefixList: Skip LinkLocal Address fe80::1/64",
                   "8 Length after prefix option: 78", "3 After Recursive DNS Server option: 78",
                   "3 After DNS Suffix Search List option: 78",
                   "8 Adding network boot option: ", "3 After Network Boot option: 94", "8 Ipv6 payload length 40"}));
}

TEST(BuilderTrace, AConfiguredLifetimeOf0IsNotSaidToBeSuppressed) {
  Advert advert;
  advert.config->raLifetimeIs(0);
  EXPECT_THAT(messages(advert), testing::Not(Contains("8 Sending pkt with routerLifetime 0")));
}

TEST(BuilderTrace, EveryMessageNamesTheHandleTheSourceAndAPlace) {
  Trace::Capture capture("*");
  typicalAdvert().pkt();
  ASSERT_FALSE(capture.records().empty());
  for (auto const& record : capture.records()) {
    EXPECT_EQ(record.handle, "RouterAdvtUtils") << record.text;
    EXPECT_EQ(record.source, "Ipv6RouterAdvt/RouterAdvtUtils") << record.text;
    EXPECT_GT(record.line, 0) << record.text;
    EXPECT_NE(record.function, "") << record.text;
  }
}

TEST(BuilderTrace, OnlyTheEnabledLevelsAreSaid) {
  Advert advert = typicalAdvert();
  {
    Trace::Capture capture("RouterAdvtUtils", "1");
    advert.pkt();
    EXPECT_EQ(capture.records().size(), capture.texts(1).size());
    EXPECT_EQ(capture.records().size(), 2U);
  }
  Trace::Capture capture("RouterAdvtUtils", "3");
  advert.pkt();
  EXPECT_EQ(capture.records().size(), capture.texts(3).size());
  EXPECT_EQ(capture.records().size(), 3U);
}

TEST(BuilderTrace, NothingIsSaidWhenDisabled) {
  Trace::Capture capture("RouterAdvtUtils", "");
  typicalAdvert().pkt();
  EXPECT_THAT(capture.records(), IsEmpty());
}

/// Allocations of one build at `levels`, by which formatting tells: every message is too long for a string's own room.
std::size_t allocationsAt(Advert const& advert, char const* levels) {
  Trace::Sink const former = Trace::sinkIs([](Trace::Record const&) {});
  Trace::levelsIs(std::string("RouterAdvtUtils/") + levels);
  advert.pkt();
  std::size_t const before = allocationCount();
  advert.pkt();
  std::size_t const allocations = allocationCount() - before;
  Trace::levelsIs("RouterAdvtUtils/");
  Trace::sinkIs(former);
  return allocations;
}

TEST(BuilderTrace, OnlyMessagesOfAnEnabledLevelAreFormatted) {
  Advert advert = typicalAdvert();
  advert.address("fe80::1/64");
  EXPECT_EQ(allocationsAt(advert, ""), 0U);
  EXPECT_EQ(allocationsAt(advert, "0,2,4-7,9-63"), 0U) << "a typical build says nothing at these levels";
  EXPECT_GE(allocationsAt(advert, "1"), 2U);
  EXPECT_GE(allocationsAt(advert, "3"), 3U);
  EXPECT_GE(allocationsAt(advert, "8"), 23U);
}

}  // namespace

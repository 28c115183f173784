#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <programs/common/frames/FrameDescriber.h>

#include <ostream>

namespace Tool {

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Bytes = std::vector<Fwk::U8>;

Bytes fromHex(std::string_view text) {
  Bytes bytes;
  std::string digits;
  for (char const c : text) {
    if (c == ' ') continue;
    digits += c;
    if (digits.size() < 2) continue;
    bytes.push_back(static_cast<Fwk::U8>(std::stoi(digits, nullptr, 16)));
    digits.clear();
  }
  return bytes;
}

Bytes joined(Bytes first, Bytes const& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

std::string const ethernetHex = "333300000001 020000000001 86dd";
std::string const addressesHex = "fe800000000000000000000000000001 ff020000000000000000000000000001";
std::string const advertHex = "8600 b7b5 40 00 0708 00000000 00000000";

/// An IPv6 packet with that payload.
Bytes ip6Packet(Bytes const& payload, std::string const& hopLimit = "ff", std::string const& nextHeader = "3a") {
  Bytes packet = fromHex("60000000 0000" + nextHeader + hopLimit + addressesHex);
  packet[4] = static_cast<Fwk::U8>(payload.size() >> 8);
  packet[5] = static_cast<Fwk::U8>(payload.size());
  return joined(packet, payload);
}

/// A frame with an advertisement that has these options; its checksum is wrong as a rule.
Bytes frameWith(std::string const& options) {
  return joined(fromHex(ethernetHex), ip6Packet(fromHex(advertHex + options)));
}

std::string textOf(Bytes const& frame) { return toText(describeEthernetFrame(frame)); }

FrameBlock lastBlock(FrameDescription const& description) { return description.blocks.back(); }
FrameBlock optionBlock(std::string const& options) { return lastBlock(describeEthernetFrame(frameWith(options))); }

std::vector<std::string> lines(FrameBlock const& block) {
  std::vector<std::string> result;
  for (FrameField const& field : block.fields)
    result.push_back(std::to_string(field.offset) + ' ' + field.name + ": " + field.value);
  return result;
}

TEST(FrameDescriber, AFrameIsPrintedFieldByField) {
  Bytes const frame = fromHex(ethernetHex + "6000000000703aff" + addressesHex +
                              "8600b7b5400007080000000000000000010102000000000105010000000005dc030440c000278d00"
                              "00093a800000000020010db8000100000000000000000000190300000000012c20010db800000000"
                              "00000000000000531f03000000000258076578616d706c6503636f6d00000000");
  EXPECT_EQ(textOf(frame), R"(Ethernet header, RFC 2464 3 (14 octets)
     0  destination             33:33:00:00:00:01
     6  source                  02:00:00:00:00:01
    12  type                    0x86dd (IPv6)

IPv6 header, RFC 8200 3 (40 octets)
    14  version                 6
    14  traffic class           0x00
    15  flow label              0x00000
    18  payload length          112 octets
    20  next header             58 (ICMPv6)
    21  hop limit               255
    22  source                  fe80::1
    38  destination             ff02::1 (all nodes)

Router Advertisement, RFC 4861 4.2 (16 octets)
    54  type                    134 (Router Advertisement)
    55  code                    0
    56  checksum                0xb7b5 (good)
    58  cur hop limit           64
    59  flags                   0x00 not managed, not other
    59  router preference       medium (0)
    60  router lifetime         1800 s (30 min)
    62  reachable time          0 ms (unspecified)
    66  retrans timer           0 ms (unspecified)

Source Link-Layer Address option, RFC 4861 4.6.1 (8 octets)
    70  type                    1 (Source Link-Layer Address)
    71  length                  1 (8 octets)
    72  link-layer address      02:00:00:00:00:01

MTU option, RFC 4861 4.6.4 (8 octets)
    78  type                    5 (MTU)
    79  length                  1 (8 octets)
    80  reserved                0
    82  mtu                     1500 octets

Prefix Information option, RFC 4861 4.6.2 (32 octets)
    86  type                    3 (Prefix Information)
    87  length                  4 (32 octets)
    88  prefix length           64 bits
    89  flags                   0xc0 on-link, autonomous
    90  valid lifetime          2592000 s (30 d)
    94  preferred lifetime      604800 s (7 d)
    98  reserved2               0
   102  prefix                  2001:db8:1::/64

Recursive DNS Server option, RFC 8106 5.1 (24 octets)
   118  type                    25 (Recursive DNS Server)
   119  length                  3 (24 octets)
   120  reserved                0
   122  lifetime                300 s (5 min)
   126  server                  2001:db8::53

DNS Search List option, RFC 8106 5.2 (24 octets)
   142  type                    31 (DNS Search List)
   143  length                  3 (24 octets)
   144  reserved                0
   146  lifetime                600 s (10 min)
   150  suffix                  example.com
   163  padding                 3 octets
)");
}

TEST(FrameDescriber, OtherFlagsAreNamed) {
  Bytes const frame = joined(fromHex(ethernetHex), ip6Packet(fromHex("8600 0000 00 e8 0000 00000001 00000002")));
  EXPECT_THAT(textOf(frame), AllOf(HasSubstr("0xe8 managed, other, home agent"), HasSubstr("high (1)"),
                                   HasSubstr("0 (unspecified)"), HasSubstr("0 s (not a default router)"),
                                   HasSubstr("a preference with router lifetime 0; receivers ignore it")));
}

TEST(FrameDescriber, TagsArePassed) {
  Bytes const frame =
      joined(fromHex("333300000001 020000000001 88a8 2007 8100 a00f 86dd"), ip6Packet(fromHex(advertHex)));
  EXPECT_THAT(textOf(frame), AllOf(HasSubstr("vlan                    7"), HasSubstr("vlan                    15"),
                                   HasSubstr("priority                5"), HasSubstr("Router Advertisement")));
}

TEST(FrameDescriber, ExtensionHeadersArePassed) {
  Bytes const payload = joined(fromHex("3a00 050200000100"), fromHex(advertHex));
  Bytes const frame = joined(fromHex(ethernetHex), ip6Packet(payload, "ff", "00"));
  EXPECT_THAT(textOf(frame), AllOf(HasSubstr("Extension header, RFC 8200 4: 0 (hop-by-hop options) (8 octets)"),
                                   HasSubstr("0xb7b5"), HasSubstr("Router Advertisement, RFC 4861 4.2")));
}

TEST(FrameDescriber, APacketWithoutEthernetIsPrintedToo) {
  EXPECT_THAT(toText(describeIp6Packet(ip6Packet(fromHex(advertHex)))),
              AllOf(testing::StartsWith("IPv6 header"), HasSubstr("    40  type                    134")));
}

TEST(FrameDescriber, PaddingBehindThePacketIsNoOption) {
  Bytes const frame = joined(frameWith(""), Bytes(6, 0));
  EXPECT_EQ(lastBlock(describeEthernetFrame(frame)).title, "Octets behind the packet");
}

TEST(FrameDescriber, ABadChecksumIsOdd) {
  FrameDescription const description = describeEthernetFrame(frameWith(""));
  EXPECT_THAT(lastBlock(description).oddities,
              ElementsAre(testing::MatchesRegex("the checksum should be 0x[0-9a-f]+; receivers drop the message")));
}

TEST(FrameDescriber, TheOtherZeroIsABadChecksum) {
  Bytes const frame = joined(fromHex(ethernetHex), ip6Packet(fromHex("8600 ffff 40 00 0708 00003527 00000000")));
  EXPECT_THAT(textOf(frame), HasSubstr("0xffff (bad)"));
  EXPECT_THAT(lastBlock(describeEthernetFrame(frame)).oddities,
              ElementsAre("the checksum should be 0x0000; receivers drop the message"));
}

TEST(FrameDescriber, WhatMakesReceiversDropTheMessageIsOdd) {
  Bytes frame = joined(fromHex(ethernetHex), ip6Packet(fromHex("8601 0000 40 00 0708 00000000 00000000"), "fe"));
  frame[22] = 0x20;
  EXPECT_THAT(lastBlock(describeEthernetFrame(frame)).oddities,
              AllOf(Contains("the source is not link-local; receivers drop the message"),
                    Contains("the hop limit is not 255; receivers drop the message"),
                    Contains("the code is not 0; receivers drop the message")));
}

TEST(FrameDescriber, AMessageThatIsTooShortIsOdd) {
  FrameDescription const description =
      describeEthernetFrame(joined(fromHex(ethernetHex), ip6Packet(fromHex("8600 0000 4000"))));
  EXPECT_THAT(lastBlock(description).oddities,
              Contains("an advertisement has at least 16 octets; receivers drop the message"));
}

TEST(FrameDescriber, APacketThatIsCutShortHasNoChecksumToCheck) {
  Bytes frame = frameWith("0101020000000001");
  frame.resize(frame.size() - 4);
  EXPECT_THAT(textOf(frame), AllOf(HasSubstr("0xb7b5 (not checked: octets are missing)"),
                                   HasSubstr("the packet is cut short: 20 octets follow the header")));
}

struct OddityRow {
  char const* name;
  char const* options;
  char const* oddity;
  friend void PrintTo(OddityRow const& row, std::ostream* os) { *os << row.name; }
};
class FrameDescriberOddity : public testing::TestWithParam<OddityRow> {};
TEST_P(FrameDescriberOddity, IsTold) {
  EXPECT_THAT(optionBlock(GetParam().options).oddities, ElementsAre(GetParam().oddity));
}

OddityRow const oddityRows[] = {
    {"LengthZero", "0500 0000000005dc", "length 0 is not possible; receivers drop the whole message"},
    {"PassesTheEnd", "0304 40c0 00000001", "the option passes the end of the message: 8 octets are left"},
    {"OneOctetLeft", "05", "one octet is left over; an option has at least 8"},
    {"MtuOfLength2", "0502 0000 000005dc 0000000000000000", "an option of this type has length 1"},
    {"MtuBelow1280", "0501 0000 000004ff", "IPv6 needs at least 1280 octets; receivers ignore the option"},
    {"MtuReserved", "0501 0001 000005dc", "reserved is 0x01; senders leave it 0"},
    {"SecondMtu", "0501 0000 000005dc 0501 0000 000005dc", "there was an MTU option before"},
    {"LinkLayerAddressOfLength2", "0102 020000000001 0000000000000000", "an option of this type has length 1"},
    {"PrefixOfLength3", "0303 40c0 00000001 00000001 00000000 20010db800000000", "an option of this type has length 4"},
    {"PrefixLengthAbove128", "0304 8180 00000001 00000001 00000000 20010db8000000000000000000000000",
     "a prefix has at most 128 bits"},
    {"HostBits", "0304 40c0 00000001 00000001 00000000 20010db8000000000000000000000001",
     "bits behind the prefix are set; receivers ignore them"},
    {"LinkLocalPrefix", "0304 40c0 00000001 00000001 00000000 fe800000000000000000000000000000",
     "the link-local prefix; receivers ignore the option"},
    {"PreferredAboveValid", "0304 40c0 00000001 00000002 00000000 20010db8000000000000000000000000",
     "preferred lifetime above valid lifetime; receivers ignore the option for addresses"},
    {"AutonomousWithoutRoomForAnIdentifier", "0304 30c0 00000001 00000001 00000000 20010db8000000000000000000000000",
     "autonomous, and not of 64 bits; hosts with 64-bit interface identifiers ignore it"},
    {"PrefixReservedFlags", "0304 40d0 00000001 00000001 00000000 20010db8000000000000000000000000",
     "reserved flags is 0x10; senders leave it 0"},
    {"PrefixReserved2", "0304 40c0 00000001 00000001 00000001 20010db8000000000000000000000000",
     "reserved2 is 0x01; senders leave it 0"},
    {"SamePrefixAgain",
     "0304 40c0 00000001 00000001 00000000 20010db8000000000000000000000000"
     "0304 40c0 00000001 00000001 00000000 20010db8000000000000000000000000",
     "the same prefix as in the option at 70"},
    {"RdnssWithoutServers", "1901 0000 0000012c", "there is no server in it"},
    {"RdnssOfEvenLength", "1904 0000 0000012c 20010db8000000000000000000000053 0000000000000000",
     "the length is even: half an address is left over"},
    {"DnsslWithoutNames", "1f02 0000 0000012c 0000000000000000", "there is no suffix in it"},
    {"DnsslThatPassesItsEnd", "1f02 0000 0000012c 0f61616161616161", "the name passes the end of the option"},
    {"RouteLengthTooSmall", "1801 4000 0000012c", "length 1 does not go with a prefix of 64 bits"},
    {"RouteWithReservedPreference", "1802 4010 0000012c 20010db800000000",
     "the preference is the reserved one; receivers ignore the option"},
    {"BootPaddingThatIsNotThere", "fd01 0008 00000000", "the padding length is not possible"},
    {"BootReserved", "fd02 0007 00000001 6100000000000000", "reserved1 is 0x01; senders leave it 0"},
};
INSTANTIATE_TEST_SUITE_P(Option, FrameDescriberOddity, testing::ValuesIn(oddityRows));

TEST(FrameDescriber, AnMtuOptionOfAnotherLengthIsSpelledOut) {
  EXPECT_THAT(lines(optionBlock("0502 0000 000005dc 0102030405060708")),
              ElementsAre("70 type: 5 (MTU)", "71 length: 2 (16 octets)", "72 reserved: 0", "74 mtu: 1500 octets",
                          "78 rest: 0102030405060708"));
}

TEST(FrameDescriber, APrefixOptionThatIsTooLongIsSpelledOut) {
  FrameBlock const block =
      optionBlock("0305 4180 00000002 00000001 00000000 20010db8000100000000000000000000 0102030405060708");
  EXPECT_THAT(lines(block), ElementsAre("70 type: 3 (Prefix Information)", "71 length: 5 (40 octets)",
                                        "72 prefix length: 65 bits", "73 flags: 0x80 on-link, not autonomous",
                                        "74 valid lifetime: 2 s", "78 preferred lifetime: 1 s", "82 reserved2: 0",
                                        "86 prefix: 2001:db8:1::/65", "102 rest: 0102030405060708"));
  EXPECT_THAT(block.oddities, ElementsAre("an option of this type has length 4"));
}

TEST(FrameDescriber, APrefixOptionThatIsTooShortIsSpelledOutAsFarAsItGoes) {
  EXPECT_THAT(lines(optionBlock("0301 40c0 00000002")),
              ElementsAre("70 type: 3 (Prefix Information)", "71 length: 1 (8 octets)", "72 prefix length: 64 bits",
                          "73 flags: 0xc0 on-link, autonomous", "74 valid lifetime: 2 s"));
  EXPECT_THAT(lines(optionBlock("0303 40c0 00000002 00000001 00000000 20010db800010000")),
              ElementsAre("70 type: 3 (Prefix Information)", "71 length: 3 (24 octets)", "72 prefix length: 64 bits",
                          "73 flags: 0xc0 on-link, autonomous", "74 valid lifetime: 2 s", "78 preferred lifetime: 1 s",
                          "82 reserved2: 0", "86 prefix: 20010db800010000"));
}

TEST(FrameDescriber, AnOffsetThatWrapsIsTold) {
  Bytes options;
  while (options.size() < 65512) options = joined(options, fromHex("0101020000000001"));
  Bytes const message = joined(joined(fromHex(advertHex), options), fromHex("01020200000000"));
  ASSERT_EQ(message.size(), 65535U);
  FrameBlock const block = lastBlock(describeEthernetFrame(joined(fromHex(ethernetHex), ip6Packet(message))));
  EXPECT_THAT(block.oddities, ElementsAre("the option passes the end of the message: 7 octets are left",
                                          "offsets have 16 bits: the parser goes on at octet 8 of the message"));
}

TEST(FrameDescriber, AnOffsetThatDoesNotWrapIsNot) {
  EXPECT_THAT(optionBlock("01ff 000000000000").oddities,
              ElementsAre("the option passes the end of the message: 8 octets are left"));
}

TEST(FrameDescriber, ARouteInformationOptionIsSpelledOut) {
  EXPECT_THAT(lines(optionBlock("1802 4008 ffffffff 20010db800000000")),
              ElementsAre("70 type: 24 (Route Information)", "71 length: 2 (16 octets)", "72 prefix length: 64 bits",
                          "73 flags: 0x08", "73 route preference: high (1)", "74 route lifetime: infinity",
                          "78 prefix: 2001:db8::/64"));
}

TEST(FrameDescriber, ANetworkBootOptionIsSpelledOut) {
  EXPECT_THAT(lines(optionBlock("fd03 0003 00000000 746674703a2f2f61 2f626f6f74 000000")),
              ElementsAre("70 type: 253 (Network Boot)", "71 length: 3 (24 octets)", "72 padding length: 3",
                          "74 zero: 0", "76 reserved1: 0", "78 boot file url: tftp://a/boot", "91 padding: 000000"));
}

TEST(FrameDescriber, AnUnknownOptionIsShownAsHex) {
  FrameBlock const block = optionBlock("c803 000102030405060708090a0b0c0d0e0f10111213 1415");
  EXPECT_THAT(lines(block), ElementsAre("70 type: 200", "71 length: 3 (24 octets)",
                                        "72 data: 000102030405060708090a0b0c0d0e0f", "88 : 101112131415"));
  EXPECT_THAT(block.oddities, IsEmpty());
}

TEST(FrameDescriber, AKnownOptionWithoutADescriptionHasItsName) {
  EXPECT_EQ(optionBlock("0701 0000 000005dc").title, "Advertisement Interval option, RFC 6275 7.3");
}

TEST(FrameDescriber, AnOrdinaryFrameHasNoOddities) {
  Bytes const frame =
      fromHex(ethernetHex + "6000000000103aff" + addressesHex + "8600 3527 40 00 0708 00000000 00000000");
  EXPECT_THAT(textOf(frame), Not(HasSubstr("!")));
}

/// Every octet that is there belongs to exactly one block, whatever the octets are.
void expectAllOctetsDescribed(Bytes const& frame) {
  std::size_t at = 0;
  for (FrameBlock const& block : describeEthernetFrame(frame).blocks) {
    ASSERT_EQ(block.offset, at);
    at += block.size;
    for (FrameField const& field : block.fields) ASSERT_LT(field.offset, at) << block.title << ": " << field.name;
  }
  ASSERT_EQ(at, frame.size());
}

Bytes const& frameWithEverything() {
  static Bytes const frame = frameWith(
      "0101020000000001 0501000000005dc0 0304 40c0 00000001 00000001 00000000 20010db8000000000000000000000000"
      "1802 4008 ffffffff 20010db800000000 1903 0000 0000012c 20010db8000000000000000000000053"
      "1f03 0000 0000012c 076578616d706c6503636f6d00000000 fd03 0003 00000000 746674703a2f2f612f626f6f74000000");
  return frame;
}

TEST(FrameDescriber, EveryTruncationIsDescribedToItsLastOctet) {
  for (std::size_t size = 0; size <= frameWithEverything().size(); ++size)
    expectAllOctetsDescribed(
        Bytes(frameWithEverything().begin(), frameWithEverything().begin() + static_cast<std::ptrdiff_t>(size)));
}

TEST(FrameDescriber, EveryOctetMayHaveEveryValue) {
  for (std::size_t at = 0; at < frameWithEverything().size(); ++at)
    for (int value = 0; value < 256; ++value) {
      Bytes frame = frameWithEverything();
      frame[at] = static_cast<Fwk::U8>(value);
      expectAllOctetsDescribed(frame);
    }
}

TEST(FrameDescriber, ControlCharactersDoNotReachTheTerminal) {
  EXPECT_THAT(
      textOf(frameWith("fd02 0000 00000000 1b5b33316d000a07 1f02 0000 0000012c 031b5b6d00000000")),
      AllOf(Not(HasSubstr("\x1b")), Not(HasSubstr("\a")), HasSubstr("\\x1b[31m\\x00\\x0a\\x07"), HasSubstr("\\027[m")));
}

}  // namespace

}  // namespace Tool

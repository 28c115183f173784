#include <Ipv6RouterAdvt/RouterAdvtUtils/DnsGroups.h>
#include <tests/Ipv6RouterAdvt/Support/Advert.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace AdvertTest;
using RouterAdvt::LifeTimeHashMap;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr U8 dnssl = 31;

/// One call of the option's writer, into a dirty buffer that ends with the last octet that may ever be written.
struct Group {
  explicit Group(U64 size, U64 start = 0) : pktBufSize(size), buf(size), from(start), msgLen(start) {}

  /// Adds a suffix of `lifetime`.
  Group& suffix(std::string const& text, U32 lifetime = 300) {
    advert.suffix(text, lifetime);
    return *this;
  }
  int write(U32 lifetime = 300) {
    return RouterAdvt::copyDNSSuffixesWithSameLifeTimeToRaMsgBuf(buf.data(), msgLen, pktBufSize, lifetime,
                                                                 advert.config, visited);
  }
  /// What was written, in hexadecimal digits.
  std::string written() const { return buf.hex(from, msgLen); }

  Advert advert;
  U64 pktBufSize;
  OptionBuffer buf;
  U64 from, msgLen;
  LifeTimeHashMap visited;
};

struct EncodingRow {
  char const* name;
  std::string suffix;
  std::string option;  // from the first octet to the last octet of padding

  friend void PrintTo(EncodingRow const& r, std::ostream* os) { *os << r.name; }
};
std::string const zero("0000 0000012c"_hex);  // reserved and lifetime
EncodingRow const encodingRows[] = {
    {"ExampleComHas13OctetsAnd3OfPadding", "example.com",
     "1f03" + zero + "07" + hexOf("example") + "03" + hexOf("com") + "00 000000"_hex},
    {"EmptySuffixIsASingleZero", "", "1f02" + zero + "00 00000000000000"_hex},
    {"OneLabel", "a", "1f02" + zero + "016100 0000000000"_hex},
    {"ThreeLabels", "a.b.c", "1f02" + zero + "01610162016300 00"_hex},
    {"NoPadding", "abcdef", "1f02" + zero + "0661626364656600"},
    {"OneOctetOfPadding", "abcde", "1f02" + zero + "05616263646500 00"_hex},
    {"SevenOctetsOfPadding", "abcdefg", "1f03" + zero + "076162636465666700 00000000000000"_hex},
    {"TrailingDotIsOneMoreEmptyLabel", "a.", "1f02" + zero + "01610000 00000000"_hex},
    {"TwoTrailingDots", "a..", "1f02" + zero + "0161000000 000000"_hex},
    {"DoubleDotIsAnEmptyLabelInTheMiddle", "a..b", "1f02" + zero + "016100016200 0000"_hex},
    {"LeadingDotIsAnEmptyLabelInFront", ".a", "1f02" + zero + "00016100 00000000"_hex},
    {"DotAloneIsTwoEmptyLabels", ".", "1f02" + zero + "000000 0000000000"_hex},
    {"TwoDotsAreThreeEmptyLabels", "..", "1f02" + zero + "00000000 00000000"_hex},
    {"OctetsAreKept", std::string("A\0\xff", 3), "1f02" + zero + "034100ff00 000000"_hex},
    {"LabelOf63Octets", std::string(63, 'x'),
     "1f0a" + zero + "3f" + hexOf(std::string(63, 'x')) + "00 00000000000000"_hex},
    {"LabelOf64OctetsHasItsLengthAsItIs", std::string(64, 'x'),
     "1f0a" + zero + "40" + hexOf(std::string(64, 'x')) + "00 000000000000"_hex},
    {"LabelOf255Octets", std::string(255, 'x'),
     "1f22" + zero + "ff" + hexOf(std::string(255, 'x')) + "00 00000000000000"_hex},
    {"LabelOf256OctetsKeepsTheLowEightBitsOfItsLength", std::string(256, 'x'),
     "1f22" + zero + "00" + hexOf(std::string(256, 'x')) + "00 000000000000"_hex},
    {"LabelOf300OctetsKeepsTheLowEightBitsOfItsLength", std::string(300, 'x'),
     "1f27" + zero + "2c" + hexOf(std::string(300, 'x')) + "00 0000"_hex},
};
class DnsSuffix : public testing::TestWithParam<EncodingRow> {};
TEST_P(DnsSuffix, IsEncodedAsItsLabels) {
  Group group(500, 5);
  group.suffix(GetParam().suffix);
  EXPECT_EQ(group.write(), 1);
  EXPECT_EQ(group.written(), GetParam().option);
  EXPECT_EQ(group.buf.hex(0, 5), "eeeeeeeeee");
  EXPECT_TRUE(group.buf.untouchedFrom(group.msgLen));
}
INSTANTIATE_TEST_SUITE_P(Rows, DnsSuffix, testing::ValuesIn(encodingRows));

/// RFC 1035 3.1 octet by octet.
std::string labelsOf(std::string const& suffix) {
  std::string labels;
  for (std::size_t pos = 0, end = 0; end < suffix.size(); pos = end + 1) {
    end = std::min(suffix.find('.', pos), suffix.size());
    labels += static_cast<char>(end - pos);
    labels += suffix.substr(pos, end - pos);
  }
  return labels + '\0';
}

TEST(DnsSuffix, HasItsLabelsWhereverTheDotsAre) {
  std::string const letters = "abcdefghijklmnopqrstuvwxyz";
  for (std::size_t size = 1; size <= letters.size(); ++size)
    for (std::size_t first = 0; first < size; ++first)
      for (std::size_t second = first; second < size; ++second) {
        std::string suffix = letters.substr(0, size);
        suffix[first] = suffix[second] = '.';
        std::string const labels = labelsOf(suffix);
        Group group((8 + labels.size() + 7) / 8 * 8);
        group.suffix(suffix).write();
        ASSERT_EQ(group.buf.hex(8, 8 + labels.size()), hexOf(labels)) << suffix;
      }
}

// Octets that differ from a dot in one bit, or would reach one by a carry from the octet before.
TEST(DnsSuffix, TakesNothingButADotForOne) {
  for (int octet = 0; octet < 256; ++octet) {
    std::string suffix = "xx.xxxx.xx.xxx";
    for (std::size_t at : {1U, 3U, 6U, 8U, 9U, 13U}) suffix[at] = static_cast<char>(octet);
    std::string const labels = labelsOf(suffix);
    Group group(64);
    group.suffix(suffix).write();
    ASSERT_EQ(group.buf.hex(8, 8 + labels.size()), hexOf(labels)) << octet;
  }
}

// Groups.

TEST(DnsSearchListOption, HasAllSuffixesOfOneLifetimeInTheirOrder) {
  Advert advert;
  for (char const* suffix : {"c", "a", "b"}) advert.suffix(suffix, 300);
  EXPECT_THAT(advert.options(dnssl), ElementsAre("1f03" + zero + "016300 016100 016200 00000000000000"_hex));
}

TEST(DnsSearchListOption, SuffixesOfTwoLifetimesAreTwoOptionsInTheOrderOfTheirFirstMembers) {
  Advert advert;
  advert.suffix("a.com", 300);
  advert.suffix("b.com", 600);
  advert.suffix("c.com", 300);
  EXPECT_THAT(advert.options(dnssl), ElementsAre("1f03 0000 0000012c 0161 03636f6d 00 0163 03636f6d 00 0000"_hex,
                                                 "1f02 0000 00000258 0162 03636f6d 00 00"_hex));
}

TEST(DnsSearchListOption, ThereIsNoneWithoutSuffixes) {
  Advert advert;
  Trace::Capture capture("RouterAdvtUtils");
  EXPECT_THAT(advert.options(dnssl), IsEmpty());
  EXPECT_THAT(capture.texts(3), Contains("After DNS Suffix Search List option: 86"));
  EXPECT_THAT(capture.texts(8), Not(Contains(HasSubstr("Dns"))));
}

struct LifetimeRow {
  char const* name;
  void (*change)(IntfConfig&, RouterAdvt::DNSSuffixConfigEntry&);
  char const* lifetime;

  friend void PrintTo(LifetimeRow const& r, std::ostream* os) { *os << r.name; }
};
LifetimeRow const lifetimeRows[] = {
    {"OneAndAHalfTimesTheDefaultInterval", [](auto&, auto&) {}, "0000012c"},
    {"OneAndAHalfTimesTheInterval", [](auto& c, auto&) { c.raIntervalMaxMsecIs(3000); }, "00000004"},
    {"0ForAnIntervalBelowOneSecond", [](auto& c, auto&) { c.raIntervalMaxMsecIs(999); }, "00000000"},
    {"TheInterfacesWhenConfigured",
     [](auto& c, auto&) {
       c.dnsSuffixesLifetimeIs(1000);
       c.dnsSuffixesLifetimeConfiguredIs(true);
     },
     "000003e8"},
    {"NotTheInterfacesUnlessConfigured", [](auto& c, auto&) { c.dnsSuffixesLifetimeIs(1000); }, "0000012c"},
    {"NotThatOfServers",
     [](auto& c, auto&) {
       c.dnsServersLifetimeIs(1000);
       c.dnsServersLifetimeConfiguredIs(true);
     },
     "0000012c"},
    {"TheSuffixsOwnBeforeTheInterfaces",
     [](auto& c, auto& s) {
       c.dnsSuffixesLifetimeIs(1000);
       c.dnsSuffixesLifetimeConfiguredIs(true);
       s.lifetimeIs(7);
       s.lifetimeConfiguredIs(true);
     },
     "00000007"},
    {"NotTheSuffixsOwnUnlessConfigured", [](auto&, auto& s) { s.lifetimeIs(7); }, "0000012c"},
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
class DnsSearchListLifetime : public testing::TestWithParam<LifetimeRow> {};
TEST_P(DnsSearchListLifetime, IsTheEffectiveOne) {
  Advert advert;
  GetParam().change(*advert.config, *advert.config->dnsSuffixesIs("a"));
  EXPECT_THAT(advert.options(dnssl), ElementsAre("1f02 0000"_hex + GetParam().lifetime + "016100 0000000000"_hex));
}
INSTANTIATE_TEST_SUITE_P(Rows, DnsSearchListLifetime, testing::ValuesIn(lifetimeRows));

TEST(DnsSearchListOption, TheNotebookIsNotThatOfTheServers) {
  Advert advert;
  advert.server("2001:db8::53", 300);
  advert.suffix("a", 300);
  EXPECT_EQ(advert.options(dnssl).size(), 1U);
}

// The writer of one group.

TEST(CopyDnsSuffixes, MarksTheLifetimeThatItWrote) {
  Group group(100);
  group.suffix("a", 300).suffix("b", 600);
  EXPECT_EQ(group.write(300), 1);
  EXPECT_TRUE(group.visited.visited(300));
  EXPECT_FALSE(group.visited.visited(600));
  EXPECT_EQ(group.visited.visited().size(), 1U);
}

TEST(CopyDnsSuffixes, WritesAndMarksNothingForAnEmptyGroup) {
  Group group(100);
  group.suffix("a", 300);
  EXPECT_EQ(group.write(301), 1);
  EXPECT_EQ(group.msgLen, 0U);
  EXPECT_TRUE(group.buf.untouchedFrom(0));
  EXPECT_TRUE(!group.visited);
}

TEST(CopyDnsSuffixes, SaysNothingForAnEmptyGroup) {
  Group group(100);
  group.suffix("a", 300);
  Trace::Capture capture("RouterAdvtUtils");
  group.write(301);
  EXPECT_THAT(capture.records(), IsEmpty());
}

TEST(CopyDnsSuffixes, NeverConsultsTheLifetimesThatWereVisited) {
  Group group(100);
  group.suffix("a", 300);
  group.visited.visitedIs(300, true);
  EXPECT_EQ(group.write(300), 1);
  EXPECT_EQ(group.written(), "1f02" + zero + "016100 0000000000"_hex);
}

TEST(CopyDnsSuffixes, ThatDoNotFitWriteAndMarkNothing) {
  Group group(10 + 23, 10);
  group.suffix("example.com");
  Trace::Capture capture("RouterAdvtUtils", "3");
  EXPECT_EQ(group.write(), 0);
  EXPECT_EQ(group.msgLen, 10U);
  EXPECT_TRUE(group.buf.untouchedFrom(0));
  EXPECT_TRUE(!group.visited);
  EXPECT_THAT(capture.texts(3), ElementsAre("Could not copy dnsSuffixes as msgLen ( 34 ) > pktBufSize > ( 33)"));
}

TEST(CopyDnsSuffixes, OfExampleComAreEstimatedAt20OctetsPaddedTo24) {
  Group group(10 + 24, 10);
  group.suffix("example.com");
  Trace::Capture capture("RouterAdvtUtils", "3,8");
  EXPECT_EQ(group.write(), 1);
  EXPECT_EQ(group.msgLen, 34U);
  EXPECT_THAT(capture.texts(8), Contains("Computing Length DNS Suffix: example.com length: 20"));
  EXPECT_THAT(capture.texts(8), Contains("Total Length of DNS Suffixes after padding: 24"));
  EXPECT_THAT(capture.texts(3), IsEmpty());
}

TEST(CopyDnsSuffixes, AreEstimatedOneOctetShortEach) {
  Group group(100);
  group.suffix("abcdefg");  // 8 by the estimate, 9 in fact
  EXPECT_EQ(group.write(), 1);
  EXPECT_EQ(group.written(), "1f03" + zero + "076162636465666700 00000000000000"_hex);
  Group tight(16);
  tight.suffix("abcdefg");
  EXPECT_EQ(tight.write(), 1) << "the estimate fits";
  EXPECT_EQ(tight.written(), "1f03" + zero + "076162636465666700 00000000000000"_hex) << "8 octets behind the buffer";
}

// A group whose estimate fits, but whose labels do not: room for 16 octets of names, 3 octets a suffix.
TEST(CopyDnsSuffixes, ALabelThatDoesNotFitEndsItsSuffixAndTheOptionIsClosed) {
  Group group(24);
  for (char const* suffix : {"a", "b", "c", "d", "e", "f", "g", "h"}) group.suffix(suffix);
  Trace::Capture capture("RouterAdvtUtils", "3");
  EXPECT_EQ(group.write(), 1);
  EXPECT_EQ(group.written(), "1f03" + zero + "016100 016200 016300 016400 016500 00"_hex);
  EXPECT_TRUE(group.buf.untouchedFrom(24));
  EXPECT_TRUE(group.visited.visited(300));
  EXPECT_THAT(capture.texts(3), SizeIs(3));
  EXPECT_THAT(capture.texts(3), Each("Could not copy dns suffx as msgLen ( 25 ) > pktBufSize > ( 24)"));
}

TEST(CopyDnsSuffixes, LabelsBeforeTheOneThatDoesNotFitStayWithoutATerminatingZero) {
  Group group(32);  // the estimate is 30
  for (char const* suffix : {"aa", "bb", "cc", "dd", "eee", "f.g", "h"}) group.suffix(suffix);
  // "eee" ends at 29, "f" at 31; "g" would end at 33, and so would "h"
  Trace::Capture capture("RouterAdvtUtils", "3,8");
  EXPECT_EQ(group.write(), 1);
  EXPECT_EQ(group.written(), "1f04" + zero + "02616100 02626200 02636300 02646400 0365656500 0166 00"_hex);
  EXPECT_THAT(capture.texts(3), ElementsAre("Could not copy dns suffx as msgLen ( 33 ) > pktBufSize > ( 32)",
                                            "Could not copy dns suffx as msgLen ( 33 ) > pktBufSize > ( 32)"));
  EXPECT_THAT(capture.texts(8), Not(Contains(HasSubstr("After Encoding DNS Suffix: f.g"))));
}

TEST(CopyDnsSuffixes, TheTerminatingZeroOfALabelThatJustFitsIsWrittenBehindTheBuffer) {
  Group group(32);
  for (char const* suffix : {"aa", "bb", "cc", "dd", "ee", "f.g", "h"}) group.suffix(suffix);
  // "f" ends at 30, "g" at 32, its zero at 33; "h" would end at 35
  Trace::Capture capture("RouterAdvtUtils", "3");
  EXPECT_EQ(group.write(), 1);
  EXPECT_EQ(group.written(),
            "1f05" + zero + "02616100 02626200 02636300 02646400 02656500 01660167 00 00000000000000"_hex);
  EXPECT_THAT(capture.texts(3), ElementsAre("Could not copy dns suffx as msgLen ( 35 ) > pktBufSize > ( 32)"));
}

TEST(CopyDnsSuffixes, TheNextSuffixIsTriedAfterOneThatDidNotFit) {
  Group group(40);  // the estimate is 38
  for (char const* suffix : {"a", "b", "c", "d", "e", "f", "g", "h", "ijklmnopq", "r", ""}) group.suffix(suffix);
  // "h" ends at 32; "ijklmnopq" would end at 42; "r" ends at 34, its zero at 35, the empty suffix at 36
  Trace::Capture capture("RouterAdvtUtils", "3");
  EXPECT_EQ(group.write(), 1);
  EXPECT_EQ(group.msgLen, 40U);
  EXPECT_EQ(group.buf.hex(29, 40), "016800 017200 00 00000000"_hex);
  EXPECT_THAT(capture.texts(3), ElementsAre("Could not copy dns suffx as msgLen ( 42 ) > pktBufSize > ( 40)"));
}

TEST(CopyDnsSuffixes, AnEmptySuffixNeedsNoRoom) {
  Group group(39);
  for (char const* suffix : {"aa", "bb", "cc", "dd", "ee", "f", "g", "h", "i", ""}) group.suffix(suffix);
  Trace::Capture capture("RouterAdvtUtils", "3,8");
  group.write();
  EXPECT_THAT(capture.texts(3), IsEmpty());
  EXPECT_THAT(capture.texts(8), Contains("After Encoding DNS Suffix:  length: 41"));
}

TEST(CopyDnsSuffixes, MayEndUpTo9OctetsBehindTheBuffer) {
  Group group(39);
  for (char const* suffix : {"aa", "bb", "cc", "dd", "ee", "f", "g", "h", "i", ""}) group.suffix(suffix);
  // The estimate is 32. The last label ends at 39, its zero at 40, the empty suffix at 41, the padding at 48.
  EXPECT_EQ(group.write(), 1);
  EXPECT_EQ(group.msgLen, 48U);
  EXPECT_EQ(
      group.written(),
      "1f06" + zero + "02616100 02626200 02636300 02646400 02656500 016600 016700 016800 016900 00 00000000000000"_hex);
}

// The same in a frame.

TEST(DnsSearchListOption, WhatIsWrittenBehindTheBufferIsPartOfTheFrame) {
  Advert advert;
  advert.config->raMtuSuppressIs(true);
  advert.mtu = 78 + 39;
  for (char const* suffix : {"aa", "bb", "cc", "dd", "ee", "f", "g", "h", "i", ""}) advert.suffix(suffix, 300);
  Octets const frame = advert.frame();
  EXPECT_EQ(frame.size(), 117U + 9);
  EXPECT_EQ(Frame::u16At(frame, 18), 72);
  EXPECT_EQ(Frame::u16At(frame, 56), Frame::icmp6Checksum(frame));
  EXPECT_THAT(
      advert.options(dnssl),
      ElementsAre("1f06" + zero +
                  "02616100 02626200 02636300 02646400 02656500 016600 016700 016800 016900 00 00000000000000"_hex));
}

TEST(DnsSearchListOption, BehindTheBufferTheNetworkBootOptionIsLeftOut) {
  Advert advert;
  advert.config->raMtuSuppressIs(true);
  advert.mtu = 78 + 39;
  for (char const* suffix : {"aa", "bb", "cc", "dd", "ee", "f", "g", "h", "i", ""}) advert.suffix(suffix, 300);
  advert.config->networkBootFileUrlIs("tftp://[::1]/");
  Trace::Capture capture("RouterAdvtUtils", "3");
  EXPECT_EQ(advert.frame().size(), 126U);
  EXPECT_THAT(capture.texts(3),
              ElementsAre("After Recursive DNS Server option: 78", "After DNS Suffix Search List option: 126",
                          "Could not copy network boot option as msgLen ( 134 ) > pktBufSize > ( 117)",
                          "After Network Boot option: 126"));
}

TEST(DnsSearchListOption, BehindTheBufferTheNextLifetimeIsLeftOut) {
  Advert advert;
  advert.config->raMtuSuppressIs(true);
  advert.mtu = 78 + 39;
  for (char const* suffix : {"aa", "bb", "cc", "dd", "ee", "f", "g", "h", "i", ""}) advert.suffix(suffix, 300);
  advert.suffix("z", 600);
  Trace::Capture capture("RouterAdvtUtils", "3");
  EXPECT_EQ(advert.options(dnssl).size(), 1U);
  EXPECT_THAT(capture.texts(3), Contains("Could not copy dnsSuffixes as msgLen ( 142 ) > pktBufSize > ( 117)"));
}

TEST(DnsSearchListOption, AGroupThatDoesNotFitIsTriedAgainForEachOfItsSuffixesAndALaterOneIsWritten) {
  Advert advert;
  advert.mtu = 86 + 16;
  advert.suffix("example.com", 300);
  advert.suffix("a", 600);
  advert.suffix("b", 300);
  advert.suffix("c", 300);
  Trace::Capture capture("RouterAdvtUtils", "3");
  EXPECT_THAT(advert.options(dnssl), ElementsAre("1f02 0000 00000258 016100 0000000000"_hex));
  // 8, 12, 2 and 2 are 24; the second time the option of 16 octets stands before it
  EXPECT_THAT(capture.texts(3),
              ElementsAre("After Recursive DNS Server option: 86",
                          "Could not copy dnsSuffixes as msgLen ( 110 ) > pktBufSize > ( 102)",
                          "Could not copy dnsSuffixes as msgLen ( 126 ) > pktBufSize > ( 102)",
                          "Could not copy dnsSuffixes as msgLen ( 126 ) > pktBufSize > ( 102)",
                          "After DNS Suffix Search List option: 102", "After Network Boot option: 102"));
}

TEST(DnsSearchListOption, AGroupThatDidNotFitIsNotMarkedVisited) {
  Advert advert;
  advert.mtu = 86;
  advert.suffix("a", 300);
  advert.suffix("b", 300);
  Trace::Capture capture("RouterAdvtUtils", "8");
  EXPECT_THAT(advert.options(dnssl), IsEmpty());
  std::vector<std::string> lines;
  for (std::string const& text : capture.texts(8))
    if (text.starts_with("dnsSuffixLifetime: ")) lines.push_back(text);
  EXPECT_THAT(lines, ElementsAre("dnsSuffixLifetime: 300visited: false", "dnsSuffixLifetime: 300visited: false"));
}

TEST(DnsSearchListOption, ManyLifetimesAreAsManyOptions) {
  Advert advert;
  for (U32 i = 1; i <= 90; ++i) advert.suffix(std::to_string(i), i);
  EXPECT_EQ(advert.options(dnssl).size(), 88U);  // (1500 - 86) / 16
}

}  // namespace

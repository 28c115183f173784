#include <RouterPlatform/Net/Ip6Addr.h>

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

namespace {

using Net::Ip6Addr;
using Octets = std::array<Fwk::U8, 16>;
using namespace std::string_literals;

struct TextRow {
  char const* name;
  char const* text;
  Octets octets;
  char const* printed;
  friend void PrintTo(TextRow const& r, std::ostream* os) { *os << r.name; }
};
TextRow const textRows[] = {
    {"Unspecified", "::", {}, "::"},
    {"Loopback", "0:0:0:0:0:0:0:1", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, "::1"},
    {"LowerCaseWithoutLeadingZeros",
     "2001:0DB8::00AB",
     {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xab},
     "2001:db8::ab"},
    {"OneZeroGroupIsNotShortened",
     "2001:db8::1:1:1:1:1",
     {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1},
     "2001:db8:0:1:1:1:1:1"},
    {"TheLongestRunIsShortened",
     "2001:0:0:1:0:0:0:1",
     {0x20, 0x01, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1},
     "2001:0:0:1::1"},
    {"TheFirstOfEqualRunsIsShortened",
     "2001:db8:0:0:1:0:0:1",
     {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1},
     "2001:db8::1:0:0:1"},
    {"Ipv4Mapped", "::ffff:c000:0201", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 192, 0, 2, 1}, "::ffff:192.0.2.1"},
    {"Longest",
     "ffff:ffff:ffff:ffff:ffff:ffff:255.255.255.255",
     {255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255},
     "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
};
class Ip6AddrText : public testing::TestWithParam<TextRow> {};
TEST_P(Ip6AddrText, IsReadInEveryFormAndPrintedInOne) {
  auto const addr = Ip6Addr::parse(GetParam().text);
  ASSERT_TRUE(addr);
  EXPECT_EQ(addr->octets(), GetParam().octets);
  EXPECT_EQ(addr->toString(), GetParam().printed);
  EXPECT_EQ(Ip6Addr::parse(GetParam().printed), addr);
}
INSTANTIATE_TEST_SUITE_P(All, Ip6AddrText, testing::ValuesIn(textRows), [](auto const& row) { return row.param.name; });

TEST(Ip6Addr, RejectsEveryOtherText) {
  for (std::string_view const text :
       {""s, ":"s, "1::2::3"s, "12345::"s, "fe80::1%eth0"s, "2001:db8::/64"s, "::1\0"s, "::\0::1"s, " ::1"s, "::1 "s,
        "192.0.2.1"s, std::string(46, '0'), "0000:0000:0000:0000:0000:0000:0000:0000:0000"s})
    EXPECT_EQ(Ip6Addr::parse(text), std::nullopt) << text;
}

TEST(Ip6Addr, TheConstructorNamesATextItCannotRead) {
  try {
    Ip6Addr const addr("nonsense");
    FAIL() << addr.toString();
  } catch (std::invalid_argument const& error) {
    EXPECT_STREQ(error.what(), "Ip6Addr: cannot read \"nonsense\"");
  }
}

TEST(Ip6Addr, GoesToOctetsAndBack) {
  Octets octets{0x20, 0x01, 0x0d, 0xb8, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  Ip6Addr const addr = Ip6Addr::fromBytes(octets);
  octets.fill(0);
  addr.copyTo(octets);
  EXPECT_EQ(octets, (Octets{0x20, 0x01, 0x0d, 0xb8, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

struct ClassRow {
  char const* name;
  char const* text;
  bool linkLocal, multicast, unspecified, loopback;
  friend void PrintTo(ClassRow const& r, std::ostream* os) { *os << r.name; }
};
ClassRow const classRows[] = {
    {"LinkLocal", "fe80::1", true, false, false, false},
    {"LastLinkLocal", "febf:ffff::", true, false, false, false},
    {"BeforeLinkLocal", "fe7f:ffff::", false, false, false, false},
    {"AfterLinkLocal", "fec0::", false, false, false, false},
    {"Multicast", "ff02::1", false, true, false, false},
    {"Unspecified", "::", false, false, true, false},
    {"Loopback", "::1", false, false, false, true},
    {"Global", "2001:db8::1", false, false, false, false},
};
class Ip6AddrClass : public testing::TestWithParam<ClassRow> {};
TEST_P(Ip6AddrClass, FollowsFromTheLeadingBits) {
  Ip6Addr const addr(GetParam().text);
  EXPECT_EQ(addr.isLinkLocal(), GetParam().linkLocal);
  EXPECT_EQ(addr.isMulticast(), GetParam().multicast);
  EXPECT_EQ(addr.isUnspecified(), GetParam().unspecified);
  EXPECT_EQ(addr.isLoopback(), GetParam().loopback);
}
INSTANTIATE_TEST_SUITE_P(All, Ip6AddrClass, testing::ValuesIn(classRows),
                         [](auto const& row) { return row.param.name; });

TEST(Ip6Addr, OrdersByOctets) {
  EXPECT_LT(Ip6Addr("::ff"), Ip6Addr("::100"));
  EXPECT_LT(Ip6Addr("7fff::"), Ip6Addr("8000::"));
}

TEST(Ip6Addr, HashFollowsValueAndSeed) {
  EXPECT_EQ(Ip6Addr("2001:db8::1").hash(5), Ip6Addr("2001:db8::1").hash(5));
  EXPECT_NE(Ip6Addr("2001:db8::1").hash(5), Ip6Addr("2001:db8::2").hash(5));
  EXPECT_NE(Ip6Addr("1::").hash(5), Ip6Addr("1::").hash(6));
}

}  // namespace

#include <RouterPlatform/Nd/RouteInfo.h>
#include <tests/RouterPlatform/Nd/OptionTest.h>

namespace Net {
namespace {

using OptionTest::expectWrites;
using OptionTest::taken;
using Preference = Icmp6RouterAdvtRouterPreferenceType;

struct SizeRow {
  char const* name;
  Ip6AddrWithMask prefix;
  std::string hex;
  friend void PrintTo(SizeRow const& r, std::ostream* os) { *os << r.name; }
};
SizeRow const sizeRows[] = {
    {"NoneOfTheDefaultRoute", Ip6AddrWithMask("::/0"), "18 01 00 08 00000708"},
    {"8Of1Bit", Ip6AddrWithMask("8000::/1"), "18 02 01 08 00000708 8000000000000000"},
    {"8Of64Bits", Ip6AddrWithMask("2001:db8:1:2::/64"), "18 02 40 08 00000708 20010db800010002"},
    {"16Of65Bits", Ip6AddrWithMask("2001:db8:1:2:8000::/65"), "18 03 41 08 00000708 20010db8000100028000000000000000"},
    {"16Of128Bits", Ip6AddrWithMask("2001:db8::1/128"), "18 03 80 08 00000708 20010db8000000000000000000000001"},
};
class RouteInfoPrefixOctets : public testing::TestWithParam<SizeRow> {};
TEST_P(RouteInfoPrefixOctets, AreWritten) {
  RouteInfo const info{
      .prefix = GetParam().prefix, .routePreference = Preference::high, .routeLifetime = Seconds32(1800)};
  expectWrites([&](FrameWriter& out) { return put(out, info); }, GetParam().hex);
}
TEST_P(RouteInfoPrefixOctets, AreRead) {
  auto const info = taken(takeRouteInfo, GetParam().hex);
  EXPECT_EQ(info.prefix, GetParam().prefix);
  EXPECT_EQ(info.routePreference, Preference::high);
  EXPECT_EQ(info.routeLifetime, Seconds32(1800));
}
INSTANTIATE_TEST_SUITE_P(Rows, RouteInfoPrefixOctets, testing::ValuesIn(sizeRows));

TEST(RouteInfo, ReservedBitsAreReadAndNotWritten) {
  auto const info = taken(takeRouteInfo, "18 01 00 ff ffffffff");
  EXPECT_EQ(info.reserved, 0xe7);
  EXPECT_EQ(info.routePreference, Preference::low);
  EXPECT_EQ(info.routeLifetime, infiniteLifetime);
  expectWrites([&](FrameWriter& out) { return put(out, info); }, "18 01 00 18 ffffffff");
}

TEST(RouteInfo, OctetsBehindTheAddressAreNotRead) {
  EXPECT_EQ(taken(takeRouteInfo, "18 04 80 00 00000000 20010db8000000000000000000000001 ffffffffffffffff").prefix,
            Ip6AddrWithMask("2001:db8::1/128"));
}

TEST(RouteInfo, OfLengthZeroGivesNothing) {
  EXPECT_FALSE(takeRouteInfo(OptionTest::octetsOf("18 00 00 00 00000000"), 0));
}

}  // namespace
}  // namespace Net

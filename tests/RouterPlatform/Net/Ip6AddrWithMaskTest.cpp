#include <RouterPlatform/Net/Ip6AddrWithMask.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using Net::Ip6Addr;
using Net::Ip6AddrWithMask;

TEST(Ip6AddrWithMask, ReadsAndPrintsItsTextWithHostBits) {
  Ip6AddrWithMask const prefix("2001:DB8::5/64");
  EXPECT_EQ(prefix.address(), Ip6Addr("2001:db8::5"));
  EXPECT_EQ(prefix.maskLen(), 64);
  EXPECT_EQ(prefix.toString(), "2001:db8::5/64");
}

TEST(Ip6AddrWithMask, IsTheWholeAddressSpaceByDefault) { EXPECT_EQ(Ip6AddrWithMask().toString(), "::/0"); }

TEST(Ip6AddrWithMask, RejectsEveryOtherText) {
  for (std::string_view const text :
       {"", "2001:db8::", "2001:db8::/", "/64", "2001:db8::/129", "2001:db8::/256", "2001:db8::/-1", "2001:db8::/+1",
        "2001:db8::/064", "2001:db8::/64 ", "2001:db8::/64/64", "2001:db8:: /64", "2001:db8::/6x"})
    EXPECT_EQ(Ip6AddrWithMask::parse(text), std::nullopt) << text;
}

TEST(Ip6AddrWithMask, ReadsEveryMaskLengthFrom0To128) {
  for (int maskLen = 0; maskLen <= 128; ++maskLen) {
    auto const prefix = Ip6AddrWithMask::parse("2001:db8::/" + std::to_string(maskLen));
    ASSERT_TRUE(prefix);
    EXPECT_EQ(prefix->maskLen(), maskLen);
  }
}

TEST(Ip6AddrWithMask, TheConstructorNamesATextItCannotRead) {
  EXPECT_THROW(Ip6AddrWithMask("2001:db8::/129"), std::invalid_argument);
}

TEST(Ip6AddrWithMask, IsEqualOnlyWhenBothAre) {
  Ip6AddrWithMask const prefix("2001:db8::/64");
  EXPECT_EQ(prefix, Ip6AddrWithMask(Ip6Addr("2001:db8::"), 64));
  EXPECT_NE(prefix, Ip6AddrWithMask("2001:db8::/63"));
  EXPECT_NE(prefix, Ip6AddrWithMask("2001:db8::1/64"));
}

struct SubnetRow {
  char const* name;
  int maskLen;
  char const* subnet;
  friend void PrintTo(SubnetRow const& r, std::ostream* os) { *os << r.name; }
};
SubnetRow const subnetRows[] = {
    {"Nothing", 0, "::"},
    {"OneBit", 1, "8000::"},
    {"SevenBits", 7, "fe00::"},
    {"OneOctet", 8, "ff00::"},
    {"NineBits", 9, "ff80::"},
    {"Half", 64, "ffff:ffff:ffff:ffff::"},
    {"AllButOne", 127, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffe"},
    {"All", 128, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
    {"OneMoreThanThereAre", 129, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
    {"GreatestOnTheWire", 255, "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
};
class Ip6AddrWithMaskSubnet : public testing::TestWithParam<SubnetRow> {};
TEST_P(Ip6AddrWithMaskSubnet, ClearsTheHostBitsAndKeepsTheMaskLength) {
  Ip6Addr const ones("ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff");
  auto const maskLen = static_cast<Fwk::U8>(GetParam().maskLen);
  Ip6AddrWithMask const subnet = Ip6AddrWithMask(ones, maskLen).subnet();
  EXPECT_EQ(subnet.address(), Ip6Addr(GetParam().subnet));
  EXPECT_EQ(subnet.maskLen(), maskLen);
  EXPECT_TRUE(subnet.contains(ones));
}
INSTANTIATE_TEST_SUITE_P(All, Ip6AddrWithMaskSubnet, testing::ValuesIn(subnetRows),
                         [](auto const& row) { return row.param.name; });

TEST(Ip6AddrWithMask, ContainsTheAddressesOfItsSubnet) {
  Ip6AddrWithMask const prefix("2001:db8::5/64");
  EXPECT_TRUE(prefix.contains(Ip6Addr("2001:db8::ffff:ffff:ffff:ffff")));
  EXPECT_FALSE(prefix.contains(Ip6Addr("2001:db8:0:1::5")));
  EXPECT_TRUE(Ip6AddrWithMask().contains(Ip6Addr("ff02::1")));
}

TEST(Ip6AddrWithMask, AMaskLengthAbove128StaysAsItIs) {
  Ip6AddrWithMask const prefix(Ip6Addr("2001:db8::1"), 200);
  EXPECT_EQ(prefix.maskLen(), 200);
  EXPECT_EQ(prefix.toString(), "2001:db8::1/200");
  EXPECT_NE(prefix, Ip6AddrWithMask(Ip6Addr("2001:db8::1"), 128));
  EXPECT_NE(prefix.hash(), Ip6AddrWithMask(Ip6Addr("2001:db8::1"), 128).hash());
  EXPECT_TRUE(prefix.contains(Ip6Addr("2001:db8::1")));
  EXPECT_FALSE(prefix.contains(Ip6Addr("2001:db8::2")));
}

TEST(Ip6AddrWithMask, OrdersByAddressThenMaskLength) {
  EXPECT_LT(Ip6AddrWithMask("2001:db8::/64"), Ip6AddrWithMask("2001:db8::1/0"));
  EXPECT_LT(Ip6AddrWithMask("2001:db8::/63"), Ip6AddrWithMask("2001:db8::/64"));
}

TEST(Ip6AddrWithMask, HashFollowsValueAndSeed) {
  Ip6AddrWithMask const prefix("2001:db8::/64");
  EXPECT_EQ(prefix.hash(5), Ip6AddrWithMask("2001:db8::/64").hash(5));
  EXPECT_NE(prefix.hash(5), prefix.hash(6));
  EXPECT_NE(prefix.hash(5), Ip6AddrWithMask("2001:db9::/64").hash(5));
}

}  // namespace

#include <RouterPlatform/Net/EthAddr.h>

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

namespace {

using Net::EthAddr;
using Octets = std::array<Fwk::U8, 6>;

TEST(EthAddr, IsAllZeroByDefault) { EXPECT_EQ(EthAddr().toString(), "00:00:00:00:00:00"); }

TEST(EthAddr, ReadsAndPrintsItsText) {
  EthAddr const addr("02:0A:bc:00:Ff:01");
  EXPECT_EQ(addr.octets(), (Octets{0x02, 0x0a, 0xbc, 0x00, 0xff, 0x01}));
  EXPECT_EQ(addr.toString(), "02:0a:bc:00:ff:01");
}

TEST(EthAddr, RejectsEveryOtherText) {
  for (std::string_view const text :
       {"", "02:00:00:00:00", "02:00:00:00:00:0", "02:00:00:00:00:001", "2:0:0:0:0:1", "02-00-00-00-00-01",
        "02:00:00:00:00:0g", "0200:00:00:00:01", "02:00:00:00:00:01:", " 2:00:00:00:00:01"})
    EXPECT_EQ(EthAddr::parse(text), std::nullopt) << text;
}

TEST(EthAddr, TheConstructorNamesATextItCannotRead) {
  try {
    EthAddr const addr("nonsense");
    FAIL() << addr.toString();
  } catch (std::invalid_argument const& error) {
    EXPECT_STREQ(error.what(), "EthAddr: cannot read \"nonsense\"");
  }
}

TEST(EthAddr, GoesToOctetsAndBack) {
  Octets octets{1, 2, 3, 4, 5, 6};
  EthAddr const addr = EthAddr::fromBytes(octets);
  octets.fill(0);
  addr.copyTo(octets);
  EXPECT_EQ(octets, (Octets{1, 2, 3, 4, 5, 6}));
}

TEST(EthAddr, OrdersByOctets) {
  EXPECT_LT(EthAddr("00:00:00:00:00:ff"), EthAddr("00:00:00:00:01:00"));
  EXPECT_LT(EthAddr("7f:00:00:00:00:00"), EthAddr("80:00:00:00:00:00"));
}

TEST(EthAddr, HashFollowsValueAndSeed) {
  EXPECT_EQ(EthAddr("02:00:00:00:00:01").hash(5), EthAddr("02:00:00:00:00:01").hash(5));
  EXPECT_NE(EthAddr("02:00:00:00:00:01").hash(5), EthAddr("02:00:00:00:00:02").hash(5));
  EXPECT_NE(EthAddr("02:00:00:00:00:01").hash(5), EthAddr("02:00:00:00:00:01").hash(6));
}

TEST(EthAddr, MapsAMulticastGroup) {
  EthAddr const addr = EthAddr::forMulticast(Net::Ip6Addr("ff02::1:ff00:1234"));
  EXPECT_EQ(addr.toString(), "33:33:ff:00:12:34");
  EXPECT_TRUE(addr.isMulticast());
  EXPECT_FALSE(EthAddr("02:00:00:00:00:01").isMulticast());
}

}  // namespace

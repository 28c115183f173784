#include <RouterPlatform/Nd/PrefixInfo.h>
#include <tests/RouterPlatform/Nd/OptionTest.h>

namespace Net {
namespace {

using OptionTest::expectWrites;
using OptionTest::taken;

constexpr char const* prefixHex = "20010db8 00010000 00000000 00000009";
Ip6AddrWithMask const prefix("2001:db8:1::9/64");

TEST(PrefixInfo, IsWrittenAsTheDiagramSays) {
  expectWrites(
      [](FrameWriter& out) {
        return put(out, PrefixInfo{.prefix = prefix,
                                   .onLink = true,
                                   .autonomous = true,
                                   .validLifetime = Seconds32(0x00278d00),
                                   .preferredLifetime = Seconds32(0x00093a80)});
      },
      std::string("03 04 40 c0 00278d00 00093a80 00000000") + prefixHex);
}

struct FlagsRow {
  char const* name;
  PrefixInfo info;
  char const* octet;
  friend void PrintTo(FlagsRow const& r, std::ostream* os) { *os << r.name; }
};
FlagsRow const flagsRows[] = {
    {"None", {}, "00"},
    {"OnLink", {.onLink = true}, "80"},
    {"Autonomous", {.autonomous = true}, "40"},
    {"RouterAddress", {.routerAddress = true}, "20"},
    {"All", {.onLink = true, .autonomous = true, .routerAddress = true}, "e0"},
};
class PrefixInfoFlags : public testing::TestWithParam<FlagsRow> {
 protected:
  std::string hex() const {
    return std::string("03 04 00") + GetParam().octet + "00000000 00000000 00000000 " + std::string(32, '0');
  }
};
TEST_P(PrefixInfoFlags, AreWritten) {
  expectWrites([&](FrameWriter& out) { return put(out, GetParam().info); }, hex());
}
TEST_P(PrefixInfoFlags, AreRead) {
  auto const info = taken(takePrefixInfo, hex());
  EXPECT_EQ(info.onLink, GetParam().info.onLink);
  EXPECT_EQ(info.autonomous, GetParam().info.autonomous);
  EXPECT_EQ(info.routerAddress, GetParam().info.routerAddress);
  EXPECT_EQ(info.reserved1, 0);
}
INSTANTIATE_TEST_SUITE_P(Rows, PrefixInfoFlags, testing::ValuesIn(flagsRows));

TEST(PrefixInfo, InfinityIsALifetimeLikeOthers) {
  expectWrites(
      [](FrameWriter& out) {
        return put(
            out,
            PrefixInfo{.prefix = prefix, .validLifetime = infiniteLifetime, .preferredLifetime = infiniteLifetime});
      },
      std::string("03 04 40 00 ffffffff ffffffff 00000000") + prefixHex);
}

TEST(PrefixInfo, IsReadAsTheDiagramSays) {
  auto const info = taken(takePrefixInfo, std::string("03 04 40 c0 00278d00 00093a80 00000000") + prefixHex);
  EXPECT_EQ(info.prefix, prefix) << "host bits and all";
  EXPECT_EQ(info.validLifetime, Seconds32(0x00278d00));
  EXPECT_EQ(info.preferredLifetime, Seconds32(0x00093a80));
}

TEST(PrefixInfo, ReservedBitsAreReadAndNotWritten) {
  auto const info = taken(takePrefixInfo, std::string("03 04 40 1f 00000000 00000000 a1a2a3a4") + prefixHex);
  EXPECT_EQ(info.reserved1, 0x1f);
  EXPECT_EQ(info.reserved2, 0xa1a2a3a4);
  expectWrites([&](FrameWriter& out) { return put(out, info); },
               std::string("03 04 40 00 00000000 00000000 00000000") + prefixHex);
}

TEST(PrefixInfo, IsReadWhateverItsTypeAndLength) {
  EXPECT_EQ(taken(takePrefixInfo, std::string("63 00 ff 00 00000000 00000000 00000000") + prefixHex).prefix,
            Ip6AddrWithMask(prefix.address(), 255));
}

}  // namespace
}  // namespace Net

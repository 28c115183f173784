#include <RouterPlatform/Nd/Rdnss.h>
#include <tests/RouterPlatform/Nd/OptionTest.h>

namespace Net {
namespace {

using OptionTest::expectWrites;
using OptionTest::octetsOf;
using OptionTest::taken;

constexpr char const* twoServers =
    "19 05 0000 0000012c 20010db8000000000000000000000053 20010db8000000000000000000010053";
Ip6Addr const first("2001:db8::53"), second("2001:db8::1:53");

TEST(Rdnss, IsWrittenWithItsServers) {
  expectWrites(
      [](FrameWriter& out) {
        return put(out, Rdnss{.lifetime = Seconds32(300), .serverCount = 2}) && putServer(out, first) &&
               putServer(out, second);
      },
      twoServers);
}

TEST(Rdnss, LeavesNoRoomForOneServerMoreThanItFits) {
  OptionTest::Octets buffer(8 + 16, OptionTest::dirt);
  FrameWriter out(buffer, 0, buffer.size());
  ASSERT_TRUE(put(out, Rdnss{.serverCount = 1}));
  ASSERT_TRUE(putServer(out, first));
  EXPECT_FALSE(putServer(out, second));
}

TEST(Rdnss, IsReadWithItsServers) {
  auto const rdnss = taken(takeRdnss, twoServers);
  EXPECT_EQ(rdnss.lifetime, Seconds32(300));
  ASSERT_EQ(rdnss.serverCount, 2U);
  auto const octets = octetsOf(twoServers);
  EXPECT_EQ(takeServer(octets, 0, 0), first);
  EXPECT_EQ(takeServer(octets, 0, 1), second);
  EXPECT_FALSE(takeServer(octets, 0, 2));
}

TEST(Rdnss, ReservedOctetsAreReadAndNotWritten) {
  auto const rdnss = taken(takeRdnss, "19 01 b1b2 ffffffff");
  EXPECT_EQ(rdnss.reserved, 0xb1b2);
  EXPECT_EQ(rdnss.lifetime, infiniteLifetime);
  expectWrites([&](FrameWriter& out) { return put(out, rdnss); }, "19 01 0000 ffffffff");
}

TEST(Rdnss, HalfAServerIsNone) { EXPECT_EQ(taken(takeRdnss, "19 02 0000 00000000 20010db800000000").serverCount, 0U); }

TEST(Rdnss, OfLengthZeroGivesNothing) { EXPECT_FALSE(takeRdnss(octetsOf("19 00 0000 00000000"), 0)); }

}  // namespace
}  // namespace Net

#include <RouterPlatform/Nd/NetworkBoot.h>
#include <tests/RouterPlatform/Nd/OptionTest.h>

namespace Net {
namespace {

using OptionTest::expectWrites;
using OptionTest::octetsOf;

struct UrlRow {
  char const* name;
  std::string url, hex;
  friend void PrintTo(UrlRow const& r, std::ostream* os) { *os << r.name; }
};
UrlRow const urlRows[] = {
    {"Empty", "", "fd 01 0000 0000 0000"},
    {"1Octet", "a", "fd 02 0007 0000 0000 61 00000000000000"},
    {"7Octets", "abcdefg", "fd 02 0001 0000 0000 61626364656667 00"},
    {"8Octets", "abcdefgh", "fd 02 0000 0000 0000 6162636465666768"},
    {"9Octets", "abcdefghi", "fd 03 0007 0000 0000 616263646566676869 00000000000000"},
    {"OctetsOfAnyValue", std::string("\0\xff\x80", 3), "fd 02 0005 0000 0000 00ff80 0000000000"},
};
class NetworkBootUrlOf : public testing::TestWithParam<UrlRow> {};
TEST_P(NetworkBootUrlOf, IsWrittenWithItsPadding) {
  expectWrites([&](FrameWriter& out) { return put(out, NetworkBoot{.url = GetParam().url}); }, GetParam().hex);
}
TEST_P(NetworkBootUrlOf, IsReadWithoutItsPadding) {
  auto const url = OptionTest::taken(
      [](OptionTest::Octets const& octets, U64 at) {
        auto const boot = takeNetworkBoot(octets, at);
        return boot ? std::optional(std::string(boot->url)) : std::nullopt;
      },
      GetParam().hex);
  EXPECT_EQ(url, GetParam().url);
}
INSTANTIATE_TEST_SUITE_P(Rows, NetworkBootUrlOf, testing::ValuesIn(urlRows));

TEST(NetworkBoot, ReservedFieldsAreReadAndNotWritten) {
  auto const octets = octetsOf("fd 02 0007 a1a2 b1b2 61 00000000000000");
  auto const boot = takeNetworkBoot(octets, 0);
  ASSERT_TRUE(boot);
  EXPECT_EQ(boot->paddingLen, 7);
  EXPECT_EQ(boot->zero, 0xa1a2);
  EXPECT_EQ(boot->reserved1, 0xb1b2);
  expectWrites([&](FrameWriter& out) { return put(out, *boot); }, "fd 02 0007 0000 0000 61 00000000000000");
}

TEST(NetworkBoot, AnImpossiblePaddingLengthLeavesNoUrl) {
  for (char const* hex : {"fd 02 0008 0000 0000 6162636465666768", "fd 01 0001 0000 0000"}) {
    auto const octets = octetsOf(hex);
    auto const boot = takeNetworkBoot(octets, 0);
    ASSERT_TRUE(boot) << hex;
    EXPECT_EQ(boot->url, "") << hex;
  }
}

TEST(NetworkBoot, OfLengthZeroGivesNothing) { EXPECT_FALSE(takeNetworkBoot(octetsOf("fd 00 0000 0000 0000"), 0)); }

}  // namespace
}  // namespace Net

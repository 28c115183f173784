#include <RouterPlatform/Nd/RaHeader.h>
#include <tests/RouterPlatform/Nd/OptionTest.h>

namespace Net {
namespace {

using OptionTest::expectWrites;
using OptionTest::taken;
using Preference = Icmp6RouterAdvtRouterPreferenceType;

TEST(RaHeader, IsWrittenAsTheDiagramSays) {
  RaHeader const header{.curHopLimit = 64,
                        .managedConfig = true,
                        .routerPreference = Preference::high,
                        .routerLifetime = Seconds16(0x0708),
                        .reachableTime = Milliseconds32(0x01020304),
                        .retransTimer = Milliseconds32(0xa1a2a3a4)};
  expectWrites([&](FrameWriter& out) { return put(out, header); }, "8600 0000 40 88 0708 01020304 a1a2a3a4");
}

TEST(RaHeader, IsZeroByDefaultButForItsType) {
  expectWrites([](FrameWriter& out) { return put(out, RaHeader{}); }, "86000000 00000000 00000000 00000000");
}

struct FlagsRow {
  char const* name;
  RaHeader header;
  char const* octet;
  friend void PrintTo(FlagsRow const& r, std::ostream* os) { *os << r.name; }
};
FlagsRow const flagsRows[] = {
    {"Managed", {.managedConfig = true}, "80"},
    {"Other", {.otherConfig = true}, "40"},
    {"HomeAgent", {.homeAgent = true}, "20"},
    {"PreferenceHigh", {.routerPreference = Preference::high}, "08"},
    {"PreferenceReserved", {.routerPreference = Preference::reserved_}, "10"},
    {"PreferenceLow", {.routerPreference = Preference::low}, "18"},
    {"All", {.managedConfig = true, .otherConfig = true, .homeAgent = true, .routerPreference = Preference::low}, "f8"},
};
class RaHeaderFlags : public testing::TestWithParam<FlagsRow> {};
TEST_P(RaHeaderFlags, AreWritten) {
  expectWrites([&](FrameWriter& out) { return put(out, GetParam().header); },
               std::string("86000000 00") + GetParam().octet + "0000 00000000 00000000");
}
TEST_P(RaHeaderFlags, AreRead) {
  auto const header = taken(takeRaHeader, std::string("86000000 00") + GetParam().octet + "0000 00000000 00000000");
  EXPECT_EQ(header.managedConfig, GetParam().header.managedConfig);
  EXPECT_EQ(header.otherConfig, GetParam().header.otherConfig);
  EXPECT_EQ(header.homeAgent, GetParam().header.homeAgent);
  EXPECT_EQ(header.routerPreference, GetParam().header.routerPreference);
  EXPECT_EQ(header.reserved, 0);
}
INSTANTIATE_TEST_SUITE_P(Rows, RaHeaderFlags, testing::ValuesIn(flagsRows));

TEST(RaHeader, ReservedBitsAreReadAndNotWritten) {
  EXPECT_EQ(taken(takeRaHeader, "86000000 00070000 00000000 00000000").reserved, 7);
  expectWrites([](FrameWriter& out) { return put(out, RaHeader{.reserved = 7}); },
               "86000000 00000000 00000000 00000000");
}

TEST(RaHeader, IsReadWhateverTheIcmp6HeaderSays) {
  auto const header = taken(takeRaHeader, "ff12 3456 40 c0 0708 01020304 a1a2a3a4");
  EXPECT_EQ(header.curHopLimit, 64);
  EXPECT_EQ(header.routerLifetime, Seconds16(0x0708));
  EXPECT_EQ(header.reachableTime, Milliseconds32(0x01020304));
  EXPECT_EQ(header.retransTimer, Milliseconds32(0xa1a2a3a4));
}

}  // namespace
}  // namespace Net

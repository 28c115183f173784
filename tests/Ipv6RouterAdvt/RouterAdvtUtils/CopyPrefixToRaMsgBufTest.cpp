#include <tests/Ipv6RouterAdvt/Support/Advert.h>

namespace {

using namespace AdvertTest;
using RouterAdvt::copyPrefixToRaMsgBuf;

constexpr U64 optionSize = 32;

/// The option of one call into zeroed octets, in hexadecimal digits.
std::string written(char const* prefix, bool noOnLink, bool noAutoConfig, U32 preferredLifetime, U32 validLifetime) {
  Octets buf(optionSize, 0);
  U64 msgLen = 0;
  copyPrefixToRaMsgBuf(buf.data(), msgLen, Ip6AddrWithMask(prefix), noOnLink, noAutoConfig, preferredLifetime,
                       validLifetime);
  EXPECT_EQ(msgLen, optionSize);
  return Frame::toHex(buf);
}

struct FieldRow {
  char const* name;
  std::size_t offset, size;
  char const* hex;

  friend void PrintTo(FieldRow const& r, std::ostream* os) { *os << r.name; }
};
FieldRow const fieldRows[] = {
    {"Type", 0, 1, "03"},
    {"Length", 1, 1, "04"},
    {"PrefixLength", 2, 1, "3f"},
    {"Flags", 3, 1, "c0"},
    {"ValidLifetime", 4, 4, "11121314"},
    {"PreferredLifetime", 8, 4, "01020304"},
    {"Reserved2", 12, 4, "00000000"},
    {"Prefix", 16, 16, "20010db8000100020003000400050006"},
};
class PrefixInfoOptionField : public testing::TestWithParam<FieldRow> {};
TEST_P(PrefixInfoOptionField, StandsInItsPlace) {
  FieldRow const& row = GetParam();
  EXPECT_EQ(
      written("2001:db8:1:2:3:4:5:6/63", false, false, 0x01020304, 0x11121314).substr(2 * row.offset, 2 * row.size),
      row.hex);
}
INSTANTIATE_TEST_SUITE_P(Rows, PrefixInfoOptionField, testing::ValuesIn(fieldRows));

struct FlagsRow {
  char const* name;
  bool noOnLink, noAutoConfig;
  char const* flags;

  friend void PrintTo(FlagsRow const& r, std::ostream* os) { *os << r.name; }
};
FlagsRow const flagsRows[] = {
    {"BothFlagsByDefault", false, false, "c0"},
    {"OnlyAutonomous", true, false, "40"},
    {"OnlyOnLink", false, true, "80"},
    {"NeitherFlag", true, true, "00"},
};
class PrefixInfoOptionFlags : public testing::TestWithParam<FlagsRow> {};
TEST_P(PrefixInfoOptionFlags, AreSetFromTheTwoSwitches) {
  FlagsRow const& row = GetParam();
  EXPECT_EQ(written("2001:db8::/64", row.noOnLink, row.noAutoConfig, 1, 2).substr(6, 2), row.flags);
}
INSTANTIATE_TEST_SUITE_P(Rows, PrefixInfoOptionFlags, testing::ValuesIn(flagsRows));

struct DirtyRow {
  char const* name;
  bool noOnLink, noAutoConfig;
  char const* flags;

  friend void PrintTo(DirtyRow const& r, std::ostream* os) { *os << r.name; }
};
DirtyRow const dirtyRows[] = {
    {"OnLinkIsWrittenOverWhatWasThere", false, true, "80"},
    {"BothAreWrittenOverWhatWasThere", false, false, "c0"},
    {"AutonomousAloneIsAddedToWhatWasThere", true, false, "6e"},  // 0x2e and 0x40
    {"NeitherLeavesWhatWasThere", true, true, "2e"},
};
class PrefixInfoOptionInADirtyBuffer : public testing::TestWithParam<DirtyRow> {};
TEST_P(PrefixInfoOptionInADirtyBuffer, ReliesOnZerosForTheFlagsAlone) {
  DirtyRow const& row = GetParam();
  Octets buf(optionSize, 0x2e);
  U64 msgLen = 0;
  copyPrefixToRaMsgBuf(buf.data(), msgLen, Ip6AddrWithMask("2001:db8::/64"), row.noOnLink, row.noAutoConfig, 1, 2);
  EXPECT_EQ(Frame::toHex(buf),
            std::string("030440") + row.flags + "00000002 00000001 00000000 20010db8000000000000000000000000"_hex);
}
INSTANTIATE_TEST_SUITE_P(Rows, PrefixInfoOptionInADirtyBuffer, testing::ValuesIn(dirtyRows));

TEST(PrefixInfoOption, KeepsInfiniteLifetimes) {
  EXPECT_EQ(written("2001:db8::/64", false, false, 0xffffffff, 0xffffffff).substr(8, 16), "ffffffffffffffff");
}

TEST(PrefixInfoOption, KeepsLifetimesOfZero) {
  EXPECT_EQ(written("2001:db8::/64", false, false, 0, 0).substr(8, 16), "0000000000000000");
}

TEST(PrefixInfoOption, DoesNotMindAPreferredLifetimeAboveTheValidOne) {
  EXPECT_EQ(written("2001:db8::/64", false, false, 600, 300).substr(8, 16), "0000012c00000258");
}

TEST(PrefixInfoOption, KeepsHostBits) {
  EXPECT_EQ(written("2001:db8::1/64", false, false, 1, 2).substr(32), "20010db8000000000000000000000001");
}

TEST(PrefixInfoOption, HasNoHostBitsOfASubnet) {
  std::string const subnet = Ip6AddrWithMask("2001:db8::1/64").subnet().toString();
  EXPECT_EQ(written(subnet.c_str(), false, false, 1, 2).substr(32), "20010db8000000000000000000000000");
}

TEST(PrefixInfoOption, HasThePrefixLengthAsItIs) {
  EXPECT_EQ(written("::/0", false, false, 1, 2).substr(4, 2), "00");
  EXPECT_EQ(written("2001:db8::1/128", false, false, 1, 2).substr(4, 2), "80");
}

TEST(PrefixInfoOption, HasAPrefixLengthAbove128AsItIs) {
  Octets buf(optionSize, 0);
  U64 msgLen = 0;
  copyPrefixToRaMsgBuf(buf.data(), msgLen, Ip6AddrWithMask(Ip6Addr("2001:db8::1"), 255), false, false, 1, 2);
  EXPECT_EQ(buf[2], 255);
}

TEST(PrefixInfoOption, IsWrittenAtMsgLenAndNowhereElse) {
  OptionBuffer buf(100);
  U64 msgLen = 37;
  copyPrefixToRaMsgBuf(buf.data(), msgLen, Ip6AddrWithMask("2001:db8::/64"), false, false, 1, 2);
  EXPECT_EQ(msgLen, 69U);
  EXPECT_EQ(buf.hex(36, 40), "ee030440");
  EXPECT_EQ(buf.hex(0, 37), std::string(74, 'e'));
  EXPECT_TRUE(buf.untouchedFrom(69));
}

TEST(PrefixInfoOption, TwoCallsWriteTwoAdjacentOptions) {
  Octets buf(2 * optionSize, 0);
  U64 msgLen = 0;
  copyPrefixToRaMsgBuf(buf.data(), msgLen, Ip6AddrWithMask("2001:db8:1::/64"), false, false, 1, 2);
  copyPrefixToRaMsgBuf(buf.data(), msgLen, Ip6AddrWithMask("2001:db8:2::/48"), true, true, 3, 4);
  EXPECT_EQ(msgLen, 64U);
  EXPECT_EQ(
      Frame::toHex(buf),
      "030440c0 00000002 00000001 00000000 20010db8000100000000000000000000 03043000 00000004 00000003 00000000 20010db8000200000000000000000000"_hex);
}

}  // namespace

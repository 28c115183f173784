#include <RouterPlatform/Nd/Dnssl.h>
#include <tests/RouterPlatform/Nd/OptionTest.h>

#include <gmock/gmock.h>

namespace Net {
namespace {

using OptionTest::expectWrites;
using OptionTest::octetsOf;
using OptionTest::taken;
using Octets = OptionTest::Octets;

constexpr char const* exampleCom = "1f 03 0000 0000012c 07 6578616d706c65 03 636f6d 00 000000";

/// A whole option with one name, in a frame of `frameSize` octets and `slack` behind it. Returns its octets.
Octets written(std::string_view name, U64 frameSize = 64, U64 slack = 9) {
  Octets buffer(frameSize + slack, OptionTest::dirt);
  FrameWriter out(buffer, 0, frameSize);
  EXPECT_TRUE(put(out, Dnssl{.lifetime = Seconds32(300)}));
  putName(out, name);
  closeDnssl(out, sizeof(Icmp6HdrDnsslOption));
  for (U64 at = out.offset(); at < buffer.size(); ++at) EXPECT_EQ(buffer[at], OptionTest::dirt) << at;
  buffer.resize(out.offset());
  return buffer;
}

TEST(Dnssl, IsWrittenWithItsNamesAndPadding) { EXPECT_EQ(written("example.com"), octetsOf(exampleCom)); }

TEST(Dnssl, ItsHeadIsWrittenAsTheDiagramSays) {
  expectWrites([](FrameWriter& out) { return put(out, Dnssl{.lifetime = infiniteLifetime}); }, "1f 01 0000 ffffffff");
}

struct NameRow {
  char const* name;
  std::string text, encoded;
  friend void PrintTo(NameRow const& r, std::ostream* os) { *os << r.name; }
};
NameRow const nameRows[] = {
    {"Empty", "", "00"},
    {"OneLabel", "a", "0161 00"},
    {"TwoLabels", "a.bc", "0161 026263 00"},
    {"TrailingDot", "a.", "0161 00 00"},
    {"EmptyLabelInside", "a..b", "0161 00 0162 00"},
    {"LabelsAcrossWords", "abcdefg.hijklmnopq.r", "07 61626364656667 0a 68696a6b6c6d6e6f7071 0172 00"},
    {"OctetsOfAnyValue", std::string("\x80\0\xff.\xae", 5), "03 8000ff 01ae 00"},
};
class DnsslName : public testing::TestWithParam<NameRow> {};
TEST_P(DnsslName, IsWrittenAsLabelsAndAZeroOctet) {
  Octets const expected = octetsOf(GetParam().encoded);
  Octets buffer(64, OptionTest::dirt);
  FrameWriter out(buffer, 0, buffer.size());
  EXPECT_EQ(putName(out, GetParam().text), std::nullopt);
  buffer.resize(out.offset());
  EXPECT_EQ(buffer, expected);
}
INSTANTIATE_TEST_SUITE_P(Rows, DnsslName, testing::ValuesIn(nameRows));

struct CutRow {
  U64 room;
  std::optional<U64> cutAt;
  std::string encoded;
  friend void PrintTo(CutRow const& r, std::ostream* os) { *os << r.room << " octets"; }
};
CutRow const cutRows[] = {
    // of ab.cde.
    {0, 0, ""},
    {2, 0, ""},
    {3, 3, "026162"},
    {6, 3, "026162"},
    {7, 7, "026162 03636465"},
    {8, std::nullopt, "026162 03636465 00 00"},
};
class DnsslNameIn : public testing::TestWithParam<CutRow> {};
TEST_P(DnsslNameIn, EndsBeforeTheLabelThatPassesTheFrameLimit) {
  U64 const slack = 1;  // the zero octet may pass the limit
  Octets buffer(GetParam().room + slack, OptionTest::dirt);
  FrameWriter out(buffer, 0, GetParam().room);
  EXPECT_EQ(putName(out, "ab.cde."), GetParam().cutAt);
  Octets const expected = octetsOf(GetParam().encoded);
  EXPECT_EQ(Octets(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(out.offset())), expected);
  for (U64 at = out.offset(); at < buffer.size(); ++at) EXPECT_EQ(buffer[at], OptionTest::dirt) << at;
}
INSTANTIATE_TEST_SUITE_P(Rows, DnsslNameIn, testing::ValuesIn(cutRows));

TEST(Dnssl, ZerosMayPassTheFrameLimit) {
  EXPECT_EQ(written("abcdefg", 16, 8), octetsOf("1f 03 0000 0000012c 07 61626364656667 00 00000000000000"));
}

TEST(Dnssl, IsReadWithItsNames) {
  Octets const octets = octetsOf(exampleCom);
  auto const dnssl = taken(
      [](Octets const& all, U64 at) {
        auto const found = takeDnssl(all, at);
        return found ? std::optional(std::pair(*found, Octets(found->names.begin(), found->names.end())))
                     : std::nullopt;
      },
      exampleCom);
  EXPECT_EQ(dnssl.first.lifetime, Seconds32(300));
  EXPECT_EQ(dnssl.second, Octets(octets.begin() + 8, octets.end()));
}

TEST(Dnssl, ReservedOctetsAreReadAndNotWritten) {
  auto const dnssl = taken(takeDnssl, "1f 01 b1b2 0000012c");
  EXPECT_EQ(dnssl.reserved, 0xb1b2);
  expectWrites([&](FrameWriter& out) { return put(out, dnssl); }, "1f 01 0000 0000012c");
}

TEST(Dnssl, OfLengthZeroGivesNothing) { EXPECT_FALSE(takeDnssl(octetsOf("1f 00 0000 00000000"), 0)); }

}  // namespace
}  // namespace Net

#include <Ipv6RouterAdvt/RouterAdvtUtils/BootUrl.h>
#include <tests/Ipv6RouterAdvt/Support/Advert.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>

namespace {

using namespace AdvertTest;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr U8 networkBoot = 253;

/// The option's writer, in a frame that goes on at `msgLen`.
void copyNetworkBootOptionToRaMsgBuf(OptionBuffer& buf, U64& msgLen, U64 pktBufSize, std::string const& url) {
  RouterAdvt::AdvertDraft draft(Net::FrameWriter(buf.octets(), msgLen, pktBufSize));
  RouterAdvt::copyNetworkBootOptionToRaMsgBuf(draft, url);
  msgLen = draft.msgLen();
}

TEST(NetworkBootOption, OfAUrlOf13OctetsHas24OctetsOfWhich3ArePadding) {
  Advert advert;
  advert.config->networkBootFileUrlIs("tftp://[::1]/");
  EXPECT_THAT(advert.options(networkBoot), ElementsAre("fd03 0003 0000 0000"_hex + hexOf("tftp://[::1]/") + "000000"));
}

TEST(NetworkBootOption, ThereIsNoneWithoutAUrl) {
  Trace::Capture capture("RouterAdvtUtils");
  EXPECT_THAT(Advert().options(networkBoot), IsEmpty());
  EXPECT_THAT(capture.texts(8), Not(Contains(HasSubstr("network boot"))));
  EXPECT_THAT(capture.texts(3), Contains("After Network Boot option: 86"));
}

struct PaddingRow {
  char const* name;
  char const* url;
  std::string head;  // type, length, padding length, zero, reserved1
  char const* padding;

  friend void PrintTo(PaddingRow const& r, std::ostream* os) { *os << r.name; }
};
PaddingRow const paddingRows[] = {
    {"Of1", "a", "fd02 0007 0000 0000"_hex, "00000000000000"},
    {"Of2", "ab", "fd02 0006 0000 0000"_hex, "000000000000"},
    {"Of3", "abc", "fd02 0005 0000 0000"_hex, "0000000000"},
    {"Of4", "abcd", "fd02 0004 0000 0000"_hex, "00000000"},
    {"Of5", "abcde", "fd02 0003 0000 0000"_hex, "000000"},
    {"Of6", "abcdef", "fd02 0002 0000 0000"_hex, "0000"},
    {"Of7", "abcdefg", "fd02 0001 0000 0000"_hex, "00"},
    {"Of8", "abcdefgh", "fd02 0000 0000 0000"_hex, ""},
    {"Of9", "abcdefghi", "fd03 0007 0000 0000"_hex, "00000000000000"},
};
class NetworkBootUrl : public testing::TestWithParam<PaddingRow> {};
TEST_P(NetworkBootUrl, IsPaddedToAMultipleOf8) {
  PaddingRow const& row = GetParam();
  OptionBuffer buf(64, 0);
  U64 msgLen = 3;
  copyNetworkBootOptionToRaMsgBuf(buf, msgLen, 64, row.url);
  EXPECT_EQ(buf.hex(3, msgLen), row.head + hexOf(row.url) + row.padding);
  EXPECT_EQ(buf.hex(0, 3), "eeeeee");
  EXPECT_TRUE(buf.untouchedFrom(msgLen));
}
INSTANTIATE_TEST_SUITE_P(Rows, NetworkBootUrl, testing::ValuesIn(paddingRows));

struct RoomRow {
  char const* name;
  U64 room;  // octets from msgLen to pktBufSize
  U64 urlLen;
  std::string head;
  U64 copied, padding;

  friend void PrintTo(RoomRow const& r, std::ostream* os) { *os << r.name; }
};
RoomRow const roomRows[] = {
    {"8ForAnyUrl", 8, 13, "fd01 0000 0000 0000"_hex, 0, 0},
    {"8ForTheShortestUrl", 8, 1, "fd01 0000 0000 0000"_hex, 0, 0},
    {"15", 15, 13, "fd01 0000 0000 0000"_hex, 0, 0},
    {"16", 16, 13, "fd02 0000 0000 0000"_hex, 8, 0},
    {"23", 23, 13, "fd02 0000 0000 0000"_hex, 8, 0},
    {"24ForAUrlThatFitsWithItsPadding", 24, 13, "fd03 0003 0000 0000"_hex, 13, 3},
    {"24ForAUrlThatFitsExactly", 24, 16, "fd03 0000 0000 0000"_hex, 16, 0},
    {"24ForAUrlOfOneOctetMore", 24, 17, "fd03 0000 0000 0000"_hex, 16, 0},
    {"31ForAUrlThatWouldFitButForTheRounding", 31, 17, "fd03 0000 0000 0000"_hex, 16, 0},
    {"1458ForALongUrl", 1458, 5000, "fdb6 0000 0000 0000"_hex, 1448, 0},
};
class NetworkBootRoom : public testing::TestWithParam<RoomRow> {};
TEST_P(NetworkBootRoom, CutsTheUrlToWholeUnits) {
  RoomRow const& row = GetParam();
  std::string url;
  for (U64 i = 0; i < row.urlLen; ++i) url += static_cast<char>('a' + i % 26);
  U64 const from = 78;
  OptionBuffer buf(from + row.room, 0);
  U64 msgLen = from;
  copyNetworkBootOptionToRaMsgBuf(buf, msgLen, from + row.room, url);
  EXPECT_EQ(msgLen, from + 8 + row.copied + row.padding);
  EXPECT_EQ(buf.hex(from, msgLen), row.head + hexOf(url.substr(0, row.copied)) + std::string(2 * row.padding, '0'));
  EXPECT_TRUE(buf.untouchedFrom(msgLen));
}
INSTANTIATE_TEST_SUITE_P(Rows, NetworkBootRoom, testing::ValuesIn(roomRows));

struct NoRoomRow {
  char const* name;
  U64 msgLen, pktBufSize;
  char const* message;

  friend void PrintTo(NoRoomRow const& r, std::ostream* os) { *os << r.name; }
};
NoRoomRow const noRoomRows[] = {
    {"7Octets", 93, 100, "Could not copy network boot option as msgLen ( 101 ) > pktBufSize > ( 100)"},
    {"1Octet", 99, 100, "Could not copy network boot option as msgLen ( 107 ) > pktBufSize > ( 100)"},
    {"NoOctet", 100, 100, "Could not copy network boot option as msgLen ( 108 ) > pktBufSize > ( 100)"},
    {"MsgLenPastPktBufSize", 109, 100, "Could not copy network boot option as msgLen ( 117 ) > pktBufSize > ( 100)"},
};
class NetworkBootWithoutRoom : public testing::TestWithParam<NoRoomRow> {};
TEST_P(NetworkBootWithoutRoom, IsLeftOut) {
  NoRoomRow const& row = GetParam();
  OptionBuffer buf(row.pktBufSize);
  U64 msgLen = row.msgLen;
  Trace::Capture capture("RouterAdvtUtils");
  copyNetworkBootOptionToRaMsgBuf(buf, msgLen, row.pktBufSize, "tftp://[::1]/");
  EXPECT_EQ(msgLen, row.msgLen);
  EXPECT_TRUE(buf.untouchedFrom(0));
  ASSERT_EQ(capture.records().size(), 1U);
  EXPECT_EQ(capture.records()[0].level, 3U);
  EXPECT_EQ(capture.records()[0].text, row.message);
}
INSTANTIATE_TEST_SUITE_P(Rows, NetworkBootWithoutRoom, testing::ValuesIn(noRoomRows));

TEST(NetworkBootOption, ALongUrlFillsTheFrameRoundedDownToAMultipleOf8) {
  Advert advert;
  advert.config->networkBootFileUrlIs(std::string(2000, 'u'));
  EXPECT_EQ(advert.frame().size(), 86U + 1408);  // of the 1414 octets that are left
  EXPECT_THAT(advert.options(networkBoot), ElementsAre("fdb0 0000 0000 0000"_hex + hexOf(std::string(1400, 'u'))));
}

TEST(NetworkBootOption, IsLeftOutOfAFrameThatIsFull) {
  Advert advert;
  advert.mtu = 86;
  advert.config->networkBootFileUrlIs("tftp://[::1]/");
  Trace::Capture capture("RouterAdvtUtils", "3");
  EXPECT_EQ(advert.frame().size(), 86U);
  EXPECT_THAT(capture.texts(3),
              ElementsAre("After Recursive DNS Server option: 86", "After DNS Suffix Search List option: 86",
                          "Could not copy network boot option as msgLen ( 94 ) > pktBufSize > ( 86)",
                          "After Network Boot option: 86"));
}

TEST(NetworkBootOption, IsTheHeadAloneIn8OctetsOfAFrame) {
  Advert advert;
  advert.mtu = 94;
  advert.config->networkBootFileUrlIs("tftp://[::1]/");
  EXPECT_EQ(advert.frame().size(), 94U);
  EXPECT_THAT(advert.options(networkBoot), ElementsAre("fd01000000000000"));
}

TEST(NetworkBootOption, HasTheUrlOctetByOctet) {
  Advert advert;
  std::string const url("\0\xff.%\n\x80 ", 7);
  advert.config->networkBootFileUrlIs(url);
  EXPECT_THAT(advert.options(networkBoot), ElementsAre("fd02 0001 0000 0000"_hex + hexOf(url) + "00"));
}

TEST(NetworkBootOption, SaysThatItIsAddedWithoutAValue) {
  Advert advert;
  advert.config->networkBootFileUrlIs("tftp://[::1]/");
  Trace::Capture capture("RouterAdvtUtils");
  advert.pkt();
  EXPECT_THAT(capture.texts(8), Contains("Adding network boot option: "));
  EXPECT_THAT(capture.texts(3), Contains("After Network Boot option: 110"));
}

}  // namespace

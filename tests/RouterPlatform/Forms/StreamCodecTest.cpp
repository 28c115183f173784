#include <RouterPlatform/Base/Name.h>
#include <RouterPlatform/Forms/StreamCodec.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>
#include <RouterPlatform/Net/VrfName.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>
#include <tests/RouterPlatform/Mirror/StreamText.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace {

using Fwk::OctetBuffer;
using Fwk::OctetSink;
using Fwk::OctetSource;
using Fwk::StreamCodec;
using Fwk::String;
using Fwk::takeWhole;
using Fwk::U16;
using Fwk::U32;
using Fwk::U64;
using Fwk::U8;
using Net::Icmp6RouterAdvtRouterPreferenceType;
using Net::Ip6Addr;
using Net::Ip6AddrWithMask;
using TestModel::Bag;
using TestModel::Colour;
using TestModel::Point;

template <class T>
OctetBuffer put(T const& value) {
  OctetBuffer octets;
  OctetSink sink(octets);
  StreamCodec<T>::put(sink, value);
  return octets;
}

/// Expects that `value` is written as these octets and read from them, but not from a part of them or with one more.
template <class T>
void expectOctets(T const& value, std::string const& hex) {
  OctetBuffer octets = put(value);
  EXPECT_EQ(StreamText::hex(octets), hex);
  T read{};
  EXPECT_TRUE(takeWhole(octets, read));
  EXPECT_TRUE(read == value);
  for (std::size_t size = 0; size < octets.size(); ++size) {
    T part{};
    EXPECT_FALSE(takeWhole(std::span(octets).first(size), part)) << hex << " cut to " << size;
  }
  octets.push_back(0);
  T longer{};
  EXPECT_FALSE(takeWhole(octets, longer)) << hex;
}

/// Octets that are no value of the type.
template <class T>
bool refused(OctetBuffer const& octets) {
  T value{};
  return !takeWhole(octets, value);
}

struct ValueRow {
  char const* name;
  void (*check)();
  friend void PrintTo(ValueRow const& row, std::ostream* os) { *os << row.name; }
};
class StreamCodecOf : public testing::TestWithParam<ValueRow> {};
TEST_P(StreamCodecOf, WritesTheseOctetsAndReadsThemBack) { GetParam().check(); }

using Map = Fwk::OrderedMap<U32, bool>;
Map mapOf(std::initializer_list<std::pair<U32, bool>> entries) {
  Map map;
  for (auto const& [key, value] : entries) map.set(key, value);
  return map;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StreamCodecOf,
    testing::Values(
        ValueRow{"False", [] { expectOctets(false, "00"); }}, ValueRow{"True", [] { expectOctets(true, "01"); }},
        ValueRow{"Zero", [] { expectOctets(U32{0}, "00"); }},
        ValueRow{"LargestOfOneOctet", [] { expectOctets(U32{127}, "7f"); }},
        ValueRow{"SmallestOfTwoOctets", [] { expectOctets(U32{128}, "8001"); }},
        ValueRow{"LargestU8", [] { expectOctets(U8{255}, "ff01"); }},
        ValueRow{"LargestU16", [] { expectOctets(U16{65535}, "ffff03"); }},
        ValueRow{"LargestU32", [] { expectOctets(~U32{0}, "ffffffff0f"); }},
        ValueRow{"LargestU64", [] { expectOctets(~U64{0}, "ffffffffffffffffff01"); }},
        ValueRow{"MinusOne", [] { expectOctets(Fwk::S32{-1}, "01"); }},
        ValueRow{"PlusOne", [] { expectOctets(Fwk::S32{1}, "02"); }},
        ValueRow{"SmallestS64", [] { expectOctets(std::numeric_limits<Fwk::S64>::min(), "ffffffffffffffffff01"); }},
        ValueRow{"LargestS32", [] { expectOctets(std::numeric_limits<Fwk::S32>::max(), "feffffff0f"); }},
        ValueRow{"Enum", [] { expectOctets(Colour::green, "01"); }},
        ValueRow{"EnumWithoutAName", [] { expectOctets(static_cast<Icmp6RouterAdvtRouterPreferenceType>(77), "4d"); }},
        ValueRow{"FloatingPoint", [] { expectOctets(12.5, "4029000000000000"); }},
        ValueRow{"Infinity", [] { expectOctets(std::numeric_limits<double>::infinity(), "7ff0000000000000"); }},
        ValueRow{"EmptyText", [] { expectOctets(String(), "00"); }},
        ValueRow{"TextWithAZero", [] { expectOctets(String(std::string("a\0b", 3)), "03610062"); }},
        ValueRow{"Name", [] { expectOctets(Fwk::Name("ra"), "027261"); }},
        ValueRow{"IntfId", [] { expectOctets(Net::IntfId("et1"), "03657431"); }},
        ValueRow{"VrfName", [] { expectOctets(Net::VrfName("red"), "03726564"); }},
        ValueRow{"EthAddr", [] { expectOctets(Net::EthAddr("02:00:00:00:00:01"), "020000000001"); }},
        ValueRow{"Ip6Addr", [] { expectOctets(Ip6Addr("2001:db8::1"), "20010db8000000000000000000000001"); }},
        ValueRow{
            "PrefixWithALengthAbove128",
            [] { expectOctets(Ip6AddrWithMask(Ip6Addr("2001:db8::1"), 200), "20010db8000000000000000000000001c8"); }},
        ValueRow{"RecordInTheOrderOfItsAttributes", [] { expectOctets(Point(1, 300), "0301ac02"); }},
        ValueRow{"EmptyMap", [] { expectOctets(Map(), "00"); }},
        ValueRow{"MapInItsOrder", [] {
                   expectOctets(mapOf({{9, true}, {2, false}}), "0409010200");
                 }}));

TEST(StreamCodec, NotANumberKeepsItsBits) {
  double const notANumber = std::bit_cast<double>(U64{0x7ff8000000000123});
  double read = 0;
  ASSERT_TRUE(takeWhole(put(notANumber), read));
  EXPECT_EQ(std::bit_cast<U64>(read), 0x7ff8000000000123U);
}

TEST(StreamCodec, ARecordInARecordIsABlockInABlock) {
  Bag bag;
  bag.marksIs(3, true);
  expectOctets(bag, "03020301");
}

struct RefusedRow {
  char const* name;
  bool (*refused)(OctetBuffer const&);
  OctetBuffer octets;
  friend void PrintTo(RefusedRow const& row, std::ostream* os) { *os << row.name; }
};
class StreamCodecRefuses : public testing::TestWithParam<RefusedRow> {};
TEST_P(StreamCodecRefuses, TheseOctets) { EXPECT_TRUE(GetParam().refused(GetParam().octets)); }
INSTANTIATE_TEST_SUITE_P(
    Rows, StreamCodecRefuses,
    testing::Values(
        RefusedRow{"ABoolOfTwo", &refused<bool>, {2}}, RefusedRow{"ANumberAboveItsType", &refused<U8>, {0x80, 0x02}},
        RefusedRow{"ANumberInMoreOctetsThanItNeeds", &refused<U32>, {0x81, 0x00}},
        RefusedRow{"ANumberOfMoreThan64Bits", &refused<U64>, {255, 255, 255, 255, 255, 255, 255, 255, 255, 2}},
        RefusedRow{"ANumberOfElevenOctets", &refused<U64>, {128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 1}},
        RefusedRow{"ASignedNumberAboveItsType", &refused<Fwk::S32>, {0x80, 0x80, 0x80, 0x80, 0x10}},
        RefusedRow{"AnEnumAboveItsType", &refused<Colour>, {0x80, 0x02}},
        RefusedRow{"ATextThatPassesTheEnd", &refused<String>, {3, 'a', 'b'}},
        RefusedRow{"ATextOfAllOctetsThereAre", &refused<String>, {255, 255, 255, 255, 255, 255, 255, 255, 255, 1}},
        RefusedRow{"AnInterfaceNameOf32Octets", &refused<Net::IntfId>,
                   [] {
                     OctetBuffer octets(33, 'a');
                     octets[0] = 32;
                     return octets;
                   }()},
        RefusedRow{"ARecordCutWithinAnAttribute", &refused<Point>, {2, 1, 0x80}},
        RefusedRow{"AMapWithAKeyWithoutValue", &refused<Map>, {1, 9}}));

TEST(StreamCodec, ARecordOfAnOlderTypeLeavesTheLaterAttributesAtTheirDefault) {
  Point point;
  ASSERT_TRUE(takeWhole(OctetBuffer{1, 5}, point));
  EXPECT_EQ(point, Point(5, 0));
}

TEST(StreamCodec, ARecordOfANewerTypeIsReadAsFarAsItIsKnown) {
  Point point;
  ASSERT_TRUE(takeWhole(OctetBuffer{4, 5, 6, 0xff, 0xff}, point));
  EXPECT_EQ(point, Point(5, 6));
}

class BlockSize : public testing::TestWithParam<std::size_t> {};
TEST_P(BlockSize, StandsInFrontOfItsContent) {
  OctetBuffer octets{0xaa};
  OctetSink sink(octets);
  sink.block([&] {
    for (std::size_t i = 0; i < GetParam(); ++i) sink.octet(static_cast<U8>(i));
  });
  OctetSource in{std::span<U8 const>(octets).subspan(1)};
  OctetSource content;
  ASSERT_TRUE(in.block(content));
  EXPECT_TRUE(in.atEnd());
  ASSERT_EQ(content.rest().size(), GetParam());
  for (std::size_t i = 0; i < GetParam(); ++i) ASSERT_EQ(content.rest()[i], static_cast<U8>(i));
  EXPECT_EQ(octets[0], 0xaa);
}
INSTANTIATE_TEST_SUITE_P(Sizes, BlockSize, testing::Values(0, 1, 127, 128, 129, 16383, 16384, 100000));

}  // namespace

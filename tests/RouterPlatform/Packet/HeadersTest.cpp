#include <RouterPlatform/Nd/Dnssl.h>
#include <RouterPlatform/Nd/LinkLayerAddr.h>
#include <RouterPlatform/Nd/Mtu.h>
#include <RouterPlatform/Nd/NetworkBoot.h>
#include <RouterPlatform/Nd/PrefixInfo.h>
#include <RouterPlatform/Nd/RaHeader.h>
#include <RouterPlatform/Nd/Rdnss.h>
#include <RouterPlatform/Nd/RouteInfo.h>
#include <RouterPlatform/Packet/EthernetHdr.h>
#include <RouterPlatform/Packet/Icmp6Hdr.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace Net;

/// One field of a header: where it lies, and how it is read and written as a number.
struct FieldRow {
  std::string name;
  std::size_t headerSize;
  std::size_t offset;
  std::vector<U8> wire;  // the field's octets, all different
  U64 value;             // what they mean
  std::function<U64(U8*)> read;
  std::function<void(U8*, U64)> write;
  friend void PrintTo(FieldRow const& r, std::ostream* os) { *os << r.name; }
};

template <class Header, class Field>
FieldRow number(std::string name, std::size_t offset, Field Header::*field) {
  std::vector<U8> wire;
  U64 value = 0;
  for (std::size_t i = 0; i < sizeof(Field); ++i) {
    wire.push_back(static_cast<U8>(0xa1 + i));
    value = value << 8 | wire.back();
  }
  return {std::move(name),
          sizeof(Header),
          offset,
          wire,
          value,
          [field](U8* at) { return U64{reinterpret_cast<Header*>(at)->*field}; },
          [field](U8* at, U64 v) {
            if constexpr (sizeof(Field) == 1) reinterpret_cast<Header*>(at)->*field = static_cast<U8>(v);
            if constexpr (sizeof(Field) == 2) reinterpret_cast<Header*>(at)->*field = static_cast<U16>(v);
            if constexpr (sizeof(Field) == 4) reinterpret_cast<Header*>(at)->*field = static_cast<U32>(v);
          }};
}

/// A field of octets; its first and last octet tell where it lies.
template <class Header, std::size_t size>
FieldRow octets(std::string name, std::size_t offset, std::array<U8, size> Header::*field) {
  std::vector<U8> wire;
  for (std::size_t i = 0; i < size; ++i) wire.push_back(static_cast<U8>(0xa1 + i));
  U64 const ends = U64{wire.front()} << 8 | wire.back();
  return {std::move(name),
          sizeof(Header),
          offset,
          wire,
          ends,
          [field](U8* at) {
            auto const& f = reinterpret_cast<Header*>(at)->*field;
            return U64{f.front()} << 8 | f.back();
          },
          [field, wire](U8* at, U64) {
            auto& f = reinterpret_cast<Header*>(at)->*field;
            std::copy(wire.begin(), wire.end(), f.begin());
          }};
}

std::vector<FieldRow> const rows = {
    octets("EthernetDestination", 0, &EthernetHdr::destination),
    octets("EthernetSource", 6, &EthernetHdr::source),
    number("EthernetEtherType", 12, &EthernetHdr::etherType),
    number("TagControl", 0, &EthernetTagHdr::tagControl),
    number("TagEtherType", 2, &EthernetTagHdr::etherType),
    number("Ip6VersionTrafficClassFlowLabel", 0, &Ip6Hdr::versionTrafficClassFlowLabel),
    number("Ip6PayloadLength", 4, &Ip6Hdr::payloadLength),
    number("Ip6NextHeader", 6, &Ip6Hdr::nextHeader),
    number("Ip6HopLimit", 7, &Ip6Hdr::hopLimit),
    octets("Ip6SourceAddress", 8, &Ip6Hdr::sourceAddress),
    octets("Ip6DestinationAddress", 24, &Ip6Hdr::destinationAddress),
    number("ExtensionNextHeader", 0, &Ip6ExtensionHdr::nextHeader),
    number("ExtensionHdrExtLen", 1, &Ip6ExtensionHdr::hdrExtLen),
    number("ExtensionRoutingType", 2, &Ip6ExtensionHdr::routingType),
    number("ExtensionSegmentsLeft", 3, &Ip6ExtensionHdr::segmentsLeft),
    octets("PseudoSourceAddress", 0, &Icmp6PseudoHdr::sourceAddress),
    octets("PseudoDestinationAddress", 16, &Icmp6PseudoHdr::destinationAddress),
    number("PseudoUpperLayerPacketLength", 32, &Icmp6PseudoHdr::upperLayerPacketLength),
    octets("PseudoZero", 36, &Icmp6PseudoHdr::zero),
    number("PseudoNextHeader", 39, &Icmp6PseudoHdr::nextHeader),
    number("Icmp6Type", 0, &Icmp6Hdr::type),
    number("Icmp6Code", 1, &Icmp6Hdr::code),
    number("Icmp6Checksum", 2, &Icmp6Hdr::checksum),
    number("RaCurHopLimit", 0, &Icmp6RouterAdvertisementHdr::curHopLimit),
    number("RaFlags", 1, &Icmp6RouterAdvertisementHdr::flags),
    number("RaRouterLifetime", 2, &Icmp6RouterAdvertisementHdr::routerLifetime),
    number("RaReachableTime", 4, &Icmp6RouterAdvertisementHdr::reachableTime),
    number("RaRetransTimer", 8, &Icmp6RouterAdvertisementHdr::retransTimer),
    number("OptionType", 0, &Icmp6HdrOption::type),
    number("OptionLength", 1, &Icmp6HdrOption::length),
    number("LinkLayerAddrType", 0, &Icmp6HdrLinkLayerAddrOption::type),
    number("LinkLayerAddrLength", 1, &Icmp6HdrLinkLayerAddrOption::length),
    octets("LinkLayerAddrAddress", 2, &Icmp6HdrLinkLayerAddrOption::linkLayerAddress),
    number("PrefixInfoType", 0, &Icmp6HdrPrefixInfoOption::type),
    number("PrefixInfoLength", 1, &Icmp6HdrPrefixInfoOption::length),
    number("PrefixInfoPrefixLength", 2, &Icmp6HdrPrefixInfoOption::prefixLength),
    number("PrefixInfoFlags", 3, &Icmp6HdrPrefixInfoOption::flags),
    number("PrefixInfoValidLifetime", 4, &Icmp6HdrPrefixInfoOption::validLifetime),
    number("PrefixInfoPreferredLifetime", 8, &Icmp6HdrPrefixInfoOption::preferredLifetime),
    number("PrefixInfoReserved2", 12, &Icmp6HdrPrefixInfoOption::reserved2),
    octets("PrefixInfoPrefix", 16, &Icmp6HdrPrefixInfoOption::prefix),
    number("MtuType", 0, &Icmp6HdrMtuOption::type),
    number("MtuLength", 1, &Icmp6HdrMtuOption::length),
    number("MtuReserved", 2, &Icmp6HdrMtuOption::reserved),
    number("MtuMtu", 4, &Icmp6HdrMtuOption::mtu),
    number("RouteInfoType", 0, &Icmp6HdrRouteInfoOption::type),
    number("RouteInfoLength", 1, &Icmp6HdrRouteInfoOption::length),
    number("RouteInfoPrefixLength", 2, &Icmp6HdrRouteInfoOption::prefixLength),
    number("RouteInfoFlags", 3, &Icmp6HdrRouteInfoOption::flags),
    number("RouteInfoRouteLifetime", 4, &Icmp6HdrRouteInfoOption::routeLifetime),
    number("RdnssType", 0, &Icmp6HdrRdnssOption::type),
    number("RdnssLength", 1, &Icmp6HdrRdnssOption::length),
    number("RdnssReserved", 2, &Icmp6HdrRdnssOption::reserved),
    number("RdnssLifetime", 4, &Icmp6HdrRdnssOption::lifetime),
    number("DnsslType", 0, &Icmp6HdrDnsslOption::type),
    number("DnsslLength", 1, &Icmp6HdrDnsslOption::length),
    number("DnsslReserved", 2, &Icmp6HdrDnsslOption::reserved),
    number("DnsslLifetime", 4, &Icmp6HdrDnsslOption::lifetime),
    number("NetworkBootType", 0, &Icmp6HdrNetworkBootOption::type),
    number("NetworkBootLength", 1, &Icmp6HdrNetworkBootOption::length),
    number("NetworkBootPaddingLen", 2, &Icmp6HdrNetworkBootOption::paddingLen),
    number("NetworkBootZero", 4, &Icmp6HdrNetworkBootOption::zero),
    number("NetworkBootReserved1", 6, &Icmp6HdrNetworkBootOption::reserved1),
};

class HeaderField : public testing::TestWithParam<FieldRow> {
 protected:
  // One octet before the header, so that no field is aligned by chance.
  std::vector<U8> buffer_ = std::vector<U8>(1 + GetParam().headerSize + 1, 0x5a);
  U8* header_ = buffer_.data() + 1;
};

TEST_P(HeaderField, IsReadInNetworkOrderAtItsOffset) {
  auto const& row = GetParam();
  std::copy(row.wire.begin(), row.wire.end(), header_ + row.offset);
  EXPECT_EQ(row.read(header_), row.value);
}

TEST_P(HeaderField, IsWrittenThereAndNowhereElse) {
  auto const& row = GetParam();
  auto expected = buffer_;
  std::copy(row.wire.begin(), row.wire.end(), expected.data() + 1 + row.offset);
  row.write(header_, row.value);
  EXPECT_EQ(buffer_, expected);
}

INSTANTIATE_TEST_SUITE_P(All, HeaderField, testing::ValuesIn(rows), [](auto const& row) { return row.param.name; });

TEST(NetInt, TheFirstOctetOfAWordIsTheLowest) {
  std::array<U8, 9> const octets{0xff, 1, 2, 3, 4, 5, 6, 7, 8};
  EXPECT_EQ(wordFirstOctetLowest(octets.data() + 1), 0x0807060504030201U);
}

TEST(NetInt, SetsAndClearsBits) {
  NetU8 octet = 0x41;
  octet |= 0x80;
  EXPECT_EQ(octet, 0xc1);
  octet &= 0xfc;
  EXPECT_EQ(octet, 0xc0);
  NetU32 word = 0x12345678;
  word |= 0x80000001;
  EXPECT_EQ(word, 0x92345679U);
}

TEST(NetInt, IsZeroByDefault) {
  EXPECT_EQ(NetU16(), 0);
  EXPECT_EQ(NetU32(), 0U);
}

TEST(Ip6Hdr, VersionIsTheFirstFourBits) {
  Ip6Hdr header{};
  header.versionTrafficClassFlowLabel = 0xffffffff;
  header.versionIs(6);
  EXPECT_EQ(header.versionTrafficClassFlowLabel, 0x60000000U);
  EXPECT_EQ(header.version(), 6);
  header.versionTrafficClassFlowLabel = 0x4fffffff;
  EXPECT_EQ(header.version(), 4);
}

struct FlagsRow {
  char const* name;
  int flags;
  bool first, second;
  friend void PrintTo(FlagsRow const& r, std::ostream* os) { *os << r.name; }
};
FlagsRow const flagsRows[] = {
    {"None", 0x00, false, false},         {"First", 0x80, true, false}, {"Second", 0x40, false, true},
    {"AllTheOthers", 0x3f, false, false}, {"Both", 0xc0, true, true},   {"All", 0xff, true, true},
};
class HeaderFlags : public testing::TestWithParam<FlagsRow> {};
TEST_P(HeaderFlags, ManagedAndOtherAreTheFirstTwoBits) {
  Icmp6RouterAdvertisementHdr header{};
  header.flags = static_cast<U8>(GetParam().flags);
  EXPECT_EQ(header.managedConfigFlag(), GetParam().first);
  EXPECT_EQ(header.otherConfigFlag(), GetParam().second);
}
TEST_P(HeaderFlags, OnLinkAndAutonomousAreTheFirstTwoBits) {
  Icmp6HdrPrefixInfoOption option{};
  option.flags = static_cast<U8>(GetParam().flags);
  EXPECT_EQ(option.onLinkFlag(), GetParam().first);
  EXPECT_EQ(option.autoAddressFlag(), GetParam().second);
}
INSTANTIATE_TEST_SUITE_P(All, HeaderFlags, testing::ValuesIn(flagsRows),
                         [](auto const& row) { return row.param.name; });

TEST(HeaderPreference, IsTheFourthAndFifthBit) {
  Icmp6RouterAdvertisementHdr header{};
  Icmp6HdrRouteInfoOption option{};
  for (U8 code = 0; code < 4; ++code) {
    header.flags = option.flags = static_cast<U8>(code << 3 | 0xe7);
    EXPECT_EQ(header.routerPreference(), Icmp6RouterAdvtRouterPreferenceType{code});
    EXPECT_EQ(option.routePreference(), Icmp6RouterAdvtRouterPreferenceType{code});
  }
}

TEST(Icmp6HdrNetworkBootOption, SettersWriteTheirFields) {
  std::array<U8, 8> wire;
  wire.fill(0xee);
  auto& option = *reinterpret_cast<Icmp6HdrNetworkBootOption*>(wire.data());
  option.paddingLenIs(3);
  option.reserved1Is(0);
  EXPECT_THAT(wire, testing::ElementsAre(0xee, 0xee, 0, 3, 0xee, 0xee, 0, 0));
}

TEST(HeaderConstants, AreThoseOfTheStandards) {
  EXPECT_EQ(EtherType::ip6, 0x86dd);
  EXPECT_EQ(EtherType::customerTag, 0x8100);
  EXPECT_EQ(EtherType::serviceTag, 0x88a8);
  EXPECT_EQ(Ip6NextHeader::icmp6, 58);
  EXPECT_EQ(Icmp6Hdr::routerAdvertisement, 134);
  EXPECT_EQ(Icmp6HdrLinkLayerAddrOption::sourceTypeValue, 1);
  EXPECT_EQ(Icmp6HdrPrefixInfoOption::typeValue, 3);
  EXPECT_EQ(Icmp6HdrMtuOption::typeValue, 5);
  EXPECT_EQ(Icmp6HdrRouteInfoOption::typeValue, 24);
  EXPECT_EQ(Icmp6HdrRdnssOption::typeValue, 25);
  EXPECT_EQ(Icmp6HdrDnsslOption::typeValue, 31);
  EXPECT_EQ(Icmp6HdrNetworkBootOption::typeValue, 253);
}

}  // namespace

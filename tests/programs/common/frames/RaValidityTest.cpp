#include <RouterPlatform/Packet/Icmp6Hdr.h>
#include <programs/common/frames/RaValidity.h>
#include <tests/RouterPlatform/Nd/RaMessage.h>

#include <gtest/gtest.h>

#include <ostream>

namespace Tool {

namespace {

using Fwk::U16;
using Fwk::U8;
using RouterAdvt::mtuOption;
using RouterAdvt::Octets;
using RouterAdvt::raDest;
using RouterAdvt::raHeader;
using RouterAdvt::raSource;
using RouterAdvt::operator+;

/// A message as it arrives, valid unless something is said.
struct Arrival {
  Octets message = raHeader;
  char const* source = "fe80::1";
  U8 hopLimit = 255;
  U8 code = 0;
  U16 wrong = 0;  ///< what the checksum is off by
};

std::string invalidityOf(Arrival const& arrival) {
  Octets message = arrival.message;
  message[1] = arrival.code;
  auto const info =
      Net::Ip6PktInfo::fromIcmp6Message(message, Net::Ip6Addr(arrival.source), raDest, arrival.hopLimit).info;
  Net::Icmp6Hdr& header = *info->packet()->icmp6Hdr();
  header.checksum = 0;
  U16 const right = header
                        .computedChecksum(Net::Icmp6PseudoHdr::of(info->sourceAddr().octets(), raDest.octets(),
                                                                  static_cast<Fwk::U32>(message.size())))
                        .field();
  header.checksum = static_cast<U16>(right ^ arrival.wrong);
  return raInvalidity(info);
}

Octets headerOf(std::size_t size) { return {raHeader.begin(), raHeader.begin() + static_cast<std::ptrdiff_t>(size)}; }

struct ValidRow {
  char const* name;
  Arrival arrival;
  friend void PrintTo(ValidRow const& r, std::ostream* os) { *os << r.name; }
};
ValidRow const validRows[] = {
    {"Exactly16Octets", {}},
    {"WithOptions", {.message = raHeader + mtuOption(1400)}},
    {"OddLength", {.message = raHeader + Octets{1}}},
    {"LastLinkLocalAddress", {.source = "febf:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}},
    // The parser's to find.
    {"AnOptionOfLength0", {.message = raHeader + mtuOption(1400, 0)}},
};
class RaValidity : public testing::TestWithParam<ValidRow> {};
TEST_P(RaValidity, HoldsForAValidMessage) { EXPECT_EQ(invalidityOf(GetParam().arrival), ""); }
INSTANTIATE_TEST_SUITE_P(Rows, RaValidity, testing::ValuesIn(validRows),
                         [](auto const& row) { return row.param.name; });

struct InvalidRow {
  char const* name;
  Arrival arrival;
  char const* reason;
  friend void PrintTo(InvalidRow const& r, std::ostream* os) { *os << r.name; }
};
InvalidRow const invalidRows[] = {
    {"GlobalSource", {.source = "2001:db8::1"}, "its source is not a link-local address"},
    {"UnspecifiedSource", {.source = "::"}, "its source is not a link-local address"},
    {"SourceBehindTheLinkLocalOnes", {.source = "fec0::1"}, "its source is not a link-local address"},
    {"HopLimit254", {.hopLimit = 254}, "its hop limit is 254, not 255"},
    {"HopLimit0", {.hopLimit = 0}, "its hop limit is 0, not 255"},
    {"ChecksumOffByOneBit", {.wrong = 1}, "its checksum is wrong"},
    {"Code1", {.code = 1}, "its code is 1, not 0"},
    {"Code255", {.code = 255}, "its code is 255, not 0"},
    {"Exactly15Octets", {.message = headerOf(15)}, "it has 15 octets; 16 are the least"},
    {"Exactly4Octets", {.message = headerOf(4)}, "it has 4 octets; 16 are the least"},
    // Of several faults the first that the clause names is told.
    {"EveryFault",
     {.message = headerOf(8), .source = "::", .hopLimit = 1, .code = 7, .wrong = 1},
     "its source is not a link-local address"},
    {"EveryFaultButTheSource",
     {.message = headerOf(8), .hopLimit = 1, .code = 7, .wrong = 1},
     "its hop limit is 1, not 255"},
    {"ChecksumCodeAndLength", {.message = headerOf(8), .code = 7, .wrong = 1}, "its checksum is wrong"},
    {"CodeAndLength", {.message = headerOf(8), .code = 7}, "its code is 7, not 0"},
};
class RaInvalidity : public testing::TestWithParam<InvalidRow> {};
TEST_P(RaInvalidity, IsTold) { EXPECT_EQ(invalidityOf(GetParam().arrival), GetParam().reason); }
INSTANTIATE_TEST_SUITE_P(Rows, RaInvalidity, testing::ValuesIn(invalidRows),
                         [](auto const& row) { return row.param.name; });

}  // namespace

}  // namespace Tool

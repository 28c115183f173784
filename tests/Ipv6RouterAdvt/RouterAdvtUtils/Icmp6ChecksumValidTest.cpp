#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils.h>
#include <RouterPlatform/Packet/PktManager.h>
#include <tests/RouterPlatform/Nd/RaMessage.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace RouterAdvt {
namespace {

using testing::ElementsAre;

/// RFC 1071 octet by octet, over what RFC 4443 2.3 says.
U16 expectedChecksum(Octets message, Ip6Addr const& source, Ip6Addr const& dest, U64 upperLayerLength) {
  message[2] = message[3] = 0;
  Octets covered(source.octets().begin(), source.octets().end());
  covered = covered + Octets(dest.octets().begin(), dest.octets().end());
  for (int shift = 24; shift >= 0; shift -= 8) covered.push_back(static_cast<U8>(upperLayerLength >> shift));
  covered = covered + Octets{0, 0, 0, 58};
  covered.insert(covered.end(), message.begin(), message.begin() + static_cast<std::ptrdiff_t>(upperLayerLength));
  if (covered.size() % 2 != 0) covered.push_back(0);
  U64 sum = 0;
  for (std::size_t i = 0; i < covered.size(); i += 2) sum += static_cast<U64>(covered[i] << 8 | covered[i + 1]);
  while (sum >> 16 != 0) sum = (sum & 0xffff) + (sum >> 16);
  return static_cast<U16>(~sum);
}

Octets withChecksum(Octets message, U16 checksum) {
  message[2] = static_cast<U8>(checksum >> 8);
  message[3] = static_cast<U8>(checksum);
  return message;
}

Octets withGoodChecksum(Octets const& message) {
  return withChecksum(message, expectedChecksum(message, raSource, raDest, message.size()));
}

Octets contentOf(Ptr<Ip6PktInfo> const& info) {
  auto const octets = info->packet()->octets();
  return {octets.begin(), octets.end()};
}

TEST(Icmp6ChecksumValid, IsTrueForAGoodChecksum) {
  EXPECT_TRUE(icmp6ChecksumValid(received(withGoodChecksum(raHeader + mtuOption(1400)))));
}

TEST(Icmp6ChecksumValid, IsFalseForEveryOtherChecksumOfOneBit) {
  Octets const good = withGoodChecksum(raHeader);
  for (unsigned bit = 0; bit < 16; ++bit) {
    Octets bad = good;
    bad[2 + bit / 8] = static_cast<U8>(bad[2 + bit / 8] ^ 1U << bit % 8);
    EXPECT_FALSE(icmp6ChecksumValid(received(bad))) << bit;
  }
}

TEST(Icmp6ChecksumValid, CoversEveryOctetOfTheMessage) {
  Octets const good = withGoodChecksum(raHeader + prefixOption());
  for (std::size_t at = 0; at < good.size(); ++at) {
    Octets bad = good;
    bad[at] = static_cast<U8>(bad[at] ^ 0x10);
    EXPECT_FALSE(icmp6ChecksumValid(received(bad))) << at;
  }
}

TEST(Icmp6ChecksumValid, CoversTheAddressesOfTheDescriptor) {
  Octets const good = withGoodChecksum(raHeader);
  auto const validBetween = [&](char const* source, char const* dest) {
    return icmp6ChecksumValid(Ip6PktInfo::fromIcmp6Message(good, Ip6Addr(source), Ip6Addr(dest), 255).info);
  };
  EXPECT_TRUE(validBetween("fe80::1", "ff02::1"));
  EXPECT_FALSE(validBetween("fe80::2", "ff02::1"));
  EXPECT_FALSE(validBetween("fe80::1", "ff02::2"));
}

TEST(Icmp6ChecksumValid, PadsAnOddLastOctetWithZero) {
  Octets const message = withGoodChecksum(raHeader + Octets{0xab});
  ASSERT_EQ(message.size() % 2, 1U);
  EXPECT_TRUE(icmp6ChecksumValid(received(message)));
  EXPECT_FALSE(icmp6ChecksumValid(received(withGoodChecksum(raHeader + Octets{0xab}) + Octets{0})))
      << "the length is part of what is summed";
}

TEST(Icmp6ChecksumValid, TakesTheLengthOfTheMessageAndNotThePayloadLength) {
  Octets const message = withGoodChecksum(raHeader);
  Octets packet{0x60, 0, 0, 0, 0, static_cast<U8>(8 + message.size()), 0, 255};  // next: hop-by-hop options
  packet = packet + Octets(raSource.octets().begin(), raSource.octets().end());
  packet = packet + Octets(raDest.octets().begin(), raDest.octets().end());
  packet = packet + Octets{58, 0, 1, 4, 0, 0, 0, 0} + message;
  auto const result = Ip6PktInfo::fromIp6Packet(packet);
  ASSERT_TRUE(result);
  EXPECT_TRUE(icmp6ChecksumValid(result.info));
}

TEST(Icmp6ChecksumValid, LeavesOutWhatPadsTheFrame) {
  Octets const message = withGoodChecksum(raHeader);
  Octets packet{0x60, 0, 0, 0, 0, static_cast<U8>(message.size()), 58, 255};
  packet = packet + Octets(raSource.octets().begin(), raSource.octets().end());
  packet = packet + Octets(raDest.octets().begin(), raDest.octets().end());
  auto const result = Ip6PktInfo::fromIp6Packet(packet + message + Octets(6, 0x5a));
  ASSERT_TRUE(result);
  EXPECT_TRUE(icmp6ChecksumValid(result.info));
}

// A sum of all ones is sent as it is: unlike UDP's, this checksum has no second form of zero.
TEST(Icmp6ChecksumValid, DoesNotTakeZeroForAllOnes) {
  Octets message = raHeader + mtuOption(0);
  U16 const sum = expectedChecksum(message, raSource, raDest, message.size());
  // A word of the option makes the sum come out as all ones, whose complement is 0.
  message[22] = static_cast<U8>(sum >> 8);
  message[23] = static_cast<U8>(sum);
  ASSERT_EQ(expectedChecksum(message, raSource, raDest, message.size()), 0);
  EXPECT_TRUE(icmp6ChecksumValid(received(withChecksum(message, 0))));
  EXPECT_FALSE(icmp6ChecksumValid(received(withChecksum(message, 0xffff))));
}

TEST(Icmp6ChecksumValid, LeavesThePacketAsItCameWhateverTheResult) {
  Octets const good = withGoodChecksum(raHeader + prefixOption());
  for (Octets const& message : {good, withChecksum(good, 0xbeef)}) {
    auto const info = received(message);
    icmp6ChecksumValid(info);
    EXPECT_EQ(contentOf(info), message);
  }
}

TEST(Icmp6ChecksumValid, OfAMessageWithoutLengthCoversThePseudoHeaderAlone) {
  Octets const data = raHeader;
  auto const withoutLength = [&](U16 checksum) {
    auto pkt = Net::globalPktManager().newPkt();
    pkt->dataIs(withChecksum(data, checksum));
    return Ip6PktInfo::make(std::move(pkt), raSource, raDest, 255);
  };
  U16 const checksum = expectedChecksum(data, raSource, raDest, 0);
  auto const info = withoutLength(checksum);
  ASSERT_EQ(info->packet()->icmp6MsgLen(), 0U);
  EXPECT_TRUE(icmp6ChecksumValid(info));
  EXPECT_FALSE(icmp6ChecksumValid(withoutLength(static_cast<U16>(checksum + 1))));
  EXPECT_EQ(contentOf(info), withChecksum(data, checksum));
}

TEST(Icmp6ChecksumValid, TakesAMessageOfNothingButItsHeader) {
  EXPECT_TRUE(icmp6ChecksumValid(received(withGoodChecksum({134, 0, 0, 0}))));
}

TEST(Icmp6ChecksumValid, TakesAMessageLongerThan16BitsCount) {
  EXPECT_TRUE(icmp6ChecksumValid(received(withGoodChecksum(raHeader + times(2'500, prefixOption())))));
}

TEST(Icmp6ChecksumValid, AgreesWithWhatTheBuilderWrites) {
  auto const pkt = makeIp6RaPkt(raSource, raDest, EthAddr("02:00:00:00:00:01"), EthAddr("33:33:00:00:00:01"),
                                Fwk::create<Ip6::IntfStatus>(IntfId("Ethernet1")), intfConfigFactory("Ethernet1"), true,
                                1500, false, nullptr, "Ethernet1", false);
  auto const result = Ip6PktInfo::fromEthernetFrame(pkt->octets());
  ASSERT_TRUE(result);
  EXPECT_TRUE(icmp6ChecksumValid(result.info));
}

TEST(Icmp6ChecksumValid, TracesItsEntryAtLevel8AndNothingElse) {
  auto const info = received(withChecksum(raHeader, 0xbeef));
  Trace::Capture capture("RouterAdvtUtils");
  ASSERT_FALSE(icmp6ChecksumValid(info));
  ASSERT_EQ(capture.records().size(), 1U);
  auto const& record = capture.records()[0];
  EXPECT_EQ(record.level, 8U);
  EXPECT_EQ(record.source, "Ipv6RouterAdvt/RouterAdvtUtils");
  EXPECT_EQ(record.line, 598);
  EXPECT_EQ(record.function, "icmp6ChecksumValid");
  EXPECT_EQ(record.text, "bool RouterAdvt::icmp6ChecksumValid(const Ptr&)");
}

TEST(Icmp6ChecksumValid, AllocatesNothing) {
  auto const info = received(withGoodChecksum(raHeader + prefixOption()));
  std::size_t const before = allocationCount();
  bool const valid = icmp6ChecksumValid(info);
  EXPECT_EQ(allocationCount(), before);
  EXPECT_TRUE(valid);
}

TEST(Icmp6ChecksumValidDeathTest, WithoutAPacketIsAProgrammingError) {
  EXPECT_DEATH(icmp6ChecksumValid(Ip6PktInfo::make(nullptr, raSource, raDest, 255)), "");
}

}  // namespace
}  // namespace RouterAdvt

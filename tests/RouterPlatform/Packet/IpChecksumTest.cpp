#include <RouterPlatform/Packet/Icmp6Hdr.h>
#include <RouterPlatform/Packet/IpChecksum.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace {

using namespace Net;

/// RFC 1071 4.1 word by word, in network order.
U16 checksumByDefinition(std::vector<U8> const& octets) {
  U64 sum = 0;
  for (std::size_t i = 0; i < octets.size(); i += 2)
    sum += U64{octets[i]} << 8 | (i + 1 < octets.size() ? octets[i + 1] : 0);
  while (sum >> 16) sum = (sum >> 16) + (sum & 0xffff);
  return static_cast<U16>(~sum);
}

U16 checksumOf(void const* data, std::size_t size) {
  IpChecksumAccumulator sum;
  sum.add(data, size);
  return sum.result().field();
}

TEST(IpChecksum, OfTheExampleInRfc1071) {
  std::array<U8, 8> const octets{0x00, 0x01, 0xf2, 0x03, 0xf4, 0xf5, 0xf6, 0xf7};
  EXPECT_EQ(checksumOf(octets.data(), octets.size()), 0xffff - 0xddf2);
}

TEST(IpChecksum, OfNothingIsAllOnes) { EXPECT_EQ(checksumOf(nullptr, 0), 0xffff); }

TEST(IpChecksum, OfAllOnesIsZero) {
  for (std::size_t const size : {2U, 8U, 40U, 1500U, 65536U}) {
    std::vector<U8> const octets(size, 0xff);
    EXPECT_EQ(checksumOf(octets.data(), size), 0) << size;
  }
}

TEST(IpChecksum, AnOddOctetIsPaddedWithZero) {
  std::array<U8, 3> const octets{0x12, 0x34, 0x56};
  EXPECT_EQ(checksumOf(octets.data(), 3), 0xffff - (0x1234 + 0x5600));
}

TEST(IpChecksum, AgreesWithTheDefinitionForEverySizeAndAlignment) {
  std::mt19937 random(1);
  for (std::size_t size = 0; size <= 200; ++size)
    for (std::size_t shift = 0; shift < 8; ++shift) {
      // Exactly as large as it must be, so that a sanitizer sees one octet too many.
      auto const buffer = std::make_unique<U8[]>(shift + size);
      for (std::size_t i = 0; i < shift + size; ++i) buffer[i] = static_cast<U8>(random());
      std::vector<U8> const octets(buffer.get() + shift, buffer.get() + shift + size);
      ASSERT_EQ(checksumOf(buffer.get() + shift, size), checksumByDefinition(octets)) << size << '+' << shift;
    }
}

TEST(IpChecksum, AgreesWithTheDefinitionWhereCarriesAreMany) {
  for (U8 const fill : {U8{0xff}, U8{0xfe}, U8{0x80}})
    for (std::size_t const size : {1499U, 1500U, 65535U}) {
      std::vector<U8> const octets(size, fill);
      EXPECT_EQ(checksumOf(octets.data(), size), checksumByDefinition(octets)) << size << ' ' << int{fill};
    }
}

TEST(IpChecksum, PiecesAddUp) {
  std::vector<U8> octets(101);
  for (std::size_t i = 0; i < octets.size(); ++i) octets[i] = static_cast<U8>(i * 53);
  IpChecksumAccumulator sum;
  sum.add(octets.data(), 40);
  sum.add(octets.data() + 40, 0);
  sum.add(octets.data() + 40, 2);
  sum.add(octets.data() + 42, 59);
  EXPECT_EQ(sum.result().field(), checksumByDefinition(octets));
}

TEST(IpChecksum, AHeaderAddsItsOctets) {
  std::array<U8, 24> header;
  for (std::size_t i = 0; i < header.size(); ++i) header[i] = static_cast<U8>(i * 53);
  IpChecksumAccumulator sum;
  sum.add(header);
  EXPECT_EQ(sum.result().field(), checksumOf(header.data(), header.size()));
}

TEST(IpChecksum, EqualsTheSameFieldOnly) {
  EXPECT_EQ(IpChecksum(NetU16(0x1234)), IpChecksum(NetU16(0x1234)));
  EXPECT_FALSE(IpChecksum(NetU16(0)) == IpChecksum(NetU16(0xffff)));
}

/// A Router Solicitation from fe80::1 to ff02::2 with its source address; summed by hand.
struct Solicitation {
  Ip6Hdr ip6{};
  std::array<U8, 16> message{133, 0, 0, 0, 0, 0, 0, 0, 1, 1, 2, 0, 0, 0, 0, 1};

  Solicitation() {
    ip6.payloadLength = 16;
    ip6.sourceAddress = {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    ip6.destinationAddress = {0xff, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2};
  }
  Icmp6Hdr& icmp6() { return *reinterpret_cast<Icmp6Hdr*>(message.data()); }
  // fe80 + 1 + ff02 + 2 + length 10 + next header 3a + 8500 + 0101 + 0200 + 1 = 2 85d1, folded 85d3
  static constexpr U16 checksum = 0xffff - 0x85d3;
};

TEST(Icmp6Hdr, ComputesTheChecksumOverPseudoHeaderAndMessage) {
  Solicitation packet;
  auto const pseudo = Icmp6PseudoHdr::of(packet.ip6.sourceAddress, packet.ip6.destinationAddress, 16);
  EXPECT_EQ(packet.icmp6().computedChecksum(pseudo).field(), Solicitation::checksum);
}

TEST(Icmp6Hdr, SumsAsManyOctetsAsThePseudoHeaderSays) {
  Solicitation packet;
  Icmp6PseudoHdr pseudo{};
  EXPECT_EQ(packet.icmp6().computedChecksum(pseudo).field(), 0xffff);
  pseudo.upperLayerPacketLength = 1;
  EXPECT_EQ(packet.icmp6().computedChecksum(pseudo).field(), 0xffff - 0x8501);
  pseudo.upperLayerPacketLength = 11;
  EXPECT_EQ(packet.icmp6().computedChecksum(pseudo).field(), 0xffff - (11 + 0x8500 + 0x0101 + 0x0200));
}

TEST(Icmp6Hdr, TheChecksumIsFilledInWhateverStoodThere) {
  Solicitation packet;
  packet.icmp6().checksum = 0xdead;
  setIcmp6CheckSum(packet.ip6, packet.icmp6());
  EXPECT_EQ(packet.icmp6().checksum, Solicitation::checksum);
}

}  // namespace

#include <RouterPlatform/Packet/Ip6PktInfo.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Net;
using Reason = Ip6PktInfo::Reason;
using Octets = std::vector<U8>;

Octets operator+(Octets a, Octets const& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Octets const macs{0x33, 0x33, 0, 0, 0, 1, 2, 0, 0, 0, 0, 1};
Octets const ethernet = macs + Octets{0x86, 0xdd};
Octets const addresses{0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1,   // fe80::1
                       0xff, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};  // ff02::1
Octets const advertisement{134, 0, 0x12, 0x34, 64, 0, 7, 8, 0, 0, 0, 0, 0, 0, 0, 0};

/// An IPv6 header with hop limit 255.
Octets ip6(std::size_t payloadLength, U8 nextHeader) {
  return Octets{0x60, 0, 0, 0, static_cast<U8>(payloadLength >> 8), static_cast<U8>(payloadLength), nextHeader, 255} +
         addresses;
}

/// An extension header of `units` times 8 octets.
Octets extension(U8 nextHeader, std::size_t units = 1) {
  Octets octets(8 * units, 0);
  octets[0] = nextHeader;
  octets[1] = static_cast<U8>(units - 1);
  return octets;
}

/// Octets in an allocation of exactly their size: a sanitizer sees one read too many.
class Exactly {
 public:
  explicit Exactly(Octets const& octets) : data_(std::make_unique<U8[]>(octets.size())), size_(octets.size()) {
    std::copy(octets.begin(), octets.end(), data_.get());
  }
  operator std::span<U8 const>() const { return {data_.get(), size_}; }

 private:
  std::unique_ptr<U8[]> data_;
  std::size_t size_;
};

struct Row {
  char const* name;
  Octets packet;  // from the IPv6 header on
  Reason reason;
  std::size_t icmp6Offset = 40;  // when there is a descriptor
  std::size_t icmp6Length = 16;
  friend void PrintTo(Row const& r, std::ostream* os) { *os << r.name; }
};

Octets const ra = advertisement;
Octets atEnd(Octets const& extensions, U8 first) { return ip6(extensions.size() + ra.size(), first) + extensions + ra; }

Row const rows[] = {
    {"Plain", ip6(16, 58) + ra, Reason::none},
    {"PaddingBehindThePacket", ip6(16, 58) + ra + Octets(6, 0xee), Reason::none},
    {"MessageOfFourOctets", ip6(4, 58) + Octets{134, 0, 1, 2}, Reason::none, 40, 4},
    {"HopByHop", atEnd(extension(58), 0), Reason::none, 48},
    {"Destination", atEnd(extension(58, 3), 60), Reason::none, 64},
    {"RoutingThatHasArrived", atEnd(extension(58, 3), 43), Reason::none, 64},
    {"ThreeExtensions", atEnd(extension(43) + extension(60, 2) + extension(58), 0), Reason::none, 72},
    {"LongestExtension", atEnd(extension(58, 256), 60), Reason::none, 40 + 2048},

    {"Nothing", {}, Reason::truncated},
    {"OneOctet", {0x60}, Reason::truncated},
    {"HeaderCutShort", Octets(39, 0x60), Reason::truncated},
    {"HeaderAlone", ip6(16, 58), Reason::truncated},
    {"PayloadLengthOneMoreThanThereIs", ip6(17, 58) + ra, Reason::truncated},
    {"PayloadLengthGreatest", ip6(65535, 58) + ra, Reason::truncated},
    {"CutBehindAnExtension", ip6(24, 0) + extension(58), Reason::truncated},

    {"Version4", Octets(60, 0x45), Reason::notIp6},
    {"Version7", Octets(60, 0x7f), Reason::notIp6},
    {"OneOctetOfVersion4", {0x45}, Reason::notIp6},

    {"PayloadLengthZero", ip6(0, 58) + ra, Reason::emptyPayload},
    {"Jumbogram", ip6(0, 0) + extension(58) + ra, Reason::emptyPayload},

    {"Fragment", atEnd(extension(58), 44), Reason::fragment},
    {"FragmentBehindHopByHop", atEnd(extension(44) + extension(58), 0), Reason::fragment},
    {"FragmentCutShort", ip6(1, 44) + Octets{58}, Reason::fragment},

    {"ExtensionOfOneOctet", ip6(1, 0) + Octets{58}, Reason::badExtension},
    {"ExtensionOfSevenOctets", ip6(7, 0) + Octets{58, 0, 0, 0, 0, 0, 0}, Reason::badExtension},
    {"ExtensionPassesTheEnd", ip6(24, 60) + Octets{58, 3, 0, 0, 0, 0, 0, 0} + ra, Reason::badExtension},
    {"ExtensionPassesTheEndIntoPadding", ip6(16, 60) + Octets{58, 2} + Octets(14, 0) + ra, Reason::badExtension},
    {"NothingBehindAnExtension", ip6(8, 0) + extension(60), Reason::badExtension},

    {"RoutingUnderWay", ip6(24, 43) + Octets{58, 0, 0, 1, 0, 0, 0, 0} + ra, Reason::segmentsLeft},

    {"Tcp", ip6(20, 6) + Octets(20, 0), Reason::notIcmp6},
    {"UdpBehindHopByHop", atEnd(extension(17), 0), Reason::notIcmp6},
    {"NoNextHeader", ip6(16, 59) + ra, Reason::notIcmp6},
    {"Icmp4", ip6(16, 1) + ra, Reason::notIcmp6},
    {"Authentication", atEnd(extension(58), 51), Reason::notIcmp6},

    {"MessageOfThreeOctets", ip6(3, 58) + Octets{134, 0, 1}, Reason::messageTooShort},
    {"MessageOfThreeOctetsAndPadding", ip6(3, 58) + ra, Reason::messageTooShort},
    {"NoMessageBehindAnExtension", ip6(8, 0) + extension(58), Reason::messageTooShort},
};

class Ip6PktInfoRows : public testing::TestWithParam<Row> {
 protected:
  /// Judges what came from `octets`, in which the IPv6 packet begins at `ip6Offset`.
  static void check(Ip6PktInfo::Result const& result, Octets const& octets, std::size_t ip6Offset) {
    Row const& row = GetParam();
    EXPECT_EQ(result.reason, row.reason) << reasonText(result.reason);
    ASSERT_EQ(static_cast<bool>(result), row.reason == Reason::none);
    if (!result) return;
    Ip6PktInfo const& info = *result.info;
    EXPECT_EQ(info.sourceAddr(), Ip6Addr("fe80::1"));
    EXPECT_EQ(info.destAddr(), Ip6Addr("ff02::1"));
    EXPECT_EQ(info.hopLimit(), 255);
    Pkt& pkt = *info.packet();
    std::size_t const messageOffset = ip6Offset + row.icmp6Offset;
    EXPECT_EQ(pkt.ip6Hdr(), static_cast<void*>(pkt.data() + ip6Offset));
    EXPECT_EQ(pkt.icmp6Hdr(), static_cast<void*>(pkt.data() + messageOffset));
    EXPECT_EQ(pkt.icmp6MsgLen(), row.icmp6Length);
    EXPECT_EQ(pkt.icmp6Hdr()->type, 134);
    EXPECT_THAT(pkt.octets(), testing::ElementsAreArray(octets.data(), messageOffset + row.icmp6Length));
  }
};

TEST_P(Ip6PktInfoRows, FromAnIp6Packet) {
  check(Ip6PktInfo::fromIp6Packet(Exactly(GetParam().packet)), GetParam().packet, 0);
}
TEST_P(Ip6PktInfoRows, FromAnEthernetFrame) {
  Octets const frame = ethernet + GetParam().packet;
  check(Ip6PktInfo::fromEthernetFrame(Exactly(frame)), frame, 14);
}
TEST_P(Ip6PktInfoRows, FromATaggedFrame) {
  Octets const frame = macs + Octets{0x81, 0x00, 0x20, 0x05, 0x86, 0xdd} + GetParam().packet;
  check(Ip6PktInfo::fromEthernetFrame(Exactly(frame)), frame, 18);
}
TEST_P(Ip6PktInfoRows, FromADoublyTaggedFrame) {
  Octets const frame = macs + Octets{0x88, 0xa8, 0x00, 0x07, 0x81, 0x00, 0x20, 0x05, 0x86, 0xdd} + GetParam().packet;
  check(Ip6PktInfo::fromEthernetFrame(Exactly(frame)), frame, 22);
}
INSTANTIATE_TEST_SUITE_P(All, Ip6PktInfoRows, testing::ValuesIn(rows), [](auto const& row) { return row.param.name; });

TEST(Ip6PktInfo, EveryTruncationOfAFrameIsTruncated) {
  Octets const frame = macs + Octets{0x81, 0x00, 0x20, 0x05, 0x86, 0xdd} + atEnd(extension(58), 0);
  for (std::size_t size = 0; size < frame.size(); ++size) {
    auto const result =
        Ip6PktInfo::fromEthernetFrame(Exactly({frame.begin(), frame.begin() + static_cast<long>(size)}));
    EXPECT_EQ(result.reason, Reason::truncated) << size;
    EXPECT_FALSE(result);
  }
}

TEST(Ip6PktInfo, ForeignFramesAreNotIp6) {
  for (Octets const& etherType :
       {Octets{0x08, 0x00}, Octets{0x08, 0x06}, Octets{0x00, 0x26}, Octets{0x88, 0xcc}, Octets{0x81, 0, 0, 1, 8, 0}}) {
    auto const result = Ip6PktInfo::fromEthernetFrame(Exactly(macs + etherType + ip6(16, 58) + ra));
    EXPECT_EQ(result.reason, Reason::notIp6);
  }
}

TEST(Ip6PktInfo, AFrameOfTagsAloneIsTruncated) {
  Octets frame = macs;
  for (int i = 0; i < 400; ++i) frame = frame + Octets{0x81, 0x00, 0x00, 0x01};
  EXPECT_EQ(Ip6PktInfo::fromEthernetFrame(Exactly(frame)).reason, Reason::truncated);
}

TEST(Ip6PktInfo, PaddingOfAShortFrameIsNotOfTheMessage) {
  // 14 + 40 + 4 octets are padded to 60.
  Octets const frame = ethernet + ip6(4, 58) + Octets{134, 0, 1, 2} + Octets(2, 0xee);
  auto const result = Ip6PktInfo::fromEthernetFrame(Exactly(frame));
  ASSERT_TRUE(result);
  EXPECT_EQ(result.info->packet()->icmp6MsgLen(), 4U);
  EXPECT_EQ(result.info->packet()->size(), 58U);
}

TEST(Ip6PktInfo, FromAMessageWithItsAddresses) {
  auto const result = Ip6PktInfo::fromIcmp6Message(Exactly(advertisement), Ip6Addr("fe80::7"), Ip6Addr("ff02::1"), 254);
  ASSERT_TRUE(result);
  EXPECT_EQ(result.reason, Reason::none);
  EXPECT_EQ(result.info->sourceAddr(), Ip6Addr("fe80::7"));
  EXPECT_EQ(result.info->destAddr(), Ip6Addr("ff02::1"));
  EXPECT_EQ(result.info->hopLimit(), 254);
  Pkt& pkt = *result.info->packet();
  EXPECT_THAT(pkt.octets(), testing::ElementsAreArray(advertisement));
  EXPECT_EQ(pkt.icmp6MsgLen(), 16U);
  EXPECT_EQ(pkt.ip6Hdr(), nullptr);
}

TEST(Ip6PktInfo, AMessageHasAHeaderAtLeast) {
  for (std::size_t size = 0; size < 4; ++size)
    EXPECT_EQ(Ip6PktInfo::fromIcmp6Message(Exactly(Octets(size, 134)), {}, {}, 255).reason, Reason::messageTooShort);
  EXPECT_TRUE(Ip6PktInfo::fromIcmp6Message(Exactly(Octets(4, 134)), {}, {}, 255));
}

TEST(Ip6PktInfo, AMessageOf64KibIsTakenAndOneBeyondAllBoundsIsNot) {
  Octets const large(16 + 65536, 134);
  auto const result = Ip6PktInfo::fromIcmp6Message(large, {}, {}, 255);
  ASSERT_TRUE(result);
  EXPECT_EQ(result.info->packet()->icmp6MsgLen(), large.size());
  EXPECT_EQ(Ip6PktInfo::fromIcmp6Message(Octets(Pkt::maxSize + 1), {}, {}, 255).reason, Reason::messageTooLong);
}

TEST(Ip6PktInfo, GivesAReasonWhenThereIsNoPacket) {
  PktManager manager;
  manager.pktLimitIs(1);
  auto const first = Ip6PktInfo::fromIp6Packet(Exactly(ip6(16, 58) + ra), manager);
  ASSERT_TRUE(first);
  EXPECT_EQ(Ip6PktInfo::fromIp6Packet(Exactly(ip6(16, 58) + ra), manager).reason, Reason::noPacket);
  EXPECT_EQ(Ip6PktInfo::fromIcmp6Message(Exactly(ra), {}, {}, 255, manager).reason, Reason::noPacket);
}

TEST(Ip6PktInfo, HoldsItsPacketAndGivesItBack) {
  PktManager manager;
  auto result = Ip6PktInfo::fromIp6Packet(Exactly(ip6(16, 58) + ra), manager);
  auto const other = result.info;
  EXPECT_EQ(manager.pktCount(), 1U);
  result.info = nullptr;
  EXPECT_EQ(manager.pktCount(), 1U);
  auto const packet = other->packet();
  EXPECT_EQ(packet->references(), 2U);
}

TEST(Ip6PktInfo, IsMadeOfAPacketThatIsThereAlready) {
  auto const pkt = globalPktManager().newPkt();
  auto const info = Ip6PktInfo::make(pkt, Ip6Addr("fe80::1"), Ip6Addr("ff02::2"), 3);
  EXPECT_EQ(info->packet(), pkt);
  EXPECT_EQ(info->packet()->icmp6MsgLen(), 0U);
  EXPECT_EQ(info->destAddr(), Ip6Addr("ff02::2"));
  EXPECT_EQ(info->hopLimit(), 3);
}

TEST(Ip6PktInfo, AllocatesNothingInSteadyState) {
  Exactly const frame(ethernet + ip6(1400, 58) + Octets(1400, 134));
  Exactly const message(advertisement);
  auto const round = [&] {
    auto const one = Ip6PktInfo::fromEthernetFrame(frame);
    auto const other = Ip6PktInfo::fromIcmp6Message(message, {}, {}, 255);
    return one && other;
  };
  ASSERT_TRUE(round());
  auto const before = allocationCount();
  for (int i = 0; i < 100; ++i) ASSERT_TRUE(round());
  EXPECT_EQ(allocationCount(), before);
}

TEST(Ip6PktInfo, ThreadsMayMakeAndReleaseDescriptorsInTheThreadSafeMode) {
  Fwk::threadSafePtrModeIs(true);
  Octets const packet = ip6(16, 58) + ra;
  auto const shared = Ip6PktInfo::fromIp6Packet(packet).info;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&packet, shared] {
      for (int i = 0; i < 1000; ++i) {
        auto const copy = shared;
        ASSERT_TRUE(Ip6PktInfo::fromIp6Packet(packet));
      }
    });
  for (auto& thread : threads) thread.join();
  Fwk::threadSafePtrModeIs(false);
  EXPECT_EQ(shared->references(), 1U);
}

TEST(Ip6PktInfo, AFrameOfMoreOctetsThanAPacketHoldsIsRefused) {
  Octets frame = macs;
  frame.reserve(Pkt::maxSize + 100);
  while (frame.size() < Pkt::maxSize - 40) frame.insert(frame.end(), {0x81, 0, 0, 1});
  frame.insert(frame.end(), {0x86, 0xdd});
  Octets const packet = ip6(16, 58) + advertisement;
  frame.insert(frame.end(), packet.begin(), packet.end());
  EXPECT_EQ(Ip6PktInfo::fromEthernetFrame(frame).reason, Reason::messageTooLong);
}

TEST(Ip6PktInfo, EveryReasonHasItsWords) {
  std::vector<std::string> texts;
  for (int reason = 0; reason <= static_cast<int>(Reason::noPacket); ++reason)
    texts.emplace_back(reasonText(static_cast<Reason>(reason)));
  EXPECT_THAT(texts, testing::Not(testing::Contains("unknown")));
  std::string out;
  appendText(out, Reason::notIcmp6);
  EXPECT_EQ(out, "not ICMPv6");
}

}  // namespace

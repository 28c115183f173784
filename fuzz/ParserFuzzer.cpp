// Whatever arrives as a message, the parser ends, reads no option outside the message (what stands behind it changes
// only header fields that the message lacks), leaves the packet as it was, and gives the record that a reading octet by
// octet gives: the same one each time, and the empty one exactly when that reading comes to an option of length 0. The
// checksum is right or wrong as summing octet by octet says.

#include <Ipv6RouterAdvt/Heard/RaPacket.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils.h>
#include <RouterPlatform/Packet/PktManager.h>
#include <fuzz/Fuzzer.h>

#include <array>
#include <cstring>
#include <span>
#include <vector>

namespace {

using namespace RouterAdvt;
using Octets = std::vector<U8>;

IntfId const intfId("Ethernet1");
Ip6Addr const source("fe80::1");
Ip6Addr const dest("ff02::1");

/// Octets that may not be there; those are 0.
class Message {
 public:
  explicit Message(Octets const& octets) : octets_(octets) {}
  std::size_t size() const { return octets_.size(); }
  U8 octet(std::size_t at) const { return at < octets_.size() ? octets_[at] : U8{0}; }
  U32 number(std::size_t at, std::size_t count) const {
    U32 result = 0;
    for (std::size_t i = 0; i < count; ++i) result = result << 8 | octet(at + i);
    return result;
  }

 private:
  Octets const& octets_;
};

void takePrefix(Message const& message, std::size_t at, RaPacket& packet) {
  std::array<U8, 16> octets;
  for (std::size_t i = 0; i < octets.size(); ++i) octets[i] = message.octet(at + 16 + i);
  Ip6AddrWithMask const prefix(Ip6Addr::fromBytes(octets), message.octet(at + 2));
  if (!(packet.prefixInfo(prefix) == RaPacketPrefixInfo())) return;
  RaPacketPrefixInfo info(prefix);
  info.onLinkFlagIs((message.octet(at + 3) & 0x80) != 0);
  info.autoConfigFlagIs((message.octet(at + 3) & 0x40) != 0);
  info.validLifetimeIs(message.number(at + 4, 4));
  info.preferredLifetimeIs(message.number(at + 8, 4));
  packet.prefixInfoIs(prefix, info);
}

/// The record by the plainest reading there is. A walk that comes where it has been goes round until as many options
/// are taken as there are places for one.
///
/// `header` is the message with what stands behind it in the packet.
RaPacket expectedRecord(Message const& header, Message const& message) {
  RaPacket packet(intfId);
  packet.srcIp6AddrIs(source);
  packet.curHopLimitIs(header.octet(4));
  packet.managedConfigFlagIs((header.octet(5) & 0x80) != 0);
  packet.otherConfigFlagIs((header.octet(5) & 0x40) != 0);
  packet.routerLifeTimeIs(static_cast<U16>(header.number(6, 2)));
  packet.reachableTimeIs(header.number(8, 4));
  packet.retransTimerIs(header.number(12, 4));
  std::size_t at = 16;
  for (int options = 0; options < 8192 && at + 2 <= message.size(); ++options) {
    U8 const type = message.octet(at);
    U8 const length = message.octet(at + 1);
    if (length == 0) return RaPacket();
    // One whose fields are not all there gives nothing.
    if (type == 5 && at + 8 <= message.size()) {
      packet.mtuSpecifiedIs(true);
      packet.mtuIs(message.number(at + 4, 4));
    } else if (type == 3 && at + 32 <= message.size()) {
      takePrefix(message, at, packet);
    }
    at = (at + std::size_t{8} * length) % 65536;
  }
  return packet;
}

bool expectedChecksumValid(Octets message) {
  Octets covered;
  for (U8 const octet : source.octets()) covered.push_back(octet);
  for (U8 const octet : dest.octets()) covered.push_back(octet);
  for (int shift = 24; shift >= 0; shift -= 8) covered.push_back(static_cast<U8>(message.size() >> shift));
  for (U8 const octet : Octets{0, 0, 0, 58}) covered.push_back(octet);
  auto const received = static_cast<U16>(message[2] << 8 | message[3]);
  message[2] = message[3] = 0;
  covered.insert(covered.end(), message.begin(), message.end());
  if (covered.size() % 2 != 0) covered.push_back(0);
  U64 sum = 0;
  for (std::size_t i = 0; i < covered.size(); i += 2) sum += static_cast<U64>(covered[i] << 8 | covered[i + 1]);
  while (sum >> 16 != 0) sum = (sum & 0xffff) + (sum >> 16);
  return static_cast<U16>(~sum) == received;
}

/// A packet with other octets behind the message, which has `size` octets.
Ptr<Ip6PktInfo> packetWithTail(Octets const& data, std::size_t size) {
  auto pkt = Net::globalPktManager().newPkt();
  pkt->dataIs(data);
  pkt->icmp6MsgIs(0, size);
  return Ip6PktInfo::make(std::move(pkt), source, dest, 255);
}

void check(Octets const& message) {
  bool const checksumValid = expectedChecksumValid(message);
  for (U8 const tail : Octets{0, 3, 0xff}) {
    Octets data = message;
    data.insert(data.end(), 64, tail);
    auto const info = packetWithTail(data, message.size());
    FUZZ_CHECK(icmp6ChecksumValid(info) == checksumValid);
    RaPacket const packet = makeRaPacketType(intfId, info);
    FUZZ_CHECK(packet == expectedRecord(Message(data), Message(message)));
    FUZZ_CHECK(!packet == packet.intfId().empty());
    FUZZ_CHECK(std::memcmp(info->packet()->data(), message.data(), message.size()) == 0);
  }
  // In an allocation that ends with the message, give or take the packet's own room.
  auto const received = Ip6PktInfo::fromIcmp6Message(message, source, dest, 255);
  FUZZ_CHECK(static_cast<bool>(received));
  FUZZ_CHECK(makeRaPacketType(intfId, received.info) == expectedRecord(Message(message), Message(message)));
}

/// The message with its options again and again, until the 16-bit offset has wrapped.
Octets repeated(Octets const& message) {
  Octets result = message;
  while (result.size() < 70'000) result.insert(result.end(), message.begin() + 16, message.end());
  return result;
}

}  // namespace

std::size_t const fuzzGeneratedInputs = 10'000;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size < sizeof(Net::Icmp6Hdr)) return 0;
  Octets const message(data, data + size);
  check(message);
  // Long messages take long, a thousand times as long as others: now and then will do.
  if (size > 24 && size < 4096 && data[4] == 63 && data[5] % 16 == 0) check(repeated(message));
  return 0;
}

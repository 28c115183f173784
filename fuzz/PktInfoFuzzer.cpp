// Whatever arrives as a frame, as an IPv6 packet or as a bare ICMPv6 message, nothing outside its octets is read, and
// it gives either a reason or a descriptor whose packet is the leading octets of what arrived and whose message lies at
// the end of those, no longer than the IPv6 payload length says; the same octets give the same again.

#include <RouterPlatform/Packet/Ip6PktInfo.h>
#include <fuzz/Fuzzer.h>

#include <cstring>
#include <span>

namespace {

using namespace Net;
using Octets = std::span<U8 const>;

void checkPacket(Octets octets, Pkt& pkt) {
  FUZZ_CHECK(pkt.size() <= octets.size());
  FUZZ_CHECK(std::memcmp(pkt.data(), octets.data(), pkt.size()) == 0);
  auto const* const message = reinterpret_cast<U8 const*>(pkt.icmp6Hdr());
  FUZZ_CHECK(message >= pkt.data());
  FUZZ_CHECK(pkt.icmp6MsgLen() >= sizeof(Icmp6Hdr));
  FUZZ_CHECK(message + pkt.icmp6MsgLen() == pkt.data() + pkt.size());
}

void checkIp6(Ip6PktInfo const& info) {
  Pkt& pkt = *info.packet();
  Ip6Hdr const* const header = pkt.ip6Hdr();
  FUZZ_CHECK(header != nullptr);
  FUZZ_CHECK(header->version() == Ip6Hdr::version6);
  FUZZ_CHECK(pkt.icmp6MsgLen() <= header->payloadLength);
  FUZZ_CHECK(reinterpret_cast<U8 const*>(header + 1) + header->payloadLength == pkt.data() + pkt.size());
  FUZZ_CHECK(info.sourceAddr() == Ip6Addr::fromBytes(header->sourceAddress));
  FUZZ_CHECK(info.destAddr() == Ip6Addr::fromBytes(header->destinationAddress));
  FUZZ_CHECK(info.hopLimit() == header->hopLimit);
}

template <class Make>
void checkTwice(Octets octets, bool hasIp6, Make const& make) {
  Ip6PktInfo::Result const result = make(octets);
  Ip6PktInfo::Result const again = make(octets);
  FUZZ_CHECK(result.reason == again.reason);
  FUZZ_CHECK(static_cast<bool>(result) == (result.reason == Ip6PktInfo::Reason::none));
  FUZZ_CHECK(static_cast<bool>(result) == static_cast<bool>(again));
  if (!result) return;
  checkPacket(octets, *result.info->packet());
  if (hasIp6) checkIp6(*result.info);
  FUZZ_CHECK(result.info->packet()->icmp6MsgLen() == again.info->packet()->icmp6MsgLen());
}

}  // namespace

std::size_t const fuzzGeneratedInputs = 20'000;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Octets const octets(data, size);
  checkTwice(octets, true, [](Octets frame) { return Ip6PktInfo::fromEthernetFrame(frame); });
  checkTwice(octets, true, [](Octets packet) { return Ip6PktInfo::fromIp6Packet(packet); });
  checkTwice(octets, false, [](Octets message) { return Ip6PktInfo::fromIcmp6Message(message, {}, {}, 255); });
  return 0;
}

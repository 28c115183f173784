// What is done with a received advertisement: checking its checksum and reading it into a record, each beside libtins
// and beside the least that the machine needs for it.
//
// The message is a typical one: source address, MTU, 2 prefixes, RDNSS with 2 servers, DNSSL with 2 names.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <vector>

#ifdef HAVE_LIBTINS
#include <tins/icmpv6.h>
#include <tins/utils/checksum_utils.h>
#endif

namespace {

using namespace RouterAdvt;

IntfId const intfId("Ethernet1");
Ip6Addr const source("fe80::1");
Ip6Addr const dest("ff02::1");

std::vector<U8> typicalFrame() {
  auto const config = intfConfigFactory(intfId);
  config->prefixesIs(Ip6AddrWithMask("2001:db8:1::/64"));
  config->prefixesIs(Ip6AddrWithMask("2001:db8:2::/64"));
  config->dnsServersIs(Ip6Addr("2001:db8::53"));
  config->dnsServersIs(Ip6Addr("2001:db8::54"));
  config->dnsSuffixesIs("example.com");
  config->dnsSuffixesIs("corp.example.net");
  auto const pkt =
      makeIp6RaPkt(source, dest, EthAddr("02:00:00:00:00:01"), EthAddr("33:33:00:00:00:01"),
                   Fwk::create<Ip6::IntfStatus>(intfId), config, true, 1500, false, nullptr, intfId, false);
  return {pkt->octets().begin(), pkt->octets().end()};
}

Ptr<Ip6PktInfo> typicalPktInfo() { return Ip6PktInfo::fromEthernetFrame(typicalFrame()).info; }

std::vector<U8> typicalMessage() {
  auto const info = typicalPktInfo();
  auto const* const begin = reinterpret_cast<U8 const*>(info->packet()->icmp6Hdr());
  return {begin, begin + info->packet()->icmp6MsgLen()};
}

/// The least: the fixed parts of header, MTU and the two prefixes copied from where they are known to be.
void Parse_Floor(benchmark::State& state) {
  auto const message = typicalMessage();
  std::array<U8, 16 + 8 + 2 * 32> record;
  U8 const* data = message.data();
  for (auto _ : state) {
    benchmark::DoNotOptimize(data);
    std::memcpy(record.data(), data, 16);
    std::memcpy(record.data() + 16, data + 24, 8);
    std::memcpy(record.data() + 24, data + 32, 64);
    benchmark::DoNotOptimize(record);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Parse_Floor);

void Parse_Message(benchmark::State& state) {
  auto const info = typicalPktInfo();
  for (auto _ : state) {
    RaPacket const packet = makeRaPacketType(intfId, info);
    benchmark::DoNotOptimize(&packet);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Parse_Message);

/// As an agent does it: descriptor, checksum and record, from the frame on.
void Parse_FrameToRecord(benchmark::State& state) {
  auto const frame = typicalFrame();
  for (auto _ : state) {
    auto const info = Ip6PktInfo::fromEthernetFrame(frame).info;
    bool const valid = icmp6ChecksumValid(info);
    RaPacket const packet = makeRaPacketType(intfId, info);
    benchmark::DoNotOptimize(valid);
    benchmark::DoNotOptimize(&packet);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Parse_FrameToRecord);

/// By the number of prefixes, all different. Where the table leaves the heap for pages of its own, those cost too.
void Parse_DifferentPrefixes(benchmark::State& state) {
  std::vector<U8> message(16);
  for (int i = 0; i < state.range(0); ++i) {
    std::array<U8, 32> option{3, 4, 64, 0xc0};
    option[16] = 0x20;
    option[22] = static_cast<U8>(i >> 8);
    option[23] = static_cast<U8>(i);
    message.insert(message.end(), option.begin(), option.end());
  }
  auto const info = Ip6PktInfo::fromIcmp6Message(message, source, dest, 255).info;
  for (auto _ : state) benchmark::DoNotOptimize(makeRaPacketType(intfId, info).prefixInfo().size());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Parse_DifferentPrefixes)->RangeMultiplier(8)->Range(4, 2048);

void Parse_ChecksumOfMessage(benchmark::State& state) {
  auto const info = typicalPktInfo();
  for (auto _ : state) {
    benchmark::DoNotOptimize(icmp6ChecksumValid(info));
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Parse_ChecksumOfMessage);

#ifdef HAVE_LIBTINS

/// The same values out of the message as our record has.
void Parse_PeerMessage(benchmark::State& state) {
  struct Record {
    U8 hops;
    bool managed, other;
    U16 lifetime;
    U32 reachable, retrans, mtu;
    std::vector<Tins::ICMPv6::prefix_info_type> prefixes;
  };
  auto const message = typicalMessage();
  for (auto _ : state) {
    Tins::ICMPv6 const pdu(message.data(), static_cast<U32>(message.size()));
    Record record{pdu.hop_limit(),
                  pdu.managed() != 0,
                  pdu.other() != 0,
                  pdu.router_lifetime(),
                  pdu.reachable_time(),
                  pdu.retransmit_timer(),
                  0,
                  {}};
    for (auto const& option : pdu.options()) {
      if (option.option() == Tins::ICMPv6::MTU)
        record.mtu = option.to<Tins::ICMPv6::mtu_type>().second;
      else if (option.option() == Tins::ICMPv6::PREFIX_INFO)
        record.prefixes.push_back(option.to<Tins::ICMPv6::prefix_info_type>());
    }
    if (record.prefixes.size() != 2 || record.mtu != 1500) state.SkipWithError("the peer reads something else");
    benchmark::DoNotOptimize(&record);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Parse_PeerMessage);

void Parse_PeerChecksumOfMessage(benchmark::State& state) {
  auto const message = typicalMessage();
  Tins::IPv6Address const from(source.octets().data());
  Tins::IPv6Address const to(dest.octets().data());
  auto const size = static_cast<U16>(message.size());
  for (auto _ : state) {
    U32 sum = Tins::Utils::pseudoheader_checksum(from, to, size, 58) +
              Tins::Utils::sum_range(message.data(), message.data() + size);
    while (sum >> 16 != 0) sum = (sum & 0xffff) + (sum >> 16);
    benchmark::DoNotOptimize(sum == 0xffff);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Parse_PeerChecksumOfMessage);

#endif

}  // namespace

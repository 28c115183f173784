// One advertisement from the model, beside the peer and a copy of the finished frame.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#ifdef HAVE_LIBTINS
#include <tins/ethernetII.h>
#include <tins/icmpv6.h>
#include <tins/ipv6.h>
#endif

namespace {

using namespace RouterAdvt;

constexpr S32 mtu = 1500;

AdvertRequest requestFor(Ptr<IntfConfig const> const& config) {
  AdvertRequest request;
  request.srcAddr = Ip6Addr("fe80::1");
  request.srcMac = EthAddr("02:00:00:00:00:01");
  request.intfStatus = Ip6::IntfStatus::IntfStatusIs("Ethernet1");
  request.intfConfig = config;
  request.mtu = mtu;
  return request;
}

std::vector<U8> frameOf(Ptr<IntfConfig const> const& config) {
  Ptr<Pkt> const built = build(requestFor(config));
  return {built->octets().begin(), built->octets().end()};
}

Ptr<IntfConfig> least() { return IntfConfig::IntfConfigIs("Ethernet1"); }

/// Source address, MTU, two prefixes, RDNSS with two servers, DNSSL with two names.
Ptr<IntfConfig> typical() {
  Ptr<IntfConfig> const config = least();
  config->prefixesIs(Ip6AddrWithMask("2001:db8:1::/64"));
  config->prefixesIs(Ip6AddrWithMask("2001:db8:2::/64"));
  config->dnsServersIs(Ip6Addr("2001:db8::53"));
  config->dnsServersIs(Ip6Addr("2001:db8::1:53"));
  config->dnsSuffixesIs("example.com");
  config->dnsSuffixesIs("example.net");
  return config;
}

/// Eight prefixes, eight servers and eight names of four lifetimes each, and a network boot option.
Ptr<IntfConfig> large() {
  Ptr<IntfConfig> const config = least();
  for (U32 i = 0; i < 8; ++i) {
    std::string const number = std::to_string(i);
    config->prefixesIs(Ip6AddrWithMask("2001:db8:" + number + "::/64"));
    auto const server = config->dnsServersIs(Ip6Addr("2001:db8::53:" + number));
    server->lifetimeIs(i % 4);
    server->lifetimeConfiguredIs(true);
    auto const suffix = config->dnsSuffixesIs("site" + number + ".example.com");
    suffix->lifetimeIs(i % 4);
    suffix->lifetimeConfiguredIs(true);
  }
  config->networkBootFileUrlIs("tftp://[2001:db8::7]/boot/firmware.efi");
  return config;
}

void setSize(benchmark::State& state, std::size_t octets) { state.counters["octets"] = static_cast<double>(octets); }

void buildAll(benchmark::State& state, Ptr<IntfConfig const> const& config) {
  AdvertRequest const request = requestFor(config);
  for (auto _ : state) {
    Ptr<Pkt> const pkt = build(request);
    benchmark::DoNotOptimize(pkt->data());
  }
  setSize(state, frameOf(config).size());
}

void Build_Typical(benchmark::State& state) { buildAll(state, typical()); }
BENCHMARK(Build_Typical);

void Build_Least(benchmark::State& state) { buildAll(state, least()); }
BENCHMARK(Build_Least);

void Build_Large(benchmark::State& state) { buildAll(state, large()); }
BENCHMARK(Build_Large);

/// The floor: the buffer is zeroed, a finished frame is copied into it, and its checksum computed.
void Build_FloorTypical(benchmark::State& state) {
  std::vector<U8> const frame = frameOf(typical());
  auto const buffer = std::make_unique<U8[]>(mtu);
  for (auto _ : state) {
    U8* const buf = buffer.get();
    std::memset(buf, 0, mtu);
    benchmark::DoNotOptimize(buf);
    benchmark::ClobberMemory();
    std::memcpy(buf, frame.data(), frame.size());
    Net::setIcmp6CheckSum(*reinterpret_cast<Net::Ip6Hdr*>(buf + 14), *reinterpret_cast<Net::Icmp6Hdr*>(buf + 54));
    benchmark::ClobberMemory();
  }
  if (!std::equal(frame.begin(), frame.end(), buffer.get())) state.SkipWithError("not the frame");
  setSize(state, frame.size());
}
BENCHMARK(Build_FloorTypical);

#ifdef HAVE_LIBTINS
/// The peer, its addresses, server lists and name lists ready in its own types.
void Build_PeerTypical(benchmark::State& state) {
  using namespace Tins;
  IPv6Address const srcAddr("fe80::1"), dstAddr("ff02::1"), prefix1("2001:db8:1::"), prefix2("2001:db8:2::");
  EthernetII::address_type const srcMac("02:00:00:00:00:01"), dstMac("33:33:00:00:00:01");
  ICMPv6::recursive_dns_type const servers(300, {IPv6Address("2001:db8::53"), IPv6Address("2001:db8::1:53")});
  ICMPv6::dns_search_list_type const names(300, {"example.com", "example.net"});

  PDU::serialization_type frame;
  for (auto _ : state) {
    EthernetII ethernet(dstMac, srcMac);  // owns what is inside it: nothing is copied
    auto* const ip6 = new IPv6(dstAddr, srcAddr);
    ethernet.inner_pdu(ip6);
    ip6->hop_limit(255);
    auto* const icmp6 = new ICMPv6(ICMPv6::ROUTER_ADVERT);
    ip6->inner_pdu(icmp6);
    icmp6->hop_limit(64);
    icmp6->router_lifetime(1800);
    icmp6->source_link_layer_addr(srcMac);
    icmp6->mtu({0, mtu});
    icmp6->prefix_info({64, 1, 1, 2592000, 604800, prefix1});
    icmp6->prefix_info({64, 1, 1, 2592000, 604800, prefix2});
    icmp6->recursive_dns_servers(servers);
    icmp6->dns_search_list(names);
    frame = ethernet.serialize();
    benchmark::DoNotOptimize(frame.data());
  }
  if (frame != frameOf(typical())) state.SkipWithError("not the frame");
  setSize(state, frame.size());
}
BENCHMARK(Build_PeerTypical);
#endif

}  // namespace

// What the model takes: octets of one interface, and memory of a router with 10,000 of them.

#include <Ipv6RouterAdvt/RouterAdvt.h>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <string>

namespace {

using Fwk::Ptr;
using RouterAdvt::Config;
using RouterAdvt::IntfConfig;

/// Four prefixes, two DNS servers, two DNS search suffixes.
void configure(IntfConfig& intf, int number) {
  std::string const site = std::to_string(number);
  for (int i = 0; i < 4; ++i)
    intf.prefixesIs(
        Net::Ip6AddrWithMask("2001:db8:" + std::to_string(number % 10'000) + ":" + std::to_string(i) + "::/64"));
  intf.dnsServersIs(Net::Ip6Addr("2001:db8::53"));
  intf.dnsServersIs(Net::Ip6Addr("2001:db8::1:53"));
  intf.dnsSuffixesIs(Fwk::String("site" + site + ".example.com"));
  intf.dnsSuffixesIs(Fwk::String("example.com"));
}

/// Octets that the allocator has handed out, its own headers and rounding included.
std::size_t octetsInUse() {
  struct mallinfo2 const info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void configureInterfaces(benchmark::State& state) {
  int const count = static_cast<int>(state.range(0));
  std::size_t used = 0;
  for (auto _ : state) {
    std::size_t const before = octetsInUse();
    Ptr<Config> config = RouterAdvt::configFactory("ra");
    for (int i = 0; i < count; ++i) configure(*config->intfIs(Net::IntfId("Ethernet" + std::to_string(i))), i);
    used = octetsInUse() - before;
    state.PauseTiming();
    config = nullptr;
    state.ResumeTiming();
  }
  state.counters["MB"] = static_cast<double>(used) / 1e6;
  state.counters["octets_per_interface"] = static_cast<double>(used) / count;
  state.counters["sizeof_IntfConfig"] = sizeof(IntfConfig);
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(configureInterfaces)->Name("model/interfaces")->Arg(10'000)->Unit(benchmark::kMillisecond);

}  // namespace

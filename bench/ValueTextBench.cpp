// Values to their text forms and back.

#include <Ipv6RouterAdvt/Heard/RaPacket.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborRa.h>

#include <benchmark/benchmark.h>

namespace {

using namespace RouterAdvt;

RaPacketPrefixInfo prefixInfo() {
  RaPacketPrefixInfo info(Ip6AddrWithMask("2001:db8:1::/64"));
  info.onLinkFlagIs(true);
  info.validLifetimeIs(2592000);
  info.preferredLifetimeIs(604800);
  return info;
}
RouterNeighborRa row() { return RouterNeighborRa({IntfId("Ethernet1"), Ip6Addr("fe80::1")}, 1764757443.25); }
RaPacket packet() { return RaPacket(IntfId("Ethernet1")); }

template <class T>
void print(benchmark::State& state, T const& value) {
  for (auto _ : state) benchmark::DoNotOptimize(valueToStrep(value));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(valueToStrep(value).size()));
}
BENCHMARK_CAPTURE(print, prefixInfo, prefixInfo())->Name("text/out/RaPacketPrefixInfo");
BENCHMARK_CAPTURE(print, row, row())->Name("text/out/RouterNeighborRa");
BENCHMARK_CAPTURE(print, packet, packet())->Name("text/out/RaPacket");

template <class T>
void read(benchmark::State& state, T const& value) {
  String const text = valueToStrep(value);
  for (auto _ : state) benchmark::DoNotOptimize(strepToValue<T>(text, nullptr));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK_CAPTURE(read, prefixInfo, prefixInfo())->Name("text/in/RaPacketPrefixInfo");
BENCHMARK_CAPTURE(read, row, row())->Name("text/in/RouterNeighborRa");

}  // namespace

// What a mirror costs: a snapshot of 10,000 interfaces, written and read, and changes, from the setter to the mirror.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <RouterPlatform/Mirror/ChangeStream.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace Fwk::ChangeStream;
using Fwk::OctetBuffer;
using Fwk::Ptr;
using Fwk::U32;
using RouterAdvt::Config;
using RouterAdvt::IntfConfig;

Net::IntfId intfId(int number) { return Net::IntfId("Ethernet" + std::to_string(number)); }

/// Interfaces with four prefixes, two DNS servers and two DNS search suffixes each.
Ptr<Config> configOf(int interfaces) {
  Ptr<Config> config = RouterAdvt::configFactory("ra");
  for (int i = 0; i < interfaces; ++i) {
    auto const intf = config->intfIs(intfId(i));
    std::string const site = std::to_string(i % 10'000);
    for (int k = 0; k < 4; ++k)
      intf->prefixesIs(Net::Ip6AddrWithMask("2001:db8:" + site + ":" + std::to_string(k) + "::/64"));
    intf->dnsServersIs(Net::Ip6Addr("2001:db8::53"));
    intf->dnsServersIs(Net::Ip6Addr("2001:db8::1:53"));
    intf->dnsSuffixesIs(Fwk::String("site" + site + ".example.com"));
    intf->dnsSuffixesIs(Fwk::String("example.com"));
  }
  return config;
}

void require(bool condition) {
  if (!condition) std::abort();
}

void writeSnapshot(benchmark::State& state) {
  int const interfaces = static_cast<int>(state.range(0));
  Source const source({configOf(interfaces)});
  OctetBuffer octets;
  for (auto _ : state) {
    Writer writer(source);
    octets.clear();
    writer.drain(octets);
    benchmark::DoNotOptimize(octets.data());
  }
  state.counters["octets"] = static_cast<double>(octets.size());
  state.counters["octets_per_interface"] = static_cast<double>(octets.size()) / interfaces;
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(octets.size()));
}
BENCHMARK(writeSnapshot)->Name("stream/snapshot/write")->Arg(10'000)->Unit(benchmark::kMillisecond);

void readSnapshot(benchmark::State& state) {
  OctetBuffer octets;
  Writer(configOf(static_cast<int>(state.range(0)))).drain(octets);
  for (auto _ : state) {
    Reader reader(registeredRoot);
    require(reader.feed(octets) && reader.synchronized());
    state.PauseTiming();
    reader = Reader(registeredRoot);
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(octets.size()));
}
BENCHMARK(readSnapshot)->Name("stream/snapshot/read")->Arg(10'000)->Unit(benchmark::kMillisecond);

/// A mirror that is right already: what a connection that breaks costs.
void readEqualSnapshot(benchmark::State& state) {
  OctetBuffer octets;
  Writer(configOf(static_cast<int>(state.range(0)))).drain(octets);
  Reader reader(registeredRoot);
  require(reader.feed(octets));
  for (auto _ : state) {
    reader.attach();
    require(reader.feed(octets) && reader.synchronized());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(octets.size()));
}
BENCHMARK(readEqualSnapshot)->Name("stream/snapshot/read_equal")->Arg(10'000)->Unit(benchmark::kMillisecond);

/// Observes every entity: what a source costs once.
void makeSource(benchmark::State& state) {
  auto const config = configOf(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(Source({config}));
}
BENCHMARK(makeSource)->Name("stream/source")->Arg(10'000)->Unit(benchmark::kMillisecond);

/// 1,000 scalars of random interfaces: set, written, and perhaps read. Items are changes.
template <bool areRead>
void changeScalars(benchmark::State& state) {
  constexpr int interfaces = 10'000;
  auto const config = configOf(interfaces);
  std::vector<Ptr<IntfConfig>> drawn;
  std::mt19937 random(1);
  for (int i = 0; i < 1'000; ++i) drawn.push_back(config->intf(intfId(static_cast<int>(random() % interfaces))));
  Writer writer(config);
  Reader reader(registeredRoot);
  OctetBuffer octets;
  writer.drain(octets);
  require(reader.feed(octets));
  U32 value = 0;
  for (auto _ : state) {
    ++value;
    for (auto const& intf : drawn) intf->raLifetimeIs(value);
    octets.clear();
    writer.drain(octets);
    if (areRead) require(reader.feed(octets));
  }
  state.counters["octets_per_change"] = static_cast<double>(octets.size()) / 1'000;
  state.SetItemsProcessed(state.iterations() * 1'000);
}
BENCHMARK(changeScalars<false>)->Name("stream/changes/write")->Unit(benchmark::kMicrosecond);
BENCHMARK(changeScalars<true>)->Name("stream/changes/write_and_read")->Unit(benchmark::kMicrosecond);

/// One setter, again and again, with this many subscribers that have yet to be told.
void setWithSubscribers(benchmark::State& state) {
  auto const config = configOf(10);
  Source const source({config});
  std::vector<Writer> writers;
  OctetBuffer octets;
  for (auto i = state.range(0); i > 0; --i) writers.emplace_back(source).drain(octets);
  auto const intf = config->intf(intfId(0));
  U32 value = 0;
  for (auto _ : state) intf->raLifetimeIs(++value);
}
BENCHMARK(setWithSubscribers)->Name("stream/set")->Arg(0)->Arg(1)->Arg(8);

}  // namespace

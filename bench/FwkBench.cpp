// What the entity framework costs: setters, notification, look-up by key, walks.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <RouterPlatform/Fwk/Observe.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

using Fwk::Ptr;
using Fwk::U32;
using Net::IntfId;
using Net::Ip6AddrWithMask;
using RouterAdvt::Config;
using RouterAdvt::IntfConfig;

/// `count` draws of the keys: no order that a prefetcher or a branch predictor foresees, the same in every run.
template <class K>
std::vector<K const*> drawn(std::vector<K> const& keys, std::size_t count = 16'384) {
  std::mt19937 random(1);
  std::vector<K const*> draws;
  for (; count > 0; --count) draws.push_back(&keys[random() % keys.size()]);
  return draws;
}

std::vector<IntfId> intfKeys(long count) {
  std::vector<IntfId> keys;
  for (long i = 0; i < count; ++i) keys.emplace_back("Ethernet" + std::to_string(i / 4) + "/" + std::to_string(i % 4));
  return keys;
}

std::vector<Ip6AddrWithMask> prefixKeys(long count) {
  std::vector<Ip6AddrWithMask> keys;
  for (long i = 0; i < count; ++i) {
    Net::Ip6Addr address("2001:db8::");
    auto octets = address.octets();
    octets[6] = static_cast<Fwk::U8>(i >> 8);
    octets[7] = static_cast<Fwk::U8>(i);
    keys.emplace_back(Net::Ip6Addr::fromBytes(octets), Fwk::U8{64});
  }
  return keys;
}

void setterUnchanged(benchmark::State& state) {
  auto const intf = IntfConfig::IntfConfigIs("Ethernet1");
  auto const subscription = observe(intf, [](Fwk::Notification const&) { std::abort(); });
  for (auto _ : state) {
    intf->raLifetimeIs(IntfConfig::raLifetimeDefault());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(setterUnchanged)->Name("fwk/setter/unchanged");

void setterChanged(benchmark::State& state) {
  auto const intf = IntfConfig::IntfConfigIs("Ethernet1");
  U32 value = 0;
  for (auto _ : state) {
    intf->raLifetimeIs(++value);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(setterChanged)->Name("fwk/setter/changed");

void setterChangedObserved(benchmark::State& state) {
  auto const intf = IntfConfig::IntfConfigIs("Ethernet1");
  U32 seen = 0;
  std::vector<Fwk::Subscription> subscriptions;
  for (long i = 0; i < state.range(0); ++i)
    subscriptions.push_back(observe(intf, [&seen](Fwk::Notification const& n) { seen += n.attr; }));
  U32 value = 0;
  for (auto _ : state) {
    intf->raLifetimeIs(++value);
    benchmark::DoNotOptimize(seen);
  }
}
BENCHMARK(setterChangedObserved)->Name("fwk/setter/changed/observers")->Arg(1)->Arg(8);

/// `look(key)` for keys that are there.
template <class K, class Look>
void lookUpAll(benchmark::State& state, std::vector<K> const& keys, Look look) {
  std::vector<K const*> const asked = drawn(keys);
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(look(*asked[next]));
    if (++next == asked.size()) next = 0;
  }
}

void findIntf(benchmark::State& state) {
  auto const config = RouterAdvt::configFactory("ra");
  auto const keys = intfKeys(state.range(0));
  for (IntfId const& key : keys) config->intfIs(key);
  lookUpAll(state, keys, [&](IntfId const& key) { return config->intf().find(key); });
}
BENCHMARK(findIntf)->Name("fwk/find/IntfId")->Arg(8)->Arg(10'000);

void memberIntf(benchmark::State& state) {
  auto const config = RouterAdvt::configFactory("ra");
  auto const keys = intfKeys(state.range(0));
  for (IntfId const& key : keys) config->intfIs(key);
  lookUpAll(state, keys, [&](IntfId const& key) { return config->intf(key); });
}
BENCHMARK(memberIntf)->Name("fwk/member/IntfId")->Arg(8)->Arg(10'000);

void findPrefix(benchmark::State& state) {
  auto const intf = IntfConfig::IntfConfigIs("Ethernet1");
  auto const keys = prefixKeys(state.range(0));
  for (Ip6AddrWithMask const& key : keys) intf->prefixesIs(key);
  lookUpAll(state, keys, [&](Ip6AddrWithMask const& key) { return intf->prefixes().find(key); });
}
BENCHMARK(findPrefix)->Name("fwk/find/Ip6AddrWithMask")->Arg(8)->Arg(10'000);

void memberPrefix(benchmark::State& state) {
  auto const intf = IntfConfig::IntfConfigIs("Ethernet1");
  auto const keys = prefixKeys(state.range(0));
  for (Ip6AddrWithMask const& key : keys) intf->prefixesIs(key);
  lookUpAll(state, keys, [&](Ip6AddrWithMask const& key) { return intf->prefixes(key); });
}
BENCHMARK(memberPrefix)->Name("fwk/member/Ip6AddrWithMask")->Arg(8)->Arg(10'000);

void addAndDelete(benchmark::State& state) {
  auto const intf = IntfConfig::IntfConfigIs("Ethernet1");
  auto const keys = prefixKeys(state.range(0));
  for (Ip6AddrWithMask const& key : keys) intf->prefixesIs(key);
  auto const changed = drawn(keys);
  std::size_t next = 0;
  for (auto _ : state) {
    intf->prefixesDel(*changed[next]);
    intf->prefixesIs(*changed[next]);
    if (++next == changed.size()) next = 0;
  }
}
BENCHMARK(addAndDelete)->Name("fwk/delete and add/Ip6AddrWithMask")->Arg(8)->Arg(10'000);

void walk(benchmark::State& state) {
  auto const intf = IntfConfig::IntfConfigIs("Ethernet1");
  for (Ip6AddrWithMask const& key : prefixKeys(state.range(0))) intf->prefixesIs(key);
  for (auto _ : state)
    for (auto const& [key, prefix] : intf->prefixes()) benchmark::DoNotOptimize(prefix.get());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(walk)->Name("fwk/walk")->Arg(8)->Arg(10'000);

void frozenWalk(benchmark::State& state) {
  auto const intf = IntfConfig::IntfConfigIs("Ethernet1");
  for (Ip6AddrWithMask const& key : prefixKeys(state.range(0))) intf->prefixesIs(key);
  for (auto _ : state)
    for (RouterAdvt::PrefixConfigEntry const& prefix : intf->prefixes().frozen()) benchmark::DoNotOptimize(&prefix);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(frozenWalk)->Name("fwk/frozen walk")->Arg(8)->Arg(10'000);

}  // namespace

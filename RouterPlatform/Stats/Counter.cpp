#include <RouterPlatform/Stats/Counter.h>

#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace Stats {
namespace {

struct Registry {
  std::mutex mutex;
  std::map<std::string, std::unique_ptr<Counter>, std::less<>> counters;
};

/// Never destroyed: static objects of other libraries may count while the process ends.
Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

}  // namespace

Counter& counter(std::string_view name) {
  Registry& all = registry();
  std::lock_guard const lock(all.mutex);
  auto it = all.counters.find(name);
  if (it == all.counters.end()) it = all.counters.emplace(std::string(name), std::make_unique<Counter>(name)).first;
  return *it->second;
}

std::vector<Sample> snapshot() {
  Registry& all = registry();
  std::lock_guard const lock(all.mutex);
  std::vector<Sample> samples;
  samples.reserve(all.counters.size());
  for (auto const& [name, counted] : all.counters) samples.push_back({name, counted->value()});
  return samples;
}

}  // namespace Stats

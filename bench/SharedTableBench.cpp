// Shared table: lookups that hit and miss, updates, walks, what growing costs, and readers beside a writer that goes
// flat out. Rows are 72 octets: interface, address, time, and two more words.

#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Net/IntfId.h>
#include <RouterPlatform/Net/Ip6Addr.h>
#include <RouterPlatform/SharedTable/Reader.h>
#include <RouterPlatform/SharedTable/Writer.h>

#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <compare>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using Fwk::U64;
using Fwk::U8;

struct Key {
  Net::IntfId intfId;
  Net::Ip6Addr addr;

  U64 hash(U64 seed) const noexcept {
    return Fwk::HashAccumulator(seed).mix(intfId.hash(seed)).mix(addr.hash(seed)).result();
  }
  auto operator<=>(Key const&) const = default;
  void appendTo(std::string& out) const { Trace::appendTexts(out, intfId, '-', addr); }
};

struct Row {
  Key key_;
  double time = 0;
  std::array<U64, 2> more{};

  Key const& key() const { return key_; }
  bool operator==(Row const&) const = default;
  static constexpr std::array tableFields{
      SharedTable::field<Net::IntfId>("key.intfId"), SharedTable::field<Net::Ip6Addr>("key.addr"),
      SharedTable::field<double>("time"), SharedTable::field<std::array<U64, 2>>("more")};
};
static_assert(sizeof(Row) == 72);

Key keyOf(U64 number) {
  Key key;
  key.intfId = Net::IntfId("Ethernet" + std::to_string(number % 64));
  std::array<U8, 16> octets{0xfe, 0x80};
  for (std::size_t i = 0; i < 8; ++i) octets[15 - i] = static_cast<U8>(number >> (8 * i));
  key.addr = Net::Ip6Addr::fromBytes(octets);
  return key;
}

/// A mounted table of `rows` rows with a reader at it, and keys to ask for, in no order that the table knows.
struct Table {
  explicit Table(U64 rows) : writer("row", {{}, 0644, directory}), reader("bench", "row", {{}, directory}) {
    for (U64 i = 0; i < rows; ++i) writer.rowIs(Row{keyOf(i), 0, {}});
    if (auto error = writer.mountPathIs("bench")) throw std::runtime_error(error.text);
    if (auto error = reader.attach()) throw std::runtime_error(error.text);
    U64 number = 1;
    for (std::size_t i = 0; i < std::min<U64>(rows, 1 << 16); ++i) {
      number = number * 6364136223846793005U + 1442695040888963407U;
      present.push_back(keyOf((number >> 32) % rows));
      absent.push_back(keyOf(rows + (number >> 40)));
    }
  }
  ~Table() { std::filesystem::remove_all(directory); }

  /// One table at a time: a million rows are measured by several benchmarks and made once.
  static Table& of(U64 rows) {
    static std::unique_ptr<Table> table;
    static U64 size = 0;
    if (size != rows) {
      table.reset();
      table = std::make_unique<Table>(rows);
      size = rows;
    }
    return *table;
  }

  std::string directory = [] {
    std::string name = "/dev/shm/table-bench-XXXXXX";
    if (!mkdtemp(name.data())) throw std::runtime_error("no directory in /dev/shm");
    return name;
  }();
  SharedTable::Writer<Row> writer;
  SharedTable::Reader<Row> reader;
  std::vector<Key> present;
  std::vector<Key> absent;
};

void hit(benchmark::State& state) {
  Table& table = Table::of(static_cast<U64>(state.range(0)));
  std::size_t i = 0;
  for (auto _ : state) {
    auto const found = table.reader.row(table.present[i]);
    if (!found) state.SkipWithError("a row is missing");
    benchmark::DoNotOptimize(found.row.time);
    if (++i == table.present.size()) i = 0;
  }
}

/// What a hit waits for at the least: of as many octets as the table has, in huge pages, a word at a random place, and
/// then the row that it names. As many places in turn as `hit` has keys, and each after the row before: by themselves
/// many of these would run at once, which lookups, with all their instructions, do not.
void floorOfAHit(benchmark::State& state) {
  constexpr U64 hugePage = U64{2} << 20;
  constexpr U64 slotWords = sizeof(Row) / 8 + 1;
  U64 const rows = static_cast<U64>(state.range(0));
  U64 const buckets = 2 * std::bit_ceil(rows);
  U64 const octets = (8 * (buckets + rows * slotWords) + hugePage - 1) / hugePage * hugePage;
  std::unique_ptr<void, decltype(&std::free)> const memory(std::aligned_alloc(hugePage, octets), &std::free);
  if (!memory) return state.SkipWithError("no memory");
  madvise(memory.get(), octets, MADV_HUGEPAGE);
  U64* const index = static_cast<U64*>(memory.get());
  U64* const slots = index + buckets;
  U64 number = 1;
  auto const random = [&] { return (number = number * 6364136223846793005U + 1442695040888963407U) >> 32; };
  for (U64 i = 0; i < buckets; ++i) index[i] = random() % rows;
  for (U64 i = 0; i < rows * slotWords; ++i) slots[i] = i;
  std::vector<U64> places(std::min<U64>(rows, 1 << 16));
  for (U64& place : places) place = random() % buckets;
  std::size_t i = 0;
  std::array<U64, slotWords> row{};
  for (auto _ : state) {
    U64 const place = places[i] + (row.back() >> 63);  // 0, which the processor cannot know
    std::copy_n(slots + index[place] * slotWords, slotWords, row.begin());
    benchmark::DoNotOptimize(row);
    if (++i == places.size()) i = 0;
  }
}

void miss(benchmark::State& state) {
  Table& table = Table::of(static_cast<U64>(state.range(0)));
  std::size_t i = 0;
  for (auto _ : state) {
    auto const found = table.reader.row(table.absent[i]);
    if (found) state.SkipWithError("a row that is not there");
    benchmark::DoNotOptimize(found.status);
    if (++i == table.absent.size()) i = 0;
  }
}

void update(benchmark::State& state) {
  Table& table = Table::of(static_cast<U64>(state.range(0)));
  std::size_t i = 0;
  Row row;
  for (auto _ : state) {
    row.key_ = table.present[i];
    row.time += 1;
    if (table.writer.rowIs(row) != SharedTable::WriteStatus::ok) state.SkipWithError("a row was refused");
    if (++i == table.present.size()) i = 0;
  }
}

void insertAndRemove(benchmark::State& state) {
  Table& table = Table::of(static_cast<U64>(state.range(0)));
  std::size_t i = 0;
  for (auto _ : state) {
    Row const row{table.absent[i], 1, {}};
    if (table.writer.rowIs(row) != SharedTable::WriteStatus::ok) state.SkipWithError("a row was refused");
    table.writer.rowDel(row.key());
    if (++i == table.absent.size()) i = 0;
  }
}

void walk(benchmark::State& state) {
  Table& table = Table::of(static_cast<U64>(state.range(0)));
  for (auto _ : state) {
    double sum = 0;
    table.reader.forEach([&](Row const& row) { sum += row.time; });
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Longest single write while a mounted table grows from nothing: the pause that a rebuild of the index makes.
void growthPause(benchmark::State& state) {
  U64 const rows = static_cast<U64>(state.range(0));
  std::vector<Row> all(rows);
  for (U64 i = 0; i < rows; ++i) all[i].key_ = keyOf(i);
  using Clock = std::chrono::steady_clock;
  double longest = 0;
  for (auto _ : state) {
    Table table(0);
    double longestHere = 0;
    auto const start = Clock::now();
    for (Row const& row : all) {
      auto const before = Clock::now();
      table.writer.rowIs(row);
      longestHere = std::max(longestHere, std::chrono::duration<double>(Clock::now() - before).count());
    }
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    longest = std::max(longest, longestHere);
  }
  state.counters["pause_us"] = longest * 1e6;
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Hits, with and without (second argument) a writer that changes random rows as fast as it can.
void hitBesideWriter(benchmark::State& state) {
  Table& table = Table::of(static_cast<U64>(state.range(0)));
  std::atomic<bool> stop{false};
  U64 updates = 0;
  auto const start = std::chrono::steady_clock::now();
  std::thread writer([&] {
    if (state.range(1) == 0) return;
    std::size_t i = table.present.size() / 2;
    Row row;
    while (!stop.load(std::memory_order_relaxed)) {
      row.key_ = table.present[i];
      row.time += 1;
      table.writer.rowIs(row);
      ++updates;
      if (++i == table.present.size()) i = 0;
    }
  });
  std::size_t i = 0;
  for (auto _ : state) {
    auto const found = table.reader.row(table.present[i]);
    if (!found) state.SkipWithError("a row is missing");
    benchmark::DoNotOptimize(found.row.time);
    if (++i == table.present.size()) i = 0;
  }
  stop = true;
  writer.join();
  double const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  state.counters["updates/s"] = static_cast<double>(updates) / seconds;
}

BENCHMARK(hit)->Name("SharedTable/hit")->Arg(4096)->Arg(100000)->Arg(1000000);
BENCHMARK(floorOfAHit)->Name("SharedTable/floorOfAHit")->Arg(4096)->Arg(100000)->Arg(1000000);
BENCHMARK(miss)->Name("SharedTable/miss")->Arg(4096)->Arg(100000)->Arg(1000000);
BENCHMARK(update)->Name("SharedTable/update")->Arg(4096)->Arg(100000)->Arg(1000000);
BENCHMARK(insertAndRemove)->Name("SharedTable/insertAndRemove")->Arg(4096)->Arg(100000)->Arg(1000000);
BENCHMARK(walk)->Name("SharedTable/walk")->Arg(4096)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(hitBesideWriter)
    ->Name("SharedTable/hitBesideWriter")
    ->ArgsProduct({{4096, 100000, 1000000}, {0, 1}})
    ->UseRealTime();
BENCHMARK(growthPause)
    ->Name("SharedTable/growthPause")
    ->Arg(4096)
    ->Arg(100000)
    ->Arg(1000000)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

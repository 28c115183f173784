#include <RouterPlatform/SharedTable/WriterCore.h>
#include <RouterPlatform/Stats/Counter.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>

#include <atomic>
#include <barrier>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace {

using namespace SharedTableTest;

/// Threads that share one mapping, the writer's own: a race checker sees what goes on there, which it does not across
/// two mappings of one file.
class SharedTableThreads : public Tables {
 protected:
  static constexpr U64 lasting = 50;  ///< keys 0 to this are always there

  SharedTableThreads() : writer_(collection, writerOptions(8, 4096)) {
    for (U64 i = 0; i < lasting; ++i) writer_.rowIs(Row(i, 0));
    EXPECT_FALSE(writer_.mountPathIs(mountPath));
  }

  /// Looks lasting keys up until told to stop; versions never go back.
  void lookUp() {
    SharedTable::View const& view = writer_.core().view();
    std::vector<U64> last(lasting);
    std::mt19937_64 random(5);
    while (!stop_) {
      U64 const number = random() % lasting;
      Key const key = Key::of(number);
      Row row;
      SharedTable::Corruption corruption;
      ASSERT_EQ(view.lookup(&key, &row, corruption), LookupStatus::found);
      ASSERT_TRUE(row.whole());
      ASSERT_GE(row.version(), last[number]);
      last[number] = row.version();
      ++lookups_;
    }
  }

  void walk() {
    SharedTable::View const& view = writer_.core().view();
    while (!stop_) {
      std::multiset<U64> seen;
      SharedTable::WalkResult const result = view.walk([&](void const* octets) {
        Row const row = SharedTable::copyOf<Row>(octets);
        EXPECT_TRUE(row.whole());
        seen.insert(row.number());
        return true;
      });
      ASSERT_EQ(result.corrupt, 0u);
      ASSERT_EQ(result.busy, 0u);
      for (U64 i = 0; i < lasting; ++i) ASSERT_EQ(seen.count(i), 1u) << i;
      for (U64 const number : seen) ASSERT_EQ(seen.count(number), 1u) << number;
      ++walks_;
    }
  }

  Writer writer_;
  std::atomic<bool> stop_{false};
  std::atomic<U64> lookups_{0};
  std::atomic<U64> walks_{0};
};

TEST_F(SharedTableThreads, ReadersSeeWholeRowsAndMissNoneWhileTheWriterGoesFlatOut) {
  std::thread lookups([this] { lookUp(); });
  std::thread walks([this] { walk(); });
  std::mt19937_64 random(3);
  auto const until = std::chrono::steady_clock::now() + std::chrono::milliseconds(1500);
  U64 version = 1;
  for (; version % 256 != 0 || std::chrono::steady_clock::now() < until; ++version) {
    writer_.rowIs(Row(random() % lasting, version));
    // Others come and go: the index grows once and is cleaned time and again.
    U64 const number = lasting + version / 8 + random() % 500;
    if (random() % 2)
      writer_.rowIs(Row(number, version));
    else
      writer_.rowDel(Key::of(number));
    if (writer_.count() > 1500) {
      U64 const oldest = lasting + version / 8;
      for (U64 i = oldest > 3000 ? oldest - 3000 : lasting; i < oldest; ++i) writer_.rowDel(Key::of(i));
    }
  }
  stop_ = true;
  lookups.join();
  walks.join();
  EXPECT_GT(lookups_, 100u);
  EXPECT_GT(walks_, 2u);
}

TEST_F(SharedTableThreads, TwoWritersOnTwoThreadsCountEveryRefusal) {
  constexpr U64 refusals = 300000;
  U64 const before = Stats::counter("sharedTableFull").value();
  std::barrier<> start(2);
  auto const refuse = [&] {
    Writer writer(collection, writerOptions(4, 4));
    for (U64 i = 0; i < 4; ++i) writer.rowIs(Row(i, 0));
    Row const row(4, 0);
    start.arrive_and_wait();
    for (U64 i = 0; i < refusals; ++i) ASSERT_EQ(writer.rowIs(row), WriteStatus::full);
  };
  std::thread other(refuse);
  refuse();
  other.join();
  EXPECT_EQ(Stats::counter("sharedTableFull").value() - before, 2 * refusals);
}

TEST_F(SharedTableThreads, ExactWalksAreOfOneMoment) {
  // The writer keeps the sum of two rows' versions even: only between its two writes is it odd.
  std::thread walks([this] {
    SharedTable::View const& view = writer_.core().view();
    while (!stop_) {
      U64 versions[2] = {};
      U64 const changes = view.changeCount();
      SharedTable::WalkResult const result = view.walk([&](void const* octets) {
        Row const row = SharedTable::copyOf<Row>(octets);
        if (row.number() < 2) versions[row.number()] = row.version();
        return true;
      });
      if (!result.exact || view.changeCount() != changes) continue;
      ++walks_;
      // Row 1 is written second, so it is at most one version behind and never ahead.
      ASSERT_LE(versions[1], versions[0]);
      ASSERT_LE(versions[0] - versions[1], 1u);
    }
  });
  for (U64 version = 1; version < 3000 || walks_ < 20; ++version) {
    writer_.rowIs(Row(0, version));
    writer_.rowIs(Row(1, version));
    if (version % 4 == 0) std::this_thread::sleep_for(std::chrono::microseconds(50));
    if (version > 200000) break;
  }
  stop_ = true;
  walks.join();
  EXPECT_GE(walks_, 20u);
}

}  // namespace

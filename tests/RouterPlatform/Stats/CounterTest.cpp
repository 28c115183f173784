#include <RouterPlatform/Stats/Counter.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <barrier>
#include <string>
#include <thread>

namespace {

using Stats::counter;
using testing::Contains;

/// A counter that nothing has counted with, in a repeated run of the tests either.
Stats::Counter& newCounter() {
  static int made = 0;
  return counter("CounterTest.new" + std::to_string(++made));
}

TEST(Counter, StartsAtZeroAndCountsUp) {
  Stats::Counter& counted = newCounter();
  EXPECT_EQ(counted.value(), 0u);
  ++counted;
  counted.add(41);
  EXPECT_EQ(counted.value(), 42u);
}

TEST(Counter, KnowsItsName) { EXPECT_EQ(counter("CounterTest.name").name(), "CounterTest.name"); }

TEST(Counter, TheSameNameGivesTheSameCounter) {
  Stats::Counter& first = counter("CounterTest.same");
  for (int i = 0; i < 100; ++i) counter("CounterTest.other" + std::to_string(i));
  EXPECT_EQ(&counter("CounterTest.same"), &first);
  EXPECT_NE(&counter("CounterTest.different"), &first);
}

TEST(Counter, WrapsAfterTheLargestNumber) {
  Stats::Counter& counted = newCounter();
  counted.add(~std::uint64_t{0});
  ++counted;
  EXPECT_EQ(counted.value(), 0u);
}

TEST(Counter, ASnapshotListsAllCountersByName) {
  Stats::Counter& two = newCounter();
  Stats::Counter& one = newCounter();
  two.add(2);
  one.add(1);
  auto const samples = Stats::snapshot();
  EXPECT_THAT(samples, Contains(Stats::Sample{one.name(), 1}));
  EXPECT_THAT(samples, Contains(Stats::Sample{two.name(), 2}));
  EXPECT_TRUE(std::ranges::is_sorted(samples, {}, &Stats::Sample::name));
}

TEST(Counter, CountsWhatTwoThreadsAddAtOnceWhenItIsShared) {
  Stats::Counter& counted = counter("CounterTest.shared");
  std::uint64_t const before = counted.value();
  std::barrier<> start(2);
  auto const count = [&] {
    start.arrive_and_wait();
    for (int i = 0; i < 1000000; ++i) counted.addShared(1);
  };
  std::thread other(count);
  count();
  other.join();
  EXPECT_EQ(counted.value() - before, 2000000u);
}

TEST(Counter, AnotherThreadMayReadWhileOneCounts) {
  Stats::Counter& counted = newCounter();
  std::thread writer([&] {
    for (int i = 0; i < 100000; ++i) ++counted;
  });
  std::uint64_t last = 0;
  while (last < 100000) {
    std::uint64_t const now = counted.value();
    ASSERT_GE(now, last);
    last = now;
  }
  writer.join();
  EXPECT_EQ(counted.value(), 100000u);
}

}  // namespace

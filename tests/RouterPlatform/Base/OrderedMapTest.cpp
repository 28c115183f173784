#include <RouterPlatform/Base/OrderedMap.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Fwk::OrderedMap;
using Fwk::String;
using Fwk::U32;
using testing::ElementsAre;

using Map = OrderedMap<U32, String>;

template <class M>
std::vector<U32> keysOf(M const& map) {
  std::vector<U32> keys;
  for (auto const& [key, value] : map) keys.push_back(key);
  return keys;
}

TEST(OrderedMap, AConstantOneIsMadeEmptyWithAndWithoutRoomOfItsOwn) {
  Map const map;
  EXPECT_TRUE(map.empty());
  OrderedMap<U32, String, 4> const withRoom;
  EXPECT_EQ(withRoom.find(1), nullptr);
}

TEST(OrderedMap, SettingTellsWhetherAnythingChanged) {
  Map map;
  EXPECT_TRUE(map.set(1, "one"));
  EXPECT_FALSE(map.set(1, "one"));
  EXPECT_TRUE(map.set(1, "uno"));
  EXPECT_EQ(*map.find(1), "uno");
  EXPECT_EQ(map.size(), 1U);
}

TEST(OrderedMap, FindsNoValueForAKeyThatIsNotThere) {
  Map const map;
  EXPECT_EQ(map.find(1), nullptr);
  EXPECT_FALSE(map.contains(1));
  EXPECT_TRUE(map.empty());
}

TEST(OrderedMap, AnotherValueKeepsItsPlaceAndANewKeyComesLast) {
  Map map;
  for (U32 const key : {3U, 1U, 2U}) map.set(key, "x");
  map.set(3, "y");
  map.remove(1);
  map.set(1, "x");
  EXPECT_THAT(keysOf(map), ElementsAre(3, 2, 1));
}

TEST(OrderedMap, RemovingGivesTheEntry) {
  Map map;
  map.set(1, "one");
  auto const removed = map.remove(1);
  ASSERT_TRUE(removed);
  EXPECT_EQ(removed->key, 1U);
  EXPECT_EQ(removed->value, "one");
  EXPECT_FALSE(map.remove(1));
}

// Growing moves the entries, the one among them that key and value are taken from.
TEST(OrderedMap, TakesAKeyAndAValueThatStandInIt) {
  OrderedMap<U32, U32, 4> map;
  map.set(0, 1);
  for (U32 key = 0; key < 50; ++key) {
    U32 const& next = *map.find(key);
    map.set(next, next);
    ASSERT_EQ(map.size(), key + 2);
    ASSERT_EQ(*map.find(key + 1), key + 1);
    map.set(key + 1, key + 2);
  }
}

TEST(OrderedMap, ComparesKeysAndValuesSideBySide) {
  Map one;
  Map two;
  one.set(1, "x");
  one.set(2, "y");
  two.set(2, "y");
  EXPECT_FALSE(one == two);
  two.set(1, "x");
  EXPECT_FALSE(one == two);  // another order
  two.remove(2);
  two.set(2, "y");
  EXPECT_TRUE(one == two);
  two.set(2, "z");
  EXPECT_FALSE(one == two);
  EXPECT_TRUE(one == one);
  EXPECT_TRUE(Map() == Map());
}

TEST(OrderedMap, ForEachVisitsKeysAndValuesInOrder) {
  Map map;
  map.set(2, "two");
  map.set(1, "one");
  std::string seen;
  map.forEach([&](U32 key, String const& value) { seen += std::to_string(key) + value + ' '; });
  EXPECT_EQ(seen, "2two 1one ");
}

TEST(OrderedMap, MayChangeWhileItIsWalked) {
  Map map;
  for (U32 key = 1; key <= 20; ++key) map.set(key, "x");
  std::vector<U32> seen;
  for (auto const& [key, value] : map) {
    seen.push_back(key);
    map.remove(key + 1);
    map.set(key + 100, value);
    EXPECT_EQ(value, "x");
  }
  EXPECT_THAT(seen, ElementsAre(1, 3, 5, 7, 9, 11, 13, 15, 17, 19));
}

TEST(OrderedMap, AllocatesNothingUpToItsInlineRoom) {
  std::size_t const before = allocationCount();
  OrderedMap<U32, bool, 96, 96> map;
  for (U32 key = 0; key < 96; ++key) map.set(key, true);
  OrderedMap<U32, bool, 96, 96> const copied = map;
  EXPECT_TRUE(copied == map);
  EXPECT_EQ(allocationCount(), before);
  map.set(96, true);
  EXPECT_GT(allocationCount(), before);
}

TEST(OrderedMap, DoesWhatAStandardMapDoesInTheOrderOfInsertion) {
  for (U32 const keys : {6U, 24U, 500U}) {
    U32 const seed = 4711 + keys;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 generator(seed);
    auto const random = [&](U32 below) { return static_cast<U32>(generator() % below); };
    OrderedMap<U32, U32> map;
    std::map<U32, U32> values;
    std::vector<U32> order;
    for (int i = 0; i < 200'000; ++i) {
      U32 const key = random(keys);
      U32 const value = random(4);
      switch (random(4)) {
        case 0: {
          auto const removed = map.remove(key);
          auto const known = values.find(key);
          ASSERT_EQ(removed.has_value(), known != values.end());
          if (!removed) break;
          ASSERT_EQ(removed->value, known->second);
          values.erase(known);
          std::erase(order, key);
          break;
        }
        case 1: {
          auto const known = values.find(key);
          bool const changes = known == values.end() || known->second != value;
          if (known == values.end()) order.push_back(key);
          values[key] = value;
          ASSERT_EQ(map.set(key, value), changes);
          break;
        }
        default: {
          auto const known = values.find(key);
          ASSERT_EQ(map.contains(key), known != values.end());
          if (known != values.end()) {
            ASSERT_EQ(*map.find(key), known->second);
          }
        }
      }
      ASSERT_EQ(map.size(), values.size());
      if (i % 256 != 0) continue;
      ASSERT_EQ(keysOf(map), order);
      OrderedMap<U32, U32> const copied = map;
      ASSERT_TRUE(copied == map);
    }
  }
}

/// A value whose copies fail half way once they are told to, as that of a record with a long list does.
struct Torn {
  int first = 0;
  int second = 0;
  static inline bool copyingThrows = false;
  Torn(int f, int s) : first(f), second(s) {}
  Torn(Torn const& other) : first(other.first) {
    if (copyingThrows) throw std::bad_alloc();
    second = other.second;
  }
  Torn(Torn&&) noexcept = default;
  Torn& operator=(Torn const& other) {
    first = other.first;
    if (copyingThrows) throw std::bad_alloc();
    second = other.second;
    return *this;
  }
  Torn& operator=(Torn&&) noexcept = default;
  bool operator==(Torn const&) const = default;
};

TEST(OrderedMap, AValueThatCannotBeCopiedLeavesTheFormerOneWhole) {
  OrderedMap<U32, Torn> map;
  map.set(1, Torn(1, 1));
  Torn::copyingThrows = true;
  EXPECT_THROW(map.set(1, Torn(2, 2)), std::bad_alloc);
  Torn::copyingThrows = false;
  EXPECT_EQ(*map.find(1), Torn(1, 1));
}

/// A value that cannot be compared.
struct Incomparable {
  bool operator==(Incomparable const&) const { throw std::runtime_error("cannot be compared"); }
};

TEST(OrderedMapDeathTest, AComparisonThatThrowsStopsTheProcess) {
  OrderedMap<U32, Incomparable> map, other;
  map.set(1, Incomparable());
  other.set(1, Incomparable());
  EXPECT_DEATH(static_cast<void>(map == other), "cannot be compared");
}

}  // namespace

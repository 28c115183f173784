#include <RouterPlatform/Base/OrderedTable.h>
#include <tests/RouterPlatform/Base/OrderedTableModel.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// An element whose slot counts how often the table looks whether it is in use.
struct Watched {
  Fwk::U32 key = 0;
};
struct WatchedSlot : std::optional<Watched> {
  using std::optional<Watched>::optional;
  static inline std::size_t looks = 0;
  explicit operator bool() const noexcept {
    ++looks;
    return has_value();
  }
};
struct WatchedPolicy {
  static constexpr Fwk::U32 inlineCapacity = 0;
  static constexpr Fwk::U32 indexAbove = 8;
  static Fwk::U32 key(Watched const& element) noexcept { return element.key; }
};

}  // namespace

template <>
struct Fwk::OrderedSlot<Watched> {
  using Type = WatchedSlot;
  static Watched& get(Type& slot) noexcept { return *slot; }
  static Watched const& get(Type const& slot) noexcept { return *slot; }
  static void empty(Type& slot) noexcept { slot.reset(); }
};

namespace {

using Fwk::OrderedTable;
using Fwk::U32;
using OrderedTableModel::CountedItems;
using OrderedTableModel::InlineItems;
using OrderedTableModel::Item;
using OrderedTableModel::MuchInlineItems;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Table = OrderedTable<Item, InlineItems::Policy>;

void addAll(Table& table, U32 first, U32 last) {
  for (U32 key = first; key <= last; ++key) table.add(Item{key, 0});
}

std::vector<U32> keysOf(Table const& table) {
  std::vector<U32> keys;
  table.forEach([&](Item const& item) { keys.push_back(item.key); });
  return keys;
}

/// Keys that a walk sees when `during(key)` runs at each.
template <class During>
std::vector<U32> walked(Table const& table, During during) {
  std::vector<U32> keys;
  for (Table::Walk walk(table); !walk.atEnd(); walk.next()) {
    U32 const key = walk.element().key;
    keys.push_back(key);
    during(key);
  }
  return keys;
}

std::vector<U32> range(U32 first, U32 last) {
  std::vector<U32> keys;
  for (U32 key = first; key <= last; ++key) keys.push_back(key);
  return keys;
}

/// A key that cannot be compared once it is told so.
struct BadKey {
  U32 number = 0;
  static inline bool comparingThrows = false;
  bool operator==(BadKey const& other) const {
    if (comparingThrows) throw std::runtime_error("keys that cannot be compared");
    return number == other.number;
  }
  Fwk::U64 hash(Fwk::U64 seed) const noexcept { return Fwk::hashOf(number, seed); }
};
struct BadKeyPolicy {
  static constexpr U32 inlineCapacity = 0;
  static constexpr U32 indexAbove = 8;
  static BadKey const& key(BadKey const& key) noexcept { return key; }
};

/// Tables that are searched one by one, and by an index.
class OrderedTableDeathTest : public testing::TestWithParam<U32> {
 protected:
  OrderedTableDeathTest() {
    for (U32 number = 0; number < GetParam(); ++number) table_.add(BadKey{number});
  }
  OrderedTable<BadKey, BadKeyPolicy> table_;
};
INSTANTIATE_TEST_SUITE_P(Size, OrderedTableDeathTest, testing::Values(1U, 20U));

TEST_P(OrderedTableDeathTest, AFailureInsideTheComparisonOfKeysStopsTheProcess) {
  char const* const report = "keys that cannot be compared";
  EXPECT_DEATH((BadKey::comparingThrows = true, table_.find(BadKey{0})), report);
  EXPECT_DEATH((BadKey::comparingThrows = true, table_.remove(BadKey{0})), report);
}

TEST(OrderedTable, IsEmptyAtFirst) {
  Table table;
  EXPECT_TRUE(table.empty());
  EXPECT_EQ(table.size(), 0U);
  EXPECT_EQ(table.find(1), nullptr);
  EXPECT_FALSE(table.contains(1));
  EXPECT_EQ(table.remove(1), std::nullopt);
  EXPECT_THAT(walked(table, [](U32) {}), IsEmpty());
}

TEST(OrderedTable, KeepsTheOrderInWhichElementsCame) {
  Table table;
  for (U32 const key : {5U, 1U, 9U, 3U, 7U, 2U}) table.add(Item{key, 0});
  table.remove(9);
  table.add(Item{9, 0});
  EXPECT_THAT(keysOf(table), ElementsAre(5, 1, 3, 7, 2, 9));
}

/// Around the capacities and the size above which there is an index.
class OrderedTableOfSize : public testing::TestWithParam<U32> {};
INSTANTIATE_TEST_SUITE_P(Members, OrderedTableOfSize, testing::Values(1, 4, 5, 7, 8, 9, 10, 16, 17, 1000));

TEST_P(OrderedTableOfSize, FindsEveryElementAndNoOther) {
  Table table;
  addAll(table, 1, GetParam());
  for (U32 key = 1; key <= GetParam(); ++key) {
    ASSERT_NE(table.find(key), nullptr) << key;
    ASSERT_EQ(table.find(key)->key, key);
  }
  EXPECT_EQ(table.find(0), nullptr);
  EXPECT_EQ(table.find(GetParam() + 1), nullptr);
}

TEST_P(OrderedTableOfSize, RemovesFromTheFrontTheBackAndTheMiddle) {
  for (U32 const start : {1U, GetParam() / 2 + 1, GetParam()}) {
    Table table;
    addAll(table, 1, GetParam());
    std::vector<U32> left = range(1, GetParam());
    for (U32 key = start; !left.empty(); key = key % GetParam() + 1) {
      ASSERT_EQ(table.remove(key)->key, key);
      std::erase(left, key);
      ASSERT_FALSE(table.contains(key));
      ASSERT_THAT(keysOf(table), ElementsAreArray(left));
    }
    EXPECT_TRUE(table.empty());
  }
}

TEST(OrderedTable, AllocatesNothingUpToItsInlineCapacity) {
  std::size_t const before = allocationCount();
  Table table;
  addAll(table, 1, 4);
  table.remove(2);
  EXPECT_TRUE(table.contains(3));
  EXPECT_EQ(keysOf(table).size(), 3U);  // the only allocations
  std::size_t const keys = allocationCount();
  Table const copied(table);
  Table const moved(std::move(table));
  EXPECT_EQ(moved.size(), 3U);
  EXPECT_EQ(allocationCount(), keys);
  EXPECT_LE(keys - before, 3U);
}

TEST(OrderedTable, ReusesItsRoomWhenElementsComeAndGo) {
  Table table;
  addAll(table, 1, 4);
  std::size_t const before = allocationCount();
  for (U32 key = 5; key < 1000; ++key) {
    table.remove(key - 4);
    table.add(Item{key, 0});
  }
  EXPECT_EQ(allocationCount(), before);
  EXPECT_THAT(keysOf(table), ElementsAre(996, 997, 998, 999));
}

TEST(OrderedTable, AllocatesOnceAndTwiceOverEightElements) {
  using Pointers = OrderedTable<CountedItems::Element, CountedItems::Policy>;
  std::vector<CountedItems::Element> elements;
  for (U32 key = 1; key <= 9; ++key) elements.push_back(CountedItems::make({key, 0}));
  Pointers table;
  std::size_t const before = allocationCount();
  for (std::size_t i = 0; i < 8; ++i) table.add(elements[i]);
  EXPECT_EQ(allocationCount() - before, 2U);  // room for four, then for eight; no index
  table.add(elements[8]);
  EXPECT_EQ(allocationCount() - before, 5U);  // room for sixteen, the index and its cells
}

TEST(OrderedTable, FindingAndWalkingAllocateNothing) {
  Table table;
  addAll(table, 1, 100);
  std::size_t const before = allocationCount();
  U32 sum = 0;
  for (U32 key = 1; key <= 100; ++key) sum += table.find(key)->key;
  for (Table::Walk walk(table); !walk.atEnd(); walk.next()) sum += walk.element().key;
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(sum, 2 * 5050U);
}

TEST(OrderedTableWalk, ThatWasPutAsideSettlesAtAnElementOrTheEnd) {
  Table table;
  addAll(table, 1, 30);
  Table::Walk walk(table);
  walk.next();
  walk.settle();
  EXPECT_EQ(walk.element().key, 2);
  table.remove(2);
  table.remove(3);
  walk.settle();
  EXPECT_EQ(walk.element().key, 4);
  for (U32 key = 4; key <= 25; ++key) table.remove(key);  // closes the holes on the way
  walk.settle();
  EXPECT_EQ(walk.element().key, 26);
  for (U32 key = 26; key <= 30; ++key) table.remove(key);
  addAll(table, 40, 45);
  walk.settle();
  EXPECT_TRUE(walk.atEnd());
}

TEST(OrderedTableWalk, DoesNotVisitWhatIsAddedDuringIt) {
  Table table;
  addAll(table, 1, 3);
  EXPECT_THAT(walked(table, [&](U32 key) { table.add(Item{key + 10, 0}); }), ElementsAre(1, 2, 3));
  EXPECT_THAT(keysOf(table), ElementsAre(1, 2, 3, 11, 12, 13));
}

TEST(OrderedTableWalk, DoesNotVisitWhatIsRemovedAndAddedAgain) {
  Table table;
  addAll(table, 1, 3);
  auto const renew = [&](U32 key) {
    table.remove(key);
    table.add(Item{key, 0});
  };
  EXPECT_THAT(walked(table, renew), ElementsAre(1, 2, 3));
  EXPECT_EQ(table.size(), 3U);
}

TEST(OrderedTableWalk, GoesOnWhereItWasWhenItsElementIsRemoved) {
  Table table;
  addAll(table, 1, 5);
  EXPECT_THAT(walked(table, [&](U32 key) { table.remove(key); }), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_TRUE(table.empty());
}

TEST(OrderedTableWalk, PassesOverWhatIsRemovedBeforeItsTurn) {
  Table table;
  addAll(table, 1, 5);
  EXPECT_THAT(walked(table, [&](U32 key) { table.remove(key + 1); }), ElementsAre(1, 3, 5));
}

TEST(OrderedTableWalk, SurvivesTheClosingOfHolesAroundIt) {
  Table table;
  addAll(table, 1, 100);
  auto const thinOut = [&](U32 key) {
    if (key != 50) return;
    for (U32 other = 1; other <= 98; ++other) table.remove(other);  // its own element too
  };
  std::vector<U32> expected = range(1, 50);
  expected.insert(expected.end(), {99, 100});
  EXPECT_THAT(walked(table, thinOut), ElementsAreArray(expected));
}

TEST(OrderedTableWalk, SurvivesGrowth) {
  Table table;
  addAll(table, 1, 4);
  EXPECT_THAT(walked(table,
                     [&](U32 key) {
                       if (key == 2) addAll(table, 10, 1000);
                     }),
              ElementsAre(1, 2, 3, 4));
}

TEST(OrderedTableWalk, EndsWhenTheTableIsEmptiedAndRefilled) {
  Table table;
  addAll(table, 1, 5);
  EXPECT_THAT(walked(table,
                     [&](U32) {
                       table.clear();
                       addAll(table, 1, 9);
                     }),
              ElementsAre(1));
}

TEST(OrderedTableWalk, EndsWhenTheTableEnds) {
  auto table = std::make_unique<Table>();
  addAll(*table, 1, 5);
  Table::Walk walk(*table);
  Table::Walk const copy(walk);
  table.reset();
  EXPECT_TRUE(walk.atEnd());
  EXPECT_TRUE(copy.atEnd());
  walk.next();
  EXPECT_TRUE(walk.atEnd());
  EXPECT_TRUE(Table::Walk(walk).atEnd());
}

TEST(OrderedTableWalk, EndsWhenTheElementsMoveToAnotherTable) {
  Table table;
  addAll(table, 1, 5);
  std::optional<Table> other;
  EXPECT_THAT(walked(table,
                     [&](U32) {
                       if (!other) other = std::move(table);
                     }),
              ElementsAre(1));
  EXPECT_THAT(keysOf(*other), ElementsAre(1, 2, 3, 4, 5));
}

TEST(OrderedTableWalk, SeveralMayBeInProgressAndEndInAnyOrder) {
  Table table;
  addAll(table, 1, 3);
  auto first = std::make_unique<Table::Walk>(table);
  auto second = std::make_unique<Table::Walk>(*first);
  auto third = std::make_unique<Table::Walk>(table);
  second->next();
  first.reset();
  table.remove(2);
  EXPECT_EQ(third->element().key, 1U);
  third->next();
  EXPECT_EQ(third->element().key, 3U);
  third.reset();
  second->next();
  EXPECT_EQ(second->element().key, 3U);
}

TEST(OrderedTableWalk, OneInsideAnotherMaySeeElementsTheOuterOneDoesNot) {
  Table table;
  addAll(table, 1, 2);
  std::vector<std::size_t> inner;
  auto const walkAgain = [&](U32 key) {
    table.add(Item{key + 10, 0});
    inner.push_back(walked(table, [](U32) {}).size());
  };
  EXPECT_THAT(walked(table, walkAgain), ElementsAre(1, 2));
  EXPECT_THAT(inner, ElementsAre(3, 4));
}

TEST_P(OrderedTableOfSize, CopyingGivesTheSameElementsInTheSameOrder) {
  Table table;
  addAll(table, 0, GetParam());
  table.remove(0);
  Table const copied(table);
  Table assigned;
  addAll(assigned, 500, 600);
  assigned = table;
  addAll(table, 2000, 2001);
  for (Table const* const copy : {&copied, static_cast<Table const*>(&assigned)}) {
    EXPECT_THAT(keysOf(*copy), ElementsAreArray(range(1, GetParam())));
    EXPECT_TRUE(copy->contains(GetParam()));
    EXPECT_FALSE(copy->contains(2000));
  }
}

TEST_P(OrderedTableOfSize, MovingTakesTheElementsAlongWithoutAllocation) {
  Table table;
  addAll(table, 0, GetParam());
  table.remove(0);
  std::size_t const before = allocationCount();
  Table moved(std::move(table));
  Table assigned;
  assigned = std::move(moved);
  EXPECT_EQ(allocationCount(), before);
  EXPECT_THAT(keysOf(assigned), ElementsAreArray(range(1, GetParam())));
  EXPECT_TRUE(assigned.contains(GetParam()));
  for (Table* const left : {&table, &moved}) {
    EXPECT_TRUE(left->empty());
    EXPECT_FALSE(left->contains(1));
    addAll(*left, 1, 20);  // and is as good as new
    EXPECT_THAT(keysOf(*left), ElementsAreArray(range(1, 20)));
  }
}

TEST(OrderedTable, AssigningItselfChangesNothing) {
  Table table;
  addAll(table, 1, 10);
  Table& same = table;
  table = same;
  table = std::move(same);
  EXPECT_THAT(keysOf(table), ElementsAreArray(range(1, 10)));
}

TEST(OrderedTable, MovesWithoutThrowingSoThatVectorsMoveToo) {
  EXPECT_TRUE(std::is_nothrow_move_constructible_v<Table>);
  EXPECT_TRUE(std::is_nothrow_move_assignable_v<Table>);
}

/// Elements that hold memory of their own.
struct TextPolicy {
  static constexpr U32 inlineCapacity = 2;
  static constexpr U32 indexAbove = 8;
  static Fwk::String const& key(Fwk::String const& text) noexcept { return text; }
};
using Texts = OrderedTable<Fwk::String, TextPolicy>;
Fwk::String longText(U32 number) { return std::string(50, 'x') + std::to_string(number); }
Texts textsUpTo(U32 count) {
  Texts texts;
  for (U32 i = 1; i <= count; ++i) texts.add(longText(i));
  return texts;
}

TEST(OrderedTableWithoutMemory, AddingThrowsAndChangesNothing) {
  for (U32 const count : {0U, 2U, 4U, 8U, 9U, 12U, 24U, 32U}) {
    for (std::size_t allowed = 0;; ++allowed) {
      Texts texts = textsUpTo(count);
      Fwk::String added = longText(0);
      bool thrown = false;
      try {
        AllocationFailure const failure(allowed);
        texts.add(std::move(added));
      } catch (std::bad_alloc const&) {
        thrown = true;
      }
      ASSERT_EQ(texts.size(), count + (thrown ? 0 : 1));
      ASSERT_EQ(texts.contains(longText(0)), !thrown);
      for (U32 i = 1; i <= count; ++i) ASSERT_TRUE(texts.contains(longText(i))) << i;
      if (!thrown) break;
    }
  }
}

TEST(OrderedTableWithoutMemory, CopyingLeaksNothingAndAssigningKeepsWhatWasThere) {
  Texts const texts = textsUpTo(20);
  std::size_t allowed = 0;
  for (bool thrown = true; thrown; ++allowed) {
    Texts assigned = textsUpTo(3);
    std::size_t const storage = liveAllocationCount();
    thrown = false;
    try {
      AllocationFailure const failure(allowed);
      assigned = texts;
    } catch (std::bad_alloc const&) {
      thrown = true;
    }
    if (thrown) {
      ASSERT_EQ(liveAllocationCount(), storage);
      ASSERT_EQ(assigned.size(), 3U);
      ASSERT_TRUE(assigned.contains(longText(3)));
    } else {
      ASSERT_EQ(assigned.size(), 20U);
    }
  }
  EXPECT_GT(allowed, 20U);  // each text has one
}

TEST(OrderedTable, GivesAllItsMemoryBack) {
  std::size_t const storage = liveAllocationCount();
  {
    Texts texts = textsUpTo(100);
    for (U32 i = 1; i <= 60; ++i) texts.remove(longText(i));
    Texts const copied(texts);
    texts.clear();
    texts.add(longText(1));
  }
  EXPECT_EQ(liveAllocationCount(), storage);
}

/// Compares with the model over many operations. `seed` is printed with a failure.
template <class Items>
void compareWithModel(U32 seed, int count, U32 keys) {
  using Pair = OrderedTableModel::Pair<Items>;
  SCOPED_TRACE("seed " + std::to_string(seed) + ", " + std::to_string(keys) + " keys");
  std::mt19937 generator(seed);
  auto const random = [&](U32 below) { return static_cast<U32>(generator() % below); };
  Pair pair;
  bool growing = true;
  try {
    for (int i = 0; i < count; ++i) {
      if (i % 500 == 0) growing = random(2) == 0;
      U32 const chance = random(1000);
      U32 const key = random(keys);
      using Operation = typename Pair::Operation;
      Operation const operation = chance < (growing ? 450U : 200U) ? Pair::add
                                  : chance < 650                   ? Pair::remove
                                  : chance < 700                   ? Pair::find
                                  : chance < 998 ? static_cast<Operation>(Pair::beginWalk + chance % 4)
                                                 : static_cast<Operation>(Pair::clear + random(8));
      pair.perform(operation, key);
      if (pair.size() <= 16 || i % 64 == 0) pair.compare();
    }
    pair.compare();
  } catch (OrderedTableModel::Difference const& difference) {
    ADD_FAILURE() << difference.what();
  }
}

template <class Items>
class OrderedTableDifferential : public testing::Test {};
using AllItems = testing::Types<InlineItems, MuchInlineItems, CountedItems>;
TYPED_TEST_SUITE(OrderedTableDifferential, AllItems);

TYPED_TEST(OrderedTableDifferential, DoesWhatAVectorDoesWhateverHappensDuringWalks) {
  for (U32 const keys : {4U, 12U, 40U, 300U}) compareWithModel<TypeParam>(20080100 + keys, 50'000, keys);
}

TEST(OrderedTable, FindsTheFirstElementAgainAndAgainWithoutPassingTheHolesAnew) {
  constexpr U32 count = 4000;
  OrderedTable<Watched, WatchedPolicy> table;
  for (U32 key = 0; key < count; ++key) table.add(Watched{key});
  std::size_t most = 0;
  for (U32 key = 0; key < count / 2; ++key) {  // the table is not compacted before half of it is gone
    WatchedSlot::looks = 0;
    OrderedTable<Watched, WatchedPolicy>::Walk const walk(table);
    ASSERT_EQ(walk.element().key, key);
    table.remove(key);
    most = std::max(most, WatchedSlot::looks);
  }
  EXPECT_LE(most, 8U);
}

TEST(OrderedTable, IsWalkedWholeAfterItsFirstElementsWereRemovedAndOthersAdded) {
  for (U32 const count : {4U, 40U}) {
    Table table;
    addAll(table, 1, count);
    for (U32 key = 1; key < count; ++key) table.remove(key);
    addAll(table, count + 1, count + 3);
    EXPECT_THAT(keysOf(table), ElementsAreArray(range(count, count + 3)));
    EXPECT_EQ(walked(table, [](U32) {}), range(count, count + 3));
    for (U32 key = count; key <= count + 3; ++key) table.remove(key);
    addAll(table, 7, 9);
    EXPECT_THAT(keysOf(table), ElementsAre(7, 8, 9));
    Table const moved = std::move(table);
    EXPECT_THAT(keysOf(moved), ElementsAre(7, 8, 9));
  }
}

}  // namespace

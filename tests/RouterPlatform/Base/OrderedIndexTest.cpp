#include <RouterPlatform/Base/OrderedIndex.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace {

using Fwk::OrderedIndex;
using Fwk::U32;

U32 find(OrderedIndex const& index, U32 hash, U32 position) {
  return index.find(hash, [&](U32 candidate) { return candidate == position; });
}

TEST(OrderedIndex, FindsNothingWhenEmpty) {
  OrderedIndex const index(0);
  EXPECT_EQ(find(index, 0, 0), OrderedIndex::npos);
  EXPECT_EQ(find(index, 0xffffffff, 0), OrderedIndex::npos);
}

TEST(OrderedIndex, HasTheRoomItWasMadeFor) {
  for (U32 members = 0; members < 3000; ++members) ASSERT_TRUE(OrderedIndex(members).hasRoomFor(members)) << members;
  EXPECT_FALSE(OrderedIndex(100).hasRoomFor(1000));
}

TEST(OrderedIndex, TellsEntriesOfOneHashApartByTheirPosition) {
  OrderedIndex index(12);
  for (U32 position = 0; position < 12; ++position) index.add(7, position);
  for (U32 position = 0; position < 12; ++position) EXPECT_EQ(find(index, 7, position), position);
  EXPECT_EQ(find(index, 7, 12), OrderedIndex::npos);
}

TEST(OrderedIndex, AsksForEntriesOfTheSameHashOnly) {
  OrderedIndex index(4);
  index.add(1, 10);
  index.add(17, 20);  // the same home among sixteen cells
  int asked = 0;
  EXPECT_EQ(index.find(17,
                       [&](U32) {
                         ++asked;
                         return true;
                       }),
            20U);
  EXPECT_EQ(asked, 1);
}

TEST(OrderedIndex, GivesAnEntryAnotherPosition) {
  OrderedIndex index(4);
  index.add(5, 1);
  index.add(5, 2);
  index.move(5, 2, 0);
  EXPECT_EQ(find(index, 5, 2), OrderedIndex::npos);
  EXPECT_EQ(find(index, 5, 0), 0U);
  EXPECT_EQ(find(index, 5, 1), 1U);
}

TEST(OrderedIndex, HashesKeysWithTheSeedOfTheProcess) {
  EXPECT_EQ(OrderedIndex(1).hash(U32{7}), static_cast<U32>(Fwk::hashOf(U32{7}, Fwk::processHashSeed())));
}

/// Hashes that crowd: few of them, at the end of the cells and at their beginning.
TEST(OrderedIndex, KeepsEveryEntryToBeFoundWhileCrowdedOnesComeAndGo) {
  constexpr U32 seed = 5;
  SCOPED_TRACE(seed);
  std::mt19937 generator(seed);
  auto const random = [&](U32 below) { return static_cast<U32>(generator() % below); };
  constexpr U32 members = 48;
  OrderedIndex index(members);
  std::map<U32, U32> hashes;  // by position
  for (int i = 0; i < 200'000; ++i) {
    U32 const position = random(members);
    if (auto const known = hashes.find(position); known != hashes.end()) {
      index.remove(known->second, position);
      ASSERT_EQ(find(index, known->second, position), OrderedIndex::npos);
      hashes.erase(known);
    } else {
      U32 const hash = 0xfffffff8 + random(16);
      index.add(hash, position);
      hashes[position] = hash;
    }
    if (i % 16 == 0)
      for (auto const& [at, hash] : hashes) {
        ASSERT_EQ(find(index, hash, at), at);
      }
  }
}

}  // namespace

#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::LifeTimeHashMap;
using RouterAdvt::U32;

TEST(LifeTimeHashMap, HasOneCollectionOfFlagsByLifetime) {
  AttributeRow const rows[] = {
      {258, LifeTimeHashMap::visitedAttr, "visited", AttributeKind::collection, "bool", nullptr}};
  LifeTimeHashMap map;
  EXPECT_STREQ(LifeTimeHashMap::typeRecord().name, "RouterAdvt::LifeTimeHashMap");
  EXPECT_EQ(LifeTimeHashMap::typeRecord().kind, Fwk::TypeKind::value);
  expectAttributes(LifeTimeHashMap::typeRecord(), {&map, &LifeTimeHashMap::typeRecord()}, rows);
  EXPECT_STREQ(LifeTimeHashMap::typeRecord().attribute("visited")->collection->keyTypeName, "U32");
}

TEST(LifeTimeHashMap, AnAbsentLifetimeReadsAsFalse) {
  LifeTimeHashMap const map;
  EXPECT_FALSE(map.visited(300));
  EXPECT_FALSE(map.visited(0));
  EXPECT_TRUE(map.visited().empty());
}

TEST(LifeTimeHashMap, KeepsWhatWasStoredByLifetime) {
  LifeTimeHashMap map;
  map.visitedIs(300, true);
  map.visitedIs(0, true);
  map.visitedIs(0xffffffff, false);
  EXPECT_TRUE(map.visited(300));
  EXPECT_TRUE(map.visited(0));
  EXPECT_FALSE(map.visited(0xffffffff));
  EXPECT_TRUE(map.visited().contains(0xffffffff));
  EXPECT_FALSE(map.visited(301));
  EXPECT_EQ(map.visited().size(), 3u);
}

TEST(LifeTimeHashMap, AStoredFlagIsOverwritten) {
  LifeTimeHashMap map;
  map.visitedIs(300, true);
  map.visitedIs(300, false);
  EXPECT_FALSE(map.visited(300));
  EXPECT_EQ(map.visited().size(), 1u);
}

TEST(LifeTimeHashMap, DeletingTakesOneOrAllAway) {
  LifeTimeHashMap map;
  for (U32 const lifetime : {1U, 2U, 3U}) map.visitedIs(lifetime, true);
  map.visitedDel(2);
  map.visitedDel(99);
  EXPECT_FALSE(map.visited(2));
  EXPECT_EQ(map.visited().size(), 2u);
  map.visitedDelAll();
  EXPECT_TRUE(map.visited().empty());
}

TEST(LifeTimeHashMap, IsEqualWhenTheEntriesAre) {
  LifeTimeHashMap one, another;
  EXPECT_TRUE(one == another);
  one.visitedIs(300, true);
  EXPECT_FALSE(one == another);
  another.visitedIs(300, false);
  EXPECT_FALSE(one == another);
  another.visitedIs(300, true);
  EXPECT_TRUE(one == another);
  another.visitedIs(600, true);
  EXPECT_FALSE(one == another);
}

TEST(LifeTimeHashMap, NotIsTrueWhenItEqualsADefaultOne) {
  LifeTimeHashMap map;
  EXPECT_TRUE(!map);
  map.visitedIs(300, false);
  EXPECT_FALSE(!map) << "an entry is stored, whatever its flag";
  map.visitedDel(300);
  EXPECT_TRUE(!map);
}

TEST(LifeTimeHashMap, ACopyIsIndependent) {
  LifeTimeHashMap map;
  map.visitedIs(300, true);
  LifeTimeHashMap copy = map;
  copy.visitedIs(600, true);
  EXPECT_FALSE(map.visited(600));
  EXPECT_TRUE(copy.visited(300));
}

TEST(LifeTimeHashMap, HoldsAnyNumberOfLifetimes) {
  LifeTimeHashMap map;
  for (U32 lifetime = 0; lifetime < 1000; ++lifetime) map.visitedIs(lifetime, lifetime % 2 == 0);
  EXPECT_EQ(map.visited().size(), 1000u);
  for (U32 lifetime = 0; lifetime < 1000; ++lifetime) EXPECT_EQ(map.visited(lifetime), lifetime % 2 == 0) << lifetime;
}

}  // namespace

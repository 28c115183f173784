#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Mirror/ChangeStream.h>
#include <tests/RouterPlatform/Mirror/ChangeStreamModel.h>
#include <tests/RouterPlatform/Mirror/StreamText.h>
#include <tests/RouterPlatform/Mirror/TreeText.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Fwk::OctetBuffer;
using Fwk::Ptr;
using Fwk::ChangeStream::Reader;
using Fwk::ChangeStream::ReadErrorKind;
using Fwk::ChangeStream::Source;
using Fwk::ChangeStream::SourceOptions;
using Fwk::ChangeStream::Writer;
using Fwk::ChangeStream::detail::RecordKind;
using StreamText::count;
using testing::ElementsAre;
using testing::IsEmpty;
using TestModel::Bag;
using TestModel::Box;
using TestModel::Change;
using TestModel::changeOf;
using TestModel::Colour;
using TestModel::Ip6Addr;
using TestModel::Ip6AddrWithMask;
using TestModel::Point;
using TestModel::Rack;
using TestModel::Spot;

/// A tree, and a mirror of it in this process.
struct ChangeStream : testing::Test {
  OctetBuffer drain(std::size_t maxOctets = Writer::noLimit) {
    OctetBuffer octets;
    writer.drain(octets, maxOctets);
    return octets;
  }
  /// Brings the mirror up to date and returns what was sent.
  OctetBuffer sync() {
    OctetBuffer const octets = drain();
    EXPECT_TRUE(reader.feed(octets)) << reader.error().text << " at " << reader.error().offset;
    EXPECT_TRUE(reader.synchronized());
    EXPECT_EQ(TreeText::of(mirror), TreeText::of(rack));
    return octets;
  }

  Ptr<Rack> rack = Fwk::create<Rack>("rack");
  Ptr<Rack> mirror = Fwk::create<Rack>("rack");
  Writer writer{rack};
  Reader reader{mirror};
};

void fill(Box& box) {
  box.flagIs(false);
  box.numberIs(4'000'000'000);
  box.smallIs(200);
  box.ratioIs(-0.125);
  box.textIs(std::string("two\0lines\n", 10));
  box.colourIs(Colour::green);
  box.prefixIs(Ip6AddrWithMask("2001:db8::1/64"));
  box.pointIs(Point(1, 2));
  box.portsIs("b")->speedIs(100);
  box.portsIs("a");
  box.labelsIs("k", "v");
  box.labelsIs("", "");
  box.pointsIs(7, Point(3, 4));
  box.addressesIs(Ip6Addr("fe80::2"));
  box.addressesIs(Ip6Addr("fe80::1"));
  box.diskIs("disk");
}

// Each kind of attribute, in a snapshot and as a change.

struct KindRow {
  char const* name;
  std::function<void(Rack&)> before;
  std::function<void(Rack&)> change;
  friend void PrintTo(KindRow const& row, std::ostream* os) { *os << row.name; }
};

void withBox(Rack& rack) { fill(*rack.boxesIs("x")); }
Box& box(Rack& rack) { return *rack.boxes("x"); }
Bag bagOf(Fwk::U32 key) {
  Bag bag;
  bag.marksIs(key, true);
  bag.marksIs(0, false);
  return bag;
}

KindRow const kindRows[] = {
    {"Bool", withBox, [](Rack& r) { box(r).flagIs(true); }},
    {"Integer", withBox, [](Rack& r) { box(r).numberIs(0); }},
    {"SmallInteger", withBox, [](Rack& r) { box(r).smallIs(255); }},
    {"FloatingPoint", withBox, [](Rack& r) { box(r).ratioIs(std::numeric_limits<double>::infinity()); }},
    {"Text", withBox, [](Rack& r) { box(r).textIs(std::string(300, 'x')); }},
    {"Enum", withBox, [](Rack& r) { box(r).colourIs(Colour::red); }},
    {"Prefix", withBox, [](Rack& r) { box(r).prefixIs(Ip6AddrWithMask(Ip6Addr("::1"), 255)); }},
    {"Record", withBox, [](Rack& r) { box(r).pointIs(Point(5, 6)); }},
    {"NewMember", withBox, [](Rack& r) { fill(*r.boxesIs("y")); }},
    {"MemberOfAMember", withBox, [](Rack& r) { box(r).portsIs("c")->speedIs(3); }},
    {"ScalarOfAMemberOfAMember", withBox, [](Rack& r) { box(r).ports("a")->speedIs(3); }},
    {"RemovedMember", withBox, [](Rack& r) { r.boxesDel("x"); }},
    {"MemberRemovedAndAddedAgain",
     [](Rack& r) {
       withBox(r);
       r.boxesIs("y");
     },
     [](Rack& r) {
       r.boxesDel("x");
       r.boxesIs("x")->numberIs(1);
     }},
    {"EveryMemberRemoved",
     [](Rack& r) {
       withBox(r);
       r.boxesIs("y");
     },
     [](Rack& r) { r.boxesDelAll(); }},
    {"NewValue", withBox, [](Rack& r) { box(r).labelsIs("new", "one"); }},
    {"ReplacedValueKeepsItsPlace", withBox, [](Rack& r) { box(r).labelsIs("k", "w"); }},
    {"RemovedValue", withBox, [](Rack& r) { box(r).labelsDel("k"); }},
    {"ValueRemovedAndAddedAgain", withBox,
     [](Rack& r) {
       box(r).labelsDel("k");
       box(r).labelsIs("k", "v");
     }},
    {"ValueRecord", withBox, [](Rack& r) { box(r).pointsIs(7, Point(9, 9)); }},
    {"CollectionInAValueByARecord",
     [](Rack& r) {
       r.bagsIs(Spot(1, 1), bagOf(4));
       r.bagsIs(Spot(1, 2), Bag());
     },
     [](Rack& r) {
       r.bagsIs(Spot(1, 1), bagOf(5));
       r.bagsDel(Spot(1, 2));
       r.bagsIs(Spot(2, 1), bagOf(6));
     }},
    {"NewKeyOfASet", withBox, [](Rack& r) { box(r).addressesIs(Ip6Addr("fe80::3")); }},
    {"RemovedKeyOfASet", withBox, [](Rack& r) { box(r).addressesDel(Ip6Addr("fe80::2")); }},
    {"KeyOfASetRemovedAndAddedAgain", withBox,
     [](Rack& r) {
       box(r).addressesDel(Ip6Addr("fe80::2"));
       box(r).addressesIs(Ip6Addr("fe80::2"));
     }},
    {"NewChild", [](Rack&) {}, [](Rack& r) { fill(*r.topIs("t")); }},
    {"ScalarOfAChild", [](Rack& r) { fill(*r.topIs("t")); }, [](Rack& r) { r.top()->numberIs(1); }},
    {"MemberOfAChild", [](Rack& r) { fill(*r.topIs("t")); }, [](Rack& r) { r.top()->ports("a")->speedIs(1); }},
    {"ChildReplacedByOneOfAnotherName", [](Rack& r) { fill(*r.topIs("t")); }, [](Rack& r) { r.topIs("u"); }},
    {"ChildReplacedByOneOfTheSameName", [](Rack& r) { fill(*r.topIs("t")); },
     [](Rack& r) {
       r.topDel();
       r.topIs("t")->numberIs(2);
     }},
    {"RemovedChild", [](Rack& r) { fill(*r.topIs("t")); }, [](Rack& r) { r.topDel(); }},
};

class ChangeStreamOf : public ChangeStream, public testing::WithParamInterface<KindRow> {};
INSTANTIATE_TEST_SUITE_P(Kinds, ChangeStreamOf, testing::ValuesIn(kindRows));

TEST_P(ChangeStreamOf, IsMirroredByASnapshot) {
  GetParam().before(*rack);
  GetParam().change(*rack);
  sync();
}

TEST_P(ChangeStreamOf, IsMirroredAsAChange) {
  GetParam().before(*rack);
  sync();
  GetParam().change(*rack);
  EXPECT_TRUE(writer.pending());
  OctetBuffer const octets = sync();
  EXPECT_EQ(count(octets, RecordKind::begin), 0);
}

TEST_P(ChangeStreamOf, IsMirroredOctetByOctet) {
  GetParam().before(*rack);
  sync();
  GetParam().change(*rack);
  for (Fwk::U8 const octet : drain()) ASSERT_TRUE(reader.feed({&octet, 1}));
  EXPECT_TRUE(reader.synchronized());
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(rack));
}

TEST_P(ChangeStreamOf, IsMirroredFromTheSmallestDrains) {
  GetParam().before(*rack);
  while (writer.pending()) ASSERT_TRUE(reader.feed(drain(1)));
  GetParam().change(*rack);
  while (writer.pending()) ASSERT_TRUE(reader.feed(drain(1)));
  EXPECT_TRUE(reader.synchronized());
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(rack));
}

TEST_P(ChangeStreamOf, IsMirroredWhenItHappensAnywhereInASnapshot) {
  for (std::size_t steps = 1;; ++steps) {
    auto const original = Fwk::create<Rack>("rack");
    auto const copy = Fwk::create<Rack>("rack");
    GetParam().before(*original);
    Writer stepped(original);
    Reader read(copy);
    OctetBuffer octets;
    for (std::size_t i = 0; i < steps && stepped.pending(); ++i) stepped.drain(octets, 1);
    bool const complete = !stepped.pending();
    GetParam().change(*original);
    stepped.drain(octets);
    ASSERT_TRUE(read.feed(octets)) << steps << ": " << read.error().text;
    ASSERT_EQ(TreeText::of(copy), TreeText::of(original)) << steps;
    if (complete) break;
  }
}

TEST_P(ChangeStreamOf, IsMirroredByTheNextAttachmentAfterACutAtAnyOctet) {
  GetParam().before(*rack);
  OctetBuffer octets = drain();
  GetParam().change(*rack);
  writer.drain(octets);
  for (std::size_t cut = 0; cut < octets.size(); ++cut) {
    auto const copy = Fwk::create<Rack>("rack");
    Reader read(copy);
    ASSERT_TRUE(read.feed(std::span(octets).first(cut))) << cut;
    read.attach();
    EXPECT_FALSE(read.synchronized());
    OctetBuffer again;
    Writer(rack).drain(again);
    ASSERT_TRUE(read.feed(again)) << cut << ": " << read.error().text;
    ASSERT_EQ(TreeText::of(copy), TreeText::of(rack)) << cut;
  }
}

// Coalescing.

TEST_F(ChangeStream, WhatChangedManyTimesIsToldOnce) {
  withBox(*rack);
  sync();
  for (Fwk::U32 i = 0; i < 1000; ++i) box(*rack).numberIs(i);
  EXPECT_THAT(StreamText::lines(sync()), ElementsAre("batch 02", "at 0000020178", "value 02e707", "mark"));
}

TEST_F(ChangeStream, WhatCameAndWentIsToldAsGone) {
  sync();
  rack->boxesIs("x");
  rack->boxesDel("x");
  EXPECT_THAT(StreamText::lines(sync()), ElementsAre("batch 02", "at 00", "removed 000178", "mark"));
}

TEST_F(ChangeStream, ANewMemberIsToldWholeAndItsChangesNotAgain) {
  sync();
  fill(*rack->boxesIs("x"));
  OctetBuffer const octets = sync();
  EXPECT_EQ(count(octets, RecordKind::at), 1);
  EXPECT_EQ(count(octets, RecordKind::member), 4);  // the box, two ports, the disk
  EXPECT_EQ(count(octets, RecordKind::value), 10);  // eight of the box, one of each port
}

TEST_F(ChangeStream, ChangesOfWhatHasGoneAreNotTold) {
  withBox(*rack);
  sync();
  Ptr<Box> const gone = rack->boxes("x");
  gone->numberIs(1);
  rack->boxesDel("x");
  gone->numberIs(2);
  gone->ports("a")->speedIs(2);
  EXPECT_THAT(StreamText::lines(sync()), ElementsAre("batch 02", "at 00", "removed 000178", "mark"));
}

TEST_F(ChangeStream, WhatHasGoneIsNotConfusedWithItsSuccessor) {
  withBox(*rack);
  sync();
  Ptr<Box> const gone = rack->boxes("x");
  rack->boxesDel("x");
  rack->boxesIs("x")->numberIs(5);
  sync();
  gone->numberIs(6);
  gone->portsIs("z");
  sync();
  EXPECT_EQ(mirror->boxes("x")->number(), 5);
}

TEST_F(ChangeStream, NothingIsPendingAfterADrain) {
  EXPECT_TRUE(writer.pending());
  sync();
  EXPECT_FALSE(writer.pending());
  EXPECT_THAT(drain(), IsEmpty());
}

TEST_F(ChangeStream, ADrainHasNoMoreThanARecordAboveItsLimit) {
  withBox(*rack);
  OctetBuffer octets;
  std::size_t given = 0;
  while (writer.pending()) {
    std::size_t const before = octets.size();
    given += writer.drain(octets, 64);
    EXPECT_LE(octets.size() - before, 64 + 600);  // the schema is the longest record here
  }
  EXPECT_EQ(given, octets.size());
  ASSERT_TRUE(reader.feed(octets));
  EXPECT_TRUE(reader.synchronized());
}

TEST_F(ChangeStream, IsNotSynchronizedBetweenTheDrainsThatMakeUpAChange) {
  sync();
  fill(*rack->boxesIs("x"));
  ASSERT_TRUE(reader.feed(drain(20)));
  EXPECT_FALSE(reader.synchronized());
  ASSERT_TRUE(reader.feed(drain()));
  EXPECT_TRUE(reader.synchronized());
}

// Order.

TEST_F(ChangeStream, WhatAnEarlierObserverAddedFirstStandsWhereItStands) {
  auto const tree = Fwk::create<Rack>("rack");
  auto const eager = Fwk::observe(tree, [&](Fwk::Notification const& n) {
    if (n.attr == Rack::boxesAttr && n.key.change() == Fwk::MemberChange::added && tree->boxes().size() < 5)
      tree->boxesIs(tree->boxes().size() % 2 ? "odd" + std::to_string(tree->boxes().size()) : "even");
  });
  Writer late(tree);
  OctetBuffer octets;
  late.drain(octets);
  tree->boxesIs("first");
  late.drain(octets);
  ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
  EXPECT_GT(tree->boxes().size(), 2);
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(tree));
}

TEST_F(ChangeStream, WhatAnEarlierObserverPutBackComesLast) {
  auto const tree = Fwk::create<Rack>("rack");
  auto const undo = Fwk::observe(tree, [&](Fwk::Notification const& n) {
    if (n.key.change() != Fwk::MemberChange::removed) return;
    if (auto const* const name = n.key.as<Fwk::Name>()) tree->boxesIs(*name)->numberIs(77);
    if (auto const* const spot = n.key.as<Spot>()) tree->bagsIs(*spot, Bag());
  });
  Writer late(tree);
  for (char const* const name : {"a", "b", "c"}) tree->boxesIs(name);
  for (Fwk::U32 const x : {1U, 2U, 3U}) tree->bagsIs(Spot(x, x), bagOf(x));
  OctetBuffer octets;
  late.drain(octets);
  tree->boxesDel("a");
  tree->bagsDel(Spot(1, 1));
  late.drain(octets);
  ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
  EXPECT_EQ(tree->boxes("a")->number(), 77);
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(tree));
}

TEST_F(ChangeStream, ADrainWithinANotificationLosesNothing) {
  auto const tree = Fwk::create<Rack>("rack");
  OctetBuffer octets;
  Writer* within = nullptr;
  auto const draining = Fwk::observe(tree, [&](Fwk::Notification const&) {
    if (tree->boxes().size() == 1) tree->boxesIs("second");
    within->drain(octets);
  });
  Writer late(tree);
  within = &late;
  late.drain(octets);
  tree->boxesIs("first");
  tree->boxesIs("third");
  late.drain(octets);
  ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(tree));
}

// Several subscribers.

TEST_F(ChangeStream, SubscribersOfOneSourceGoEachAtTheirPace) {
  Source const source({rack});
  Writer fast(source);
  Writer slow(source);
  auto const slowMirror = Fwk::create<Rack>("rack");
  auto const fastMirror = Fwk::create<Rack>("rack");
  Reader slowReader(slowMirror);
  Reader fastReader(fastMirror);
  auto const pass = [](Writer& from, Reader& to) {
    OctetBuffer octets;
    from.drain(octets);
    ASSERT_TRUE(to.feed(octets)) << to.error().text;
  };
  pass(slow, slowReader);
  for (int i = 0; i < 10; ++i) {
    std::string const name = "box" + std::to_string(i);
    fill(*rack->boxesIs(name));
    pass(fast, fastReader);
    rack->boxes(name)->portsDel("a");
    if (i % 3 == 0) rack->boxesDel(name);
    pass(fast, fastReader);
    ASSERT_EQ(TreeText::of(fastMirror), TreeText::of(rack));
  }
  pass(slow, slowReader);
  EXPECT_EQ(TreeText::of(slowMirror), TreeText::of(rack));
  EXPECT_EQ(slow.overflows(), 0);
  EXPECT_EQ(source.pendingChanges(), 0);
}

TEST_F(ChangeStream, TheOrderIsThatOfTheOriginalThoughAFasterSubscriberHasGone) {
  Source const source({rack});
  Writer slow(source);
  OctetBuffer octets;
  slow.drain(octets);
  {
    Writer fast(source);
    OctetBuffer ignored;
    fast.drain(ignored);
    rack->boxesIs("x");
    fast.drain(ignored);
    box(*rack).labelsIs("first", "");
  }
  box(*rack).labelsIs("second", "");
  slow.drain(octets);
  ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(rack));
}

TEST_F(ChangeStream, NothingIsHeldWithoutSubscribers) {
  Source const source({rack});
  {
    Writer gone(source);
    OctetBuffer octets;
    gone.drain(octets);
    withBox(*rack);
    EXPECT_EQ(source.pendingChanges(), 1);
  }
  EXPECT_EQ(source.pendingChanges(), 0);
  box(*rack).numberIs(3);
  EXPECT_EQ(source.pendingChanges(), 0);
}

TEST_F(ChangeStream, SeveralTreesGoThroughOneStream) {
  auto const second = Fwk::create<Box>("second");
  Source const source({rack, second});
  Writer both(source);
  auto const secondMirror = Fwk::create<Box>("of another name");
  Reader reads(std::vector<Ptr<Fwk::Entity>>{mirror, secondMirror});
  OctetBuffer octets;
  both.drain(octets);
  second->numberIs(9);
  second->portsIs("a");
  rack->topIs("t");
  both.drain(octets);
  second->ports("a")->speedIs(4);
  both.drain(octets);
  ASSERT_TRUE(reads.feed(octets)) << reads.error().text;
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(rack));
  EXPECT_EQ(TreeText::of(secondMirror), TreeText::of(second));
}

TEST_F(ChangeStream, TreesThatTheReaderDoesNotWantArePassedOver) {
  auto const second = Fwk::create<Box>("second");
  Writer both(Source({rack, second}));
  OctetBuffer octets;
  both.drain(octets);
  fill(*second);
  withBox(*rack);
  both.drain(octets);
  second->ports("a")->speedIs(4);
  both.drain(octets);
  ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(rack));
}

TEST_F(ChangeStream, AMirrorCanBeMadeAsTheStreamNamesItsRoots) {
  std::vector<std::string> made;
  Reader makes([&](std::string_view type, std::string_view key) {
    made.push_back(std::string(type) + ' ' + std::string(key));
    return Ptr<Fwk::Entity>(Fwk::create<Rack>(Fwk::Name(key)));
  });
  withBox(*rack);
  OctetBuffer octets = drain();
  ASSERT_TRUE(makes.feed(octets));
  ASSERT_EQ(makes.roots().size(), 1);
  EXPECT_EQ(TreeText::of(makes.roots()[0]), TreeText::of(rack));
  makes.attach();
  writer.restart();
  ASSERT_TRUE(makes.feed(drain()));
  EXPECT_THAT(made, ElementsAre("TestModel::Rack rack"));
}

// Waking a subscriber.

TEST_F(ChangeStream, SaysOnceThatSomethingHasBecomePending) {
  int calls = 0;
  writer.onPendingIs([&] { ++calls; });
  withBox(*rack);
  EXPECT_EQ(calls, 0);  // it has been pending from the start
  sync();
  box(*rack).numberIs(1);
  box(*rack).numberIs(2);
  EXPECT_EQ(calls, 1);
  ASSERT_TRUE(reader.feed(drain(1)));
  box(*rack).numberIs(3);
  EXPECT_EQ(calls, 1);
  sync();
  box(*rack).numberIs(4);
  EXPECT_EQ(calls, 2);
}

TEST_F(ChangeStream, AnUnchangedOrUnstreamedAttributeMakesNothingPending) {
  withBox(*rack);
  sync();
  box(*rack).numberIs(box(*rack).number());
  box(*rack).notify(Box::twiceAttr);
  box(*rack).notify(Box::flagDefaultAttr);
  box(*rack).notify(Fwk::AttrId{9999});
  EXPECT_FALSE(writer.pending());
}

TEST_F(ChangeStream, AllocatesNothingForAChangeAndItsDrainInSteadyState) {
  Source const source({rack});
  Writer steady(source);
  withBox(*rack);
  OctetBuffer octets;
  auto const round = [&](Fwk::U32 i) {
    box(*rack).numberIs(i);
    box(*rack).ports("a")->speedIs(i);
    box(*rack).pointsIs(7, Point(i, i));
    octets.clear();
    steady.drain(octets);
  };
  for (Fwk::U32 i = 1; i < 10; ++i) round(i);
  std::size_t const before = allocationCount();
  for (Fwk::U32 i = 10; i < 1000; ++i) round(i);
  EXPECT_EQ(allocationCount(), before);
}

// Overflow.

struct BoundedChangeStream : ChangeStream {
  static constexpr SourceOptions small{4096};
  Source source{{rack}, small};
  Writer bounded{source};

  void syncBounded() {
    OctetBuffer octets;
    bounded.drain(octets);
    ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
    EXPECT_TRUE(reader.synchronized());
    EXPECT_EQ(TreeText::of(mirror), TreeText::of(rack));
  }
  /// Changes many attributes once.
  void changeALot(Fwk::U32 value) {
    for (auto const& entry : rack->boxes()) entry.value->numberIs(value);
  }
  void SetUp() override {
    for (int i = 0; i < 200; ++i) rack->boxesIs("box" + std::to_string(i));
    syncBounded();
  }
};

TEST_F(BoundedChangeStream, AnOverflowEndsInASnapshot) {
  changeALot(7);
  EXPECT_LE(source.pendingOctets(), small.maxPendingOctets);
  EXPECT_TRUE(bounded.pending());
  rack->boxesDel("box3");
  syncBounded();
  EXPECT_EQ(bounded.overflows(), 1);
  changeALot(7);
  EXPECT_FALSE(bounded.pending());
}

TEST_F(BoundedChangeStream, TheSnapshotNotifiesOnlyOfWhatChanged) {
  changeALot(7);
  rack->boxesDel("box3");
  rack->boxesIs("new");
  std::vector<Change> changes;
  auto const watching = Fwk::observe(mirror, [&](Fwk::Notification const& n) { changes.push_back(changeOf(n)); });
  syncBounded();
  EXPECT_THAT(changes, ElementsAre(Change{Rack::boxesAttr, "box3"}, Change{Rack::boxesAttr, "new"}));
}

TEST_F(BoundedChangeStream, AnOverflowDuringTheSnapshotBeginsItAgain) {
  changeALot(7);
  OctetBuffer octets;
  bounded.drain(octets, 1000);
  ASSERT_TRUE(reader.feed(octets));
  changeALot(8);
  syncBounded();
  EXPECT_EQ(bounded.overflows(), 2);
}

TEST_F(BoundedChangeStream, OneThatFallsBehindDoesNotHoldUpTheOthers) {
  Writer other(source);
  OctetBuffer octets;
  auto const copy = Fwk::create<Rack>("rack");
  Reader reads(copy);
  for (Fwk::U32 round = 0; round < 50; ++round) {
    for (int i = 0; i < 20; ++i)
      rack->boxes("box" + std::to_string((static_cast<int>(round) * 20 + i) % 200))->numberIs(round + 1);
    octets.clear();
    other.drain(octets);
    ASSERT_TRUE(reads.feed(octets));
    EXPECT_LE(source.pendingOctets(), small.maxPendingOctets);
  }
  EXPECT_EQ(other.overflows(), 0);
  EXPECT_EQ(TreeText::of(copy), TreeText::of(rack));
  syncBounded();
  EXPECT_EQ(bounded.overflows(), 1);
}

TEST_F(BoundedChangeStream, NoRoomForEvenOneChangeMeansASnapshotEveryTime) {
  Source const tiny({rack}, SourceOptions{10});
  Writer writes(tiny);
  auto const copy = Fwk::create<Rack>("rack");
  Reader reads(copy);
  for (Fwk::U32 i = 0; i < 3; ++i) {
    rack->boxes("box5")->numberIs(i + 100);
    OctetBuffer octets;
    writes.drain(octets);
    ASSERT_TRUE(reads.feed(octets));
    EXPECT_EQ(TreeText::of(copy), TreeText::of(rack));
  }
  EXPECT_EQ(writes.overflows(), 2);
}

// A snapshot meets a mirror that is not empty.

struct MeetRow {
  char const* name;
  std::vector<char const*> mirror;
  std::vector<char const*> original;
  std::vector<char const*> notified;
  friend void PrintTo(MeetRow const& row, std::ostream* os) { *os << row.name; }
};
class SnapshotOnAMirror : public ChangeStream, public testing::WithParamInterface<MeetRow> {};
INSTANTIATE_TEST_SUITE_P(
    Rows, SnapshotOnAMirror,
    testing::Values(MeetRow{"Equal", {"a", "b", "c"}, {"a", "b", "c"}, {}},
                    MeetRow{"OneMore", {"a", "b"}, {"a", "b", "c"}, {"c"}},
                    MeetRow{"OneLess", {"a", "b", "c"}, {"a", "c"}, {"b"}},
                    MeetRow{"OneMovedToTheEnd", {"a", "b", "c"}, {"b", "c", "a"}, {"a", "a"}},
                    MeetRow{"OneMovedToTheStart", {"a", "b", "c"}, {"c", "a", "b"}, {"a", "b", "a", "b"}},
                    MeetRow{"OneMoreAtTheStart", {"a", "b"}, {"c", "a", "b"}, {"a", "b", "c", "a", "b"}},
                    MeetRow{"NothingInCommon", {"a", "b"}, {"c", "d"}, {"a", "b", "c", "d"}},
                    MeetRow{"NothingLeft", {"a", "b"}, {}, {"a", "b"}},
                    MeetRow{"NothingBefore", {}, {"a", "b"}, {"a", "b"}}));

TEST_P(SnapshotOnAMirror, ChangesAsLittleAsTheOrderAllows) {
  for (char const* const key : GetParam().mirror) mirror->boxesIs(key);
  for (char const* const key : GetParam().original) rack->boxesIs(key);
  std::vector<std::string> notified;
  auto const watching = Fwk::observe(mirror, [&](Fwk::Notification const& n) { notified.push_back(changeOf(n).key); });
  sync();
  EXPECT_THAT(notified, testing::ElementsAreArray(GetParam().notified));
}

TEST_P(SnapshotOnAMirror, IsTheSameForValuesAndSets) {
  auto const mirrorBox = mirror->boxesIs("box");
  auto const original = rack->boxesIs("box");
  Fwk::U32 number = 0;
  for (char const* const key : GetParam().mirror) mirrorBox->labelsIs(key, "old");
  for (char const* const key : GetParam().original) original->labelsIs(key, "old");
  for (char const* const key : GetParam().mirror) mirrorBox->addressesIs(Ip6Addr(std::string("fe80::") + key));
  for (char const* const key : GetParam().original) original->addressesIs(Ip6Addr(std::string("fe80::") + key));
  auto const watching = Fwk::observe(mirrorBox, [&](Fwk::Notification const&) { ++number; });
  sync();
  EXPECT_EQ(number, 2 * GetParam().notified.size());
}

TEST_F(ChangeStream, ASnapshotResetsWhatIsAtItsDefaultInTheOriginal) {
  withBox(*mirror);
  fill(*mirror->topIs("t"));
  rack->boxesIs("x");
  rack->topIs("t");
  sync();
}

TEST_F(ChangeStream, ASnapshotRemovesAChildThatTheOriginalHasNot) {
  mirror->topIs("t");
  sync();
  EXPECT_FALSE(mirror->top());
}

TEST_F(ChangeStream, RestartingTellsEverythingAgainOnAnAttachedReader) {
  withBox(*rack);
  sync();
  rack->boxesDel("x");
  writer.restart();
  reader.attach();
  sync();
  EXPECT_EQ(writer.overflows(), 0);
}

// Memory runs out.

TEST_F(ChangeStream, AChangeWithoutMemoryReachesItsCallerAndTheMirrorLater) {
  for (std::size_t allowed = 0; allowed < 12; ++allowed) {
    auto const tree = Fwk::create<Rack>("rack");
    auto const copy = Fwk::create<Rack>("rack");
    Writer writes(tree);
    Reader reads(copy);
    OctetBuffer octets;
    writes.drain(octets);
    for (int i = 0; i < 3; ++i) {
      try {
        AllocationFailure const failing(allowed);
        fill(*tree->boxesIs("x" + std::to_string(i)));
      } catch (std::bad_alloc const&) {
        // the member was not made
      }
      tree->topIs("t")->numberIs(static_cast<Fwk::U32>(i));
    }
    writes.drain(octets);
    ASSERT_TRUE(reads.feed(octets)) << reads.error().text;
    EXPECT_EQ(TreeText::of(copy), TreeText::of(tree)) << allowed;
  }
}

TEST_F(ChangeStream, ADrainWithoutMemoryBeginsTheStreamAnew) {
  withBox(*rack);
  for (std::size_t allowed = 0; allowed < 12; ++allowed) {
    OctetBuffer octets;
    try {
      AllocationFailure const failing(allowed);
      writer.drain(octets);
    } catch (std::bad_alloc const&) {
      EXPECT_THAT(octets, IsEmpty());
      writer.drain(octets);
    }
    reader.attach();
    ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
    EXPECT_EQ(TreeText::of(mirror), TreeText::of(rack));
    writer.restart();
  }
}

// Lifetimes.

TEST_F(ChangeStream, AWriterKeepsTheTreeAlive) {
  Fwk::S64 const before = Rack::typeRecord().liveCount->value();
  {
    Writer keeps(Fwk::create<Rack>("other"));
    EXPECT_EQ(Rack::typeRecord().liveCount->value(), before + 1);
    OctetBuffer octets;
    keeps.drain(octets);
  }
  EXPECT_EQ(Rack::typeRecord().liveCount->value(), before);
}

TEST_F(ChangeStream, WhatIsRemovedEndsAsEver) {
  Fwk::S64 const before = Box::typeRecord().liveCount->value();
  withBox(*rack);
  sync();
  box(*rack).numberIs(9);
  rack->boxesDel("x");
  EXPECT_EQ(Box::typeRecord().liveCount->value(), before + 1);  // the mirror's
  sync();
  EXPECT_EQ(Box::typeRecord().liveCount->value(), before);
}

TEST(ChangeStreamSource, HasAtMost64Trees) {
  std::vector<Ptr<Fwk::Entity>> const roots(65, Fwk::create<Rack>("rack"));
  EXPECT_THROW(Source{roots}, std::length_error);
}

}  // namespace

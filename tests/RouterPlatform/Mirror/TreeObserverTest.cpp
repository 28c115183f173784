#include <RouterPlatform/Mirror/TreeAssign.h>
#include <RouterPlatform/Mirror/TreeObserver.h>
#include <tests/RouterPlatform/Mirror/ChangeStreamModel.h>

#include <gmock/gmock.h>

namespace {

using Fwk::Ptr;
using Fwk::TreeObserver;
using testing::ElementsAre;
using testing::IsEmpty;
using TestModel::Box;
using TestModel::Port;
using TestModel::Rack;

/// A rack with one box, observed; the call-back counts.
struct TreeObserverTest : testing::Test {
  Ptr<Rack> const rack = Fwk::create<Rack>("rack");
  Ptr<Box> const box = rack->boxesIs("a");
  int woken = 0;
  TreeObserver observer{rack, [this] { ++woken; }};

  /// A change as a line: `rack/boxes[a] number`, or with a key `rack boxes[a]`.
  static std::string textOf(TreeObserver::Change const& change) {
    std::string text = change.entity->fullName() + ' ' + change.entity->fwkType().attribute(change.attr)->name;
    if (change.keyOctets.empty()) return text;
    if (auto const name = change.key<Fwk::Name>()) text += '[' + name->toString() + ']';
    return text;
  }
  std::vector<std::string> take() {
    TreeObserver::Batch const batch = observer.take();
    EXPECT_FALSE(batch.everything);
    std::vector<std::string> lines;
    for (auto const& change : batch.changes) lines.push_back(textOf(change));
    return lines;
  }
};

TEST_F(TreeObserverTest, BeginsWithNothing) {
  EXPECT_FALSE(observer.pending());
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_EQ(woken, 0);
}

TEST_F(TreeObserverTest, HearsOfEachEntityOfTheTree) {
  box->numberIs(7);
  box->portsIs("E1")->speedIs(5);
  rack->topIs("top");
  EXPECT_TRUE(observer.pending());
  EXPECT_THAT(take(), ElementsAre("rack/boxes[a] number", "rack/boxes[a] ports[E1]", "rack top"));
  EXPECT_FALSE(observer.pending());
}

TEST_F(TreeObserverTest, AnAttributeThatChangesTwiceIsInABatchOnce) {
  box->numberIs(7);
  box->numberIs(8);
  EXPECT_THAT(take(), ElementsAre("rack/boxes[a] number"));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(TreeObserverTest, WakesOncePerBatch) {
  box->numberIs(7);
  box->textIs("x");
  EXPECT_EQ(woken, 1);
  observer.take();
  EXPECT_EQ(woken, 1);
  box->numberIs(8);
  EXPECT_EQ(woken, 2);
}

TEST_F(TreeObserverTest, ANewEntityIsFilledWhenItsBatchIsTakenAndIsInItOnce) {
  Ptr<Box> const made = rack->boxesIs("b");
  made->numberIs(7);
  made->portsIs("E1")->speedIs(5);
  EXPECT_THAT(take(), ElementsAre("rack boxes[b]"));
  made->ports("E1")->speedIs(6);
  EXPECT_THAT(take(), ElementsAre("rack/boxes[b]/ports[E1] speed"));
}

TEST_F(TreeObserverTest, AssigningATreeGivesOneBatchWithWholeMembers) {
  auto const fresh = Fwk::create<Rack>("rack");
  fresh->boxesIs("a")->numberIs(7);
  fresh->boxesIs("b")->numberIs(8);
  Fwk::assignTree(fresh, rack);
  EXPECT_EQ(woken, 1);
  EXPECT_THAT(take(), ElementsAre("rack/boxes[a] number", "rack boxes[b]"));
  EXPECT_EQ(rack->boxes("b")->number(), 8u);
}

TEST_F(TreeObserverTest, FeedingAMirrorGivesOneBatchWithWholeMembers) {
  auto const original = Fwk::create<Rack>("rack");
  Fwk::ChangeStream::Writer writer(original);
  Fwk::ChangeStream::Reader reader(rack);
  original->boxesIs("a")->flagIs(!box->flag());
  original->boxesIs("b")->numberIs(8);
  Fwk::OctetBuffer octets;
  writer.drain(octets);
  ASSERT_TRUE(reader.feed(octets));
  EXPECT_EQ(woken, 1);
  EXPECT_THAT(take(), ElementsAre("rack/boxes[a] flag", "rack boxes[b]"));
  EXPECT_EQ(rack->boxes("b")->number(), 8u);
}

TEST_F(TreeObserverTest, OfARemovedEntityThereIsItsRemovalAlone) {
  box->numberIs(7);
  rack->boxesDel("a");
  box->numberIs(8);
  EXPECT_THAT(take(), ElementsAre("rack boxes[a]"));
  EXPECT_FALSE(rack->boxes("a"));
  box->numberIs(9);
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(TreeObserverTest, AMemberThatIsRemovedAndAddedAgainIsOneChangeAndObservedAnew) {
  rack->boxesDel("a");
  Ptr<Box> const again = rack->boxesIs("a");
  again->numberIs(7);
  EXPECT_THAT(take(), ElementsAre("rack boxes[a]"));
  again->numberIs(8);
  EXPECT_THAT(take(), ElementsAre("rack/boxes[a] number"));
}

TEST_F(TreeObserverTest, AValueThatIsReplacedAndRemovedIsOneChange) {
  box->labelsIs("x", "1");
  observer.take();
  box->labelsIs("x", "2");
  box->labelsDel("x");
  TreeObserver::Batch const batch = observer.take();
  ASSERT_EQ(batch.changes.size(), 1u);
  EXPECT_EQ(batch.changes[0].key<Fwk::String>(), "x");
}

TEST_F(TreeObserverTest, AKeyOfAnotherTypeIsNone) {
  box->addressesIs(Net::Ip6Addr("fe80::1"));
  TreeObserver::Batch const batch = observer.take();
  ASSERT_EQ(batch.changes.size(), 1u);
  EXPECT_EQ(batch.changes[0].key<Net::Ip6Addr>(), Net::Ip6Addr("fe80::1"));
  EXPECT_FALSE(batch.changes[0].key<Fwk::Name>());
}

TEST_F(TreeObserverTest, ChangesWhileABatchIsGoneThroughAreInTheNextOne) {
  box->numberIs(7);
  for (auto const& change : observer.take().changes)
    if (change.attr == Box::numberAttr) rack->boxesDel("a");
  EXPECT_EQ(woken, 2);
  EXPECT_THAT(take(), ElementsAre("rack boxes[a]"));
}

TEST_F(TreeObserverTest, ATreeThatEndsBeforeTheBatchIsTakenLeavesItsRemoval) {
  Ptr<Rack> const other = Fwk::create<Rack>("other");
  other->boxesIs("b")->portsIs("E1");
  TreeObserver ofOther(other);
  other->boxes("b")->ports("E1")->speedIs(5);
  other->boxesDel("b");  // and ends, with its port
  auto const changes = ofOther.take().changes;
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(textOf(changes[0]), "other boxes[b]");
}

TEST_F(TreeObserverTest, KeepsTheTreeAndEndsBeforeIt) {
  auto other = Fwk::create<Rack>("other");
  Rack& kept = *other;
  {
    TreeObserver ofOther(std::move(other));
    kept.boxesIs("b");
    EXPECT_TRUE(ofOther.pending());
  }
  { TreeObserver const shorter(rack); }
  box->numberIs(7);
  EXPECT_THAT(take(), ElementsAre("rack/boxes[a] number"));
}

TEST_F(TreeObserverTest, WhatCannotBeHeldIsABatchOfEverythingAndTheNextOneIsExact) {
  TreeObserver small(rack, {}, {.maxPendingOctets = 500});
  for (char const* const key : {"b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m"}) rack->boxesIs(key);
  EXPECT_TRUE(small.pending());
  TreeObserver::Batch const lost = small.take();
  EXPECT_TRUE(lost.everything);
  EXPECT_THAT(lost.changes, IsEmpty());
  EXPECT_FALSE(small.pending());
  rack->boxes("m")->numberIs(7);
  TreeObserver::Batch const next = small.take();
  EXPECT_FALSE(next.everything);
  ASSERT_EQ(next.changes.size(), 1u);
  EXPECT_EQ(textOf(next.changes[0]), "rack/boxes[m] number");
}

}  // namespace

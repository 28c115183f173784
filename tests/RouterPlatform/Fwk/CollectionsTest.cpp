#include <RouterPlatform/Fwk/Collections.h>
#include <RouterPlatform/Fwk/Observe.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Fwk::Notification;
using Fwk::observe;
using Fwk::Ptr;
using Fwk::Subscription;
using Net::IntfId;
using Net::Ip6Addr;
using testing::ElementsAre;
using testing::IsEmpty;
using TestModel::Box;
using TestModel::Change;
using TestModel::Disk;
using TestModel::Point;
using TestModel::Port;

/// A box whose changes are written down.
class Collections : public testing::Test {
 protected:
  Collections() {
    subscription_ = observe(box_, [this](Notification const& n) {
      changes_.push_back(TestModel::changeOf(n));
      if (then_) then_(n);
    });
  }
  /// What was notified since the last call.
  std::vector<Change> changes() { return std::exchange(changes_, {}); }
  std::vector<std::string> portKeys() const {
    std::vector<std::string> keys;
    for (auto const& [key, port] : box_->ports()) keys.push_back(key.toString());
    return keys;
  }

  Ptr<Box> box_ = Fwk::create<Box>("box");
  std::function<void(Notification const&)> then_;
  std::vector<Change> changes_;
  Subscription subscription_;
};

class EntityCollection : public Collections {};
class ValueCollection : public Collections {};
class ValueSet : public Collections {};
class OwnedChild : public Collections {};

Change const ports(std::string key) { return {Box::portsAttr, std::move(key)}; }

TEST_F(Collections, ANotificationSaysWhatBecameOfTheMember) {
  std::vector<Fwk::MemberChange> changes;
  then_ = [&](Notification const& n) { changes.push_back(n.key.change()); };
  using Fwk::MemberChange;
  box_->portsIs("a");
  box_->portsDel("a");
  EXPECT_THAT(std::exchange(changes, {}), ElementsAre(MemberChange::added, MemberChange::removed));
  box_->labelsIs("k", "v");
  box_->labelsIs("k", "w");
  box_->labelsDel("k");
  EXPECT_THAT(std::exchange(changes, {}),
              ElementsAre(MemberChange::added, MemberChange::replaced, MemberChange::removed));
  box_->addressesIs(Ip6Addr("::1"));
  box_->addressesDel(Ip6Addr("::1"));
  EXPECT_THAT(std::exchange(changes, {}), ElementsAre(MemberChange::added, MemberChange::removed));
}

TEST_F(Collections, TheLastKeyIsThatOfTheMemberThatCameLast) {
  EXPECT_EQ(box_->ports().lastKey(), nullptr);
  EXPECT_EQ(box_->labels().lastKey(), nullptr);
  EXPECT_EQ(box_->addresses().lastKey(), nullptr);
  for (char const* const name : {"a", "b", "c"}) {
    box_->portsIs(name);
    box_->labelsIs(name, name);
    box_->addressesIs(Ip6Addr(std::string("fe80::") + name));
  }
  box_->portsDel("c");
  box_->labelsDel("c");
  box_->addressesDel(Ip6Addr("fe80::c"));
  EXPECT_EQ(*box_->ports().lastKey(), "b");
  EXPECT_EQ(*box_->labels().lastKey(), "b");
  EXPECT_EQ(*box_->addresses().lastKey(), Ip6Addr("fe80::b"));
}

TEST_F(EntityCollection, ANewKeyMakesAMemberWithDefaultsAndAParentAndNotifiesTheKey) {
  Ptr<Port> const port = box_->portsIs("Ethernet1");
  EXPECT_EQ(port->intfId(), "Ethernet1");
  EXPECT_EQ(port->speed(), 0U);
  EXPECT_EQ(port->parent(), box_);
  EXPECT_TRUE(port->hasNotificationActive());
  EXPECT_EQ(port->references(), 2U);
  EXPECT_THAT(changes(), ElementsAre(ports("Ethernet1")));
}

TEST_F(EntityCollection, AKeyThatIsThereGivesTheSameMemberAndNotifiesNobody) {
  Ptr<Port> const port = box_->portsIs("Ethernet1");
  port->speedIs(10);
  changes();
  EXPECT_EQ(box_->portsIs("Ethernet1"), port);
  EXPECT_EQ(box_->ports("Ethernet1"), port);
  EXPECT_EQ(port->speed(), 10U);
  EXPECT_EQ(port->parentChanges, 1);
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(EntityCollection, AMissingKeyGivesNull) {
  EXPECT_EQ(box_->ports("Ethernet1"), nullptr);
  EXPECT_EQ(box_->ports().find("Ethernet1"), nullptr);
  EXPECT_FALSE(box_->ports().contains("Ethernet1"));
  EXPECT_TRUE(box_->ports().empty());
}

TEST_F(EntityCollection, TheObserverOfANewMemberFindsItInPlaceWithItsParent) {
  Ptr<Port> seen;
  then_ = [&](Notification const& n) {
    ASSERT_NE(n.key.as<IntfId>(), nullptr);
    seen = box_->ports(*n.key.as<IntfId>());
  };
  box_->portsIs("Ethernet1");
  ASSERT_TRUE(seen);
  EXPECT_EQ(seen->parent(), box_);
}

TEST_F(EntityCollection, TheParentIsSetBeforeTheOwnerNotifies) {
  int parentChanges = 0;
  then_ = [&](Notification const&) { parentChanges = box_->ports("Ethernet1")->parentChanges; };
  box_->portsIs("Ethernet1");
  EXPECT_EQ(parentChanges, 1);
}

TEST_F(EntityCollection, DeletingGivesTheMemberWhichLivesOnWithoutAParent) {
  Ptr<Port> const port = box_->portsIs("Ethernet1");
  port->speedIs(10);
  changes();
  EXPECT_EQ(box_->portsDel("Ethernet1"), port);
  EXPECT_EQ(port->parent(), nullptr);
  EXPECT_EQ(port->speed(), 10U);
  EXPECT_EQ(port->intfId(), "Ethernet1");
  EXPECT_EQ(port->references(), 1U);
  EXPECT_THAT(changes(), ElementsAre(ports("Ethernet1")));
}

TEST_F(EntityCollection, DeletingAMissingKeyGivesNullAndNotifiesNobody) {
  EXPECT_EQ(box_->portsDel("Ethernet1"), nullptr);
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(EntityCollection, TheObserverOfADeletionFindsTheMemberGoneAndOrphaned) {
  Ptr<Port> const port = box_->portsIs("Ethernet1");
  bool seen = false;
  then_ = [&](Notification const&) {
    seen = true;
    EXPECT_EQ(box_->ports("Ethernet1"), nullptr);
    EXPECT_EQ(port->parent(), nullptr);
  };
  box_->portsDel("Ethernet1");
  EXPECT_TRUE(seen);
}

TEST_F(EntityCollection, ADeletedMemberThatNobodyHoldsEnds) {
  Fwk::S64 const alive = Port::typeRecord().liveCount->value();
  box_->portsIs("Ethernet1");
  box_->portsDel("Ethernet1");
  EXPECT_EQ(Port::typeRecord().liveCount->value(), alive);
}

TEST_F(EntityCollection, AMemberMadeAgainIsANewOne) {
  Ptr<Port> const former = box_->portsIs("Ethernet1");
  box_->portsDel("Ethernet1");
  EXPECT_NE(box_->portsIs("Ethernet1"), former);
}

TEST_F(EntityCollection, DeletingAllNotifiesEachKeyInOrder) {
  for (char const* const key : {"Ethernet2", "Ethernet1", "Ethernet3"}) box_->portsIs(key);
  changes();
  box_->portsDelAll();
  EXPECT_THAT(changes(), ElementsAre(ports("Ethernet2"), ports("Ethernet1"), ports("Ethernet3")));
  EXPECT_TRUE(box_->ports().empty());
  box_->portsDelAll();
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(EntityCollection, DeletingAllEndsWhenAnObserverAddsMembersBack) {
  for (char const* const key : {"Ethernet1", "Ethernet2", "Ethernet3"}) box_->portsIs(key);
  then_ = [&](Notification const& n) {
    IntfId const key = *n.key.as<IntfId>();
    if (!box_->ports().contains(key)) box_->portsIs(key);
  };
  changes();
  box_->portsDelAll();
  EXPECT_THAT(changes(), ElementsAre(ports("Ethernet1"), ports("Ethernet1"), ports("Ethernet2"), ports("Ethernet2"),
                                     ports("Ethernet3"), ports("Ethernet3")));
  EXPECT_EQ(box_->ports().size(), 3U);
}

TEST_F(EntityCollection, DeletingAllInsideDeletingAllNotifiesEachKeyOnce) {
  for (char const* const key : {"Ethernet1", "Ethernet2", "Ethernet3"}) box_->portsIs(key);
  then_ = [&](Notification const&) { box_->portsDelAll(); };
  changes();
  box_->portsDelAll();
  EXPECT_THAT(changes(), ElementsAre(ports("Ethernet1"), ports("Ethernet2"), ports("Ethernet3")));
}

TEST_F(EntityCollection, DeletesByTheKeyInsideTheMemberItself) {
  box_->portsIs("Ethernet1");
  IntfId const& own = box_->ports().find("Ethernet1")->key();
  box_->portsDel(own);
  EXPECT_THAT(changes(), ElementsAre(ports("Ethernet1"), ports("Ethernet1")));
}

TEST_F(EntityCollection, AMemberWhoseConstructorThrowsLeavesNothingBehind) {
  Fwk::S64 const alive = Port::typeRecord().liveCount->value();
  EXPECT_THROW(box_->portsIs("broken"), std::runtime_error);
  EXPECT_TRUE(box_->ports().empty());
  EXPECT_THAT(changes(), IsEmpty());
  EXPECT_EQ(Port::typeRecord().liveCount->value(), alive);
}

TEST_F(EntityCollection, WithoutMemoryNothingChanges) {
  for (int i = 0; i < 8; ++i) box_->portsIs("Ethernet" + std::to_string(i));  // the next one needs room and an index
  Fwk::S64 const alive = Port::typeRecord().liveCount->value();
  changes();
  subscription_.cancel();
  for (std::size_t allowed = 0;; ++allowed) {
    bool thrown = false;
    try {
      AllocationFailure const failure(allowed);
      box_->portsIs("Ethernet8");
    } catch (std::bad_alloc const&) {
      thrown = true;
    }
    if (!thrown) break;
    ASSERT_EQ(box_->ports().size(), 8U);
    ASSERT_EQ(Port::typeRecord().liveCount->value(), alive);
  }
  EXPECT_EQ(box_->ports("Ethernet8")->parent(), box_);
}

TEST_F(EntityCollection, IsWalkedInTheOrderOfInsertion) {
  for (char const* const key : {"Ethernet3", "Ethernet1", "Ethernet2"}) box_->portsIs(key);
  box_->portsDel("Ethernet3");
  box_->portsIs("Ethernet3");
  EXPECT_THAT(portKeys(), ElementsAre("Ethernet1", "Ethernet2", "Ethernet3"));
  std::vector<std::string> frozen;
  for (Port const& port : box_->ports().frozen()) frozen.push_back(port.intfId().toString());
  EXPECT_EQ(frozen, portKeys());
}

TEST_F(EntityCollection, MayChangeWhileItIsWalked) {
  for (int i = 0; i < 20; ++i) box_->portsIs(std::to_string(i));
  std::vector<std::string> seen;
  for (auto const& [key, port] : box_->ports()) {
    seen.push_back(key.toString());
    if (key == "3") {
      box_->portsDelAll();
      box_->portsIs("new");
    }
    EXPECT_EQ(port->intfId(), key);  // what is walked is kept
  }
  EXPECT_THAT(seen, ElementsAre("0", "1", "2", "3"));
  EXPECT_THAT(portKeys(), ElementsAre("new"));
}

TEST_F(EntityCollection, MayEndWhileItIsWalked) {
  for (char const* const key : {"Ethernet1", "Ethernet2"}) box_->portsIs(key);
  subscription_.cancel();
  std::vector<std::string> seen;
  for (auto const& [key, port] : box_->ports()) {
    box_ = nullptr;
    seen.push_back(key.toString());
    EXPECT_EQ(port->parent(), nullptr);
  }
  EXPECT_THAT(seen, ElementsAre("Ethernet1"));
}

TEST_F(EntityCollection, HoldsManyMembers) {
  for (int i = 0; i < 10'000; ++i) box_->portsIs(std::to_string(i));
  EXPECT_EQ(box_->ports().size(), 10'000U);
  for (int i = 0; i < 10'000; i += 2) ASSERT_TRUE(box_->portsDel(std::to_string(i)));
  for (int i = 0; i < 10'000; ++i) ASSERT_EQ(box_->ports().contains(std::to_string(i)), i % 2 == 1) << i;
  EXPECT_EQ(portKeys().size(), 5'000U);
}

Change const labels(std::string key) { return {Box::labelsAttr, std::move(key)}; }

TEST_F(ValueCollection, StoresAValueAndNotifiesTheKey) {
  box_->labelsIs("a", "1");
  EXPECT_EQ(box_->labels("a"), "1");
  EXPECT_EQ(*box_->labels().find("a"), "1");
  EXPECT_THAT(changes(), ElementsAre(labels("a")));
}

TEST_F(ValueCollection, AnEqualValueNotifiesNobody) {
  box_->labelsIs("a", "1");
  changes();
  box_->labelsIs("a", "1");
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ValueCollection, AnotherValueReplacesAndNotifies) {
  box_->labelsIs("a", "1");
  box_->labelsIs("b", "1");
  changes();
  std::string seen;
  then_ = [&](Notification const& n) { seen = box_->labels(*n.key.as<Fwk::String>()); };
  box_->labelsIs("a", "2");
  EXPECT_EQ(seen, "2");
  EXPECT_THAT(changes(), ElementsAre(labels("a")));
  std::string order;
  for (auto const& [key, value] : box_->labels()) order += key + value + ' ';
  EXPECT_EQ(order, "a2 b1 ");
}

TEST_F(ValueCollection, StoringTheDefaultValueUnderANewKeyIsAChange) {
  box_->labelsIs("a", "");
  EXPECT_TRUE(box_->labels().contains("a"));
  EXPECT_THAT(changes(), ElementsAre(labels("a")));
}

TEST_F(ValueCollection, AMissingKeyReadsAsTheDefaultValue) {
  EXPECT_EQ(box_->labels("a"), "");
  EXPECT_EQ(box_->labels().find("a"), nullptr);
  EXPECT_EQ(box_->points().member(5), Point());
}

TEST_F(ValueCollection, DeletingGivesTheValueAndNotifiesAfterwards) {
  box_->labelsIs("a", "1");
  changes();
  bool there = true;
  then_ = [&](Notification const&) { there = box_->labels().contains("a"); };
  EXPECT_EQ(box_->labelsDel("a"), "1");
  EXPECT_FALSE(there);
  EXPECT_THAT(changes(), ElementsAre(labels("a")));
}

TEST_F(ValueCollection, DeletingAMissingKeyGivesTheDefaultAndNotifiesNobody) {
  EXPECT_EQ(box_->labelsDel("a"), "");
  EXPECT_EQ(box_->pointsDel(1), Point());
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ValueCollection, DeletingAllNotifiesEachKeyAndEndsWhenValuesComeBack) {
  for (char const* const key : {"b", "a"}) box_->labelsIs(key, "1");
  then_ = [&](Notification const& n) {
    if (auto const& key = *n.key.as<Fwk::String>(); !box_->labels().contains(key)) box_->labelsIs(key, "again");
  };
  changes();
  box_->labelsDelAll();
  EXPECT_THAT(changes(), ElementsAre(labels("b"), labels("b"), labels("a"), labels("a")));
  EXPECT_EQ(box_->labels("a"), "again");
  then_ = nullptr;
  box_->labelsDelAll();
  EXPECT_TRUE(box_->labels().empty());
}

TEST_F(ValueCollection, NotifiesAKeyThatTheCallerReadInIt) {
  std::string const key(60, 'k');
  box_->labelsIs(key, "1");
  then_ = [&](Notification const&) {
    if (!box_->labels().contains(key)) return;
    box_->labelsDel(key);
    for (int i = 0; i < 64; ++i) box_->labelsIs(std::to_string(i), "other");
  };
  std::string told;
  Subscription const later = observe(box_, [&](Notification const& n) { told = TestModel::changeOf(n).key; });
  box_->labelsIs(*box_->labels().lastKey(), "2");
  EXPECT_EQ(told, key);
}

TEST_F(ValueCollection, NotifiesAKeyThatTheCallerReadInAValueOfIt) {
  std::string const key(60, 'k');
  box_->labelsIs("a", key);
  changes();
  while (box_->labels().size() < 4) box_->labelsIs(std::to_string(box_->labels().size()), "");
  changes();
  box_->labelsIs(*box_->labels().find("a"), "1");  // the fifth member: the storage moves
  EXPECT_THAT(changes(), ElementsAre(labels(key)));
}

TEST_F(ValueCollection, DeletingAllAllocatesNothing) {
  for (char const c : {'a', 'b', 'c'}) box_->labelsIs(std::string(60, c), std::string(60, c));
  subscription_.cancel();
  int told = 0;
  subscription_ = observe(box_, [&](Notification const&) { ++told; });
  {
    AllocationFailure const failure(0);
    box_->labelsDelAll();
  }
  EXPECT_EQ(told, 3);
  EXPECT_TRUE(box_->labels().empty());
}

TEST_F(ValueCollection, MayChangeOrEndWhileItIsWalked) {
  for (char const* const key : {"a", "b", "c"}) box_->labelsIs(key, key);
  subscription_.cancel();
  std::string seen;
  for (auto const& [key, value] : box_->labels()) {
    if (key == "a") {
      box_->labelsDel("b");
      box_->labelsIs("d", "d");
    }
    if (key == "c") box_ = nullptr;
    seen += key + value;
  }
  EXPECT_EQ(seen, "aacc");
}

TEST_F(ValueCollection, HoldsValueRecords) {
  box_->pointsIs(7, Point(1, 2));
  EXPECT_EQ(box_->points().member(7), Point(1, 2));
  box_->pointsIs(7, Point(1, 2));
  EXPECT_THAT(changes(), ElementsAre(Change{Box::pointsAttr, "7"}));
  EXPECT_EQ(box_->pointsDel(7), Point(1, 2));
}

Change const addresses(std::string key) { return {Box::addressesAttr, std::move(key)}; }

TEST_F(ValueSet, AddsAKeyOnceAndNotifiesIt) {
  box_->addressesIs(Ip6Addr("2001:db8::1"));
  box_->addressesIs(Ip6Addr("2001:db8::1"));
  EXPECT_TRUE(box_->addresses().member(Ip6Addr("2001:db8::1")));
  EXPECT_EQ(box_->addresses().size(), 1U);
  EXPECT_THAT(changes(), ElementsAre(addresses("2001:db8::1")));
}

TEST_F(ValueSet, DeletingTellsWhetherTheKeyWasThere) {
  box_->addressesIs(Ip6Addr("2001:db8::1"));
  changes();
  EXPECT_TRUE(box_->addressesDel(Ip6Addr("2001:db8::1")));
  EXPECT_FALSE(box_->addressesDel(Ip6Addr("2001:db8::1")));
  EXPECT_TRUE(box_->addresses().empty());
  EXPECT_THAT(changes(), ElementsAre(addresses("2001:db8::1")));
}

TEST_F(ValueSet, IsWalkedInOrderAndMayChangeMeanwhile) {
  for (char const* const text : {"::3", "::1", "::2"}) box_->addressesIs(Ip6Addr(text));
  std::vector<std::string> seen;
  for (Ip6Addr const address : box_->addresses()) {
    seen.push_back(address.toString());
    box_->addressesDel(Ip6Addr("::1"));
    box_->addressesIs(Ip6Addr("::4"));
  }
  EXPECT_THAT(seen, ElementsAre("::3", "::2"));
  std::vector<std::string> frozen;
  for (Ip6Addr const& address : box_->addresses().frozen()) frozen.push_back(address.toString());
  EXPECT_THAT(frozen, ElementsAre("::3", "::2", "::4"));
}

TEST_F(ValueSet, DeletingAllNotifiesEachKeyAndEndsWhenKeysComeBack) {
  for (char const* const text : {"::2", "::1"}) box_->addressesIs(Ip6Addr(text));
  changes();
  then_ = [&](Notification const& n) { box_->addressesIs(*n.key.as<Ip6Addr>()); };
  box_->addressesDelAll();
  EXPECT_THAT(changes(), ElementsAre(addresses("::2"), addresses("::2"), addresses("::1"), addresses("::1")));
  then_ = nullptr;
  box_->addressesDelAll();
  EXPECT_TRUE(box_->addresses().empty());
}

Change const disk() { return {Box::diskAttr, ""}; }

TEST_F(OwnedChild, IsNullAtFirstAndMadeByName) {
  EXPECT_EQ(box_->disk(), nullptr);
  Ptr<Disk> const made = box_->diskIs("root");
  EXPECT_EQ(made->name(), "root");
  EXPECT_EQ(made->parent(), box_);
  EXPECT_EQ(made->parentAttrName(), "disk");
  EXPECT_EQ(box_->disk(), made);
  EXPECT_THAT(changes(), ElementsAre(disk()));
}

TEST_F(OwnedChild, TheNameItHasKeepsItAndNotifiesNobody) {
  Ptr<Disk> const made = box_->diskIs("root");
  changes();
  EXPECT_EQ(box_->diskIs("root"), made);
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(OwnedChild, AnotherNameReplacesItAndTheOldOneLosesItsParent) {
  Ptr<Disk> const old = box_->diskIs("root");
  changes();
  Ptr<Disk> seen;
  then_ = [&](Notification const& n) {
    EXPECT_FALSE(n.key);
    EXPECT_EQ(old->parent(), nullptr);
    seen = box_->disk();
  };
  Ptr<Disk> const made = box_->diskIs("spare");
  EXPECT_NE(made, old);
  EXPECT_EQ(seen, made);
  EXPECT_EQ(made->parent(), box_);
  EXPECT_EQ(old->parent(), nullptr);
  EXPECT_EQ(old->name(), "root");
  EXPECT_THAT(changes(), ElementsAre(disk()));
}

TEST_F(OwnedChild, DeletingEmptiesTheAttributeAndGivesTheChild) {
  Ptr<Disk> const made = box_->diskIs("root");
  changes();
  EXPECT_EQ(box_->diskDel(), made);
  EXPECT_EQ(box_->disk(), nullptr);
  EXPECT_EQ(made->parent(), nullptr);
  EXPECT_THAT(changes(), ElementsAre(disk()));
  EXPECT_EQ(box_->diskDel(), nullptr);
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(OwnedChild, AChildWhoseConstructorThrowsLeavesTheOldOneInPlace) {
  Ptr<Disk> const old = box_->diskIs("root");
  changes();
  EXPECT_THROW(box_->diskIs("broken"), std::runtime_error);
  EXPECT_EQ(box_->disk(), old);
  EXPECT_EQ(old->parent(), box_);
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(OwnedChild, LosesItsParentWhenTheOwnerEnds) {
  Ptr<Disk> const made = box_->diskIs("root");
  subscription_.cancel();
  box_ = nullptr;
  EXPECT_EQ(made->parent(), nullptr);
  EXPECT_EQ(made->references(), 1U);
}

}  // namespace

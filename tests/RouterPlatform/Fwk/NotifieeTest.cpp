#include <RouterPlatform/Fwk/Notifiee.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using Fwk::Notification;
using Fwk::Notifiee;
using Fwk::Ptr;
using testing::ElementsAre;
using testing::IsEmpty;
using TestModel::Box;

/// Writes its name down when it is called, then does what it was told to do.
class Observer final : public Notifiee {
 public:
  Observer(std::string name, std::vector<std::string>& calls) : name_(std::move(name)), calls_(calls) {
    hasNotificationActiveIs(true);
  }
  ~Observer() override {
    calls_.push_back("~" + name_);
    if (atEnd) atEnd();
  }
  void handleNotification(Notification const& notification) override {
    calls_.push_back(name_);
    if (then) then(notification);
  }
  void handleZeroReferences(Fwk::Entity& entity) override {
    calls_.push_back(name_ + " zero");
    if (atZero) atZero(entity);
  }
  std::function<void(Notification const&)> then;
  std::function<void(Fwk::Entity&)> atZero;
  std::function<void()> atEnd;

 private:
  std::string name_;
  std::vector<std::string>& calls_;
};

class NotifieeOfBox : public testing::Test {
 protected:
  NotifieeOfBox() {
    for (auto const& observer : {a_, b_, c_}) box_->notifieeList().add(*observer);
  }
  Ptr<Observer> make(char const* name) { return Ptr<Observer>(new Observer(name, calls_)); }
  /// What was called for one change.
  std::vector<std::string> change() {
    calls_.clear();
    box_->numberIs(box_->number() + 1);
    return calls_;
  }

  std::vector<std::string> calls_;
  Ptr<Observer> a_ = make("a"), b_ = make("b"), c_ = make("c");
  Ptr<Box> box_ = Fwk::create<Box>("box");
};

TEST_F(NotifieeOfBox, IsCalledInTheOrderOfRegistration) { EXPECT_THAT(change(), ElementsAre("a", "b", "c")); }

TEST_F(NotifieeOfBox, IsCalledAfterTheStateIsStored) {
  Fwk::U32 seen = 0;
  Fwk::AttrId attr = 0;
  Fwk::Entity* entity = nullptr;
  a_->then = [&](Notification const& n) {
    seen = box_->number();
    attr = n.attr;
    entity = &n.entity;
    EXPECT_FALSE(n.key);
  };
  box_->numberIs(42);
  EXPECT_EQ(seen, 42U);
  EXPECT_EQ(attr, Box::numberAttr);
  EXPECT_EQ(entity, box_.get());
}

TEST(Notifiee, StartsInactive) {
  struct Plain final : Notifiee {
    void handleNotification(Notification const&) override {}
  };
  EXPECT_FALSE(Ptr<Notifiee>(new Plain)->hasNotificationActive());
}

TEST_F(NotifieeOfBox, IsNotCalledWhileInactive) {
  b_->hasNotificationActiveIs(false);
  EXPECT_THAT(change(), ElementsAre("a", "c"));
  b_->hasNotificationActiveIs(true);
  EXPECT_THAT(change(), ElementsAre("a", "b", "c"));
}

TEST_F(NotifieeOfBox, MadeInactiveByAnEarlierOneIsNotCalled) {
  a_->then = [&](Notification const&) { c_->hasNotificationActiveIs(false); };
  EXPECT_THAT(change(), ElementsAre("a", "b"));
}

TEST_F(NotifieeOfBox, IsNotCalledWhileTheEntityIsInactive) {
  box_->hasNotificationActiveIs(false);
  EXPECT_THAT(change(), IsEmpty());
  box_->hasNotificationActiveIs(true);
  EXPECT_THAT(change(), ElementsAre("a", "b", "c"));
}

TEST_F(NotifieeOfBox, ANestedChangeIsNotifiedBeforeTheOuterOneGoesOn) {
  b_->then = [&](Notification const& n) {
    if (n.attr == Box::numberAttr) box_->flagIs(!box_->flag());
  };
  EXPECT_THAT(change(), ElementsAre("a", "b", "a", "b", "c", "c"));
}

TEST_F(NotifieeOfBox, AddedDuringANotificationWaitsForTheNext) {
  Ptr<Observer> const late = make("late");
  b_->then = [&](Notification const&) {
    if (!late->registered()) box_->notifieeList().add(*late);
  };
  EXPECT_THAT(change(), ElementsAre("a", "b", "c"));
  EXPECT_THAT(change(), ElementsAre("a", "b", "c", "late"));
}

TEST_F(NotifieeOfBox, AddedByTheLastOneWaitsForTheNext) {
  Ptr<Observer> const late = make("late");
  c_->then = [&](Notification const&) {
    if (!late->registered()) box_->notifieeList().add(*late);
  };
  EXPECT_THAT(change(), ElementsAre("a", "b", "c"));
  EXPECT_THAT(change(), ElementsAre("a", "b", "c", "late"));
}

TEST_F(NotifieeOfBox, AddedInANestedNotificationIsCalledByALaterNestedOne) {
  Ptr<Observer> const late = make("late");
  a_->then = [&](Notification const& n) {
    if (n.attr != Box::numberAttr) return;
    box_->notifieeList().add(*late);
    box_->flagIs(!box_->flag());
  };
  EXPECT_THAT(change(), ElementsAre("a", "a", "b", "c", "late", "b", "c"));
}

TEST_F(NotifieeOfBox, RemovedBeforeItsTurnIsNotCalled) {
  a_->then = [&](Notification const&) { b_->unregister(); };
  EXPECT_THAT(change(), ElementsAre("a", "c"));
  EXPECT_FALSE(b_->registered());
}

TEST_F(NotifieeOfBox, RemovedAsTheLastOneEndsTheNotificationBeforeIt) {
  Ptr<Observer> const late = make("late");
  a_->then = [&](Notification const&) {
    c_->unregister();
    if (!late->registered()) box_->notifieeList().add(*late);  // stands where the last one stood
  };
  EXPECT_THAT(change(), ElementsAre("a", "b"));
}

TEST_F(NotifieeOfBox, EveryOneOfTheRestMayBeRemoved) {
  a_->then = [&](Notification const&) {
    b_->unregister();
    c_->unregister();
  };
  EXPECT_THAT(change(), ElementsAre("a"));
}

TEST_F(NotifieeOfBox, MayRemoveItself) {
  for (auto const& observer : {a_, b_, c_}) {
    observer->then = [observer = observer.get()](Notification const&) { observer->unregister(); };
  }
  EXPECT_THAT(change(), ElementsAre("a", "b", "c"));
  EXPECT_THAT(change(), IsEmpty());
}

TEST_F(NotifieeOfBox, RemovedAndAddedAgainStandsLastAndWaits) {
  a_->then = [&](Notification const&) { box_->notifieeList().add(*b_); };
  EXPECT_THAT(change(), ElementsAre("a", "c"));
  a_->then = nullptr;
  EXPECT_THAT(change(), ElementsAre("a", "c", "b"));
}

TEST_F(NotifieeOfBox, RemovedInANestedNotificationIsNotCalledByTheOuterOne) {
  b_->then = [&](Notification const& n) {
    if (n.attr == Box::numberAttr)
      box_->flagIs(!box_->flag());
    else
      c_->unregister();
  };
  EXPECT_THAT(change(), ElementsAre("a", "b", "a", "b"));
}

TEST_F(NotifieeOfBox, MayDropItselfWhileItIsCalled) {
  b_->then = [this](Notification const&) {
    b_ = nullptr;
    calls_.push_back("still there");
  };
  EXPECT_THAT(change(), ElementsAre("a", "b", "still there", "~b", "c"));
  EXPECT_THAT(change(), ElementsAre("a", "c"));
}

TEST_F(NotifieeOfBox, MayChangeTheEntityWhileItEnds) {
  b_->atEnd = [this] { box_->flagIs(!box_->flag()); };
  calls_.clear();
  b_ = nullptr;
  EXPECT_THAT(calls_, ElementsAre("~b", "a", "c"));
}

TEST_F(NotifieeOfBox, MayChangeTheEntityWhileItEndsInsideANotification) {
  b_->atEnd = [this] { box_->flagIs(!box_->flag()); };
  b_->then = [this](Notification const&) { b_ = nullptr; };
  EXPECT_THAT(change(), ElementsAre("a", "b", "~b", "a", "c", "c"));
}

TEST_F(NotifieeOfBox, LeavesTheListWhenItEnds) {
  b_ = nullptr;
  EXPECT_THAT(change(), ElementsAre("a", "c"));
}

TEST_F(NotifieeOfBox, AddingItElsewhereTakesItOutHere) {
  Ptr<Box> const other = Fwk::create<Box>("other");
  other->notifieeList().add(*b_);
  EXPECT_THAT(change(), ElementsAre("a", "c"));
  other->notifieeList().remove(*a_);  // does not stand there: nothing
  EXPECT_THAT(change(), ElementsAre("a", "c"));
}

TEST_F(NotifieeOfBox, MayEmptyTheListThatCallsIt) {
  a_->then = [&](Notification const& n) { n.entity.notifieeList().clear(); };
  EXPECT_THAT(change(), ElementsAre("a"));
  EXPECT_TRUE(box_->notifieeList().empty());
}

TEST_F(NotifieeOfBox, MayDropTheEntityWhichLivesUntilAllWereCalled) {
  Fwk::S64 const alive = Box::typeRecord().liveCount->value();
  a_->then = [&](Notification const&) { box_ = nullptr; };
  c_->then = [&](Notification const& n) {
    EXPECT_EQ(n.entity.name(), "box");
    EXPECT_EQ(Box::typeRecord().liveCount->value(), alive);
  };
  calls_.clear();
  box_->numberIs(1);
  EXPECT_THAT(calls_, ElementsAre("a", "b", "c", "a zero", "b zero", "c zero"));
  EXPECT_EQ(Box::typeRecord().liveCount->value(), alive - 1);
  EXPECT_FALSE(a_->registered());
}

TEST_F(NotifieeOfBox, MayDropTheEntityInEveryMutator) {
  std::function<void(Box&)> const mutators[] = {
      [](Box& box) { box.textIs("new"); },
      [](Box& box) { EXPECT_EQ(box.portsIs("new")->parent(), nullptr); },
      [](Box& box) { EXPECT_EQ(box.portsDel("old")->parent(), nullptr); },
      [](Box& box) { box.portsDelAll(); },
      [](Box& box) { box.labelsIs("new", "x"); },
      [](Box& box) { EXPECT_EQ(box.labelsDel("old"), "x"); },
      [](Box& box) { box.labelsDelAll(); },
      [](Box& box) { box.addressesIs(Net::Ip6Addr("2001:db8::2")); },
      [](Box& box) { EXPECT_TRUE(box.addressesDel(Net::Ip6Addr("2001:db8::1"))); },
      [](Box& box) { box.addressesDelAll(); },
      [](Box& box) { EXPECT_EQ(box.diskIs("new")->parent(), nullptr); },
      [](Box& box) { EXPECT_EQ(box.diskDel()->parent(), nullptr); },
  };
  Fwk::S64 const alive = Box::typeRecord().liveCount->value();
  for (auto const& mutate : mutators) {
    Ptr<Box> box = Fwk::create<Box>("dropped");
    for (char const* const key : {"old", "older"}) {
      box->portsIs(key);
      box->labelsIs(key, "x");
    }
    box->addressesIs(Net::Ip6Addr("2001:db8::1"));
    box->addressesIs(Net::Ip6Addr("2001:db8::3"));
    box->diskIs("old");
    Ptr<Observer> const dropping = make("dropping");
    dropping->then = [&](Notification const&) { box = nullptr; };
    box->notifieeList().add(*dropping);
    mutate(*box);
    EXPECT_EQ(box, nullptr);
    EXPECT_EQ(Box::typeRecord().liveCount->value(), alive);
  }
}

TEST_F(NotifieeOfBox, MayKeepTheEntityWhoseLastReferenceGoes) {
  Ptr<Fwk::Entity> kept;
  b_->atZero = [&](Fwk::Entity& entity) { kept = Ptr<Fwk::Entity>(&entity); };
  calls_.clear();
  box_ = nullptr;
  ASSERT_TRUE(kept);
  EXPECT_THAT(calls_, ElementsAre("a zero", "b zero", "c zero"));
  EXPECT_EQ(kept->references(), 1U);

  b_->atZero = nullptr;
  box_ = Fwk::ptrCast<Box>(kept);
  kept = nullptr;
  EXPECT_THAT(change(), ElementsAre("a", "b", "c"));
  box_ = nullptr;
  EXPECT_FALSE(b_->registered());
}

TEST_F(NotifieeOfBox, WhatItThrowsReachesTheMutatorAndTheNextChangeIsNotifiedAgain) {
  b_->then = [](Notification const&) { throw std::runtime_error("no"); };
  EXPECT_THROW(change(), std::runtime_error);
  EXPECT_THAT(calls_, ElementsAre("a", "b"));
  EXPECT_EQ(box_->number(), 1U);
  b_->then = nullptr;
  EXPECT_THAT(change(), ElementsAre("a", "b", "c"));
}

TEST_F(NotifieeOfBox, IsCalledWithoutAllocation) {
  struct Silent final : Notifiee {
    void handleNotification(Notification const&) override { ++calls; }
    int calls = 0;
  };
  Ptr<Silent> const silent(new Silent);
  silent->hasNotificationActiveIs(true);
  for (auto const& observer : {a_, b_, c_}) observer->unregister();
  box_->notifieeList().add(*silent);
  std::size_t const before = allocationCount();
  for (Fwk::U32 i = 1; i <= 100; ++i) box_->numberIs(i);
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(silent->calls, 100);
}

}  // namespace

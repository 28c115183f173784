#include <RouterPlatform/Fwk/Observe.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace {

using Fwk::Notification;
using Fwk::observe;
using Fwk::Ptr;
using Fwk::Subscription;
using testing::ElementsAre;
using TestModel::Box;

class Observe : public testing::Test {
 protected:
  Ptr<Box> box_ = Fwk::create<Box>("box");
  int calls_ = 0;
};

TEST_F(Observe, CallsTheFunctionForEachChange) {
  std::vector<Fwk::AttrId> seen;
  Subscription const subscription = observe(box_, [&](Notification const& n) { seen.push_back(n.attr); });
  box_->numberIs(1);
  box_->numberIs(1);
  box_->textIs("x");
  EXPECT_THAT(seen, ElementsAre(Box::numberAttr, Box::textAttr));
}

TEST_F(Observe, EndsWithTheSubscription) {
  {
    Subscription const subscription = observe(box_, [&](Notification const&) { ++calls_; });
    EXPECT_TRUE(subscription.active());
  }
  box_->numberIs(1);
  EXPECT_EQ(calls_, 0);
  EXPECT_TRUE(box_->notifieeList().empty());
}

TEST_F(Observe, EndsWhenCancelled) {
  Subscription subscription = observe(box_, [&](Notification const&) { ++calls_; });
  subscription.cancel();
  subscription.cancel();
  EXPECT_FALSE(subscription.active());
  box_->numberIs(1);
  EXPECT_EQ(calls_, 0);
}

TEST_F(Observe, ASubscriptionMayOutliveTheEntity) {
  Subscription const subscription = observe(box_, [](Notification const&) {});
  box_ = nullptr;
  EXPECT_FALSE(subscription.active());
}

TEST_F(Observe, AnEmptySubscriptionIsNotActive) {
  Subscription subscription;
  EXPECT_FALSE(subscription.active());
  subscription.cancel();
}

TEST_F(Observe, MovingASubscriptionKeepsTheObservation) {
  Subscription first = observe(box_, [&](Notification const&) { ++calls_; });
  Subscription second = std::move(first);
  EXPECT_FALSE(first.active());  // NOLINT(bugprone-use-after-move): it is empty then
  box_->numberIs(1);
  EXPECT_EQ(calls_, 1);
}

TEST_F(Observe, AssigningASubscriptionEndsTheFormerOne) {
  int other = 0;
  Subscription subscription = observe(box_, [&](Notification const&) { ++calls_; });
  subscription = observe(box_, [&](Notification const&) { ++other; });
  box_->numberIs(1);
  EXPECT_EQ(calls_, 0);
  EXPECT_EQ(other, 1);
}

TEST_F(Observe, TheFunctionMayCancelItsOwnSubscription) {
  Subscription subscription;
  auto const witness = std::make_shared<int>(0);
  subscription = observe(box_, [&subscription, witness](Notification const&) {
    subscription.cancel();
    ++*witness;  // what it holds is there until it returns
  });
  box_->numberIs(1);
  box_->numberIs(2);
  EXPECT_EQ(*witness, 1);
  EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(Observe, OneFunctionMayCancelAnother) {
  std::optional<Subscription> second;
  Subscription const first = observe(box_, [&](Notification const&) { second.reset(); });
  second = observe(box_, [&](Notification const&) { ++calls_; });
  box_->numberIs(1);
  EXPECT_EQ(calls_, 0);
}

TEST_F(Observe, HoldsFunctionsThatCanOnlyBeMoved) {
  auto number = std::make_unique<int>(5);
  Subscription const subscription = observe(box_, [&, own = std::move(number)](Notification const&) { calls_ = *own; });
  box_->numberIs(1);
  EXPECT_EQ(calls_, 5);
}

TEST_F(Observe, CopiesAFunctionThatIsNotGivenAway) {
  auto function = [this, count = 0](Notification const&) mutable { calls_ = ++count; };
  Subscription const one = observe(*box_, function);
  Subscription const two = observe(*box_, function);
  box_->numberIs(1);
  EXPECT_EQ(calls_, 1);
}

TEST_F(Observe, NotifiesWithoutAllocation) {
  std::vector<Subscription> subscriptions;
  for (int i = 0; i < 3; ++i) subscriptions.push_back(observe(box_, [&](Notification const&) { ++calls_; }));
  box_->portsIs("Ethernet1");
  calls_ = 0;
  std::size_t const before = allocationCount();
  for (Fwk::U32 i = 1; i <= 100; ++i) box_->numberIs(i);
  Ptr<TestModel::Port> const port = box_->portsDel("Ethernet1");
  EXPECT_EQ(allocationCount(), before);
  EXPECT_EQ(calls_, 303);
}

}  // namespace

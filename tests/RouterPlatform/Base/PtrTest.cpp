#include <RouterPlatform/Base/Ptr.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <functional>
#include <mutex>
#include <thread>
#include <unordered_set>
#include <vector>

namespace {

using Fwk::Ptr;

/// Counts how often its hook ran and whether it has ended; `atZero` runs in the hook.
class Counted : public Fwk::PtrInterface<Counted> {
 public:
  struct Life {
    std::atomic<int> hooks{0};
    std::atomic<int> ends{0};
    std::function<void(Counted&)> atZero;
  };

  explicit Counted(Life& life) : life_(life) {}
  virtual ~Counted() { ++life_.ends; }

  int value = 0;  ///< not atomic: whoever ends the object must see what others wrote before they let go

 private:
  friend class Fwk::PtrInterface<Counted>;
  void onZeroReferences() noexcept {
    ++life_.hooks;
    if (life_.atZero) life_.atZero(*this);
    if (releaseLastReference()) delete this;
  }
  Life& life_;
};
struct Special final : Counted {
  using Counted::Counted;
};

/// Every test runs with counts updated plainly and atomically.
class PtrInBothModes : public testing::TestWithParam<bool> {
 protected:
  PtrInBothModes() { Fwk::threadSafePtrModeIs(GetParam()); }
  ~PtrInBothModes() override { Fwk::threadSafePtrModeIs(false); }
  Counted::Life life_;
};
INSTANTIATE_TEST_SUITE_P(Mode, PtrInBothModes, testing::Bool(),
                         [](auto const& mode) { return std::string(mode.param ? "ThreadSafe" : "Plain"); });

TEST(PtrMode, IsPlainFromTheStartAndSwitches) {
  EXPECT_FALSE(Fwk::threadSafePtrMode());
  Fwk::threadSafePtrModeIs(true);
  EXPECT_TRUE(Fwk::threadSafePtrMode());
  Fwk::threadSafePtrModeIs(false);
  EXPECT_FALSE(Fwk::threadSafePtrMode());
}

TEST_P(PtrInBothModes, TheLastPtrEndsTheObject) {
  Ptr<Counted> first(new Counted(life_));
  Ptr<Counted> second = first;
  EXPECT_EQ(first->references(), 2U);
  first = nullptr;
  EXPECT_EQ(life_.ends, 0);
  EXPECT_EQ(second->references(), 1U);
  second = nullptr;
  EXPECT_EQ(life_.hooks, 1);
  EXPECT_EQ(life_.ends, 1);
}

TEST_P(PtrInBothModes, MovingDoesNotCount) {
  Ptr<Counted> first(new Counted(life_));
  Ptr<Counted> const second = std::move(first);
  EXPECT_EQ(first, nullptr);  // NOLINT(bugprone-use-after-move): it is null then
  EXPECT_EQ(second->references(), 1U);
}

TEST_P(PtrInBothModes, AssigningAPtrToItselfKeepsTheObject) {
  Ptr<Counted> pointer(new Counted(life_));
  Ptr<Counted> const& same = pointer;
  pointer = same;
  EXPECT_EQ(pointer->references(), 1U);
  EXPECT_EQ(life_.ends, 0);
}

TEST_P(PtrInBothModes, AnotherObjectTakesThePlaceAndTheFormerEnds) {
  Counted::Life other;
  Ptr<Counted> pointer(new Counted(life_));
  pointer = Ptr<Counted>(new Counted(other));
  EXPECT_EQ(life_.ends, 1);
  EXPECT_EQ(other.ends, 0);
}

TEST_P(PtrInBothModes, ConvertsToConstAndToABase) {
  Ptr<Special> special(new Special(life_));
  Ptr<Special const> const constant = special;
  Ptr<Counted> const base = special;
  Ptr<Counted const> const moved = std::move(special);
  EXPECT_EQ(base, constant);
  EXPECT_EQ(moved->references(), 3U);
  EXPECT_EQ(moved, base);
}

TEST(Ptr, DoesNotConvertDownOrToNonConst) {
  EXPECT_FALSE((std::is_convertible_v<Ptr<Counted>, Ptr<Special>>));
  EXPECT_FALSE((std::is_convertible_v<Ptr<Counted const>, Ptr<Counted>>));
}

TEST_P(PtrInBothModes, CastsDownToWhatTheObjectIs) {
  Counted::Life plain;
  Ptr<Counted> const special(new Special(life_));
  Ptr<Counted> const counted(new Counted(plain));
  EXPECT_EQ(Fwk::ptrCast<Special>(special).get(), special.get());
  EXPECT_EQ(special->references(), 1U);
  EXPECT_EQ(Fwk::ptrCast<Special>(counted), nullptr);
  EXPECT_EQ(Fwk::ptrCast<Special>(Ptr<Counted>()), nullptr);
}

TEST_P(PtrInBothModes, ReleaseGivesTheReferenceAway) {
  Ptr<Counted> pointer(new Counted(life_));
  Counted* const object = pointer.release();
  EXPECT_FALSE(pointer);
  EXPECT_EQ(life_.ends, 0);
  object->deleteRef();
  EXPECT_EQ(life_.ends, 1);
}

TEST_P(PtrInBothModes, ComparesAndHashesByObject) {
  Counted::Life other;
  Ptr<Counted> const one(new Counted(life_));
  Ptr<Counted> const two(new Counted(other));
  EXPECT_NE(one, two);
  EXPECT_NE(one, nullptr);
  EXPECT_TRUE(Ptr<Counted>() == nullptr);
  std::unordered_set<Ptr<Counted>> const set{one, two, one};
  EXPECT_EQ(set.size(), 2U);
  EXPECT_TRUE(set.contains(one));
}

TEST_P(PtrInBothModes, TheHookRunsWhileTheObjectIsStillCounted) {
  Fwk::U32 seen = 0;
  life_.atZero = [&](Counted const& object) { seen = object.references(); };
  Ptr<Counted>(new Counted(life_));
  EXPECT_EQ(seen, 1U);
  EXPECT_EQ(life_.ends, 1);
}

TEST_P(PtrInBothModes, AReferenceTakenInTheHookKeepsTheObjectAlive) {
  Ptr<Counted> kept;
  life_.atZero = [&](Counted& object) {
    if (life_.hooks == 1) kept = Ptr<Counted>(&object);
  };
  Ptr<Counted>(new Counted(life_));
  ASSERT_TRUE(kept);
  EXPECT_EQ(kept->references(), 1U);
  EXPECT_EQ(life_.ends, 0);

  kept = nullptr;
  EXPECT_EQ(life_.hooks, 2);
  EXPECT_EQ(life_.ends, 1);
}

TEST_P(PtrInBothModes, AReferenceTakenAndDroppedInTheHookDoesNotRunItAgain) {
  life_.atZero = [](Counted& object) {
    Ptr<Counted> const one(&object);
    Ptr<Counted> const two = one;
  };
  Ptr<Counted>(new Counted(life_));
  EXPECT_EQ(life_.hooks, 1);
  EXPECT_EQ(life_.ends, 1);
}

/// Counts updated atomically, for threads that share objects.
class PtrThreads : public testing::Test {
 protected:
  static constexpr int threadCount = 4;
  static constexpr int rounds = 2'000;

  PtrThreads() { Fwk::threadSafePtrModeIs(true); }
  ~PtrThreads() override { Fwk::threadSafePtrModeIs(false); }
};

TEST_F(PtrThreads, CopyingAndDroppingOnSeveralThreadsLosesNoCount) {
  Counted::Life life;
  Ptr<Counted> const object(new Counted(life));
  std::vector<std::thread> threads;
  for (int i = 0; i < threadCount; ++i)
    threads.emplace_back([own = object] {
      for (int round = 0; round < 20'000; ++round) {
        Ptr<Counted> const one = own;
        Ptr<Counted> two = one;
        two = nullptr;
      }
    });
  for (std::thread& thread : threads) thread.join();
  threads.clear();
  EXPECT_EQ(object->references(), 1U);
  EXPECT_EQ(life.hooks, 0);
}

TEST_F(PtrThreads, ExactlyOneThreadRunsTheHookAndSeesWhatTheOthersDid) {
  std::vector<Counted::Life> lives(rounds);
  std::vector<std::vector<Ptr<Counted>>> held(threadCount);
  std::atomic<long> sum{0};
  for (Counted::Life& life : lives) {
    life.atZero = [&sum](Counted const& object) { sum += object.value; };
    Ptr<Counted> const object(new Counted(life));
    object->value = 1;
    for (auto& own : held) own.push_back(object);
  }
  std::barrier start(threadCount);
  std::vector<std::thread> threads;
  for (auto& own : held)
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (Ptr<Counted>& pointer : own) pointer = nullptr;
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(sum, rounds);
  for (Counted::Life const& life : lives) {
    ASSERT_EQ(life.hooks, 1);
    ASSERT_EQ(life.ends, 1);
  }
}

TEST_F(PtrThreads, AnObjectThatTheHookHandsToAnotherThreadEndsOnce) {
  for (int round = 0; round < 300; ++round) {
    Counted::Life life;
    std::mutex mutex;
    Ptr<Counted> mailbox;
    std::atomic<bool> handedOver{false};
    life.atZero = [&](Counted& object) {
      if (handedOver.exchange(true)) return;
      std::lock_guard const lock(mutex);
      mailbox = Ptr<Counted>(&object);
    };
    std::thread receiver([&] {
      while (!handedOver) std::this_thread::yield();
      Ptr<Counted> received;
      while (!received) {
        std::lock_guard const lock(mutex);
        received = std::move(mailbox);
      }
      received->value = 1;
    });
    Ptr<Counted>(new Counted(life));
    receiver.join();
    // The receiver lets go while the first hook still stands, or after it: then there is a second one.
    ASSERT_GE(life.hooks, 1);
    ASSERT_LE(life.hooks, 2);
    ASSERT_EQ(life.ends, 1);
  }
}

}  // namespace

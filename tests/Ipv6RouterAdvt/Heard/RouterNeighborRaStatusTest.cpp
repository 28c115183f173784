#include <Ipv6RouterAdvt/Heard/RouterNeighborRaReader.h>
#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <RouterPlatform/Fwk/Attributes.h>
#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Fwk/Reflection.h>
#include <RouterPlatform/Stats/Counter.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace RouterAdvt;
using SharedTable::CollectionControl;
using SharedTable::LookupStatus;
using SharedTable::MountStatus;
using Table::RouterNeighborRaStatus;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

RouterNeighborRaKey keyOf(int number) {
  return RouterNeighborRaKey(IntfId("Ethernet1"), Ip6Addr("fe80::" + std::to_string(number)));
}

Fwk::S64 living() { return RouterNeighborRaStatus::typeRecord().liveCount->value(); }
Fwk::S64 controlsLiving() { return CollectionControl::typeRecord().liveCount->value(); }

/// An entity tree that a table may enter.
class Tree final : public Fwk::Entity {
 public:
  static constexpr AttrId tablesAttr = Fwk::firstOwnAttr;
  explicit Tree(Name name) : name_(name) {}
  Name name() const override { return name_; }
  Fwk::EntityCollection<Name, RouterNeighborRaStatus>& tables() { return tables_; }

  static constexpr char const* fwkTypeName = "Test::Tree";
  static Fwk::TypeRecord const& typeRecord() {
    static constinit Fwk::LiveCount live;
    static constexpr auto attrs = Fwk::attributes<Tree>(Fwk::collection<&Tree::tables_>("tables"));
    static constexpr Fwk::TypeRecord record = Fwk::entityRecord<Tree, Name>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Tree() override = default;
  Name name_;
  Fwk::EntityCollection<Name, RouterNeighborRaStatus> tables_{*this, tablesAttr};
};

/// What an entity's observers hear, in order.
struct Heard {
  explicit Heard(Fwk::Entity& entity)
      : subscription(Fwk::observe(entity, [this](Fwk::Notification const& n) {
          attrs.push_back(n.attr);
          if (auto const* key = n.key.as<RouterNeighborRaKey>()) keys.push_back(key->toStrep());
        })) {}
  std::vector<AttrId> attrs;
  std::vector<std::string> keys;
  Fwk::Subscription subscription;
};

class NeighborTable : public testing::Test {
 protected:
  NeighborTable() {
    std::string name = (std::filesystem::temp_directory_path() / "neighbor-table-XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    directory_ = name;
    setenv("SHARED_TABLE_DIR", name.c_str(), 1);
    status_ = Table::routerNeighborRaStatusFactory("neighbors");
  }
  ~NeighborTable() override {
    if (status_) status_->parentIs(nullptr, 0);  // mounted, it would not end
    status_ = nullptr;
    tree_ = nullptr;
    EXPECT_EQ(living(), 0);
    EXPECT_EQ(controlsLiving(), 0);
    unsetenv("SHARED_TABLE_DIR");
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }

  /// Gives the entity a parent that does not own it.
  void mount() { status_->parentIs(tree_.get(), Tree::tablesAttr); }

  std::string path() const { return directory_ + "/routing6/routerAdvt/routerNeighborRaStatus/routerNeighborRa.tbl"; }
  bool published() const { return std::filesystem::exists(path()); }

  std::string directory_;
  Ptr<Tree> tree_ = Fwk::create<Tree>("tree");
  Ptr<RouterNeighborRaStatus> status_;
};

struct CounterDeltas {
  U64 is = Stats::counter("routerNeighborRaIs").value();
  U64 del = Stats::counter("routerNeighborRaDel").value();
  U64 notify = Stats::counter("routerNeighborRaNotify").value();
  std::vector<U64> now() const {
    CounterDeltas const n;
    return {n.is - is, n.del - del, n.notify - notify};
  }
};

TEST_F(NeighborTable, IsMadeUnmountedAndEmptyWithAControl) {
  EXPECT_EQ(status_->name(), Name("neighbors"));
  EXPECT_TRUE(status_->hasNotificationActive());
  EXPECT_TRUE(status_->routerNeighborRa().empty());
  ASSERT_TRUE(status_->routerNeighborRaControl());
  EXPECT_TRUE(status_->routerNeighborRaControl()->hasNotificationActive());
  EXPECT_EQ(status_->routerNeighborRaControl()->mountStatus(), MountStatus::unmounted);
  EXPECT_TRUE(status_->routerNeighborRaControl()->quiesced());
  EXPECT_FALSE(published());
}

TEST_F(NeighborTable, GivesBackWhatWasWritten) {
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)), RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_EQ(status_->routerNeighborRa(keyOf(2)), RouterNeighborRa());
  EXPECT_EQ(status_->routerNeighborRa().size(), 1u);
  EXPECT_TRUE(status_->routerNeighborRa().contains(keyOf(1)));
  EXPECT_FALSE(status_->routerNeighborRa().contains(keyOf(2)));
}

TEST_F(NeighborTable, NotifiesAndCountsEveryWriteAlsoOfAnEqualRow) {
  CounterDeltas const counters;
  Heard heard(*status_);
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_THAT(heard.attrs, ElementsAre(258, 258));
  EXPECT_THAT(heard.keys, ElementsAre("Ethernet1-fe80::1", "Ethernet1-fe80::1"));
  EXPECT_THAT(counters.now(), ElementsAre(2, 0, 2));
}

TEST_F(NeighborTable, RemovingReturnsTheRowAndNotifies) {
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  CounterDeltas const counters;
  Heard heard(*status_);
  EXPECT_EQ(status_->routerNeighborRaDel(keyOf(1)), RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_THAT(heard.keys, ElementsAre("Ethernet1-fe80::1"));
  EXPECT_THAT(counters.now(), ElementsAre(0, 1, 1));
  EXPECT_TRUE(status_->routerNeighborRa().empty());
}

TEST_F(NeighborTable, RemovingAnAbsentKeyReturnsTheDefaultRowAndNotifiesNobody) {
  CounterDeltas const counters;
  Heard heard(*status_);
  EXPECT_EQ(status_->routerNeighborRaDel(keyOf(1)), RouterNeighborRa());
  EXPECT_THAT(heard.attrs, IsEmpty());
  EXPECT_THAT(counters.now(), ElementsAre(0, 1, 0));
}

TEST_F(NeighborTable, RemovingAllNotifiesOncePerRow) {
  for (int i = 1; i <= 3; ++i) status_->routerNeighborRaIs(RouterNeighborRa(keyOf(i), i));
  CounterDeltas const counters;
  Heard heard(*status_);
  status_->routerNeighborRaDelAll();
  EXPECT_THAT(heard.keys, UnorderedElementsAre("Ethernet1-fe80::1", "Ethernet1-fe80::2", "Ethernet1-fe80::3"));
  EXPECT_THAT(counters.now(), ElementsAre(0, 3, 3));
}

TEST_F(NeighborTable, ACommitPublishesTheWritableSlot) {
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  CounterDeltas const counters;
  Heard heard(*status_);
  EXPECT_EQ(status_->routerNeighborRaWritable(keyOf(2)), nullptr);
  RouterNeighborRa* const row = status_->routerNeighborRaWritable(keyOf(1));
  ASSERT_NE(row, nullptr);
  row->lastRaReceivedIs(2.5);
  status_->routerNeighborRaCommit(*row);
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)).lastRaReceived(), 2.5);
  EXPECT_THAT(heard.keys, ElementsAre("Ethernet1-fe80::1"));
  EXPECT_THAT(counters.now(), ElementsAre(1, 0, 1));
}

TEST_F(NeighborTable, NotifyTellsObserversAndCounts) {
  CounterDeltas const counters;
  Heard heard(*status_);
  status_->routerNeighborRaNotify(keyOf(7));
  EXPECT_THAT(heard.keys, ElementsAre("Ethernet1-fe80::7"));
  EXPECT_THAT(counters.now(), ElementsAre(0, 0, 1));
}

TEST_F(NeighborTable, ANewControlIsStoredAndNotifiedAndTheSameOneIsNot) {
  Heard heard(*status_);
  status_->routerNeighborRaControlIs(status_->routerNeighborRaControl());
  EXPECT_THAT(heard.attrs, IsEmpty());
  auto const control = Fwk::create<CollectionControl>();
  status_->routerNeighborRaControlIs(control);
  EXPECT_EQ(status_->routerNeighborRaControl(), control);
  EXPECT_THAT(heard.attrs, ElementsAre(259));
}

TEST_F(NeighborTable, AnotherControlHearsHowTheTableStandsAndWhatBecomesOfIt) {
  mount();
  auto const former = status_->routerNeighborRaControl();
  auto const control = Fwk::create<CollectionControl>();
  status_->routerNeighborRaControlIs(control);
  EXPECT_EQ(control->mountStatus(), MountStatus::mounted);
  EXPECT_FALSE(control->quiesced());
  EXPECT_EQ(former->mountStatus(), MountStatus::unmounted) << "it is told nothing any more";
  EXPECT_TRUE(former->quiesced());
  status_->parentIs(nullptr, 0);
  EXPECT_EQ(control->mountStatus(), MountStatus::unmounted);
  EXPECT_TRUE(control->quiesced());
  mount();
  EXPECT_EQ(control->mountStatus(), MountStatus::mounted);
  EXPECT_EQ(former->mountStatus(), MountStatus::unmounted);
}

TEST_F(NeighborTable, AControlThatReplacesItselfWhileItIsToldLeavesTheLastOneInPlace) {
  mount();
  auto const first = Fwk::create<CollectionControl>();
  first->hasNotificationActiveIs(true);
  auto const second = Fwk::create<CollectionControl>();
  auto const subscription =
      Fwk::observe(*first, [&](Fwk::Notification const&) { status_->routerNeighborRaControlIs(second); });
  status_->routerNeighborRaControlIs(first);
  EXPECT_EQ(status_->routerNeighborRaControl(), second);
  EXPECT_EQ(second->mountStatus(), MountStatus::mounted);
  EXPECT_EQ(first->mountStatus(), MountStatus::unmounted);
  EXPECT_TRUE(first->quiesced());
}

TEST_F(NeighborTable, IsWalkedInAnyState) {
  for (int i = 1; i <= 20; ++i) status_->routerNeighborRaIs(RouterNeighborRa(keyOf(i), i));
  std::set<RouterNeighborRaKey> seen;
  for (auto const& [key, row] : status_->routerNeighborRa()) {
    EXPECT_EQ(key, row.key());
    EXPECT_TRUE(seen.insert(key).second);
  }
  EXPECT_EQ(seen.size(), 20u);
}

TEST_F(NeighborTable, AWalkBearsRemovalsMountingAndTheEndOfItsEntity) {
  for (int i = 1; i <= 20; ++i) status_->routerNeighborRaIs(RouterNeighborRa(keyOf(i), i));
  int visited = 0;
  for (auto const& [key, row] : status_->routerNeighborRa()) {
    if (++visited == 5) mount();
    if (visited == 8) {
      std::vector<RouterNeighborRaKey> others;
      for (auto const& entry : status_->routerNeighborRa())
        if (entry.key != key) others.push_back(entry.key);
      for (std::size_t i = 0; i < 4; ++i) status_->routerNeighborRaDel(others[i]);
      status_->routerNeighborRaIs(RouterNeighborRa(keyOf(100), 1));
    }
    if (visited == 10) status_->parentIs(nullptr, 0);
    if (visited == 12) status_ = nullptr;
    EXPECT_EQ(key, row.key());
  }
  EXPECT_GE(visited, 16);
  EXPECT_LE(visited, 20);
}

TEST_F(NeighborTable, AParentMountsItAndLosingTheParentUnmountsIt) {
  auto const control = status_->routerNeighborRaControl();
  Heard heard(*control);
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  mount();
  EXPECT_TRUE(published());
  EXPECT_EQ(control->mountStatus(), MountStatus::mounted);
  EXPECT_FALSE(control->quiesced());
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)).lastRaReceived(), 1.5);
  status_->parentIs(nullptr, 0);
  EXPECT_FALSE(published());
  EXPECT_EQ(control->mountStatus(), MountStatus::unmounted);
  EXPECT_TRUE(control->quiesced());
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)).lastRaReceived(), 1.5);
  EXPECT_EQ(heard.attrs.size(), 4u);
}

TEST_F(NeighborTable, EnteringAndLeavingACollectionMountsAndUnmounts) {
  Ptr<RouterNeighborRaStatus> const member = tree_->tables().memberIs("neighbors");
  EXPECT_TRUE(published());
  EXPECT_EQ(member->fullName(), "tree/tables[neighbors]");
  tree_->tables().memberDel("neighbors");
  EXPECT_FALSE(published());
}

TEST_F(NeighborTable, ReadersSeeRowsAsTheyAreWritten) {
  RouterNeighborRaReader reader;
  EXPECT_EQ(reader.attach().code, SharedTable::Errc::noTable);
  mount();
  ASSERT_FALSE(reader.attach());
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_EQ(reader.row(keyOf(1)).row, RouterNeighborRa(keyOf(1), 1.5));
  status_->routerNeighborRaDel(keyOf(1));
  EXPECT_EQ(reader.row(keyOf(1)).status, LookupStatus::missing);
}

TEST_F(NeighborTable, SaysInsideAndAfterTheNotificationThatAWriteWasRefused) {
  using SharedTable::WriteStatus;
  status_ = Table::routerNeighborRaStatusFactory("small", {{1, 1}, 0644, {}, false});
  EXPECT_EQ(status_->lastWriteStatus(), WriteStatus::ok);
  std::vector<WriteStatus> heard;
  Fwk::Subscription const subscription =
      Fwk::observe(*status_, [&](Fwk::Notification const&) { heard.push_back(status_->lastWriteStatus()); });
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1));
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(2), 1));
  EXPECT_EQ(status_->lastWriteStatus(), WriteStatus::full);
  status_->routerNeighborRaCommit(RouterNeighborRa(keyOf(1), 2));
  EXPECT_EQ(status_->lastWriteStatus(), WriteStatus::ok);
  EXPECT_THAT(heard, ElementsAre(WriteStatus::ok, WriteStatus::full, WriteStatus::ok));
}

TEST_F(NeighborTable, IsMountedWithTheOptionsThatItWasMadeWith) {
  std::string const elsewhere = directory_ + "/elsewhere";
  status_ = Table::routerNeighborRaStatusFactory("options", {{1, 2}, 0600, elsewhere, false});
  mount();
  EXPECT_FALSE(published());
  std::filesystem::path const table = elsewhere + "/routing6/routerAdvt/routerNeighborRaStatus/routerNeighborRa.tbl";
  ASSERT_TRUE(std::filesystem::exists(table));
  EXPECT_EQ(std::filesystem::status(table).permissions(), std::filesystem::perms(0600));
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1));
  RouterNeighborRaReader reader({{}, elsewhere});
  ASSERT_FALSE(reader.attach());
  EXPECT_TRUE(reader.row(keyOf(1)));
}

TEST_F(NeighborTable, AdoptsTheRowsOfADeadAgentOnRequestAndNotifies) {
  pid_t const agent = fork();
  if (agent == 0) {
    mount();
    status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
    kill(getpid(), SIGKILL);
  }
  int ended = 0;
  ASSERT_EQ(waitpid(agent, &ended, 0), agent);
  ASSERT_TRUE(published());
  status_ = Table::routerNeighborRaStatusFactory("next", {{}, 0644, {}, true});
  Heard heard(*status_);
  mount();
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)), RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_THAT(heard.keys, ElementsAre("Ethernet1-fe80::1"));
}

TEST_F(NeighborTable, NoticesThatItsNameIsGoneAndIsMountedAnewByAParent) {
  mount();
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_FALSE(status_->verifyMount());
  std::filesystem::remove_all(directory_);
  EXPECT_EQ(status_->verifyMount().code, SharedTable::Errc::noTable);
  EXPECT_EQ(status_->routerNeighborRaControl()->mountStatus(), MountStatus::failed);
  EXPECT_TRUE(status_->routerNeighborRaControl()->quiesced());
  EXPECT_TRUE(status_->mountError());
  EXPECT_EQ(status_->routerNeighborRa().size(), 1u);
  status_->parentIs(nullptr, 0);
  mount();
  EXPECT_TRUE(published());
  EXPECT_FALSE(status_->mountError());
}

TEST_F(NeighborTable, AFailedMountingLeavesEverythingWorking) {
  Ptr<RouterNeighborRaStatus> const first = Table::routerNeighborRaStatusFactory("first");
  first->parentIs(tree_.get(), Tree::tablesAttr);
  mount();
  EXPECT_EQ(status_->routerNeighborRaControl()->mountStatus(), MountStatus::failed);
  EXPECT_TRUE(status_->routerNeighborRaControl()->quiesced());
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)).lastRaReceived(), 1.5);
  EXPECT_TRUE(first->routerNeighborRa().empty());
  first->parentIs(nullptr, 0);
}

TEST_F(NeighborTable, AControlThatThrowsLeavesNeitherControlInTheBeliefThatItsTableIsInUse) {
  mount();
  auto const former = status_->routerNeighborRaControl();
  auto const control = Fwk::create<CollectionControl>();
  auto subscription = Fwk::observe(*control, [](Fwk::Notification const&) { throw std::runtime_error("observer"); });
  EXPECT_THROW(status_->routerNeighborRaControlIs(control), std::runtime_error);
  EXPECT_EQ(status_->routerNeighborRaControl(), control);
  EXPECT_EQ(control->mountStatus(), MountStatus::mounted);
  EXPECT_FALSE(control->quiesced());
  EXPECT_EQ(former->mountStatus(), MountStatus::unmounted);
  EXPECT_TRUE(former->quiesced());
  EXPECT_THROW(status_->parentIs(nullptr, 0), std::runtime_error);
  EXPECT_EQ(control->mountStatus(), MountStatus::unmounted);
  EXPECT_TRUE(control->quiesced());
}

TEST_F(NeighborTable, LeavingTheTreeWithoutMemoryKeepsTheRowsAndIsTraced) {
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  mount();
  Trace::Capture trace("SharedTable", "2");
  {
    AllocationFailure const failure(0, 1);
    status_->parentIs(nullptr, 0);
  }
  EXPECT_THAT(trace.texts(2), ElementsAre(HasSubstr("routerNeighborRa stay in its file: out of memory")));
  EXPECT_FALSE(published());
  EXPECT_TRUE(status_->routerNeighborRaControl()->quiesced());
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)).lastRaReceived(), 1.5);
  mount();
  RouterNeighborRaReader reader;
  ASSERT_FALSE(reader.attach());
  EXPECT_EQ(reader.row(keyOf(1)).row.lastRaReceived(), 1.5);
}

// The end of life: whoever drops the last reference, and whenever, there is exactly one destruction.

/// With the pointers of one thread, and with those of many.
class NeighborTableEnd : public NeighborTable, public testing::WithParamInterface<bool> {
 protected:
  NeighborTableEnd() { Fwk::threadSafePtrModeIs(GetParam()); }
  ~NeighborTableEnd() override { Fwk::threadSafePtrModeIs(false); }
};
INSTANTIATE_TEST_SUITE_P(Pointers, NeighborTableEnd, testing::Bool(),
                         [](auto const& of) { return of.param ? "ThreadSafe" : "OfOneThread"; });

TEST_P(NeighborTableEnd, UnmountedItEndsWithItsLastReference) {
  EXPECT_EQ(living(), 1);
  status_ = nullptr;
  EXPECT_EQ(living(), 0);
  EXPECT_EQ(controlsLiving(), 0);
}

TEST_P(NeighborTableEnd, MountedItIsKeptAliveByItsControlUntilItIsUnmounted) {
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  mount();
  auto control = status_->routerNeighborRaControl();
  Heard heard(*status_);
  status_ = nullptr;
  EXPECT_EQ(living(), 1);
  EXPECT_TRUE(published());
  EXPECT_THAT(heard.attrs, ElementsAre(259)) << "it refers to its control no more";
  {
    Ptr<Fwk::Entity> const kept = control->keptEntity();
    ASSERT_TRUE(kept);
    EXPECT_FALSE(Fwk::ptrCast<RouterNeighborRaStatus>(kept)->routerNeighborRaControl());
  }
  EXPECT_EQ(living(), 1) << "a reference that came and went changes nothing";
  control->keptEntity()->parentIs(nullptr, 0);
  EXPECT_EQ(living(), 0);
  EXPECT_FALSE(published());
  EXPECT_FALSE(control->keptEntity());
  EXPECT_EQ(control->mountStatus(), MountStatus::unmounted);
  EXPECT_EQ(controlsLiving(), 1);
  control = nullptr;
  EXPECT_EQ(controlsLiving(), 0);
}

TEST_P(NeighborTableEnd, MountedAndUnreferencedItEndsWhenItsParentLetsGo) {
  mount();
  Fwk::Entity& kept = *status_;  // as a parent has it that does not own it
  status_ = nullptr;
  EXPECT_EQ(living(), 1);
  kept.parentIs(nullptr, 0);
  EXPECT_EQ(living(), 0);
  EXPECT_EQ(controlsLiving(), 0);
  EXPECT_FALSE(published());
}

TEST_P(NeighborTableEnd, ItEndsAllTheSameWhenAnObserverOfTheControlThrows) {
  mount();
  auto const control = status_->routerNeighborRaControl();
  auto const subscription =
      Fwk::observe(*control, [](Fwk::Notification const&) { throw std::runtime_error("observer"); });
  Fwk::Entity& kept = *status_;
  status_ = nullptr;
  EXPECT_EQ(living(), 1);
  EXPECT_THROW(kept.parentIs(nullptr, 0), std::runtime_error);
  EXPECT_EQ(living(), 0);
  EXPECT_FALSE(published());
}

TEST_P(NeighborTableEnd, ItEndsAllTheSameWhenAnObserverOfItsControlAttributeThrows) {
  mount();
  int told = 0;
  auto const subscription = Fwk::observe(*status_, [&](Fwk::Notification const& notification) {
    if (notification.attr != RouterNeighborRaStatus::routerNeighborRaControlAttr) return;
    ++told;
    throw std::runtime_error("observer");
  });
  Fwk::Entity& kept = *status_;
  status_ = nullptr;
  EXPECT_EQ(living(), 1);
  kept.parentIs(nullptr, 0);
  EXPECT_EQ(living(), 0);
  EXPECT_EQ(told, 1);
  EXPECT_FALSE(published());
}

TEST_P(NeighborTableEnd, ItEndsWhenItIsMountedAnewInVainWhileItUnmounts) {
  mount();
  std::string const inTheWay = directory_ + "/routing6/routerAdvt/routerNeighborRaStatus";
  auto const control = status_->routerNeighborRaControl();
  auto const subscription = Fwk::observe(*control, [&](Fwk::Notification const&) {
    if (control->mountStatus() != MountStatus::unmounted || !status_) return;
    std::filesystem::remove_all(inTheWay);
    std::ofstream(inTheWay) << "a file where a directory should be";
    mount();
  });
  status_->parentIs(nullptr, 0);
  EXPECT_EQ(control->mountStatus(), MountStatus::failed);
  EXPECT_TRUE(control->quiesced());
  status_ = nullptr;
  EXPECT_EQ(living(), 0);
}

TEST_P(NeighborTableEnd, AMemberEndsWithTheTreeThatOwnsIt) {
  status_ = nullptr;
  tree_->tables().memberIs("neighbors")->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_EQ(living(), 1);
  tree_ = nullptr;
  EXPECT_EQ(living(), 0);
  EXPECT_FALSE(published());
}

TEST_P(NeighborTableEnd, AnObserverMayDropTheLastReferenceToAnUnmountedTable) {
  auto const subscription = Fwk::observe(*status_, [this](Fwk::Notification const&) { status_ = nullptr; });
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_EQ(living(), 0);
  EXPECT_FALSE(subscription.active());
}

TEST_P(NeighborTableEnd, AnObserverMayDropTheLastReferenceToAMountedTable) {
  mount();
  Fwk::Entity& kept = *status_;
  auto const subscription = Fwk::observe(*status_, [this](Fwk::Notification const&) { status_ = nullptr; });
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_EQ(living(), 1);
  kept.parentIs(nullptr, 0);
  EXPECT_EQ(living(), 0);
}

TEST_P(NeighborTableEnd, AnObserverMayTakeItOutOfTheTreeAndDropIt) {
  mount();
  auto const subscription = Fwk::observe(*status_, [this](Fwk::Notification const&) {
    Ptr<RouterNeighborRaStatus> const last = std::exchange(status_, nullptr);
    if (last) last->parentIs(nullptr, 0);
  });
  status_->routerNeighborRaDelAll();
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  EXPECT_EQ(living(), 0);
  EXPECT_FALSE(published());
}

TEST_P(NeighborTableEnd, AnObserverOfTheControlMayDropTheTableWhileItUnmounts) {
  mount();
  auto const subscription =
      Fwk::observe(*status_->routerNeighborRaControl(), [this](Fwk::Notification const&) { status_ = nullptr; });
  Fwk::Entity& kept = *status_;
  kept.parentIs(nullptr, 0);
  EXPECT_EQ(living(), 0);
  EXPECT_FALSE(published());
}

TEST_P(NeighborTableEnd, RemovingAllBearsAnObserverThatDropsIt) {
  for (int i = 1; i <= 5; ++i) status_->routerNeighborRaIs(RouterNeighborRa(keyOf(i), i));
  mount();
  Fwk::Entity& kept = *status_;
  auto const subscription = Fwk::observe(*status_, [this](Fwk::Notification const&) { status_ = nullptr; });
  status_->routerNeighborRaDelAll();
  EXPECT_EQ(living(), 1);
  kept.parentIs(nullptr, 0);
  EXPECT_EQ(living(), 0);
}

TEST_P(NeighborTableEnd, WithItsControlTakenAwayAMountedTableEndsAndTellsTheControl) {
  mount();
  auto const control = status_->routerNeighborRaControl();
  status_->routerNeighborRaControlIs(nullptr);
  status_ = nullptr;
  EXPECT_EQ(living(), 0);
  EXPECT_FALSE(published());
  EXPECT_EQ(control->mountStatus(), MountStatus::unmounted);
}

TEST_P(NeighborTableEnd, AnotherControlKeepsItAliveInThePlaceOfTheOneBefore) {
  mount();
  auto const former = status_->routerNeighborRaControl();
  auto control = Fwk::create<CollectionControl>();
  status_->routerNeighborRaControlIs(control);
  Fwk::Entity& kept = *status_;
  status_ = nullptr;
  EXPECT_EQ(living(), 1);
  EXPECT_FALSE(former->keptEntity());
  EXPECT_TRUE(control->keptEntity());
  control = nullptr;
  EXPECT_EQ(living(), 1);
  kept.parentIs(nullptr, 0);
  EXPECT_EQ(living(), 0);
}

TEST_P(NeighborTableEnd, AControlThatComesAfterTheLastReferenceWentTakesOverWhatIsKept) {
  mount();
  auto const former = status_->routerNeighborRaControl();
  RouterNeighborRaStatus& kept = *status_;
  status_ = nullptr;
  ASSERT_TRUE(former->keptEntity());
  auto const control = Fwk::create<CollectionControl>();
  kept.routerNeighborRaControlIs(control);
  EXPECT_FALSE(former->keptEntity());
  EXPECT_TRUE(control->keptEntity());
  EXPECT_EQ(living(), 1);
  kept.parentIs(nullptr, 0);
  EXPECT_EQ(living(), 0);
  EXPECT_FALSE(published());
}

TEST_P(NeighborTableEnd, AnObserverOfARowMayDropTheLastReferenceWithinACommitOrARemoval) {
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  auto const subscription = Fwk::observe(*status_, [this](Fwk::Notification const&) { status_ = nullptr; });
  RouterNeighborRaStatus& status = *status_;
  status.routerNeighborRaCommit(*status.routerNeighborRaWritable(keyOf(1)));
  EXPECT_EQ(living(), 0);
  status_ = Table::routerNeighborRaStatusFactory("again");
  status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
  auto const another = Fwk::observe(*status_, [this](Fwk::Notification const&) { status_ = nullptr; });
  EXPECT_EQ(status_->routerNeighborRaDel(keyOf(1)).lastRaReceived(), 1.5);
  EXPECT_EQ(living(), 0);
}

// Damage in the shared memory.

class DamagedNeighborTable : public NeighborTable {
 protected:
  DamagedNeighborTable() {
    status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1.5));
    status_->routerNeighborRaIs(RouterNeighborRa(keyOf(2), 2.5));
    mount();
    status_->corruptionHandlerIs([](std::string_view message) { std::cerr << "handler: " << message << '\n'; });
  }

  /// Changes an octet of the row of `key`, which stands in the file as its octets.
  void damage(RouterNeighborRaKey const& key, std::size_t octet) {
    int const file = open(path().c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(file, 0);
    SharedTable::Geometry const g = SharedTable::Geometry::of(sizeof(RouterNeighborRa), sizeof key, 1048576, 13);
    bool found = false;
    for (U32 slot = 1; slot <= 4 && !found; ++slot) {
      RouterNeighborRaKey there;
      off_t const place = static_cast<off_t>(g.slotOffset(slot));
      ASSERT_EQ(pread(file, static_cast<void*>(&there), sizeof there, place), static_cast<ssize_t>(sizeof there));
      if (there != key) continue;
      found = true;
      U8 value = 0;
      ASSERT_EQ(pread(file, &value, 1, place + static_cast<off_t>(octet)), 1);
      value ^= 1;
      ASSERT_EQ(pwrite(file, &value, 1, place + static_cast<off_t>(octet)), 1);
    }
    close(file);
    ASSERT_TRUE(found);
  }
};

TEST_F(DamagedNeighborTable, ALookupTellsTheHandlerAndYieldsTheDefaultRow) {
  std::vector<std::string> messages;
  status_->corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  damage(keyOf(1), 50);
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)), RouterNeighborRa());
  EXPECT_THAT(messages, ElementsAre(HasSubstr("routing6/routerAdvt/routerNeighborRaStatus/routerNeighborRa")));
  EXPECT_EQ(status_->routerNeighborRa(keyOf(2)).lastRaReceived(), 2.5);
  status_->corruptionHandlerIs(nullptr);
}

TEST_F(DamagedNeighborTable, ADamagedRowStagesNothing) {
  std::vector<std::string> messages;
  status_->corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  CounterDeltas const counters;
  Heard heard(*status_);
  damage(keyOf(1), 50);
  EXPECT_EQ(status_->routerNeighborRaWritable(keyOf(1)), nullptr);
  EXPECT_EQ(messages.size(), 1u);
  EXPECT_THAT(heard.attrs, IsEmpty());
  EXPECT_THAT(counters.now(), ElementsAre(0, 0, 0));
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)), RouterNeighborRa()) << "it is as damaged as before";
  status_->routerNeighborRaCommit(RouterNeighborRa(keyOf(1), 3.5));
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)).lastRaReceived(), 3.5) << "a row that is written whole repairs it";
  EXPECT_EQ(status_->routerNeighborRa(keyOf(2)).lastRaReceived(), 2.5);
  EXPECT_EQ(messages.size(), 2u);
  status_->corruptionHandlerIs(nullptr);
}

TEST_F(DamagedNeighborTable, ACommitOfTheWritableSlotRepairsItsRowAndOnlyThat) {
  RouterNeighborRa* const row = status_->routerNeighborRaWritable(keyOf(1));
  ASSERT_NE(row, nullptr);
  damage(keyOf(1), 50);
  row->lastRaReceivedIs(3.5);
  status_->routerNeighborRaCommit(*row);
  EXPECT_EQ(status_->routerNeighborRa(keyOf(1)).lastRaReceived(), 3.5);
  EXPECT_EQ(status_->routerNeighborRa(keyOf(2)).lastRaReceived(), 2.5);
}

TEST_F(DamagedNeighborTable, ARowThatIsLostWhenUnmountingIsNotified) {
  damage(keyOf(1), 50);
  Heard heard(*status_);
  status_->parentIs(nullptr, 0);
  EXPECT_THAT(heard.keys, ElementsAre("Ethernet1-fe80::1"));
  EXPECT_EQ(status_->routerNeighborRa().size(), 1u);
}

using DamagedNeighborTableDeathTest = DamagedNeighborTable;

TEST_F(DamagedNeighborTableDeathTest, RemovingAllFailsTheTablesAssertion) {
  damage(keyOf(1), 50);
  EXPECT_DEATH(status_->routerNeighborRaDelAll(),
               "handler: .*(.|\n)*assertion \"TableMap::safeRemove\\(\\) in no man's land\" failed");
}

TEST_F(DamagedNeighborTableDeathTest, AWriteFailsTheTablesAssertion) {
  damage(keyOf(1), 40);
  EXPECT_DEATH(status_->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 3)),
               "handler: .*(.|\n)*assertion \"TableMap::safeWrite\\(\\) in no man's land\" failed");
}

TEST_F(DamagedNeighborTableDeathTest, ACommitThatHasToLookTheRowUpFailsTheTablesAssertion) {
  damage(keyOf(1), 40);
  EXPECT_DEATH(status_->routerNeighborRaCommit(RouterNeighborRa(keyOf(1), 3)),
               "handler: .*(.|\n)*assertion \"TableMap::safeWrite\\(\\) in no man's land\" failed");
}

TEST_F(DamagedNeighborTableDeathTest, ARemovalFailsTheTablesAssertion) {
  damage(keyOf(1), 50);
  EXPECT_DEATH(status_->routerNeighborRaDel(keyOf(1)),
               "handler: .*(.|\n)*assertion \"TableMap::safeRemove\\(\\) in no man's land\" failed");
}

// Reflection.

TEST_F(NeighborTable, ShowsItsAttributesByNumberAndName) {
  auto const& type = status_->fwkType();
  EXPECT_STREQ(type.name, "RouterAdvt::Table::RouterNeighborRaStatus");
  ASSERT_EQ(type.attributes.size(), 3u);
  EXPECT_STREQ(type.attribute(AttrId{258})->name, "routerNeighborRa");
  EXPECT_STREQ(type.attribute(AttrId{259})->name, "routerNeighborRaControl");
  EXPECT_STREQ(type.attribute(AttrId{260})->name, "tablePath");
  std::string text;
  EXPECT_TRUE(Fwk::readAttribute(Fwk::objectRef(*status_), "tablePath", text));
  EXPECT_EQ(text, "routing6/routerAdvt/routerNeighborRaStatus");
}

TEST_F(NeighborTable, RowsAreReadWrittenDeletedCountedAndTestedByReflection) {
  Heard heard(*status_);
  auto const used = Fwk::reflectCollection(
      Fwk::objectRef(static_cast<Fwk::Entity&>(*status_)), "routerNeighborRa", [&](Fwk::CollectionView const& rows) {
        EXPECT_TRUE(rows.set("Ethernet1-fe80::1", "12.5"));
        EXPECT_EQ(rows.size(), 1u);
        EXPECT_TRUE(rows.contains("Ethernet1-fe80::1"));
        EXPECT_FALSE(rows.contains("Ethernet1-fe80::2"));
        std::string time;
        EXPECT_TRUE(rows.get("Ethernet1-fe80::1", [&](Fwk::MemberRef const& member) {
          EXPECT_TRUE(Fwk::readAttribute(member.value, "lastRaReceived", time));
        }));
        EXPECT_EQ(time, "12.5");
        EXPECT_EQ(rows.get("fe80::1", [](auto const&) {}).error, Fwk::ReflectionError::malformed);
        EXPECT_EQ(rows.set("Ethernet1-fe80::1", "soon").error, Fwk::ReflectionError::malformed);
        EXPECT_EQ(rows.del("Ethernet1-fe80::2").error, Fwk::ReflectionError::noSuchMember);
        std::vector<std::string> keys;
        rows.forEach([&](Fwk::MemberRef const& member) {
          keys.push_back(member.key);
          return true;
        });
        EXPECT_THAT(keys, ElementsAre("Ethernet1-fe80::1"));
        EXPECT_TRUE(rows.del("Ethernet1-fe80::1"));
        EXPECT_EQ(rows.size(), 0u);
      });
  EXPECT_TRUE(used);
  EXPECT_EQ(heard.keys.size(), 2u);
}

TEST_F(NeighborTable, IsMadeByReflectionFromAName) {
  Ptr<Fwk::Entity> made = RouterNeighborRaStatus::typeRecord().create("other");
  ASSERT_TRUE(made);
  EXPECT_EQ(made->name(), Name("other"));
  made = nullptr;
  EXPECT_EQ(living(), 1);
}

/// A root of an agent's own that owns the table as a child attribute.
class Agent final : public Fwk::Entity {
 public:
  enum Attr : AttrId { neighborsAttr = Fwk::firstOwnAttr };
  explicit Agent(Name name) : name_(name) {}
  Name name() const override { return name_; }
  Ptr<RouterNeighborRaStatus> neighborsIs(Name const& name) { return neighbors_.childIs(name); }

  static constexpr char const* fwkTypeName = "Test::Agent";
  static Fwk::TypeRecord const& typeRecord() {
    static constinit Fwk::LiveCount live;
    static constexpr auto attrs = Fwk::attributes<Agent>(Fwk::child<&Agent::neighbors_>("neighbors"));
    static constexpr Fwk::TypeRecord record = Fwk::entityRecord<Agent, Name>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Agent() override = default;
  Name name_;
  Fwk::OwnedChild<RouterNeighborRaStatus> neighbors_{*this, neighborsAttr};
};

TEST_F(NeighborTable, AsAnAgentsChildIsMountedUntilTheAgentEnds) {
  Ptr<Agent> agent = Fwk::create<Agent>("agent");
  Ptr<RouterNeighborRaStatus> table = agent->neighborsIs("neighbors");
  table->routerNeighborRaIs(RouterNeighborRa(keyOf(1), 1));
  EXPECT_EQ(table->routerNeighborRaControl()->mountStatus(), MountStatus::mounted);
  EXPECT_EQ(table->fullName(), "agent/neighbors[neighbors]");
  EXPECT_TRUE(published());
  agent = nullptr;
  EXPECT_EQ(table->parent(), nullptr);
  EXPECT_EQ(table->routerNeighborRaControl()->mountStatus(), MountStatus::unmounted);
  EXPECT_FALSE(published());
  EXPECT_EQ(table->routerNeighborRa().size(), 1U);
}

TEST_F(NeighborTable, IsUnmountedWhenTheParentThatItWasGivenDirectlyEnds) {
  mount();
  EXPECT_TRUE(published());
  tree_ = nullptr;
  EXPECT_EQ(status_->parent(), nullptr);
  EXPECT_EQ(status_->fullName(), "neighbors");
  EXPECT_EQ(status_->routerNeighborRaControl()->mountStatus(), MountStatus::unmounted);
  EXPECT_FALSE(published());
}

TEST_F(NeighborTable, EndsAndGivesItsPlaceFreeWhenItsParentEndsFirst) {
  {
    Ptr<RouterNeighborRaStatus> const table = Table::routerNeighborRaStatusFactory("other");
    Ptr<Tree> const root = Fwk::create<Tree>("root");
    table->parentIs(root.get(), 0);
    EXPECT_TRUE(published());
  }
  EXPECT_EQ(living(), 1);  // the fixture's
  mount();
  EXPECT_FALSE(status_->mountError());
}

TEST_F(NeighborTable, EndsWithItsParentWhenNobodyElseHoldsIt) {
  mount();
  status_ = nullptr;
  EXPECT_EQ(living(), 1);  // its control keeps it while it is mounted
  tree_ = nullptr;
  EXPECT_EQ(living(), 0);
  EXPECT_FALSE(published());
}

TEST_F(NeighborTable, GivesItsControlByReflection) {
  Ptr<Fwk::Entity> control;
  EXPECT_TRUE(Fwk::readReference(Fwk::objectRef(*status_), "routerNeighborRaControl", control));
  EXPECT_EQ(control, status_->routerNeighborRaControl());
  EXPECT_EQ(&control->fwkType(), &SharedTable::CollectionControl::typeRecord());
  control = nullptr;
  status_->routerNeighborRaControlIs(nullptr);
  EXPECT_TRUE(
      Fwk::readReference(Fwk::objectRef(*status_), RouterNeighborRaStatus::routerNeighborRaControlAttr, control));
  EXPECT_EQ(control, nullptr);
}

}  // namespace

#include <tests/RouterPlatform/SharedTable/TableFixture.h>

#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <new>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace SharedTableTest;
using namespace std::chrono_literals;
using SharedTable::WaitResult;

constexpr U64 lasting = 200;  ///< keys 0 to this are in every table that any writer ever publishes

/// What the reader process tells the test, in memory that both have.
struct Report {
  std::atomic<bool> stop{false};
  std::atomic<U64> lookups{0};
  std::atomic<U64> walks{0};
  std::atomic<U64> attachments{0};
  std::atomic<U64> torn{0};
  std::atomic<U64> missed{0};
  std::atomic<U64> busy{0};
  std::atomic<U64> corrupt{0};
  std::atomic<U64> wentBack{0};  ///< a version older than one seen before in the same table
};

/// Number of rounds: from the environment in a long run, otherwise what a quick test does.
U64 rounds(U64 usual) {
  char const* const set = std::getenv("SHARED_TABLE_KILLS");
  return set ? std::strtoull(set, nullptr, 10) : usual;
}

class KilledWriters : public Tables {
 protected:
  KilledWriters() {
    void* const memory = mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    EXPECT_NE(memory, MAP_FAILED);
    report_ = new (memory) Report;
  }
  ~KilledWriters() override { munmap(report_, sizeof(Report)); }

  /// A process that runs `body` until it ends or is ended.
  template <class Body>
  pid_t start(Body const& body) {
    pid_t const child = fork();
    if (child != 0) return child;
    body();
    _exit(0);
  }
  static int reap(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
  }
  static void killAndReap(pid_t child) {
    kill(child, SIGKILL);
    EXPECT_TRUE(WIFSIGNALED(reap(child)));
  }

  /// Publishes the lasting rows, then changes rows as fast as it can, for ever: the lasting ones get new versions,
  /// others come and go, the index grows and is cleaned.
  void write(U64 seed) {
    std::mt19937_64 random(seed);
    Writer writer(collection, writerOptions(8, 4096));
    for (U64 i = 0; i < lasting; ++i) writer.rowIs(Row(i, 0));
    if (writer.mountPathIs(mountPath)) _exit(1);
    for (U64 version = 1;; ++version) {
      writer.rowIs(Row(random() % lasting, version));
      U64 const number = lasting + random() % (version < 2000 ? 500 : 3500);
      if (random() % 2)
        writer.rowIs(Row(number, version));
      else
        writer.rowDel(Key::of(number));
      if (Row* const row = version % 16 == 0 ? writer.writable(Key::of(random() % lasting)) : nullptr) {
        row->versionIs(version);
        writer.commit(*row);
      }
    }
  }

  void checkLookups(Reader& reader, std::vector<U64>& versions, std::mt19937_64& random) {
    for (int i = 0; i < 500; ++i) {
      U64 const number = random() % lasting;
      auto const found = reader.row(Key::of(number));
      ++report_->lookups;
      if (found.status == LookupStatus::missing) ++report_->missed;
      if (found.status == LookupStatus::busy) ++report_->busy;
      if (found.status == LookupStatus::corrupt) ++report_->corrupt;
      if (!found) continue;
      if (!found.row.whole() || found.row.number() != number) ++report_->torn;
      if (found.row.version() < versions[number]) ++report_->wentBack;
      versions[number] = found.row.version();
    }
  }

  void checkWalk(Reader& reader) {
    std::vector<int> seen(lasting);
    SharedTable::WalkResult const result = reader.forEach([&](Row const& row) {
      if (!row.whole()) ++report_->torn;
      if (row.number() < lasting) ++seen[row.number()];
    });
    report_->busy += result.busy;
    report_->corrupt += result.corrupt;
    for (int const times : seen) report_->missed += times != 1;
    ++report_->walks;
  }

  /// A reader as programs have it: it looks rows up, walks, and follows the table from writer to writer.
  void read(U64 seed) {
    std::mt19937_64 random(seed);
    Reader reader(mountPath, collection, readerOptions());
    std::vector<U64> versions(lasting);
    while (!report_->stop) {
      WaitResult const happened = reader.wait(reader.changeCount() + 1, 0ms);
      if (happened == WaitResult::attached) {
        ++report_->attachments;
        versions.assign(lasting, 0);
      }
      if (!reader.attached()) continue;
      checkLookups(reader, versions, random);
      checkWalk(reader);
    }
  }

  void expectNothingWrong() const {
    EXPECT_EQ(report_->torn, 0u);
    EXPECT_EQ(report_->missed, 0u);
    EXPECT_EQ(report_->busy, 0u);
    EXPECT_EQ(report_->corrupt, 0u);
    EXPECT_EQ(report_->wentBack, 0u);
  }

  /// The table as a reader finds it who comes only now.
  void checkWhatIsLeft() {
    Reader reader(mountPath, collection, readerOptions());
    SharedTable::Error const error = reader.attach();
    if (error.code == Errc::noTable) return;  // the first writer was killed before it published one
    ASSERT_FALSE(error) << error.text;
    EXPECT_FALSE(reader.writer().alive);
    std::mt19937_64 random(1);
    std::vector<U64> versions(lasting);
    checkLookups(reader, versions, random);
    checkWalk(reader);
    ++tablesLeft_;
  }

  Report* report_ = nullptr;
  U64 tablesLeft_ = 0;
};

TEST_F(KilledWriters, LeaveEveryLastingRowWholeForReadersThatAreThereAndForThoseThatCome) {
  U64 const kills = rounds(200);
  std::mt19937_64 random(kills);
  std::vector<pid_t> readers{start([this] { read(1); }), start([this] { read(2); })};
  for (U64 round = 0; round < kills; ++round) {
    pid_t const writer = start([&] { write(round); });
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 10000));
    if (round % 8 == 0) {  // a reader is killed too, anywhere; nobody minds
      killAndReap(readers[0]);
      readers[0] = start([&] { read(round); });
    }
    killAndReap(writer);
    checkWhatIsLeft();
  }
  report_->stop = true;
  for (pid_t const reader : readers) EXPECT_EQ(reap(reader), 0);
  expectNothingWrong();
  EXPECT_GT(tablesLeft_, kills / 2);
  EXPECT_GT(report_->lookups, kills * 100);
  EXPECT_GT(report_->walks, kills / 4);
  EXPECT_GT(report_->attachments, 10u);
  std::cout << kills << " writers killed; " << report_->lookups << " lookups, " << report_->walks << " walks, "
            << report_->attachments << " attachments; torn " << report_->torn << ", missed " << report_->missed
            << ", corrupt " << report_->corrupt << "\n";
}

TEST_F(KilledWriters, AreNoticedByWaitersWhichThenFindTheNextOne) {
  Reader reader(mountPath, collection, readerOptions());
  pid_t const first = start([this] {
    Writer writer(collection, writerOptions());
    writer.rowIs(Row(1, 1));
    if (writer.mountPathIs(mountPath)) _exit(1);
    pause();
  });
  ASSERT_EQ(reader.wait(0, 20s), WaitResult::attached);
  EXPECT_TRUE(reader.writer().alive);
  killAndReap(first);
  auto const start = std::chrono::steady_clock::now();
  EXPECT_EQ(reader.wait(reader.changeCount(), 20s), WaitResult::writerGone);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 15s);
  EXPECT_FALSE(reader.writer().alive);
  EXPECT_EQ(reader.writer().retiredTime, 0u);
  EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 1)) << "the last rows stay readable";
  EXPECT_EQ(reader.wait(reader.changeCount(), 50ms), WaitResult::timedOut) << "told once";

  Writer second(collection, writerOptions());
  second.rowIs(Row(1, 2));
  ASSERT_FALSE(second.mountPathIs(mountPath));
  EXPECT_EQ(reader.wait(reader.changeCount(), 20s), WaitResult::attached);
  EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 2));
}

TEST_F(KilledWriters, LeaveTheirRowsToAReaderThatCannotTellWhetherThereIsANextOne) {
  pid_t const first = start([this] {
    Writer writer(collection, writerOptions());
    writer.rowIs(Row(1, 1));
    if (writer.mountPathIs(mountPath)) _exit(1);
    pause();
  });
  Reader reader(mountPath, collection, readerOptions());
  ASSERT_EQ(reader.wait(0, 20s), WaitResult::attached);
  ASSERT_EQ(chmod(path("").c_str(), 0777), 0);  // what stands in there is not to be trusted
  killAndReap(first);
  EXPECT_EQ(reader.wait(reader.changeCount(), 20s), WaitResult::writerGone);
  EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 1));
}

TEST_F(KilledWriters, AnywhereInAnUnmountingLeaveAWholeTableOrNone) {
  U64 const kills = rounds(200);
  std::mt19937_64 random(kills);
  std::vector<pid_t> readers{start([this] { read(1); })};
  U64 tables = 0;
  for (U64 round = 0; round < kills; ++round) {
    pid_t const writer = start([this] {
      Writer mounting(collection, writerOptions(8, 4096));
      for (U64 i = 0; i < lasting; ++i) mounting.rowIs(Row(i, 0));
      while (!mounting.mountPathIs(mountPath) && !mounting.mountPathDel()) continue;
    });
    std::this_thread::sleep_for(std::chrono::microseconds(1000 + random() % 4000));
    killAndReap(writer);
    tables += std::filesystem::exists(path());
    checkWhatIsLeft();
    Writer next(collection, writerOptions());
    for (U64 i = 0; i < lasting; ++i) next.rowIs(Row(i, 0));
    ASSERT_FALSE(next.mountPathIs(mountPath)) << "whatever it left holds nobody up";
  }
  report_->stop = true;
  for (pid_t const reader : readers) EXPECT_EQ(reap(reader), 0);
  expectNothingWrong();
  EXPECT_GT(tables, 0u);
  EXPECT_LT(tables, kills);
  std::cout << kills << " writers killed as they mounted and unmounted; " << tables << " left a table; torn "
            << report_->torn << ", missed " << report_->missed << ", corrupt " << report_->corrupt << "\n";
}

TEST_F(KilledWriters, HaveTheirFileRetiredByTheNextOne) {
  pid_t const first = start([this] {
    Writer writer(collection, writerOptions());
    if (writer.mountPathIs(mountPath)) _exit(1);
    kill(getpid(), SIGKILL);
  });
  EXPECT_TRUE(WIFSIGNALED(reap(first)));
  Reader reader(mountPath, collection, readerOptions());
  ASSERT_FALSE(reader.attach());
  EXPECT_EQ(reader.writer().retiredTime, 0u);
  Writer second(collection, writerOptions());
  ASSERT_FALSE(second.mountPathIs(mountPath));
  EXPECT_NE(reader.writer().retiredTime, 0u);
}

TEST_F(KilledWriters, StoppedOnesHoldNobodyUp) {
  pid_t const writer = start([this] { write(1); });
  Reader reader(mountPath, collection, readerOptions());
  ASSERT_EQ(reader.wait(0, 20s), WaitResult::attached);
  std::mt19937_64 random(1);
  std::vector<U64> versions(lasting);
  for (int round = 0; round < 100; ++round) {
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
    ASSERT_EQ(kill(writer, SIGSTOP), 0);
    int status = 0;
    ASSERT_EQ(waitpid(writer, &status, WUNTRACED), writer);
    ASSERT_TRUE(WIFSTOPPED(status));
    U64 const changes = reader.changeCount();
    checkLookups(reader, versions, random);
    checkWalk(reader);
    EXPECT_TRUE(reader.forEach([](Row const&) {}).exact);
    EXPECT_EQ(reader.changeCount(), changes);
    EXPECT_TRUE(reader.writer().alive) << "stopped is not dead";
    ASSERT_EQ(kill(writer, SIGCONT), 0);
  }
  killAndReap(writer);
  expectNothingWrong();
}

}  // namespace

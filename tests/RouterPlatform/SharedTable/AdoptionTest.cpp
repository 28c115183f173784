// A writer that takes over the rows of a dead one.

#include <RouterPlatform/SharedTable/WriterCore.h>
#include <RouterPlatform/Stats/Counter.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace SharedTableTest;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class Adoption : public Tables {
 protected:
  SharedTable::WriterOptions adopting(U32 maxRows = 1024) const {
    SharedTable::WriterOptions options = writerOptions(8, maxRows);
    options.adoptRows = true;
    return options;
  }

  /// Ends of a process that runs `body`.
  template <class Body>
  static int statusOf(Body const& body) {
    pid_t const child = fork();
    if (child == 0) {
      body();
      _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
  }

  /// A writer of rows 1 to `rows` that is killed while its table is mounted.
  void leaveRows(U64 rows) {
    int const status = statusOf([&] {
      Writer writer(collection, writerOptions());
      if (writer.mountPathIs(mountPath)) _exit(1);
      for (U64 i = 1; i <= rows; ++i) writer.rowIs(Row(i, i));
      kill(getpid(), SIGKILL);
    });
    ASSERT_TRUE(WIFSIGNALED(status));
  }

  static std::set<U64> numbersOf(auto const& table) {
    std::set<U64> numbers;
    table.forEach([&](Row const& row) { numbers.insert(row.number()); });
    return numbers;
  }
};

TEST_F(Adoption, IsNotDoneUnlessItIsAskedFor) {
  leaveRows(3);
  Writer writer(collection, writerOptions());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_THAT(numbersOf(writer), IsEmpty());
}

TEST_F(Adoption, TakesOverTheRowsOfADeadWriterForWriterAndReaders) {
  leaveRows(3);
  Reader reader(mountPath, collection, readerOptions());
  ASSERT_FALSE(reader.attach());
  Writer writer(collection, adopting());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(writer.count(), 3u);
  EXPECT_EQ(writer.row(Key::of(2)), Row(2, 2));
  EXPECT_EQ(reader.wait(reader.changeCount(), 10s), SharedTable::WaitResult::attached);
  EXPECT_EQ(reader.row(Key::of(3)).row, Row(3, 3));
  EXPECT_TRUE(reader.forEach([](Row const&) {}).exact);
}

TEST_F(Adoption, KeepsTheRowsThatTheWriterHasAlreadyAndTellsOfTheOthers) {
  leaveRows(3);
  Writer writer(collection, adopting());
  writer.rowIs(Row(2, 22));
  std::vector<U64> changed;
  bool mountedFirst = true;
  writer.callbacksAre({[&](Key const& key) {
                         changed.push_back(key.number());
                         mountedFirst = mountedFirst && writer.mountStatus() == MountStatus::mounted;
                       },
                       nullptr, nullptr});
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_THAT(changed, UnorderedElementsAre(1, 3));
  EXPECT_TRUE(mountedFirst);
  EXPECT_EQ(writer.row(Key::of(2)), Row(2, 22));
  EXPECT_EQ(writer.row(Key::of(3)), Row(3, 3));
}

TEST_F(Adoption, FindsNothingAfterAWriterThatUnmounted) {
  {
    Writer first(collection, writerOptions());
    first.rowIs(Row(1, 1));
    ASSERT_FALSE(first.mountPathIs(mountPath));
  }
  Writer writer(collection, adopting());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(writer.count(), 0u);
}

TEST_F(Adoption, LeavesAFileThatItsWriterHasEndedAlone) {
  Writer first(collection, writerOptions());
  first.rowIs(Row(1, 1));
  ASSERT_FALSE(first.mountPathIs(mountPath));
  std::filesystem::create_hard_link(path(), path("kept"));
  ASSERT_FALSE(first.mountPathDel());
  std::filesystem::rename(path("kept"), path());
  Writer writer(collection, adopting());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(writer.count(), 0u);
}

TEST_F(Adoption, RefusedByALivingWriterTouchesNothing) {
  Writer first(collection, writerOptions());
  first.rowIs(Row(1, 1));
  ASSERT_FALSE(first.mountPathIs(mountPath));
  Writer writer(collection, adopting());
  EXPECT_EQ(writer.mountPathIs(mountPath).code, Errc::secondWriter);
  EXPECT_EQ(writer.count(), 0u);
}

TEST_F(Adoption, LeavesOutRowsThatDoNotFitCountsAndTracesThat) {
  leaveRows(20);
  Trace::Capture trace("SharedTable", "2");
  U64 const full = Stats::counter("sharedTableFull").value();
  Writer writer(collection, adopting(8));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(writer.count(), 8u);
  EXPECT_EQ(Stats::counter("sharedTableFull").value(), full + 1);
  EXPECT_THAT(trace.texts(2), ElementsAre(HasSubstr(" of test/tables/row: table full")));
  EXPECT_THAT(trace.texts(2), ElementsAre(HasSubstr("Could not adopt row Ethernet")));
}

TEST_F(Adoption, LeavesOutDamagedRowsAndTellsTheHandler) {
  leaveRows(3);
  SharedTable::FixedHeader header{};
  {
    SharedTable::Fd const file(open(path().c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(pread(file.get(), &header, sizeof header, 0), static_cast<ssize_t>(sizeof header));
  }
  octetAtIs(path(), header.slotsOffset + 60, octetAt(path(), header.slotsOffset + 60) ^ 1);
  Writer writer(collection, adopting());
  std::vector<std::string> messages;
  writer.corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(writer.count(), 2u);
  EXPECT_THAT(messages, ElementsAre(HasSubstr("damaged slot 1 at offset ")));
  EXPECT_THAT(messages, ElementsAre(HasSubstr("while adopting rows")));
}

TEST_F(Adoption, SaysWhyAFileCannotBeAdoptedAndMountsAllTheSame) {
  leaveRows(3);
  octetAtIs(path(), 12, 99);  // the version
  Trace::Capture trace("SharedTable", "2");
  Writer writer(collection, adopting());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(writer.count(), 0u);
  EXPECT_THAT(trace.texts(2), ElementsAre(HasSubstr("Could not adopt rows of test/tables/row: damaged: ")));
}

/// Writers follow each other; each adopts, adds rows, and is killed at some moment from before its mounting on. A row
/// that a reader has seen is never lost.
TEST_F(Adoption, LosesNoRowWhereverAWriterIsKilled) {
  std::mt19937_64 random(5);
  std::set<U64> seen;
  U64 mounted = 0;
  for (U64 round = 0; round < 150; ++round) {
    pid_t const child = fork();
    if (child == 0) {
      Writer writer(collection, adopting(4096));
      if (writer.mountPathIs(mountPath)) _exit(1);
      for (U64 i = 0; i < 10; ++i) writer.rowIs(Row(round * 10 + i, 1));
      pause();
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 6000));
    kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "it could not mount";
    Reader reader(mountPath, collection, readerOptions());
    SharedTable::Error const error = reader.attach();
    if (error.code == Errc::noTable && seen.empty()) continue;
    ASSERT_FALSE(error) << error.text;
    std::set<U64> now;
    SharedTable::WalkResult const walked = reader.forEach([&](Row const& row) {
      EXPECT_TRUE(row.whole());
      now.insert(row.number());
    });
    EXPECT_EQ(walked.corrupt, 0u);
    EXPECT_TRUE(std::includes(now.begin(), now.end(), seen.begin(), seen.end())) << round;
    mounted += now.size() > seen.size();
    seen = std::move(now);
  }
  EXPECT_GT(mounted, 20u);
}

}  // namespace

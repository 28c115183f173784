#include <RouterPlatform/Stats/Counter.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <sched.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <stdexcept>

namespace {

using namespace SharedTableTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::map<U64, U64> contentsOf(Writer const& writer) {
  std::map<U64, U64> contents;
  SharedTable::WalkResult const result = writer.forEach([&](Row const& row) {
    EXPECT_TRUE(row.whole());
    EXPECT_TRUE(contents.emplace(row.number(), row.version()).second) << "visited twice: " << row.number();
  });
  EXPECT_TRUE(result.exact);
  EXPECT_EQ(result.rows, contents.size());
  return contents;
}

/// Everything holds for a writer whose rows are its own and for one whose rows are mounted.
class WriterOperations : public Tables, public testing::WithParamInterface<bool> {
 protected:
  WriterOperations() : writer_(collection, writerOptions()) {
    if (GetParam()) {
      EXPECT_FALSE(writer_.mountPathIs(mountPath));
    }
  }
  Writer writer_;
};
INSTANTIATE_TEST_SUITE_P(SharedTable, WriterOperations, testing::Bool(),
                         [](auto const& of) { return of.param ? "Mounted" : "Unmounted"; });

TEST_P(WriterOperations, ANewTableIsEmpty) {
  EXPECT_EQ(writer_.count(), 0u);
  EXPECT_EQ(writer_.row(Key::of(1)), std::nullopt);
  EXPECT_THAT(contentsOf(writer_), IsEmpty());
}

TEST_P(WriterOperations, AWrittenRowIsFound) {
  EXPECT_EQ(writer_.rowIs(Row(1, 10)), WriteStatus::ok);
  EXPECT_EQ(writer_.row(Key::of(1)), Row(1, 10));
  EXPECT_TRUE(writer_.contains(Key::of(1)));
  EXPECT_FALSE(writer_.contains(Key::of(2)));
  EXPECT_EQ(writer_.count(), 1u);
}

TEST_P(WriterOperations, WritingAgainReplacesTheRow) {
  writer_.rowIs(Row(1, 10));
  writer_.rowIs(Row(1, 11));
  EXPECT_EQ(writer_.row(Key::of(1)), Row(1, 11));
  EXPECT_EQ(writer_.count(), 1u);
  EXPECT_EQ(writer_.changeCount(), 2u);
}

TEST_P(WriterOperations, RemovingReturnsTheRow) {
  writer_.rowIs(Row(1, 10));
  writer_.rowIs(Row(2, 20));
  EXPECT_EQ(writer_.rowDel(Key::of(1)), Row(1, 10));
  EXPECT_EQ(writer_.row(Key::of(1)), std::nullopt);
  EXPECT_EQ(writer_.row(Key::of(2)), Row(2, 20));
  EXPECT_EQ(writer_.count(), 1u);
}

TEST_P(WriterOperations, RemovingAnAbsentKeyReturnsNothingAndIsNoChange) {
  writer_.rowIs(Row(1, 10));
  EXPECT_EQ(writer_.rowDel(Key::of(2)), std::nullopt);
  EXPECT_EQ(writer_.changeCount(), 1u);
}

TEST_P(WriterOperations, RemovingAllLeavesAnEmptyTable) {
  for (U64 i = 0; i < 200; ++i) writer_.rowIs(Row(i, i));
  writer_.rowDelAll();
  EXPECT_EQ(writer_.count(), 0u);
  EXPECT_THAT(contentsOf(writer_), IsEmpty());
}

TEST_P(WriterOperations, TheTableGrowsWithItsRows) {
  std::map<U64, U64> expected;
  for (U64 i = 0; i < 1024; ++i) {
    ASSERT_EQ(writer_.rowIs(Row(i, i * 3)), WriteStatus::ok);
    expected[i] = i * 3;
  }
  EXPECT_EQ(writer_.count(), 1024u);
  EXPECT_EQ(contentsOf(writer_), expected);
}

TEST_P(WriterOperations, ARowAboveTheMaximumIsRefusedCountedAndTracedAndTheRestStaysUsable) {
  Trace::Capture trace("SharedTable", "2");
  for (U64 i = 0; i < 1024; ++i) writer_.rowIs(Row(i, 0));
  U64 const refused = Stats::counter("sharedTableFull").value();
  EXPECT_EQ(writer_.rowIs(Row(5000, 0)), WriteStatus::full);
  EXPECT_EQ(Stats::counter("sharedTableFull").value(), refused + 1);
  EXPECT_THAT(trace.texts(2), ElementsAre(HasSubstr("Could not write row Ethernet2-fe80::1388 to ")));
  EXPECT_THAT(trace.texts(2), ElementsAre(HasSubstr("table full ( 1024 rows, 1024 at most )")));
  EXPECT_EQ(writer_.row(Key::of(5000)), std::nullopt);
  for (U64 i = 0; i < 1024; ++i) ASSERT_EQ(writer_.rowIs(Row(i, 1)), WriteStatus::ok);
  EXPECT_TRUE(writer_.rowDel(Key::of(7)));
  EXPECT_EQ(writer_.rowIs(Row(5000, 0)), WriteStatus::ok);
  EXPECT_EQ(writer_.count(), 1024u);
}

TEST_P(WriterOperations, ARowChangedInTheWritableSlotIsPublishedByCommit) {
  writer_.rowIs(Row(1, 10));
  Row* const row = writer_.writable(Key::of(1));
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(*row, Row(1, 10));
  row->versionIs(11);
  EXPECT_EQ(writer_.row(Key::of(1)), Row(1, 10)) << "not before the commit";
  EXPECT_EQ(writer_.commit(*row), WriteStatus::ok);
  EXPECT_EQ(writer_.row(Key::of(1)), Row(1, 11));
  row->versionIs(12);
  EXPECT_EQ(writer_.commit(*row), WriteStatus::ok);
  EXPECT_EQ(writer_.row(Key::of(1)), Row(1, 12));
  EXPECT_EQ(writer_.count(), 1u);
}

TEST_P(WriterOperations, ThereIsNoWritableSlotForAnAbsentKey) { EXPECT_EQ(writer_.writable(Key::of(1)), nullptr); }

TEST_P(WriterOperations, ACommitOfARowThatWentMeanwhileCreatesItAnew) {
  writer_.rowIs(Row(1, 10));
  Row* const row = writer_.writable(Key::of(1));
  writer_.rowDel(Key::of(1));
  writer_.rowIs(Row(2, 20));
  EXPECT_EQ(writer_.commit(*row), WriteStatus::ok);
  EXPECT_EQ(writer_.row(Key::of(1)), Row(1, 10));
  EXPECT_EQ(writer_.row(Key::of(2)), Row(2, 20));
}

TEST_P(WriterOperations, ACommitAfterTheTableGrewFindsTheRow) {
  writer_.rowIs(Row(1, 10));
  Row* const row = writer_.writable(Key::of(1));
  for (U64 i = 2; i < 500; ++i) writer_.rowIs(Row(i, 0));
  row->versionIs(11);
  EXPECT_EQ(writer_.commit(*row), WriteStatus::ok);
  EXPECT_EQ(writer_.row(Key::of(1)), Row(1, 11));
  EXPECT_EQ(writer_.count(), 499u);
}

TEST_P(WriterOperations, ACommitOfAnotherRowWritesThatRow) {
  writer_.rowIs(Row(1, 10));
  writer_.writable(Key::of(1));
  EXPECT_EQ(writer_.commit(Row(2, 20)), WriteStatus::ok);
  EXPECT_EQ(writer_.row(Key::of(1)), Row(1, 10));
  EXPECT_EQ(writer_.row(Key::of(2)), Row(2, 20));
}

TEST_P(WriterOperations, AWalkCanBeStopped) {
  for (U64 i = 0; i < 100; ++i) writer_.rowIs(Row(i, 0));
  int visited = 0;
  SharedTable::WalkResult const result = writer_.forEach([&](Row const&) { return ++visited < 5; });
  EXPECT_EQ(visited, 5);
  EXPECT_TRUE(result.stopped);
  EXPECT_FALSE(result.exact);
}

TEST_P(WriterOperations, AWalkBearsEveryChangeOfRowsAndVisitsWhatStaysOnce) {
  for (U64 i = 0; i < 100; ++i) writer_.rowIs(Row(i, 0));
  std::multiset<U64> visited;
  U64 next = 1000;
  SharedTable::WalkResult const result = writer_.forEach([&](Row const& row) {
    visited.insert(row.number());
    if (row.number() < 50) writer_.rowDel(row.key());
    for (int i = 0; i < 5 && next < 1500; ++i) writer_.rowIs(Row(next++, 0));  // the index grows several times
  });
  EXPECT_FALSE(result.exact);
  for (U64 i = 50; i < 100; ++i) EXPECT_EQ(visited.count(i), 1u) << i;
  for (U64 const number : visited) EXPECT_EQ(visited.count(number), 1u) << number;
}

TEST_P(WriterOperations, ManyChangesLeaveWhatAMapWouldHold) {
  std::mt19937_64 random(7);
  std::map<U64, U64> expected;
  for (U64 version = 1; version < 60000; ++version) {
    // New keys all the time, so that tombstones pile up and the index is cleaned; and keys that come back.
    U64 const number = random() % 2 ? random() % 400 : version / 100 * 50 + random() % 200;
    if (random() % 5 < 2 || expected.size() > 600) {
      auto const removed = writer_.rowDel(Key::of(number));
      auto const it = expected.find(number);
      ASSERT_EQ(removed.has_value(), it != expected.end());
      if (removed) {
        ASSERT_EQ(removed->version(), it->second);
        expected.erase(it);
      }
    } else {
      ASSERT_EQ(writer_.rowIs(Row(number, version)), WriteStatus::ok);
      expected[number] = version;
    }
    if (version % 5000 == 0) {
      ASSERT_EQ(contentsOf(writer_), expected);
      for (auto const& [n, v] : expected) ASSERT_EQ(writer_.row(Key::of(n)), Row(n, v));
    }
  }
  EXPECT_EQ(writer_.count(), expected.size());
}

class WriterMounting : public Tables {};

TEST_F(WriterMounting, KeepsTheRowsInTheTableAndTakesThemBack) {
  Writer writer(collection, writerOptions());
  std::map<U64, U64> expected;
  for (U64 i = 0; i < 300; ++i) {
    writer.rowIs(Row(i, i));
    expected[i] = i;
  }
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(writer.mountStatus(), MountStatus::mounted);
  EXPECT_EQ(contentsOf(writer), expected);
  EXPECT_TRUE(std::filesystem::exists(path()));
  writer.rowIs(Row(500, 1));
  expected[500] = 1;
  ASSERT_FALSE(writer.mountPathDel());
  EXPECT_EQ(writer.mountStatus(), MountStatus::unmounted);
  EXPECT_EQ(contentsOf(writer), expected);
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(WriterMounting, LeavesTheRemainsOfRemovedRowsBehind) {
  Writer writer(collection, writerOptions());
  for (U64 i = 0; i < 500; ++i) writer.rowIs(Row(i, i));
  std::map<U64, U64> expected;
  for (U64 i = 0; i < 500; ++i) i % 3 == 0 ? void(writer.rowDel(Key::of(i))) : void(expected[i] = i);
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(contentsOf(writer), expected);
}

TEST_F(WriterMounting, EndsWithoutTakingTheNameFromAnotherFile) {
  Writer writer(collection, writerOptions());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  std::filesystem::copy_file(path(), path("copy"));
  std::filesystem::rename(path("copy"), path());
  ASSERT_FALSE(writer.mountPathDel());
  EXPECT_TRUE(std::filesystem::exists(path()));
}

TEST_F(WriterMounting, CanBeRepeatedAndMoved) {
  Writer writer(collection, writerOptions());
  writer.rowIs(Row(1, 1));
  for (int i = 0; i < 3; ++i) {
    ASSERT_FALSE(writer.mountPathIs(mountPath));
    ASSERT_FALSE(writer.mountPathIs(mountPath)) << "the same path again is no change";
    ASSERT_FALSE(writer.mountPathIs("elsewhere"));
    EXPECT_FALSE(std::filesystem::exists(path()));
    EXPECT_TRUE(std::filesystem::exists(directory_ + "/elsewhere/row.tbl"));
    ASSERT_FALSE(writer.mountPathIs(""));
    EXPECT_EQ(writer.row(Key::of(1)), Row(1, 1));
  }
}

TEST_F(WriterMounting, EndsWithTheWriter) {
  {
    Writer writer(collection, writerOptions());
    ASSERT_FALSE(writer.mountPathIs(mountPath));
    EXPECT_TRUE(std::filesystem::exists(path()));
  }
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(WriterMounting, TellsItsOwnerInOrder) {
  Writer writer(collection, writerOptions());
  std::vector<std::string> heard;
  writer.callbacksAre(
      {[&](Key const&) { heard.push_back("row"); },
       [&] { heard.push_back(writer.mountStatus() == MountStatus::mounted ? "mounted" : "not mounted"); },
       [&](bool quiesced) { heard.push_back(quiesced ? "quiesced" : "active"); }});
  writer.rowIs(Row(1, 1));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  writer.rowIs(Row(1, 2));
  writer.rowDel(Key::of(1));
  ASSERT_FALSE(writer.mountPathDel());
  EXPECT_THAT(heard, ElementsAre("active", "mounted", "not mounted", "quiesced"));
}

TEST_F(WriterMounting, TheLastCallbackMayEndTheWriter) {
  auto writer = std::make_unique<Writer>(collection, writerOptions());
  ASSERT_FALSE(writer->mountPathIs(mountPath));
  writer->callbacksAre({nullptr, nullptr, [&](bool quiesced) {
                          if (quiesced) writer.reset();
                        }});
  EXPECT_FALSE(writer->mountPathDel());
  EXPECT_EQ(writer, nullptr);
}

TEST_F(WriterMounting, ACallbackThatEndsTheWriterWhileItMovesIsTheEnd) {
  auto writer = std::make_unique<Writer>(collection, writerOptions());
  ASSERT_FALSE(writer->mountPathIs(mountPath));
  writer->callbacksAre({nullptr, nullptr, [&](bool quiesced) {
                          if (quiesced) writer.reset();
                        }});
  EXPECT_FALSE(writer->mountPathIs("elsewhere"));
  EXPECT_EQ(writer, nullptr);
  EXPECT_FALSE(std::filesystem::exists(directory_ + "/elsewhere/row.tbl"));
}

TEST_F(WriterMounting, AnyCallbackMayEndTheWriterAndSetOthers) {
  auto writer = std::make_unique<Writer>(collection, writerOptions());
  ASSERT_FALSE(writer->mountPathIs(mountPath));
  bool quiesced = false;
  writer->callbacksAre({nullptr,
                        [&] {
                          writer->callbacksAre({});
                          writer.reset();
                        },
                        [&](bool) { quiesced = true; }});
  EXPECT_FALSE(writer->mountPathDel());
  EXPECT_EQ(writer, nullptr);
  EXPECT_FALSE(quiesced) << "there is nobody any more of whom that could be said";
}

TEST_F(WriterMounting, WhatACallbackMadeUntrueIsNotTold) {
  Writer writer(collection, writerOptions());
  std::vector<std::string> heard;
  writer.callbacksAre({nullptr,
                       [&] {
                         heard.push_back(writer.mountStatus() == MountStatus::mounted ? "mounted" : "not mounted");
                         if (heard.back() == "not mounted") {
                           EXPECT_FALSE(writer.mountPathIs("elsewhere"));
                         }
                       },
                       [&](bool quiesced) { heard.push_back(quiesced ? "quiesced" : "active"); }});
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  ASSERT_FALSE(writer.mountPathDel());
  EXPECT_THAT(heard, ElementsAre("active", "mounted", "not mounted", "active", "mounted"));
  EXPECT_EQ(writer.mountPath(), "elsewhere");
  ASSERT_FALSE(writer.mountPathIs("a/third")) << "the callback has the last word here as well";
  EXPECT_EQ(writer.mountPath(), "elsewhere");
}

/// An owner that notes what it is told, and throws when told of a mount status.
class ThrowingOwner : public Tables {
 protected:
  ThrowingOwner() {
    writer_.callbacksAre({nullptr,
                          [this] {
                            heard_.push_back(Trace::textOf(writer_.mountStatus()));
                            throw std::runtime_error("owner");
                          },
                          [this](bool quiesced) { heard_.push_back(quiesced ? "quiesced" : "active"); }});
  }
  Writer writer_{collection, writerOptions()};
  std::vector<std::string> heard_;
};

TEST_F(ThrowingOwner, IsToldAllWhenTheTableIsMountedAndUnmounted) {
  EXPECT_THROW((void)writer_.mountPathIs(mountPath), std::runtime_error);
  EXPECT_EQ(writer_.mountStatus(), MountStatus::mounted);
  EXPECT_THROW((void)writer_.mountPathDel(), std::runtime_error);
  EXPECT_EQ(writer_.mountStatus(), MountStatus::unmounted);
  EXPECT_THAT(heard_, ElementsAre("active", "mounted", "unmounted", "quiesced"));
}

TEST_F(ThrowingOwner, DoesNotKeepATableFromMoving) {
  EXPECT_THROW((void)writer_.mountPathIs(mountPath), std::runtime_error);
  EXPECT_THROW((void)writer_.mountPathIs("elsewhere"), std::runtime_error);
  EXPECT_EQ(writer_.mountStatus(), MountStatus::mounted);
  EXPECT_EQ(writer_.mountPath(), "elsewhere");
}

TEST_F(ThrowingOwner, DoesNotKeepATableFromClosing) {
  EXPECT_THROW((void)writer_.mountPathIs(mountPath), std::runtime_error);
  Trace::Capture trace("SharedTable", "1");
  writer_.close();
  EXPECT_THAT(heard_, ElementsAre("active", "mounted", "unmounted", "quiesced"));
  EXPECT_THAT(trace.texts(1), ElementsAre(HasSubstr("thrown while a table was closed")));
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(WriterMounting, ThatFailsWithinTheCallbackOfAnUnmountingSaysThatTheTableIsQuiesced) {
  Writer writer(collection, writerOptions());
  std::vector<std::string> heard;
  writer.callbacksAre({nullptr,
                       [&] {
                         heard.push_back(Trace::textOf(writer.mountStatus()));
                         if (writer.mountStatus() != MountStatus::unmounted) return;
                         EXPECT_EQ(writer.mountPathIs("../elsewhere").code, Errc::badName);
                       },
                       [&](bool quiesced) { heard.push_back(quiesced ? "quiesced" : "active"); }});
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  ASSERT_FALSE(writer.mountPathDel());
  EXPECT_THAT(heard, ElementsAre("active", "mounted", "unmounted", "failed", "quiesced"));
}

TEST_F(WriterMounting, ThatFailedMayBeTriedAgainAtTheSamePath) {
  Writer first(collection, writerOptions());
  ASSERT_FALSE(first.mountPathIs(mountPath));
  Trace::Capture trace("SharedTable", "2");
  Writer second(collection, writerOptions());
  EXPECT_TRUE(second.mountPathIs(mountPath));
  EXPECT_TRUE(second.mountPathIs(second.mountPath()));
  EXPECT_THAT(trace.texts(2), ElementsAre(HasSubstr("Could not mount test/tables/row: second writer: "),
                                          HasSubstr("Could not mount test/tables/row: second writer: ")));
  ASSERT_FALSE(first.mountPathDel());
  EXPECT_FALSE(second.mountPathIs(second.mountPath()));
}

TEST_F(WriterMounting, ClosingRetiresTheFileAndTellsTheOwner) {
  Writer writer(collection, writerOptions());
  writer.rowIs(Row(1, 1));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  Reader reader(mountPath, collection, readerOptions());
  ASSERT_FALSE(reader.attach());
  std::vector<std::string> heard;
  writer.callbacksAre({nullptr,
                       [&] { heard.push_back(writer.mountStatus() == MountStatus::unmounted ? "unmounted" : "?"); },
                       [&](bool quiesced) { heard.push_back(quiesced ? "quiesced" : "active"); }});
  writer.close();
  writer.close();
  EXPECT_THAT(heard, ElementsAre("unmounted", "quiesced"));
  EXPECT_FALSE(std::filesystem::exists(path()));
  EXPECT_NE(reader.writer().retiredTime, 0u);
  EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 1));
  Writer next(collection, writerOptions());
  EXPECT_FALSE(next.mountPathIs(mountPath)) << "the place is free";
}

/// A child that was forked has everything that its parent has, but the table is the parent's.
class ForkedWriter : public Tables {
 protected:
  ForkedWriter() : writer_(std::make_unique<Writer>(collection, writerOptions())) {
    writer_->rowIs(Row(1, 1));
    EXPECT_FALSE(writer_->mountPathIs(mountPath));
  }

  /// Exit status of a child that runs `body`.
  template <class Body>
  static int inChild(Body const& body) {
    pid_t const child = fork();
    if (child == 0) _exit(body());
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  void expectTheParentsTableToStand() {
    Reader reader(mountPath, collection, readerOptions());
    ASSERT_FALSE(reader.attach());
    EXPECT_TRUE(reader.writer().alive);
    EXPECT_EQ(reader.writer().retiredTime, 0u);
    writer_->rowIs(Row(1, 2));
    EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 2));
    EXPECT_EQ(reader.count(), 1u);
  }

  std::unique_ptr<Writer> writer_;
};

TEST_F(ForkedWriter, EndsWithoutTouchingTheTable) {
  EXPECT_EQ(inChild([&] {
              writer_.reset();
              return 0;
            }),
            0);
  expectTheParentsTableToStand();
}

TEST_F(ForkedWriter, ClosesWithoutTouchingTheTable) {
  EXPECT_EQ(inChild([&] {
              writer_->close();
              return 0;
            }),
            0);
  expectTheParentsTableToStand();
}

TEST_F(ForkedWriter, UnmountsToRowsOfItsOwnAndIsASecondWriterThen) {
  EXPECT_EQ(inChild([&] {
              if (writer_->mountPathDel()) return 1;
              if (writer_->row(Key::of(1)) != Row(1, 1)) return 2;
              if (writer_->rowIs(Row(2, 1)) != WriteStatus::ok) return 3;
              if (writer_->mountPathIs(mountPath).code != Errc::secondWriter) return 4;
              return 0;
            }),
            0);
  expectTheParentsTableToStand();
}

TEST_F(ForkedWriter, DoesNotLookWhetherTheTableStillHasItsName) {
  std::filesystem::rename(path(), path("away"));
  EXPECT_EQ(inChild([&] { return writer_->verifyMount() || writer_->mountStatus() != MountStatus::mounted ? 1 : 0; }),
            0);
  std::filesystem::rename(path("away"), path());
  expectTheParentsTableToStand();
}

/// In a process namespace of its own a child may have the pid that its parent has in its own.
TEST_F(ForkedWriter, OfTheSamePidEndsWithoutTouchingTheTable) {
  constexpr int notPermitted = 99;
  auto const inNamespace = [](auto const& body) { return unshare(CLONE_NEWPID) != 0 ? notPermitted : inChild(body); };
  int const result = inChild([&] {
    return inNamespace([&] {
      if (getpid() != 1) return 1;
      Writer writer("nested", writerOptions());
      if (writer.mountPathIs(mountPath)) return 2;
      int const child = inNamespace([&] {
        if (getpid() != 1) return 3;
        writer.close();
        return 0;
      });
      if (child != 0) return child;
      return Reader(mountPath, "nested", readerOptions()).attach() ? 4 : 0;
    });
  });
  if (result == notPermitted) GTEST_SKIP() << "process namespaces are not permitted";
  EXPECT_EQ(result, 0);
}

TEST_F(ForkedWriter, WithoutMemoryForTheRowsLeavesTheTableMounted) {
  EXPECT_EQ(inChild([&] {
              SharedTable::Error error;
              {
                AllocationFailure const failure(0);
                error = writer_->mountPathDel();
              }
              if (error.systemError != ENOMEM) return 1;
              if (writer_->mountStatus() != MountStatus::mounted) return 2;
              return 0;
            }),
            0);
  expectTheParentsTableToStand();
}

/// Writers that memory runs out for, at every place where they ask for it. The name of the collection is too long to be
/// kept without any.
class WriterWithoutMemory : public Tables {
 protected:
  static constexpr char const* longName = "aCollectionOfALongName";

  bool published() const { return std::filesystem::exists(path(std::string(longName) + ".tbl")); }

  /// Whether everything can be done with it that can be done with any.
  void expectUsable(Writer& writer) {
    EXPECT_EQ(writer.row(Key::of(1)), Row(1, 10));
    for (U64 i = 2; i < 500; ++i) ASSERT_EQ(writer.rowIs(Row(i, 1)), WriteStatus::ok);
    EXPECT_EQ(writer.rowDel(Key::of(2)), Row(2, 1));
    EXPECT_EQ(contentsOf(writer).size(), 498u);
    ASSERT_FALSE(writer.mountPathIs(mountPath));
    Reader reader(mountPath, longName, readerOptions());
    ASSERT_FALSE(reader.attach());
    EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 10));
    EXPECT_EQ(reader.count(), 498u);
  }
};

TEST_F(WriterWithoutMemory, RetiresItsFileAndKeepsItsRows) {
  bool failed = true;
  for (std::size_t allowed = 0; failed; ++allowed) {
    Writer writer(longName, writerOptions());
    writer.rowIs(Row(1, 10));
    ASSERT_FALSE(writer.mountPathIs(mountPath));
    Reader reader(mountPath, longName, readerOptions());
    ASSERT_FALSE(reader.attach());
    SharedTable::Error error;
    {
      AllocationFailure const failure(allowed);
      error = writer.mountPathDel();
    }
    failed = static_cast<bool>(error);
    EXPECT_EQ(error.systemError, failed ? ENOMEM : 0);
    EXPECT_TRUE(failed || allowed > 0);
    EXPECT_EQ(writer.mountStatus(), MountStatus::unmounted);
    EXPECT_FALSE(published());
    EXPECT_NE(reader.writer().retiredTime, 0u);
    expectUsable(writer);
  }
}

TEST_F(WriterWithoutMemory, SaysSo) {
  Trace::Capture trace("SharedTable", "2");
  Writer writer(longName, writerOptions());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  {
    AllocationFailure const failure(0, 1);
    EXPECT_TRUE(writer.mountPathDel());
  }
  EXPECT_THAT(trace.texts(2),
              ElementsAre("Rows of test/tables/aCollectionOfALongName stay in its file: out of memory"));
}

TEST_F(WriterWithoutMemory, MovesAllTheSameAsSoonAsThereIsSome) {
  Writer writer(longName, writerOptions());
  writer.rowIs(Row(1, 10));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  {
    AllocationFailure const failure(0, 1);
    EXPECT_FALSE(writer.mountPathIs("elsewhere"));
  }
  EXPECT_EQ(writer.mountPath(), "elsewhere");
  EXPECT_FALSE(published());
  EXPECT_EQ(writer.row(Key::of(1)), Row(1, 10));
}

TEST_F(WriterWithoutMemory, ClosesAndEnds) {
  std::string heard;
  heard.reserve(100);
  {
    Writer closed(longName, writerOptions());
    ASSERT_FALSE(closed.mountPathIs(mountPath));
    closed.callbacksAre({nullptr, [&] { heard += "status "; }, [&](bool) { heard += "quiesced"; }});
    AllocationFailure const failure(0);
    closed.close();
  }
  EXPECT_EQ(heard, "status quiesced");
  EXPECT_FALSE(published());
  auto ended = std::make_unique<Writer>(longName, writerOptions());
  ASSERT_FALSE(ended->mountPathIs(mountPath));
  {
    AllocationFailure const failure(0);
    ended.reset();
  }
  EXPECT_FALSE(published());
}

TEST_F(WriterWithoutMemory, CannotMountAndStaysAsItWas) {
  for (std::size_t allowed = 0;; ++allowed) {
    Writer writer(longName, writerOptions());
    writer.rowIs(Row(1, 10));
    SharedTable::Error error;
    {
      AllocationFailure const failure(allowed);
      error = writer.mountPathIs(mountPath);
    }
    if (!error) {
      EXPECT_GT(allowed, 10u);
      break;
    }
    EXPECT_EQ(error.systemError, ENOMEM);
    EXPECT_EQ(writer.mountError().systemError, ENOMEM);
    EXPECT_EQ(writer.mountStatus(), MountStatus::failed);
    EXPECT_FALSE(published());
    EXPECT_FALSE(std::filesystem::exists(path("." + std::string(longName) + ".tmp")));
    expectUsable(writer);
  }
}

TEST_F(WriterMounting, ASecondWriterIsRefusedAndTouchesNothing) {
  Writer first(collection, writerOptions());
  first.rowIs(Row(1, 1));
  ASSERT_FALSE(first.mountPathIs(mountPath));
  Reader reader(mountPath, collection, readerOptions());
  ASSERT_FALSE(reader.attach());

  Trace::Capture trace("SharedTable", "2");
  U64 const failed = Stats::counter("sharedTableMountFailed").value();
  Writer second(collection, writerOptions());
  second.rowIs(Row(2, 2));
  EXPECT_EQ(second.mountPathIs(mountPath).code, Errc::secondWriter);
  EXPECT_EQ(second.mountStatus(), MountStatus::failed);
  EXPECT_EQ(second.row(Key::of(2)), Row(2, 2)) << "the rows stay in the process";
  EXPECT_EQ(second.rowIs(Row(3, 3)), WriteStatus::ok);
  EXPECT_EQ(Stats::counter("sharedTableMountFailed").value(), failed + 1);
  EXPECT_THAT(trace.texts(2), ElementsAre(HasSubstr("another writer has this table")));

  EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 1));
  EXPECT_TRUE(reader.writer().alive);
  first.rowIs(Row(1, 2));
  EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 2));
  ASSERT_FALSE(first.mountPathDel());
  EXPECT_FALSE(second.mountPathIs(mountPath)) << "free again";
}

TEST_F(WriterMounting, ALivingWriterIsNotTakenOverWhenItsLockFileIsRemoved) {
  Writer first(collection, writerOptions());
  first.rowIs(Row(1, 1));
  ASSERT_FALSE(first.mountPathIs(mountPath));
  Reader reader(mountPath, collection, readerOptions());
  ASSERT_FALSE(reader.attach());
  ASSERT_TRUE(std::filesystem::remove(path("row.lock")));

  Writer second(collection, writerOptions());
  EXPECT_EQ(second.mountPathIs(mountPath).code, Errc::secondWriter);
  EXPECT_TRUE(reader.writer().alive);
  first.rowIs(Row(1, 2));
  EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 2)) << "the table is still the first one's";
  ASSERT_FALSE(first.mountPathDel());
  EXPECT_FALSE(second.mountPathIs(mountPath));
}

struct ForeignHeader {
  char const* name;
  void (*change)(SharedTable::FixedHeader&);
  bool crcHolds;
  friend void PrintTo(ForeignHeader const& c, std::ostream* out) { *out << c.name; }
};
class FormerFile : public Tables, public testing::WithParamInterface<ForeignHeader> {};
INSTANTIATE_TEST_SUITE_P(
    SharedTable, FormerFile,
    testing::Values(ForeignHeader{"OfAnotherVersion", [](SharedTable::FixedHeader& h) { h.version = 7; }, true},
                    ForeignHeader{"OfTheOtherByteOrder", [](SharedTable::FixedHeader& h) { h.byteOrder = 0x04030201; },
                                  true},
                    ForeignHeader{"OfNoTable", [](SharedTable::FixedHeader& h) { h.magic[0] ^= 1; }, true},
                    ForeignHeader{"WithAWrongCrc", [](SharedTable::FixedHeader& h) { h.createdTime += 1; }, false}),
    [](auto const& of) { return of.param.name; });

TEST_P(FormerFile, IsReplacedAndNotWrittenTo) {
  {
    Writer writer(collection, writerOptions());
    ASSERT_FALSE(writer.mountPathIs(mountPath));
    std::filesystem::copy_file(path(), path("copy"));
  }
  SharedTable::Fd const former(open(path("copy").c_str(), O_RDWR | O_CLOEXEC));
  SharedTable::FixedHeader header{};
  ASSERT_EQ(pread(former.get(), &header, sizeof header, 0), static_cast<ssize_t>(sizeof header));
  GetParam().change(header);
  if (GetParam().crcHolds) header.crc = SharedTable::crc32(&header, offsetof(SharedTable::FixedHeader, crc));
  ASSERT_EQ(pwrite(former.get(), &header, sizeof header, 0), static_cast<ssize_t>(sizeof header));
  std::filesystem::rename(path("copy"), path());
  auto const octets = [&] {
    std::string read(SharedTable::headerSize, '\0');
    EXPECT_EQ(pread(former.get(), read.data(), read.size(), 0), static_cast<ssize_t>(read.size()));
    return read;
  };
  std::string const before = octets();

  Writer writer(collection, writerOptions());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(octets(), before);
  EXPECT_FALSE(Reader(mountPath, collection, readerOptions()).attach());
}

struct NameCase {
  char const* name;
  char const* path;
  char const* collection;
  friend void PrintTo(NameCase const& c, std::ostream* out) { *out << c.name; }
};
class WriterNames : public Tables, public testing::WithParamInterface<NameCase> {};
INSTANTIATE_TEST_SUITE_P(SharedTable, WriterNames,
                         testing::Values(NameCase{"ParentDirectory", "a/../b", "row"},
                                         NameCase{"Absolute", "/a", "row"}, NameCase{"SlashAtTheEnd", "a/", "row"},
                                         NameCase{"TwoSlashes", "a//b", "row"}, NameCase{"HiddenName", ".a", "row"},
                                         NameCase{"NoCollection", "a", ""},
                                         NameCase{"SlashInTheCollection", "a", "b/c"},
                                         NameCase{"HiddenCollection", "a", ".."}),
                         [](auto const& of) { return of.param.name; });

TEST_P(WriterNames, ThatCouldLeadElsewhereAreRefused) {
  Writer writer(GetParam().collection, writerOptions());
  EXPECT_EQ(writer.mountPathIs(GetParam().path).code, Errc::badName);
  EXPECT_TRUE(std::filesystem::is_empty(directory_));
  Reader reader(GetParam().path, GetParam().collection, readerOptions());
  EXPECT_EQ(reader.attach().code, Errc::badName);
}

TEST_F(WriterMounting, IsFoundInOrderWhileTheNameLeadsToTheTable) {
  Writer writer(collection, writerOptions());
  EXPECT_FALSE(writer.verifyMount()) << "unmounted";
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_FALSE(writer.verifyMount());
  EXPECT_EQ(writer.mountStatus(), MountStatus::mounted);
}

/// Whatever takes the name of a table away from its living writer.
struct NameLoss {
  char const* name;
  void (*takeAway)(std::string const& directory, std::string const& path);
  friend void PrintTo(NameLoss const& c, std::ostream* out) { *out << c.name; }
};
class LostNames : public Tables, public testing::WithParamInterface<NameLoss> {};
INSTANTIATE_TEST_SUITE_P(
    SharedTable, LostNames,
    testing::Values(NameLoss{"RemovedDirectories",
                             [](auto const& directory, auto const&) { std::filesystem::remove_all(directory); }},
                    NameLoss{"RemovedFile", [](auto const&, auto const& path) { std::filesystem::remove(path); }},
                    NameLoss{"RenamedDirectory",
                             [](auto const& directory, auto const&) {
                               std::filesystem::rename(directory + "/test", directory + "/elsewhere");
                             }},
                    NameLoss{"AnotherFile",
                             [](auto const&, auto const& path) {
                               std::filesystem::copy_file(path, path + ".copy");
                               std::filesystem::rename(path + ".copy", path);
                             }}),
    [](auto const& of) { return of.param.name; });

TEST_P(LostNames, AreNoticedByTheWriterWhichCanMountAnew) {
  Writer writer(collection, writerOptions());
  writer.rowIs(Row(1, 1));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  std::vector<std::string> heard;
  writer.callbacksAre({nullptr, [&] { heard.push_back(Trace::textOf(writer.mountStatus())); },
                       [&](bool quiesced) { heard.push_back(quiesced ? "quiesced" : "active"); }});
  Trace::Capture trace("SharedTable", "2");
  U64 const failed = Stats::counter("sharedTableMountFailed").value();
  GetParam().takeAway(directory_, path());
  EXPECT_EQ(writer.verifyMount().code, Errc::noTable);
  EXPECT_EQ(writer.mountStatus(), MountStatus::failed);
  EXPECT_EQ(writer.mountError().code, Errc::noTable);
  EXPECT_THAT(heard, ElementsAre("failed", "quiesced"));
  EXPECT_EQ(Stats::counter("sharedTableMountFailed").value(), failed + 1);
  EXPECT_THAT(trace.texts(2),
              ElementsAre("Lost test/tables/row: the name of the table is gone, or leads to another file"));
  EXPECT_EQ(writer.row(Key::of(1)), Row(1, 1)) << "the rows stay in the process";

  ASSERT_FALSE(writer.mountPathIs(writer.mountPath()));
  Reader reader(mountPath, collection, readerOptions());
  ASSERT_FALSE(reader.attach());
  EXPECT_EQ(reader.row(Key::of(1)).row, Row(1, 1));
  EXPECT_FALSE(writer.verifyMount());
}

TEST_P(LostNames, AreNoticedByAWaiterAlthoughTheWriterLives) {
  Writer writer(collection, writerOptions());
  writer.rowIs(Row(1, 1));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  Reader reader(mountPath, collection, readerOptions());
  ASSERT_FALSE(reader.attach());
  GetParam().takeAway(directory_, path());
  SharedTable::WaitResult const happened = reader.wait(reader.changeCount(), std::chrono::seconds(20));
  EXPECT_TRUE(happened == SharedTable::WaitResult::tableGone || happened == SharedTable::WaitResult::attached);
  if (happened == SharedTable::WaitResult::attached) {
    EXPECT_FALSE(reader.writer().alive) << "the copy has no writer";
  }
}

TEST_F(WriterMounting, IsNotTakenForLostWhenItsDirectoriesCannotBeTrusted) {
  Writer writer(collection, writerOptions());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  ASSERT_EQ(chmod(path("").c_str(), 0777), 0);
  EXPECT_EQ(writer.verifyMount().code, Errc::notTrusted);
  EXPECT_EQ(writer.mountStatus(), MountStatus::mounted);
}

TEST_F(WriterMounting, FilesHaveTheModesThatTheyShould) {
  mode_t const before = umask(077);
  SharedTable::WriterOptions options = writerOptions();
  Writer usual(collection, options);
  options.mode = 0666;
  Writer open("open", options);
  options.mode = 0600;
  Writer closed("closed", options);
  EXPECT_FALSE(usual.mountPathIs(mountPath));
  EXPECT_FALSE(open.mountPathIs(mountPath));
  EXPECT_FALSE(closed.mountPathIs(mountPath));
  umask(before);
  auto const modeOf = [](std::string const& file) {
    struct stat status {};
    EXPECT_EQ(stat(file.c_str(), &status), 0);
    return status.st_mode & 07777;
  };
  EXPECT_EQ(modeOf(path()), 0644u);
  EXPECT_EQ(modeOf(path("row.lock")), 0600u);
  EXPECT_EQ(modeOf(path("open.tbl")), 0644u) << "nobody else may write it";
  EXPECT_EQ(modeOf(path("closed.tbl")), 0600u);
  EXPECT_EQ(modeOf(path("")), 0755u) << "readers get there";
}

TEST_F(WriterMounting, WhatAKilledWriterWasBuildingIsSweptAway) {
  {
    Writer writer(collection, writerOptions());
    ASSERT_FALSE(writer.mountPathIs(mountPath));
  }
  SharedTable::Fd(open(path(".row.tmp").c_str(), O_CREAT | O_WRONLY, 0644));
  Writer writer(collection, writerOptions());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_FALSE(std::filesystem::exists(path(".row.tmp")));
}

TEST_F(WriterMounting, TheFileNeverShrinksAndHasItsFullSizeFromTheStart) {
  Writer writer(collection, writerOptions(8, 100000));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  auto const size = std::filesystem::file_size(path());
  for (U64 i = 0; i < 5000; ++i) writer.rowIs(Row(i, 0));
  EXPECT_EQ(std::filesystem::file_size(path()), size);
  writer.rowDelAll();
  EXPECT_EQ(std::filesystem::file_size(path()), size);
}

}  // namespace

#include <RouterPlatform/SharedTable/FileIo.h>
#include <RouterPlatform/SharedTable/WriterCore.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>

#include <linux/futex.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <chrono>
#include <cstddef>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <thread>

namespace {

using namespace SharedTableTest;
using namespace std::chrono_literals;
using SharedTable::LiveState;
using SharedTable::WaitResult;
using testing::HasSubstr;

class ReaderOf : public Tables {
 protected:
  ReaderOf() : writer_(collection, writerOptions()), reader_(mountPath, collection, readerOptions()) {}

  void mountAndAttach() {
    ASSERT_FALSE(writer_.mountPathIs(mountPath));
    SharedTable::Error const error = reader_.attach();
    ASSERT_FALSE(error) << error.text;
  }

  Writer writer_;
  Reader reader_;
};

TEST_F(ReaderOf, NoTableSaysSo) {
  EXPECT_EQ(reader_.attach().code, Errc::noTable);
  EXPECT_FALSE(reader_.attached());
  EXPECT_EQ(reader_.row(Key::of(1)).status, LookupStatus::notAttached);
  EXPECT_FALSE(reader_.forEach([](Row const&) {}).attached);
  EXPECT_EQ(reader_.count(), 0u);
  EXPECT_EQ(reader_.changeCount(), 0u);
  EXPECT_FALSE(reader_.writer().alive);
}

TEST_F(ReaderOf, ATableSeesRowsAsTheyAreWritten) {
  writer_.rowIs(Row(1, 10));
  mountAndAttach();
  EXPECT_EQ(reader_.row(Key::of(1)).row, Row(1, 10));
  EXPECT_EQ(reader_.row(Key::of(2)).status, LookupStatus::missing);
  writer_.rowIs(Row(2, 20));
  EXPECT_EQ(reader_.row(Key::of(2)).row, Row(2, 20));
  writer_.rowIs(Row(2, 21));
  EXPECT_EQ(reader_.row(Key::of(2)).row, Row(2, 21));
  writer_.rowDel(Key::of(1));
  EXPECT_EQ(reader_.row(Key::of(1)).status, LookupStatus::missing);
  EXPECT_EQ(reader_.row(Key::of(1)).row, Row());
  EXPECT_EQ(reader_.count(), 1u);
}

TEST_F(ReaderOf, AGrowingTableNeedsNoNewMapping) {
  mountAndAttach();
  for (U64 i = 0; i < 1024; ++i) writer_.rowIs(Row(i, i));
  for (U64 i = 0; i < 1024; ++i) ASSERT_EQ(reader_.row(Key::of(i)).row, Row(i, i));
  EXPECT_EQ(reader_.count(), 1024u);
}

TEST_F(ReaderOf, AWalkWithoutChangesIsExact) {
  for (U64 i = 0; i < 300; ++i) writer_.rowIs(Row(i, 0));
  mountAndAttach();
  std::set<U64> seen;
  SharedTable::WalkResult const result = reader_.forEach([&](Row const& row) { seen.insert(row.number()); });
  EXPECT_TRUE(result.exact);
  EXPECT_EQ(result.rows, 300u);
  EXPECT_EQ(seen.size(), 300u);
}

TEST_F(ReaderOf, AWalkDuringWhichSomethingChangesIsNotExact) {
  for (U64 i = 0; i < 30; ++i) writer_.rowIs(Row(i, 0));
  mountAndAttach();
  bool changed = false;
  SharedTable::WalkResult const result = reader_.forEach([&](Row const&) {
    if (!std::exchange(changed, true)) writer_.rowIs(Row(1, 1));
  });
  EXPECT_FALSE(result.exact);
  EXPECT_EQ(result.rows, 30u);
}

TEST_F(ReaderOf, AWalkAcrossGrowthAndRebuildsVisitsEveryLastingKeyExactlyOnce) {
  for (U64 i = 0; i < 40; ++i) writer_.rowIs(Row(i, 0));
  mountAndAttach();
  std::map<U64, int> visits;
  U64 next = 1000;
  reader_.forEach([&](Row const& row) {
    EXPECT_TRUE(row.whole());
    ++visits[row.number()];
    // Keys come and go between two rows, often enough for the index to grow and to be cleaned many times.
    for (int i = 0; i < 60 && next < 6000; ++i, ++next) {
      writer_.rowIs(Row(next, 0));
      if (next >= 1500) writer_.rowDel(Key::of(next - 500));
    }
  });
  for (U64 i = 0; i < 40; ++i) EXPECT_EQ(visits[i], 1) << i;
  for (auto const& [number, count] : visits) EXPECT_EQ(count, 1) << number;
}

TEST_F(ReaderOf, AWalkThatIsOvertakenAThousandTimesEnds) {
  Writer writer("many", writerOptions(4096, 4096));
  for (U64 i = 0; i < 4096; ++i) writer.rowIs(Row(i, 0));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  Reader reader(mountPath, "many", readerOptions());
  ASSERT_FALSE(reader.attach());
  auto& active = reinterpret_cast<LiveState*>(writer.core().memory().base() + SharedTable::liveStateOffset)->active;
  SharedTable::WalkResult const walked = reader.forEach([&](Row const&) {
    SharedTable::ActiveWord const now{active.load()};
    active = SharedTable::ActiveWord::of(now.epoch() + 2, now.indexBits()).bits;  // in the same half
  });
  EXPECT_EQ(walked.busy, 1u);
  EXPECT_EQ(walked.corrupt, 0u);
  EXPECT_FALSE(walked.exact);
  EXPECT_GE(walked.rows, 1000u);
  EXPECT_LT(walked.rows, 4096u);
}

TEST_F(ReaderOf, AWaitEndsAtOnceWhenSomethingChangedBefore) {
  mountAndAttach();
  U64 const seen = reader_.changeCount();
  writer_.rowIs(Row(1, 1));
  EXPECT_EQ(reader_.wait(seen, 10s), WaitResult::changed);
}

TEST_F(ReaderOf, AWaitEndsWithItsTimeWhenNothingChanges) {
  mountAndAttach();
  auto const start = std::chrono::steady_clock::now();
  EXPECT_EQ(reader_.wait(reader_.changeCount(), 60ms), WaitResult::timedOut);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 60ms);
}

TEST_F(ReaderOf, AChangeIsToldToWhoWaits) {
  mountAndAttach();
  for (auto const delay : {0ms, 3ms, 40ms, 100ms}) {
    U64 const seen = reader_.changeCount();
    std::thread changer([&] {
      std::this_thread::sleep_for(delay);
      writer_.rowIs(Row(1, seen));
    });
    EXPECT_EQ(reader_.wait(seen, 10s), WaitResult::changed);
    changer.join();
  }
}

/// Sleeps on the word of a reader's table until it is woken, with none of the looks in between of a reader's `wait`.
class Sleeper {
 public:
  explicit Sleeper(Reader const& reader)
      : word_(reinterpret_cast<LiveState const*>(reader.view().base() + SharedTable::liveStateOffset)->changeWord) {}
  ~Sleeper() { thread_.join(); }
  /// Whether it is woken long before its own time is over, while `change` is called again and again.
  template <class Change>
  bool isWokenBy(Change change) {
    auto const limit = std::chrono::steady_clock::now() + 30s;
    while (!woken_ && std::chrono::steady_clock::now() < limit) {
      std::this_thread::sleep_for(40ms);  // it sleeps by then
      change();
    }
    return woken_;
  }

 private:
  std::atomic<U32> const& word_;
  std::atomic<bool> woken_{false};
  std::thread thread_{[this, before = word_.load(std::memory_order_acquire)] {
    SharedTable::FileIo::wait(word_, before, 60000);
    woken_ = true;
  }};
};

TEST_F(ReaderOf, AChangeWakesWhoSleeps) {
  mountAndAttach();
  U64 count = 0;
  EXPECT_TRUE(Sleeper(reader_).isWokenBy([&] { writer_.rowIs(Row(1, ++count)); }));
}

/// Counts how often it is woken; goes back to sleep at once.
class WakeCounter {
 public:
  explicit WakeCounter(std::atomic<U32> const& word) : word_(word) {}
  ~WakeCounter() {
    stop_ = true;
    thread_.join();
  }
  U64 wakes() const { return wakes_; }

 private:
  std::atomic<U32> const& word_;
  std::atomic<U64> wakes_{0};
  std::atomic<bool> stop_{false};
  std::thread thread_{[this] {
    timespec const limit{0, 20000000};
    while (!stop_)
      if (syscall(SYS_futex, &word_, FUTEX_WAIT, word_.load(), &limit, nullptr, 0) == 0) ++wakes_;
  }};
};

TEST_F(ReaderOf, AWriterWakesOncePerClockTickAtMost) {
  mountAndAttach();
  auto const& live = *reinterpret_cast<LiveState const*>(reader_.view().base() + SharedTable::liveStateOffset);
  WakeCounter const waiter(live.changeWord);
  std::set<U64> ticks;
  for (U64 change = 0; change < 2000; ++change) {
    ticks.insert(SharedTable::FileIo::coarseRealtime());
    writer_.rowIs(Row(1, change));
    ticks.insert(SharedTable::FileIo::coarseRealtime());
    std::this_thread::sleep_for(20us);  // the waiter sleeps again
  }
  EXPECT_LE(waiter.wakes(), 2 * ticks.size());  // a tick may go by between the looks at the clock
}

TEST_F(ReaderOf, AChangeRightAfterAWakeThatWokeNobodyIsNotMissed) {
  mountAndAttach();
  for (U64 round = 0; round < 20; ++round) {
    writer_.rowIs(Row(1, round));  // a wake that finds nobody
    U64 const seen = reader_.changeCount();
    std::thread changer([&] {
      std::this_thread::sleep_for(1ms);  // the reader sleeps by then, and the clock has hardly moved
      writer_.rowIs(Row(2, round));
    });
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(reader_.wait(seen, 10s), WaitResult::changed);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    changer.join();
  }
}

TEST_F(ReaderOf, ATableThatEndsIsToldToWhoWaits) {
  mountAndAttach();
  std::thread ender([&] {
    std::this_thread::sleep_for(40ms);
    EXPECT_FALSE(writer_.mountPathDel());
  });
  EXPECT_EQ(reader_.wait(reader_.changeCount(), 10s), WaitResult::tableGone);
  ender.join();
  EXPECT_FALSE(reader_.attached());
}

TEST_F(ReaderOf, ATableThatEndsWakesWhoSleeps) {
  mountAndAttach();
  EXPECT_TRUE(Sleeper(reader_).isWokenBy([&] { EXPECT_FALSE(writer_.mountPathDel()); }));
}

TEST_F(ReaderOf, TheLongestTimeoutThatCanBeSaidIsWaited) {
  mountAndAttach();
  U64 const seen = reader_.changeCount();
  std::thread changer([&] {
    std::this_thread::sleep_for(40ms);
    writer_.rowIs(Row(1, 1));
  });
  EXPECT_EQ(reader_.wait(seen, std::chrono::milliseconds::max()), WaitResult::changed);
  changer.join();
}

TEST_F(ReaderOf, ATableThatEndedKeepsItsRowsForWhoStillHasIt) {
  writer_.rowIs(Row(1, 1));
  mountAndAttach();
  ASSERT_FALSE(writer_.mountPathDel());
  EXPECT_EQ(reader_.row(Key::of(1)).row, Row(1, 1));
  SharedTable::WriterState const state = reader_.writer();
  EXPECT_FALSE(state.alive);
  EXPECT_NE(state.retiredTime, 0u);
}

TEST_F(ReaderOf, ATableThatEndedIsToldByLookupsAndWalksWithoutAWait) {
  writer_.rowIs(Row(1, 1));
  mountAndAttach();
  EXPECT_FALSE(reader_.row(Key::of(1)).retired);
  EXPECT_FALSE(reader_.row(Key::of(2)).retired);
  EXPECT_FALSE(reader_.forEach([](Row const&) {}).retired);
  ASSERT_FALSE(writer_.mountPathDel());
  ASSERT_FALSE(writer_.mountPathIs(mountPath));
  EXPECT_TRUE(reader_.row(Key::of(1)).retired);
  EXPECT_TRUE(reader_.row(Key::of(2)).retired);
  EXPECT_TRUE(reader_.forEach([](Row const&) {}).retired);
  ASSERT_FALSE(reader_.attach());
  EXPECT_FALSE(reader_.row(Key::of(1)).retired);
  EXPECT_FALSE(reader_.forEach([](Row const&) {}).retired);
  reader_.detach();
  EXPECT_FALSE(reader_.row(Key::of(1)).retired);
  EXPECT_FALSE(reader_.forEach([](Row const&) {}).retired);
}

TEST_F(ReaderOf, ANewTableIsAttachedByTheWaiter) {
  writer_.rowIs(Row(1, 1));
  mountAndAttach();
  ASSERT_FALSE(writer_.mountPathDel());
  writer_.rowIs(Row(1, 2));
  ASSERT_FALSE(writer_.mountPathIs(mountPath));
  EXPECT_EQ(reader_.wait(reader_.changeCount(), 10s), WaitResult::attached);
  EXPECT_EQ(reader_.row(Key::of(1)).row, Row(1, 2));
  EXPECT_TRUE(reader_.writer().alive);
}

TEST_F(ReaderOf, ATableThatEndedButKeptItsNameIsNoTableToAWaiter) {
  mountAndAttach();
  std::string const path = reader_.path();
  std::filesystem::create_hard_link(path, path + ".kept");
  ASSERT_FALSE(writer_.mountPathDel());
  std::filesystem::rename(path + ".kept", path);
  EXPECT_EQ(reader_.wait(reader_.changeCount(), 10s), WaitResult::tableGone);
  EXPECT_FALSE(reader_.attached());
  EXPECT_EQ(reader_.wait(0, 30ms), WaitResult::timedOut);
  ASSERT_FALSE(writer_.mountPathIs(mountPath));
  EXPECT_EQ(reader_.wait(0, 10s), WaitResult::attached);
}

TEST_F(ReaderOf, AWaiterWithoutATableWaitsForOne) {
  EXPECT_EQ(reader_.wait(0, 30ms), WaitResult::timedOut);
  ASSERT_FALSE(writer_.mountPathIs(mountPath));
  EXPECT_EQ(reader_.wait(0, 10s), WaitResult::attached);
}

TEST_F(ReaderOf, AChangeWhoseWakeIsLostIsFoundAllTheSame) {
  mountAndAttach();
  U64 const seen = reader_.changeCount();
  auto& live = *reinterpret_cast<LiveState*>(writer_.core().memory().base() + SharedTable::liveStateOffset);
  std::thread changer([&] {
    std::this_thread::sleep_for(60ms);
    live.changeCount.store(seen + 1, std::memory_order_release);
    live.changeWord.store(static_cast<U32>(seen + 1), std::memory_order_release);
  });
  EXPECT_EQ(reader_.wait(seen, 10s), WaitResult::changed);
  changer.join();
}

TEST_F(ReaderOf, TheStateOfTheWriterIsKnown) {
  mountAndAttach();
  SharedTable::WriterState state = reader_.writer();
  EXPECT_TRUE(state.alive);
  EXPECT_EQ(state.pid, static_cast<U32>(getpid()));
  EXPECT_NE(state.createdTime, 0u);
  EXPECT_EQ(state.changeTime, 0u);
  EXPECT_EQ(state.retiredTime, 0u);
  writer_.rowIs(Row(1, 1));
  EXPECT_NE(reader_.writer().changeTime, 0u);
}

/// What a reader may do to a file that it can only read.
TEST_F(ReaderOf, NoLockThatAReaderCanPlaceStopsTheWriterOrFakesOne) {
  mountAndAttach();
  SharedTable::Fd const hostile(open(path().c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_TRUE(hostile);
  struct flock lock {};
  lock.l_type = F_RDLCK;
  lock.l_whence = SEEK_SET;
  lock.l_start = 1;  // the first octet is locked already
  EXPECT_EQ(fcntl(hostile.get(), F_OFD_SETLK, &lock), 0);
  lock.l_start = 0;
  EXPECT_NE(fcntl(hostile.get(), F_OFD_SETLK, &lock), 0) << "the writer's";
  EXPECT_EQ(flock(hostile.get(), LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(writer_.rowIs(Row(1, 1)), WriteStatus::ok);
  for (U64 i = 0; i < 500; ++i) EXPECT_EQ(writer_.rowIs(Row(i, 1)), WriteStatus::ok);
  ASSERT_FALSE(writer_.mountPathDel());
  EXPECT_FALSE(reader_.writer().alive);
  lock.l_start = 0;
  EXPECT_EQ(fcntl(hostile.get(), F_OFD_SETLK, &lock), 0) << "free now";
  EXPECT_FALSE(reader_.writer().alive) << "a lock for reading is no sign of a writer";
  EXPECT_FALSE(writer_.mountPathIs(mountPath));
  EXPECT_EQ(reader_.wait(reader_.changeCount(), 10s), WaitResult::attached);
  EXPECT_TRUE(reader_.writer().alive);
}

TEST_F(ReaderOf, ATableMapsItReadOnly) {
  mountAndAttach();
  // The writer of this process has a mapping of the same file; the reader's is the one at its base.
  char begin[32];
  std::snprintf(begin, sizeof begin, "%lx-",
                static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(reader_.view().base())));
  std::ifstream maps("/proc/self/maps");
  std::string line;
  bool found = false;
  while (std::getline(maps, line)) {
    if (line.find(begin) != 0) continue;
    found = true;
    EXPECT_THAT(line, HasSubstr(" r--s "));
    EXPECT_THAT(line, HasSubstr("row.tbl"));
  }
  EXPECT_TRUE(found);
  EXPECT_NE(mprotect(const_cast<std::byte*>(reader_.view().base()), 4096, PROT_READ | PROT_WRITE), 0)
      << "the file is open for reading only, so nobody can make the mapping writable";
}

/// A row of another make.
struct OtherRow {
  Key key_;
  U64 version = 0;
  std::array<U64, 2> proof{};
  Key const& key() const { return key_; }
  bool operator==(OtherRow const&) const = default;
  static constexpr std::array tableFields{
      SharedTable::field<Net::IntfId>("key.intfId"), SharedTable::field<Net::Ip6Addr>("key.addr"),
      SharedTable::field<U64>("revision"), SharedTable::field<std::array<U64, 2>>("proof")};
};
static_assert(sizeof(OtherRow) == sizeof(Row));

TEST_F(ReaderOf, AnotherLayoutIsToldIncompatible) {
  mountAndAttach();
  SharedTable::Reader<OtherRow> other(mountPath, collection, readerOptions());
  SharedTable::Error const error = other.attach();
  EXPECT_EQ(error.code, Errc::incompatible);
  EXPECT_THAT(error.text, HasSubstr("layout"));
  EXPECT_FALSE(other.attached());
}

TEST_F(ReaderOf, AWaiterIsToldWhyTheNextTableCannotBeRead) {
  mountAndAttach();
  ASSERT_FALSE(writer_.mountPathDel());
  SharedTable::Writer<OtherRow> other(collection, writerOptions());
  ASSERT_FALSE(other.mountPathIs(mountPath));
  EXPECT_EQ(reader_.wait(reader_.changeCount(), 10s), WaitResult::unreadable);
  EXPECT_FALSE(reader_.attached());
  EXPECT_EQ(reader_.attachError().code, Errc::incompatible);
  EXPECT_THAT(reader_.attachError().text, HasSubstr("layout"));
  EXPECT_EQ(reader_.wait(0, 30ms), WaitResult::timedOut) << "told once";

  ASSERT_FALSE(other.mountPathDel());
  EXPECT_EQ(reader_.wait(0, 10s), WaitResult::tableGone);
  EXPECT_EQ(reader_.attachError().code, Errc::noTable);
  std::ofstream(path()) << "x";
  EXPECT_EQ(reader_.wait(0, 10s), WaitResult::unreadable);
  EXPECT_EQ(reader_.attachError().code, Errc::damaged);

  ASSERT_FALSE(writer_.mountPathIs(mountPath));
  EXPECT_EQ(reader_.wait(0, 10s), WaitResult::attached);
  EXPECT_FALSE(reader_.attachError());
}

TEST_F(ReaderOf, AnotherVersionOrByteOrderIsToldIncompatible) {
  mountAndAttach();
  U8 const version = octetAt(path(), 12);
  octetAtIs(path(), 12, static_cast<U8>(version + 1));
  SharedTable::FixedHeader header{};
  {
    SharedTable::Fd const file(open(path().c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(pread(file.get(), &header, sizeof header, 0), static_cast<ssize_t>(sizeof header));
    header.crc = SharedTable::crc32(&header, offsetof(SharedTable::FixedHeader, crc));
    ASSERT_EQ(pwrite(file.get(), &header, sizeof header, 0), static_cast<ssize_t>(sizeof header));
  }
  EXPECT_EQ(reader_.attach().code, Errc::incompatible);
  for (U64 i = 0; i < 4; ++i) octetAtIs(path(), 8 + i, static_cast<U8>(SharedTable::byteOrderMark >> (24 - 8 * i)));
  EXPECT_EQ(reader_.attach().code, Errc::incompatible);
}

struct WrongHeader {
  char const* name;
  Errc code;
  void (*change)(SharedTable::FixedHeader&);
  friend void PrintTo(WrongHeader const& wrong, std::ostream* out) { *out << wrong.name; }
};
using Header = SharedTable::FixedHeader;
WrongHeader const wrongHeaders[] = {
    {"AnUnknownByteOrder", Errc::incompatible, [](Header& h) { h.byteOrder = 0x02010403; }},
    {"AnotherRowSize", Errc::incompatible, [](Header& h) { h.rowSize += 8; }},
    {"AnotherKeySize", Errc::incompatible, [](Header& h) { h.keySize += 8; }},
    {"NoRows", Errc::damaged, [](Header& h) { h.maxRows = 0; }},
    {"TooManyRows", Errc::damaged, [](Header& h) { h.maxRows = Capacity::largestMaxRows + 1; }},
    {"TooSmallAnIndex", Errc::damaged, [](Header& h) { h.minIndexBits = 2; }},
    {"AnIndexThatIsLargerThanTheLargest", Errc::damaged, [](Header& h) { h.minIndexBits = h.maxIndexBits + 1; }},
    {"AnotherLargestIndex", Errc::damaged, [](Header& h) { h.maxIndexBits += 1; }},
    {"AnIndexElsewhere", Errc::damaged, [](Header& h) { h.indexOffset[1] += 4096; }},
    {"SlotsElsewhere", Errc::damaged, [](Header& h) { h.slotsOffset += 4096; }},
    {"AnotherSize", Errc::damaged, [](Header& h) { h.fileSize += 4096; }},
};
class WrongHeaders : public ReaderOf, public testing::WithParamInterface<WrongHeader> {};
INSTANTIATE_TEST_SUITE_P(SharedTable, WrongHeaders, testing::ValuesIn(wrongHeaders),
                         [](auto const& of) { return of.param.name; });

TEST_P(WrongHeaders, AreNotBelievedThoughTheirCrcHolds) {
  mountAndAttach();
  SharedTable::Fd const file(open(path().c_str(), O_RDWR | O_CLOEXEC));
  Header header{};
  ASSERT_EQ(pread(file.get(), &header, sizeof header, 0), static_cast<ssize_t>(sizeof header));
  GetParam().change(header);
  header.crc = SharedTable::crc32(&header, offsetof(Header, crc));
  ASSERT_EQ(pwrite(file.get(), &header, sizeof header, 0), static_cast<ssize_t>(sizeof header));
  EXPECT_EQ(reader_.attach().code, GetParam().code);
  EXPECT_FALSE(reader_.attached());
}

TEST_F(ReaderOf, EveryDamagedOctetOfTheHeaderIsNoticed) {
  mountAndAttach();
  for (U64 offset = 0; offset < sizeof(SharedTable::FixedHeader); ++offset) {
    U8 const octet = octetAt(path(), offset);
    octetAtIs(path(), offset, octet ^ 0x10);
    EXPECT_EQ(reader_.attach().code, Errc::damaged) << offset;
    octetAtIs(path(), offset, octet);
  }
  EXPECT_FALSE(reader_.attach());
}

TEST_F(ReaderOf, ATruncatedOrLengthenedFileIsNoticed) {
  mountAndAttach();
  reader_.detach();
  ASSERT_FALSE(writer_.mountPathDel());
  // As a foreign hand would leave it: no writer has it open.
  ASSERT_FALSE(writer_.mountPathIs(mountPath));
  std::filesystem::copy_file(path(), path("copy.tbl"));
  auto const size = std::filesystem::file_size(path("copy.tbl"));
  Reader copy(mountPath, "copy", readerOptions());
  ASSERT_FALSE(copy.attach());
  EXPECT_FALSE(copy.writer().alive);
  copy.detach();
  std::filesystem::resize_file(path("copy.tbl"), size + 1);
  EXPECT_EQ(copy.attach().code, Errc::damaged);
  EXPECT_THAT(copy.attachError().text, HasSubstr("longer than its header says"));
  for (auto const shorter : {size - 1, size / 2, std::uintmax_t{4096}, std::uintmax_t{255}, std::uintmax_t{0}}) {
    std::filesystem::resize_file(path("copy.tbl"), shorter);
    EXPECT_EQ(copy.attach().code, Errc::damaged) << shorter;
  }
}

TEST_F(ReaderOf, SomeOtherFileIsNoTable) {
  mountAndAttach();
  ASSERT_FALSE(writer_.mountPathDel());
  std::ofstream(path()) << std::string(8192, 'x');
  EXPECT_EQ(reader_.attach().code, Errc::damaged);
}

TEST_F(ReaderOf, ASymbolicLinkIsNotFollowed) {
  mountAndAttach();
  std::filesystem::create_symlink(path(), path("link.tbl"));
  EXPECT_EQ(Reader(mountPath, "link", readerOptions()).attach().code, Errc::notTrusted);
  std::filesystem::create_directory_symlink(directory_ + "/test", directory_ + "/linked");
  EXPECT_EQ(Reader("linked/tables", collection, readerOptions()).attach().code, Errc::notTrusted);
  Writer writer("fresh", writerOptions());
  EXPECT_EQ(writer.mountPathIs("linked/tables").code, Errc::notTrusted);
}

TEST_F(ReaderOf, ALinkToItselfIsNoDirectory) {
  std::filesystem::create_directory_symlink("loop", directory_ + "/loop");
  EXPECT_EQ(Reader(mountPath, collection, {{}, directory_ + "/loop/tables"}).attach().code, Errc::notTrusted);
}

TEST_F(ReaderOf, AFileThatOthersMayWriteIsNotTrusted) {
  mountAndAttach();
  ASSERT_EQ(chmod(path().c_str(), 0646), 0);
  EXPECT_EQ(reader_.attach().code, Errc::notTrusted);
  ASSERT_EQ(chmod(path().c_str(), 0664), 0);
  EXPECT_EQ(reader_.attach().code, Errc::notTrusted);
  ASSERT_EQ(chmod(path().c_str(), 0644), 0);
  EXPECT_FALSE(reader_.attach());
  ASSERT_EQ(chmod(path("").c_str(), 0777), 0);
  EXPECT_EQ(reader_.attach().code, Errc::notTrusted) << "nor is one in a directory that others may write";
}

TEST_F(ReaderOf, AFileOfAForeignOwnerIsNotTrustedUnlessItIsAskedFor) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  mountAndAttach();
  ASSERT_EQ(chown(path().c_str(), 12345, 12345), 0);
  EXPECT_EQ(reader_.attach().code, Errc::notTrusted);
  Reader trusting(mountPath, collection, {12345, directory_});
  EXPECT_FALSE(trusting.attach());
  ASSERT_EQ(chown(path().c_str(), 54321, 54321), 0);
  EXPECT_EQ(trusting.attach().code, Errc::notTrusted) << "it was not asked for that one";
}

TEST_F(ReaderOf, APipeInThePlaceOfATableHoldsNobodyUp) {
  mountAndAttach();
  ASSERT_FALSE(writer_.mountPathDel());
  ASSERT_EQ(mkfifo(path().c_str(), 0644), 0);
  EXPECT_EQ(reader_.attach().code, Errc::notTrusted);
  EXPECT_FALSE(writer_.mountPathIs(mountPath)) << "the writer puts its file in that place";
  EXPECT_FALSE(reader_.attach());
}

TEST_F(ReaderOf, AReaderOfAnotherUserSeesTheTable) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  ASSERT_EQ(chmod(directory_.c_str(), 0755), 0);
  writer_.rowIs(Row(1, 1));
  ASSERT_FALSE(writer_.mountPathIs(mountPath));
  pid_t const child = fork();
  if (child == 0) {
    if (setresgid(12345, 12345, 12345) != 0 || setresuid(12345, 12345, 12345) != 0) _exit(2);
    if (reader_.attach()) _exit(3);
    if (reader_.row(Key::of(1)).row != Row(1, 1)) _exit(4);
    if (!reader_.writer().alive) _exit(5);
    if (open(path("row.lock").c_str(), O_RDONLY | O_CLOEXEC) >= 0) _exit(6);
    if (open(path().c_str(), O_RDWR | O_CLOEXEC) >= 0) _exit(7);
    if (reader_.wait(reader_.changeCount(), 5s) != WaitResult::changed) _exit(8);
    _exit(0);
  }
  std::this_thread::sleep_for(100ms);
  writer_.rowIs(Row(1, 2));
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace

#include <RouterPlatform/SharedTable/SlotWords.h>
#include <RouterPlatform/Stats/Counter.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <sys/stat.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace SharedTableTest;

/// A flat row that costs little to make, so that the table is what takes the time.
class PlainRow {
 public:
  struct Key {
    std::array<U64, 6> words{};
    U64 hash(U64 seed) const noexcept { return Fwk::hashBytes(words.data(), sizeof words, seed); }
    auto operator<=>(Key const&) const = default;
    void appendTo(std::string& out) const { Trace::appendText(out, words[5]); }
  };
  PlainRow() = default;
  explicit PlainRow(U64 number, double time = 0) : time_(time) { key_.words[5] = number; }
  Key const& key() const { return key_; }
  U64 number() const { return key_.words[5]; }
  double time() const { return time_; }
  U64 sequence() const { return sequence_; }
  bool operator==(PlainRow const&) const = default;
  static constexpr std::array tableFields{SharedTable::field<std::array<U64, 6>>("key"),
                                          SharedTable::field<double>("time"), SharedTable::field<U64>("sequence")};

 private:
  Key key_;
  double time_ = 0;
  U64 sequence_ = 0;
};
static_assert(sizeof(PlainRow) == 64);

PlainRow::Key keyOf(U64 number) { return PlainRow(number).key(); }

class MillionRows : public Tables {
 protected:
  // The race checker makes everything twenty times slower, and what it finds it finds in fewer.
  static constexpr U32 million = SharedTable::SlotWords::threadSanitizer ? 100000 : 1000000;

  static bool seesAll(auto const& table) {
    std::vector<bool> seen(million);
    U64 rows = 0;
    SharedTable::WalkResult const walked = table.forEach([&](PlainRow const& row) {
      rows += row.number() < million && !seen[row.number()];
      seen[row.number()] = true;
    });
    return walked.exact && walked.rows == million && rows == million;
  }
};

TEST_F(MillionRows, TakeHardlyMoreSpaceThanTheirOctets) {
  constexpr U64 rows = 150000;
  SharedTable::Writer<PlainRow> writer(collection, writerOptions(4096, 1 << 20));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  struct stat before {};
  ASSERT_EQ(stat(path().c_str(), &before), 0);
  EXPECT_LT(before.st_blocks * 512, 256 << 10) << "an empty table of the usual capacity";
  for (U64 i = 0; i < rows; ++i) ASSERT_EQ(writer.rowIs(PlainRow(i)), WriteStatus::ok);
  SharedTable::Reader<PlainRow> reader(mountPath, collection, readerOptions());
  ASSERT_FALSE(reader.attach());
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(reader.view().base()) % SharedTable::hugePageSize, 0u)
      << "so that huge pages of the file can be mapped as such";
  struct stat status {};
  ASSERT_EQ(stat(path().c_str(), &status), 0);
  U64 const index = (U64{8} << 19) + (U64{8} << 18);  // that of so many rows, and the one before it
  EXPECT_LT(static_cast<U64>(status.st_blocks) * 512, index + rows * 72 + (U64{4} << 20));
}

TEST_F(MillionRows, AreAllReadByWhoReadsWhileTheirPagesAreJoined) {
  constexpr U64 lasting = 1000;
  constexpr U64 rows = 150000;  // several huge pages of slots, and indexes of several sizes, one huge page and more
  SharedTable::Writer<PlainRow> writer(collection, writerOptions(4096, 1 << 20));
  for (U64 i = 0; i < lasting; ++i) writer.rowIs(PlainRow(i, 0.5));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  std::atomic<U64> written{lasting};
  std::atomic<U64> lookups{0};
  std::atomic<bool> ended{false};
  auto const read = [&] {
    SharedTable::Reader<PlainRow> reader(mountPath, collection, readerOptions());  // a mapping of its own
    ASSERT_FALSE(reader.attach());
    for (U64 seen = 0; seen < rows; ++lookups) {
      seen = written.load(std::memory_order_acquire);
      ASSERT_EQ(reader.row(keyOf(lookups % lasting)).row.time(), 0.5);
      ASSERT_EQ(reader.row(keyOf(seen - 1)).row.time(), 0.5) << "the last one that was written";
    }
    EXPECT_TRUE(reader.forEach([](PlainRow const& row) { EXPECT_EQ(row.time(), 0.5); }).exact);
  };
  std::thread reading([&] {
    read();
    ended = true;
  });
  for (U64 i = lasting; i < rows; ++i) {
    EXPECT_EQ(writer.rowIs(PlainRow(i, 0.5)), WriteStatus::ok);
    written.store(i + 1, std::memory_order_release);
    while (i == rows / 2 && lookups < 100 && !ended) std::this_thread::yield();
  }
  reading.join();
}

TEST_F(MillionRows, AreWrittenReadWalkedUnmountedAndMountedAndOneMoreIsRefused) {
  SharedTable::Writer<PlainRow> writer(collection, writerOptions(4096, million));
  SharedTable::Reader<PlainRow> reader(mountPath, collection, readerOptions());
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  ASSERT_FALSE(reader.attach());
  for (U64 i = 0; i < million; ++i) ASSERT_EQ(writer.rowIs(PlainRow(i, 0.5)), WriteStatus::ok);

  Trace::Capture trace("SharedTable", "2");
  U64 const refused = Stats::counter("sharedTableFull").value();
  EXPECT_EQ(writer.rowIs(PlainRow(million)), WriteStatus::full);
  EXPECT_EQ(Stats::counter("sharedTableFull").value(), refused + 1);
  EXPECT_EQ(trace.texts(2).size(), 1u);

  EXPECT_EQ(reader.count(), million);
  EXPECT_TRUE(seesAll(reader));
  for (U64 i = 0; i < million; i += 7) {
    ASSERT_EQ(writer.rowIs(PlainRow(i, 1.5)), WriteStatus::ok);
    ASSERT_EQ(reader.row(keyOf(i)).row.time(), 1.5);
  }
  EXPECT_EQ(reader.row(keyOf(million)).status, LookupStatus::missing);

  ASSERT_FALSE(writer.mountPathDel());
  EXPECT_EQ(writer.count(), million);
  EXPECT_TRUE(seesAll(writer));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  EXPECT_EQ(reader.wait(reader.changeCount(), std::chrono::seconds(1)), SharedTable::WaitResult::attached);
  EXPECT_TRUE(seesAll(reader));
  EXPECT_EQ(writer.rowDel(keyOf(7))->time(), 1.5);
  EXPECT_EQ(writer.rowIs(PlainRow(million)), WriteStatus::ok);
  EXPECT_TRUE(reader.row(keyOf(million)));
}

}  // namespace

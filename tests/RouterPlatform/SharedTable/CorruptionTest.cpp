#include <RouterPlatform/SharedTable/WriterCore.h>
#include <RouterPlatform/Stats/Counter.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <iostream>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace SharedTableTest;
using SharedTable::BucketWord;
using SharedTable::Corruption;
using SharedTable::Geometry;
using SharedTable::LiveState;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// A mounted table of a few rows whose octets are damaged from outside, as a stray write of a privileged process or bad
/// memory would.
class DamagedTable : public Tables {
 protected:
  DamagedTable() : writer_(collection, writerOptions()), reader_(mountPath, collection, readerOptions()) {
    for (U64 i = 0; i < 6; ++i) writer_.rowIs(Row(i, 1));
    EXPECT_FALSE(writer_.mountPathIs(mountPath));
    EXPECT_FALSE(reader_.attach());
  }

  /// The bucket of a key in the index in force.
  U64 bucketOf(U64 number) const {
    SharedTable::View const& view = reader_.view();
    SharedTable::ActiveWord const active{view.live().active.load()};
    for (U64 i = 0; i < U64{1} << active.indexBits(); ++i) {
      BucketWord const word{view.bucket(active.half(), i).load()};
      if (word.empty() || word.tombstone()) continue;
      Row row;
      std::memcpy(static_cast<void*>(&row), view.slot(word.slot()), sizeof row);
      if (row.number() == number) return i;
    }
    ADD_FAILURE() << "no bucket";
    return 0;
  }
  U64 bucketOffset(U64 number) const { return geometry().bucketOffset(0, bucketOf(number)); }
  U32 slotOf(U64 number) const { return BucketWord{reader_.view().bucket(0, bucketOf(number)).load()}.slot(); }
  U64 slotOffset(U64 number) const { return geometry().slotOffset(slotOf(number)); }
  Geometry const& geometry() const { return reader_.view().geometry(); }

  /// As a page that was lost: all buckets of it are empty.
  void loseIndex() {
    for (U64 i = 0; i < 8 * 16; ++i) octetAtIs(path(), geometry().bucketOffset(0, 0) + i, 0);
  }

  void damage(U64 offset, U8 change = 0x04) { octetAtIs(path(), offset, octetAt(path(), offset) ^ change); }

  Writer writer_;
  Reader reader_;
};

TEST_F(DamagedTable, EveryDamagedOctetOfARowIsReportedWithItsPlace) {
  for (U64 i = 0; i < geometry().slotSize(); ++i) {
    U64 const place = slotOffset(3);
    for (U8 const change : {U8{0x01}, U8{0x80}, U8{0xff}}) {
      damage(place + i, change);
      auto const found = reader_.row(Key::of(3));
      ASSERT_EQ(found.status, LookupStatus::corrupt) << i;
      EXPECT_EQ(found.corruption.place, Corruption::Place::slot);
      EXPECT_EQ(found.corruption.offset, place);
      EXPECT_EQ(found.row, Row());
      damage(place + i, change);
    }
  }
  EXPECT_EQ(reader_.row(Key::of(3)).row, Row(3, 1));
}

TEST_F(DamagedTable, EveryDamagedOctetOfABucketIsReportedWithItsPlace) {
  U64 const place = bucketOffset(3);
  for (U64 i = 0; i < 8; ++i) {
    damage(place + i);
    auto const found = reader_.row(Key::of(3));
    ASSERT_EQ(found.status, LookupStatus::corrupt) << i;
    EXPECT_EQ(found.corruption.place, Corruption::Place::bucket);
    EXPECT_EQ(found.corruption.offset, place);
    damage(place + i);
  }
  EXPECT_EQ(reader_.row(Key::of(3)).row, Row(3, 1));
}

TEST_F(DamagedTable, ABucketThatNamesASlotWithoutSpaceIsReported) {
  U64 const place = bucketOffset(3);
  BucketWord const word{reader_.view().bucket(0, bucketOf(3)).load()};
  U64 const wrong = BucketWord::of(1000, word.tag(), word.generation()).bits;
  for (U64 i = 0; i < 8; ++i) octetAtIs(path(), place + i, static_cast<U8>(wrong >> (8 * i)));
  auto const found = reader_.row(Key::of(3));
  EXPECT_EQ(found.status, LookupStatus::corrupt);
  EXPECT_EQ(found.corruption.place, Corruption::Place::bucket);
}

TEST_F(DamagedTable, EveryDamagedOctetOfWhatLookupsStandOnIsReported) {
  for (U64 i = 0; i < 16; ++i) {  // `active` and `slotsReady`
    U64 const place = SharedTable::liveStateOffset + i;
    damage(place);
    auto const found = reader_.row(Key::of(3));
    ASSERT_EQ(found.status, LookupStatus::corrupt) << i;
    EXPECT_EQ(found.corruption.place, Corruption::Place::header);
    SharedTable::WalkResult const walked = reader_.forEach([](Row const&) {});
    EXPECT_GT(walked.corrupt, 0u) << i;
    EXPECT_FALSE(walked.exact);
    damage(place);
  }
}

TEST_F(DamagedTable, ADamagedRowCountIsNotBelieved) {
  EXPECT_EQ(reader_.view().count(), 6u);
  for (U64 i = 0; i < 8; ++i) {
    U64 const place = SharedTable::liveStateOffset + offsetof(LiveState, rowCount) + i;
    damage(place);
    EXPECT_EQ(reader_.view().count(), std::nullopt) << i;
    damage(place);
  }
}

TEST_F(DamagedTable, NumbersThatAreWholeButCannotBeAreNotBelieved) {
  auto& live = *reinterpret_cast<LiveState*>(writer_.core().memory().base() + SharedTable::liveStateOffset);
  live.rowCount = SharedTable::CheckedNumber::of(writer_.maxRows() + 1).bits;
  EXPECT_EQ(reader_.view().count(), std::nullopt);
  U64 const ready = live.slotsReady.exchange(SharedTable::CheckedNumber::of(0x7fffffff).bits);
  EXPECT_EQ(reader_.row(Key::of(3)).status, LookupStatus::corrupt);
  live.slotsReady = ready;
  for (U32 const bits : {geometry().minIndexBits - 1, geometry().maxIndexBits + 1}) {
    U64 const active = live.active.exchange(SharedTable::ActiveWord::of(1, bits).bits);
    auto const found = reader_.row(Key::of(3));
    EXPECT_EQ(found.status, LookupStatus::corrupt);
    EXPECT_EQ(found.corruption.place, Corruption::Place::header);
    live.active = active;
  }
  EXPECT_EQ(reader_.row(Key::of(3)).row, Row(3, 1));
}

TEST_F(DamagedTable, AWalkLeavesOutWhatIsDamagedAndSaysSo) {
  U64 const slot = slotOffset(3);
  U64 const bucket = bucketOffset(5);
  damage(slot + 50);
  damage(bucket + 2);
  std::multiset<U64> seen;
  SharedTable::WalkResult const walked = reader_.forEach([&](Row const& row) { seen.insert(row.number()); });
  EXPECT_THAT(seen, ElementsAre(0, 1, 2, 4));
  EXPECT_EQ(walked.rows, 4u);
  EXPECT_EQ(walked.corrupt, 2u);
  EXPECT_FALSE(walked.exact);
  EXPECT_TRUE(walked.firstCorruption.offset == slot || walked.firstCorruption.offset == bucket);
}

TEST_F(DamagedTable, AWalkThatMeetsFewerRowsThanThereAreSaysSo) {
  loseIndex();
  SharedTable::WalkResult const walked = reader_.forEach([](Row const&) {});
  EXPECT_EQ(walked.rows, 0u);
  EXPECT_EQ(walked.corrupt, 1u);
  EXPECT_EQ(walked.firstCorruption.place, Corruption::Place::index);
  EXPECT_FALSE(walked.exact);
}

TEST_F(DamagedTable, AWalkWhoseNumberOfRowsIsDamagedSaysSo) {
  damage(SharedTable::liveStateOffset + offsetof(LiveState, rowCount));
  SharedTable::WalkResult const walked = reader_.forEach([](Row const&) {});
  EXPECT_EQ(walked.rows, 6u);
  EXPECT_EQ(walked.corrupt, 1u);
  EXPECT_EQ(walked.firstCorruption.place, Corruption::Place::header);
  EXPECT_FALSE(walked.exact);
}

TEST_F(DamagedTable, AChangeThatADeadWriterDidNotCountIsNoDamage) {
  auto& live = *reinterpret_cast<LiveState*>(writer_.core().memory().base() + SharedTable::liveStateOffset);
  for (auto const& [counted, exact] :
       {std::pair(5u, true), std::pair(7u, true), std::pair(4u, false), std::pair(8u, false)}) {
    live.rowCount = SharedTable::CheckedNumber::of(counted).bits;
    EXPECT_EQ(reader_.forEach([](Row const&) {}).exact, exact) << counted;
  }
}

TEST_F(DamagedTable, AWalkWhoseIndexBecomesSmallerSaysSo) {
  for (U64 i = 100; i < 200; ++i) writer_.rowIs(Row(i, 1));
  auto& active = reinterpret_cast<LiveState*>(writer_.core().memory().base() + SharedTable::liveStateOffset)->active;
  U64 const before = active;
  SharedTable::WalkResult const walked = reader_.forEach([&](Row const&) {
    active = SharedTable::ActiveWord::of(SharedTable::ActiveWord{before}.epoch() + 2, geometry().minIndexBits).bits;
  });
  active = before;
  EXPECT_EQ(walked.corrupt, 1u);
  EXPECT_EQ(walked.firstCorruption.place, Corruption::Place::header);
  EXPECT_FALSE(walked.exact);
}

TEST_F(DamagedTable, ARemovalTouchesNoDamagedBucketBehindIt) {
  for (U64 number = 0; number < 6; ++number) {
    U64 const behind = (bucketOf(number) + 1) % 16;
    if (reader_.view().bucket(0, behind).load() != 0) continue;
    U64 const place = geometry().bucketOffset(0, behind);
    damage(place + 4);
    EXPECT_EQ(writer_.rowDel(Key::of(number)), Row(number, 1));
    EXPECT_EQ(octetAt(path(), place + 4), 0x04);
    return;
  }
  FAIL() << "no empty bucket behind a row";
}

TEST_F(DamagedTable, AnIndexWithoutAnEndHoldsNobodyUp) {
  // Every bucket a tombstone: probing would go round for ever.
  U64 const word = BucketWord::of(BucketWord::tombstoneSlot, 0, 1).bits;
  for (U64 bucket = 0; bucket < 16; ++bucket)
    for (U64 i = 0; i < 8; ++i)
      octetAtIs(path(), geometry().bucketOffset(0, bucket) + i, static_cast<U8>(word >> (8 * i)));
  auto const found = reader_.row(Key::of(3));
  EXPECT_EQ(found.status, LookupStatus::corrupt);
  EXPECT_EQ(found.corruption.place, Corruption::Place::index);
  SharedTable::WalkResult const walked = reader_.forEach([](Row const&) {});
  EXPECT_EQ(walked.rows, 0u);
  EXPECT_EQ(walked.corrupt, 1u);
}

TEST_F(DamagedTable, AnIndexWhoseEmptyBucketsComeAndGoIsNotTakenForOneWithoutAnEnd) {
  // What a busy writer may make of the smallest index, only faster: one bucket is empty, then another one is too, then
  // only that one, so that a look at all of them often meets none. As a writer's, each change is of one bucket and
  // counted.
  std::byte* const base = writer_.core().memory().base();
  auto const bucket = [&](U64 number) -> std::atomic<U64>& {
    return *reinterpret_cast<std::atomic<U64>*>(base + geometry().bucketOffset(0, number));
  };
  auto& live = *reinterpret_cast<LiveState*>(base + SharedTable::liveStateOffset);
  auto& changeCount = live.changeCount;
  live.rowCount = SharedTable::CheckedNumber::of(0).bits;
  U64 const tombstone = BucketWord::of(BucketWord::tombstoneSlot, 0, 1).bits;
  for (U64 number = 1; number < 16; ++number) bucket(number) = tombstone;
  bucket(0) = 0;
  std::atomic<bool> stop{false};
  std::thread mover([&] {
    auto const change = [&](U64 number, U64 word) {
      bucket(number).store(word, std::memory_order_release);
      changeCount.fetch_add(1, std::memory_order_release);
    };
    U64 empty = 0;
    for (U64 random = 1; !stop;) {
      random = random * 6364136223846793005U + 1442695040888963407U;
      U64 const next = random >> 60;
      if (next == empty) continue;
      change(next, 0);
      change(empty, tombstone);
      empty = next;
    }
  });
  U64 damaged = 0;
  for (U64 i = 0; i < 20000 || changeCount < 1000000; ++i) {  // both threads have had their turns
    damaged += reader_.row(Key::of(i % 6)).status == LookupStatus::corrupt;
    damaged += reader_.forEach([](Row const&) {}).corrupt;
  }
  stop = true;
  mover.join();
  EXPECT_EQ(damaged, 0u);
}

TEST_F(DamagedTable, ALookupOfTheWriterTellsTheHandlerAndFindsNothing) {
  std::vector<std::string> messages;
  writer_.corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  U64 const counted = Stats::counter("sharedTableCorrupt").value();
  damage(slotOffset(3) + 9);
  EXPECT_EQ(writer_.row(Key::of(3)), std::nullopt);
  EXPECT_THAT(messages, ElementsAre(HasSubstr("Table test/tables/row: damaged slot ")));
  EXPECT_THAT(messages, ElementsAre(HasSubstr(" while looking up, key Ethernet3-fe80::3")));
  EXPECT_EQ(Stats::counter("sharedTableCorrupt").value(), counted + 1);
  EXPECT_EQ(writer_.row(Key::of(4)), Row(4, 1)) << "the others are there";
  EXPECT_EQ(writer_.writable(Key::of(3)), nullptr);
  EXPECT_EQ(messages.size(), 2u);
}

TEST_F(DamagedTable, AWalkOfTheWriterTellsTheHandlerAndGoesOn) {
  std::vector<std::string> messages;
  writer_.corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  damage(slotOffset(3) + 60);
  EXPECT_EQ(writer_.forEach([](Row const&) {}).rows, 5u);
  EXPECT_THAT(messages, ElementsAre(HasSubstr("while walking")));
}

TEST_F(DamagedTable, WithoutAHandlerTheMessageIsTraced) {
  Trace::Capture trace("SharedTable", "1");
  damage(bucketOffset(3) + 1);
  EXPECT_EQ(writer_.row(Key::of(3)), std::nullopt);
  EXPECT_THAT(trace.texts(1), ElementsAre(HasSubstr("damaged bucket ")));
}

using DamagedTableDeathTest = DamagedTable;

TEST_F(DamagedTableDeathTest, AWriteTellsTheHandlerAndFailsTheAssertion) {
  writer_.corruptionHandlerIs([](std::string_view message) { std::cerr << "handler: " << message << '\n'; });
  damage(slotOffset(3) + 40);
  EXPECT_DEATH(writer_.rowIs(Row(3, 2)),
               "handler: Table .*damaged slot .* while writing, key Ethernet3-fe80::3(.|\n)*"
               "RouterPlatform/SharedTable:[0-9]+: safeWrite: assertion "
               "\"TableMap::safeWrite\\(\\) in no man's land\" failed");
}

TEST_F(DamagedTableDeathTest, ARemovalTellsTheHandlerAndFailsTheAssertion) {
  writer_.corruptionHandlerIs([](std::string_view message) { std::cerr << "handler: " << message << '\n'; });
  damage(bucketOffset(3) + 4);
  EXPECT_DEATH(writer_.rowDel(Key::of(3)),
               "handler: Table .*damaged bucket .* while removing, key Ethernet3-fe80::3(.|\n)*"
               "RouterPlatform/SharedTable:[0-9]+: safeRemove: assertion "
               "\"TableMap::safeRemove\\(\\) in no man's land\" failed");
}

TEST_F(DamagedTableDeathTest, ARemovalOfADamagedRowFailsTheAssertion) {
  damage(slotOffset(3) + 60);
  EXPECT_DEATH(writer_.rowDel(Key::of(3)), "TableMap::safeRemove\\(\\) in no man's land");
}

TEST_F(DamagedTableDeathTest, ARebuildOfADamagedIndexFailsTheAssertion) {
  damage(bucketOffset(3) + 4);
  EXPECT_DEATH(
      {
        for (U64 i = 100; i < 600; ++i) writer_.rowIs(Row(i, 0));
      },
      "in no man's land");
}

TEST_F(DamagedTableDeathTest, ARebuildThatMissesRowsFailsTheAssertion) {
  writer_.corruptionHandlerIs([](std::string_view message) { std::cerr << "handler: " << message << '\n'; });
  loseIndex();
  EXPECT_DEATH(
      {
        for (U64 i = 100; i < 600; ++i) writer_.rowIs(Row(i, 0));
      },
      "damaged index at offset 4096 while writing(.|\n)*in no man's land");
}

TEST_F(DamagedTableDeathTest, AHandlerThatUnmountsFailsAnAssertion) {
  writer_.corruptionHandlerIs([&](std::string_view) { (void)writer_.mountPathDel(); });
  damage(slotOffset(3) + 60);
  EXPECT_DEATH(writer_.row(Key::of(3)), "a corruption handler does not mount, unmount or end its table");
}

/// A row that lets a test in while it is moved.
class IntrudingRow {
 public:
  struct Key {
    U64 number = 0;
    U64 hash(U64 seed) const noexcept {
      if (intrude) std::exchange(intrude, nullptr)();
      return Fwk::hashOf(number, seed);
    }
    auto operator<=>(Key const&) const = default;
    void appendTo(std::string& out) const { Trace::appendText(out, number); }
  };
  IntrudingRow() = default;
  explicit IntrudingRow(U64 number) : key_{number} {}
  Key const& key() const { return key_; }
  bool operator==(IntrudingRow const&) const = default;
  static constexpr std::array tableFields{SharedTable::field<U64>("key")};
  static inline std::function<void()> intrude;

 private:
  Key key_;
};

TEST_F(DamagedTableDeathTest, DamageOfATableThatIsBeingMadeTellsTheHandlerAndFailsTheAssertion) {
  SharedTable::Writer<IntrudingRow> writer("new", writerOptions());
  writer.corruptionHandlerIs([](std::string_view message) { std::cerr << "handler: " << message << '\n'; });
  writer.rowIs(IntrudingRow(1));
  IntrudingRow::intrude = [&] {
    for (U64 bucket = 0; bucket < 16; ++bucket) octetAtIs(path(".new.tmp"), geometry().bucketOffset(0, bucket) + 1, 1);
  };
  EXPECT_DEATH((void)writer.mountPathIs(mountPath),
               "handler: Table test/tables/new: damaged bucket .*(.|\n)*"
               "safeWrite: assertion \"TableMap::safeWrite\\(\\) in no man's land\" failed");
  IntrudingRow::intrude = nullptr;
}

/// All kinds of damage, which the removal of all rows tells before it fails.
class RemovalOfAllDeathTest : public DamagedTable {
 protected:
  RemovalOfAllDeathTest() {
    writer_.corruptionHandlerIs([](std::string_view message) { std::cerr << "handler: " << message << '\n'; });
  }
  static constexpr char const* assertion =
      "safeRemove: assertion \"TableMap::safeRemove\\(\\) in no man's land\" failed";
};

TEST_F(RemovalOfAllDeathTest, OfDamagedRowsAndBucketsTellsEachAndFailsTheAssertion) {
  U64 const bucket = bucketOffset(5);
  U64 const slot = slotOffset(4);
  damage(slotOffset(3) + 60);  // the key is whole
  damage(slot + 47);           // within the key
  damage(bucket + 1);
  std::string const handler = "handler: Table test/tables/row: damaged (slot|bucket) .* while removing all rows(.|\n)*";
  EXPECT_DEATH(writer_.rowDelAll(), handler + handler + handler + assertion);
}

TEST_F(RemovalOfAllDeathTest, OfAnIndexThatHasLostItsRowsTellsAndFailsTheAssertion) {
  loseIndex();
  EXPECT_DEATH(writer_.rowDelAll(),
               std::string("handler: .*damaged index at offset 4096 while removing all rows(.|\n)*") + assertion);
}

TEST_F(RemovalOfAllDeathTest, FailsTheAssertionWhateverTheHandlerThrows) {
  writer_.corruptionHandlerIs([](std::string_view) { throw std::runtime_error("handler"); });
  damage(slotOffset(3) + 60);
  EXPECT_DEATH(writer_.rowDelAll(), assertion);
}

TEST_F(DamagedTableDeathTest, AChangeFailsTheAssertionWhateverTheHandlerThrows) {
  writer_.corruptionHandlerIs([](std::string_view) { throw std::runtime_error("handler"); });
  damage(slotOffset(3) + 40);
  EXPECT_DEATH(writer_.rowIs(Row(3, 2)), "safeWrite\\(\\) in no man's land");
  EXPECT_DEATH((void)writer_.rowDel(Key::of(3)), "safeRemove\\(\\) in no man's land");
}

TEST_F(DamagedTable, WhatAHandlerThrowsComesWhenTheTableIsUnmountedAndAllIsTold) {
  writer_.corruptionHandlerIs([](std::string_view) { throw std::runtime_error("handler"); });
  std::vector<std::string> heard;
  writer_.callbacksAre({[&](Key const& key) { heard.push_back(std::to_string(key.number())); },
                        [&] { heard.push_back("status"); }, [&](bool) { heard.push_back("quiesced"); }});
  damage(slotOffset(3) + 60);
  EXPECT_THROW((void)writer_.mountPathDel(), std::runtime_error);
  EXPECT_EQ(writer_.mountStatus(), MountStatus::unmounted);
  EXPECT_THAT(heard, ElementsAre("3", "status", "quiesced"));
  writer_.corruptionHandlerIs(nullptr);
  EXPECT_FALSE(writer_.mountPathIs(mountPath)) << "the handler is not taken to be running still";
}

TEST_F(DamagedTable, UnmountingSaysWhenAnIndexHasLostItsRows) {
  std::vector<std::string> messages;
  writer_.corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  loseIndex();
  ASSERT_FALSE(writer_.mountPathDel());
  EXPECT_THAT(messages, ElementsAre(HasSubstr("damaged index at offset 4096 while moving the rows")));
  EXPECT_EQ(writer_.count(), 0u);
}

TEST_F(DamagedTable, UnmountingNamesADamagedBucketOnlyOnceWhetherOrNotItWasOfARow) {
  std::vector<std::string> messages;
  writer_.corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  U64 bucket = 0;
  while (reader_.view().bucket(0, bucket).load() != 0) ++bucket;
  damage(geometry().bucketOffset(0, bucket) + 1);
  damage(bucketOffset(5) + 1);
  ASSERT_FALSE(writer_.mountPathDel());
  EXPECT_THAT(messages, ElementsAre(HasSubstr("damaged bucket "), HasSubstr("damaged bucket ")));
  EXPECT_EQ(writer_.count(), 5u);
}

TEST_F(DamagedTable, UnmountingBelievesNoBucketThatNamesASlotNeverTaken) {
  std::vector<std::string> messages;
  writer_.corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  auto& bucket = *reinterpret_cast<std::atomic<U64>*>(writer_.core().memory().base() + bucketOffset(3));
  BucketWord const word{bucket.load()};
  bucket = BucketWord::of(1000, word.tag(), word.generation()).bits;
  ASSERT_FALSE(writer_.mountPathDel());
  EXPECT_THAT(messages, ElementsAre(HasSubstr("damaged bucket ")));
  EXPECT_EQ(writer_.count(), 5u);
}

TEST_F(DamagedTable, AWriteRepairsARowWhoseKeyIsWhole) {
  damage(slotOffset(3) + 60);
  EXPECT_EQ(reader_.row(Key::of(3)).status, LookupStatus::corrupt);
  EXPECT_EQ(writer_.rowIs(Row(3, 2)), WriteStatus::ok);
  EXPECT_EQ(reader_.row(Key::of(3)).row, Row(3, 2));
}

TEST_F(DamagedTable, ACommitInPlaceNeedsNoLookupAndRepairsTheRow) {
  Row* const row = writer_.writable(Key::of(3));
  damage(slotOffset(3) + 60);
  row->versionIs(2);
  EXPECT_EQ(writer_.commit(*row), WriteStatus::ok);
  EXPECT_EQ(reader_.row(Key::of(3)).row, Row(3, 2));
}

TEST_F(DamagedTable, ADamagedRowIsNotStagedAndNeitherIsTheOneBefore) {
  writer_.corruptionHandlerIs([](std::string_view) {});
  Row* const row = writer_.writable(Key::of(3));
  ASSERT_NE(row, nullptr);
  damage(slotOffset(4) + 60);
  EXPECT_EQ(writer_.writable(Key::of(4)), nullptr);
  EXPECT_EQ(reader_.row(Key::of(4)).status, LookupStatus::corrupt) << "nothing was published for it";
  EXPECT_EQ(writer_.commit(Row(4, 2)), WriteStatus::ok);
  EXPECT_EQ(reader_.row(Key::of(4)).row, Row(4, 2));
  EXPECT_EQ(reader_.row(Key::of(3)).row, Row(3, 1)) << "the row that was staged before is another one";
  EXPECT_EQ(writer_.count(), 6u);
}

TEST_F(DamagedTable, UnmountingSavesWhatIsWholeAndNamesTheRowThatIsLost) {
  std::vector<std::string> messages;
  std::vector<U64> lost;
  writer_.corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  writer_.callbacksAre({[&](Key const& key) {
                          lost.push_back(key.number());
                          EXPECT_EQ(writer_.row(key), std::nullopt) << "it is told after the change";
                        },
                        nullptr, nullptr});
  damage(slotOffset(3) + 60);  // the key is whole
  ASSERT_FALSE(writer_.mountPathDel());
  EXPECT_THAT(lost, ElementsAre(3));
  EXPECT_THAT(messages, ElementsAre(HasSubstr("while moving the rows, key Ethernet3-fe80::3")));
  EXPECT_EQ(writer_.count(), 5u);
  EXPECT_EQ(writer_.row(Key::of(4)), Row(4, 1));
}

TEST_F(DamagedTable, UnmountingNamesNoRowWhoseKeyIsLostToo) {
  std::vector<U64> lost;
  std::vector<std::string> messages;
  writer_.corruptionHandlerIs([&](std::string_view message) { messages.emplace_back(message); });
  writer_.callbacksAre({[&](Key const& key) { lost.push_back(key.number()); }, nullptr, nullptr});
  damage(slotOffset(3) + 47);  // within the key
  damage(bucketOffset(4) + 1);
  ASSERT_FALSE(writer_.mountPathDel());
  EXPECT_THAT(lost, IsEmpty());
  EXPECT_EQ(messages.size(), 2u);
  EXPECT_EQ(writer_.count(), 4u);
}

}  // namespace

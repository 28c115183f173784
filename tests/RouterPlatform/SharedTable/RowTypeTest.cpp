// What the table asks of row types: the key's own operations, and rows that are not sound.

#include <RouterPlatform/SharedTable/WriterCore.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <functional>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace {

using namespace SharedTableTest;
using SharedTable::Corruption;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A row whose key notes what is asked of it. All keys have one hash, so that their rows stand side by side.
class CuriousRow {
 public:
  struct Key {
    U64 number = 0;
    U64 hash(U64 seed) const noexcept {
      seeds.insert(seed);
      if (whenHashed) std::exchange(whenHashed, nullptr)();
      return 0x5555555555555555;
    }
    bool operator==(Key const& other) const noexcept {
      ++compared;
      return number == other.number;
    }
    auto operator<=>(Key const& other) const noexcept {
      ++ordered;
      return number <=> other.number;
    }
    void appendTo(std::string& out) const { Trace::appendTexts(out, "curious ", number); }
  };
  CuriousRow() = default;
  explicit CuriousRow(U64 number) : key_{number} {}
  Key const& key() const { return key_; }
  bool operator==(CuriousRow const&) const = default;
  static constexpr std::array tableFields{SharedTable::field<U64>("key")};

  static inline std::set<U64> seeds;
  static inline int compared = 0;
  static inline int ordered = 0;
  static inline std::function<void()> whenHashed;

 private:
  Key key_;
};

class RowTypes : public Tables {
 protected:
  RowTypes() : writer_(collection, writerOptions(8, 16)), reader_(mountPath, collection, readerOptions()) {
    for (U64 number = 1; number <= 3; ++number) writer_.rowIs(CuriousRow(number));
    EXPECT_FALSE(writer_.mountPathIs(mountPath));
    EXPECT_FALSE(reader_.attach());
    CuriousRow::seeds.clear();
    CuriousRow::compared = 0;
    CuriousRow::ordered = 0;
  }
  ~RowTypes() override { CuriousRow::whenHashed = nullptr; }

  /// The bucket where all keys begin.
  U64 home() {
    SharedTable::FixedHeader header{};
    std::memcpy(&header, writer_.core().memory().base(), sizeof header);
    return SharedTable::homeBucket(header.hashSecret.place(CuriousRow::Key{}.hash(0)), header.minIndexBits);
  }

  SharedTable::Writer<CuriousRow> writer_;
  SharedTable::Reader<CuriousRow> reader_;
};

TEST_F(RowTypes, KeysAreHashedWithSeedZeroByWriterAndReader) {
  writer_.rowIs(CuriousRow(4));
  EXPECT_THAT(CuriousRow::seeds, ElementsAre(0));
  CuriousRow::seeds.clear();
  EXPECT_TRUE(reader_.row({3}));
  EXPECT_THAT(CuriousRow::seeds, ElementsAre(0));
}

TEST_F(RowTypes, KeysAreComparedByTheirOwnEquality) {
  EXPECT_TRUE(reader_.row({3}));
  EXPECT_GT(CuriousRow::compared, 0);
  CuriousRow::compared = 0;
  EXPECT_TRUE(writer_.rowDel({3}));
  EXPECT_GT(CuriousRow::compared, 0);
}

TEST_F(RowTypes, AKeyThatMovesBehindTheWalkIsVisitedOnceAndFoundByItsOwnOrder) {
  // Where the three rows stand in one run, and not across the end of the index.
  writer_.rowDelAll();
  while (home() > 8) {
    ASSERT_FALSE(writer_.mountPathDel());
    ASSERT_FALSE(writer_.mountPathIs(mountPath));
    ASSERT_FALSE(reader_.attach());
  }
  for (U64 number = 1; number <= 3; ++number) writer_.rowIs(CuriousRow(number));
  // While the walk is at the first of the three rows, that one goes, another one takes its bucket, and it comes back
  // behind the third.
  CuriousRow::whenHashed = [this] {
    writer_.rowDel({1});
    writer_.rowIs(CuriousRow(4));
    writer_.rowIs(CuriousRow(1));
  };
  std::vector<U64> visited;
  SharedTable::WalkResult const walked =
      reader_.forEach([&](CuriousRow const& row) { visited.push_back(row.key().number); });
  EXPECT_FALSE(walked.exact);
  EXPECT_THAT(visited, ElementsAre(2, 3, 1));
  EXPECT_EQ(walked.rows, 3u);
  EXPECT_GT(CuriousRow::ordered, 0);
}

TEST_F(RowTypes, ARefusedRowIsTracedByTheTextOfItsKey) {
  Trace::Capture trace("SharedTable", "2");
  for (U64 number = 4; number <= 17; ++number) writer_.rowIs(CuriousRow(number));
  EXPECT_THAT(trace.texts(2), ElementsAre("Could not write row curious 17 to test/tables/row: table full ( 16 rows, 16 "
                                          "at most )"));
}

TEST(SharedTableSecret, IsAnotherOneInEachFile) {
  class TwoTables : public Tables {
   public:
    void TestBody() override {}
    SharedTable::FixedHeader headerOf(char const* name) {
      Writer writer(name, writerOptions());
      EXPECT_FALSE(writer.mountPathIs(mountPath));
      SharedTable::FixedHeader header{};
      std::memcpy(&header, writer.core().memory().base(), sizeof header);
      return header;
    }
  } tables;
  SharedTable::HashSecret const a = tables.headerOf("a").hashSecret;
  SharedTable::HashSecret const b = tables.headerOf("b").hashSecret;
  EXPECT_NE(a.factor[0], b.factor[0]);
  EXPECT_NE(a.factor[1], b.factor[1]);
  EXPECT_NE(a.addend[0], b.addend[0]);
  EXPECT_NE(a.addend[1], b.addend[1]);
  EXPECT_NE(a.place(1), b.place(1));
}

/// A row that may hold a number that no row has.
class DoubtfulRow {
 public:
  static constexpr U64 impossible = 13;
  DoubtfulRow() = default;
  DoubtfulRow(U64 number, U64 value) : number_(number), value_(value) {}
  U64 const& key() const { return number_; }
  bool isSound() const noexcept { return value_ != impossible; }
  bool operator==(DoubtfulRow const&) const = default;
  static constexpr std::array tableFields{SharedTable::field<U64>("number"), SharedTable::field<U64>("value")};

 private:
  U64 number_ = 0;
  U64 value_ = 0;
};

TEST_F(RowTypes, ARowThatIsNotSoundCountsAsDamagedAndIsHandedToNobody) {
  SharedTable::Writer<DoubtfulRow> writer("doubtful", writerOptions());
  for (U64 number = 1; number <= 3; ++number) writer.rowIs(DoubtfulRow(number, number == 2 ? 13 : number));
  ASSERT_FALSE(writer.mountPathIs(mountPath));
  SharedTable::Reader<DoubtfulRow> reader(mountPath, "doubtful", readerOptions());
  ASSERT_FALSE(reader.attach());
  EXPECT_TRUE(reader.row(1));
  auto const refused = reader.row(2);
  EXPECT_EQ(refused.status, LookupStatus::corrupt);
  EXPECT_EQ(refused.corruption.place, Corruption::Place::slot);
  EXPECT_EQ(refused.row, DoubtfulRow());
  std::vector<U64> visited;
  SharedTable::WalkResult const walked = reader.forEach([&](DoubtfulRow const& row) { visited.push_back(row.key()); });
  EXPECT_THAT(visited, testing::UnorderedElementsAre(1, 3));
  EXPECT_EQ(walked.corrupt, 1u);
  EXPECT_EQ(walked.firstCorruption.place, Corruption::Place::slot);
  EXPECT_FALSE(walked.exact);
}

}  // namespace

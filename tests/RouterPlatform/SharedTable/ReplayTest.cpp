#include <RouterPlatform/SharedTable/WriterCore.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>

#include <map>
#include <optional>
#include <random>
#include <vector>

namespace {

using namespace SharedTableTest;

/// One store of the writer's, or (size 0) the end of a change.
struct Store {
  U64 offset;
  U64 value;
  U32 size;
};

class Recorder : public SharedTable::StoreLog {
 public:
  void stored(U64 offset, U64 value, U32 size) override { stores.push_back({offset, value, size}); }
  std::vector<Store> stores;
};

/// A writer that is killed leaves a prefix of its stores behind. This keeps a copy of a table's file, applies the
/// stores to it one at a time, and looks at it after each one with a reader that was there before and, at times, a new
/// one.
class Replay : public Tables {
 protected:
  using Contents = std::map<U64, U64>;

  Replay() : writer_(collection, writerOptions(4, 64)), reader_(mountPath, "copy", readerOptions()) {
    EXPECT_FALSE(writer_.mountPathIs(mountPath));
    // What is reserved later is zero in the copy too, because the copy is sparse and has its full size.
    std::filesystem::copy_file(path(), path("copy.tbl"));
    copy_ = SharedTable::Fd(open(path("copy.tbl").c_str(), O_RDWR | O_CLOEXEC));
    EXPECT_FALSE(reader_.attach());
    writer_.core().storeLogIs(&recorder_);
  }

  void apply(Store const& store) {
    ASSERT_EQ(pwrite(copy_.get(), &store.value, store.size, static_cast<off_t>(store.offset)),
              static_cast<ssize_t>(store.size));
  }

  /// Whether the copy holds `contents`, by lookups and by a walk.
  static bool holds(Reader const& reader, Contents const& contents, U64 keys) {
    for (U64 number = 0; number < keys; ++number) {
      auto const found = reader.row(Key::of(number));
      auto const it = contents.find(number);
      if (it == contents.end() ? found.status != LookupStatus::missing : found.row != Row(number, it->second))
        return false;
    }
    Contents walked;
    SharedTable::WalkResult const result =
        reader.forEach([&](Row const& row) { walked.emplace(row.number(), row.version()); });
    return result.exact && result.corrupt == 0 && result.rows == contents.size() && walked == contents;
  }

  /// Applies what one operation stored; after every store the copy holds `before` or `after`, and never `before` again
  /// once it held `after`.
  void replay(Contents const& before, Contents const& after, U64 keys) {
    bool committed = before == after;
    for (Store const& store : recorder_.stores) {
      apply(store);
      ++prefixes_;
      bool const isOld = !committed && holds(reader_, before, keys);
      if (isOld) continue;
      ASSERT_TRUE(holds(reader_, after, keys)) << "after store " << prefixes_ << " at " << store.offset;
      committed = true;
      Reader fresh(mountPath, "copy", readerOptions());
      ASSERT_FALSE(fresh.attach());
      ASSERT_TRUE(holds(fresh, after, keys));
    }
    ASSERT_TRUE(committed);
    recorder_.stores.clear();
  }

  Recorder recorder_;  // outlives the writer, whose end is stores too
  Writer writer_;
  Reader reader_;
  SharedTable::Fd copy_;
  U64 prefixes_ = 0;
};

TEST_F(Replay, EveryPrefixOfTheStoresLeavesTheOldRowOrTheNewOne) {
  std::mt19937_64 random(11);
  Contents contents;
  constexpr U64 keys = 90;
  for (U64 version = 1; version < 1500; ++version) {
    Contents const before = contents;
    U64 const number = random() % keys;
    if (random() % 3 == 0) {
      writer_.rowDel(Key::of(number));
      contents.erase(number);
    } else if (writer_.rowIs(Row(number, version)) == WriteStatus::ok) {
      contents[number] = version;
    }
    ASSERT_NO_FATAL_FAILURE(replay(before, contents, keys)) << version;
  }
  EXPECT_GT(prefixes_, 10000u);
}

TEST_F(Replay, EveryPrefixOfAGrowingTableHoldsAllThatWasThere) {
  Contents contents;
  for (U64 number = 0; number < 64; ++number) {
    Contents const before = contents;
    ASSERT_EQ(writer_.rowIs(Row(number, 1)), WriteStatus::ok);
    contents[number] = 1;
    ASSERT_NO_FATAL_FAILURE(replay(before, contents, 64)) << number;
  }
}

TEST_F(Replay, EveryPrefixOfACommitLeavesTheOldRowOrTheNewOne) {
  ASSERT_EQ(writer_.rowIs(Row(1, 1)), WriteStatus::ok);
  ASSERT_NO_FATAL_FAILURE(replay({}, {{1, 1}}, 3));
  Row* const row = writer_.writable(Key::of(1));
  row->versionIs(2);
  EXPECT_EQ(writer_.commit(*row), WriteStatus::ok);
  ASSERT_NO_FATAL_FAILURE(replay({{1, 1}}, {{1, 2}}, 3));
}

TEST_F(Replay, EveryPrefixOfARetirementLeavesTheRows) {
  ASSERT_EQ(writer_.rowIs(Row(1, 1)), WriteStatus::ok);
  ASSERT_NO_FATAL_FAILURE(replay({}, {{1, 1}}, 3));
  writer_.core().retire();
  EXPECT_FALSE(recorder_.stores.empty());
  ASSERT_NO_FATAL_FAILURE(replay({{1, 1}}, {{1, 1}}, 3));
}

}  // namespace

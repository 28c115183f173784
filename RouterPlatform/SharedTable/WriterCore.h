#pragma once

#include <RouterPlatform/Base/FunctionRef.h>
#include <RouterPlatform/SharedTable/Error.h>
#include <RouterPlatform/SharedTable/Format.h>
#include <RouterPlatform/SharedTable/Memory.h>
#include <RouterPlatform/SharedTable/RowType.h>
#include <RouterPlatform/SharedTable/View.h>

#include <vector>

namespace SharedTable {

/// Sees every store into a table's octets that readers may meet, in order. For tests: a writer that is killed leaves a
/// prefix of these behind.
class StoreLog {
 public:
  virtual ~StoreLog() = default;
  virtual void stored(U64 offset, U64 value, U32 size) = 0;
};

/// The table of one writer in one memory, private or a file's: everything that changes octets. One thread.
///
/// It keeps the data that it must be able to trust (sizes, counts, free slots) in the process, and checks all that it
/// reads back from the memory.
class WriterCore {
 public:
  /// No table: to be moved to.
  WriterCore() = default;
  WriterCore(RowType const& type, Capacity capacity) noexcept;
  WriterCore(WriterCore&&) = default;
  WriterCore& operator=(WriterCore&&) = default;

  /// Octets that the memory has to map.
  U64 memorySize() const noexcept { return geometry_.fileSize; }

  /// Starts an empty table for `rows` rows in memory that is all zero. 0 or an errno value.
  int start(Memory memory, U32 rows);
  /// Writes the header that never changes; the last thing before the file gets its name.
  void completeHeader() noexcept;

  /// Creates or replaces the row whose key stands at its start. No reference to `row` is kept.
  WriteStatus write(void const* row, Corruption& corruption);
  enum class RemoveStatus : U8 { removed, absent, corrupt };
  /// Removes the row of `key` and copies it to `removed`.
  RemoveStatus remove(void const* key, void* removed, Corruption& corruption);
  /// Copies the row of `key` to `row` and remembers where it stands, for the next `commit`.
  LookupStatus stage(void const* key, void* row, Corruption& corruption);
  /// `write` without a lookup when the row of that key was staged last and has not been changed since.
  WriteStatus commit(void const* row, Corruption& corruption);

  /// A damaged place.
  struct Damage {
    Corruption corruption;
    U64 bucket = 0;        ///< where it was met, unless it is the index as a whole
    std::vector<U64> row;  ///< what was read there if its key still has the hash that it had, otherwise empty

    /// Of the row, or null.
    void const* key() const noexcept { return row.empty() ? nullptr : row.data(); }
  };
  using Damages = std::vector<Damage>;

  /// Copies all rows of `other` in and leaves out what is damaged there, of which it tells. `corruption` is what is
  /// damaged here, if that is the result.
  WriteStatus copyFrom(WriterCore& other, Damages& damages, Corruption& corruption);

  /// Looks at all there is.
  Damages damages() {
    return findDamage([](BucketWord) { return true; });
  }

  /// Tells readers that the writer has left this file.
  void retire() noexcept;

  View const& view() const noexcept { return view_; }
  Memory const& memory() const noexcept { return memory_; }
  U32 count() const noexcept { return rows_; }
  U32 maxRows() const noexcept { return geometry_.maxRows; }
  U64 changeCount() const noexcept { return changes_; }
  void storeLogIs(StoreLog* log) noexcept { log_ = log; }

 private:
  enum class Find : U8 { found, missing, corrupt };
  /// Where a key is, or would be put.
  struct Position {
    Find outcome;
    U64 bucket;
    BucketWord word;
  };

  LiveState& live() noexcept { return *reinterpret_cast<LiveState*>(memory_.base() + liveStateOffset); }
  std::atomic<U64>& bucket(U32 half, U64 number) noexcept {
    return *reinterpret_cast<std::atomic<U64>*>(memory_.base() + geometry_.bucketOffset(half, number));
  }
  std::atomic<U64>* slot(U32 number) noexcept {
    return reinterpret_cast<std::atomic<U64>*>(memory_.base() + geometry_.slotOffset(number));
  }
  U64 buckets() const noexcept { return U64{1} << indexBits_; }
  U32 half() const noexcept { return static_cast<U32>(epoch_ & 1); }
  BucketWord wordOf(U64 number) noexcept {
    return {bucket(half(), number).load(std::memory_order_relaxed)};  // relaxed: the writer's own store, no partner
  }

  bool isDamaged(BucketWord word) const noexcept {
    return !word.isIntact() || (word.slot() > slotsTaken_ && !word.tombstone());
  }

  /// The index as a whole does not hold what it should.
  Corruption indexDamage() const noexcept { return {Corruption::Place::index, 0, geometry_.indexOffset[half()]}; }

  template <class Word, class Value>
  void put(std::atomic<Word>& word, Value value, std::memory_order order) noexcept;
  void fillSpare(void const* row) noexcept;
  void publish(U64 number, BucketWord word) noexcept;
  void announce() noexcept;

  U64 placeOf(void const* key) const noexcept { return header_.hashSecret.place(type_->keyHash(key)); }
  Position find(void const* key, U64 hash, Corruption& corruption);
  bool readBack(BucketWord word, Corruption& corruption);
  Damages findDamage(Fwk::FunctionRef<bool(BucketWord)> whole);
  void replace(Position const& position, void const* row, U64 hash) noexcept;
  WriteStatus insert(void const* row, U64 hash, Position position, Corruption& corruption);
  void emptyBucket(U64 number) noexcept;
  WriteStatus makeRoom(bool& rebuilt, Corruption& corruption);
  void sweep() noexcept;
  WriteStatus rebuild(U32 indexBits, Corruption& corruption);
  int reserveSlot();
  void joinSlotPages(U64 step) noexcept;
  U32 takeSlot() noexcept;

  RowType const* type_ = nullptr;
  Geometry geometry_;
  Memory memory_;
  FixedHeader header_{};
  View view_;
  StoreLog* log_ = nullptr;

  U64 epoch_ = 0;
  U32 indexBits_ = 0;
  std::array<U64, 2> usedBuckets_{};  ///< of each half: how many an index has ever used
  U32 rows_ = 0;
  U32 tombstones_ = 0;
  U64 changes_ = 0;
  U64 lastWake_ = 0;  ///< the coarse time of the last wake

  U32 spare_ = 0;  ///< the slot that the next change fills
  std::vector<U32> freeSlots_;
  U32 slotsTaken_ = 0;  ///< slots from 1 to here have been in use
  U32 slotsReady_ = 0;  ///< slots from 1 to here have space
  U64 slotSpace_ = 0;   ///< the octets of it
  std::vector<U32>
      slotHash_;  ///< high half of the hash of the row in each slot, so that an index is rebuilt without rows

  std::vector<U64> scratch_;  ///< a row read back
  std::vector<U64> stagedKey_;
  Position staged_{Find::missing, 0, {}};
  U64 stagedHash_ = 0;
  U64 stagedEpoch_ = 0;
};

}  // namespace SharedTable

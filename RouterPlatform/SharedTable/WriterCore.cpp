#include <RouterPlatform/SharedTable/FileIo.h>
#include <RouterPlatform/SharedTable/SlotWords.h>
#include <RouterPlatform/SharedTable/WriterCore.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace SharedTable {
namespace {

FixedHeader makeHeader(RowType const& type, Geometry const& geometry) noexcept {
  FixedHeader header{};
  header.magic = magicText;
  header.byteOrder = byteOrderMark;
  header.version = formatVersion;
  header.layoutHash = type.layoutHash;
  header.rowSize = geometry.rowSize;
  header.keySize = geometry.keySize;
  header.maxRows = geometry.maxRows;
  header.minIndexBits = geometry.minIndexBits;
  header.maxIndexBits = geometry.maxIndexBits;
  header.indexOffset = geometry.indexOffset;
  header.slotsOffset = geometry.slotsOffset;
  header.fileSize = geometry.fileSize;
  FileIo::fillRandom(&header.hashSecret, sizeof header.hashSecret);
  FileIo::fillRandom(header.instanceId.data(), header.instanceId.size());
  header.bootId = FileIo::bootId();
  header.writerPid = static_cast<U32>(getpid());
  header.writerStartTime = FileIo::processStartTime();
  header.createdTime = FileIo::realtime();
  return header;
}

WriteStatus statusOf(int systemError) noexcept { return systemError == 0 ? WriteStatus::ok : WriteStatus::noSpace; }

}  // namespace

WriterCore::WriterCore(RowType const& type, Capacity capacity) noexcept : type_(&type) {
  U32 const maxRows = std::clamp(capacity.maxRows, U32{1}, Capacity::largestMaxRows);
  U32 const firstRows = std::min(capacity.initialRows, maxRows);
  geometry_ = Geometry::of(type.rowSize, type.keySize, maxRows, Geometry::indexBitsFor(firstRows));
}

int WriterCore::start(Memory memory, U32 rows) {
  memory_ = std::move(memory);
  header_ = makeHeader(*type_, geometry_);
  scratch_.resize(geometry_.rowSize / 8);
  stagedKey_.resize((geometry_.keySize + 7) / 8);
  indexBits_ = std::max(geometry_.minIndexBits, Geometry::indexBitsFor(std::min(rows, geometry_.maxRows)));
  usedBuckets_ = {buckets(), 0};
  if (int const error = memory_.reserve(0, headerSize)) return error;
  if (int const error = memory_.reserve(geometry_.bucketOffset(0, 0), 8 * buckets())) return error;
  memory_.joinPages(geometry_.bucketOffset(0, 0), geometry_.bucketOffset(0, buckets()));
  // Relaxed: nobody has the memory yet. A file's readers come after its name, a view of private memory is this
  // thread's.
  put(live().rowCount, CheckedNumber::of(0).bits, std::memory_order_relaxed);
  if (int const error = reserveSlot()) return error;
  spare_ = takeSlot();
  // Release; pairs with the acquire loads of `active` in View.
  put(live().active, ActiveWord::of(epoch_, indexBits_).bits, std::memory_order_release);
  view_ = View(memory_.base(), header_, *type_);
  return 0;
}

void WriterCore::completeHeader() noexcept {
  header_.crc = crc32(&header_, offsetof(FixedHeader, crc));
  std::memcpy(memory_.base(), &header_, sizeof header_);
}

template <class Word, class Value>
void WriterCore::put(std::atomic<Word>& word, Value value, std::memory_order order) noexcept {
  word.store(value, order);
  if (log_) [[unlikely]]
    log_->stored(static_cast<U64>(reinterpret_cast<std::byte*>(&word) - memory_.base()), value, sizeof(Word));
}

/// The fence pairs with the one after a reader's copy: a reader that meets a word stored here sees that the bucket
/// which named this slot before has moved on.
void WriterCore::fillSpare(void const* row) noexcept {
  std::size_t const words = geometry_.rowSize / 8;
  SlotWords::fenceBeforeFill();
  SlotWords::fill(slot(spare_), row, words, RowCheck(checkSeedOf(header_), spare_));
  if (log_) [[unlikely]]
    for (std::size_t i = 0; i <= words; ++i)  // relaxed: the writer's own store, no partner
      log_->stored(geometry_.slotOffset(spare_) + 8 * i, slot(spare_)[i].load(std::memory_order_relaxed), 8);
}

/// Commits a change. The release store pairs with the acquire load of the bucket in View::probe and View::walkClusters:
/// whoever sees the word sees the row.
void WriterCore::publish(U64 number, BucketWord word) noexcept {
  put(bucket(half(), number), word.bits, std::memory_order_release);
}

/// Counts a change and wakes the readers that wait for one. The release stores pair with the acquire loads of
/// View::count, View::changeCount and ReaderBase::wait. A change counts only after it was committed, so a walk that
/// finds the same count before and after met at most one change that is not counted yet, and that is one row in one
/// moment.
void WriterCore::announce() noexcept {
  changes_ += 1;
  put(live().rowCount, CheckedNumber::of(rows_).bits, std::memory_order_release);
  if (!memory_.isFile()) {
    put(live().changeCount, changes_, std::memory_order_release);
    return;
  }
  U64 const now = FileIo::coarseRealtime();
  put(live().changeTime, now, std::memory_order_relaxed);  // without a partner: a number by itself
  put(live().changeCount, changes_, std::memory_order_release);
  put(live().changeWord, static_cast<U32>(changes_), std::memory_order_release);
  // A wake is a system call whose time grows with the number of waiters, so there is one per clock tick at most. A
  // reader that begins to wait after the wake of a tick looks again after its first sleep, which is longer than a tick
  // (ReaderBase::wait).
  if (now == lastWake_) return;
  lastWake_ = now;
  FileIo::wakeAll(live().changeWord);
}

WriterCore::Position WriterCore::find(void const* key, U64 hash, Corruption& corruption) {
  U64 const mask = buckets() - 1;
  U8 const tag = tagOf(hash);
  Position reusable{Find::missing, 0, {}};
  bool haveReusable = false;
  U64 number = homeBucket(hash, indexBits_);
  for (U64 seen = 0; seen <= mask; ++seen, number = (number + 1) & mask) {
    BucketWord const word = wordOf(number);
    if (isDamaged(word)) {
      corruption = {Corruption::Place::bucket, number, geometry_.bucketOffset(half(), number)};
      return {Find::corrupt, number, word};
    }
    if (word.empty()) return haveReusable ? reusable : Position{Find::missing, number, word};
    if (word.tombstone()) {
      if (!haveReusable) reusable = {Find::missing, number, word};
      haveReusable = true;
      continue;
    }
    if (word.tag() != tag) continue;
    // Nobody else writes, so the octets may be compared where they are.
    if (type_->keysEqual(slot(word.slot()), key)) return {Find::found, number, word};
    // Another key of the same tag, or this one damaged.
    if (!readBack(word, corruption)) return {Find::corrupt, number, word};
  }
  corruption = indexDamage();
  return {Find::corrupt, 0, {}};
}

/// Copies a row to `scratch_`; whether its check word holds.
bool WriterCore::readBack(BucketWord word, Corruption& corruption) {
  RowCheck const check(checkSeedOf(header_), word.slot());
  if (SlotWords::copy(slot(word.slot()), scratch_.data(), scratch_.size(), check)) return true;
  corruption = {Corruption::Place::slot, word.slot(), geometry_.slotOffset(word.slot())};
  return false;
}

/// Of a row that is replaced, only the key is looked at.
WriteStatus WriterCore::write(void const* row, Corruption& corruption) {
  U64 const hash = placeOf(row);
  Position const position = find(row, hash, corruption);
  if (position.outcome == Find::corrupt) return WriteStatus::corrupt;
  if (position.outcome == Find::missing) return insert(row, hash, position, corruption);
  replace(position, row, hash);
  return WriteStatus::ok;
}

void WriterCore::replace(Position const& position, void const* row, U64 hash) noexcept {
  fillSpare(row);
  publish(position.bucket, position.word.next(spare_, position.word.tag()));
  slotHash_[spare_] = static_cast<U32>(hash >> 32);
  spare_ = position.word.slot();
  announce();
}

WriteStatus WriterCore::insert(void const* row, U64 hash, Position position, Corruption& corruption) {
  bool rebuilt = false;
  if (WriteStatus const status = makeRoom(rebuilt, corruption); status != WriteStatus::ok) return status;
  if (rebuilt) position = find(row, hash, corruption);
  if (position.outcome != Find::missing) return WriteStatus::corrupt;
  fillSpare(row);
  slotHash_[spare_] = static_cast<U32>(hash >> 32);
  publish(position.bucket, position.word.next(spare_, tagOf(hash)));
  if (position.word.tombstone()) tombstones_ -= 1;
  rows_ += 1;
  spare_ = takeSlot();
  announce();
  return WriteStatus::ok;
}

WriterCore::RemoveStatus WriterCore::remove(void const* key, void* removed, Corruption& corruption) {
  Position const position = find(key, placeOf(key), corruption);
  if (position.outcome == Find::corrupt) return RemoveStatus::corrupt;
  if (position.outcome == Find::missing) return RemoveStatus::absent;
  if (!readBack(position.word, corruption)) return RemoveStatus::corrupt;
  std::memcpy(removed, scratch_.data(), geometry_.rowSize);
  rows_ -= 1;
  emptyBucket(position.bucket);
  freeSlots_.push_back(position.word.slot());
  announce();
  return RemoveStatus::removed;
}

/// Takes the row out of a bucket. What stands behind it may have been probed past it, so a tombstone stays - unless the
/// next bucket is empty: then nothing stands behind, and the tombstones right before it have become idle too.
void WriterCore::emptyBucket(U64 number) noexcept {
  U64 const mask = buckets() - 1;
  BucketWord const behind = wordOf((number + 1) & mask);
  if (!behind.empty() || isDamaged(behind)) {
    publish(number, wordOf(number).next(BucketWord::tombstoneSlot, 0));
    tombstones_ += 1;
    return;
  }
  publish(number, wordOf(number).next(0, 0));
  for (number = (number - 1) & mask; wordOf(number).tombstone(); number = (number - 1) & mask) {
    publish(number, wordOf(number).next(0, 0));
    tombstones_ -= 1;
  }
}

LookupStatus WriterCore::stage(void const* key, void* row, Corruption& corruption) {
  stagedHash_ = placeOf(key);
  staged_ = find(key, stagedHash_, corruption);
  if (staged_.outcome == Find::corrupt) return LookupStatus::corrupt;
  if (staged_.outcome == Find::missing) return LookupStatus::missing;
  if (!readBack(staged_.word, corruption)) {
    staged_.outcome = Find::missing;  // what was staged before must not be taken for this
    return LookupStatus::corrupt;
  }
  std::memcpy(row, scratch_.data(), geometry_.rowSize);
  std::memcpy(stagedKey_.data(), key, geometry_.keySize);
  stagedEpoch_ = epoch_;
  return LookupStatus::found;
}

WriteStatus WriterCore::commit(void const* row, Corruption& corruption) {
  bool const stands = staged_.outcome == Find::found && stagedEpoch_ == epoch_ &&
                      wordOf(staged_.bucket).bits == staged_.word.bits && type_->keysEqual(row, stagedKey_.data());
  if (!stands) return write(row, corruption);
  replace(staged_, row, stagedHash_);
  staged_.word = wordOf(staged_.bucket);
  return WriteStatus::ok;
}

/// Before a row is added: an index that is not too full, and a slot to follow the spare one.
WriteStatus WriterCore::makeRoom(bool& rebuilt, Corruption& corruption) {
  if (rows_ >= geometry_.maxRows) return WriteStatus::full;
  if (int const error = reserveSlot()) return statusOf(error);
  U64 const filled = U64{rows_} + tombstones_ + 1;
  bool const grow = U64{rows_} + 1 > buckets() / 2;
  // Without this, removals in the middle of long runs would leave tombstones until probing found no end. Three quarters
  // full, an unsuccessful probe of linear probing looks at about eight buckets; fifteen sixteenths full, at over 100.
  bool const clean = filled > buckets() / 4 * 3;
  if (!grow && !clean) return WriteStatus::ok;
  WriteStatus const status = rebuild(grow ? indexBits_ + 1 : indexBits_, corruption);
  rebuilt = true;
  if (status != WriteStatus::noSpace || grow) return status;
  // There is no space for a second index: this one is cleaned as well as it can be, which has to leave a bucket empty.
  if (filled > buckets() - buckets() / 16) sweep();
  return U64{rows_} + tombstones_ + 1 < buckets() ? WriteStatus::ok : status;
}

/// Empties the tombstones that none of the rows behind them was probed past. From the last to the first, so that it is
/// known where those rows began. Counted as a change of its own: a reader who looks for an empty bucket relies on one
/// change leaving one of them empty throughout.
void WriterCore::sweep() noexcept {
  constexpr U64 none = ~U64{0};
  U64 const mask = buckets() - 1;
  U64 end = 0;
  while (end <= mask && !wordOf(end).empty()) ++end;
  U64 firstHome = none;  // of the rows between here and the next empty bucket; counted on past the end
  for (U64 position = end + mask; position > end; --position) {
    U64 const number = position & mask;
    BucketWord const word = wordOf(number);
    if (isDamaged(word)) {
      firstHome = 0;  // anything may have been probed past the ones before
    } else if (word.empty()) {
      firstHome = none;
    } else if (!word.tombstone()) {
      U64 const home = slotHash_[word.slot()] >> (32 - indexBits_);
      firstHome = std::min(firstHome, position - ((number - home) & mask));
    } else if (firstHome > position) {
      publish(number, word.next(0, 0));
      tombstones_ -= 1;
      firstHome = none;
    }
  }
  announce();
}

/// Fills the other half with an index of the same rows and brings it into force with one store. Readers go on in the
/// old one, whose words stay until the next rebuild. The release store of `active` pairs with the acquire loads of it
/// in View; each word is released too, so that a reader who is two indexes late and meets one sees that `active` moved.
WriteStatus WriterCore::rebuild(U32 indexBits, Corruption& corruption) {
  U32 const other = 1 - half();
  U64 const mask = (U64{1} << indexBits) - 1;
  if (int const error = memory_.reserve(geometry_.bucketOffset(other, 0), 8 * (mask + 1))) return statusOf(error);
  memory_.joinPages(geometry_.bucketOffset(other, 0), geometry_.bucketOffset(other, mask + 1));
  // Relaxed load: the writer's own store, no partner.
  for (U64 i = 0; i < usedBuckets_[other]; ++i)
    if (bucket(other, i).load(std::memory_order_relaxed) != 0) put(bucket(other, i), U64{0}, std::memory_order_release);
  usedBuckets_[other] = mask + 1;
  U32 placed = 0;
  for (U64 i = 0; i < buckets(); ++i) {
    BucketWord const word = wordOf(i);
    if (isDamaged(word)) {
      corruption = {Corruption::Place::bucket, i, geometry_.bucketOffset(half(), i)};
      return WriteStatus::corrupt;
    }
    if (word.empty() || word.tombstone()) continue;
    if (++placed > rows_) break;
    U64 number = slotHash_[word.slot()] >> (32 - indexBits);
    // Relaxed: the writer's own stores, no partner.
    while (bucket(other, number).load(std::memory_order_relaxed) != 0) number = (number + 1) & mask;
    put(bucket(other, number), word.bits, std::memory_order_release);
  }
  if (placed != rows_) {
    corruption = indexDamage();
    return WriteStatus::corrupt;
  }
  indexBits_ = indexBits;
  epoch_ += 1;
  tombstones_ = 0;
  put(live().active, ActiveWord::of(epoch_, indexBits_).bits, std::memory_order_release);
  return WriteStatus::ok;
}

/// Makes sure that `takeSlot` has one to give. Space comes in growing steps, up to a huge page, for one slot at a time
/// when it is short.
int WriterCore::reserveSlot() {
  if (!freeSlots_.empty() || slotsTaken_ < slotsReady_) return 0;
  U64 const least = Geometry::pageCeil(geometry_.slotSize());
  U64 const most = geometry_.fileSize - geometry_.slotsOffset - slotSpace_;
  U64 step = std::min(std::max(Geometry::pageCeil(std::min(slotSpace_ / 2, hugePageSize)), least), most);
  int error = memory_.reserve(geometry_.slotsOffset + slotSpace_, step);
  if (error != 0 && step > least) error = memory_.reserve(geometry_.slotsOffset + slotSpace_, step = least);
  if (error != 0) return error;
  U64 const ready = std::min((slotSpace_ + step) / geometry_.slotSize(), geometry_.slotCount());
  slotHash_.resize(ready + 1);
  freeSlots_.reserve(ready);
  slotSpace_ += step;
  joinSlotPages(step);
  slotsReady_ = static_cast<U32>(ready);
  // Relaxed: a reader learns of it through the release store of the first bucket that names such a slot.
  put(live().slotsReady, CheckedNumber::of(slotsReady_).bits, std::memory_order_relaxed);
  return 0;
}

/// After `step` octets of space were added: the huge pages that are whole only now.
void WriterCore::joinSlotPages(U64 step) noexcept {
  U64 const end = geometry_.slotsOffset + slotSpace_;
  U64 const begin = (end - step) / hugePageSize * hugePageSize;
  memory_.joinPages(std::max(begin, geometry_.slotsOffset), end);
}

U32 WriterCore::takeSlot() noexcept {
  if (freeSlots_.empty()) return ++slotsTaken_;
  U32 const number = freeSlots_.back();
  freeSlots_.pop_back();
  return number;
}

/// Calls `whole(bucket)` for every row that can be trusted, with the row in `scratch_`; false ends it. Tells of the
/// rest, and of the index when that holds fewer or more rows than were put in.
WriterCore::Damages WriterCore::findDamage(Fwk::FunctionRef<bool(BucketWord)> whole) {
  Damages damages;
  U32 met = 0;
  U32 unknown = 0;  // damaged buckets, which may have been of rows
  for (U64 number = 0; number < buckets(); ++number) {
    BucketWord const word = wordOf(number);
    Damage damage{{Corruption::Place::bucket, number, geometry_.bucketOffset(half(), number)}, number, {}};
    if (isDamaged(word)) {
      unknown += 1;
    } else if (word.empty() || word.tombstone()) {
      continue;
    } else {
      met += 1;
      if (readBack(word, damage.corruption)) {
        if (!whole(word)) return damages;
        continue;
      }
      bool const keyHolds = placeOf(scratch_.data()) >> 32 == slotHash_[word.slot()];
      if (keyHolds) damage.row = scratch_;
    }
    damages.push_back(std::move(damage));
  }
  // Octets that became zeroes, as whole pages do, look like buckets that nothing was ever put in.
  if (met + unknown < rows_ || met > rows_) damages.push_back({indexDamage(), 0, {}});
  return damages;
}

WriteStatus WriterCore::copyFrom(WriterCore& other, Damages& damages, Corruption& corruption) {
  WriteStatus status = WriteStatus::ok;
  damages = other.findDamage([&](BucketWord) {
    status = write(other.scratch_.data(), corruption);
    return status == WriteStatus::ok;
  });
  return status;
}

void WriterCore::retire() noexcept {
  put(live().retiredTime, FileIo::realtime(), std::memory_order_relaxed);  // shown by `retired`
  // Release; pairs with the acquire load in View::isRetired.
  put(live().retired, retiredMark, std::memory_order_release);
  // Release; pairs with the acquire load in ReaderBase::wait: whoever sees the word sees the mark.
  put(live().changeWord, static_cast<U32>(changes_) + 1, std::memory_order_release);
  FileIo::wakeAll(live().changeWord);
}

}  // namespace SharedTable

#include <RouterPlatform/SharedTable/SlotWords.h>
#include <RouterPlatform/SharedTable/View.h>

#include <sched.h>

#include <algorithm>
#include <vector>

namespace SharedTable {
namespace {

/// A copy is spoilt only by a change of the very row it copies, so this many in a row mean something is wrong with us.
constexpr U32 maxAttempts = 10000;
/// Damage stays; what looks like damage once is looked at again.
constexpr U32 damageConfirmations = 3;
/// Each needs an index to be rebuilt meanwhile.
constexpr U32 maxRestarts = 1000;

/// Gives the processor away now and then: a change takes less than 64 pauses, unless its writer was stopped in it.
void pauseBeforeRetry(U32 attempt) noexcept {
  if (attempt % 64 == 63)
    sched_yield();
  else
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#else
    std::atomic_signal_fence(std::memory_order_seq_cst);
#endif
}

}  // namespace

/// State of a walk. Rows are gathered between two empty buckets and handed out together at the second: no key that
/// starts its probing before an empty bucket can stand behind it, so what comes next is known by one number, `from`,
/// and that number holds in an index of any size.
struct View::Walk {
  ActiveWord active;
  U32 indexBits = 0;
  U64 from = 0;  ///< keys whose home bucket is before this one have been handed out
  U64 changesBefore = 0;
  std::vector<U64> row;
  std::vector<U64> rows;  ///< since the last empty bucket
  WalkResult pending;     ///< likewise: what was left out
  WalkResult result;

  void dropPending() {
    rows.clear();
    pending = {};
  }
  void damaged(Corruption const& corruption) {
    if (pending.corrupt++ == 0) pending.firstCorruption = corruption;
  }
};

View::View(std::byte const* base, FixedHeader const& header, RowType const& type) noexcept
    : base_(base),
      geometry_(Geometry::of(header.rowSize, header.keySize, header.maxRows, header.minIndexBits)),
      type_(&type),
      hashSecret_(header.hashSecret),
      checkSeed_(checkSeedOf(header)) {}

bool View::activeIsSound(ActiveWord active) const noexcept {
  return intact(active.bits) && active.indexBits() >= geometry_.minIndexBits &&
         active.indexBits() <= geometry_.maxIndexBits;
}

/// The fence or the acquire load before the call keeps both loads behind what they confirm. The bucket: acquire; pairs
/// with the release stores of WriterCore::rebuild, so that whoever meets a word of an index that is being made anew in
/// this half sees that `active` moved. `active` is the last load, and relaxed: only its value counts.
bool View::unchanged(ActiveWord active, U64 number, BucketWord word) const noexcept {
  return bucket(active.half(), number).load(std::memory_order_acquire) == word.bits &&
         live().active.load(std::memory_order_relaxed) == active.bits;
}

/// The acquire load that gave `word` pairs with the release store in WriterCore::publish: seeing the word means seeing
/// the row. The bucket is looked at again because the slot may be refilled while it is copied; the fence keeps the copy
/// before that look, and pairs with the one before every refill.
View::Probe View::copyRow(ActiveWord active, U64 number, BucketWord word, void* row,
                          Corruption& corruption) const noexcept {
  // Relaxed: the number was stored before the word that names such a slot, whose acquire load shows it.
  CheckedNumber const ready{live().slotsReady.load(std::memory_order_relaxed)};
  U32 const slotNumber = word.slot();
  if (!ready.isIntact() || slotNumber > ready.value() || ready.value() > geometry_.slotCount()) {
    if (!unchanged(active, number, word)) return Probe::moved;
    bool const bucketIsWrong = ready.isIntact() && slotNumber > ready.value();
    corruption = bucketIsWrong
                     ? Corruption{Corruption::Place::bucket, number, geometry_.bucketOffset(active.half(), number)}
                     : Corruption{Corruption::Place::header, 0, liveStateOffset + offsetof(LiveState, slotsReady)};
    return Probe::corrupt;
  }
  bool const whole = SlotWords::copy(slot(slotNumber), row, geometry_.rowSize / 8, RowCheck(checkSeed_, slotNumber));
  SlotWords::fenceAfterCopy();
  if (!unchanged(active, number, word)) return Probe::moved;
  if (whole && (!type_->isSound || type_->isSound(row))) return Probe::found;
  corruption = {Corruption::Place::slot, slotNumber, geometry_.slotOffset(slotNumber)};
  return Probe::corrupt;
}

View::Probe View::probe(ActiveWord active, void const* key, U64 hash, void* row,
                        Corruption& corruption) const noexcept {
  U64 const mask = (U64{1} << active.indexBits()) - 1;
  U8 const tag = tagOf(hash);
  U64 number = homeBucket(hash, active.indexBits());
  for (U64 seen = 0; seen <= mask; ++seen, number = (number + 1) & mask) {
    // Acquire; pairs with the release store in WriterCore::publish.
    BucketWord const word{bucket(active.half(), number).load(std::memory_order_acquire)};
    if (!word.isIntact()) {
      corruption = {Corruption::Place::bucket, number, geometry_.bucketOffset(active.half(), number)};
      return Probe::corrupt;
    }
    if (word.empty())
      // A word of an index that is being made anew was stored after its `active`, and the acquire load above shows it.
      return live().active.load(std::memory_order_relaxed) == active.bits ? Probe::missing : Probe::moved;
    if (word.tag() != tag || word.tombstone()) continue;
    Probe const copied = copyRow(active, number, word, row, corruption);
    if (copied != Probe::found || type_->keysEqual(row, key)) return copied;
  }
  if (!isEndless(active)) return Probe::moved;
  corruption = {Corruption::Place::index, 0, geometry_.indexOffset[active.half()]};
  return Probe::corrupt;
}

/// Whether no bucket is empty, where probing would end. The empty buckets change while rows come and go, and a slow
/// look at one after another may meet none of them; so it counts only if hardly anything changed meanwhile. Between two
/// equal counts there is at most one change that is not counted yet, and one change leaves a bucket empty throughout.
bool View::isEndless(ActiveWord active) const noexcept {
  U64 const changes = changeCount();
  for (U64 number = 0; number < U64{1} << active.indexBits(); ++number)
    // Acquire; pairs with the release store in WriterCore::publish, and keeps the looks at the count and at `active`
    // behind it.
    if (BucketWord{bucket(active.half(), number).load(std::memory_order_acquire)}.empty()) return false;
  // Relaxed: behind the acquire loads above.
  return changeCount() == changes && live().active.load(std::memory_order_relaxed) == active.bits;
}

LookupStatus View::lookup(void const* key, void* row, Corruption& corruption) const noexcept {
  if (!base_) return LookupStatus::notAttached;
  U64 const hash = placeOf(key);
  U32 damageSeen = 0;
  for (U32 attempt = 0; attempt < maxAttempts; ++attempt) {
    if (attempt > 0) pauseBeforeRetry(attempt);
    // Acquire; pairs with the release store in WriterCore::rebuild: seeing an index in force means seeing its words.
    ActiveWord const active{live().active.load(std::memory_order_acquire)};
    Probe outcome = Probe::corrupt;
    if (activeIsSound(active))
      outcome = probe(active, key, hash, row, corruption);
    else
      corruption = {Corruption::Place::header, 0, liveStateOffset + offsetof(LiveState, active)};
    if (outcome == Probe::found) return LookupStatus::found;
    if (outcome == Probe::missing) return LookupStatus::missing;
    if (outcome == Probe::corrupt && ++damageSeen == damageConfirmations) return LookupStatus::corrupt;
  }
  return LookupStatus::busy;
}

std::optional<U32> View::count() const noexcept {
  // Acquire; pairs with the release store in WriterCore::announce: whoever sees a number of rows sees every change
  // counted that came before the change that made it so many.
  CheckedNumber const rows{live().rowCount.load(std::memory_order_acquire)};
  if (!rows.isIntact() || rows.value() > geometry_.maxRows) return std::nullopt;
  return rows.value();
}

WalkResult View::walk(Visitor const& visit) const {
  Walk walk;
  walk.result.attached = base_ != nullptr;
  if (!base_) return walk.result;
  walk.changesBefore = changeCount();
  walk.row.resize(geometry_.rowSize / 8);
  walk.indexBits = geometry_.minIndexBits;
  for (U32 restart = 0;; ++restart) {
    // Acquire; pairs with the release store in WriterCore::rebuild.
    walk.active = {live().active.load(std::memory_order_acquire)};
    if (!activeIsSound(walk.active) || walk.active.indexBits() < walk.indexBits) {
      walk.result.corrupt += 1;
      walk.result.firstCorruption = {Corruption::Place::header, 0, liveStateOffset + offsetof(LiveState, active)};
      break;
    }
    walk.from <<= walk.active.indexBits() - walk.indexBits;
    walk.indexBits = walk.active.indexBits();
    walk.dropPending();
    if (walkClusters(walk, visit)) break;
    if (restart == maxRestarts) {
      walk.result.busy += 1;
      break;
    }
  }
  std::optional<U32> const counted = count();  // before the count of changes, so that it is of this moment if that is
  walk.result.exact =
      !walk.result.stopped && walk.result.corrupt == 0 && walk.result.busy == 0 && changeCount() == walk.changesBefore;
  if (walk.result.exact) checkCount(walk, counted);
  return walk.result;
}

/// Compares the rows of one moment with their number, which one change at most may not be in yet. Octets that became
/// zeroes, as whole pages do, look like buckets that nothing was ever put in.
void View::checkCount(Walk& walk, std::optional<U32> counted) const noexcept {
  if (counted && walk.result.rows <= U64{*counted} + 1 && *counted <= walk.result.rows + 1) return;
  walk.result.exact = false;
  walk.result.corrupt = 1;
  walk.result.firstCorruption =
      counted ? Corruption{Corruption::Place::index, 0, geometry_.indexOffset[walk.active.half()]}
              : Corruption{Corruption::Place::header, 0, liveStateOffset + offsetof(LiveState, rowCount)};
}

/// Walks on from `walk.from` under `walk.active`. False: another index came into force, or rows came and went so fast
/// that no end was met; the walk goes on from the new `from`.
bool View::walkClusters(Walk& walk, Visitor const& visit) const {
  U64 const buckets = U64{1} << walk.indexBits;
  // Probing wraps around at the end, so rows whose home is near the end may stand at the start: the walk goes on there
  // until it meets an empty bucket.
  for (U64 position = walk.from; position < 2 * buckets; ++position) {
    U64 const number = position & (buckets - 1);
    // Acquire; pairs with the release store in WriterCore::publish.
    BucketWord const word{bucket(walk.active.half(), number).load(std::memory_order_acquire)};
    if (!word.isIntact()) {
      if (position < buckets)
        walk.damaged({Corruption::Place::bucket, number, geometry_.bucketOffset(walk.active.half(), number)});
    } else if (word.empty()) {
      // Relaxed, as in `probe`.
      if (live().active.load(std::memory_order_relaxed) != walk.active.bits) return false;
      walk.result.stopped = !emit(walk, visit);
      walk.from = position + 1;
      if (walk.result.stopped || walk.from >= buckets) return true;
    } else if (!word.tombstone() && walkRow(walk, position, word) == Probe::moved) {
      return false;
    }
  }
  if (!isEndless(walk.active)) return false;
  walk.damaged({Corruption::Place::index, 0, geometry_.indexOffset[walk.active.half()]});
  walk.result.stopped = !emit(walk, visit);
  return true;
}

/// Adds the row of the bucket at `position` to those gathered, if its turn has come. `moved`: another index came into
/// force.
View::Probe View::walkRow(Walk& walk, U64 position, BucketWord word) const {
  U64 const buckets = U64{1} << walk.indexBits;
  U64 const number = position & (buckets - 1);
  Corruption corruption;
  U32 damageSeen = 0;
  for (U32 attempt = 0; attempt < maxAttempts; ++attempt) {
    if (attempt > 0) pauseBeforeRetry(attempt);
    Probe const copied = copyRow(walk.active, number, word, walk.row.data(), corruption);
    if (copied == Probe::found) {
      U64 const home = homeBucket(placeOf(walk.row.data()), walk.indexBits);
      // Where its probing started, counted on past the end like `position`; before `from` for what was there already.
      U64 const start = position - number + home;
      bool const wrapped = home > number;
      bool const due = wrapped ? position >= buckets && home >= walk.from : start >= walk.from && start < buckets;
      if (due) walk.rows.insert(walk.rows.end(), walk.row.begin(), walk.row.end());
      return Probe::found;
    }
    if (copied == Probe::corrupt && ++damageSeen == damageConfirmations) {
      if (position < buckets) walk.damaged(corruption);
      return Probe::corrupt;
    }
    // Acquire; pairs with the release store in WriterCore::rebuild.
    if (live().active.load(std::memory_order_acquire) != walk.active.bits) return Probe::moved;
    // Acquire; pairs with the release store in WriterCore::publish.
    word = {bucket(walk.active.half(), number).load(std::memory_order_acquire)};
    if (!word.isIntact() || word.empty() || word.tombstone()) return Probe::missing;
  }
  walk.pending.busy += 1;
  return Probe::missing;
}

/// The gathered rows that are out of date: a key that was removed and came back behind the place where it had been
/// met is there twice, and its later row counts. In the order of the rows.
std::vector<U64 const*> View::supersededRows(std::vector<U64> const& rows) const {
  std::vector<U64 const*> byKey;
  for (std::size_t at = 0; at < rows.size(); at += geometry_.rowSize / 8) byKey.push_back(rows.data() + at);
  std::stable_sort(byKey.begin(), byKey.end(), type_->keyLess);
  std::vector<U64 const*> superseded;
  for (std::size_t i = 1; i < byKey.size(); ++i)
    if (type_->keysEqual(byKey[i - 1], byKey[i])) superseded.push_back(byKey[i - 1]);
  std::sort(superseded.begin(), superseded.end());
  return superseded;
}

/// Hands out what was gathered.
bool View::emit(Walk& walk, Visitor const& visit) const {
  walk.result.busy += walk.pending.busy;
  walk.result.corrupt += walk.pending.corrupt;
  if (!walk.result.firstCorruption) walk.result.firstCorruption = walk.pending.firstCorruption;
  std::size_t const words = geometry_.rowSize / 8;
  bool const mayRepeat = walk.rows.size() > words && changeCount() != walk.changesBefore;
  std::vector<U64 const*> superseded;
  if (mayRepeat) superseded = supersededRows(walk.rows);
  auto next = superseded.begin();
  U64 const* const end = walk.rows.data() + walk.rows.size();
  for (U64 const* row = walk.rows.data(); row != end; row += words) {
    if (next != superseded.end() && *next == row) {
      ++next;
      continue;
    }
    walk.result.rows += 1;
    if (!visit(row)) return false;
  }
  walk.dropPending();
  return true;
}

}  // namespace SharedTable

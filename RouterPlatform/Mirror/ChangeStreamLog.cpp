#include <RouterPlatform/Mirror/ChangeStreamLog.h>

#include <RouterPlatform/Base/Hash.h>
#include <RouterPlatform/Mirror/ChangeStreamHub.h>

#include <algorithm>

namespace Fwk::ChangeStream::detail {

namespace {
/// Octets of capacity that a key may keep when its change is dropped.
constexpr std::size_t keptKeyRoom = 64;
}  // namespace

U32 ChangeLog::hash(What const& what) noexcept {
  U64 const seed = reinterpret_cast<std::uintptr_t>(what.node) ^ (U64{what.place} << 1 | U64{what.order}) << 48;
  return static_cast<U32>(hashBytes(what.key.data(), what.key.size(), HashAccumulator(seed).result()));
}

ChangeLog::What ChangeLog::whatOf(Change const& change) noexcept {
  return {static_cast<Node const*>(change.node.get()), change.place, change.order, change.key};
}

U32 ChangeLog::find(What const& what) const noexcept {
  if (buckets_.empty()) return none;
  U32 at = const_cast<ChangeLog*>(this)->bucketOf(what);
  while (at != none) {
    Change const& change = changes_[at];
    if (change.node.get() == what.node && change.place == what.place && change.order == what.order &&
        std::ranges::equal(change.key, what.key))
      break;
    at = change.nextInBucket;
  }
  return at;
}

void ChangeLog::append(U32 at) noexcept {
  changes_[at].previous = last_;
  changes_[at].next = none;
  (last_ == none ? first_ : changes_[last_].next) = at;
  last_ = at;
}

void ChangeLog::unlink(U32 at) noexcept {
  Change const& change = changes_[at];
  (change.previous == none ? first_ : changes_[change.previous].next) = change.next;
  (change.next == none ? last_ : changes_[change.next].previous) = change.previous;
}

void ChangeLog::touch(U32 at, U64 sequence) noexcept {
  unlink(at);
  append(at);
  changes_[at].sequence = sequence;
}

void ChangeLog::grow() {
  std::size_t const room = std::max<std::size_t>(64, buckets_.size() * 2);
  std::vector<U32> buckets(room, none);
  changes_.reserve(room);
  buckets_.swap(buckets);
  for (U32 at = first_; at != none; at = changes_[at].next) {
    U32& bucket = bucketOf(whatOf(changes_[at]));
    changes_[at].nextInBucket = bucket;
    bucket = at;
  }
}

U32 ChangeLog::takeFree() {
  if (free_ == none) {
    if (changes_.size() == buckets_.size()) grow();
    changes_.emplace_back();
    return static_cast<U32>(changes_.size() - 1);
  }
  U32 const at = free_;
  free_ = changes_[at].next;
  return at;
}

void ChangeLog::add(What const& what, U64 sequence) {
  U32 const at = takeFree();
  Change& change = changes_[at];
  try {
    change.key.assign(what.key.begin(), what.key.end());
  } catch (...) {
    change.next = free_;
    free_ = at;
    throw;
  }
  change.node = Ptr<Notifiee>(const_cast<Node*>(what.node));
  change.place = what.place;
  change.order = what.order;
  change.sequence = sequence;
  U32& bucket = bucketOf(what);
  change.nextInBucket = bucket;
  bucket = at;
  append(at);
  ++size_;
  octets_ += cost(change.key.size());
}

void ChangeLog::dropFirst() noexcept {
  U32 const at = first_;
  Change& change = changes_[at];
  U32* link = &bucketOf(whatOf(change));
  while (*link != at) link = &changes_[*link].nextInBucket;
  *link = change.nextInBucket;
  unlink(at);
  --size_;
  octets_ -= cost(change.key.size());
  change.node = nullptr;
  if (change.key.capacity() > keptKeyRoom)
    OctetBuffer().swap(change.key);
  else
    change.key.clear();
  change.next = free_;
  free_ = at;
}

/// Searches from the end, so the cost is the number of changes behind `sequence`.
U32 ChangeLog::firstBehind(U64 sequence) const noexcept {
  U32 found = none;
  for (U32 at = last_; at != none && changes_[at].sequence > sequence; at = changes_[at].previous) found = at;
  return found;
}

}  // namespace Fwk::ChangeStream::detail

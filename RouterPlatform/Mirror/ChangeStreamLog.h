#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Forms/StreamCodec.h>
#include <RouterPlatform/Fwk/Notifiee.h>

#include <vector>

namespace Fwk::ChangeStream::detail {

class Node;

/// Changes by place, in the order of the latest change of each. An entry says where to look, not the value: a place
/// that changes often is held once. Allocates only while it grows; bounded. docs/adr/0008
class ChangeLog {
 public:
  static constexpr U32 none = ~U32{0};

  /// A place that changed: a value, or with `order` the presence and position of a member.
  struct What {
    Node const* node;
    U16 place;
    bool order;
    Octets key;
  };
  struct Change {
    Ptr<Notifiee> node;  ///< null: free
    U16 place = 0;
    bool order = false;
    OctetBuffer key;
    U64 sequence = 0;
    U32 previous = none;  ///< in the log
    U32 next = none;      ///< in the log, or among the free ones
    U32 nextInBucket = none;
  };

  explicit ChangeLog(std::size_t maxOctets) noexcept : maxOctets_(maxOctets) {}

  /// The change of that place, or `none`.
  U32 find(What const& what) const noexcept;
  /// Moves a change behind all others.
  void touch(U32 at, U64 sequence) noexcept;
  /// Adds a change behind all others. Throws std::bad_alloc, having changed nothing.
  void add(What const& what, U64 sequence);
  /// Whether there is no room for one more.
  bool fullFor(Octets key) const noexcept { return octets_ + cost(key.size()) > maxOctets_; }
  /// Forgets the first change. The log must not be empty.
  void dropFirst() noexcept;

  bool empty() const noexcept { return first_ == none; }
  std::size_t size() const noexcept { return size_; }
  std::size_t octets() const noexcept { return octets_; }
  U32 first() const noexcept { return first_; }
  U64 lastSequence() const noexcept { return last_ == none ? 0 : changes_[last_].sequence; }
  Change const& operator[](U32 at) const noexcept { return changes_[at]; }
  /// The first change behind `sequence`, or `none`.
  U32 firstBehind(U64 sequence) const noexcept;

 private:
  static constexpr std::size_t cost(std::size_t keySize) noexcept {
    return sizeof(Change) + keySize + sizeof(U32) * 2;  // the buckets are at most twice as many
  }
  static U32 hash(What const& what) noexcept;
  U32& bucketOf(What const& what) noexcept { return buckets_[hash(what) & (buckets_.size() - 1)]; }
  static What whatOf(Change const& change) noexcept;
  void append(U32 at) noexcept;
  void unlink(U32 at) noexcept;
  U32 takeFree();
  void grow();

  std::vector<Change> changes_;
  std::vector<U32> buckets_;  ///< a power of two; at least as many as changes
  U32 first_ = none;
  U32 last_ = none;
  U32 free_ = none;
  std::size_t size_ = 0;
  std::size_t octets_ = 0;
  std::size_t maxOctets_;
};

}  // namespace Fwk::ChangeStream::detail

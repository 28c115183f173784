#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Hash.h>
#include <RouterPlatform/Export.h>

#include <memory>

namespace Fwk {

/// From hashes to positions: the index of an `OrderedTable` that has outgrown a linear search. Open addressing, linear
/// probing, removal by shifting back, at most three quarters full. Thread rule: that of the table; `find` and `hash`
/// may run on several threads at once while nothing changes.
class ROUTER_PLATFORM_EXPORT OrderedIndex {
 public:
  static constexpr U32 npos = 0xffffffff;  ///< no position

  /// Room for `members` before a larger one is needed. Throws std::bad_alloc.
  explicit OrderedIndex(U32 members);

  bool hasRoomFor(U32 members) const noexcept { return members <= (mask_ + 1) / 4 * 3; }

  /// Hash of a key, as the other operations take it.
  template <class Key>
  U32 hash(Key const& key) const noexcept {
    return static_cast<U32>(hashOf(key, seed_));
  }

  /// Position for which the hash matches and `equal(position)` holds, or `npos`.
  template <class Equal>
  U32 find(U32 hash, Equal equal) const noexcept {
    for (U32 i = hash & mask_;; i = (i + 1) & mask_) {
      Cell const& cell = cells_[i];
      if (cell.position == npos) return npos;
      if (cell.hash == hash && equal(cell.position)) return cell.position;
    }
  }

  /// Adds an entry. The caller has made sure that there is room.
  void add(U32 hash, U32 position) noexcept;
  /// Removes the entry, which is there.
  void remove(U32 hash, U32 position) noexcept;
  /// Gives the entry, which is there, another position, at which no other entry stands.
  void move(U32 hash, U32 from, U32 to) noexcept;

 private:
  struct Cell {
    U32 hash;
    U32 position;
  };

  U32 cellOf(U32 hash, U32 position) const noexcept;

  U64 seed_;  ///< a copy of the process's, beside the other members that a look-up reads
  U32 mask_;
  std::unique_ptr<Cell[]> cells_;
};

}  // namespace Fwk

#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/BaseTypes.h>

#include <memory>

namespace Fwk {

/// From hashes to positions: the index of an `OrderedTable` that has outgrown a linear search. Open addressing, linear
/// probing, removal by shifting back, at most three quarters full.
class ROUTER_PLATFORM_EXPORT OrderedIndex {
 public:
  static constexpr U32 npos = 0xffffffff;

  /// Room for `members` before `add` would have to grow it. Throws std::bad_alloc.
  explicit OrderedIndex(U32 members);

  bool hasRoomFor(U32 members) const noexcept { return members <= (mask_ + 1) / 4 * 3; }

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
  void clear() noexcept;

 private:
  struct Cell {
    U32 hash;
    U32 position;
  };

  U32 mask_;
  std::unique_ptr<Cell[]> cells_;
};

}  // namespace Fwk

#include <RouterPlatform/Base/OrderedIndex.h>

#include <algorithm>
#include <bit>

namespace Fwk {

OrderedIndex::OrderedIndex(U32 members) : seed_(processHashSeed()) {
  // At most three quarters full, so that probing stays short.
  U64 const cells = std::max<U64>(16, std::bit_ceil(U64{members} * 4 / 3 + 1));
  mask_ = static_cast<U32>(cells - 1);
  cells_ = std::make_unique_for_overwrite<Cell[]>(cells);
  std::fill_n(cells_.get(), cells, Cell{0, npos});
}

U32 OrderedIndex::cellOf(U32 hash, U32 position) const noexcept {
  U32 i = hash & mask_;
  while (cells_[i].position != position) i = (i + 1) & mask_;
  return i;
}

void OrderedIndex::move(U32 hash, U32 from, U32 to) noexcept { cells_[cellOf(hash, from)].position = to; }

void OrderedIndex::add(U32 hash, U32 position) noexcept {
  U32 i = hash & mask_;
  while (cells_[i].position != npos) i = (i + 1) & mask_;
  cells_[i] = Cell{hash, position};
}

void OrderedIndex::remove(U32 hash, U32 position) noexcept {
  U32 hole = cellOf(hash, position);
  for (U32 i = (hole + 1) & mask_; cells_[i].position != npos; i = (i + 1) & mask_) {
    U32 const home = cells_[i].hash & mask_;
    // An entry may fill the hole unless its home lies cyclically behind the hole.
    if (((i - home) & mask_) < ((i - hole) & mask_)) continue;
    cells_[hole] = cells_[i];
    hole = i;
  }
  cells_[hole].position = npos;
}

}  // namespace Fwk

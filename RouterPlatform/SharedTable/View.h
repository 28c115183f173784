#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/SharedTable/Error.h>
#include <RouterPlatform/SharedTable/Format.h>
#include <RouterPlatform/SharedTable/RowType.h>
#include <RouterPlatform/SharedTable/Walk.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace SharedTable {

/// Outcome of a lookup.
enum class LookupStatus : U8 {
  found,
  missing,
  busy,        ///< the row changed faster than it could be copied, thousands of times over; try again
  corrupt,     ///< the row cannot be trusted
  notAttached  ///< there is no table to look in
};

/// A table in memory, for reading: loads only, from any number of threads and processes beside one writer. Blocks
/// nobody and is blocked by nobody, a stopped or dead writer included.
class ROUTER_PLATFORM_EXPORT View {
 public:
  using Visitor = RowVisitor;

  View() = default;
  /// `base` is 8-octet aligned and outlives the view; `header` has been checked.
  View(std::byte const* base, FixedHeader const& header, RowType const& type) noexcept;

  explicit operator bool() const noexcept { return base_ != nullptr; }
  std::byte const* base() const noexcept { return base_; }
  Geometry const& geometry() const noexcept { return geometry_; }
  LiveState const& live() const noexcept { return *reinterpret_cast<LiveState const*>(base_ + liveStateOffset); }

  /// Row of the key of `type.keySize` octets, into `row`, which is written to in any case. `corruption` is set when the
  /// status says so.
  LookupStatus lookup(void const* key, void* row, Corruption& corruption) const noexcept;

  /// Calls `visit` for the rows, in the order of the index. A row that is there throughout is visited exactly once,
  /// any other at most once, however the table changes or grows meanwhile. Damaged places are counted and left out.
  WalkResult walk(Visitor const& visit) const;

  /// Whether the writer has left this memory, which then changes no more. Acquire; pairs with the release stores in
  /// WriterCore::retire and in Publication's `retireFormer`: whoever sees the mark sees the time.
  bool isRetired() const noexcept { return live().retired.load(std::memory_order_acquire) == retiredMark; }

  /// Rows, as the writer counts them; it may lag one behind the rows themselves. Nothing if the number is damaged.
  std::optional<U32> count() const noexcept;

  /// Changes since the table was made. Acquire; pairs with the release store in WriterCore::announce: whoever sees a
  /// count sees those changes.
  U64 changeCount() const noexcept { return live().changeCount.load(std::memory_order_acquire); }

  std::atomic<U64> const& bucket(U32 half, U64 number) const noexcept {
    return *reinterpret_cast<std::atomic<U64> const*>(base_ + geometry_.bucketOffset(half, number));
  }
  std::atomic<U64> const* slot(U32 number) const noexcept {
    return reinterpret_cast<std::atomic<U64> const*>(base_ + geometry_.slotOffset(number));
  }

 private:
  enum class Probe : U8 { found, missing, moved, corrupt };
  struct Walk;

  U64 placeOf(void const* key) const noexcept { return hashSecret_.place(type_->keyHash(key)); }
  Probe probe(ActiveWord active, void const* key, U64 hash, void* row, Corruption& corruption) const noexcept;
  Probe copyRow(ActiveWord active, U64 number, BucketWord word, void* row, Corruption& corruption) const noexcept;
  bool isEndless(ActiveWord active) const noexcept;
  bool activeIsSound(ActiveWord active) const noexcept;
  bool unchanged(ActiveWord active, U64 number, BucketWord word) const noexcept;
  Probe walkRow(Walk& walk, U64 position, BucketWord word) const;
  bool walkClusters(Walk& walk, Visitor const& visit) const;
  void checkCount(Walk& walk, std::optional<U32> counted) const noexcept;
  std::vector<U64 const*> supersededRows(std::vector<U64> const& rows) const;
  bool emit(Walk& walk, Visitor const& visit) const;

  std::byte const* base_ = nullptr;
  Geometry geometry_;
  RowType const* type_ = nullptr;
  HashSecret hashSecret_{};
  U64 checkSeed_ = 0;
};

}  // namespace SharedTable

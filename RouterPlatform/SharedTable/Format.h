#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/SharedTable/Capacity.h>

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstring>
#include <type_traits>

/// The meaning of a shared table's octets. `docs/formats/shared-table.md` is this file in words, with the protocol.
namespace SharedTable {

using Fwk::U32;
using Fwk::U64;
using Fwk::U8;

inline constexpr std::array<char, 8> magicText{'R', 'o', 'u', 't', 'T', 'b', 'l', '\n'};
inline constexpr U32 byteOrderMark = 0x01020304;
inline constexpr U32 formatVersion = 2;
inline constexpr U32 retiredMark = 0x52455449;
inline constexpr U64 headerSize = 4096;
inline constexpr U64 hugePageSize = U64{2} << 20;

/// The secret of one table file, random, which places the hashes of its keys. A key's own hash has seed 0, so anybody
/// can compute it; without the secret nobody can tell which keys meet in one bucket.
/// docs/adr/0011 has the reasons.
struct HashSecret {
  std::array<U64, 2> factor;  ///< 128 bits, the low half first
  std::array<U64, 2> addend;  ///< likewise

  /// Bits 64 to 127 of `hash` x factor + addend: two different hashes get any two given places with the same
  /// probability, whatever the hashes are.
  constexpr U64 place(U64 hash) const noexcept {
    __extension__ using U128 = unsigned __int128;
    U128 const low = static_cast<U128>(factor[0]) * hash + addend[0];
    return static_cast<U64>(low >> 64) + factor[1] * hash + addend[1];
  }
};

/// Octets 0 to 255: written once, before the file gets its name; never changed. All in the writer's byte order.
struct FixedHeader {
  std::array<char, 8> magic;
  U32 byteOrder;
  U32 version;
  U64 layoutHash;  ///< over what is known of every field, and the sizes of row and key
  U32 rowSize;     ///< octets, a multiple of 8
  U32 keySize;     ///< octets; the key stands at the start of the row
  U32 maxRows;
  U32 minIndexBits;  ///< log2 of the buckets of the smallest index
  U32 maxIndexBits;
  U32 reserved0;
  HashSecret hashSecret;
  std::array<U64, 2> indexOffset;
  U64 slotsOffset;
  U64 fileSize;
  std::array<U8, 16> instanceId;  ///< random, new with every file
  std::array<U8, 16> bootId;
  U32 writerPid;
  U32 reserved1;
  U64 writerStartTime;  ///< clock ticks since boot, as in /proc/PID/stat
  U64 createdTime;      ///< nanoseconds of the realtime clock
  std::array<U64, 10> reserved2;
  U32 reserved3;
  U32 crc;  ///< CRC-32 of the octets before it
};
static_assert(std::is_trivially_copyable_v<FixedHeader> && std::has_unique_object_representations_v<FixedHeader>);
static_assert(sizeof(FixedHeader) == 256);
static_assert(offsetof(FixedHeader, magic) == 0);
static_assert(offsetof(FixedHeader, byteOrder) == 8);
static_assert(offsetof(FixedHeader, version) == 12);
static_assert(offsetof(FixedHeader, layoutHash) == 16);
static_assert(offsetof(FixedHeader, rowSize) == 24);
static_assert(offsetof(FixedHeader, keySize) == 28);
static_assert(offsetof(FixedHeader, maxRows) == 32);
static_assert(offsetof(FixedHeader, minIndexBits) == 36);
static_assert(offsetof(FixedHeader, maxIndexBits) == 40);
static_assert(offsetof(FixedHeader, reserved0) == 44);
static_assert(offsetof(FixedHeader, hashSecret) == 48);
static_assert(offsetof(FixedHeader, indexOffset) == 80);
static_assert(offsetof(FixedHeader, slotsOffset) == 96);
static_assert(offsetof(FixedHeader, fileSize) == 104);
static_assert(offsetof(FixedHeader, instanceId) == 112);
static_assert(offsetof(FixedHeader, bootId) == 128);
static_assert(offsetof(FixedHeader, writerPid) == 144);
static_assert(offsetof(FixedHeader, reserved1) == 148);
static_assert(offsetof(FixedHeader, writerStartTime) == 152);
static_assert(offsetof(FixedHeader, createdTime) == 160);
static_assert(offsetof(FixedHeader, reserved2) == 168);
static_assert(offsetof(FixedHeader, reserved3) == 248);
static_assert(offsetof(FixedHeader, crc) == 252);

/// Octets 256 to 383: what changes. The first line changes when the table grows or ends, and every lookup reads it; the
/// second changes with every row, and lookups keep away from it.
struct LiveState {
  alignas(64) std::atomic<U64> active;  ///< which index is in force: an `ActiveWord`
  std::atomic<U64> slotsReady;          ///< slots that have space behind them: a `CheckedNumber`
  std::atomic<U32> retired;             ///< 0, or `retiredMark`: the writer has left this file
  U32 reserved0;
  std::atomic<U64> retiredTime;              ///< nanoseconds of the realtime clock
  alignas(64) std::atomic<U64> changeCount;  ///< committed changes since the file was made
  std::atomic<U64> rowCount;                 ///< a `CheckedNumber`
  std::atomic<U64> changeTime;               ///< of the last change; nanoseconds of the realtime clock, coarse
  std::atomic<U32> changeWord;               ///< low half of `changeCount`; what readers wait on
  U32 reserved1;
};
static_assert(std::is_standard_layout_v<LiveState> && sizeof(LiveState) == 128);
static_assert(offsetof(LiveState, active) == 0);
static_assert(offsetof(LiveState, slotsReady) == 8);
static_assert(offsetof(LiveState, retired) == 16);
static_assert(offsetof(LiveState, reserved0) == 20);
static_assert(offsetof(LiveState, retiredTime) == 24);
static_assert(offsetof(LiveState, changeCount) == 64);
static_assert(offsetof(LiveState, rowCount) == 72);
static_assert(offsetof(LiveState, changeTime) == 80);
static_assert(offsetof(LiveState, changeWord) == 88);
static_assert(offsetof(LiveState, reserved1) == 92);
static_assert(std::atomic<U64>::is_always_lock_free && sizeof(std::atomic<U64>) == 8);
static_assert(std::atomic<U32>::is_always_lock_free && sizeof(std::atomic<U32>) == 4);

inline constexpr U64 liveStateOffset = sizeof(FixedHeader);

/// A word whose eight octets give zero when they are XORed together, so that one damaged octet always shows. The top
/// octet makes it so. A word of zeroes, as a fresh file has it, is one.
constexpr U8 foldOctets(U64 word) noexcept {
  word ^= word >> 32;
  word ^= word >> 16;
  word ^= word >> 8;
  return static_cast<U8>(word);
}
constexpr U64 sealed(U64 low56) noexcept { return low56 | static_cast<U64>(foldOctets(low56)) << 56; }
constexpr bool intact(U64 word) noexcept { return foldOctets(word) == 0; }

/// A bucket of the index: where the row of one key is. One store of this word commits a change.
/// Bits 0 to 23: slot number, from 1; 0: empty; all ones: tombstone. 24 to 31: tag. 32 to 55: generation, one more with
/// every store, so that a reader sees a word that came back. 56 to 63: seal.
struct BucketWord {
  static constexpr U32 tombstoneSlot = 0xffffff;

  U64 bits = 0;

  static constexpr BucketWord of(U32 slot, U8 tag, U64 generation) noexcept {
    return {sealed(slot | static_cast<U64>(tag) << 24 | (generation & 0xffffff) << 32)};
  }
  /// The word that follows this one in the same bucket.
  constexpr BucketWord next(U32 slot, U8 tag) const noexcept { return of(slot, tag, generation() + 1); }

  constexpr U32 slot() const noexcept { return static_cast<U32>(bits & 0xffffff); }
  constexpr U8 tag() const noexcept { return static_cast<U8>(bits >> 24); }
  constexpr U64 generation() const noexcept { return bits >> 32 & 0xffffff; }
  constexpr bool empty() const noexcept { return slot() == 0; }
  constexpr bool tombstone() const noexcept { return slot() == tombstoneSlot; }
  constexpr bool isIntact() const noexcept { return intact(bits); }
};

/// The index that is in force. Bits 0 to 7: log2 of its buckets. 8 to 55: epoch, one more with every index; its lowest
/// bit says which half of the index space it stands in. 56 to 63: seal.
struct ActiveWord {
  U64 bits = 0;

  static constexpr ActiveWord of(U64 epoch, U32 indexBits) noexcept {
    return {sealed(indexBits | (epoch & 0xffffffffffff) << 8)};
  }
  constexpr U32 indexBits() const noexcept { return static_cast<U32>(bits & 0xff); }
  constexpr U64 epoch() const noexcept { return bits >> 8 & 0xffffffffffff; }
  constexpr U32 half() const noexcept { return static_cast<U32>(epoch() & 1); }
};

/// A 32-bit number with its complement in the high half, so that damage shows.
struct CheckedNumber {
  U64 bits = 0;

  static constexpr CheckedNumber of(U32 value) noexcept { return {static_cast<U64>(~value) << 32 | value}; }
  constexpr U32 value() const noexcept { return static_cast<U32>(bits); }
  constexpr bool isIntact() const noexcept { return static_cast<U32>(bits >> 32) == static_cast<U32>(~bits); }
};

/// Where a placed hash belongs: its highest bits choose the bucket at which probing starts, so an index of twice the
/// size holds the keys in the same order; its lowest bits are the tag.
constexpr U64 homeBucket(U64 hash, U32 indexBits) noexcept { return hash >> (64 - indexBits); }
constexpr U8 tagOf(U64 hash) noexcept { return static_cast<U8>(hash); }

/// Where the parts of a table stand. Everything follows from the sizes of row and key and from the capacity.
struct Geometry {
  U32 rowSize = 0;
  U32 keySize = 0;
  U32 maxRows = 0;
  U32 minIndexBits = 0;
  U32 maxIndexBits = 0;
  std::array<U64, 2> indexOffset{};
  U64 slotsOffset = 0;
  U64 fileSize = 0;

  /// Half of the buckets of an index are for rows.
  static constexpr U32 indexBitsFor(U32 rows) noexcept {
    return 32 - static_cast<U32>(std::countl_zero(std::bit_ceil(rows < 4 ? U32{4} : rows)));
  }
  static constexpr U64 pageCeil(U64 size) noexcept { return (size + 4095) & ~U64{4095}; }

  static constexpr Geometry of(U32 rowSize, U32 keySize, U32 maxRows, U32 minIndexBits) noexcept {
    Geometry g;
    g.rowSize = rowSize;
    g.keySize = keySize;
    g.maxRows = maxRows;
    g.minIndexBits = minIndexBits;
    g.maxIndexBits = indexBitsFor(maxRows);
    U64 const indexSpace = pageCeil(U64{8} << g.maxIndexBits);
    // A large index begins where a huge page does; what is left out before it takes no space.
    U64 const begin = indexSpace < hugePageSize ? headerSize : hugePageSize;
    g.indexOffset = {begin, begin + indexSpace};
    g.slotsOffset = begin + 2 * indexSpace;
    g.fileSize = pageCeil(g.slotsOffset + g.slotCount() * g.slotSize());
    return g;
  }

  /// A row and its check word.
  constexpr U64 slotSize() const noexcept { return U64{rowSize} + 8; }
  /// One more than rows: a change fills a slot that no bucket names.
  constexpr U64 slotCount() const noexcept { return U64{maxRows} + 1; }
  constexpr U64 slotOffset(U32 slot) const noexcept { return slotsOffset + (U64{slot} - 1) * slotSize(); }
  constexpr U64 bucketOffset(U32 half, U64 bucket) const noexcept { return indexOffset[half] + 8 * bucket; }

  bool operator==(Geometry const&) const = default;
};

/// Check word of a row: the sum of its words, each times an odd number of its own, so that any change within one word
/// is certain to be seen. It starts from the file and the slot: a row of elsewhere does not pass.
class RowCheck {
 public:
  constexpr RowCheck(U64 fileCheckSeed, U32 slot) noexcept : sum_((fileCheckSeed ^ slot) * 0xd6e8feb86659fd93U) {}
  constexpr void add(U64 word) noexcept {
    sum_ += word * factor_;
    factor_ += 0x3c6ef372fe94f82aU;
  }
  constexpr U64 result() const noexcept { return sum_; }

 private:
  U64 sum_;
  U64 factor_ = 0x9e3779b97f4a7c15U;  // odd, and stays odd: the step is even
};

/// CRC-32 (IEEE 802.3) of `size` octets.
U32 crc32(void const* data, std::size_t size) noexcept;

/// The seed of the file's check words.
inline U64 checkSeedOf(FixedHeader const& header) noexcept {
  U64 seed;
  std::memcpy(&seed, header.instanceId.data(), sizeof seed);
  return seed;
}

}  // namespace SharedTable

#include <RouterPlatform/Packet/Pkt.h>

#include <RouterPlatform/Packet/PktManager.h>
#include <RouterPlatform/Trace/Assert.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace Net {

Pkt::Pkt(PktManager& manager, std::unique_ptr<U8[]> buffer, U64 capacity) noexcept
    : manager_(manager), buffer_(std::move(buffer)), capacity_(capacity), soiledEnd_(capacity) {
  reset();
}

void Pkt::onZeroReferences() noexcept {
  if (releaseLastReference()) manager_.recycle(this);
}

/// The data may have been written: it is soiled once it is data no more.
void Pkt::noteSoiled() noexcept {
  if (size_ == 0) return;
  U64 const end = start_ + size_;
  bool const none = soiledBegin_ >= soiledEnd_;
  soiledBegin_ = none ? start_ : std::min(soiledBegin_, start_);
  soiledEnd_ = none ? end : std::max(soiledEnd_, end);
}

/// Zeroes what is soiled between `begin` and `end`.
inline void Pkt::clear(U64 begin, U64 end) noexcept {
  if (soiledEnd_ <= begin) return;
  U64 const from = std::max(begin, soiledBegin_), to = std::min(end, soiledEnd_);
  if (from >= to) return;
  std::memset(buffer_.get() + from, 0, to - from);
  if (to == soiledEnd_)
    soiledEnd_ = from;
  else if (from == soiledBegin_)
    soiledBegin_ = to;
}

/// Empty, all room at the head: that is where it is needed first.
void Pkt::reset() noexcept {
  noteSoiled();
  start_ = capacity_ - minTailRoom;
  size_ = 0;
  ip6Offset_ = icmp6Offset_ = icmp6Size_ = 0;
  ip6Located_ = false;
  clear(start_, capacity_);
}

void Pkt::growFor(U64 headData) {
  U64 const capacity = std::max(capacity_, std::bit_ceil(headData + size_ + minTailRoom));
  auto larger = std::make_unique_for_overwrite<U8[]>(capacity);
  U64 const start = capacity - minTailRoom - size_;
  std::memcpy(larger.get() + start, data(), size_);
  buffer_ = std::move(larger);
  capacity_ = capacity;
  start_ = start;
  soiledBegin_ = 0;
  soiledEnd_ = capacity;
}

U8* Pkt::reserveHeadDataUninitialized(U64 count) {
  ASSERT_AT(count <= maxSize && size_ <= maxSize - count, Trace::Location::here());
  if (headRoom() < count || tailRoom() < minTailRoom) growFor(count);
  start_ -= count;
  size_ += count;
  if (ip6Located_) ip6Offset_ += count;
  if (icmp6Size_ > 0) icmp6Offset_ += count;
  clear(start_ + size_, start_ + size_ + minTailRoom);
  return data();
}

U8* Pkt::reserveHeadData(U64 count) {
  U8* const head = reserveHeadDataUninitialized(count);
  clear(start_, start_ + count);
  return head;
}

void Pkt::trimZeroTail(U64 count) {
  ASSERT_AT(count <= size_, Trace::Location::here());
  size_ -= count;
  forgetHeadersOutside();
}

void Pkt::trimTailData(Fwk::S64 count) {
  if (count < 0) {
    U64 const added = U64{0} - static_cast<U64>(count);
    ASSERT_AT(added <= tailRoom(), Trace::Location::here());
    size_ += added;
  } else {
    ASSERT_AT(static_cast<U64>(count) <= size_, Trace::Location::here());
    noteSoiled();
    size_ -= static_cast<U64>(count);
    forgetHeadersOutside();
  }
}

void Pkt::dataIs(std::span<U8 const> octets) {
  reset();
  U8* const copy = reserveHeadDataUninitialized(octets.size());
  if (!octets.empty()) std::memcpy(copy, octets.data(), octets.size());
}

void Pkt::forgetHeadersOutside() noexcept {
  if (ip6Offset_ + sizeof(Ip6Hdr) > size_) ip6Located_ = false;
  if (icmp6Offset_ + icmp6Size_ <= size_) return;
  if (icmp6Offset_ + sizeof(Icmp6Hdr) <= size_)
    icmp6Size_ = size_ - icmp6Offset_;
  else
    icmp6Offset_ = icmp6Size_ = 0;
}

}  // namespace Net

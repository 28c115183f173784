#include <RouterPlatform/Packet/Pkt.h>

#include <RouterPlatform/Packet/PktManager.h>
#include <RouterPlatform/Trace/Assert.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace Net {

Pkt::Pkt(PktManager& manager, std::unique_ptr<U8[]> buffer, U64 capacity) noexcept
    : manager_(manager), buffer_(std::move(buffer)), capacity_(capacity) {
  reset();
}

void Pkt::onZeroReferences() noexcept {
  if (releaseLastReference()) manager_.recycle(this);
}

/// Empty, all room at the head: that is where it is needed first.
void Pkt::reset() noexcept {
  start_ = capacity_ - minTailRoom;
  size_ = 0;
  ip6Offset_ = icmp6Offset_ = icmp6Length_ = 0;
  ip6Located_ = false;
  std::memset(data(), 0, minTailRoom);
}

void Pkt::growFor(U64 headData) {
  U64 const capacity = std::max(capacity_, std::bit_ceil(headData + size_ + minTailRoom));
  auto larger = std::make_unique_for_overwrite<U8[]>(capacity);
  U64 const start = capacity - minTailRoom - size_;
  std::memcpy(larger.get() + start, data(), size_);
  buffer_ = std::move(larger);
  capacity_ = capacity;
  start_ = start;
}

U8* Pkt::reserveHeadDataUninitialized(U64 count) {
  ASSERT_AT(count <= maxSize && size_ <= maxSize - count, Trace::Location::here());
  if (headRoom() < count || tailRoom() < minTailRoom) growFor(count);
  start_ -= count;
  size_ += count;
  if (ip6Located_) ip6Offset_ += count;
  if (icmp6Length_ > 0) icmp6Offset_ += count;
  std::memset(data() + size_, 0, minTailRoom);
  return data();
}

U8* Pkt::reserveHeadData(U64 count) {
  U8* const head = reserveHeadDataUninitialized(count);
  std::memset(head, 0, count);
  return head;
}

void Pkt::trimTailData(Fwk::S64 count) {
  if (count < 0) {
    U64 const added = U64{0} - static_cast<U64>(count);
    ASSERT_AT(added <= tailRoom(), Trace::Location::here());
    size_ += added;
  } else {
    ASSERT_AT(static_cast<U64>(count) <= size_, Trace::Location::here());
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
  if (icmp6Offset_ + icmp6Length_ <= size_) return;
  if (icmp6Offset_ + sizeof(Icmp6Hdr) <= size_)
    icmp6Length_ = size_ - icmp6Offset_;
  else
    icmp6Offset_ = icmp6Length_ = 0;
}

}  // namespace Net

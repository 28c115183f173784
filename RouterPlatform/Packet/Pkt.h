#pragma once

#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Packet/Icmp6Hdr.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>
#include <RouterPlatform/Packet/NetInt.h>
#include <RouterPlatform/Trace/Assert.h>

#include <memory>
#include <span>

namespace Net {

class PktManager;
template <class T>
class FreeList;

/// A packet: one buffer that holds its data with head room before and tail room behind. Made by `PktManager::newPkt`,
/// to which it returns with its last `Ptr`. Used by one thread at a time.
class ROUTER_PLATFORM_EXPORT Pkt final : public Fwk::PtrInterface<Pkt> {
 public:
  /// Tail room that every reservation leaves, in octets, zero.
  static constexpr U64 minTailRoom = 16;
  /// Greatest size of a packet's data, octets. To ask for more is a programming error.
  static constexpr U64 maxSize = U64{1} << 24;

  U8* data() noexcept { return buffer_.get() + start_; }
  U8 const* data() const noexcept { return buffer_.get() + start_; }
  U64 size() const noexcept { return size_; }
  std::span<U8> octets() noexcept { return {data(), size_}; }
  std::span<U8 const> octets() const noexcept { return {data(), size_}; }
  U64 headRoom() const noexcept { return start_; }
  U64 tailRoom() const noexcept { return capacity_ - start_ - size_; }

  /// Puts `count` zero octets before the data and returns the new first one. At least `minTailRoom` octets behind the
  /// data are zero then. Moves to another buffer when this one lacks room: earlier pointers into it end.
  ///
  /// The buffer keeps which of its octets may not be zero, so that no others are cleared.
  U8* reserveHeadData(U64 count);
  /// The same for a caller who writes every octet that stays: those before the data are as the buffer held them.
  U8* reserveHeadDataUninitialized(U64 count);

  /// Takes off the last `count` octets of the data, which the caller has not written since `reserveHeadData` gave them:
  /// they are not cleared again. Else as `trimTailData`.
  void trimZeroTail(U64 count);
  /// Takes `count` octets off the end of the data. A negative count takes the first octets of the tail room in, as they
  /// are; more than the room holds, or more than there are, is a programming error. A message that loses octets is so
  /// much shorter; a header that does is not located any more.
  void trimTailData(Fwk::S64 count);

  /// Replaces the data by a copy of `octets`, which are not in this packet. No header is located then.
  void dataIs(std::span<U8 const> octets);

  /// The data from `offset` on, as a header, which must lie inside the data.
  template <class Header>
  Header& headerAt(U64 offset) noexcept {
    static_assert(alignof(Header) == 1 && std::is_trivially_copyable_v<Header>);
    checkInside(offset, sizeof(Header));
    return *reinterpret_cast<Header*>(data() + offset);
  }

  /// Where the IPv6 header begins. It must lie inside the data.
  void ip6HdrOffsetIs(U64 offset) {
    checkInside(offset, sizeof(Ip6Hdr));
    ip6Offset_ = offset;
    ip6Located_ = true;
  }
  /// The IPv6 header, or null when none is located.
  Ip6Hdr* ip6Hdr() noexcept { return ip6Located_ ? reinterpret_cast<Ip6Hdr*>(data() + ip6Offset_) : nullptr; }

  /// Where the ICMPv6 message lies. All of it must lie inside the data, and it has a header at least.
  void icmp6MsgIs(U64 offset, U64 size) {
    ASSERT_AT(size >= sizeof(Icmp6Hdr), Trace::Location::here());
    checkInside(offset, size);
    icmp6Offset_ = offset;
    icmp6Size_ = size;
  }
  /// The ICMPv6 message from its Type octet on. Never null: when none is located this is the start of the data, and the
  /// octets of a header are there, whatever they hold.
  Icmp6Hdr* icmp6Hdr() noexcept { return reinterpret_cast<Icmp6Hdr*>(data() + icmp6Offset_); }
  /// Octets of the data before the ICMPv6 message; 0 when none is located.
  U64 icmp6Offset() const noexcept { return icmp6Offset_; }
  /// The octets of the ICMPv6 message that are in the data; none when no message is located.
  std::span<U8 const> icmp6Octets() const noexcept { return octets().subspan(icmp6Offset_, icmp6Size_); }
  /// Octets of the ICMPv6 message that are in the data; 0 when none is located.
  U64 icmp6MsgLen() const noexcept { return icmp6Size_; }

 private:
  friend class Fwk::PtrInterface<Pkt>;
  friend class PktManager;
  friend class FreeList<Pkt>;

  Pkt(PktManager& manager, std::unique_ptr<U8[]> buffer, U64 capacity) noexcept;
  ~Pkt() = default;
  void onZeroReferences() noexcept;
  void reset() noexcept;
  [[gnu::cold]] void growFor(U64 headData);
  void checkInside(U64 offset, U64 size) const noexcept {
    ASSERT_AT(offset <= size_ && size <= size_ - offset, Trace::Location::here());
  }
  void forgetHeadersOutside() noexcept;
  void noteSoiled() noexcept;
  void clear(U64 begin, U64 end) noexcept;

  // Kept: start_ + size_ <= capacity_ and start_ + minTailRoom <= capacity_; located headers lie inside the data.
  PktManager& manager_;
  std::unique_ptr<U8[]> buffer_;
  U64 capacity_;
  U64 start_ = 0;
  U64 size_ = 0;
  U64 ip6Offset_ = 0;  // offsets count from the start of the data
  U64 icmp6Offset_ = 0;
  U64 icmp6Size_ = 0;  // 0: not located, and the offset is 0
  bool ip6Located_ = false;
  // Octets of the buffer outside the data and outside [soiledBegin_, soiledEnd_) are zero.
  U64 soiledBegin_ = 0;
  U64 soiledEnd_;
  Pkt* nextFree_ = nullptr;
};

}  // namespace Net

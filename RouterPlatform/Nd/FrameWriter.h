#pragma once

#include <RouterPlatform/Packet/NetInt.h>

#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

namespace Net {

/// Writes a frame from its front: the counterpart of OptionReader, and the only place that compares a size with the
/// room that is left. What does not fit is not begun. Refers to the octets.
///
/// There are two limits. The frame limit is the frame's greatest size; everything keeps to it but zeros, which may go
/// on to the end of the octets, the hard limit. A DNS Search List needs that: its last octets may pass the frame limit.
class FrameWriter {
 public:
  /// Goes on at `offset` of `octets`. `frameLimit` is an offset too.
  FrameWriter(std::span<U8> octets, U64 offset, U64 frameLimit) noexcept
      : octets_(octets), offset_(offset), frameLimit_(frameLimit) {}

  U64 offset() const noexcept { return offset_; }          ///< octets written so far
  U64 frameLimit() const noexcept { return frameLimit_; }  ///< greatest size of the frame, octets
  /// Octets between the offset and the frame limit.
  U64 room() const noexcept { return offset_ < frameLimit_ ? frameLimit_ - offset_ : 0; }
  /// Whether the next `size` octets keep to the frame limit.
  bool fits(U64 size) const noexcept { return offset_ + size <= frameLimit_; }

  /// The next octets as a `Header`, whose every field the caller sets; null when they do not fit.
  template <class Header>
  Header* append() noexcept {
    static_assert(alignof(Header) == 1 && std::is_trivially_copyable_v<Header>);
    if (!fits(sizeof(Header))) return nullptr;
    return reinterpret_cast<Header*>(taken(sizeof(Header)));
  }
  /// The next `size` octets, which fit, for the caller to write.
  std::span<U8> reserve(U64 size) noexcept { return {taken(size), size}; }
  /// Writes octets. False: they do not fit, and nothing was written.
  bool append(std::span<U8 const> octets) noexcept { return append(octets.data(), octets.size()); }
  bool append(std::string_view text) noexcept { return append(text.data(), text.size()); }
  /// Writes `count` zeros, up to the hard limit. False: they pass it, and nothing was written.
  bool appendZeros(U64 count) noexcept {
    if (offset_ + count > octets_.size()) return false;
    std::memset(taken(count), 0, count);
    return true;
  }

  /// The octets written from `offset` on, to fill in a field whose value is known only now.
  std::span<U8> written(U64 offset) noexcept { return octets_.first(offset_).subspan(offset); }

 private:
  bool append(void const* octets, U64 size) noexcept {
    if (!fits(size)) return false;
    if (size > 0) std::memcpy(taken(size), octets, size);
    return true;
  }
  U8* taken(U64 size) noexcept {
    U8* const at = octets_.data() + offset_;
    offset_ += size;
    return at;
  }

  std::span<U8> octets_;
  U64 offset_;
  U64 frameLimit_;
};

}  // namespace Net

#pragma once

#include <RouterPlatform/Nd/OptionHead.h>
#include <RouterPlatform/Nd/RaHeader.h>
#include <RouterPlatform/Packet/HeaderAt.h>

#include <span>

namespace Net {

/// Goes from option to option of a Router Advertisement, RFC 4861 4.6. Only type and length of an option have to lie in
/// the message; its fields are read by the option's own `take` function. Refers to the message.
///
/// The offset has 16 bits. In a message of about 64 KiB or more it wraps, and the walk goes on at a small offset, among
/// octets that it has passed before.
class OptionReader {
 public:
  /// Octets of a message before its options, RFC 4861 4.2.
  static constexpr U16 optionsOffset = RaHeader::size;
  /// Offsets are multiples of 8 below 2^16: after so many options the walk only repeats itself, and ends.
  static constexpr U32 optionsMax = (1U << 16) / 8;

  explicit OptionReader(std::span<U8 const> message) noexcept : message_(message) {}

  /// Goes to the next option; false: there is none. An option of length 0 is followed by itself.
  /// docs/adr/0007: why an option with too few fields is skipped by its length.
  bool next() noexcept {
    Icmp6HdrOption const* const found = headerAt<Icmp6HdrOption>(message_, nextOffset_);
    if (!found || count_ == optionsMax) return false;
    ++count_;
    option_ = found;
    offset_ = nextOffset_;
    nextOffset_ = static_cast<U16>(nextOffset_ + found->length * Icmp6HdrOption::lengthUnit);
    return true;
  }

  /// How many options the walk has come to.
  U32 count() const noexcept { return count_; }

  // Of the option it has come to:
  U16 offset() const noexcept { return offset_; }
  U8 type() const noexcept { return option_->type; }
  U8 length() const noexcept { return option_->length; }  ///< units of 8 octets
  /// Whether the whole option is in the message, and its length is not 0.
  bool complete() const noexcept { return length() > 0 && size() <= message_.size() - offset_; }
  U64 size() const noexcept { return length() * Icmp6HdrOption::lengthUnit; }  ///< octets

 private:
  std::span<U8 const> message_;
  Icmp6HdrOption const* option_ = nullptr;
  U16 offset_ = 0;
  U16 nextOffset_ = optionsOffset;
  U32 count_ = 0;
};

}  // namespace Net

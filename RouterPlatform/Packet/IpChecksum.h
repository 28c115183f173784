#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Packet/NetInt.h>

#include <bit>
#include <cstddef>

namespace Net {

/// An Internet checksum, RFC 1071, as it stands in a header.
class IpChecksum {
 public:
  constexpr IpChecksum() noexcept = default;
  explicit constexpr IpChecksum(NetU16 field) noexcept : field_(field) {}

  constexpr NetU16 field() const noexcept { return field_; }
  constexpr bool operator==(IpChecksum other) const noexcept { return field_ == other.field_; }

 private:
  NetU16 field_;
};

/// Sums what a checksum covers, piece by piece. All pieces but the last have an even number of octets; an odd last one
/// is padded with a zero octet, RFC 1071 4.1.
class ROUTER_PLATFORM_EXPORT IpChecksumAccumulator {
 public:
  /// Up to 2^34 octets in all.
  void add(void const* data, std::size_t size) noexcept;

  IpChecksum result() const noexcept {
    U64 const lowHalves = words_ - (highHalves_ << 32);
    U64 sum = foldedOnce(foldedOnce(lowHalves, 32) + foldedOnce(highHalves_, 32), 32);
    sum = foldedOnce(foldedOnce(sum, 16), 16);
    // The sum's octets are in the order in which they were loaded, whatever that is, RFC 1071 2 (B).
    return IpChecksum(std::bit_cast<NetU16>(static_cast<U16>(~sum)));
  }

 private:
  static constexpr U64 foldedOnce(U64 sum, int bits) { return (sum >> bits) + (sum & ((U64{1} << bits) - 1)); }

  // Any sum that is equal modulo 2^16 - 1 will do: both hold sums of 64-bit words, one of the whole words, one of
  // their high halves.
  U64 words_ = 0;
  U64 highHalves_ = 0;
};

}  // namespace Net

#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Packet/NetInt.h>

#include <bit>
#include <cstddef>
#include <cstring>

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
  void add(void const* data, std::size_t size) noexcept { sums_.add(sumsOf(data, size)); }
  /// A header of a few words, without a call.
  template <class Header>
  void add(Header const& header) noexcept {
    static_assert(alignof(Header) == 1 && sizeof(Header) % sizeof(U64) == 0);
    auto const* at = reinterpret_cast<U8 const*>(&header);
    for (U8 const* const end = at + sizeof header; at != end; at += sizeof(U64)) sums_.addWord<sizeof(U64)>(at);
  }

  IpChecksum result() const noexcept {
    U64 const lowHalves = sums_.words - (sums_.highHalves << 32);
    U64 sum = foldedOnce(foldedOnce(lowHalves, 32) + foldedOnce(sums_.highHalves, 32), 32);
    sum = foldedOnce(foldedOnce(sum, 16), 16);
    // The sum's octets are in the order in which they were loaded, whatever that is, RFC 1071 2 (B).
    return IpChecksum(std::bit_cast<NetU16>(static_cast<U16>(~sum)));
  }

 private:
  /// Any sum that is equal modulo 2^16 - 1 will do: both are sums of 64-bit words, one of the whole words, one of their
  /// high halves. It fits in two registers, and is handed on in them.
  struct Sums {
    U64 words = 0;
    U64 highHalves = 0;

    void add(Sums more) noexcept {
      words += more.words;
      highHalves += more.highHalves;
    }
    /// Adds `size` octets as a word; those that are missing to 8 count as zero.
    template <std::size_t size>
    void addWord(U8 const* at) noexcept {
      U64 word = 0;
      std::memcpy(&word, at, size);
      add({word, word >> 32});
    }
  };

  static Sums sumsOf(void const* data, std::size_t size) noexcept;

  static constexpr U64 foldedOnce(U64 sum, int bits) { return (sum >> bits) + (sum & ((U64{1} << bits) - 1)); }

  Sums sums_;
};

}  // namespace Net

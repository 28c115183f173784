#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

#include <array>
#include <bit>
#include <concepts>
#include <cstring>
#include <span>
#include <type_traits>

namespace Net {

using Fwk::U16;
using Fwk::U32;
using Fwk::U64;
using Fwk::U8;

/// An unsigned number as it stands in a packet: network order, any address. It reads and is assigned like the number;
/// this is the one place that knows about byte order.
template <std::unsigned_integral T>
class NetInt {
 public:
  constexpr NetInt() noexcept = default;
  constexpr NetInt(T value) noexcept : octets_(std::bit_cast<WireOctets>(swapped(value))) {}

  constexpr operator T() const noexcept { return swapped(std::bit_cast<T>(octets_)); }

  constexpr NetInt& operator|=(T bits) noexcept { return *this = static_cast<T>(*this | bits); }
  constexpr NetInt& operator&=(T bits) noexcept { return *this = static_cast<T>(*this & bits); }

 private:
  using WireOctets = std::array<U8, sizeof(T)>;

  /// From the machine's order to network order, and back.
  static constexpr T swapped(T value) noexcept {
    static_assert(std::endian::native == std::endian::little || std::endian::native == std::endian::big);
    if constexpr (std::endian::native == std::endian::big || sizeof(T) == 1)
      return value;
    else if constexpr (sizeof(T) == 2)
      return __builtin_bswap16(value);
    else
      return __builtin_bswap32(value);
  }

  WireOctets octets_{};
};

/// 8 octets as a number whose lowest octet is the first of them, for work on all of them at once.
inline U64 wordFirstOctetLowest(void const* octets) noexcept {
  U64 word = 0;
  std::memcpy(&word, octets, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

inline void storeWordFirstOctetLowest(std::span<U8, 8> octets, U64 word) noexcept {
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  std::memcpy(octets.data(), &word, sizeof word);
}

using NetU8 = NetInt<U8>;
using NetU16 = NetInt<U16>;
using NetU32 = NetInt<U32>;
static_assert(sizeof(NetU8) == 1 && sizeof(NetU16) == 2 && sizeof(NetU32) == 4);
static_assert(alignof(NetU8) == 1 && alignof(NetU16) == 1 && alignof(NetU32) == 1);
static_assert(std::is_trivially_copyable_v<NetU32>);

}  // namespace Net

#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Reads finished frames octet by octet, and shares no code with what wrote them.
namespace Frame {

using Fwk::U16;
using Fwk::U32;
using Fwk::U64;
using Fwk::U8;
using Octets = std::vector<U8>;
using View = std::span<U8 const>;

inline constexpr std::size_t icmp6Offset = 54;    ///< behind Ethernet and IPv6
inline constexpr std::size_t optionsOffset = 70;  ///< behind the fixed part of the advertisement, RFC 4861 4.2

inline U16 u16At(View octets, std::size_t offset) { return static_cast<U16>(octets[offset] << 8 | octets[offset + 1]); }
inline U32 u32At(View octets, std::size_t offset) {
  return U32{u16At(octets, offset)} << 16 | u16At(octets, offset + 2);
}

/// Octets of hexadecimal digits; blanks between octets are passed over.
inline Octets fromHex(std::string_view hex) {
  auto const digit = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    throw std::invalid_argument(std::string("not a hexadecimal digit: ") + c);
  };
  Octets octets;
  for (std::size_t i = 0; i < hex.size();) {
    if (hex[i] == ' ') {
      ++i;
      continue;
    }
    octets.push_back(static_cast<U8>(digit(hex.at(i)) << 4 | digit(hex.at(i + 1))));
    i += 2;
  }
  return octets;
}

inline std::string toHex(View octets) {
  constexpr char const* digits = "0123456789abcdef";
  std::string hex;
  for (U8 const octet : octets) {
    hex += digits[octet >> 4];
    hex += digits[octet & 15];
  }
  return hex;
}

/// What the checksum field of the ICMPv6 message of a frame must hold, RFC 4443 2.3: the pseudo header of RFC 8200 8.1
/// and the message with that field as zero, two octets at a time.
inline U16 icmp6Checksum(View frame) {
  U64 sum = 0;
  for (std::size_t i = 22; i < icmp6Offset; i += 2) sum += u16At(frame, i);  // the addresses
  sum += frame.size() - icmp6Offset;
  sum += 58;  // ICMPv6
  for (std::size_t i = icmp6Offset; i < frame.size(); ++i)
    if (i != icmp6Offset + 2 && i != icmp6Offset + 3) sum += U64{frame[i]} << (i % 2 == 0 ? 8 : 0);
  while (sum > 0xffff) sum = (sum >> 16) + (sum & 0xffff);
  return static_cast<U16>(~sum);
}

/// The options of the advertisement in a frame, each with all of its octets; nothing when they do not end exactly where
/// the frame does, or when one has length 0.
inline std::optional<std::vector<Octets>> options(View frame) {
  std::vector<Octets> result;
  std::size_t at = optionsOffset;
  while (at + 2 <= frame.size()) {
    std::size_t const size = std::size_t{8} * frame[at + 1];
    if (size == 0 || size > frame.size() - at) return std::nullopt;
    View const option = frame.subspan(at, size);
    result.emplace_back(option.begin(), option.end());
    at += size;
  }
  if (at != frame.size()) return std::nullopt;
  return result;
}

}  // namespace Frame

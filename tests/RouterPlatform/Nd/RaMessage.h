#pragma once

#include <RouterPlatform/Packet/Ip6PktInfo.h>

#include <initializer_list>
#include <span>
#include <vector>

namespace RouterAdvt {

using Octets = std::vector<Net::U8>;

inline Octets operator+(Octets a, Octets const& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

/// `count` times the octets.
inline Octets times(std::size_t count, Octets const& octets) {
  Octets result;
  result.reserve(count * octets.size());
  for (; count > 0; --count) result.insert(result.end(), octets.begin(), octets.end());
  return result;
}

/// The 16 octets before the options: every field at a value of its own, M and O clear, router lifetime 1800.
inline Octets const raHeader{134, 0, 0x12, 0x34, 64, 0, 0x07, 0x08, 0x00, 0x00, 0x75, 0x30, 0x00, 0x00, 0x03, 0xe8};

inline Octets mtuOption(Net::U32 mtu, Net::U8 length = 1) {
  return {5,
          length,
          0,
          0,
          static_cast<Net::U8>(mtu >> 24),
          static_cast<Net::U8>(mtu >> 16),
          static_cast<Net::U8>(mtu >> 8),
          static_cast<Net::U8>(mtu)};
}

/// Fields of a Prefix Information option; the prefix is 2001:db8:`subnet`:: .
struct PrefixFields {
  Net::U16 subnet = 1;
  Net::U8 prefixLength = 64;
  Net::U8 flags = 0xc0;
  Net::U8 lifetime = 9;  ///< low octet of the valid lifetime; the preferred one is half of it
  Net::U8 length = 4;
};

inline Octets prefixOption(PrefixFields const& fields = {}) {
  Octets option{3, fields.length, fields.prefixLength, fields.flags};
  option.resize(32);
  option[7] = fields.lifetime;
  option[11] = fields.lifetime / 2;
  option[16] = 0x20;
  option[17] = 0x01;
  option[18] = 0x0d;
  option[19] = 0xb8;
  option[20] = static_cast<Net::U8>(fields.subnet >> 8);
  option[21] = static_cast<Net::U8>(fields.subnet);
  return option;
}

/// An option of `length` times 8 octets, its body filled with `fill`.
inline Octets otherOption(Net::U8 type, Net::U8 length, Net::U8 fill = 0xee) {
  Octets option(length == 0 ? 8U : 8U * length, fill);
  option[0] = type;
  option[1] = length;
  return option;
}

inline Net::Ip6Addr const raSource("fe80::1");
inline Net::Ip6Addr const raDest("ff02::1");

/// The descriptor of a message from `raSource` to `raDest`.
inline Fwk::Ptr<Net::Ip6PktInfo> received(Octets const& message) {
  return Net::Ip6PktInfo::fromIcmp6Message(message, raSource, raDest, 255).info;
}

}  // namespace RouterAdvt

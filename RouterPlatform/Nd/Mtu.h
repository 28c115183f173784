#pragma once

#include <RouterPlatform/Nd/FrameWriter.h>
#include <RouterPlatform/Nd/OptionHead.h>
#include <RouterPlatform/Packet/HeaderAt.h>

#include <optional>

namespace Net {

///  0                   1                   2                   3
///  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |     Type      |    Length     |           Reserved            |  RFC 4861 4.6.4
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                              MTU                              |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
struct Icmp6HdrMtuOption {
  static constexpr U8 typeValue = 5;  ///< RFC 4861 4.6.4

  NetU8 type;
  NetU8 length;  ///< 1
  NetU16 reserved;
  NetU32 mtu;  ///< octets
};
static_assert(sizeof(Icmp6HdrMtuOption) == 8 && alignof(Icmp6HdrMtuOption) == 1);

/// The MTU of the link.
struct Mtu {
  U32 octets = 0;
  U16 reserved = 0;  ///< as received; sent as 0
};

/// False: the option does not fit, and nothing was written.
inline bool put(FrameWriter& out, Mtu const& mtu) noexcept {
  auto* const option = out.append<Icmp6HdrMtuOption>();
  if (!option) return false;
  option->type = Icmp6HdrMtuOption::typeValue;
  option->length = optionLength(sizeof *option);
  option->reserved = 0;
  option->mtu = mtu.octets;
  return true;
}

/// The option at `offset`, whatever its type and length. Nothing: a field lies behind the end.
inline std::optional<Mtu> takeMtu(std::span<U8 const> octets, U64 offset) noexcept {
  auto const* const option = headerAt<Icmp6HdrMtuOption>(octets, offset);
  if (!option) return std::nullopt;
  return Mtu{.octets = option->mtu, .reserved = option->reserved};
}

}  // namespace Net

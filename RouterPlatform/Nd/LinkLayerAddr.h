#pragma once

#include <RouterPlatform/Nd/FrameWriter.h>
#include <RouterPlatform/Nd/OptionHead.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Packet/HeaderAt.h>

#include <array>
#include <optional>

namespace Net {

///  0                   1                   2                   3
///  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |     Type      |    Length     |    Link-Layer Address ...        RFC 4861 4.6.1; Ethernet: RFC 2464 6
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
struct Icmp6HdrLinkLayerAddrOption {
  static constexpr U8 sourceTypeValue = 1;  ///< RFC 4861 4.6.1
  static constexpr U8 targetTypeValue = 2;  ///< RFC 4861 4.6.1

  NetU8 type;
  NetU8 length;  ///< 1 for Ethernet
  std::array<U8, 6> linkLayerAddress;
};
static_assert(sizeof(Icmp6HdrLinkLayerAddrOption) == 8 && alignof(Icmp6HdrLinkLayerAddrOption) == 1);

/// The Ethernet address of a message's source or target.
struct LinkLayerAddr {
  EthAddr address{};
  U8 type = Icmp6HdrLinkLayerAddrOption::sourceTypeValue;  ///< says whose address it is
};

/// False: the option does not fit, and nothing was written.
inline bool put(FrameWriter& out, LinkLayerAddr const& linkLayerAddr) noexcept {
  auto* const option = out.append<Icmp6HdrLinkLayerAddrOption>();
  if (!option) return false;
  option->type = linkLayerAddr.type;
  option->length = optionLength(sizeof *option);
  linkLayerAddr.address.copyTo(option->linkLayerAddress);
  return true;
}

/// The option at `offset`, whatever its length. Nothing: a field lies behind the end.
inline std::optional<LinkLayerAddr> takeLinkLayerAddr(std::span<U8 const> octets, U64 offset) noexcept {
  auto const* const option = headerAt<Icmp6HdrLinkLayerAddrOption>(octets, offset);
  if (!option) return std::nullopt;
  return LinkLayerAddr{.address = EthAddr::fromBytes(option->linkLayerAddress), .type = option->type};
}

}  // namespace Net

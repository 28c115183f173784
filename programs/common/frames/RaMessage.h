#pragma once

#include <RouterPlatform/Nd/Icmp6RouterAdvertisementHdr.h>
#include <RouterPlatform/Packet/Icmp6Hdr.h>
#include <programs/common/frames/Octets.h>

#include <optional>
#include <vector>

/// The parts of a Router Advertisement, RFC 4861 4.2, as octets.
namespace Tool {

/// Octets of the message before its options.
inline constexpr std::size_t raHeaderSize = sizeof(Net::Icmp6Hdr) + sizeof(Net::Icmp6RouterAdvertisementHdr);

/// The message in an Ethernet frame that carries one right behind its IPv6 header, as the builder makes them; nothing
/// for any other frame.
std::optional<Octets> raMessageOf(std::span<Fwk::U8 const> frame);

/// One option as it stands in a message: type, length and all.
struct RaOption {
  Fwk::U8 type;
  Octets octets;
};

/// The complete ones of a message's options, up to the first that is none.
std::vector<RaOption> completeOptions(Octets options);

}  // namespace Tool

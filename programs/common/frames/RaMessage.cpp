#include <RouterPlatform/Packet/EthernetHdr.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>
#include <programs/common/frames/RaMessage.h>

namespace Tool {

std::optional<Octets> raMessageOf(std::span<Fwk::U8 const> frame) {
  constexpr std::size_t messageAt = sizeof(Net::EthernetHdr) + sizeof(Net::Ip6Hdr);
  Octets const octets(frame);
  auto const ethernet = octets.header<Net::EthernetHdr>();
  auto const ip6 = octets.header<Net::Ip6Hdr>(sizeof(Net::EthernetHdr));
  auto const icmp6 = octets.header<Net::Icmp6Hdr>(messageAt);
  if (!icmp6 || ethernet->etherType != Net::EtherType::ip6 || ip6->nextHeader != Net::Ip6NextHeader::icmp6 ||
      icmp6->type != Net::Icmp6Hdr::routerAdvertisement)
    return std::nullopt;
  return octets.from(messageAt, ip6->payloadLength);
}

std::vector<RaOption> completeOptions(Octets options) {
  std::vector<RaOption> result;
  while (options.size() >= 2) {
    std::size_t const size = std::size_t{8} * options[1];
    if (size == 0 || size > options.size()) break;
    result.push_back({options[0], options.from(0, size)});
    options = options.from(size);
  }
  return result;
}

}  // namespace Tool

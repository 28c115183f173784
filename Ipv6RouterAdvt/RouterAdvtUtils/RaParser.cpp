#include <Ipv6RouterAdvt/RouterAdvtUtils/RaParser.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/UtilsTrace.h>
#include <RouterPlatform/Nd/Icmp6RouterAdvertisementHdr.h>
#include <RouterPlatform/Nd/OptionReader.h>
#include <RouterPlatform/Packet/HeaderAt.h>

#include <cstring>

namespace RouterAdvt {

using Net::Icmp6Hdr;
using Net::Icmp6HdrMtuOption;
using Net::Icmp6HdrPrefixInfoOption;
using Net::Icmp6RouterAdvertisementHdr;
using Octets = std::span<U8 const>;

namespace {

constexpr Trace::Location at(int line) { return {utilsSource, line, "makeRaPacketType"}; }

Octets messageOf(Pkt& pkt) { return {reinterpret_cast<U8 const*>(pkt.icmp6Hdr()), pkt.icmp6MsgLen()}; }

/// What there is of the header: it does not depend on the message's length being known.
Octets headerOctetsOf(Pkt& pkt) { return pkt.icmp6MsgLen() > 0 ? messageOf(pkt) : pkt.octets(); }

struct Header {
  Icmp6Hdr icmp6;
  Icmp6RouterAdvertisementHdr advertisement;
};
static_assert(sizeof(Header) == Net::OptionReader::optionsOffset);

/// The header of a message that is shorter than one: what it lacks is 0.
Header paddedHeader(Octets octets) {
  Header header{};
  std::memcpy(static_cast<void*>(&header), octets.data(), octets.size());
  return header;
}

void readHeader(Octets octets, RaPacket& packet) {
  auto const* const whole = Net::headerAt<Header>(octets, 0);
  Icmp6RouterAdvertisementHdr const advertisement = whole ? whole->advertisement : paddedHeader(octets).advertisement;
  packet.curHopLimitIs(advertisement.curHopLimit);
  packet.managedConfigFlagIs(advertisement.managedConfigFlag());
  packet.otherConfigFlagIs(advertisement.otherConfigFlag());
  packet.reachableTimeIs(advertisement.reachableTime);
  packet.retransTimerIs(advertisement.retransTimer);
  packet.routerLifeTimeIs(advertisement.routerLifetime);
}

void takeMtu(Icmp6HdrMtuOption const& option, RaPacket& packet) {
  packet.mtuSpecifiedIs(true);
  packet.mtuIs(option.mtu);
}

void takePrefix(Icmp6HdrPrefixInfoOption const& option, RaPacket& packet) {
  Ip6AddrWithMask const prefix(Ip6Addr::fromBytes(option.prefix), option.prefixLength);
  RaPacketPrefixInfo const* const known = packet.prefixInfo().find(prefix);
  // An entry that equals the default one does not count as known: one of ::/0 without flags and lifetimes.
  if (known && *known != RaPacketPrefixInfo()) return;
  RaPacketPrefixInfo info(prefix);
  info.onLinkFlagIs(option.onLinkFlag());
  info.autoConfigFlagIs(option.autoAddressFlag());
  info.validLifetimeIs(option.validLifetime);
  info.preferredLifetimeIs(option.preferredLifetime);
  packet.prefixInfoIs(prefix, info);
}

/// False: there is an option of length 0, and what was read is worth nothing.
bool readOptions(Octets message, RaPacket& packet) {
  for (Net::OptionReader reader(message); reader.next();) {
    if (reader.length() == 0) return false;
    if (reader.type() == Icmp6HdrPrefixInfoOption::typeValue) {
      if (auto const* const option = reader.as<Icmp6HdrPrefixInfoOption>()) takePrefix(*option, packet);
    } else if (reader.type() == Icmp6HdrMtuOption::typeValue) {
      if (auto const* const option = reader.as<Icmp6HdrMtuOption>()) takeMtu(*option, packet);
    }
  }
  return true;
}

}  // namespace

RaPacket makeRaPacketType(IntfId intfId, Ptr<Ip6PktInfo> const& pktInfo) {
  TRACE_AT(utilsTrace, 8, at(539), "RouterAdvt::RaPacket RouterAdvt::makeRaPacketType(IntfId, const Ptr<Ip6PktInfo>&)",
           " for ", intfId);
  Pkt& pkt = *pktInfo->packet();
  RaPacket packet(intfId);
  packet.srcIp6AddrIs(pktInfo->sourceAddr());
  readHeader(headerOctetsOf(pkt), packet);
  if (!readOptions(messageOf(pkt), packet)) {
    TRACE_AT(utilsTrace, 3, at(588), "Router Advertisement msg. has option with length 0 ");
    packet = RaPacket(IntfId());
  }
  return packet;
}

}  // namespace RouterAdvt

#include <Ipv6RouterAdvt/RouterAdvtUtils/RaParser.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/UtilsTrace.h>
#include <RouterPlatform/Nd/Mtu.h>
#include <RouterPlatform/Nd/OptionReader.h>
#include <RouterPlatform/Nd/PrefixInfo.h>
#include <RouterPlatform/Nd/RaHeader.h>

#include <algorithm>
#include <array>

namespace RouterAdvt {

using Fwk::Octets;
using Net::RaHeader;

namespace {

// Line numbers in these messages are part of the interface: log readers match them.
constexpr int entryLine = 539;
constexpr int lengthZeroLine = 588;

constexpr Trace::Location at(int line) { return {utilsSource, line, "makeRaPacketType"}; }

/// From the message's first octet to the end of the data: the header is read whatever the message's length.
Octets headerOctetsOf(Pkt const& pkt) { return pkt.octets().subspan(pkt.icmp6Offset()); }

void readHeader(Octets octets, RaPacket& packet) {
  std::array<U8, RaHeader::size> padded;
  if (octets.size() < padded.size()) {  // what the data lacks is 0
    padded.fill(0);
    std::ranges::copy(octets, padded.begin());
    octets = padded;
  }
  RaHeader const header = *Net::takeRaHeader(octets, 0);
  packet.curHopLimitIs(header.curHopLimit);
  packet.managedConfigFlagIs(header.managedConfig);
  packet.otherConfigFlagIs(header.otherConfig);
  packet.routerLifeTimeIs(header.routerLifetime.count());
  packet.reachableTimeIs(header.reachableTime.count());
  packet.retransTimerIs(header.retransTimer.count());
}

void recordMtu(Net::Mtu const& mtu, RaPacket& packet) {
  packet.mtuSpecifiedIs(true);
  packet.mtuIs(mtu.octets);
}

void recordPrefix(Net::PrefixInfo const& option, RaPacket& packet) {
  Ip6AddrWithMask const prefix = option.prefix;  // a copy: fields that nobody asks for need no memory then
  RaPacketPrefixInfo const* const known = packet.prefixInfo().find(prefix);
  // An entry that equals the default one does not count as known: one of ::/0 without flags and lifetimes.
  if (known && *known != RaPacketPrefixInfo()) return;
  RaPacketPrefixInfo info(prefix);
  info.onLinkFlagIs(option.onLink);
  info.autoConfigFlagIs(option.autonomous);
  info.validLifetimeIs(option.validLifetime.count());
  info.preferredLifetimeIs(option.preferredLifetime.count());
  packet.prefixInfoIs(prefix, info);
}

/// False: there is an option of length 0, and what was read is worth nothing.
bool readOptions(Octets message, RaPacket& packet) {
  for (Net::OptionReader reader(message); reader.next();) {
    if (reader.length() == 0) return false;
    if (reader.type() == Net::Icmp6HdrPrefixInfoOption::typeValue) {
      if (auto const prefix = Net::takePrefixInfo(message, reader.offset())) recordPrefix(*prefix, packet);
    } else if (reader.type() == Net::Icmp6HdrMtuOption::typeValue) {
      if (auto const mtu = Net::takeMtu(message, reader.offset())) recordMtu(*mtu, packet);
    }
  }
  return true;
}

}  // namespace

RaPacket makeRaPacketType(IntfId intfId, Ptr<Ip6PktInfo> const& pktInfo) {
  TRACE_AT(utilsTrace, 8, at(entryLine),
           "RouterAdvt::RaPacket RouterAdvt::makeRaPacketType(IntfId, const Ptr<Ip6PktInfo>&)", " for ", intfId);
  Pkt const& pkt = *pktInfo->packet();
  RaPacket packet(intfId);
  packet.srcIp6AddrIs(pktInfo->sourceAddr());
  readHeader(headerOctetsOf(pkt), packet);
  if (!readOptions(pkt.icmp6Octets(), packet)) {
    TRACE_AT(utilsTrace, 3, at(lengthZeroLine), "Router Advertisement msg. has option with length 0 ");
    packet = RaPacket(IntfId());
  }
  return packet;
}

}  // namespace RouterAdvt

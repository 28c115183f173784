#include <RouterPlatform/Packet/Ip6PktInfo.h>

#include <RouterPlatform/Packet/EthernetHdr.h>
#include <RouterPlatform/Packet/FreeList.h>
#include <RouterPlatform/Packet/HeaderAt.h>
#include <RouterPlatform/Packet/LockIfThreaded.h>

#include <mutex>

namespace Net {

using Reason = Ip6PktInfo::Reason;
using Fwk::Octets;

namespace {

bool isTag(U16 etherType) { return etherType == EtherType::customerTag || etherType == EtherType::serviceTag; }

/// Finds where the IPv6 header of an Ethernet frame begins.
Reason locateIp6(Octets frame, U64& ip6Offset) {
  auto const* const ethernet = headerAt<EthernetHdr>(frame, 0);
  if (!ethernet) return Reason::truncated;
  U16 etherType = ethernet->etherType;
  ip6Offset = sizeof *ethernet;
  while (isTag(etherType)) {
    auto const* const tag = headerAt<EthernetTagHdr>(frame, ip6Offset);
    if (!tag) return Reason::truncated;
    etherType = tag->etherType;
    ip6Offset += sizeof *tag;
  }
  return etherType == EtherType::ip6 ? Reason::none : Reason::notIp6;
}

/// Finds the IPv6 header at the start of `packet`; none, or why the packet is of no use.
Reason findIp6Hdr(Octets packet, Ip6Hdr const*& header) {
  if (packet.empty()) return Reason::truncated;
  if (packet[0] >> 4 != Ip6Hdr::version6) return Reason::notIp6;
  header = headerAt<Ip6Hdr>(packet, 0);
  if (!header || header->payloadLength > packet.size() - sizeof *header) return Reason::truncated;
  return header->payloadLength == 0 ? Reason::emptyPayload : Reason::none;
}

/// Passes over the extension headers at the start of `payload` and finds where the ICMPv6 message begins. Every round
/// goes on by 8 octets at least.
Reason locateIcmp6(Octets payload, U8 nextHeader, U64& icmp6Offset) {
  icmp6Offset = 0;
  while (nextHeader != Ip6NextHeader::icmp6) {
    switch (nextHeader) {
      case Ip6NextHeader::hopByHop:
      case Ip6NextHeader::routing:
      case Ip6NextHeader::destination:
        break;
      case Ip6NextHeader::fragment:
        return Reason::fragment;
      default:
        return Reason::notIcmp6;
    }
    auto const* const extension = headerAt<Ip6ExtensionHdr>(payload, icmp6Offset);
    if (!extension) return Reason::badExtension;
    U64 const size = extension->size();
    if (size > payload.size() - icmp6Offset) return Reason::badExtension;
    if (nextHeader == Ip6NextHeader::routing && extension->segmentsLeft != 0) return Reason::segmentsLeft;
    nextHeader = extension->nextHeader;
    icmp6Offset += size;
  }
  return payload.size() - icmp6Offset < sizeof(Icmp6Hdr) ? Reason::messageTooShort : Reason::none;
}

/// A packet with a copy of `octets`, whose ICMPv6 message, from `icmp6Offset` on, ends where they end.
Fwk::Ptr<Pkt> copied(Octets octets, U64 icmp6Offset, PktManager& manager) {
  auto pkt = manager.newPkt();
  if (!pkt) return nullptr;
  pkt->dataIs(octets);
  pkt->icmp6MsgIs(icmp6Offset, octets.size() - icmp6Offset);
  return pkt;
}

/// From octets in which the IPv6 header begins at `ip6Offset`.
Ip6PktInfo::Result fromIp6At(Octets octets, U64 ip6Offset, PktManager& manager) {
  Ip6Hdr const* header = nullptr;
  Octets const packet = octets.subspan(ip6Offset);
  if (Reason const reason = findIp6Hdr(packet, header); reason != Reason::none) return {nullptr, reason};
  U64 icmp6Offset = 0;
  Octets const payload = packet.subspan(sizeof *header, header->payloadLength);
  if (Reason const reason = locateIcmp6(payload, header->nextHeader, icmp6Offset); reason != Reason::none)
    return {nullptr, reason};

  U64 const payloadOffset = ip6Offset + sizeof *header;
  if (payloadOffset + payload.size() > Pkt::maxSize) return {nullptr, Reason::messageTooLong};  // behind many tags
  auto pkt = copied(octets.first(payloadOffset + payload.size()), payloadOffset + icmp6Offset, manager);
  if (!pkt) return {nullptr, Reason::noPacket};
  pkt->ip6HdrOffsetIs(ip6Offset);
  return {Ip6PktInfo::make(std::move(pkt), Ip6Addr::fromBytes(header->sourceAddress),
                           Ip6Addr::fromBytes(header->destinationAddress), header->hopLimit),
          Reason::none};
}

}  // namespace

/// Descriptors at rest. It never ends: descriptors may be released until the process does.
struct Ip6PktInfo::Pool {
  static Pool& instance() {
    static Pool& pool = *new Pool;
    return pool;
  }
  std::mutex mutex;  // guards the list
  FreeList<Ip6PktInfo> free{PktManager::keptPktsMax};
};

Ip6PktInfo::Result Ip6PktInfo::fromEthernetFrame(Octets frame, PktManager& manager) {
  U64 ip6Offset = 0;
  if (Reason const reason = locateIp6(frame, ip6Offset); reason != Reason::none) return {nullptr, reason};
  return fromIp6At(frame, ip6Offset, manager);
}

Ip6PktInfo::Result Ip6PktInfo::fromIp6Packet(Octets packet, PktManager& manager) {
  return fromIp6At(packet, 0, manager);
}

Ip6PktInfo::Result Ip6PktInfo::fromIcmp6Message(Octets message, Ip6Addr const& sourceAddr, Ip6Addr const& destAddr,
                                                U8 hopLimit, PktManager& manager) {
  if (message.size() < sizeof(Icmp6Hdr)) return {nullptr, Reason::messageTooShort};
  if (message.size() > Pkt::maxSize) return {nullptr, Reason::messageTooLong};
  auto pkt = copied(message, 0, manager);
  if (!pkt) return {nullptr, Reason::noPacket};
  return {make(std::move(pkt), sourceAddr, destAddr, hopLimit), Reason::none};
}

Fwk::Ptr<Ip6PktInfo> Ip6PktInfo::make(Fwk::Ptr<Pkt> packet, Ip6Addr const& sourceAddr, Ip6Addr const& destAddr,
                                      U8 hopLimit) {
  Pool& pool = Pool::instance();
  Ip6PktInfo* info = nullptr;
  {
    auto const lock = lockIfThreaded(pool.mutex);
    info = pool.free.take();
  }
  if (!info) info = new Ip6PktInfo;
  info->packet_ = std::move(packet);
  info->sourceAddr_ = sourceAddr;
  info->destAddr_ = destAddr;
  info->hopLimit_ = hopLimit;
  return info;
}

void Ip6PktInfo::onZeroReferences() noexcept {
  if (!releaseLastReference()) return;
  packet_ = nullptr;
  Pool& pool = Pool::instance();
  bool kept = false;
  {
    auto const lock = lockIfThreaded(pool.mutex);
    kept = pool.free.put(this);
  }
  if (!kept) delete this;
}

char const* reasonText(Reason reason) noexcept {
  switch (reason) {
    case Reason::none:
      return "none";
    case Reason::truncated:
      return "truncated: fewer octets than the headers say";
    case Reason::notIp6:
      return "not IPv6";
    case Reason::emptyPayload:
      return "IPv6 payload length 0";
    case Reason::fragment:
      return "fragment";
    case Reason::badExtension:
      return "an extension header passes the end of the packet";
    case Reason::segmentsLeft:
      return "a routing header with segments left";
    case Reason::notIcmp6:
      return "not ICMPv6";
    case Reason::messageTooShort:
      return "ICMPv6 message shorter than its header";
    case Reason::messageTooLong:
      return "ICMPv6 message longer than any packet";
    case Reason::noPacket:
      return "no packet: the limit of the packet manager is reached";
  }
  return "unknown";
}

}  // namespace Net

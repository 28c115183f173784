#include <RouterPlatform/Nd/RaHeader.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Packet/EthernetHdr.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>
#include <programs/common/frames/BlockWriter.h>
#include <programs/common/frames/FrameDescriber.h>
#include <programs/common/frames/OptionDescriber.h>

#include <algorithm>

namespace Tool {

namespace {

using Fwk::U16;
using Fwk::U32;
using Fwk::U8;
using Net::EthAddr;
using Net::Ip6Addr;

/// What the headers below say about a message.
struct Ip6Envelope {
  Net::Ip6Hdr header;
  bool complete = true;  ///< all octets that the header speaks of are there
};

void describeHex(FrameDescription& description, std::string title, PlacedOctets octets, std::string oddity = {}) {
  if (octets.empty() && oddity.empty()) return;
  BlockWriter block(description, std::move(title), octets);
  block.hexField(0, "data");
  if (!oddity.empty()) block.oddity(std::move(oddity));
}

std::string etherTypeText(U16 type) {
  std::string const number = hexText(type, 4);
  switch (type) {
    case Net::EtherType::ip6:
      return number + " (IPv6)";
    case Net::EtherType::customerTag:
      return number + " (802.1Q tag)";
    case Net::EtherType::serviceTag:
      return number + " (802.1ad tag)";
    default:
      return number;
  }
}

std::string nextHeaderText(U8 value) {
  std::string const number = std::to_string(value);
  switch (value) {
    case Net::Ip6NextHeader::hopByHop:
      return number + " (hop-by-hop options)";
    case Net::Ip6NextHeader::routing:
      return number + " (routing)";
    case Net::Ip6NextHeader::fragment:
      return number + " (fragment)";
    case Net::Ip6NextHeader::icmp6:
      return number + " (ICMPv6)";
    case Net::Ip6NextHeader::destination:
      return number + " (destination options)";
    default:
      return number;
  }
}

std::string groupText(Ip6Addr const& address) {
  std::string const text = address.toString();
  if (text == "ff02::1") return text + " (all nodes)";
  if (text == "ff02::2") return text + " (all routers)";
  return text;
}

/// A number for which 0 stands for "unspecified by this router", RFC 4861 4.2.
std::string orUnspecified(U32 value, std::string const& unit) {
  return std::to_string(value) + unit + (value == 0 ? " (unspecified)" : "");
}

void describeRouterAdvtHeader(BlockWriter& block, Net::RaHeader const& ra) {
  auto const flag = [&](bool set, char const* name) { return std::string(set ? " " : " not ") + name; };
  block.field(4, "cur hop limit", orUnspecified(ra.curHopLimit, ""));
  block.field(5, "flags",
              hexText(block.octets()[5], 2) + flag(ra.managedConfig, "managed,") + flag(ra.otherConfig, "other") +
                  (ra.homeAgent ? ", home agent" : ""));
  block.field(5, "router preference", preferenceText(ra.routerPreference));
  U16 const lifetime = ra.routerLifetime.count();
  block.field(6, "router lifetime", lifetimeText(lifetime) + (lifetime == 0 ? " (not a default router)" : ""));
  block.field(8, "reachable time", orUnspecified(ra.reachableTime.count(), " ms"));
  block.field(12, "retrans timer", orUnspecified(ra.retransTimer.count(), " ms"));
  block.mustBeZero("reserved flags", ra.reserved);
  using Preference = Net::Icmp6RouterAdvtRouterPreferenceType;
  if (lifetime == 0 && ra.routerPreference != Preference::medium)
    block.oddity("a preference with router lifetime 0; receivers ignore it");
  else if (ra.routerPreference == Preference::reserved_)
    block.oddity("the preference is the reserved one; receivers take it for medium");
}

/// What RFC 4861 6.1.2 asks of an advertisement.
void checkEnvelope(BlockWriter& block, Net::Icmp6Hdr const& icmp6, Ip6Envelope const& envelope) {
  if (!Ip6Addr::fromBytes(envelope.header.sourceAddress).isLinkLocal())
    block.oddity("the source is not link-local; receivers drop the message");
  if (envelope.header.hopLimit != Net::Icmp6Hdr::neighborDiscoveryHopLimit)
    block.oddity("the hop limit is not 255; receivers drop the message");
  if (icmp6.code != 0) block.oddity("the code is not 0; receivers drop the message");
}

std::string checksumText(BlockWriter& block, PlacedOctets const& message, Net::Icmp6Hdr const& icmp6,
                         Ip6Envelope const& envelope) {
  std::string const text = hexText(icmp6.checksum, 4);
  if (!envelope.complete) return text + " (not checked: octets are missing)";
  Net::IpChecksumAccumulator sum;
  sum.add(Net::Icmp6PseudoHdr::of(envelope.header.sourceAddress, envelope.header.destinationAddress,
                                  static_cast<U32>(message.size())));
  Net::Icmp6Hdr zeroed = icmp6;
  zeroed.checksum = U16{0};
  sum.add(&zeroed, sizeof zeroed);
  sum.add(message.from(sizeof zeroed).span().data(), message.size() - sizeof zeroed);
  U16 const expected = sum.result().field();
  if (icmp6.checksum == expected) return text + " (good)";
  block.oddity("the checksum should be " + hexText(expected, 4) + "; receivers drop the message");
  return text + " (bad)";
}

void describeIcmp6(FrameDescription& description, PlacedOctets message, Ip6Envelope const& envelope) {
  auto const icmp6 = message.header<Net::Icmp6Hdr>();
  if (!icmp6) return describeHex(description, "ICMPv6 message", message, "it is shorter than an ICMPv6 header");
  bool const isAdvt = icmp6->type == Net::Icmp6Hdr::routerAdvertisement;
  {
    BlockWriter block(description, isAdvt ? "Router Advertisement, RFC 4861 4.2" : "ICMPv6 message, RFC 4443 2.1",
                      message.from(0, isAdvt ? Net::RaHeader::size : message.size()));
    block.field(0, "type", std::to_string(icmp6->type) + (isAdvt ? " (Router Advertisement)" : ""));
    block.field(1, "code", std::to_string(icmp6->code));
    block.field(2, "checksum", checksumText(block, message, *icmp6, envelope));
    if (!isAdvt) return block.hexField(sizeof(Net::Icmp6Hdr), "data");
    checkEnvelope(block, *icmp6, envelope);
    auto const ra = Net::takeRaHeader(message.span(), 0);
    if (!ra) {
      block.hexField(sizeof(Net::Icmp6Hdr), "data");
      return block.oddity("an advertisement has at least " + std::to_string(Net::RaHeader::size) +
                          " octets; receivers drop the message");
    }
    describeRouterAdvtHeader(block, *ra);
  }
  describeOptions(description, message);
}

/// Passes over the extension headers that a message may stand behind.
void describePayload(FrameDescription& description, U8 nextHeader, PlacedOctets payload, Ip6Envelope const& envelope) {
  while (nextHeader == Net::Ip6NextHeader::hopByHop || nextHeader == Net::Ip6NextHeader::routing ||
         nextHeader == Net::Ip6NextHeader::destination) {
    auto const extension = payload.header<Net::Ip6ExtensionHdr>();
    std::size_t const size = extension ? extension->size() : 0;
    if (!extension || size > payload.size())
      return describeHex(description, "Extension header", payload, "it passes the end of the packet");
    BlockWriter block(description, "Extension header, RFC 8200 4: " + nextHeaderText(nextHeader),
                      payload.from(0, size));
    block.field(0, "next header", nextHeaderText(extension->nextHeader));
    block.field(1, "length", std::to_string(extension->hdrExtLen) + " (" + std::to_string(size) + " octets)");
    block.hexField(2, "data");
    nextHeader = extension->nextHeader;
    payload = payload.from(size);
  }
  if (nextHeader == Net::Ip6NextHeader::icmp6) return describeIcmp6(description, payload, envelope);
  describeHex(description, "Payload, no ICMPv6: " + nextHeaderText(nextHeader), payload);
}

void describeIp6(FrameDescription& description, PlacedOctets packet) {
  auto const ip6 = packet.header<Net::Ip6Hdr>();
  if (!ip6) return describeHex(description, "IPv6 header", packet, "it is shorter than an IPv6 header");
  PlacedOctets const present = packet.from(sizeof *ip6);
  PlacedOctets const payload = present.from(0, ip6->payloadLength);
  bool const complete = payload.size() == ip6->payloadLength;
  U32 const first = ip6->versionTrafficClassFlowLabel;
  {
    BlockWriter block(description, "IPv6 header, RFC 8200 3", packet.from(0, sizeof *ip6));
    block.field(0, "version", std::to_string(ip6->version()));
    block.field(0, "traffic class", hexText(first >> 20 & 0xff, 2));
    block.field(1, "flow label", hexText(first & 0xfffff, 5));
    block.field(4, "payload length", std::to_string(ip6->payloadLength) + " octets");
    block.field(6, "next header", nextHeaderText(ip6->nextHeader));
    block.field(7, "hop limit", std::to_string(ip6->hopLimit));
    block.field(8, "source", addressText(ip6->sourceAddress));
    block.field(24, "destination", groupText(Ip6Addr::fromBytes(ip6->destinationAddress)));
    if (ip6->version() != Net::Ip6Hdr::version6) block.oddity("the version is not 6");
    if (!complete)
      block.oddity("the packet is cut short: " + std::to_string(present.size()) + " octets follow the header");
  }
  describePayload(description, ip6->nextHeader, payload, {*ip6, complete});
  describeHex(description, "Octets behind the packet", present.from(payload.size()));
}

void describeFrame(FrameDescription& description, PlacedOctets frame) {
  auto const ethernet = frame.header<Net::EthernetHdr>();
  if (!ethernet) return describeHex(description, "Ethernet header", frame, "it is shorter than an Ethernet header");
  std::size_t at = sizeof *ethernet;
  U16 type = ethernet->etherType;
  {
    BlockWriter block(description, "Ethernet header, RFC 2464 3", frame.from(0, at));
    block.field(0, "destination", EthAddr::fromBytes(ethernet->destination).toString());
    block.field(6, "source", EthAddr::fromBytes(ethernet->source).toString());
    block.field(12, "type", etherTypeText(type));
  }
  while (type == Net::EtherType::customerTag || type == Net::EtherType::serviceTag) {
    auto const tag = frame.header<Net::EthernetTagHdr>(at);
    if (!tag) return describeHex(description, "802.1Q tag", frame.from(at), "it is cut short");
    BlockWriter block(description, "802.1Q tag", frame.from(at, sizeof *tag));
    block.field(0, "vlan", std::to_string(tag->tagControl & 0xfff));
    block.field(0, "priority", std::to_string(tag->tagControl >> 13));
    type = tag->etherType;
    block.field(2, "type", etherTypeText(type));
    at += sizeof *tag;
  }
  if (type == Net::EtherType::ip6) return describeIp6(description, frame.from(at));
  describeHex(description, "Payload, no IPv6", frame.from(at));
}

}  // namespace

FrameDescription describeEthernetFrame(std::span<U8 const> frame) {
  FrameDescription description;
  describeFrame(description, PlacedOctets(frame));
  return description;
}

FrameDescription describeIp6Packet(std::span<U8 const> packet) {
  FrameDescription description;
  describeIp6(description, PlacedOctets(packet));
  return description;
}

}  // namespace Tool

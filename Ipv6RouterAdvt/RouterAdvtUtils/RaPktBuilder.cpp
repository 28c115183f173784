#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertDraft.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertisedPrefixes.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/BootUrl.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/DnsGroups.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RaPktBuilder.h>
#include <RouterPlatform/Nd/LinkLayerAddr.h>
#include <RouterPlatform/Nd/Mtu.h>
#include <RouterPlatform/Nd/RaHeader.h>
#include <RouterPlatform/Packet/EthernetHdr.h>
#include <RouterPlatform/Packet/Icmp6Hdr.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>
#include <RouterPlatform/Packet/PktManager.h>
#include <RouterPlatform/Trace/Assert.h>

#include <algorithm>
#include <cstddef>

namespace RouterAdvt {

using Net::EthernetHdr;
using Net::FrameWriter;
using Net::Ip6Hdr;
using Net::Milliseconds32;
using Net::Seconds16;
using Preference = Icmp6RouterAdvtRouterPreferenceType;

namespace {

/// What every frame begins with.
struct FrameHead {
  EthernetHdr ethernet;
  Ip6Hdr ip6;
};
constexpr U64 ip6Offset = offsetof(FrameHead, ip6);
constexpr U64 icmp6Offset = sizeof(FrameHead);
static_assert(icmp6Offset == 54 && alignof(FrameHead) == 1);

/// Headers, source link-layer address option and MTU option: what every frame has room for.
constexpr U64 fixedPartSize = AdvertRequest::mtuMin();
static_assert(fixedPartSize == icmp6Offset + Net::RaHeader::size + sizeof(Net::Icmp6HdrLinkLayerAddrOption) +
                                   sizeof(Net::Icmp6HdrMtuOption));

/// The assertions and messages about a request bear the name of the function that log readers know.
constexpr Trace::Location inMakeIp6RaPkt(int line = __builtin_LINE()) { return {utilsSource, line, "makeIp6RaPkt"}; }

/// One advertisement in the making.
class RaPktBuilder {
 public:
  RaPktBuilder(AdvertRequest const& request, FrameWriter const& out, LeftOut* leftOut)
      : request_(request), config_(*request.intfConfig), draft_(out, leftOut) {}

  U64 msgLen() const { return draft_.msgLen(); }

  void writeAll() {
    writeLinkAndNetworkHeaders();
    writeAdvertisementHeader();
    writeSourceLinkLayerAddress();
    writeMtu();
    writePrefixes();
    writeDns();
    writeNetworkBoot();
    DRAFT_TRACE(draft_, 8, "Ipv6 payload length ", payloadLength());
  }
  U16 payloadLength() const { return static_cast<U16>(msgLen() - icmp6Offset); }

 private:
  void writeLinkAndNetworkHeaders() {
    auto* const head = draft_.out.append<FrameHead>();
    ASSERT_AT(head, inMakeIp6RaPkt());
    EthernetHdr& ethernet = head->ethernet;
    request_.dstMac.copyTo(ethernet.destination);
    request_.srcMac.copyTo(ethernet.source);
    ethernet.etherType = Net::EtherType::ip6;
    Ip6Hdr& ip6 = head->ip6;
    ip6.versionIs(Ip6Hdr::version6);
    ip6.payloadLength = 0;  // not known yet
    ip6.nextHeader = Net::Ip6NextHeader::icmp6;
    ip6.hopLimit = Net::Icmp6Hdr::neighborDiscoveryHopLimit;
    request_.srcAddr.copyTo(ip6.sourceAddress);
    request_.dstAddr.copyTo(ip6.destinationAddress);
    DRAFT_TRACE(draft_, 8, "offset of icmp6Hdr ", msgLen());
  }

  void writeAdvertisementHeader() {
    bool const withLifetime = request_.advertiseLifetime && !request_.deathPacket &&
                              (!request_.useVirtualRouter || request_.virtualRouterStatus);
    if (!withLifetime) DRAFT_TRACE(draft_, 8, "Sending pkt with routerLifetime 0");
    U16 const routerLifetime = withLifetime ? static_cast<U16>(config_.raLifetime()) : U16{0};  // the low 16 bits
    U32 const retransTimer = request_.intfStatus->nsRetransmitInterval();
    DRAFT_TRACE(draft_, 8, "ip6IntfStatusPtr->nsRetransmitInterval(): ", retransTimer);
    put(draft_.out, Net::RaHeader{.curHopLimit = static_cast<U8>(config_.validHopLimit()),
                                  .managedConfig = config_.managedConfigFlag(),
                                  .otherConfig = config_.otherConfigFlag(),
                                  .routerPreference = preferenceFor(routerLifetime),
                                  .routerLifetime = Seconds16(routerLifetime),
                                  .reachableTime = Milliseconds32(config_.reachableTime()),
                                  .retransTimer = Milliseconds32(retransTimer)});
  }

  Preference preferenceFor(U16 routerLifetime) const {
    DRAFT_TRACE(draft_, 8,
                "intfRouterAdvtConfigPtr->routerPreferenceDefault(): ", IntfConfig::routerPreferenceDefault());
    Preference const preference = config_.routerPreference();
    ASSERT_AT_TEXT(preference != Preference::reserved_, Trace::Location::here(utilsSource),
                   "intfRouterAdvtConfigPtr->routerPreference() != Icmp6RouterAdvtRouterPreferenceType::reserved_");
    if (routerLifetime > 0) return preference;
    DRAFT_TRACE(draft_, 8, "Set routerPreference to Zero");
    return Preference::low;  // both bits, despite what the message says
  }

  void writeSourceLinkLayerAddress() {
    DRAFT_TRACE(draft_, 8, "Adding Src Link Layer option: ");
    put(draft_.out, Net::LinkLayerAddr{.address = request_.srcMac});
  }

  void writeMtu() {
    if (config_.raMtuSuppress()) return;
    DRAFT_TRACE(draft_, 8, "Adding MTU option: ", request_.mtu);
    put(draft_.out, Net::Mtu{.octets = static_cast<U32>(request_.mtu)});
    DRAFT_TRACE(draft_, 8, "Length after MTU option: ", msgLen());
  }

  void writePrefixes() {
    if (request_.useVirtualRouter) {
      if (request_.virtualRouterStatus)
        copyVirtualRouterPrefixesToRaMsgBuf(draft_, config_, *request_.virtualRouterStatus);
    } else if (config_.prefixesToAdvertise()) {
      copyConfiguredPrefixesToRaMsgBuf(draft_, config_);
    } else {
      copyAddressPrefixesToRaMsgBuf(draft_, config_, *request_.intfStatus);
    }
    DRAFT_TRACE(draft_, 8, "Length after prefix option: ", msgLen());
  }

  void writeDns() {
    if (!config_.dnsServers().empty()) copyDNSServersToRaMsgBuf(draft_, config_);
    DRAFT_TRACE(draft_, 3, "After Recursive DNS Server option: ", msgLen());
    if (!config_.dnsSuffixes().empty()) copyDNSSuffixesToRaMsgBuf(draft_, config_);
    DRAFT_TRACE(draft_, 3, "After DNS Suffix Search List option: ", msgLen());
  }

  void writeNetworkBoot() {
    if (!config_.networkBootFileUrl().empty()) copyNetworkBootOptionToRaMsgBuf(draft_, config_.networkBootFileUrl());
    DRAFT_TRACE(draft_, 3, "After Network Boot option: ", msgLen());
  }

  AdvertRequest const& request_;
  IntfConfig const& config_;
  AdvertDraft draft_;
};

}  // namespace

Ptr<Pkt> build(AdvertRequest const& request, LeftOut* leftOut) {
  S32 const mtu = request.mtu;
  ASSERT_AT(mtu >= static_cast<S32>(fixedPartSize), inMakeIp6RaPkt());
  ASSERT_AT_TEXT(request.intfStatus, inMakeIp6RaPkt(), "ip6IntfStatusPtr");
  ASSERT_AT_TEXT(request.intfConfig, inMakeIp6RaPkt(), "intfRouterAdvtConfigPtr");
  U64 const pktBufSize = static_cast<U64>(std::min(mtu, AdvertRequest::frameSizeMax()));
  Ptr<Pkt> pkt = Net::globalPktManager().newPkt();
  if (!pkt) TRACE_AT(utilsTrace, 2, inMakeIp6RaPkt(), "Failed to allocate new packet object");
  ASSERT_AT(pkt, inMakeIp6RaPkt());
  TRACE_AT(utilsTrace, 8, inMakeIp6RaPkt(), "create RA raw packet: smac dmac ", request.srcMac, " ", request.dstMac,
           " sa da ", request.srcAddr, " ", request.dstAddr);

  U8* const buf = pkt->reserveHeadData(pktBufSize);
  // A search list may end in the packet's tail room.
  RaPktBuilder builder(request, FrameWriter({buf, pktBufSize + searchListSlack}, 0, pktBufSize), leftOut);
  builder.writeAll();
  U64 const msgLen = builder.msgLen();
  if (msgLen <= pktBufSize)
    pkt->trimZeroTail(pktBufSize - msgLen);
  else
    pkt->trimTailData(static_cast<Fwk::S64>(pktBufSize) - static_cast<Fwk::S64>(msgLen));
  pkt->ip6HdrOffsetIs(ip6Offset);
  pkt->icmp6MsgIs(icmp6Offset, msgLen - icmp6Offset);
  pkt->ip6Hdr()->payloadLength = builder.payloadLength();
  setIcmp6CheckSum(*pkt->ip6Hdr(), *pkt->icmp6Hdr());
  return pkt;
}

Ptr<Pkt> makeIp6RaPkt(Ip6Addr const& srcAddr, Ip6Addr const& dstAddr, EthAddr const& srcMac, EthAddr const& dstMac,
                      Ptr<Ip6::IntfStatus const> const& ip6IntfStatusPtr,
                      Ptr<IntfConfig const> const& intfRouterAdvtConfigPtr, bool advertiseLifetime, S32 mtu,
                      bool useVirtualRouter, Ptr<VirtualRouterStatusV6 const> const& virtualRouterStatus, IntfId,
                      bool deathPacket) {
  return build({.srcAddr = srcAddr,
                .dstAddr = dstAddr,
                .srcMac = srcMac,
                .dstMac = dstMac,
                .intfStatus = ip6IntfStatusPtr,
                .intfConfig = intfRouterAdvtConfigPtr,
                .advertiseLifetime = advertiseLifetime,
                .mtu = mtu,
                .useVirtualRouter = useVirtualRouter,
                .virtualRouterStatus = virtualRouterStatus,
                .deathPacket = deathPacket});
}

}  // namespace RouterAdvt

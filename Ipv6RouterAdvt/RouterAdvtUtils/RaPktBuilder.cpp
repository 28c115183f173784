#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertisedPrefixes.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/DnsSearchListOption.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/NetworkBootOption.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/OptionWriter.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RaPktBuilder.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RecursiveDnsServerOption.h>
#include <RouterPlatform/Nd/Icmp6HdrOptions.h>
#include <RouterPlatform/Nd/Icmp6RouterAdvertisementHdr.h>
#include <RouterPlatform/Packet/EthernetHdr.h>
#include <RouterPlatform/Packet/Icmp6Hdr.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>
#include <RouterPlatform/Packet/PktManager.h>
#include <RouterPlatform/Trace/Assert.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace RouterAdvt {

using Net::EthernetHdr;
using Net::Icmp6Hdr;
using Net::Icmp6HdrLinkLayerAddrOption;
using Net::Icmp6HdrMtuOption;
using Net::Icmp6RouterAdvertisementHdr;
using Net::Ip6Hdr;

namespace {

constexpr S32 pktBufSizeMax = 1536;

/// What every frame begins with.
struct FrameHead {
  EthernetHdr ethernet;
  Ip6Hdr ip6;
  Icmp6Hdr icmp6;
  Icmp6RouterAdvertisementHdr advertisement;
  Icmp6HdrLinkLayerAddrOption sourceLinkLayerAddr;
};
static_assert(sizeof(FrameHead) == 78 && alignof(FrameHead) == 1);

constexpr U64 ip6Offset = offsetof(FrameHead, ip6);
constexpr U64 icmp6Offset = offsetof(FrameHead, icmp6);
constexpr U64 fixedPartSize = sizeof(FrameHead) + sizeof(Icmp6HdrMtuOption);

/// One advertisement in the making: the frame's buffer and how far it is written.
class RaPktBuilder {
 public:
  RaPktBuilder(U8* buf, U64 pktBufSize, Ip6::IntfStatus const& ip6IntfStatus, Ptr<IntfConfig const> const& intfConfig)
      : buf_(buf), pktBufSize_(pktBufSize), ip6IntfStatus_(ip6IntfStatus), intfConfig_(intfConfig) {}

  U64 msgLen() const { return msgLen_; }

  void writeLinkAndNetworkHeaders(Ip6Addr const& srcAddr, Ip6Addr const& dstAddr, EthAddr const& srcMac,
                                  EthAddr const& dstMac) {
    EthernetHdr& ethernet = head().ethernet;
    dstMac.copyTo(ethernet.destination);
    srcMac.copyTo(ethernet.source);
    ethernet.etherType = Net::EtherType::ip6;
    Ip6Hdr& ip6 = head().ip6;
    ip6.versionIs(Ip6Hdr::version6);
    ip6.nextHeader = Net::Ip6NextHeader::icmp6;
    ip6.hopLimit = 255;  // RFC 4861 4.2
    srcAddr.copyTo(ip6.sourceAddress);
    dstAddr.copyTo(ip6.destinationAddress);
    UTILS_TRACE(8, "offset of icmp6Hdr ", icmp6Offset);
  }

  void writeAdvertisementHeader(bool withLifetime) {
    Icmp6Hdr& icmp6 = head().icmp6;
    icmp6.type = Icmp6Hdr::routerAdvertisement;
    icmp6.code = 0;
    icmp6.checksum = 0;
    Icmp6RouterAdvertisementHdr& advertisement = head().advertisement;
    advertisement.curHopLimit = static_cast<U8>(intfConfig_->validHopLimit());
    if (!withLifetime) UTILS_TRACE(8, "Sending pkt with routerLifetime 0");
    U16 const routerLifetime = withLifetime ? static_cast<U16>(intfConfig_->raLifetime()) : U16{0};  // the low 16 bits
    advertisement.routerLifetime = routerLifetime;
    advertisement.reachableTime = intfConfig_->reachableTime();
    U32 const retransTimer = ip6IntfStatus_.nsRetransmitInterval();
    advertisement.retransTimer = retransTimer;
    UTILS_TRACE(8, "ip6IntfStatusPtr->nsRetransmitInterval(): ", retransTimer);
    writeFlags(advertisement, routerLifetime);
  }

  void writeSourceLinkLayerAddress(EthAddr const& srcMac) {
    UTILS_TRACE(8, "Adding Src Link Layer option: ");
    Icmp6HdrLinkLayerAddrOption& option = head().sourceLinkLayerAddr;
    option.type = Icmp6HdrLinkLayerAddrOption::sourceTypeValue;
    option.length = sizeof option / 8;
    srcMac.copyTo(option.linkLayerAddress);
  }

  void writeMtu(S32 mtu) {
    if (intfConfig_->raMtuSuppress()) return;
    UTILS_TRACE(8, "Adding MTU option: ", mtu);
    auto& option = appendOption<Icmp6HdrMtuOption>(buf_, msgLen_);
    option.reserved = 0;
    option.mtu = static_cast<U32>(mtu);
    UTILS_TRACE(8, "Length after MTU option: ", msgLen_);
  }

  void writePrefixes(bool useVirtualRouter, VirtualRouterStatusV6 const* virtualRouterStatus) {
    if (useVirtualRouter) {
      if (virtualRouterStatus)
        copyVirtualRouterPrefixesToRaMsgBuf(buf_, msgLen_, pktBufSize_, *intfConfig_, *virtualRouterStatus);
    } else if (intfConfig_->prefixesToAdvertise()) {
      copyConfiguredPrefixesToRaMsgBuf(buf_, msgLen_, pktBufSize_, *intfConfig_);
    } else {
      copyAddressPrefixesToRaMsgBuf(buf_, msgLen_, pktBufSize_, *intfConfig_, ip6IntfStatus_);
    }
    UTILS_TRACE(8, "Length after prefix option: ", msgLen_);
  }

  void writeDns() {
    if (!intfConfig_->dnsServers().empty())
      copyDNSServersWithSameLifeTimeToRaMsgBuf(buf_, msgLen_, pktBufSize_, intfConfig_);
    UTILS_TRACE(3, "After Recursive DNS Server option: ", msgLen_);
    if (!intfConfig_->dnsSuffixes().empty()) copyDNSSuffixesToRaMsgBuf(buf_, msgLen_, pktBufSize_, intfConfig_);
    UTILS_TRACE(3, "After DNS Suffix Search List option: ", msgLen_);
  }

  void writeNetworkBoot() {
    if (!intfConfig_->networkBootFileUrl().empty())
      copyNetworkBootOptionToRaMsgBuf(buf_, msgLen_, pktBufSize_, intfConfig_->networkBootFileUrl());
    UTILS_TRACE(3, "After Network Boot option: ", msgLen_);
  }

  void writePayloadLength() {
    U16 const payloadLength = static_cast<U16>(msgLen_ - icmp6Offset);
    UTILS_TRACE(8, "Ipv6 payload length ", payloadLength);
    head().ip6.payloadLength = payloadLength;
  }

  /// Behind the frame there are zeros, as behind every reservation.
  void zeroTailRoom() {
    if (msgLen_ < pktBufSize_) std::memset(buf_ + msgLen_, 0, Pkt::minTailRoom);
  }

 private:
  FrameHead& head() { return *reinterpret_cast<FrameHead*>(buf_); }

  void writeFlags(Icmp6RouterAdvertisementHdr& advertisement, U16 routerLifetime) {
    unsigned flags = 0;
    if (intfConfig_->managedConfigFlag()) flags |= Icmp6RouterAdvertisementHdr::managedConfigBit;
    if (intfConfig_->otherConfigFlag()) flags |= Icmp6RouterAdvertisementHdr::otherConfigBit;
    UTILS_TRACE(8, "intfRouterAdvtConfigPtr->routerPreferenceDefault(): ", IntfConfig::routerPreferenceDefault());
    auto const preference = intfConfig_->routerPreference();
    ASSERT_AT_TEXT(preference != Icmp6RouterAdvtRouterPreferenceType::reserved_, Trace::Location::here(utilsSource),
                   "intfRouterAdvtConfigPtr->routerPreference() != Icmp6RouterAdvtRouterPreferenceType::reserved_");
    if (routerLifetime == 0) {
      UTILS_TRACE(8, "Set routerPreference to Zero");
      flags |= Icmp6RouterAdvertisementHdr::routerPreferenceBits;  // both, despite what the message says
    } else {
      flags |= static_cast<unsigned>(preference) << Icmp6RouterAdvertisementHdr::routerPreferenceShift;
    }
    advertisement.flags = static_cast<U8>(flags);
  }

  U8* const buf_;
  U64 const pktBufSize_;
  Ip6::IntfStatus const& ip6IntfStatus_;
  Ptr<IntfConfig const> const& intfConfig_;
  U64 msgLen_ = sizeof(FrameHead);
};

}  // namespace

Ptr<Pkt> makeIp6RaPkt(Ip6Addr const& srcAddr, Ip6Addr const& dstAddr, EthAddr const& srcMac, EthAddr const& dstMac,
                      Ptr<Ip6::IntfStatus const> const& ip6IntfStatusPtr,
                      Ptr<IntfConfig const> const& intfRouterAdvtConfigPtr, bool advertiseLifetime, S32 mtu,
                      bool useVirtualRouter, Ptr<VirtualRouterStatusV6 const> const& virtualRouterStatus, IntfId,
                      bool deathPacket) {
  ASSERT_AT(mtu >= static_cast<S32>(fixedPartSize), Trace::Location::here(utilsSource));
  U64 const pktBufSize = static_cast<U64>(std::min(mtu, pktBufSizeMax));
  Ptr<Pkt> pkt = Net::globalPktManager().newPkt();
  if (!pkt) UTILS_TRACE(2, "Failed to allocate new packet object");
  ASSERT_AT(pkt, Trace::Location::here(utilsSource));
  UTILS_TRACE(8, "create RA raw packet: smac dmac ", srcMac, " ", dstMac, " sa da ", srcAddr, " ", dstAddr);

  RaPktBuilder builder(pkt->reserveHeadDataUninitialized(pktBufSize), pktBufSize, *ip6IntfStatusPtr,
                       intfRouterAdvtConfigPtr);
  builder.writeLinkAndNetworkHeaders(srcAddr, dstAddr, srcMac, dstMac);
  builder.writeAdvertisementHeader(advertiseLifetime && !deathPacket && (!useVirtualRouter || virtualRouterStatus));
  builder.writeSourceLinkLayerAddress(srcMac);
  builder.writeMtu(mtu);
  builder.writePrefixes(useVirtualRouter, virtualRouterStatus.get());
  builder.writeDns();
  builder.writeNetworkBoot();
  builder.writePayloadLength();
  builder.zeroTailRoom();

  // Negative when a search list ends behind the buffer: its last octets lie in the packet's tail room.
  pkt->trimTailData(static_cast<Fwk::S64>(pktBufSize) - static_cast<Fwk::S64>(builder.msgLen()));
  pkt->ip6HdrOffsetIs(ip6Offset);
  pkt->icmp6MsgIs(icmp6Offset, builder.msgLen() - icmp6Offset);
  setIcmp6CheckSum(*pkt->ip6Hdr(), *pkt->icmp6Hdr());
  return pkt;
}

}  // namespace RouterAdvt

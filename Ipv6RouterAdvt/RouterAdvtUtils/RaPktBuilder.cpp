#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertisedPrefixes.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/DnsSearchListOption.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/NetworkBootOption.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/OptionWriter.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RaPktBuilder.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/RecursiveDnsServerOption.h>
#include <RouterPlatform/Packet/EthernetHdr.h>
#include <RouterPlatform/Packet/Icmp6Hdr.h>
#include <RouterPlatform/Packet/Icmp6HdrOptions.h>
#include <RouterPlatform/Packet/Icmp6RouterAdvertisementHdr.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>
#include <RouterPlatform/Packet/PktManager.h>
#include <RouterPlatform/Trace/Assert.h>

#include <algorithm>

namespace RouterAdvt {

using Net::EthernetHdr;
using Net::Icmp6Hdr;
using Net::Icmp6HdrLinkLayerAddrOption;
using Net::Icmp6HdrMtuOption;
using Net::Icmp6RouterAdvertisementHdr;
using Net::Ip6Hdr;

namespace {

constexpr S32 pktBufSizeMax = 1536;
constexpr U64 ip6Offset = sizeof(EthernetHdr);
constexpr U64 icmp6Offset = ip6Offset + sizeof(Ip6Hdr);
constexpr U64 fixedPartSize = icmp6Offset + sizeof(Icmp6Hdr) + sizeof(Icmp6RouterAdvertisementHdr) +
                              sizeof(Icmp6HdrLinkLayerAddrOption) + sizeof(Icmp6HdrMtuOption);
static_assert(icmp6Offset == 54 && fixedPartSize == 86);

constexpr U8 flagsReservedBits = 0x03;

/// One advertisement in the making: the frame's buffer and how far it is written.
class RaPktBuilder {
 public:
  RaPktBuilder(U8* buf, U64 pktBufSize, Ip6::IntfStatus const& ip6IntfStatus, Ptr<IntfConfig const> const& intfConfig)
      : buf_(buf), pktBufSize_(pktBufSize), ip6IntfStatus_(ip6IntfStatus), intfConfig_(intfConfig) {}

  U64 msgLen() const { return msgLen_; }

  void writeLinkAndNetworkHeaders(Ip6Addr const& srcAddr, Ip6Addr const& dstAddr, EthAddr const& srcMac,
                                  EthAddr const& dstMac) {
    auto& ethernet = take<EthernetHdr>();
    dstMac.copyTo(ethernet.destination);
    srcMac.copyTo(ethernet.source);
    ethernet.etherType = Net::EtherType::ip6;
    auto& ip6 = take<Ip6Hdr>();
    ip6.versionIs(Ip6Hdr::version6);
    ip6.nextHeader = Net::Ip6NextHeader::icmp6;
    ip6.hopLimit = 255;  // RFC 4861 4.2
    srcAddr.copyTo(ip6.sourceAddress);
    dstAddr.copyTo(ip6.destinationAddress);
    UTILS_TRACE(8, "offset of icmp6Hdr ", msgLen_);
  }

  void writeAdvertisementHeader(bool withLifetime) {
    auto& icmp6 = take<Icmp6Hdr>();
    icmp6.type = Icmp6Hdr::routerAdvertisement;
    icmp6.code = 0;
    icmp6.checksum = 0;
    auto& advertisement = take<Icmp6RouterAdvertisementHdr>();
    advertisement.curHopLimit = static_cast<U8>(intfConfig_->validHopLimit());
    if (withLifetime)
      advertisement.routerLifetime = static_cast<U16>(intfConfig_->raLifetime());  // the low 16 bits
    else
      UTILS_TRACE(8, "Sending pkt with routerLifetime 0");
    advertisement.reachableTime = intfConfig_->reachableTime();
    advertisement.retransTimer = ip6IntfStatus_.nsRetransmitInterval();
    UTILS_TRACE(8, "ip6IntfStatusPtr->nsRetransmitInterval(): ", ip6IntfStatus_.nsRetransmitInterval());
    writeFlags(advertisement);
  }

  void writeSourceLinkLayerAddress(EthAddr const& srcMac) {
    UTILS_TRACE(8, "Adding Src Link Layer option: ");
    auto& option =
        appendOption<Icmp6HdrLinkLayerAddrOption>(buf_, msgLen_, Icmp6HdrLinkLayerAddrOption::sourceTypeValue);
    option.length = sizeof option / 8;
    srcMac.copyTo(option.linkLayerAddress);
  }

  void writeMtu(S32 mtu) {
    if (intfConfig_->raMtuSuppress()) return;
    UTILS_TRACE(8, "Adding MTU option: ", mtu);
    auto& option = appendOption<Icmp6HdrMtuOption>(buf_, msgLen_, Icmp6HdrMtuOption::typeValue);
    option.length = sizeof option / 8;
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
    reinterpret_cast<Ip6Hdr*>(buf_ + ip6Offset)->payloadLength = payloadLength;
  }

 private:
  template <class Header>
  Header& take() {
    auto& header = *reinterpret_cast<Header*>(buf_ + msgLen_);
    msgLen_ += sizeof(Header);
    return header;
  }

  void writeFlags(Icmp6RouterAdvertisementHdr& advertisement) {
    unsigned flags = advertisement.flags;
    if (intfConfig_->managedConfigFlag())
      flags = (flags | Icmp6RouterAdvertisementHdr::managedConfigBit) & ~unsigned{flagsReservedBits};
    if (intfConfig_->otherConfigFlag())
      flags = (flags | Icmp6RouterAdvertisementHdr::otherConfigBit) & ~unsigned{flagsReservedBits};
    UTILS_TRACE(8, "intfRouterAdvtConfigPtr->routerPreferenceDefault(): ", IntfConfig::routerPreferenceDefault());
    auto const preference = intfConfig_->routerPreference();
    ASSERT_AT_TEXT(preference != Icmp6RouterAdvtRouterPreferenceType::reserved_, Trace::Location::here(utilsSource),
                   "intfRouterAdvtConfigPtr->routerPreference() != Icmp6RouterAdvtRouterPreferenceType::reserved_");
    if (advertisement.routerLifetime == 0) {
      UTILS_TRACE(8, "Set routerPreference to Zero");
      // Both preference bits are set, despite what the message says.
      flags = (flags & 0xe4) | Icmp6RouterAdvertisementHdr::routerPreferenceBits;
    } else if (preference != Icmp6RouterAdvtRouterPreferenceType::medium) {
      unsigned const bits = static_cast<unsigned>(preference) << Icmp6RouterAdvertisementHdr::routerPreferenceShift;
      flags = (bits | flags) & ~unsigned{flagsReservedBits};
    }
    advertisement.flags = static_cast<U8>(flags);
  }

  U8* const buf_;
  U64 const pktBufSize_;
  Ip6::IntfStatus const& ip6IntfStatus_;
  Ptr<IntfConfig const> const& intfConfig_;
  U64 msgLen_ = 0;
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

  RaPktBuilder builder(pkt->reserveHeadData(pktBufSize), pktBufSize, *ip6IntfStatusPtr, intfRouterAdvtConfigPtr);
  builder.writeLinkAndNetworkHeaders(srcAddr, dstAddr, srcMac, dstMac);
  builder.writeAdvertisementHeader(advertiseLifetime && !deathPacket && (!useVirtualRouter || virtualRouterStatus));
  builder.writeSourceLinkLayerAddress(srcMac);
  builder.writeMtu(mtu);
  builder.writePrefixes(useVirtualRouter, virtualRouterStatus.get());
  builder.writeDns();
  builder.writeNetworkBoot();
  builder.writePayloadLength();

  // Negative when a search list ends behind the buffer: its last octets lie in the packet's tail room.
  pkt->trimTailData(static_cast<Fwk::S64>(pktBufSize) - static_cast<Fwk::S64>(builder.msgLen()));
  pkt->ip6HdrOffsetIs(ip6Offset);
  pkt->icmp6MsgIs(icmp6Offset, builder.msgLen() - icmp6Offset);
  setIcmp6CheckSum(*pkt->ip6Hdr(), *pkt->icmp6Hdr());
  return pkt;
}

}  // namespace RouterAdvt

#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Ip6/IntfStatus.h>
#include <RouterPlatform/Ip6/VirtualRouterStatusV6.h>
#include <RouterPlatform/Packet/Pkt.h>

namespace RouterAdvt {

/// Builds one Router Advertisement (RFC 4861 4.2) for one interface: an Ethernet frame with its IPv6 and ICMPv6 headers
/// and options, checksum filled in. The caller owns the packet, whose data is exactly the frame.
///
/// - `srcAddr`, `dstAddr`, `srcMac`, `dstMac`: copied as they are; `srcMac` is the source link-layer address
///   option too.
/// - `ip6IntfStatusPtr`: gives the Retrans Timer, and the prefixes where none is configured to be advertised.
/// - `intfRouterAdvtConfigPtr`: what to advertise, as stored; profiles are not applied. Its preference must not be
///   `reserved_`: a programming error, which stops the process.
/// - `advertiseLifetime`: false makes the Router Lifetime 0.
/// - `mtu`: the link MTU, octets, sent in the MTU option. The frame has at most this size, and at most 1536
///   octets; only the end of a DNS search list may lie up to 9 octets behind that. Below 86, the size of the fixed
///   part: a programming error.
/// - `useVirtualRouter`: advertise for `virtualRouterStatus`: its prefixes; null: no prefixes, and Router Lifetime 0.
/// - `intfId`: not used.
/// - `deathPacket`: the final advertisement: Router Lifetime 0. RFC 4861 6.2.5.
///
/// An option that does not fit is left out and traced at level 3; the frame always comes. When no packet is to be had
/// that is traced at level 2 and stops the process. In steady state nothing is allocated. Keeps no state: several
/// threads may build at once as long as what they read does not change.
ROUTER_ADVT_EXPORT Ptr<Pkt> makeIp6RaPkt(Ip6Addr const& srcAddr, Ip6Addr const& dstAddr, EthAddr const& srcMac,
                                         EthAddr const& dstMac, Ptr<Ip6::IntfStatus const> const& ip6IntfStatusPtr,
                                         Ptr<IntfConfig const> const& intfRouterAdvtConfigPtr, bool advertiseLifetime,
                                         S32 mtu, bool useVirtualRouter,
                                         Ptr<VirtualRouterStatusV6 const> const& virtualRouterStatus, IntfId intfId,
                                         bool deathPacket);

}  // namespace RouterAdvt

#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertRequest.h>

namespace RouterAdvt {

/// The same as `build`, with the request as arguments: `ip6IntfStatusPtr` is its `intfStatus` and
/// `intfRouterAdvtConfigPtr` its `intfConfig`; `intfId` is not used.
ROUTER_ADVT_EXPORT Ptr<Pkt> makeIp6RaPkt(Ip6Addr const& srcAddr, Ip6Addr const& dstAddr, EthAddr const& srcMac,
                                         EthAddr const& dstMac, Ptr<Ip6::IntfStatus const> const& ip6IntfStatusPtr,
                                         Ptr<IntfConfig const> const& intfRouterAdvtConfigPtr, bool advertiseLifetime,
                                         S32 mtu, bool useVirtualRouter,
                                         Ptr<VirtualRouterStatusV6 const> const& virtualRouterStatus, IntfId intfId,
                                         bool deathPacket);

}  // namespace RouterAdvt

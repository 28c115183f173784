#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvt/PlatformTypes.h>

namespace RouterAdvt {

/// Writes the prefixes of a virtual router, each with the parameters of the configured prefix that equals it, host bits
/// included; one that is not configured takes those of the last configured one before it, or the built-in ones. A
/// configured one that is not to be advertised is passed over.
void copyVirtualRouterPrefixesToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, IntfConfig const& intfConfig,
                                         VirtualRouterStatusV6 const& virtualRouterStatus);

/// Writes the configured prefixes that are to be advertised, with their own parameters.
void copyConfiguredPrefixesToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, IntfConfig const& intfConfig);

/// Writes the subnets of the interface's addresses, link-local ones and those configured not to be advertised passed
/// over, with the built-in parameters. For an interface that has no configured prefix to advertise: meeting one is a
/// programming error.
void copyAddressPrefixesToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, IntfConfig const& intfConfig,
                                   Ip6::IntfStatus const& ip6IntfStatus);

}  // namespace RouterAdvt

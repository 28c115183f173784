#pragma once

#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertDraft.h>

namespace Ip6 {
class IntfStatus;
}  // namespace Ip6

/// Which prefixes an advertisement has, and with which parameters. The first one that does not fit ends the list.
namespace RouterAdvt {

/// Writes the prefixes of a virtual router, each with the parameters of the configured prefix that equals it, host bits
/// included. A prefix that is not configured takes the parameters of the last configured one before it, or the built-in
/// ones. A configured prefix that is not to be advertised is passed over.
void copyVirtualRouterPrefixesToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig,
                                         VirtualRouterStatusV6 const& virtualRouterStatus);

/// Writes the configured prefixes that are to be advertised, with their own parameters.
void copyConfiguredPrefixesToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig);

/// Writes the subnets of the interface's addresses with the built-in parameters. Link-local addresses and subnets that
/// are configured not to be advertised are passed over. For an interface that has no configured prefix to advertise:
/// meeting one is a programming error.
void copyAddressPrefixesToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig,
                                   Ip6::IntfStatus const& ip6IntfStatus);

}  // namespace RouterAdvt

#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Packet/Ip6PktInfo.h>

namespace RouterAdvt {

using Net::Ip6PktInfo;

/// Whether the checksum of a received ICMPv6 message is what it should be, RFC 4443 2.3: computed over the message as
/// it is in the packet and the addresses of the descriptor, whatever extension headers lie between.
///
/// The checksum field is zero while this runs and as received afterwards, so nobody else may use the packet meanwhile.
/// A descriptor without a packet is a programming error.
ROUTER_ADVT_EXPORT bool icmp6ChecksumValid(Ptr<Ip6PktInfo> const& pktInfo);

}  // namespace RouterAdvt

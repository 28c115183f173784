#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/Heard/RaPacket.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Packet/Ip6PktInfo.h>

namespace RouterAdvt {

using Net::Ip6PktInfo;

/// Reads a received Router Advertisement, RFC 4861 4.2: its header, MTU option (the last one counts; RFC 4861 does not
/// say which) and Prefix Information options (may repeat, RFC 4861 4.6; the first one of a prefix counts). Other
/// options are skipped, RFC 4861 4.2.
///
/// Lenient: type, code, checksum, hop limit and source address are the caller's to check. The one thing that is
/// rejected, traced at level 3, is an option of length 0, RFC 4861 4.6 and 6.1.2: the result is the empty packet then
/// (`!packet`).
///
/// The header's 16 octets are read whatever the length of the message; what lies behind the packet's data is 0. Of the
/// options nothing outside the message is read, whatever lengths it has. A Prefix Information or MTU option with a
/// field behind the end of the message gives nothing and is skipped by its length, as other options are. The time
/// is linear in the size of the message, and bounded. Up to 4 prefixes take no allocation. Keeps no state: any thread
/// that owns the packet may call this. A descriptor without a packet is a programming error.
ROUTER_ADVT_EXPORT RaPacket makeRaPacketType(IntfId intfId, Ptr<Ip6PktInfo> const& pktInfo);

}  // namespace RouterAdvt

#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/LeftOut.h>
#include <RouterPlatform/Ip6/IntfStatus.h>
#include <RouterPlatform/Ip6/VirtualRouterStatusV6.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Packet/Pkt.h>

namespace RouterAdvt {

/// One Router Advertisement (RFC 4861 4.2) to be built, by name: what to advertise, from where, and to whom. At least
/// `srcAddr`, `srcMac`, `intfStatus` and `intfConfig` have to be set. docs/adr/0012.
struct AdvertRequest {
  /// All nodes on the link, RFC 4291 2.7.1, and their Ethernet address, RFC 2464 7.
  static constexpr Ip6Addr allNodes =
      Ip6Addr::fromBytes(std::array<U8, 16>{0xff, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
  static constexpr EthAddr allNodesMac = EthAddr::fromBytes(std::array<U8, 6>{0x33, 0x33, 0, 0, 0, 1});
  /// MTU of Ethernet, RFC 2464 2, octets.
  static constexpr S32 mtuDefault() { return 1500; }
  /// Least MTU, octets: the size of the headers, the source link-layer address option and the MTU option.
  static constexpr S32 mtuMin() { return 86; }
  /// Greatest size of a frame whatever its MTU, octets: the 1514 of a full Ethernet frame, RFC 2464 2 and 3, rounded up
  /// to a multiple of 512. A link with a larger MTU gets no larger advertisements.
  static constexpr S32 frameSizeMax() { return 1536; }

  Ip6Addr srcAddr{};  ///< copied as it is, as the other addresses are
  Ip6Addr dstAddr = allNodes;
  EthAddr srcMac{};  ///< the source link-layer address option too
  EthAddr dstMac = allNodesMac;
  /// Gives the Retrans Timer, and the prefixes where none is configured to be advertised. Not null.
  Ptr<Ip6::IntfStatus const> intfStatus{};
  /// The configuration to advertise, as stored; profiles are not applied. Not null. Its preference must not be
  /// `reserved_`.
  Ptr<IntfConfig const> intfConfig{};
  bool advertiseLifetime = true;  ///< false makes the Router Lifetime 0
  /// The link MTU, octets, sent in the MTU option. At least `mtuMin`. The frame keeps to it and to
  /// `frameSizeMax`; only the end of a DNS search list may lie up to 9 octets behind that.
  S32 mtu = mtuDefault();
  bool useVirtualRouter = false;  ///< advertise for `virtualRouterStatus`
  /// Its prefixes are advertised. Null: no prefixes, and Router Lifetime 0. Read with `useVirtualRouter` only.
  Ptr<VirtualRouterStatusV6 const> virtualRouterStatus{};
  bool deathPacket = false;  ///< the final advertisement: Router Lifetime 0, RFC 4861 6.2.5
};

/// Builds the frame: Ethernet, IPv6 and ICMPv6 headers and options, checksum filled in. The caller owns the packet,
/// whose data is exactly the frame; the octets behind it are zero.
///
/// An option that does not fit is left out, traced at level 3, and noted in `leftOut` unless that is null; the frame
/// always comes. A request that breaks the conditions of its members is a programming error and stops the process. The
/// lack of a packet does too, after a trace at level 2. In steady state nothing is allocated, except for the entries of
/// `leftOut`. Keeps no state: several threads may build at once as long as what they read does not change.
ROUTER_ADVT_EXPORT Ptr<Pkt> build(AdvertRequest const& request, LeftOut* leftOut = nullptr);

}  // namespace RouterAdvt

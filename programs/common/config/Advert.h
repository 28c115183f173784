#pragma once

#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Ip6/IntfStatus.h>
#include <RouterPlatform/Ip6/VirtualRouterStatusV6.h>
#include <RouterPlatform/Packet/Pkt.h>
#include <programs/common/config/AdvertOptions.h>
#include <programs/common/config/ConfigFile.h>
#include <programs/common/linux/NetworkInterface.h>

namespace Tool {

/// One advertisement to be made: everything that the library wants to know for it.
struct Advert {
  Net::Ip6Addr srcAddr;
  Net::Ip6Addr dstAddr;
  Net::EthAddr srcMac;
  Net::EthAddr dstMac;
  Fwk::Ptr<Ip6::IntfStatus const> status;
  Fwk::Ptr<RouterAdvt::IntfConfig const> config;
  bool advertiseLifetime = true;
  Fwk::S32 mtu = LinkConfig::mtuDefault;
  bool useVirtualRouter = false;
  Fwk::Ptr<Ip6::VirtualRouterStatusV6 const> virtualRouter;
  bool deathPacket = false;

  Fwk::Ptr<Net::Pkt> build() const;
};

/// The interface's configuration. Throws `Failure`, with the nearest name, when the file has none.
Fwk::Ptr<RouterAdvt::IntfConfig> findIntf(ConfigFile const& file, std::string const& name);

/// From what the command line says, else the file, else `device` (which may be null), else the defaults. Throws
/// `Failure` when something cannot be known.
Advert makeAdvert(ConfigFile const& file, AdvertOptions const& options, NetworkInterface const* device = nullptr);

/// `fe80::/64` with the interface identifier made from the MAC address, RFC 4291 appendix A.
Net::Ip6Addr linkLocalFrom(Net::EthAddr const& mac);

}  // namespace Tool

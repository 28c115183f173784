#pragma once

#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertRequest.h>
#include <programs/common/config/AdvertOptions.h>
#include <programs/common/config/ConfigFile.h>
#include <programs/common/linux/NetworkInterface.h>

namespace Tool {

/// The interface's configuration. Throws `Failure`, with the nearest name, when the file has none.
Fwk::Ptr<RouterAdvt::IntfConfig> findIntf(ConfigFile const& file, std::string const& name);

/// Takes each input from the command line, else the file, else `device` (which may be null), else the defaults. Throws
/// `Failure` when an input without a default is missing.
RouterAdvt::AdvertRequest makeAdvertRequest(ConfigFile const& file, AdvertOptions const& options,
                                            NetworkInterface const* device = nullptr);

/// `fe80::/64` with the interface identifier made from the MAC address, RFC 4291 appendix A.
Net::Ip6Addr linkLocalFrom(Net::EthAddr const& mac);

}  // namespace Tool

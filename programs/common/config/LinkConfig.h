#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/PlatformTypes.h>
#include <programs/common/config/Diagnostic.h>

#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// The link behind an interface: what an advertisement needs to know that is not configuration of advertisements.
struct LinkConfig {
  /// Octets; an advertisement's fixed part alone takes the least.
  static constexpr Fwk::S32 mtuMin = 86;
  static constexpr Fwk::S32 mtuMax = 2147483647;
  static constexpr Fwk::S32 mtuDefault = 1500;

  Net::IntfId intfId;
  Place place;

  std::optional<Net::EthAddr> mac;
  std::optional<Fwk::S32> mtu;
  std::vector<Net::Ip6AddrWithMask> addresses;
  Fwk::U32 nsRetransmitInterval = 0;  ///< milliseconds, 0: unspecified
  /// Prefixes of the virtual router; nothing: there is none.
  std::optional<std::vector<Net::Ip6AddrWithMask>> virtualRouter;

  /// Why `mac` can be no link's; empty when it can.
  static std::string macRefusal(Net::EthAddr const& mac) {
    return mac.isMulticast() ? mac.toString() + " is a group address; nothing is sent from one" : std::string();
  }
};

/// Where the file has the link of that interface.
inline std::string linkPath(Net::IntfId const& intfId) { return "links[" + intfId.toString() + ']'; }

}  // namespace Tool

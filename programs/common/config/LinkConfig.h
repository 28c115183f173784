#pragma once

#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertRequest.h>
#include <programs/common/config/Diagnostic.h>

#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// The link of an interface: facts that an advertisement needs and that are not part of the model's configuration.
struct LinkConfig {
  /// Octets; an advertisement's fixed part alone takes the least.
  static constexpr Fwk::S32 mtuMin = RouterAdvt::AdvertRequest::mtuMin();
  static constexpr Fwk::S32 mtuMax = 2147483647;
  static constexpr Fwk::S32 mtuDefault = RouterAdvt::AdvertRequest::mtuDefault();

  Net::IntfId intfId;
  Place place;

  std::optional<Net::EthAddr> mac;
  std::optional<Fwk::S32> mtu;
  std::vector<Net::Ip6AddrWithMask> addresses;
  Fwk::U32 nsRetransmitInterval = 0;  ///< milliseconds, 0: unspecified
  /// Prefixes of the virtual router; nothing: there is no virtual router.
  std::optional<std::vector<Net::Ip6AddrWithMask>> virtualRouter;

  /// Why `mac` cannot be the address of a link; empty when it can.
  static std::string macRefusal(Net::EthAddr const& mac) {
    return mac.isMulticast() ? mac.toString() + " is a group address, which cannot be a source" : std::string();
  }
};

/// The path of the link of that interface in the file.
inline std::string linkPath(Net::IntfId const& intfId) { return "links[" + intfId.toString() + ']'; }

}  // namespace Tool

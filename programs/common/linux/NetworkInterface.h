#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>

#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// A network interface of this machine, as it is now.
struct NetworkInterface {
  std::string name;
  int index = 0;
  std::optional<Net::EthAddr> mac;  ///< of an Ethernet interface
  Fwk::S32 mtu = 0;                 ///< octets
  bool up = false;
  std::vector<Net::Ip6AddrWithMask> addresses;
  /// The first link-local one of them.
  std::optional<Net::Ip6Addr> linkLocal;
};

/// Throws `Failure`: there is no such interface; the nearest name is said.
NetworkInterface lookUpInterface(std::string const& name);

/// The same; throws `Failure` where it has no MAC address too.
NetworkInterface lookUpEthernetInterface(std::string const& name);

}  // namespace Tool

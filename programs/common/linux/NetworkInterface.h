#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>

#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// The present state of a network interface of this machine.
struct NetworkInterface {
  std::string name;
  int index = 0;
  std::optional<Net::EthAddr> mac;  ///< only of an Ethernet interface
  Fwk::S32 mtu = 0;                 ///< octets
  bool up = false;
  std::vector<Net::Ip6AddrWithMask> addresses;
  /// The first link-local address of `addresses`.
  std::optional<Net::Ip6Addr> linkLocal;
};

/// Throws `Failure` when there is no such interface; the message suggests a near name.
NetworkInterface lookUpInterface(std::string const& name);

/// The same; also throws `Failure` when the interface is not Ethernet.
NetworkInterface lookUpEthernetInterface(std::string const& name);

}  // namespace Tool

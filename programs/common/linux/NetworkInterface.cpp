#include <programs/common/linux/NetworkInterface.h>
#include <programs/common/text/Failure.h>
#include <programs/common/text/FileDescriptor.h>
#include <programs/common/text/NearestName.h>
#include <programs/common/text/Text.h>

#include <ifaddrs.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <memory>

namespace Tool {

namespace {

using Net::Ip6Addr;
using Net::Ip6AddrWithMask;

Ip6Addr addressOf(sockaddr const* address) {
  sockaddr_in6 in6;
  std::memcpy(&in6, address, sizeof in6);
  return Ip6Addr::fromBytes(in6.sin6_addr.s6_addr);
}

Fwk::U8 maskLengthOf(sockaddr const* mask) {
  Ip6Addr const bits = mask ? addressOf(mask) : Ip6Addr();
  int length = 0;
  for (Fwk::U8 const octet : bits.octets()) length += std::popcount(octet);
  return static_cast<Fwk::U8>(length);
}

std::vector<Ip6AddrWithMask> addressesOf(std::string const& name) {
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) != 0)
    throw Failure(std::string("cannot list the addresses of interfaces: ") + std::strerror(errno));
  std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> const owner(list, &freeifaddrs);
  std::vector<Ip6AddrWithMask> result;
  for (ifaddrs const* entry = list; entry; entry = entry->ifa_next)
    if (entry->ifa_addr && entry->ifa_addr->sa_family == AF_INET6 && name == entry->ifa_name)
      result.emplace_back(addressOf(entry->ifa_addr), maskLengthOf(entry->ifa_netmask));
  return result;
}

std::vector<std::string> interfaceNames() {
  std::unique_ptr<struct if_nameindex, void (*)(struct if_nameindex*)> const list(if_nameindex(), &if_freenameindex);
  std::vector<std::string> names;
  for (auto const* entry = list.get(); entry && entry->if_index != 0; ++entry) names.emplace_back(entry->if_name);
  return names;
}

/// Asks the kernel one question about the interface.
ifreq askKernel(FileDescriptor const& socket, std::string const& name, unsigned long question) {
  ifreq request{};
  name.copy(request.ifr_name, sizeof request.ifr_name - 1);
  // A truncated name could name another interface.
  bool const fits = name.size() < sizeof request.ifr_name;
  if (fits && ioctl(socket.get(), question, &request) == 0) return request;
  if (fits && errno != ENODEV) throw Failure(name + ": " + std::strerror(errno));
  auto const names = interfaceNames();
  throw Failure("there is no interface " + inQuotes(name) + " on this machine" +
                nearestNameHint(name, {names.begin(), names.end()}));
}

}  // namespace

NetworkInterface lookUpInterface(std::string const& name) {
  FileDescriptor const socket(::socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  if (socket.get() < 0) throw Failure(std::string("cannot open a socket: ") + std::strerror(errno));
  NetworkInterface result;
  result.name = name;
  result.index = askKernel(socket, name, SIOCGIFINDEX).ifr_ifindex;
  ifreq const hardware = askKernel(socket, name, SIOCGIFHWADDR);
  if (hardware.ifr_hwaddr.sa_family == ARPHRD_ETHER) {
    std::array<Fwk::U8, Net::EthAddr::size> mac;
    std::memcpy(mac.data(), hardware.ifr_hwaddr.sa_data, mac.size());
    result.mac = Net::EthAddr::fromBytes(mac);
  }
  result.mtu = askKernel(socket, name, SIOCGIFMTU).ifr_mtu;
  result.up = (askKernel(socket, name, SIOCGIFFLAGS).ifr_flags & IFF_UP) != 0;
  result.addresses = addressesOf(name);
  for (Ip6AddrWithMask const& address : result.addresses)
    if (!result.linkLocal && address.address().isLinkLocal()) result.linkLocal = address.address();
  return result;
}

NetworkInterface lookUpEthernetInterface(std::string const& name) {
  NetworkInterface result = lookUpInterface(name);
  if (!result.mac) throw Failure(name + " is not an Ethernet interface");
  return result;
}

}  // namespace Tool

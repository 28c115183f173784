#include <programs/common/config/Advert.h>
#include <programs/common/text/Failure.h>
#include <programs/common/text/NearestName.h>
#include <programs/common/text/Text.h>

#include <algorithm>

namespace Tool {

namespace {

using Fwk::Ptr;
using Net::EthAddr;
using Net::Ip6Addr;
using Net::Ip6AddrWithMask;

[[noreturn]] void fail(ConfigFile const& file, std::string const& path, std::string text) {
  throw Failure(diagnosticText(file.name, {file.placeOf(path), path, std::move(text)}));
}

EthAddr sourceMac(ConfigFile const& file, AdvertOptions const& options, LinkConfig const* link,
                  NetworkInterface const* device) {
  if (options.srcMac) return *options.srcMac;
  if (link && link->mac) return *link->mac;
  if (device && device->mac) return *device->mac;
  if (link) fail(file, linkPath(link->intfId), "there is no mac; give one here, or --src-mac");
  std::vector<std::string> names;
  for (LinkConfig const& other : file.links) names.push_back(other.intfId.toString());
  fail(file, names.empty() ? "config/intf[" + options.intf + ']' : "links",
       "there is no link " + inQuotes(options.intf) +
           ", which would give the mac; add it to the section links, or give --src-mac" +
           nearestNameHint(options.intf, {names.begin(), names.end()}));
}

Ip6Addr sourceAddr(AdvertOptions const& options, LinkConfig const* link, NetworkInterface const* device,
                   EthAddr const& srcMac) {
  if (options.src) return *options.src;
  if (link)
    for (Ip6AddrWithMask const& address : link->addresses)
      if (address.address().isLinkLocal()) return address.address();
  if (device && device->linkLocal) return *device->linkLocal;
  return linkLocalFrom(srcMac);
}

EthAddr destinationMac(AdvertOptions const& options, Ip6Addr const& dstAddr) {
  if (options.dstMac) return *options.dstMac;
  if (dstAddr.isMulticast()) return EthAddr::forMulticast(dstAddr);
  throw UsageError("--dst-mac is needed: " + dstAddr.toString() + " is not multicast, so its MAC address is not known");
}

Fwk::S32 linkMtu(AdvertOptions const& options, LinkConfig const* link, NetworkInterface const* device) {
  if (options.mtu) return *options.mtu;
  if (link && link->mtu) return *link->mtu;
  return device ? std::max(device->mtu, LinkConfig::mtuMin) : LinkConfig::mtuDefault;
}

Ptr<Ip6::IntfStatus const> linkStatus(Net::IntfId const& intfId, LinkConfig const* link,
                                      NetworkInterface const* device) {
  auto const status = Ip6::IntfStatus::IntfStatusIs(intfId);
  if (link) status->nsRetransmitIntervalIs(link->nsRetransmitInterval);
  auto const none = std::vector<Ip6AddrWithMask>();
  auto const& addresses = link && !link->addresses.empty() ? link->addresses : device ? device->addresses : none;
  for (Ip6AddrWithMask const& address : addresses) status->addrIs(address);
  return status;
}

Ptr<Ip6::VirtualRouterStatusV6 const> virtualRouterStatus(LinkConfig const* link) {
  if (!link || !link->virtualRouter) return nullptr;
  auto const status = Ip6::VirtualRouterStatusV6::VirtualRouterStatusV6Is(Fwk::Name("virtualRouter"));
  for (Ip6AddrWithMask const& prefix : *link->virtualRouter) status->prefixIs(prefix);
  return status;
}

}  // namespace

Ptr<RouterAdvt::IntfConfig> findIntf(ConfigFile const& file, std::string const& name) {
  std::optional<Net::IntfId> const intfId = Net::IntfId::parse(name);
  if (intfId)
    if (auto intf = file.config->intf(*intfId)) return intf;
  std::string const section = "config/intf";
  if (intfId && file.link(*intfId))
    fail(file, section,
         "there is no interface " + inQuotes(name) + ", only a link of that name; with '" + name +
             ": {}' here it is advertised by the defaults");
  std::vector<std::string> names;
  for (auto const& [key, intf] : file.config->intf()) names.push_back(key.toString());
  fail(file, section, "there is no interface " + inQuotes(name) + nearestNameHint(name, {names.begin(), names.end()}));
}

RouterAdvt::AdvertRequest makeAdvertRequest(ConfigFile const& file, AdvertOptions const& options,
                                            NetworkInterface const* device) {
  RouterAdvt::AdvertRequest request;
  request.intfConfig = findIntf(file, options.intf);
  Net::IntfId const intfId = request.intfConfig->intfId();
  LinkConfig const* const link = file.link(intfId);
  request.srcMac = sourceMac(file, options, link, device);
  request.srcAddr = sourceAddr(options, link, device, request.srcMac);
  request.dstAddr = options.dst.value_or(RouterAdvt::AdvertRequest::allNodes);
  request.dstMac = destinationMac(options, request.dstAddr);
  request.mtu = linkMtu(options, link, device);
  request.intfStatus = linkStatus(intfId, link, device);
  request.advertiseLifetime = !options.noLifetime;
  request.deathPacket = options.death;
  request.useVirtualRouter = options.virtualRouter;
  if (options.virtualRouter) request.virtualRouterStatus = virtualRouterStatus(link);
  return request;
}

Ip6Addr linkLocalFrom(EthAddr const& mac) {
  auto const& m = mac.octets();
  std::array<Fwk::U8, 16> const octets{0xfe, 0x80, 0,    0,    0,    0,    0,   0, static_cast<Fwk::U8>(m[0] ^ 2),
                                       m[1], m[2], 0xff, 0xfe, m[3], m[4], m[5]};
  return Ip6Addr::fromBytes(octets);
}

}  // namespace Tool

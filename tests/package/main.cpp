// A small agent on the installed libraries: configures an interface, observes the change, builds an advertisement and
// reads it back. Exit status 0: every check held.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils.h>
#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace {

using namespace RouterAdvt;

int failures = 0;

void check(bool holds, char const* what) {
  if (holds) return;
  std::fprintf(stderr, "consumer: not so: %s\n", what);
  ++failures;
}

RaPacket builtAndRead(Ptr<IntfConfig> const& config) {
  Ip6Addr const source("fe80::1"), allNodes("ff02::1");
  auto const status = Ip6::IntfStatus::IntfStatusIs(config->intfId());
  Ptr<Pkt> const frame = makeIp6RaPkt(source, allNodes, EthAddr("02:00:00:00:00:01"), EthAddr("33:33:00:00:00:01"),
                                      status, config, true, 1500, false, nullptr, config->intfId(), false);
  auto const received = Ip6PktInfo::fromEthernetFrame(frame->octets());
  check(static_cast<bool>(received), "the frame is an ICMPv6 packet");
  if (!received) return RaPacket(IntfId());
  check(icmp6ChecksumValid(received.info), "its checksum is valid");
  return makeRaPacketType(config->intfId(), received.info);
}

// Types of the libraries are the same types here: casts, exceptions and the registry work across the border.
void checkSharedTypes(Ptr<IntfConfig> const& config) {
  Ptr<Fwk::Entity> const entity = config;
  check(Fwk::ptrCast<IntfConfig>(entity) == config, "an entity is cast down");
  check(!Fwk::ptrCast<Config>(entity), "an entity is not cast to what it is not");
  check(Fwk::typeRegistry().find("RouterAdvt::IntfConfig") == &config->fwkType(), "the type is registered");
  bool thrown = false;
  try {
    Ip6Addr const bad("no address");
  } catch (std::invalid_argument const&) {
    thrown = true;
  }
  check(thrown, "an exception of the platform is caught");
}

}  // namespace

int main() {
  auto const config = IntfConfig::IntfConfigIs(IntfId("Ethernet1"));
  int changes = 0;
  auto const subscription = Fwk::observe(config, [&](Fwk::Notification const&) { ++changes; });
  Ip6AddrWithMask const prefix("2001:db8:1::/64");
  config->raLifetimeIs(600);
  config->prefixesIs(prefix);
  check(changes == 2, "two changes are notified");

  RaPacket const packet = builtAndRead(config);
  check(packet.routerLifeTime() == 600, "the lifetime is read back");
  check(packet.srcIp6Addr() == Ip6Addr("fe80::1"), "the source is read back");
  check(packet.prefixInfo().size() == 1 && packet.prefixInfo().contains(prefix), "the prefix is read back");
  checkSharedTypes(config);
  check(std::strcmp(version(), ROUTER_ADVT_VERSION) == 0, "the library is of the version of the headers");
  check(std::strcmp(PACKAGE_VERSION, ROUTER_ADVT_VERSION) == 0, "the package is of the version of the headers");
  return failures == 0 ? 0 : 1;
}

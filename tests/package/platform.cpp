// Uses the platform alone: observes an entity, and copies a packet's octets. Exit status 0: every check held.

#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Ip6/IntfStatus.h>
#include <RouterPlatform/Packet/PktManager.h>

#include <algorithm>
#include <array>

int main() {
  auto const status = Ip6::IntfStatus::IntfStatusIs("Ethernet1");
  int changes = 0;
  auto const subscription = Fwk::observe(status, [&](Fwk::Notification const&) { ++changes; });
  status->addrIs(Net::Ip6AddrWithMask("fe80::1/64"));
  if (changes != 1 || !status->addr(Net::Ip6AddrWithMask("fe80::1/64"))) return 1;

  std::array<Fwk::U8, 4> const octets{0xff, 0x02, 0x00, 0x01};
  auto const pkt = Net::globalPktManager().newPkt();
  pkt->dataIs(octets);
  return std::ranges::equal(pkt->octets(), octets) ? 0 : 1;
}

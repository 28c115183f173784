// Whatever is configured, and whatever the packet's buffer held, the advertisement that is built from it stays inside
// its packet: at most 9 octets behind the buffer's size, and the whole tail room is zeros. Its
// IPv6 payload length and its checksum are those of its octets, its options end exactly where it does, and building
// again gives the same. What it lacks was left out for want of room, and is named.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils.h>
#include <RouterPlatform/Packet/PktManager.h>
#include <fuzz/Fuzzer.h>
#include <tests/Ipv6RouterAdvt/Support/Frame.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace {

using namespace RouterAdvt;
using Net::Icmp6RouterAdvtRouterPreferenceType;

/// Makes decisions of the octets of an input; zeros when they are used up.
class Choices {
 public:
  explicit Choices(std::span<U8 const> octets) : octets_(octets) {}

  U8 octet() {
    if (octets_.empty()) return 0;
    U8 const first = octets_.front();
    octets_ = octets_.subspan(1);
    return first;
  }
  bool flag() { return (octet() & 1) != 0; }
  unsigned below(unsigned limit) { return bits(2) % limit; }

  /// Mostly numbers at which something changes.
  U32 number() {
    constexpr std::array<U32, 12> edges{0, 1, 7, 300, 600, 999, 1800, 65535, 65536, 70000, 200000, 0xffffffff};
    U8 const choice = octet();
    if (choice < 192) return edges[choice % edges.size()];
    return bits(4);
  }

  Ip6Addr address() {
    std::array<U8, 16> octets{0x20, 0x01, 0x0d, 0xb8};
    U8 const kind = octet();
    if (kind % 4 == 0) octets = {0xfe, 0x80};
    if (kind % 4 == 3)
      std::generate(octets.begin(), octets.end(), [this] { return octet(); });
    else
      octets[5] = octet() & 15;
    octets[15] = octet() & 31;
    return Ip6Addr::fromBytes(octets);
  }
  Ip6AddrWithMask prefix() {
    Ip6Addr const addr = address();
    U8 const length = octet();
    return {addr, length % 4 == 0 ? U8{64} : length % 4 == 1 ? U8{48} : static_cast<U8>(octet())};
  }
  EthAddr mac() {
    std::array<U8, 6> octets;
    std::generate(octets.begin(), octets.end(), [this] { return octet(); });
    return EthAddr::fromBytes(octets);
  }

  /// A short name, a long one, or any octets at all.
  std::string text() {
    U8 const kind = octet();
    std::string result(kind % 8 == 7 ? below(1600) : kind % 8 == 6 ? below(300) : below(24), 'a');
    for (char& c : result) {
      U8 const choice = octet();
      c = kind % 3 == 0 ? static_cast<char>(choice) : choice % 5 == 0 ? '.' : static_cast<char>('a' + choice % 26);
    }
    return result;
  }

  /// A small number of members, seldom a large one.
  unsigned count() {
    U8 const choice = octet();
    return choice < 240 ? choice % 12 : choice;
  }

 private:
  U32 bits(unsigned octets) {
    U32 result = 0;
    for (; octets > 0; --octets) result = result << 8 | octet();
    return result;
  }

  std::span<U8 const> octets_;
};

void configureScalars(IntfConfig& config, Choices& choices) {
  config.raIntervalMaxMsecIs(choices.number());
  config.raLifetimeIs(choices.number());
  config.hopLimitIs(choices.number());
  config.reachableTimeIs(choices.number());
  config.nsIntervalMsecIs(choices.number());
  config.raMtuSuppressIs(choices.flag());
  config.managedConfigFlagIs(choices.flag());
  config.otherConfigFlagIs(choices.flag());
  auto const preference = static_cast<Icmp6RouterAdvtRouterPreferenceType>(choices.octet() % 8);
  if (preference != Icmp6RouterAdvtRouterPreferenceType::reserved_) config.routerPreferenceIs(preference);
  if (choices.flag()) config.networkBootFileUrlIs(choices.text());
}

void configurePrefixes(IntfConfig& config, Choices& choices) {
  for (unsigned count = choices.count(); count > 0; --count) {
    auto const entry = config.prefixesIs(choices.prefix());
    entry->noAdvertiseIs(choices.octet() % 4 == 0);
    entry->validLifetimeIs(choices.number());
    entry->preferredLifetimeIs(choices.number());
    entry->noOnLinkIs(choices.flag());
    entry->noAutoConfigIs(choices.flag());
  }
  if (choices.flag())
    for (auto const& [key, entry] : config.prefixes()) entry->noAdvertiseIs(true);
}

void configureDns(IntfConfig& config, Choices& choices) {
  config.dnsServersLifetimeIs(choices.number());
  config.dnsServersLifetimeConfiguredIs(choices.flag());
  config.dnsSuffixesLifetimeIs(choices.number());
  config.dnsSuffixesLifetimeConfiguredIs(choices.flag());
  for (unsigned count = choices.count(); count > 0; --count) {
    auto const entry = config.dnsServersIs(choices.address());
    entry->lifetimeIs(choices.number());
    entry->lifetimeConfiguredIs(choices.flag());
  }
  for (unsigned count = choices.count(); count > 0; --count) {
    auto const entry = config.dnsSuffixesIs(choices.text());
    entry->lifetimeIs(choices.number());
    entry->lifetimeConfiguredIs(choices.flag());
  }
}

AdvertRequest requestOf(Choices& choices) {
  AdvertRequest request;
  // The small ones, at which little fits, first.
  S32 const kind = choices.octet() % 4;
  request.mtu = kind == 0   ? 86 + static_cast<S32>(choices.below(200))
                : kind == 1 ? 1280 + static_cast<S32>(choices.below(300))
                            : 86 + static_cast<S32>(choices.below(9000));
  if (choices.octet() == 255) request.mtu = 2147483647;
  request.advertiseLifetime = choices.octet() % 8 != 0;
  request.deathPacket = choices.octet() % 8 == 0;
  request.useVirtualRouter = choices.octet() % 3 == 0;
  auto const config = IntfConfig::IntfConfigIs("Ethernet1");
  configureScalars(*config, choices);
  configurePrefixes(*config, choices);
  configureDns(*config, choices);
  request.intfConfig = config;
  auto const status = Ip6::IntfStatus::IntfStatusIs("Ethernet1");
  status->nsRetransmitIntervalIs(choices.number());
  for (unsigned count = choices.count(); count > 0; --count) status->addrIs(choices.prefix());
  request.intfStatus = status;
  if (choices.octet() % 4 != 0) {
    auto const virtualRouter = VirtualRouterStatusV6::VirtualRouterStatusV6Is("vrrp");
    for (unsigned count = choices.count(); count > 0; --count) virtualRouter->prefixIs(choices.prefix());
    request.virtualRouterStatus = virtualRouter;
  }
  request.srcAddr = choices.address();
  request.dstAddr = choices.address();
  request.srcMac = choices.mac();
  request.dstMac = choices.mac();
  return request;
}

/// The advertisement, built where every octet of the buffer was `dirt`.
Ptr<Pkt> pktInDirt(AdvertRequest const& request, LeftOut& leftOut, U8 dirt) {
  {
    auto const former = Net::globalPktManager().newPkt();  // its buffer comes back next
    former->reserveHeadData(Net::PktManager::newPktCapacity - Pkt::minTailRoom);
    former->trimTailData(-static_cast<Fwk::S64>(former->tailRoom()));
    std::fill(former->octets().begin(), former->octets().end(), dirt);
  }
  return build(request, &leftOut);
}

void check(AdvertRequest const& request, Pkt& pkt) {
  Frame::View const frame(pkt.data(), pkt.size());
  U64 const pktBufSize = static_cast<U64>(std::min(request.mtu, 1536));
  FUZZ_CHECK(frame.size() >= 78);
  FUZZ_CHECK(frame.size() <= pktBufSize + 9);
  for (U64 at = pkt.size(); at < pkt.size() + pkt.tailRoom(); ++at) FUZZ_CHECK(pkt.data()[at] == 0);
  FUZZ_CHECK(Frame::u16At(frame, 18) == frame.size() - Frame::icmp6Offset);
  FUZZ_CHECK(Frame::u16At(frame, 56) == Frame::icmp6Checksum(frame));
  FUZZ_CHECK(Frame::options(frame).has_value());
}

/// Servers and prefixes are sent or left out, each once.
void checkLeftOut(AdvertRequest const& request, LeftOut const& leftOut, Pkt& pkt) {
  std::size_t servers = 0, prefixes = 0;
  for (Frame::Octets const& option : Frame::options({pkt.data(), pkt.size()}).value_or(std::vector<Frame::Octets>())) {
    servers += option[0] == 25 ? (option.size() - 8) / 16 : 0;
    prefixes += option[0] == 3;
  }
  FUZZ_CHECK(servers + leftOut.servers.size() == request.intfConfig->dnsServers().size());
  if (!request.useVirtualRouter && request.intfConfig->prefixesToAdvertise()) {
    std::size_t advertised = 0;
    for (auto const& [key, entry] : request.intfConfig->prefixes()) advertised += !entry->noAdvertise();
    FUZZ_CHECK(prefixes + leftOut.prefixes.size() == advertised);
  }
}

}  // namespace

std::size_t const fuzzGeneratedInputs = 100'000;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Choices choices({data, size});
  AdvertRequest const request = requestOf(choices);
  LeftOut leftOut, leftOutAgain;
  Ptr<Pkt> const pkt = pktInDirt(request, leftOut, 0xff);
  check(request, *pkt);
  checkLeftOut(request, leftOut, *pkt);
  Ptr<Pkt> const again = pktInDirt(request, leftOutAgain, 0x5a);
  check(request, *again);
  FUZZ_CHECK(std::ranges::equal(pkt->octets(), again->octets()));
  Ptr<Pkt> const unasked = build(request);
  FUZZ_CHECK(std::ranges::equal(pkt->octets(), unasked->octets()));
  return 0;
}

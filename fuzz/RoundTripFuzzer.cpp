// Whatever is configured, the frame that is built is received again: its checksum is right, and the parser gives the
// values that were configured, with as many of the prefixes as fit, in their order.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils.h>
#include <fuzz/Fuzzer.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace RouterAdvt;

/// Values out of the input; zeros when it is used up.
class Input {
 public:
  explicit Input(std::span<U8 const> octets) : octets_(octets) {}

  U8 octet() {
    if (octets_.empty()) return 0;
    U8 const result = octets_[0];
    octets_ = octets_.subspan(1);
    return result;
  }
  bool flag() { return (octet() & 1) != 0; }
  U32 number() {
    U32 result = 0;
    for (int i = 0; i < 4; ++i) result = result << 8 | octet();
    return result;
  }
  /// A number that is small, or large, or any.
  U32 someNumber() {
    switch (octet() % 4) {
      case 0:
        return octet();
      case 1:
        return 0xffffffff - octet();
      default:
        return number();
    }
  }
  Ip6Addr address() {
    std::array<U8, 16> octets{0x20, 0x01, 0x0d, 0xb8};
    if (octet() % 4 == 0) octets = {};
    if (octet() % 4 == 0) octets[0] = octet();
    octets[5] = octet();
    octets[15] = octet();
    return Ip6Addr::fromBytes(octets);
  }
  std::string text() {
    std::string result(octet() % 80, 'x');
    for (char& c : result)
      if (U8 const value = octet(); value != 0) c = static_cast<char>(value);
    return result;
  }

 private:
  std::span<U8 const> octets_;
};

struct Expected {
  RaPacket record;
  std::size_t room = 0;  ///< octets for prefixes

  void add(RaPacketPrefixInfo const& info) {
    if (room < 32) {
      room = 0;
      return;
    }
    room -= 32;
    // Two addresses of one subnet are advertised twice; the first one counts.
    if (!record.prefixInfo().contains(info.prefix())) record.prefixInfoIs(info.prefix(), info);
  }
};

RaPacketPrefixInfo prefixInfo(Ip6AddrWithMask const& prefix, bool onLink, bool autoConfig, U32 valid, U32 preferred) {
  RaPacketPrefixInfo info(prefix);
  info.onLinkFlagIs(onLink);
  info.autoConfigFlagIs(autoConfig);
  info.validLifetimeIs(valid);
  info.preferredLifetimeIs(preferred);
  return info;
}

void configureHeader(Input& input, IntfConfig& config) {
  config.raLifetimeIs(input.someNumber());
  config.hopLimitIs(input.someNumber());
  config.managedConfigFlagIs(input.flag());
  config.otherConfigFlagIs(input.flag());
  config.reachableTimeIs(input.someNumber());
  config.raMtuSuppressIs(input.flag());
  config.raIntervalMaxMsecIs(input.someNumber());
  static constexpr Icmp6RouterAdvtRouterPreferenceType preferences[] = {Icmp6RouterAdvtRouterPreferenceType::medium,
                                                                        Icmp6RouterAdvtRouterPreferenceType::high,
                                                                        Icmp6RouterAdvtRouterPreferenceType::low};
  config.routerPreferenceIs(preferences[input.octet() % 3]);
}

void configurePrefixes(Input& input, IntfConfig& config, Ip6::IntfStatus& status) {
  for (U32 count = input.octet() % 64; count > 0; --count) {
    auto const entry = config.prefixesIs(Ip6AddrWithMask(input.address(), input.octet()));
    entry->noAdvertiseIs(input.octet() % 8 == 1);
    entry->noOnLinkIs(input.flag());
    entry->noAutoConfigIs(input.flag());
    entry->validLifetimeIs(input.someNumber());
    entry->preferredLifetimeIs(input.someNumber());
  }
  for (U32 count = input.octet() % 8; count > 0; --count)
    status.addrIs(Ip6AddrWithMask(input.address(), static_cast<U8>(input.octet() % 129)));
}

void configureDns(Input& input, IntfConfig& config) {
  for (U32 count = input.octet() % 8; count > 0; --count) {
    auto const entry = config.dnsServersIs(input.address());
    entry->lifetimeConfiguredIs(input.flag());
    entry->lifetimeIs(input.octet() % 4);
  }
  for (U32 count = input.octet() % 8; count > 0; --count) {
    auto const entry = config.dnsSuffixesIs(input.text());
    entry->lifetimeConfiguredIs(input.flag());
    entry->lifetimeIs(input.octet() % 4);
  }
  config.networkBootFileUrlIs(input.text());
}

Expected expectedOf(IntfConfig const& config, Ip6::IntfStatus const& status, Ip6Addr const& source, bool withLifetime,
                    S32 mtu) {
  Expected expected{RaPacket(config.intfId())};
  RaPacket& record = expected.record;
  record.srcIp6AddrIs(source);
  record.curHopLimitIs(static_cast<U8>(config.validHopLimit()));
  record.managedConfigFlagIs(config.managedConfigFlag());
  record.otherConfigFlagIs(config.otherConfigFlag());
  record.reachableTimeIs(config.reachableTime());
  record.retransTimerIs(status.nsRetransmitInterval());
  if (withLifetime) record.routerLifeTimeIs(static_cast<U16>(config.raLifetime()));
  record.mtuSpecifiedIs(!config.raMtuSuppress());
  if (!config.raMtuSuppress()) record.mtuIs(static_cast<U32>(mtu));
  expected.room = static_cast<std::size_t>(std::min(mtu, 1536)) - (config.raMtuSuppress() ? 78 : 86);
  if (config.prefixesToAdvertise()) {
    for (PrefixConfigEntry const& entry : config.prefixes().frozen())
      if (!entry.noAdvertise())
        expected.add(prefixInfo(entry.key(), !entry.noOnLink(), !entry.noAutoConfig(), entry.validLifetime(),
                                entry.preferredLifetime()));
  } else {
    for (Ip6AddrWithMask const& address : status.addr().frozen())
      if (!address.address().isLinkLocal() && !config.prefixes().contains(address.subnet()))
        expected.add(prefixInfo(address.subnet(), !PrefixDefault::noOnLink(), !PrefixDefault::noAutoConfig(),
                                PrefixDefault::validLifetime(), PrefixDefault::preferredLifetime()));
  }
  return expected;
}

}  // namespace

std::size_t const fuzzGeneratedInputs = 10'000;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Input input({data, size});
  auto const config = intfConfigFactory("Ethernet1");
  auto const status = Fwk::create<Ip6::IntfStatus>(IntfId("Ethernet1"));
  S32 const mtu = input.octet() % 4 == 0 ? 86 + input.octet() : 86 + static_cast<S32>(input.number() % 9000);
  bool const advertiseLifetime = input.octet() % 4 != 1;
  bool const deathPacket = input.octet() % 4 == 1;
  Ip6Addr const source = input.address();
  Ip6Addr const dest("ff02::1");
  status->nsRetransmitIntervalIs(input.someNumber());
  configureHeader(input, *config);
  configurePrefixes(input, *config, *status);
  configureDns(input, *config);

  auto const pkt = makeIp6RaPkt(source, dest, EthAddr("02:00:00:00:00:01"), EthAddr("33:33:00:00:00:01"), status,
                                config, advertiseLifetime, mtu, false, nullptr, "Ethernet1", deathPacket);
  auto const received = Ip6PktInfo::fromEthernetFrame(pkt->octets());
  FUZZ_CHECK(received.reason == Ip6PktInfo::Reason::none);
  FUZZ_CHECK(received.info->sourceAddr() == source);
  FUZZ_CHECK(received.info->destAddr() == dest);
  FUZZ_CHECK(received.info->hopLimit() == 255);
  FUZZ_CHECK(icmp6ChecksumValid(received.info));
  RaPacket const record = makeRaPacketType("Ethernet1", received.info);
  FUZZ_CHECK(record == expectedOf(*config, *status, source, advertiseLifetime && !deathPacket, mtu).record);
  return 0;
}

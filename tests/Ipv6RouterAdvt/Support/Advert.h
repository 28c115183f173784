#pragma once

#include <Ipv6RouterAdvt/RouterAdvtUtils.h>
#include <tests/Ipv6RouterAdvt/Support/Frame.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

/// What the tests of the builder share.
namespace AdvertTest {

using Frame::Octets;
using Fwk::Ptr;
using Fwk::U16;
using Fwk::U32;
using Fwk::U64;
using Fwk::U8;
using Net::EthAddr;
using Net::IntfId;
using Net::Ip6Addr;
using Net::Ip6AddrWithMask;
using Net::Pkt;
using Preference = Net::Icmp6RouterAdvtRouterPreferenceType;
using RouterAdvt::IntfConfig;

/// An advertisement, at first the least: no address, no prefix, no DNS.
struct Advert : RouterAdvt::AdvertRequest {
  Advert() {
    srcAddr = Ip6Addr("fe80::1");
    srcMac = EthAddr("02:00:00:00:00:01");
    intfStatus = status;
    intfConfig = config;
  }

  // What the request refers to, to be changed.
  Ptr<Ip6::IntfStatus> status = Ip6::IntfStatus::IntfStatusIs("Ethernet1");
  Ptr<IntfConfig> config = IntfConfig::IntfConfigIs("Ethernet1");
  Ptr<Ip6::VirtualRouterStatusV6> virtualRouter;

  /// By the function whose arguments are the request.
  Ptr<Pkt> pkt() const {
    return RouterAdvt::makeIp6RaPkt(srcAddr, dstAddr, srcMac, dstMac, intfStatus, intfConfig, advertiseLifetime, mtu,
                                    useVirtualRouter, virtualRouterStatus, "Ethernet1", deathPacket);
  }

  Octets frame() const {
    Ptr<Pkt> const built = pkt();
    return {built->octets().begin(), built->octets().end()};
  }

  /// The options of the frame, in hexadecimal digits.
  std::vector<std::string> options() const {
    auto const found = Frame::options(frame());
    EXPECT_TRUE(found) << "the options do not end where the frame does";
    std::vector<std::string> hex;
    for (Octets const& option : found.value_or(std::vector<Octets>())) hex.push_back(Frame::toHex(option));
    return hex;
  }

  /// Those of one type.
  std::vector<std::string> options(U8 type) const {
    std::vector<std::string> hex;
    for (std::string const& option : options())
      if (option.starts_with(Frame::toHex({&type, 1}))) hex.push_back(option);
    return hex;
  }

  void address(std::string_view text) { status->addrIs(Ip6AddrWithMask(text)); }
  Ptr<RouterAdvt::PrefixConfigEntry> prefix(std::string_view text) { return config->prefixesIs(Ip6AddrWithMask(text)); }
  void server(std::string_view text, U32 lifetime) {
    auto const entry = config->dnsServersIs(Ip6Addr(text));
    entry->lifetimeIs(lifetime);
    entry->lifetimeConfiguredIs(true);
  }
  void suffix(std::string const& text, U32 lifetime) {
    auto const entry = config->dnsSuffixesIs(text);
    entry->lifetimeIs(lifetime);
    entry->lifetimeConfiguredIs(true);
  }
  /// Advertises for a virtual router with one more prefix.
  void virtualPrefix(std::string_view text) {
    useVirtualRouter = true;
    if (!virtualRouter) virtualRouter = Ip6::VirtualRouterStatusV6::VirtualRouterStatusV6Is("vrrp");
    virtualRouterStatus = virtualRouter;
    virtualRouter->prefixIs(Ip6AddrWithMask(text));
  }
};

/// The advertisement of every example and measurement: source address, MTU, two prefixes, two DNS servers, two names.
inline Advert typicalAdvert() {
  Advert advert;
  advert.prefix("2001:db8:1::/64");
  advert.prefix("2001:db8:2::/64");
  advert.config->dnsServersIs(Ip6Addr("2001:db8::53"));
  advert.config->dnsServersIs(Ip6Addr("2001:db8::1:53"));
  advert.config->dnsSuffixesIs("example.com");
  advert.config->dnsSuffixesIs("example.net");
  return advert;
}

/// Hexadecimal digits that are set apart by blanks, together.
inline std::string operator""_hex(char const* digits, std::size_t size) {
  return Frame::toHex(Frame::fromHex({digits, size}));
}

/// The octets of a text in hexadecimal digits.
inline std::string hexOf(std::string_view text) {
  return Frame::toHex({reinterpret_cast<U8 const*>(text.data()), text.size()});
}

/// A frame's buffer for an option writer: of exactly the octets that may be written, and dirty.
class OptionBuffer {
 public:
  static constexpr U8 dirt = 0xee;

  /// `pktBufSize` octets, and as many behind them as the end of a search list may need.
  explicit OptionBuffer(U64 pktBufSize, U64 behind = 9) : octets_(pktBufSize + behind, dirt) {
    octets_.shrink_to_fit();
  }

  U8* data() { return octets_.data(); }
  std::span<U8> octets() { return octets_; }
  /// The octets from `from` to `to`, in hexadecimal digits.
  std::string hex(U64 from, U64 to) const { return Frame::toHex(Frame::View(octets_).subspan(from, to - from)); }
  /// Whether nothing was written from `from` on.
  bool untouchedFrom(U64 from) const {
    for (U64 i = from; i < octets_.size(); ++i)
      if (octets_[i] != dirt) return false;
    return true;
  }

 private:
  Octets octets_;
};

}  // namespace AdvertTest

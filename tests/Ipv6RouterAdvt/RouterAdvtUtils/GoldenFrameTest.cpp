#include <tests/Ipv6RouterAdvt/Support/Advert.h>

// Whole frames, written down field by field from RFC 2464, 8200, 4861, 4191 and 8106; tshark and scapy read them so,
// and find their checksums good.

namespace {

using namespace AdvertTest;

// clang-format off
constexpr char const* minimal =
    "333300000001 020000000001 86dd "                     // Ethernet
    "60000000 0018 3a ff "                                // IPv6: payload length 24, ICMPv6, hop limit 255
    "fe800000000000000000000000000001 "
    "ff020000000000000000000000000001 "
    "86 00 321d 40 00 0708 00000000 00000000 "            // Router Advertisement: hop limit 64, 1800 s
    "0101 020000000001";                                  // Source Link-Layer Address

constexpr char const* typical =
    "333300000001 020000000001 86dd "
    "60000000 00b0 3a ff "
    "fe800000000000000000000000000001 "
    "ff020000000000000000000000000001 "
    "86 00 d29d 40 00 0708 00000000 00000000 "
    "0101 020000000001 "
    "0501 0000 000005dc "                                 // MTU 1500
    "0304 40 c0 00278d00 00093a80 00000000 20010db8000100000000000000000000 "  // Prefix Information, L and A
    "0304 40 c0 00278d00 00093a80 00000000 20010db8000200000000000000000000 "
    "1905 0000 0000012c "                                 // RDNSS, 300 s
    "20010db8000000000000000000000053 "
    "20010db8000000000000000000010053 "
    "1f05 0000 0000012c "                                 // DNSSL, 300 s
    "07 6578616d706c65 03 636f6d 00 "                     // example.com
    "07 6578616d706c65 03 6e6574 00 "                     // example.net
    "000000000000";

constexpr char const* everything =
    "00005e000201 02aabbccddee 86dd "
    "60000000 0110 3a ff "
    "fe8000000000000000aabbfffeccddee "
    "fe800000000000000000000000000099 "
    "86 00 235a ff c8 1170 00007530 000003e8 "            // M, O, high preference; 70000 s truncated
    "0101 02aabbccddee "
    "0501 0000 00002328 "
    "0304 40 80 ffffffff ffffffff 00000000 20010db8000100000000000000000000 "
    "0304 30 40 00000e10 00000708 00000000 20010db8ffff00000000000000000000 "
    "0304 80 00 00000000 00000000 00000000 20010db8000300000000000000000007 "
    "1905 0000 00000258 "
    "20010db8000000000000000000000053 "
    "20010db8000000000000000000000055 "
    "1903 0000 00000000 "
    "20010db8000000000000000000000054 "
    "1f04 0000 00000258 "
    "07 6578616d706c65 03 636f6d 00 "
    "01 61 00 01 62 00 "                                  // "a..b" with its empty label
    "0000000000 "
    "1f03 0000 0000003c "
    "03 6c6162 07 6578616d706c65 00 "                     // lab.example
    "000000 "
    "fd03 0003 0000 0000 "                                // network boot, 3 octets of padding
    "746674703a2f2f5b3a3a315d2f "                         // tftp://[::1]/
    "000000";
// clang-format on

TEST(GoldenFrame, Minimal) {
  Advert advert;
  advert.config->raMtuSuppressIs(true);
  EXPECT_EQ(Frame::toHex(advert.frame()), Frame::toHex(Frame::fromHex(minimal)));
}

TEST(GoldenFrame, Typical) { EXPECT_EQ(Frame::toHex(typicalAdvert().frame()), Frame::toHex(Frame::fromHex(typical))); }

void configurePrefix(Advert& advert, char const* text, bool noOnLink, bool noAutoConfig, U32 validLifetime,
                     U32 preferredLifetime) {
  auto const entry = advert.prefix(text);
  entry->noOnLinkIs(noOnLink);
  entry->noAutoConfigIs(noAutoConfig);
  entry->validLifetimeIs(validLifetime);
  entry->preferredLifetimeIs(preferredLifetime);
}

TEST(GoldenFrame, Everything) {
  Advert advert;
  advert.srcAddr = Ip6Addr("fe80::aa:bbff:fecc:ddee");
  advert.dstAddr = Ip6Addr("fe80::99");
  advert.srcMac = EthAddr("02:aa:bb:cc:dd:ee");
  advert.dstMac = EthAddr("00:00:5e:00:02:01");
  advert.mtu = 9000;
  advert.status->nsRetransmitIntervalIs(1000);
  IntfConfig& config = *advert.config;
  config.hopLimitIs(300);
  config.raLifetimeIs(70000);
  config.reachableTimeIs(30000);
  config.managedConfigFlagIs(true);
  config.otherConfigFlagIs(true);
  config.routerPreferenceIs(Preference::high);
  configurePrefix(advert, "2001:db8:1::/64", false, true, 0xffffffff, 0xffffffff);
  configurePrefix(advert, "2001:db8:ffff::/48", true, false, 3600, 1800);
  configurePrefix(advert, "2001:db8:3::7/128", true, true, 0, 0);
  config.dnsServersLifetimeIs(600);
  config.dnsServersLifetimeConfiguredIs(true);
  config.dnsServersIs(Ip6Addr("2001:db8::53"));
  advert.server("2001:db8::54", 0);
  config.dnsServersIs(Ip6Addr("2001:db8::55"));
  config.raIntervalMaxMsecIs(400000);
  config.dnsSuffixesIs("example.com");
  advert.suffix("lab.example", 60);
  config.dnsSuffixesIs("a..b");
  config.networkBootFileUrlIs("tftp://[::1]/");
  EXPECT_EQ(Frame::toHex(advert.frame()), Frame::toHex(Frame::fromHex(everything)));
}

}  // namespace

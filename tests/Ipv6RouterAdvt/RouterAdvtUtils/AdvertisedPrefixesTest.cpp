#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <tests/Ipv6RouterAdvt/Support/Advert.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>

// Which prefixes are advertised, from which of the three sources, with which parameters, and what is said about it.

namespace {

using namespace AdvertTest;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr U8 prefixInfo = 3;
std::string const builtIn = "c0 00278d00 00093a80 00000000"_hex;  // flags, 30 days, 7 days, reserved

/// A Prefix Information option of that prefix length; `rest` has the fields from the flags on.
std::string option(U8 prefixLength, std::string const& rest, char const* prefix) {
  return "0304" + Frame::toHex({&prefixLength, 1}) + rest + prefix;
}

/// Messages of `level` of one build that begin like those about prefixes.
std::vector<std::string> prefixMessages(Advert const& advert, unsigned level) {
  Trace::Capture capture("RouterAdvtUtils", std::to_string(level));
  advert.pkt();
  std::vector<std::string> found;
  for (std::string const& text : capture.texts(level))
    if (text.find("refix") != std::string::npos && !text.starts_with("Length after")) found.push_back(text);
  return found;
}

// Source: the virtual router.

TEST(VirtualRouterPrefixes, AreLeftOutWhenThereIsNoVirtualRouter) {
  Advert advert;
  advert.useVirtualRouter = true;
  advert.prefix("2001:db8:1::/64");
  advert.address("2001:db8:2::1/64");
  EXPECT_THAT(advert.options(prefixInfo), IsEmpty());
  EXPECT_THAT(prefixMessages(advert, 3), IsEmpty());
}

TEST(VirtualRouterPrefixes, AreNotAskedForWithoutTheSwitch) {
  Advert advert;
  advert.virtualPrefix("2001:db8:1::/64");
  advert.useVirtualRouter = false;
  EXPECT_THAT(advert.options(prefixInfo), IsEmpty());
}

TEST(VirtualRouterPrefixes, ReplaceConfiguredPrefixesAndAddresses) {
  Advert advert;
  advert.virtualPrefix("2001:db8:1::/64");
  advert.prefix("2001:db8:2::/64");
  advert.address("2001:db8:3::1/64");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000000")));
}

TEST(VirtualRouterPrefixes, OfAnEmptySetAreNone) {
  Advert advert;
  advert.virtualPrefix("2001:db8:1::/64");
  advert.virtualRouter->prefixDelAll();
  advert.address("2001:db8:3::1/64");
  EXPECT_THAT(advert.options(prefixInfo), IsEmpty());
}

TEST(VirtualRouterPrefixes, KeepTheirHostBits) {
  Advert advert;
  advert.virtualPrefix("2001:db8:1::5/64");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000005")));
}

TEST(VirtualRouterPrefixes, AreLookedUpExactlyAsTheyAre) {
  Advert advert;
  advert.virtualPrefix("2001:db8:1::5/64");
  advert.prefix("2001:db8:1::/64")->validLifetimeIs(1);  // its subnet, which is another key
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000005")));
}

TEST(VirtualRouterPrefixes, TakeTheParametersOfTheConfiguredPrefix) {
  Advert advert;
  advert.virtualPrefix("2001:db8:1::/64");
  auto const entry = advert.prefix("2001:db8:1::/64");
  entry->validLifetimeIs(0x11121314);
  entry->preferredLifetimeIs(0x01020304);
  entry->noOnLinkIs(true);
  EXPECT_THAT(advert.options(prefixInfo),
              ElementsAre(option(64, "40 11121314 01020304 00000000"_hex, "20010db8000100000000000000000000")));
}

TEST(VirtualRouterPrefixes, InheritTheParametersOfTheLastConfiguredOneBefore) {
  Advert advert;
  for (char const* prefix : {"2001:db8:1::/64", "2001:db8:2::/64", "2001:db8:3::/64", "2001:db8:4::/64"})
    advert.virtualPrefix(prefix);
  auto const second = advert.prefix("2001:db8:2::/64");
  second->validLifetimeIs(0x20);
  second->preferredLifetimeIs(0x10);
  second->noAutoConfigIs(true);
  advert.prefix("2001:db8:4::/64");  // with the values of a new entry
  std::string const seconds = "80 00000020 00000010 00000000"_hex;
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000000"),
                                                      option(64, seconds, "20010db8000200000000000000000000"),
                                                      option(64, seconds, "20010db8000300000000000000000000"),
                                                      option(64, builtIn, "20010db8000400000000000000000000")));
}

TEST(VirtualRouterPrefixes, InheritNothingFromOneThatIsNotAdvertised) {
  Advert advert;
  advert.virtualPrefix("2001:db8:1::/64");
  advert.virtualPrefix("2001:db8:2::/64");
  auto const first = advert.prefix("2001:db8:1::/64");
  first->noAdvertiseIs(true);
  first->validLifetimeIs(1);
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000200000000000000000000")));
}

TEST(VirtualRouterPrefixes, InheritAnewInEveryBuild) {
  Advert advert;
  advert.virtualPrefix("2001:db8:1::/64");
  advert.virtualPrefix("2001:db8:2::/64");
  advert.prefix("2001:db8:2::/64")->validLifetimeIs(1);
  auto const first = advert.options(prefixInfo);
  EXPECT_EQ(advert.options(prefixInfo), first);
  EXPECT_EQ(first.at(0), option(64, builtIn, "20010db8000100000000000000000000"));
}

TEST(VirtualRouterPrefixes, LinkLocalOnesAreAdvertisedToo) {
  Advert advert;
  advert.virtualPrefix("fe80::/64");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "fe800000000000000000000000000000")));
}

TEST(VirtualRouterPrefixes, SayWhichAreSkippedAndCopied) {
  Advert advert;
  advert.virtualPrefix("2001:db8:1::1/64");
  advert.virtualPrefix("2001:db8:2::/48");
  advert.prefix("2001:db8:1::1/64")->noAdvertiseIs(true);
  EXPECT_THAT(prefixMessages(advert, 3), ElementsAre("PrefixList: noAdvertise set for prefix. Skip 2001:db8:1::1/64",
                                                     "Copy prefix: 2001:db8:2::/48 to MsgBuf"));
  EXPECT_THAT(prefixMessages(advert, 8), IsEmpty());
}

TEST(VirtualRouterPrefixes, EndWithTheFirstThatDoesNotFit) {
  Advert advert;
  advert.mtu = 149;  // 86 and one prefix and 31
  for (char const* prefix : {"2001:db8:1::/64", "2001:db8:2::/64", "2001:db8:3::/64"}) advert.virtualPrefix(prefix);
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000000")));
  EXPECT_THAT(prefixMessages(advert, 3), ElementsAre("Copy prefix: 2001:db8:1::/64 to MsgBuf",
                                                     "Could not copy prefix as msgLen ( 118 ) > pktBufSize > ( 149)"));
}

TEST(VirtualRouterPrefixes, OneThatIsSkippedNeedsNoRoom) {
  Advert advert;
  advert.mtu = 86;
  advert.virtualPrefix("2001:db8:1::/64");
  advert.prefix("2001:db8:1::/64")->noAdvertiseIs(true);
  EXPECT_THAT(prefixMessages(advert, 3), ElementsAre("PrefixList: noAdvertise set for prefix. Skip 2001:db8:1::/64"));
}

// Source: the configuration.

TEST(ConfiguredPrefixes, AreAdvertisedInTheOrderInWhichTheyWereConfigured) {
  Advert advert;
  for (char const* prefix : {"2001:db8:3::/64", "2001:db8:1::/48", "2001:db8:2::/64"}) advert.prefix(prefix);
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000300000000000000000000"),
                                                      option(48, builtIn, "20010db8000100000000000000000000"),
                                                      option(64, builtIn, "20010db8000200000000000000000000")));
}

TEST(ConfiguredPrefixes, HaveTheirOwnParametersEach) {
  Advert advert;
  auto const first = advert.prefix("2001:db8:1::/64");
  first->validLifetimeIs(0xffffffff);
  first->preferredLifetimeIs(0);
  first->noAutoConfigIs(true);
  advert.prefix("2001:db8:2::/64")->noOnLinkIs(true);
  EXPECT_THAT(advert.options(prefixInfo),
              ElementsAre(option(64, "80 ffffffff 00000000 00000000"_hex, "20010db8000100000000000000000000"),
                          option(64, "40 00278d00 00093a80 00000000"_hex, "20010db8000200000000000000000000")));
}

TEST(ConfiguredPrefixes, KeepTheirHostBits) {
  Advert advert;
  advert.prefix("2001:db8:1::5/64");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000005")));
}

TEST(ConfiguredPrefixes, ReplaceTheAddresses) {
  Advert advert;
  advert.prefix("2001:db8:1::/64");
  advert.address("2001:db8:2::1/64");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000000")));
}

TEST(ConfiguredPrefixes, LinkLocalOnesAreAdvertisedToo) {
  Advert advert;
  advert.prefix("fe80::/64");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "fe800000000000000000000000000000")));
}

TEST(ConfiguredPrefixes, AreSilentlySkippedWhenNotAdvertised) {
  Advert advert;
  advert.prefix("2001:db8:1::/64")->noAdvertiseIs(true);
  advert.prefix("2001:db8:2::/64");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000200000000000000000000")));
  EXPECT_THAT(prefixMessages(advert, 3), IsEmpty());
  EXPECT_THAT(prefixMessages(advert, 8), ElementsAre("Copy prefix: 2001:db8:2::/64 to MsgBuf"));
}

TEST(ConfiguredPrefixes, AreReadWithoutTheirProfiles) {
  auto const config = RouterAdvt::configFactory("ra");
  auto const profile = config->prefixProfilesIs("guest");
  profile->validLifetimeIs(1);
  profile->preferredLifetimeIs(1);
  profile->noAdvertiseIs(true);
  profile->noOnLinkIs(true);
  profile->noAutoConfigIs(true);
  Advert advert;
  advert.intfConfig = advert.config = config->intfIs("Ethernet1");
  advert.prefix("2001:db8:1::/64")->profileIs("guest");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000000")));
}

TEST(ConfiguredPrefixes, EndWithTheFirstThatDoesNotFit) {
  Advert advert;
  advert.mtu = 149;
  for (char const* prefix : {"2001:db8:1::/64", "2001:db8:2::/64", "2001:db8:3::/64"}) advert.prefix(prefix);
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000000")));
  EXPECT_THAT(prefixMessages(advert, 3), ElementsAre("Could not copy prefix as msgLen ( 118 ) > pktBufSize > ( 149)"));
  EXPECT_THAT(prefixMessages(advert, 8), ElementsAre("Copy prefix: 2001:db8:1::/64 to MsgBuf"));
}

TEST(ConfiguredPrefixes, FillTheFrameToItsLastOctet) {
  Advert advert;
  advert.mtu = 150;
  advert.prefix("2001:db8:1::/64");
  advert.prefix("2001:db8:2::/64");
  EXPECT_EQ(advert.frame().size(), 150U);
  EXPECT_THAT(prefixMessages(advert, 3), IsEmpty());
}

TEST(ConfiguredPrefixes, ThatDoNotFitLeaveTheRoomToTheNextKindOfOption) {
  Advert advert;
  advert.mtu = 117;
  advert.prefix("2001:db8:1::/64");
  advert.server("2001:db8::53", 300);
  EXPECT_THAT(advert.options(prefixInfo), IsEmpty());
  EXPECT_EQ(advert.options(25).size(), 1U);
}

// Source: the interface's addresses.

TEST(AddressPrefixes, OfAnAddressWithoutConfigurationIsItsSubnetWithTheBuiltInParameters) {
  Advert advert;
  advert.address("2001:db8::5/64");
  EXPECT_THAT(advert.options(prefixInfo),
              ElementsAre("030440c0 00278d00 00093a80 00000000 20010db8000000000000000000000000"_hex));
}

TEST(AddressPrefixes, ComeInTheOrderOfTheAddresses) {
  Advert advert;
  for (char const* address : {"2001:db8:3::1/64", "2001:db8:1:2::1/48", "2001:db8:2::1/128"}) advert.address(address);
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000300000000000000000000"),
                                                      option(48, builtIn, "20010db8000100000000000000000000"),
                                                      option(128, builtIn, "20010db8000200000000000000000001")));
}

TEST(AddressPrefixes, OfTwoAddressesInOneSubnetAreTwoOptions) {
  Advert advert;
  advert.address("2001:db8::1/64");
  advert.address("2001:db8::2/64");
  EXPECT_EQ(advert.options(prefixInfo).size(), 2U);
}

TEST(AddressPrefixes, OfALinkLocalAddressAloneAreNone) {
  Advert advert;
  advert.address("fe80::1/64");
  EXPECT_THAT(advert.options(prefixInfo), IsEmpty());
  EXPECT_THAT(prefixMessages(advert, 3), ElementsAre("PrefixList: Skip LinkLocal Address fe80::1/64"));
}

TEST(AddressPrefixes, AreUsedWhenNoConfiguredPrefixIsToBeAdvertised) {
  Advert advert;
  advert.prefix("2001:db8:9::/64")->noAdvertiseIs(true);
  advert.address("2001:db8::5/64");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000000000000000000000000")));
}

TEST(AddressPrefixes, ConfiguredNotToBeAdvertisedAreSkipped) {
  Advert advert;
  advert.prefix("2001:db8:1::/64")->noAdvertiseIs(true);
  advert.address("2001:db8:1::5/64");
  advert.address("2001:db8:2::5/64");
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000200000000000000000000")));
}

TEST(AddressPrefixes, OfAnAddressConfiguredWithItsHostBitsAreNotSkipped) {
  Advert advert;
  advert.prefix("2001:db8:1::5/64")->noAdvertiseIs(true);  // not the subnet
  advert.address("2001:db8:1::5/64");
  EXPECT_EQ(advert.options(prefixInfo).size(), 1U);
}

TEST(AddressPrefixes, SayWhichAreSkippedAndCopied) {
  Advert advert;
  advert.prefix("2001:db8:1::/64")->noAdvertiseIs(true);
  for (char const* address : {"fe80::1/10", "2001:db8:1::5/64", "2001:db8:2::5/64"}) advert.address(address);
  EXPECT_THAT(prefixMessages(advert, 3), ElementsAre("PrefixList: Skip LinkLocal Address fe80::1/10",
                                                     "PrefixList: noAdvertise set for prefix. Skip 2001:db8:1::5/64",
                                                     "Copy prefix: 2001:db8:2::/64 to MsgBuf"));
  EXPECT_THAT(prefixMessages(advert, 8), IsEmpty());
}

TEST(AddressPrefixes, EndWithTheFirstThatDoesNotFit) {
  Advert advert;
  advert.mtu = 149;
  for (char const* address : {"2001:db8:1::1/64", "2001:db8:2::1/64", "fe80::1/64", "2001:db8:3::1/64"})
    advert.address(address);
  EXPECT_THAT(advert.options(prefixInfo), ElementsAre(option(64, builtIn, "20010db8000100000000000000000000")));
  EXPECT_THAT(prefixMessages(advert, 3), ElementsAre("Copy prefix: 2001:db8:1::/64 to MsgBuf",
                                                     "Could not copy prefix as msgLen ( 118 ) > pktBufSize > ( 149)"));
}

TEST(AddressPrefixes, OneThatIsSkippedNeedsNoRoom) {
  Advert advert;
  advert.mtu = 86;
  advert.prefix("2001:db8:1::/64")->noAdvertiseIs(true);
  advert.address("fe80::1/64");
  advert.address("2001:db8:1::5/64");
  EXPECT_THAT(prefixMessages(advert, 3), Not(Contains(HasSubstr("Could not copy"))));
}

TEST(AddressPrefixes, OfAnInterfaceWithoutAddressesAreNone) { EXPECT_THAT(Advert().options(prefixInfo), IsEmpty()); }

}  // namespace

#include <tests/Ipv6RouterAdvt/Support/Advert.h>
#include <tests/RouterPlatform/Trace/TraceCapture.h>

#include <gmock/gmock.h>

// What a build notes of the things that did not fit.

namespace {

using namespace AdvertTest;
using RouterAdvt::LeftOut;
using RouterAdvt::S32;
using testing::ElementsAre;
using testing::IsEmpty;

LeftOut leftOutOf(Advert const& advert) {
  LeftOut leftOut{.frameSizeMax = 1, .urlCutAt = 7};  // of a former build
  RouterAdvt::build(advert, &leftOut);
  return leftOut;
}

std::vector<std::string> prefixTexts(LeftOut const& leftOut) {
  std::vector<std::string> texts;
  for (Ip6AddrWithMask const& prefix : leftOut.prefixes) texts.push_back(prefix.toString());
  return texts;
}
std::vector<std::string> suffixTexts(LeftOut const& leftOut) {
  std::vector<std::string> texts;
  for (auto const& [suffix, cutAt] : leftOut.suffixes) texts.push_back(suffix + ' ' + std::to_string(cutAt));
  return texts;
}

TEST(LeftOut, IsEmptyWhenAllFits) {
  LeftOut const leftOut = leftOutOf(typicalAdvert());
  EXPECT_TRUE(leftOut.empty());
  EXPECT_EQ(leftOut.frameSizeMax, 1500U);
}

TEST(LeftOut, NamesTheGreatestFrameSizeBelowAGreaterMtu) {
  Advert advert;
  advert.mtu = 9000;
  EXPECT_EQ(leftOutOf(advert).frameSizeMax, 1536U);
}

TEST(LeftOut, HasEveryConfiguredPrefixFromTheFirstThatDoesNotFit) {
  Advert advert;
  advert.mtu = 86 + 32;
  for (char const* prefix : {"2001:db8:1::/64", "2001:db8:2::/64", "2001:db8:3::/64", "2001:db8:4::/64"})
    advert.prefix(prefix);
  advert.prefix("2001:db8:3::/64")->noAdvertiseIs(true);
  EXPECT_THAT(prefixTexts(leftOutOf(advert)), ElementsAre("2001:db8:2::/64", "2001:db8:4::/64"));
}

TEST(LeftOut, HasTheSubnetsOfAddresses) {
  Advert advert;
  advert.mtu = 86;
  for (char const* address : {"2001:db8:1::9/64", "fe80::1/64", "2001:db8:2::9/64"}) advert.address(address);
  EXPECT_THAT(prefixTexts(leftOutOf(advert)), ElementsAre("2001:db8:1::/64", "2001:db8:2::/64"));
}

TEST(LeftOut, HasThePrefixesOfAVirtualRouterAsTheyAre) {
  Advert advert;
  advert.mtu = 86;
  for (char const* prefix : {"2001:db8:1::9/64", "2001:db8:2::/64", "2001:db8:3::/64"}) advert.virtualPrefix(prefix);
  advert.prefix("2001:db8:2::/64")->noAdvertiseIs(true);
  EXPECT_THAT(prefixTexts(leftOutOf(advert)), ElementsAre("2001:db8:1::9/64", "2001:db8:3::/64"));
}

TEST(LeftOut, AskingForItChangesNoMessage) {
  Advert advert;
  advert.mtu = 86;
  for (char const* address : {"2001:db8:1::9/64", "fe80::1/64", "2001:db8:2::9/64"}) advert.address(address);
  auto const messages = [&](LeftOut* leftOut) {
    Trace::Capture capture("RouterAdvtUtils");
    RouterAdvt::build(advert, leftOut);
    return capture.texts(3);
  };
  LeftOut leftOut;
  EXPECT_EQ(messages(&leftOut), messages(nullptr));
}

TEST(LeftOut, HasTheServersOfGroupsThatDoNotFit) {
  Advert advert;
  advert.mtu = 86 + 24;
  advert.server("2001:db8::1", 300);
  advert.server("2001:db8::2", 600);
  advert.server("2001:db8::3", 300);
  EXPECT_THAT(leftOutOf(advert).servers, ElementsAre(Ip6Addr("2001:db8::1"), Ip6Addr("2001:db8::3")));
}

TEST(LeftOut, HasTheSuffixesOfGroupsThatDoNotFit) {
  Advert advert;
  advert.mtu = 86 + 16;
  advert.suffix("example.com", 300);
  advert.suffix("a", 600);
  EXPECT_THAT(suffixTexts(leftOutOf(advert)), ElementsAre("example.com 0"));
}

/// What is left out of an advertisement for `mtu`, with messages at every level and without any.
void checkSameWithMessages(Advert& advert, S32 mtu) {
  advert.mtu = mtu;
  LeftOut const quiet = leftOutOf(advert);
  auto const frame = advert.frame();
  Trace::Capture const capture("RouterAdvtUtils");
  LeftOut const traced = leftOutOf(advert);
  EXPECT_EQ(quiet.servers, traced.servers) << mtu;
  EXPECT_EQ(suffixTexts(quiet), suffixTexts(traced)) << mtu;
  EXPECT_EQ(frame, advert.frame()) << mtu;
}

TEST(LeftOut, HasTheSameServersWithMessagesThatTellTheSizeOfEachGroup) {
  Advert advert;
  for (U32 i = 1; i <= 40; ++i) advert.server("2001:db8::" + std::to_string(i), 1 + i * i % 7);
  for (S32 mtu = 86; mtu <= 1000; mtu += 2) checkSameWithMessages(advert, mtu);
}

TEST(LeftOut, HasTheSameSuffixesWithMessagesThatTellTheSizeOfEachGroup) {
  Advert advert;
  for (U32 i = 1; i <= 40; ++i) advert.suffix(std::string(1 + i % 9, 'a') + std::to_string(i), 1 + i * i % 7);
  for (S32 mtu = 86; mtu <= 600; mtu += 2) checkSameWithMessages(advert, mtu);
}

TEST(LeftOut, SaysWhereASuffixIsCut) {
  Advert advert;
  advert.mtu = 86 + 8 + 24;  // eight suffixes are estimated 8 octets too short
  for (char const* suffix : {"a", "b", "c", "d", "e", "f", "g", "h.i"}) advert.suffix(suffix, 300);
  EXPECT_THAT(suffixTexts(leftOutOf(advert)), ElementsAre("h.i 2"));
}

TEST(LeftOut, SaysWhereTheUrlIsCut) {
  Advert advert;
  advert.mtu = 86 + 16;
  advert.config->networkBootFileUrlIs("tftp://example.com/boot");
  LeftOut const leftOut = leftOutOf(advert);
  EXPECT_EQ(leftOut.urlCutAt, 8U);
  EXPECT_FALSE(leftOut.networkBoot);
  EXPECT_FALSE(leftOut.empty());
}

TEST(LeftOut, SaysThatTheNetworkBootOptionIsLeftOut) {
  Advert advert;
  advert.mtu = 86;
  advert.config->networkBootFileUrlIs("tftp://example.com/boot");
  LeftOut const leftOut = leftOutOf(advert);
  EXPECT_EQ(leftOut.urlCutAt, 0U);
  EXPECT_TRUE(leftOut.networkBoot);
}

}  // namespace

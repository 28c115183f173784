#include <RouterPlatform/Packet/PktManager.h>
#include <RouterPlatform/Trace/Trace.h>
#include <tests/Ipv6RouterAdvt/Support/Advert.h>

// Programming errors stop the process, and say where.

namespace {

using namespace AdvertTest;

/// The line that an assertion leaves, as a regular expression; `text` is one already.
std::string assertion(char const* function, char const* text) {
  return std::string("Ipv6RouterAdvt/RouterAdvtUtils:[1-9][0-9]*: ") + function + ": assertion \"" + text +
         "\" failed\n$";
}
/// The same, and nothing before it.
std::string onlyAssertion(char const* function, char const* text) { return '^' + assertion(function, text); }

constexpr char const* preferenceText =
    "intfRouterAdvtConfigPtr->routerPreference\\(\\) != Icmp6RouterAdvtRouterPreferenceType::reserved_";
constexpr char const* addrPrefixText = "intfRouterAdvtConfigPtr->prefixes\\( addrPrefix \\)->noAdvertise\\(\\)";

TEST(BuilderDeathTest, AReservedPreferenceIsAProgrammingError) {
  Advert advert;
  advert.config->routerPreferenceIs(Preference::reserved_);
  EXPECT_DEATH(advert.pkt(), onlyAssertion("preferenceFor", preferenceText));
}

TEST(BuilderDeathTest, AReservedPreferenceIsOneInADeathPacketToo) {
  Advert advert;
  advert.config->routerPreferenceIs(Preference::reserved_);
  advert.deathPacket = true;
  EXPECT_DEATH(advert.pkt(), onlyAssertion("preferenceFor", preferenceText));
}

TEST(BuilderDeathTest, AReservedPreferenceIsFoundBehindTheMessageOfTheDefaultOne) {
  Advert advert;
  advert.config->routerPreferenceIs(Preference::reserved_);
  EXPECT_DEATH(
      {
        Trace::levelsIs("RouterAdvtUtils/8");
        advert.pkt();
      },
      "routerPreferenceDefault\\(\\): medium\n" + assertion("preferenceFor", preferenceText));
}

class AnMtuBelow86DeathTest : public testing::TestWithParam<Fwk::S32> {};
TEST_P(AnMtuBelow86DeathTest, IsAProgrammingErrorBeforeAnythingIsSaidOrWritten) {
  Advert advert;
  advert.mtu = GetParam();
  EXPECT_DEATH(
      {
        Trace::levelsIs("RouterAdvtUtils/*");
        advert.pkt();
      },
      onlyAssertion("makeIp6RaPkt", "mtu >= static_cast<S32>\\(fixedPartSize\\)"));
}
INSTANTIATE_TEST_SUITE_P(Mtus, AnMtuBelow86DeathTest, testing::Values(85, 54, 1, 0, -1, -1500, -2147483647 - 1));

TEST(BuilderDeathTest, AnMtuBelow86IsOneWithoutMtuOptionToo) {
  Advert advert;
  advert.config->raMtuSuppressIs(true);
  advert.mtu = 85;
  EXPECT_DEATH(advert.pkt(), onlyAssertion("makeIp6RaPkt", "mtu >= static_cast<S32>\\(fixedPartSize\\)"));
}

TEST(BuilderDeathTest, ANullStatusIsAProgrammingError) {
  Advert advert;
  advert.intfStatus = nullptr;
  EXPECT_DEATH(advert.pkt(), onlyAssertion("makeIp6RaPkt", "ip6IntfStatusPtr"));
}

TEST(BuilderDeathTest, ANullConfigurationIsAProgrammingError) {
  Advert advert;
  advert.intfConfig = nullptr;
  EXPECT_DEATH(advert.pkt(), onlyAssertion("makeIp6RaPkt", "intfRouterAdvtConfigPtr"));
}

TEST(BuilderDeathTest, ThatNoPacketIsToBeHadStopsTheProcess) {
  Advert const advert;
  EXPECT_DEATH(
      {
        Net::globalPktManager().pktLimitIs(0);
        advert.pkt();
      },
      onlyAssertion("makeIp6RaPkt", "pkt"));
}

TEST(BuilderDeathTest, ThatNoPacketIsToBeHadIsSaidFirst) {
  Advert const advert;
  EXPECT_DEATH(
      {
        Net::globalPktManager().pktLimitIs(0);
        Trace::levelsIs("RouterAdvtUtils/*");
        advert.pkt();
      },
      "^RouterAdvtUtils/2 Ipv6RouterAdvt/RouterAdvtUtils:[1-9][0-9]*: makeIp6RaPkt: Failed to allocate new packet "
      "object\n" +
          assertion("makeIp6RaPkt", "pkt"));
}

// Only a change during the build can bring an advertised prefix into the walk over the addresses.
TEST(BuilderDeathTest, AnAdvertisedPrefixAmongTheSubnetsOfTheAddressesIsAProgrammingError) {
  Advert advert;
  auto const entry = advert.prefix("2001:db8:1::/64");
  entry->noAdvertiseIs(true);
  advert.address("fe80::1/64");
  advert.address("2001:db8:1::1/64");
  EXPECT_DEATH(
      {
        Trace::sinkIs([&](Trace::Record const& record) {
          if (record.text.starts_with("PrefixList: Skip LinkLocal Address ")) entry->noAdvertiseIs(false);
        });
        Trace::levelsIs("RouterAdvtUtils/3");
        advert.pkt();
      },
      onlyAssertion("copyAddressPrefixesToRaMsgBuf", addrPrefixText));
}

}  // namespace

#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <RouterPlatform/Fwk/Attributes.h>

#include <algorithm>

namespace RouterAdvt {

U32 IntfConfig::numPrefixesToAdvertise(U32* suppressed) const {
  auto const all = prefixes_.frozen();
  U32 const withheld = static_cast<U32>(
      std::count_if(all.begin(), all.end(), [](PrefixConfigEntry const& entry) { return entry.noAdvertise(); }));
  if (suppressed) *suppressed = withheld;
  return prefixes_.size() - withheld;
}

Fwk::TypeRecord const& IntfConfig::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<IntfConfig>(
      Fwk::key<&IntfConfig::intfId>("intfId"), scalar<&IntfConfig::raSuppress, &IntfConfig::raSuppressIs>("raSuppress"),
      constant<&IntfConfig::raSuppressDefault>("raSuppressDefault"),
      scalar<&IntfConfig::raSuppressRouterSolicitationResponse, &IntfConfig::raSuppressRouterSolicitationResponseIs>(
          "raSuppressRouterSolicitationResponse"),
      constant<&IntfConfig::raSuppressRouterSolicitationResponseDefault>("raSuppressRouterSolicitationResponseDefault"),
      scalar<&IntfConfig::raIntervalMaxMsec, &IntfConfig::raIntervalMaxMsecIs>("raIntervalMaxMsec"),
      constant<&IntfConfig::raIntervalMaxDefault>("raIntervalMaxDefault"),
      scalar<&IntfConfig::raIntervalMinMsec, &IntfConfig::raIntervalMinMsecIs>("raIntervalMinMsec"),
      constant<&IntfConfig::raIntervalMinDefault>("raIntervalMinDefault"),
      scalar<&IntfConfig::raLifetime, &IntfConfig::raLifetimeIs>("raLifetime"),
      constant<&IntfConfig::raLifetimeDefault>("raLifetimeDefault"),
      scalar<&IntfConfig::raMtuSuppress, &IntfConfig::raMtuSuppressIs>("raMtuSuppress"),
      constant<&IntfConfig::raMtuSuppressDefault>("raMtuSuppressDefault"),
      scalar<&IntfConfig::managedConfigFlag, &IntfConfig::managedConfigFlagIs>("managedConfigFlag"),
      constant<&IntfConfig::managedConfigFlagDefault>("managedConfigFlagDefault"),
      scalar<&IntfConfig::otherConfigFlag, &IntfConfig::otherConfigFlagIs>("otherConfigFlag"),
      constant<&IntfConfig::otherConfigFlagDefault>("otherConfigFlagDefault"),
      scalar<&IntfConfig::routerPreference, &IntfConfig::routerPreferenceIs>("routerPreference"),
      constant<&IntfConfig::routerPreferenceDefault>("routerPreferenceDefault"),
      collection<&IntfConfig::prefixes_>("prefixes"), computed<&IntfConfig::prefixesToAdvertise>("prefixesToAdvertise"),
      unreflected("numPrefixesToAdvertise"),  // takes an argument: a number, no descriptor
      scalar<&IntfConfig::nsIntervalMsec, &IntfConfig::nsIntervalMsecIs>("nsIntervalMsec"),
      constant<&IntfConfig::nsIntervalMsecDefault>("nsIntervalMsecDefault"),
      scalar<&IntfConfig::reachableTime, &IntfConfig::reachableTimeIs>("reachableTime"),
      constant<&IntfConfig::reachableTimeDefault>("reachableTimeDefault"),
      collection<&IntfConfig::dnsServers_>("dnsServers"),
      constant<&IntfConfig::dnsServersLifetimeDefault>("dnsServersLifetimeDefault"),
      scalar<&IntfConfig::dnsServersLifetime, &IntfConfig::dnsServersLifetimeIs>("dnsServersLifetime"),
      computed<&IntfConfig::validDnsServersLifetime>("validDnsServersLifetime"),
      scalar<&IntfConfig::dnsServersLifetimeConfigured, &IntfConfig::dnsServersLifetimeConfiguredIs>(
          "dnsServersLifetimeConfigured"),
      collection<&IntfConfig::dnsSuffixes_>("dnsSuffixes"),
      constant<&IntfConfig::dnsSuffixesLifetimeDefault>("dnsSuffixesLifetimeDefault"),
      scalar<&IntfConfig::dnsSuffixesLifetime, &IntfConfig::dnsSuffixesLifetimeIs>("dnsSuffixesLifetime"),
      computed<&IntfConfig::validDnsSuffixesLifetime>("validDnsSuffixesLifetime"),
      scalar<&IntfConfig::dnsSuffixesLifetimeConfigured, &IntfConfig::dnsSuffixesLifetimeConfiguredIs>(
          "dnsSuffixesLifetimeConfigured"),
      scalar<&IntfConfig::networkBootFileUrl, &IntfConfig::networkBootFileUrlIs>("networkBootFileUrl"),
      scalar<&IntfConfig::hopLimit, &IntfConfig::hopLimitIs>("hopLimit"),
      constant<&IntfConfig::hopLimitDefault>("hopLimitDefault"), constant<&IntfConfig::hopLimitMax>("hopLimitMax"),
      computed<&IntfConfig::validHopLimit>("validHopLimit"));
  static constexpr TypeRecord record = entityRecord<IntfConfig, IntfId>(attrs, live);
  return record;
}

}  // namespace RouterAdvt

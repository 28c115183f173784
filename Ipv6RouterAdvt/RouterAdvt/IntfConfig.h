#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/DNSServerConfigEntry.h>
#include <Ipv6RouterAdvt/RouterAdvt/DNSSuffixConfigEntry.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixConfigEntry.h>
#include <RouterPlatform/Fwk/Collections.h>

namespace RouterAdvt {

/// Configuration of the advertisements on one interface: the router variables of RFC 4861 6.2.1 and the options of RFC
/// 8106. Key: `intfId`. Parent: `Config`. Setters store any value and touch nothing else; an unchanged one notifies
/// nobody, a changed one notifies with the attribute. The `valid...` operations apply the bounds. Used by one thread at
/// a time.
///
/// Collections: `x(key)` gives the member or null. `xIs(key)` gives the member, made with every default if it is not
/// there, and then notified with its key. `xDel(key)` takes the member out, notifies with the key and returns it; null,
/// and nobody notified, when it is not there. `xDelAll()` does so for every member. A setter or a mutator that makes a
/// member may throw std::bad_alloc, having changed nothing. A text that is too long for an `IntfId` throws
/// std::length_error where it becomes one.
class ROUTER_ADVT_EXPORT IntfConfig final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    intfIdAttr = Fwk::firstOwnAttr,
    raSuppressAttr,
    raSuppressDefaultAttr,
    raSuppressRouterSolicitationResponseAttr,
    raSuppressRouterSolicitationResponseDefaultAttr,
    raIntervalMaxMsecAttr,
    raIntervalMaxDefaultAttr,
    raIntervalMinMsecAttr,
    raIntervalMinDefaultAttr,
    raLifetimeAttr,
    raLifetimeDefaultAttr,
    raMtuSuppressAttr,
    raMtuSuppressDefaultAttr,
    managedConfigFlagAttr,
    managedConfigFlagDefaultAttr,
    otherConfigFlagAttr,
    otherConfigFlagDefaultAttr,
    routerPreferenceAttr,
    routerPreferenceDefaultAttr,
    prefixesAttr,
    prefixesToAdvertiseAttr,
    numPrefixesToAdvertiseAttr,
    nsIntervalMsecAttr,
    nsIntervalMsecDefaultAttr,
    reachableTimeAttr,
    reachableTimeDefaultAttr,
    dnsServersAttr,
    dnsServersLifetimeDefaultAttr,
    dnsServersLifetimeAttr,
    validDnsServersLifetimeAttr,
    dnsServersLifetimeConfiguredAttr,
    dnsSuffixesAttr,
    dnsSuffixesLifetimeDefaultAttr,
    dnsSuffixesLifetimeAttr,
    validDnsSuffixesLifetimeAttr,
    dnsSuffixesLifetimeConfiguredAttr,
    networkBootFileUrlAttr,
    hopLimitAttr,
    hopLimitDefaultAttr,
    hopLimitMaxAttr,
    validHopLimitAttr,
  };

  explicit IntfConfig(IntfId intfId) : intfId_(intfId) {}
  static Ptr<IntfConfig> IntfConfigIs(IntfId intfId) { return Fwk::create<IntfConfig>(intfId); }

  /// Interface that the configuration is for.
  IntfId intfId() const { return intfId_; }
  IntfId const& key() const noexcept { return intfId_; }

  /// Whether no unsolicited advertisements are sent. RFC 4861 6.2.1 AdvSendAdvertisements, negated.
  bool raSuppress() const { return raSuppress_; }
  void raSuppressIs(bool v) { attrIs(raSuppress_, v, raSuppressAttr); }
  static constexpr bool raSuppressDefault() { return false; }

  /// Whether router solicitations stay unanswered. RFC 4861 6.2.6.
  bool raSuppressRouterSolicitationResponse() const { return raSuppressRouterSolicitationResponse_; }
  void raSuppressRouterSolicitationResponseIs(bool v) {
    attrIs(raSuppressRouterSolicitationResponse_, v, raSuppressRouterSolicitationResponseAttr);
  }
  static constexpr bool raSuppressRouterSolicitationResponseDefault() { return false; }

  /// Longest time between unsolicited advertisements, milliseconds. RFC 4861 6.2.1 MaxRtrAdvInterval.
  U32 raIntervalMaxMsec() const { return raIntervalMaxMsec_; }
  void raIntervalMaxMsecIs(U32 v) { attrIs(raIntervalMaxMsec_, v, raIntervalMaxMsecAttr); }
  /// 200 seconds, within the bounds of RFC 4861 6.2.1, whose own default is 600 seconds: a host that missed an
  /// advertisement waits no longer than 200 seconds for the next one.
  static constexpr U32 raIntervalMaxDefault() { return 200000; }

  /// Shortest time between unsolicited advertisements, milliseconds; not compared with the longest. RFC 4861 6.2.1
  /// MinRtrAdvInterval.
  U32 raIntervalMinMsec() const { return raIntervalMinMsec_; }
  void raIntervalMinMsecIs(U32 v) { attrIs(raIntervalMinMsec_, v, raIntervalMinMsecAttr); }
  static constexpr U32 raIntervalMinDefault() { return 0; }

  /// Router Lifetime, seconds; 0: not a default router. The low 16 bits are sent. RFC 4861 6.2.1 AdvDefaultLifetime.
  U32 raLifetime() const { return raLifetime_; }
  void raLifetimeIs(U32 v) { attrIs(raLifetime_, v, raLifetimeAttr); }
  /// Three times the 600 seconds that RFC 4861 6.2.1 gives MaxRtrAdvInterval.
  static constexpr U32 raLifetimeDefault() { return 1800; }

  /// Whether the MTU option is left out. RFC 4861 4.6.4.
  bool raMtuSuppress() const { return raMtuSuppress_; }
  void raMtuSuppressIs(bool v) { attrIs(raMtuSuppress_, v, raMtuSuppressAttr); }
  static constexpr bool raMtuSuppressDefault() { return false; }

  /// M flag. RFC 4861 6.2.1 AdvManagedFlag.
  bool managedConfigFlag() const { return managedConfigFlag_; }
  void managedConfigFlagIs(bool v) { attrIs(managedConfigFlag_, v, managedConfigFlagAttr); }
  static constexpr bool managedConfigFlagDefault() { return false; }

  /// O flag. RFC 4861 6.2.1 AdvOtherConfigFlag.
  bool otherConfigFlag() const { return otherConfigFlag_; }
  void otherConfigFlagIs(bool v) { attrIs(otherConfigFlag_, v, otherConfigFlagAttr); }
  static constexpr bool otherConfigFlagDefault() { return false; }

  /// Default router preference. RFC 4191 2.2. Any value is stored. Building with `reserved_` stops the process. A value
  /// outside the enumeration prints as its number, which reflection does not read back.
  Icmp6RouterAdvtRouterPreferenceType routerPreference() const { return routerPreference_; }
  void routerPreferenceIs(Icmp6RouterAdvtRouterPreferenceType v) { attrIs(routerPreference_, v, routerPreferenceAttr); }
  static constexpr Icmp6RouterAdvtRouterPreferenceType routerPreferenceDefault() {
    return Icmp6RouterAdvtRouterPreferenceType::medium;
  }

  /// Prefixes to advertise, in the order in which they were configured.
  auto const& prefixes() const { return prefixes_; }
  Ptr<PrefixConfigEntry> prefixes(Ip6AddrWithMask const& key) const { return prefixes_.member(key); }
  Ptr<PrefixConfigEntry> prefixesIs(Ip6AddrWithMask const& key) { return prefixes_.memberIs(key); }
  Ptr<PrefixConfigEntry> prefixesDel(Ip6AddrWithMask const& key) { return prefixes_.memberDel(key); }
  void prefixesDelAll() { prefixes_.memberDelAll(); }

  /// Whether any prefix has its own `noAdvertise` clear; profiles are not asked.
  bool prefixesToAdvertise() const {
    for (PrefixConfigEntry const& entry : prefixes_.frozen())
      if (!entry.noAdvertise()) return true;
    return false;
  }

  /// How many prefixes have their own `noAdvertise` clear; `suppressed`, unless null, receives how many have it set.
  U32 numPrefixesToAdvertise(U32* suppressed = nullptr) const;

  /// Time between neighbour solicitations, milliseconds. For the agent; the Retrans Timer field is not made from it.
  U32 nsIntervalMsec() const { return nsIntervalMsec_; }
  void nsIntervalMsecIs(U32 v) { attrIs(nsIntervalMsec_, v, nsIntervalMsecAttr); }
  static constexpr U32 nsIntervalMsecDefault() { return 0; }

  /// Reachable Time field, sent as it is, where it counts milliseconds; 0: unspecified. RFC 4861 6.2.1
  /// AdvReachableTime.
  U32 reachableTime() const { return reachableTime_; }
  void reachableTimeIs(U32 v) { attrIs(reachableTime_, v, reachableTimeAttr); }
  static constexpr U32 reachableTimeDefault() { return 0; }

  /// DNS servers to advertise, in the order in which they were configured. RFC 8106 5.1.
  auto const& dnsServers() const { return dnsServers_; }
  Ptr<DNSServerConfigEntry> dnsServers(Ip6Addr const& key) const { return dnsServers_.member(key); }
  Ptr<DNSServerConfigEntry> dnsServersIs(Ip6Addr const& key) { return dnsServers_.memberIs(key); }
  Ptr<DNSServerConfigEntry> dnsServersDel(Ip6Addr const& key) { return dnsServers_.memberDel(key); }
  void dnsServersDelAll() { dnsServers_.memberDelAll(); }

  /// Lifetime of DNS servers that have none of their own, seconds; in force only with
  /// `dnsServersLifetimeConfigured`.
  U32 dnsServersLifetime() const { return dnsServersLifetime_; }
  void dnsServersLifetimeIs(U32 v) { attrIs(dnsServersLifetime_, v, dnsServersLifetimeAttr); }
  static constexpr U32 dnsServersLifetimeDefault() { return DNSServerConfigEntry::lifetimeDefault(); }

  /// The lifetime for DNS servers that have none of their own, seconds: the configured one as it is stored, 0 included;
  /// else one and a half times the longest interval in whole seconds, rounded down. RFC 8106 5.1.
  U32 validDnsServersLifetime() const {
    return dnsServersLifetimeConfigured_ ? dnsServersLifetime_ : dnsLifetimeFromInterval();
  }

  /// Whether `dnsServersLifetime` was configured. Setting that does not set this.
  bool dnsServersLifetimeConfigured() const { return dnsServersLifetimeConfigured_; }
  void dnsServersLifetimeConfiguredIs(bool v) {
    attrIs(dnsServersLifetimeConfigured_, v, dnsServersLifetimeConfiguredAttr);
  }

  /// DNS search suffixes to advertise, in the order in which they were configured. RFC 8106 5.2.
  auto const& dnsSuffixes() const { return dnsSuffixes_; }
  Ptr<DNSSuffixConfigEntry> dnsSuffixes(String const& key) const { return dnsSuffixes_.member(key); }
  Ptr<DNSSuffixConfigEntry> dnsSuffixesIs(String const& key) { return dnsSuffixes_.memberIs(key); }
  Ptr<DNSSuffixConfigEntry> dnsSuffixesDel(String const& key) { return dnsSuffixes_.memberDel(key); }
  void dnsSuffixesDelAll() { dnsSuffixes_.memberDelAll(); }

  /// Lifetime of DNS search suffixes that have none of their own, seconds; in force only with
  /// `dnsSuffixesLifetimeConfigured`.
  U32 dnsSuffixesLifetime() const { return dnsSuffixesLifetime_; }
  void dnsSuffixesLifetimeIs(U32 v) { attrIs(dnsSuffixesLifetime_, v, dnsSuffixesLifetimeAttr); }
  static constexpr U32 dnsSuffixesLifetimeDefault() { return DNSSuffixConfigEntry::lifetimeDefault(); }

  /// The lifetime for DNS search suffixes that have none of their own, seconds: the configured one as it is stored, 0
  /// included; else one and a half times the longest interval in whole seconds, rounded down. RFC 8106 5.2.
  U32 validDnsSuffixesLifetime() const {
    return dnsSuffixesLifetimeConfigured_ ? dnsSuffixesLifetime_ : dnsLifetimeFromInterval();
  }

  /// Whether `dnsSuffixesLifetime` was configured. Setting that does not set this.
  bool dnsSuffixesLifetimeConfigured() const { return dnsSuffixesLifetimeConfigured_; }
  void dnsSuffixesLifetimeConfiguredIs(bool v) {
    attrIs(dnsSuffixesLifetimeConfigured_, v, dnsSuffixesLifetimeConfiguredAttr);
  }

  /// URL of a network boot file, sent octet for octet in an option of type 253, cut when there is no room; empty: no
  /// such option.
  String const& networkBootFileUrl() const { return networkBootFileUrl_; }
  void networkBootFileUrlIs(String const& v) { attrIs(networkBootFileUrl_, v, networkBootFileUrlAttr); }

  /// Cur Hop Limit; what is above `hopLimitMax` is sent as that. Independent of `Config::hopLimit`. RFC 4861 6.2.1
  /// AdvCurHopLimit.
  U32 hopLimit() const { return hopLimit_; }
  void hopLimitIs(U32 v) { attrIs(hopLimit_, v, hopLimitAttr); }
  /// The recommended default of the assigned numbers (RFC 1700), to which RFC 4861 6.2.1 AdvCurHopLimit refers.
  static constexpr U32 hopLimitDefault() { return 64; }
  /// Cur Hop Limit has 8 bits. RFC 4861 4.2.
  static constexpr U32 hopLimitMax() { return 255; }

  /// The hop limit to advertise: `hopLimit`, at most `hopLimitMax`; 0 (unspecified) is one.
  U32 validHopLimit() const { return hopLimit_ <= hopLimitMax() ? hopLimit_ : hopLimitMax(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::IntfConfig";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~IntfConfig() override = default;

  /// One and a half times the longest advertisement interval, in whole seconds. RFC 8106 5.1 recommends at least three
  /// times; an agent that wants those configures the lifetimes.
  U32 dnsLifetimeFromInterval() const {
    U32 const seconds = raIntervalMaxMsec_ / 1000;
    return seconds + seconds / 2;
  }

  IntfId intfId_;
  U32 raIntervalMaxMsec_ = raIntervalMaxDefault();
  U32 raIntervalMinMsec_ = raIntervalMinDefault();
  U32 raLifetime_ = raLifetimeDefault();
  U32 nsIntervalMsec_ = nsIntervalMsecDefault();
  U32 reachableTime_ = reachableTimeDefault();
  U32 dnsServersLifetime_ = dnsServersLifetimeDefault();
  U32 dnsSuffixesLifetime_ = dnsSuffixesLifetimeDefault();
  U32 hopLimit_ = hopLimitDefault();
  String networkBootFileUrl_;
  bool raSuppress_ = raSuppressDefault();
  bool raSuppressRouterSolicitationResponse_ = raSuppressRouterSolicitationResponseDefault();
  bool raMtuSuppress_ = raMtuSuppressDefault();
  bool managedConfigFlag_ = managedConfigFlagDefault();
  bool otherConfigFlag_ = otherConfigFlagDefault();
  Icmp6RouterAdvtRouterPreferenceType routerPreference_ = routerPreferenceDefault();
  bool dnsServersLifetimeConfigured_ = false;
  bool dnsSuffixesLifetimeConfigured_ = false;
  Fwk::EntityCollection<Ip6AddrWithMask, PrefixConfigEntry> prefixes_{*this, prefixesAttr};
  Fwk::EntityCollection<Ip6Addr, DNSServerConfigEntry> dnsServers_{*this, dnsServersAttr};
  Fwk::EntityCollection<String, DNSSuffixConfigEntry> dnsSuffixes_{*this, dnsSuffixesAttr};
};

}  // namespace RouterAdvt

#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertisedPrefixes.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/OptionWriter.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/PrefixInfoOption.h>
#include <RouterPlatform/Ip6/IntfStatus.h>
#include <RouterPlatform/Ip6/VirtualRouterStatusV6.h>
#include <RouterPlatform/Nd/Icmp6HdrOptions.h>
#include <RouterPlatform/Trace/Assert.h>

#include <cstring>

namespace RouterAdvt {

namespace {

struct PrefixParameters {
  bool noOnLink = PrefixDefault::noOnLink();
  bool noAutoConfig = PrefixDefault::noAutoConfig();
  U32 preferredLifetime = PrefixDefault::preferredLifetime();
  U32 validLifetime = PrefixDefault::validLifetime();

  PrefixParameters() = default;
  explicit PrefixParameters(PrefixConfigEntry const& entry)
      : noOnLink(entry.noOnLink()),
        noAutoConfig(entry.noAutoConfig()),
        preferredLifetime(entry.preferredLifetime()),
        validLifetime(entry.validLifetime()) {}
};

/// Whether one more prefix fits; says so when it does not.
bool prefixFits(U64 msgLen, U64 pktBufSize) {
  if (pktBufSize >= msgLen + sizeof(Net::Icmp6HdrPrefixInfoOption)) return true;
  traceCouldNotCopy("prefix", msgLen, pktBufSize);
  return false;
}

void copyPrefix(U8* buf, U64& msgLen, Ip6AddrWithMask const& prefix, PrefixParameters const& parameters) {
  std::memset(buf + msgLen, 0, sizeof(Net::Icmp6HdrPrefixInfoOption));  // a flag that is clear is not written
  copyPrefixToRaMsgBuf(buf, msgLen, prefix, parameters.noOnLink, parameters.noAutoConfig, parameters.preferredLifetime,
                       parameters.validLifetime);
}

}  // namespace

void copyVirtualRouterPrefixesToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, IntfConfig const& intfConfig,
                                         VirtualRouterStatusV6 const& virtualRouterStatus) {
  PrefixParameters parameters;  // not reset between prefixes: one that is not configured inherits
  for (Ip6AddrWithMask const& prefix : virtualRouterStatus.prefix().frozen()) {
    if (PrefixConfigEntry const* const entry = intfConfig.prefixes().find(prefix)) {
      if (entry->noAdvertise()) {
        UTILS_TRACE(3, "PrefixList: noAdvertise set for prefix. Skip ", prefix);
        continue;
      }
      parameters = PrefixParameters(*entry);
    }
    if (!prefixFits(msgLen, pktBufSize)) return;
    UTILS_TRACE(3, "Copy prefix: ", prefix, " to MsgBuf");
    copyPrefix(buf, msgLen, prefix, parameters);
  }
}

void copyConfiguredPrefixesToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, IntfConfig const& intfConfig) {
  for (PrefixConfigEntry const& entry : intfConfig.prefixes().frozen()) {
    if (entry.noAdvertise()) continue;
    if (!prefixFits(msgLen, pktBufSize)) return;
    UTILS_TRACE(8, "Copy prefix: ", entry.key(), " to MsgBuf");
    copyPrefix(buf, msgLen, entry.key(), PrefixParameters(entry));
  }
}

void copyAddressPrefixesToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, IntfConfig const& intfConfig,
                                   Ip6::IntfStatus const& ip6IntfStatus) {
  for (Ip6AddrWithMask const& address : ip6IntfStatus.addr().frozen()) {
    Ip6AddrWithMask const addrPrefix = address.subnet();
    if (address.address().isLinkLocal()) {
      UTILS_TRACE(3, "PrefixList: Skip LinkLocal Address ", address);
      continue;
    }
    if (PrefixConfigEntry const* const entry = intfConfig.prefixes().find(addrPrefix)) {
      ASSERT_AT_TEXT(entry->noAdvertise(), Trace::Location::here(utilsSource),
                     "intfRouterAdvtConfigPtr->prefixes( addrPrefix )->noAdvertise()");
      UTILS_TRACE(3, "PrefixList: noAdvertise set for prefix. Skip ", address);
      continue;
    }
    if (!prefixFits(msgLen, pktBufSize)) return;
    UTILS_TRACE(3, "Copy prefix: ", addrPrefix, " to MsgBuf");
    copyPrefix(buf, msgLen, addrPrefix, PrefixParameters());
  }
}

}  // namespace RouterAdvt

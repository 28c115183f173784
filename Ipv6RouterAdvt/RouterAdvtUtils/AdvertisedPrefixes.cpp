#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertisedPrefixes.h>
#include <RouterPlatform/Ip6/IntfStatus.h>
#include <RouterPlatform/Ip6/VirtualRouterStatusV6.h>
#include <RouterPlatform/Nd/PrefixInfo.h>
#include <RouterPlatform/Trace/Assert.h>

namespace RouterAdvt {

using Net::Seconds32;

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

/// The Prefix Information options of a draft: up to the first prefix that does not fit.
class PrefixList {
 public:
  explicit PrefixList(AdvertDraft& draft) : draft_(draft) {}

  /// Whether a prefix did not fit: what is walked over now is left out, without a message.
  bool isFull() const { return full_; }
  /// Whether there is any use in going on.
  bool isOpen() const { return !full_ || draft_.notesLeftOut(); }

  /// False: it is left out.
  bool add(Ip6AddrWithMask const& prefix, PrefixParameters const& parameters,
           Trace::Location place = Trace::Location::here(utilsSource)) {
    if (!full_ && put(draft_.out, Net::PrefixInfo{.prefix = prefix,
                                                  .onLink = !parameters.noOnLink,
                                                  .autonomous = !parameters.noAutoConfig,
                                                  .validLifetime = Seconds32(parameters.validLifetime),
                                                  .preferredLifetime = Seconds32(parameters.preferredLifetime)}))
      return true;
    if (!full_) draft_.prefixesEnd(place);
    full_ = true;
    draft_.leaveOut(prefix);
    return false;
  }

 private:
  AdvertDraft& draft_;
  bool full_ = false;
};

}  // namespace

void copyVirtualRouterPrefixesToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig,
                                         VirtualRouterStatusV6 const& virtualRouterStatus) {
  PrefixList list(draft);
  PrefixParameters parameters;  // not reset between prefixes: one that is not configured inherits
  for (Ip6AddrWithMask const& prefix : virtualRouterStatus.prefix().frozen()) {
    if (!list.isOpen()) return;
    if (PrefixConfigEntry const* const entry = intfConfig.prefixes().find(prefix)) {
      if (entry->noAdvertise()) {
        if (!list.isFull()) DRAFT_TRACE(draft, 3, "PrefixList: noAdvertise set for prefix. Skip ", prefix);
        continue;
      }
      parameters = PrefixParameters(*entry);
    }
    if (list.add(prefix, parameters)) DRAFT_TRACE(draft, 3, "Copy prefix: ", prefix, " to MsgBuf");
  }
}

void copyConfiguredPrefixesToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig) {
  PrefixList list(draft);
  for (PrefixConfigEntry const& entry : intfConfig.prefixes().frozen()) {
    if (!list.isOpen()) return;
    if (entry.noAdvertise()) continue;
    if (list.add(entry.key(), PrefixParameters(entry)))
      DRAFT_TRACE(draft, 8, "Copy prefix: ", entry.key(), " to MsgBuf");
  }
}

void copyAddressPrefixesToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig,
                                   Ip6::IntfStatus const& ip6IntfStatus) {
  PrefixList list(draft);
  for (Ip6AddrWithMask const& address : ip6IntfStatus.addr().frozen()) {
    if (!list.isOpen()) return;
    Ip6AddrWithMask const addrPrefix = address.subnet();
    if (address.address().isLinkLocal()) {
      if (!list.isFull()) DRAFT_TRACE(draft, 3, "PrefixList: Skip LinkLocal Address ", address);
      continue;
    }
    if (PrefixConfigEntry const* const entry = intfConfig.prefixes().find(addrPrefix)) {
      ASSERT_AT_TEXT(entry->noAdvertise(), Trace::Location::here(utilsSource),
                     "intfRouterAdvtConfigPtr->prefixes( addrPrefix )->noAdvertise()");
      if (!list.isFull()) DRAFT_TRACE(draft, 3, "PrefixList: noAdvertise set for prefix. Skip ", address);
      continue;
    }
    if (list.add(addrPrefix, PrefixParameters())) DRAFT_TRACE(draft, 3, "Copy prefix: ", addrPrefix, " to MsgBuf");
  }
}

}  // namespace RouterAdvt

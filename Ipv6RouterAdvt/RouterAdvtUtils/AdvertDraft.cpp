#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertDraft.h>

namespace RouterAdvt {

void AdvertDraft::leaveOut(Ip6AddrWithMask const& prefix) const {
  if (leftOut_) leftOut_->prefixes.push_back(prefix);
}

void AdvertDraft::prefixesEnd(Place place) const { trace("prefix", msgLen(), place); }

void AdvertDraft::leaveOut(Ip6Addr const& server, U64 frameSize, Place place) const {
  trace("dnsServers", frameSize, place);
  if (leftOut_) leftOut_->servers.push_back(server);
}

void AdvertDraft::suffixesEnd(U64 frameSize, Place place) const { trace("dnsSuffixes", frameSize, place); }

void AdvertDraft::leaveOut(String const& suffix, U64 frameSize, Place place) const {
  suffixesEnd(frameSize, place);
  if (leftOut_) leftOut_->suffixes.push_back({.suffix = suffix});
}

void AdvertDraft::cut(String const& suffix, U64 cutAt, U64 frameSize, Place place) const {
  trace("dns suffx", frameSize, place);
  if (leftOut_) leftOut_->suffixes.push_back({.suffix = suffix, .cutAt = cutAt});
}

void AdvertDraft::leaveOutNetworkBoot(U64 frameSize, Place place) const {
  trace("network boot option", frameSize, place);
  cutUrl(0);
  if (leftOut_) leftOut_->networkBoot = true;
}

void AdvertDraft::cutUrl(U64 cutAt) const {
  if (leftOut_) leftOut_->urlCutAt = cutAt;
}

/// The size is that of the frame with what does not fit; for a prefix that of the frame so far.
void AdvertDraft::trace(std::string_view what, U64 size, Place place) const {
  TRACE_AT(utilsTrace, 3, place, "Could not copy ", what, " as msgLen ( ", size, " ) > pktBufSize > ( ",
           out.frameLimit(), ")");
}

}  // namespace RouterAdvt

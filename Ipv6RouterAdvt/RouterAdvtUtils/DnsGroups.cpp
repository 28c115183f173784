#include <Ipv6RouterAdvt/RouterAdvtUtils/DnsGroups.h>
#include <RouterPlatform/Nd/Dnssl.h>
#include <RouterPlatform/Nd/Rdnss.h>

#include <algorithm>
#include <limits>
#include <optional>

namespace RouterAdvt {

using Net::Dnssl;
using Net::Rdnss;
using Net::Seconds32;

namespace {

/// A draft over the buffer of a caller who keeps `msgLen` himself.
AdvertDraft draftOver(U8* buf, U64 msgLen, U64 pktBufSize, U64 slack) {
  return AdvertDraft(Net::FrameWriter({buf, std::max(msgLen, pktBufSize) + slack}, msgLen, pktBufSize));
}

/// Whether an entry is left out without a count of its group: the group was left out just before, or the option with
/// the entry alone, of `sizeAlone` octets, does not fit. Never with messages, which tell the size of the whole group.
bool leftOutUncounted(AdvertDraft const& draft, U32 lifetime, std::optional<U32> leftOutLast, U64 sizeAlone) {
  return !draft.traced() && (leftOutLast == lifetime || !draft.out.fits(sizeAlone));
}

/// The servers of one lifetime.
struct ServerGroup {
  IntfConfig const& intfConfig;
  U32 intfLifetime;
  U32 lifetime;

  bool contains(DNSServerConfigEntry const& server) const { return server.validLifetime(intfLifetime) == lifetime; }
};

/// How many servers the group has. Only messages need the number of a group that does not fit: without them the count
/// ends with the first server that does not fit.
U64 serverCountOf(AdvertDraft const& draft, ServerGroup const& group) {
  U64 const countMax = draft.traced() ? std::numeric_limits<U64>::max() : draft.out.room() / Ip6Addr::size + 1;
  U64 count = 0;
  for (DNSServerConfigEntry const& server : group.intfConfig.dnsServers().frozen())
    if (group.contains(server) && ++count == countMax) break;
  return count;
}

/// The suffixes of one lifetime.
struct SuffixGroup {
  IntfConfig const& intfConfig;
  U32 intfLifetime;
  U32 lifetime;

  bool contains(DNSSuffixConfigEntry const& entry) const { return entry.validLifetime(intfLifetime) == lifetime; }
};

/// Writes one suffix. Empty labels, of a trailing dot too, are written as they are.
void encodeDNSSuffix(AdvertDraft& draft, String const& suffix) {
  DRAFT_TRACE(draft, 1, "Before Encoding DNS Suffix: ", suffix, " length: ", draft.msgLen());
  U64 const start = draft.msgLen();
  if (std::optional<U64> const cutAt = putName(draft.out, suffix)) {
    U64 const labelEnd = std::min(suffix.find('.', *cutAt), suffix.size());
    draft.cut(suffix, *cutAt, start + labelEnd + 1);
    return;
  }
  DRAFT_TRACE(draft, 8, "After Encoding DNS Suffix: ", suffix, " length: ", draft.msgLen());
}

constexpr U64 roundedUpTo8(U64 size) { return (size + 7) / 8 * 8; }

/// A group's size before it is written, estimated. Only messages need all of it when the group does not fit: without
/// them the count ends with the first suffix that does not fit.
struct SuffixEstimate {
  U64 size = sizeof(Net::Icmp6HdrDnsslOption);  ///< of the option: its head, and a suffix's octets and one more
  U64 count = 0;
};
SuffixEstimate estimateOf(AdvertDraft const& draft, SuffixGroup const& group) {
  SuffixEstimate estimate;
  U64 const sizeMax = draft.traced() ? std::numeric_limits<U64>::max() : draft.out.room();
  for (DNSSuffixConfigEntry const& entry : group.intfConfig.dnsSuffixes().frozen()) {
    if (!group.contains(entry)) continue;
    ++estimate.count;
    estimate.size += entry.suffix().size() + 1;
    DRAFT_TRACE(draft, 8, "Computing Length DNS Suffix: ", entry.suffix(), " length: ", estimate.size);
    if (estimate.size > sizeMax) break;
  }
  return estimate;
}

void writeSearchList(AdvertDraft& draft, SuffixGroup const& group) {
  put(draft.out, Dnssl{.lifetime = Seconds32(group.lifetime)});
  U64 const start = draft.msgLen();
  for (DNSSuffixConfigEntry const& entry : group.intfConfig.dnsSuffixes().frozen())
    if (group.contains(entry)) encodeDNSSuffix(draft, entry.suffix());
  DRAFT_TRACE(draft, 8, "MsgLenBforeDnsSuffixes: ", start, "MsgLenAfterDnsSuffixes:", draft.msgLen());
  DRAFT_TRACE(draft, 8, "numBytesToPad: ", dnsslPadding(draft.out, start), "at offset: ", draft.msgLen());
  closeDnssl(draft.out, start);
}

/// Writes a group that is not empty. 0, or the size by the estimate of the frame with it when that does not fit.
U64 writeUnlessTooLarge(AdvertDraft& draft, SuffixGroup const& group, U64 total) {
  DRAFT_TRACE(draft, 8, "Total Length of DNS Suffixes: ", total);
  U64 const padded = roundedUpTo8(total);
  DRAFT_TRACE(draft, 8, "Total Length of DNS Suffixes after padding: ", padded);
  DRAFT_TRACE(draft, 8, "PktBufSize: ", draft.out.frameLimit());
  if (!draft.out.fits(padded)) return draft.msgLen() + padded;
  writeSearchList(draft, group);
  return 0;
}

}  // namespace

void copyDNSServersToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig) {
  U32 const intfLifetime = intfConfig.validDnsServersLifetime();
  LifeTimeHashMap visited;
  std::optional<U32> leftOutLast;
  for (DNSServerConfigEntry const& server : intfConfig.dnsServers().frozen()) {
    ServerGroup const group{intfConfig, intfLifetime, server.validLifetime(intfLifetime)};
    if (visited.visited(group.lifetime)) continue;
    if (leftOutUncounted(draft, group.lifetime, leftOutLast, Rdnss::size(1))) {
      draft.leaveOut(server.ipAddr(), draft.msgLen() + Rdnss::size(1));
      continue;
    }
    U64 const serverCount = serverCountOf(draft, group);
    if (!put(draft.out, Rdnss{.lifetime = Seconds32(group.lifetime), .serverCount = serverCount})) {
      draft.leaveOut(server.ipAddr(), draft.msgLen() + Rdnss::size(serverCount));
      leftOutLast = group.lifetime;
      continue;
    }
    for (DNSServerConfigEntry const& member : intfConfig.dnsServers().frozen())
      if (group.contains(member)) putServer(draft.out, member.ipAddr());
    if (serverCount == intfConfig.dnsServers().size()) return;  // that was all of them
    visited.visitedIs(group.lifetime, true);
  }
}

void copyDNSServersWithSameLifeTimeToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize,
                                              Ptr<IntfConfig const> const& intfConfig) {
  AdvertDraft draft = draftOver(buf, msgLen, pktBufSize, 0);
  copyDNSServersToRaMsgBuf(draft, *intfConfig);
  msgLen = draft.msgLen();
}

void copyDNSSuffixesToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig) {
  U32 const intfLifetime = intfConfig.validDnsSuffixesLifetime();
  DRAFT_TRACE(draft, 8, "Number of Dns Suffixes: ", intfConfig.dnsSuffixes().size(), "intf lifetime: ", intfLifetime);
  LifeTimeHashMap visited;
  std::optional<U32> leftOutLast;
  for (DNSSuffixConfigEntry const& entry : intfConfig.dnsSuffixes().frozen()) {
    SuffixGroup const group{intfConfig, intfLifetime, entry.validLifetime(intfLifetime)};
    bool const done = visited.visited(group.lifetime);
    DRAFT_TRACE(draft, 8, "dnsSuffixLifetime: ", group.lifetime, "visited: ", done);
    if (done) continue;
    U64 const sizeAlone = roundedUpTo8(SuffixEstimate{}.size + entry.suffix().size() + 1);
    if (leftOutUncounted(draft, group.lifetime, leftOutLast, sizeAlone)) {
      draft.leaveOut(entry.suffix(), draft.msgLen() + sizeAlone);
      continue;
    }
    SuffixEstimate const estimate = estimateOf(draft, group);
    if (U64 const frameSize = writeUnlessTooLarge(draft, group, estimate.size)) {
      draft.leaveOut(entry.suffix(), frameSize);
      leftOutLast = group.lifetime;
      continue;
    }
    if (estimate.count == intfConfig.dnsSuffixes().size() && !draft.traced()) return;  // the rest would be messages
    visited.visitedIs(group.lifetime, true);
  }
}

int copyDNSSuffixesWithSameLifeTimeToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, U32 lifetime,
                                              Ptr<IntfConfig const> const& intfConfig, LifeTimeHashMap& visited) {
  AdvertDraft draft = draftOver(buf, msgLen, pktBufSize, searchListSlack);
  SuffixGroup const group{*intfConfig, intfConfig->validDnsSuffixesLifetime(), lifetime};
  SuffixEstimate const estimate = estimateOf(draft, group);
  if (estimate.count == 0) return 1;
  if (U64 const frameSize = writeUnlessTooLarge(draft, group, estimate.size)) {
    draft.suffixesEnd(frameSize);
    return 0;
  }
  visited.visitedIs(lifetime, true);
  msgLen = draft.msgLen();
  return 1;
}

}  // namespace RouterAdvt

#pragma once

#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertDraft.h>

/// DNS servers and suffixes, grouped by effective lifetime: one option per lifetime, in the order in which the
/// lifetimes are first met.
namespace RouterAdvt {

/// Writes all groups of the interface's DNS servers as Recursive DNS Server options, RFC 8106 5.1. A group that does
/// not fit is left out whole, which is traced at level 3 for each of its servers; later groups that fit are written.
void copyDNSServersToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig);

/// Writes all groups of the interface's DNS suffixes as DNS Search List options, RFC 8106 5.2.
void copyDNSSuffixesToRaMsgBuf(AdvertDraft& draft, IntfConfig const& intfConfig);

/// Writes all groups, as `copyDNSServersToRaMsgBuf` does, at `buf + msgLen`, and advances `msgLen` past them. The frame
/// has at most `pktBufSize` octets.
void copyDNSServersWithSameLifeTimeToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize,
                                              Ptr<IntfConfig const> const& intfConfig);

/// Writes one group at `buf + msgLen`, and advances `msgLen` past it: the DNS Search List option with every suffix
/// whose effective lifetime is `lifetime`. Marks the lifetime in `visited`, which it never reads. Returns 0 when the
/// group does not fit: nothing is written or marked, which is traced at level 3. Otherwise 1, also when there was
/// nothing to write.
///
/// Whether the group fits is judged by an estimate that is one octet short per suffix; a label that does not fit ends
/// its suffix, traced at level 3. The terminating zeros and the padding may pass `pktBufSize`, by 9 octets at most.
int copyDNSSuffixesWithSameLifeTimeToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, U32 lifetime,
                                              Ptr<IntfConfig const> const& intfConfig, LifeTimeHashMap& visited);

/// How far a search list may pass the frame limit, octets: a zero octet behind a suffix that fills the frame, an empty
/// suffix, and 7 octets of padding.
inline constexpr U64 searchListSlack = 9;

}  // namespace RouterAdvt

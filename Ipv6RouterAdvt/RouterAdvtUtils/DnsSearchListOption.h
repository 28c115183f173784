#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvt/PlatformTypes.h>

namespace RouterAdvt {

/// Writes the interface's DNS suffixes as DNS Search List options (RFC 8106 5.2), one for each lifetime, in the order
/// in which the lifetimes are first met.
void copyDNSSuffixesToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, Ptr<IntfConfig const> const& intfConfig);

/// Writes the DNS Search List option with every suffix whose effective lifetime is `lifetime`, and marks the lifetime
/// in `visited`, which it never reads. Returns 0 when the group does not fit: nothing is written or marked, which is
/// traced at level 3. Otherwise 1, also when there was nothing to write.
///
/// Whether the group fits is judged by an estimate that is one octet short per suffix; a label that does not fit ends
/// its suffix, traced at level 3. The terminating zeros and the padding are written unchecked: up to 9 octets behind
/// `pktBufSize`.
int copyDNSSuffixesWithSameLifeTimeToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, U32 lifetime,
                                              Ptr<IntfConfig const> const& intfConfig, LifeTimeHashMap& visited);

}  // namespace RouterAdvt

#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvt/PlatformTypes.h>

namespace RouterAdvt {

/// Writes the interface's DNS servers as Recursive DNS Server options (RFC 8106 5.1), one for each lifetime, in the
/// order in which the lifetimes are first met. A group that does not fit is left out whole, which is traced at level 3
/// for each of its servers; later groups that fit are written.
void copyDNSServersWithSameLifeTimeToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize,
                                              Ptr<IntfConfig const> const& intfConfig);

}  // namespace RouterAdvt

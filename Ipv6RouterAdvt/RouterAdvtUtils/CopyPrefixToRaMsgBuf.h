#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>

namespace RouterAdvt {

/// Writes a Prefix Information option (RFC 4861 4.6.2), 32 octets, at `buf + msgLen` and advances `msgLen` past it.
/// The caller has made sure that 32 octets are free. The flags octet has to be zero: with `noOnLink` its bits stay, and
/// A is added to them. Lifetimes in seconds; the prefix's host bits are written as they are. Keeps no state.
///
/// For a writer of its own frames; `build` writes the option with `Net::put`.
ROUTER_ADVT_EXPORT void copyPrefixToRaMsgBuf(U8* buf, U64& msgLen, Ip6AddrWithMask const& prefix, bool noOnLink,
                                             bool noAutoConfig, U32 preferredLifetime, U32 validLifetime);

}  // namespace RouterAdvt

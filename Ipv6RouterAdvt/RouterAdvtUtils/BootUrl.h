#pragma once

#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/AdvertDraft.h>

namespace RouterAdvt {

/// Writes a network boot option with `url`, which is cut to what fits in whole units of 8 octets. Without room for its
/// 8-octet head the option is left out, which is traced at level 3.
void copyNetworkBootOptionToRaMsgBuf(AdvertDraft& draft, String const& url);

}  // namespace RouterAdvt

#pragma once

#include <RouterPlatform/Packet/Ip6PktInfo.h>

#include <string>

namespace Tool {

/// Why a received Router Advertisement is to be dropped without a look at its options, RFC 4861 6.1.2: source, hop
/// limit, checksum, code and length. Empty: it is not. Options of length 0, of which the same clause speaks, are the
/// parser's to find.
std::string raInvalidity(Fwk::Ptr<Net::Ip6PktInfo> const& info);

}  // namespace Tool

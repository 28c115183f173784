#pragma once

#include <programs/common/frames/PlacedOctets.h>

#include <string>
#include <vector>

namespace Tool {

/// A domain name as a DNS Search List option holds it, RFC 8106 5.2 and RFC 1035 3.1.
struct DnsName {
  std::size_t at;                     ///< offset of its first octet within the option's names
  std::string text;                   ///< labels with dots between; what is no printable octet as \DDD, a dot as \.
  std::vector<std::string> oddities;  ///< errors of its encoding
};

struct DnsNames {
  std::vector<DnsName> names;
  std::size_t paddingAt = 0;  ///< where the zero octets behind the last name begin
};

/// The names in an option, its padding left out.
DnsNames decodeDnsNames(PlacedOctets octets);

}  // namespace Tool

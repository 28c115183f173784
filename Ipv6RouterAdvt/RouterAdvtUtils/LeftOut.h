#pragma once

#include <Ipv6RouterAdvt/PlatformTypes.h>

#include <optional>
#include <vector>

namespace RouterAdvt {

/// The parts that an advertisement lacks because they did not fit, each list in the order in which it would have been
/// sent. docs/adr/0012.
struct LeftOut {
  /// A DNS suffix that is not sent, or not wholly.
  struct Suffix {
    String suffix{};
    U64 cutAt = 0;  ///< place in `suffix` of the first label that is not sent; 0: nothing of it is
  };

  U64 frameSizeMax = 0;  ///< the size that the frame had to keep to, octets
  std::vector<Ip6AddrWithMask> prefixes{};
  std::vector<Ip6Addr> servers{};
  std::vector<Suffix> suffixes{};
  std::optional<U64> urlCutAt{};  ///< octets of the network boot URL that are sent; nothing: all, or there is none
  bool networkBoot = false;       ///< the whole network boot option; `urlCutAt` is 0 then

  /// Whether nothing was left out.
  bool empty() const noexcept { return prefixes.empty() && servers.empty() && suffixes.empty() && !urlCutAt; }
};

}  // namespace RouterAdvt

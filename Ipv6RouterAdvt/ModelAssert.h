#pragma once

#include <RouterPlatform/Trace/Assert.h>

/// The places that the model's assertions name: the source is the model, the function is written out.
namespace RouterAdvt {

/// Line numbers in these messages are part of the interface: log readers match them.
namespace ModelLine {
inline constexpr int useProfile = 10;
inline constexpr int noAdvertiseValue = 21;
inline constexpr int validLifetimeValue = 35;
inline constexpr int preferredLifetimeValue = 49;
inline constexpr int noOnLinkValue = 63;
inline constexpr int noAutoConfigValue = 77;
inline constexpr int lifeTimeHashMapFromText = 91;
inline constexpr int raPacketFromText = 105;
}  // namespace ModelLine

constexpr Trace::Location operationAt(int line, char const* signature) {
  return {"Ipv6RouterAdvt/RouterAdvt", line, signature};
}

}  // namespace RouterAdvt

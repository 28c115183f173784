#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

#include <chrono>

/// Times of Neighbor Discovery, each with its unit and the size of its field: lifetimes are seconds, timers are
/// milliseconds.
namespace Net {

using Seconds16 = std::chrono::duration<Fwk::U16>;
using Seconds32 = std::chrono::duration<Fwk::U32>;
using Milliseconds32 = std::chrono::duration<Fwk::U32, std::milli>;

/// All ones in a lifetime of 32 bits stand for infinity, RFC 4861 4.6.2.
inline constexpr Seconds32 infiniteLifetime{0xffffffff};

}  // namespace Net

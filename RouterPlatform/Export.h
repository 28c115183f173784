#pragma once

#if __cplusplus < 202002L
#error "RouterPlatform and Ipv6RouterAdvt need C++20: compile with -std=c++20 or a later standard"
#endif
#ifndef __cpp_exceptions
#error "RouterPlatform and Ipv6RouterAdvt need exceptions: compile without -fno-exceptions"
#endif
#ifndef __cpp_rtti
#error "RouterPlatform and Ipv6RouterAdvt need type information at run time: compile without -fno-rtti"
#endif

/// Marks what the platform library exports; everything else is hidden.
#define ROUTER_PLATFORM_EXPORT __attribute__((visibility("default")))

#pragma once

/// Marks what the platform library exports; everything else is hidden.
#define ROUTER_PLATFORM_EXPORT __attribute__((visibility("default")))

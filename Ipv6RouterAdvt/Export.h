#pragma once

#include <RouterPlatform/Export.h>

/// Marks what the library exports; everything else is hidden.
#define ROUTER_ADVT_EXPORT __attribute__((visibility("default")))

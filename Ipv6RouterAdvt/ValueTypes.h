#pragma once

#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Forms/ParseError.h>
#include <RouterPlatform/Forms/StoredAttribute.h>

/// The platform's names that the library's value types use.
namespace RouterAdvt {

using Fwk::strepToValue;

}  // namespace RouterAdvt

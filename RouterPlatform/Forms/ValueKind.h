#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

namespace Fwk {

/// How to show a value of a type: programs choose between `true`, `7` and `"text"` by it.
enum class ValueKind : U8 { none, boolean, integer, floating, text, record };

}  // namespace Fwk

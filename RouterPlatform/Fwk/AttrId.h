#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

namespace Fwk {

/// Identifies an attribute within its type; declaration order is the numbering.
using AttrId = U16;

/// The five attributes that every entity has ahead of its own. The numbers are part of the interface.
enum BaseAttr : AttrId { nameAttr = 253, fullNameAttr, parentAttr, parentAttrNameAttr, entityAttr };

/// Identifier of the first attribute that a type declares itself.
inline constexpr AttrId firstOwnAttr = entityAttr + 1;
static_assert(firstOwnAttr == 258);

}  // namespace Fwk

#pragma once

#include <RouterPlatform/Fwk/Entity.h>

#include <optional>
#include <string>

namespace Tool {

/// What comes of a stored attribute once everything that bears on it is considered: the computed attribute that goes
/// with it. Nothing where there is none. With `x` go `xValue` and `validX`, as the model names them.
std::optional<std::string> effectiveValue(Fwk::Entity const& entity, Fwk::AttributeRecord const& attr);

/// Whether the computed attribute is the effective value of another one.
bool isEffectiveValue(Fwk::TypeRecord const& type, Fwk::AttributeRecord const& attr);

}  // namespace Tool

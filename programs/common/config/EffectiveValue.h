#pragma once

#include <RouterPlatform/Fwk/Entity.h>

#include <optional>
#include <string>

namespace Tool {

/// The effective value of a stored attribute: its computed counterpart, which the model names `xValue` or `validX` for
/// an attribute `x`. Nothing without a counterpart.
std::optional<std::string> effectiveValue(Fwk::Entity const& entity, Fwk::AttributeRecord const& attr);

/// Whether a computed attribute is the effective value of another attribute.
bool isEffectiveValue(Fwk::TypeRecord const& type, Fwk::AttributeRecord const& attr);

}  // namespace Tool

#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <tools/routeradvt/LinkConfig.h>

#include <string>

namespace Tool {

/// An entity and all below it, for people: a line an attribute, with its value, whether that is the default, and what
/// comes of it; members of collections indented. Constants are left out.
std::string entityText(Fwk::Entity const& entity);

/// A link in the same form.
std::string linkText(LinkConfig const& link);

}  // namespace Tool

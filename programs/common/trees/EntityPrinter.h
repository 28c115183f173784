#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <programs/common/config/LinkConfig.h>

#include <string>

namespace Tool {

/// An entity and all below it, for people: a line an attribute, with its value, whether that is the default, and what
/// comes of it; members of collections indented. Constants are left out.
std::string entityText(Fwk::Entity const& entity);

/// What is below an entity, in the same form, indented once more than its name would be.
std::string entityLines(Fwk::Entity const& entity);

/// An attribute that can be read, in the same form: free text in quotes, on one line.
std::string attributeText(Fwk::AttributeRecord const& attr, Fwk::Entity const& entity);
/// A member of a collection of values, likewise.
std::string memberText(Fwk::AttributeRecord const& attr, Fwk::MemberRef const& member);

/// A link in the same form.
std::string linkText(LinkConfig const& link);

}  // namespace Tool

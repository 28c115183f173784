#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <programs/common/config/LinkConfig.h>

#include <string>

namespace Tool {

/// Prints an entity and everything below it for people: one line per attribute, with its value, whether that is the
/// default, and the effective value; members of collections indented. Constants are left out.
std::string entityText(Fwk::Entity const& entity);

/// Prints everything below an entity in the same form, indented once more than its name would be.
std::string entityLines(Fwk::Entity const& entity);

/// Prints an attribute that can be read, in the same form: free text in quotes, on one line.
std::string attributeText(Fwk::AttributeRecord const& attr, Fwk::Entity const& entity);
/// Prints a member of a collection of values, likewise.
std::string memberText(Fwk::AttributeRecord const& attr, Fwk::MemberRef const& member);

/// Prints a link in the same form.
std::string linkText(LinkConfig const& link);

}  // namespace Tool

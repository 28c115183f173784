#pragma once

#include <RouterPlatform/Fwk/TypeRecord.h>

#include <string>
#include <string_view>

namespace Tool {

/// Describes the texts of a registered type, as in "... is not a whole number from 0 to 4294967295". For a type without
/// a description: its name.
std::string expectedText(std::string_view typeName);

/// An example of a text of a registered type. For a type without an example: its name.
std::string exampleText(std::string_view typeName);

/// Why a text that reflection accepts must not be configured for a value of that type; empty when it may be. The model
/// stores any value, and a reserved router preference stops the process that sends it.
std::string refusal(std::string_view typeName, std::string_view text);

/// The message about a text that reflection did not accept for a value of that type.
std::string badTextMessage(std::string_view typeName, std::string_view text, Fwk::ReflectionResult const& result);

}  // namespace Tool

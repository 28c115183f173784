#pragma once

#include <RouterPlatform/Fwk/TypeRecord.h>

#include <string>
#include <string_view>

namespace Tool {

/// What a text of that registered type looks like, in words that go after "a ... is": `a whole number from 0 to
/// 4294967295`. For a type without such words: its name.
std::string expectedText(std::string_view typeName);

/// A text of that registered type, as an example. For a type without one: its name.
std::string exampleText(std::string_view typeName);

/// Why a text, which reflection takes, must not be configured for a value of that type; empty when it may. The model
/// stores whatever it is given, and a reserved router preference stops the process that sends it.
std::string refusal(std::string_view typeName, std::string_view text);

/// Says why `text` was not taken for a value of that type.
std::string badTextMessage(std::string_view typeName, std::string_view text, Fwk::ReflectionResult const& result);

}  // namespace Tool

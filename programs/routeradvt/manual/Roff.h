#pragma once

#include <string>
#include <string_view>

namespace Tool {

/// A line of text as roff has to be given it: nothing in it is a request or an escape, and a hyphen can be copied.
std::string roffLine(std::string_view text);

/// The words of a text, between which roff may break the line. Options are bold.
std::string roffWords(std::string_view text);

std::string roffBold(std::string_view text);
std::string roffItalic(std::string_view text);

}  // namespace Tool

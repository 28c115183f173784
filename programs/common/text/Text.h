#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// Text as it is shown to people.
namespace Tool {

/// The text as one line of printable characters: control characters become \xNN.
std::string printable(std::string_view text);

/// The same in double quotes, long texts cut.
std::string inQuotes(std::string_view text);

/// The text and so many blanks that it is `width` wide; a longer one as it is.
std::string padded(std::string text, std::size_t width);

/// Lowercase hex without anything between.
std::string toHex(std::span<std::uint8_t const> octets);

}  // namespace Tool

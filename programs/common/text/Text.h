#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// Text as people read it.
namespace Tool {

/// The text as one line that cannot drive a terminal, by the rule of `Trace::appendPrintable`. All text that stems from
/// a file, a packet, the environment or another user passes through here once, where it is printed.
std::string printable(std::string_view text);

/// The text in double quotes, for a message; a long one is cut.
std::string inQuotes(std::string_view text);

/// How many columns of a terminal a printable text takes.
std::size_t displayWidth(std::string_view text);

/// The text, filled up with blanks to `width` columns; a wider one as it is.
std::string padded(std::string text, std::size_t width);

/// Lowercase hex without separators.
std::string toHex(std::span<std::uint8_t const> octets);

}  // namespace Tool

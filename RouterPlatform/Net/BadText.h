#pragma once

#include <string_view>

namespace Net::detail {

/// Throws std::invalid_argument that says which type the text does not read as.
[[noreturn]] void throwBadText(char const* typeName, std::string_view text);

}  // namespace Net::detail

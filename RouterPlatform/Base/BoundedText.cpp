#include <RouterPlatform/Base/BoundedText.h>

#include <stdexcept>

namespace Fwk {

void detail::throwTextTooLong(char const* typeName, std::string_view text, std::size_t bound) {
  throw std::length_error(std::string(typeName) + ": a text of " + std::to_string(text.size()) +
                          " octets, where at most " + std::to_string(bound) + " fit: \"" + std::string(text) + "\"");
}

void detail::throwNullText(char const* typeName) {
  throw std::invalid_argument(std::string(typeName) + ": a null pointer is no text");
}

}  // namespace Fwk

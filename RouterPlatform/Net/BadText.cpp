#include <RouterPlatform/Net/BadText.h>

#include <stdexcept>
#include <string>

namespace Net {

void detail::throwBadText(char const* typeName, std::string_view text) {
  throw std::invalid_argument(std::string(typeName) + ": cannot read \"" + std::string(text) + "\"");
}

}  // namespace Net

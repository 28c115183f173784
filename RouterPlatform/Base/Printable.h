#pragma once

#include <RouterPlatform/Export.h>

#include <string>
#include <string_view>

namespace Trace {

/// Appends `text` as one line that is valid UTF-8 and cannot drive a terminal. A backslash becomes `\\`. Each octet of
/// the following becomes `\xNN`, with two lowercase hexadecimal digits: control characters (U+0000 to U+001F, U+007F to
/// U+009F), line and paragraph separators (U+2028, U+2029), characters that change the direction of the text (U+061C,
/// U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069), and octets that are not UTF-8 (RFC 3629 3). All other
/// characters stay as they are. Different texts have different results.
ROUTER_PLATFORM_EXPORT void appendPrintable(std::string& out, std::string_view text);

}  // namespace Trace

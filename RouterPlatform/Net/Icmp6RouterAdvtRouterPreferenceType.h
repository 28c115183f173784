#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>

#include <string>
#include <string_view>

namespace Net {

/// Default router preference; the values are the two-bit codes of RFC 4191 2.1 as they stand in an advertisement.
enum class Icmp6RouterAdvtRouterPreferenceType : Fwk::U8 {
  medium = 0,
  high = 1,
  reserved_ = 2,  ///< never sent; received, it counts as medium
  low = 3,
};

/// Appends `medium`, `high`, `reserved_` or `low`; another value as its number.
ROUTER_PLATFORM_EXPORT void appendText(std::string& out, Icmp6RouterAdvtRouterPreferenceType value);

/// Reads one of the four names, or a number from 0 to 3. False, and `value` is as before: the text is neither.
ROUTER_PLATFORM_EXPORT bool parseText(std::string_view text, Icmp6RouterAdvtRouterPreferenceType& value) noexcept;

constexpr char const* textTypeNameOf(Icmp6RouterAdvtRouterPreferenceType) noexcept {
  return "Icmp6RouterAdvtRouterPreferenceType";
}

}  // namespace Net

#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>

#include <RouterPlatform/Base/Text.h>

#include <array>

namespace Net {

namespace {
constexpr std::array<std::string_view, 4> names{"medium", "high", "reserved_", "low"};  // by value
}

void appendText(std::string& out, Icmp6RouterAdvtRouterPreferenceType value) {
  auto const number = static_cast<Fwk::U8>(value);
  if (number < names.size())
    out += names[number];
  else
    Trace::appendText(out, number);
}

bool parseText(std::string_view text, Icmp6RouterAdvtRouterPreferenceType& value) noexcept {
  constexpr auto count = static_cast<Fwk::U8>(names.size());
  for (Fwk::U8 number = 0; number < count; ++number)
    if (text == names[number] || (text.size() == 1 && text[0] == '0' + number)) {
      value = Icmp6RouterAdvtRouterPreferenceType{number};
      return true;
    }
  return false;
}

}  // namespace Net

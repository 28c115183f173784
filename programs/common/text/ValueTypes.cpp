#include <RouterPlatform/Base/Name.h>
#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>
#include <RouterPlatform/Net/IntfId.h>
#include <programs/common/text/Text.h>
#include <programs/common/text/ValueTypes.h>

#include <algorithm>
#include <array>
#include <cctype>

namespace Tool {

namespace {

using Preference = Net::Icmp6RouterAdvtRouterPreferenceType;

std::string refuseReservedPreference(std::string_view text) {
  Preference value{};
  if (!parseText(text, value) || value != Preference::reserved_) return {};
  return inQuotes(text) +
         " is the reserved router preference, which is never sent (RFC 4191 2.1); expected medium, high or low";
}

std::string refuseNoInterface(std::string_view text) {
  return text.empty() ? "the empty name stands for no interface" : std::string();
}

/// Suggests the spelling of a boolean that other YAML readers accept.
std::string boolHint(std::string_view text) {
  constexpr std::string_view yes[] = {"true", "yes", "on", "y", "1"};
  constexpr std::string_view no[] = {"false", "no", "off", "n", "0"};
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (std::ranges::find(yes, lower) != std::end(yes)) return "; did you mean true?";
  if (std::ranges::find(no, lower) != std::end(no)) return "; did you mean false?";
  return {};
}

struct ValueType {
  std::string_view name;
  std::string expected;
  std::string example;
  std::string (*refuse)(std::string_view text) = nullptr;
  std::string (*hint)(std::string_view text) = nullptr;  ///< ends the message about a malformed text
};

/// The types of values. The attributes are described by their type records.
ValueType const* valueType(std::string_view typeName) {
  static std::array const types{
      ValueType{"bool", "true or false", "true", nullptr, &boolHint},
      ValueType{"U32", "a whole number from 0 to 4294967295", "1800"},
      ValueType{"U64", "a whole number", "1800"},
      ValueType{"Ip6Addr", "an IPv6 address such as 2001:db8::53", "2001:db8::53"},
      ValueType{"Ip6AddrWithMask", "an IPv6 address with a mask length from 0 to 128, such as 2001:db8::/64",
                "2001:db8::/64"},
      ValueType{"EthAddr", "an Ethernet address such as 02:00:00:00:00:01", "02:00:00:00:00:01"},
      ValueType{"IntfId", "an interface name of at most " + std::to_string(Net::IntfId::maxSize) + " octets",
                "Ethernet1", &refuseNoInterface},
      ValueType{"Name", "a name of at most " + std::to_string(Fwk::Name::maxSize) + " octets", "guest"},
      ValueType{"String", "a text", "example.com"},
      ValueType{textTypeNameOf(Preference{}), "medium, high or low, or the number of one of them (0, 1, 3)", "medium",
                &refuseReservedPreference},
  };
  for (ValueType const& type : types)
    if (type.name == typeName) return &type;
  return nullptr;
}

}  // namespace

std::string expectedText(std::string_view typeName) {
  ValueType const* const type = valueType(typeName);
  return type ? type->expected : "a " + std::string(typeName);
}

std::string exampleText(std::string_view typeName) {
  ValueType const* const type = valueType(typeName);
  return type ? type->example : std::string(typeName);
}

std::string refusal(std::string_view typeName, std::string_view text) {
  ValueType const* const type = valueType(typeName);
  return type && type->refuse ? type->refuse(text) : std::string();
}

std::string badTextMessage(std::string_view typeName, std::string_view text, Fwk::ReflectionResult const& result) {
  ValueType const* const type = valueType(typeName);
  switch (result.error) {
    case Fwk::ReflectionError::outOfRange:
      return inQuotes(text) + " is out of range; expected " + expectedText(typeName);
    case Fwk::ReflectionError::malformed:
      return inQuotes(text) + " is not " + expectedText(typeName) + (type && type->hint ? type->hint(text) : "");
    default:
      return result.text;
  }
}

}  // namespace Tool

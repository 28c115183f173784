#pragma once

#include <RouterPlatform/Forms/TextCodec.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <string_view>

/// Keys and values that reflection is given as text, and what is said of a text that is none.
namespace Fwk::detail {

ROUTER_PLATFORM_EXPORT ReflectionResult badText(TextStatus status, char const* typeName, std::string_view text);
ROUTER_PLATFORM_EXPORT ReflectionResult noSuchMember(std::string_view key);

template <class T>
ReflectionResult parseText(std::string_view text, T& value) {
  TextStatus const status = TextCodec<T>::parse(text, value);
  return status == TextStatus::ok ? ReflectionResult{} : badText(status, TextCodec<T>::typeName, text);
}

/// Calls `call(key)` with the key that `text` names; otherwise says what is wrong with the text.
template <class K, class Call>
ReflectionResult withKey(std::string_view text, Call call) {
  K key{};
  ReflectionResult result = parseText(text, key);
  return result ? call(key) : result;
}

/// The same for the key of a member that may be there, which is every key that printing gives.
template <class K, class Call>
ReflectionResult withMemberKey(std::string_view text, Call call) {
  K key{};
  TextStatus status;
  if constexpr (requires { TextCodec<K>::parsePrinted(text, key); })
    status = TextCodec<K>::parsePrinted(text, key);
  else
    status = TextCodec<K>::parse(text, key);
  return status == TextStatus::ok ? call(key) : badText(status, TextCodec<K>::typeName, text);
}

template <class K>
String keyText(K const& key) {
  String text;
  TextCodec<K>::append(text, key);
  return text;
}

}  // namespace Fwk::detail

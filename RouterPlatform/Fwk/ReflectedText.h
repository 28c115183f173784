#pragma once

#include <RouterPlatform/Forms/TextCodec.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <string_view>

/// From text to keys and values, and the errors for texts that are malformed.
namespace Fwk::detail {

ROUTER_PLATFORM_EXPORT ReflectionResult badText(TextStatus status, char const* typeName, std::string_view text);
ROUTER_PLATFORM_EXPORT ReflectionResult noSuchMember(std::string_view key);

template <class T>
ReflectionResult parseText(std::string_view text, T& value) {
  TextStatus const status = TextCodec<T>::parse(text, value);
  return status == TextStatus::ok ? ReflectionResult{} : badText(status, TextCodec<T>::typeName, text);
}

/// Calls `call(key)` with the key that `text` names; otherwise returns the error of the text.
template <class K, class Call>
ReflectionResult withKey(std::string_view text, Call call) {
  K key{};
  ReflectionResult result = parseText(text, key);
  return result ? call(key) : result;
}

/// The same for the key of a member that may exist: every printed key is accepted.
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

#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Forms/Concepts.h>
#include <RouterPlatform/Forms/ValueKind.h>

#include <charconv>
#include <concepts>
#include <optional>
#include <type_traits>

namespace Fwk {

using Trace::appendText;

/// Result of reading a value from a text.
enum class TextStatus : U8 { ok, malformed, outOfRange };

/// The plain text form of a type, as in files and on command lines: `2001:db8::/64`, `true`, `high`.
///
/// `typeName`: the type's registered name. `append(out, v)`: prints. `parse(text, v)`: reads a printed text, and leaves
/// `v` alone unless it returns `ok`. A `ParsesPrinted` type has `parsePrinted(text, v)` as well.
template <class T>
struct TextCodec {
  static constexpr char const* typeName = T::textTypeName;
  static constexpr ValueKind kind = ValueKind::text;

  static void append(std::string& out, T const& value) { appendText(out, value); }

  static TextStatus parse(std::string_view text, T& value) { return store(T::parse(text), value); }
  static TextStatus parsePrinted(std::string_view text, T& value) requires ParsesPrinted<T> {
    return store(T::parsePrinted(text), value);
  }

 private:
  static TextStatus store(std::optional<T> const& parsed, T& value) {
    if (!parsed) return TextStatus::malformed;
    value = *parsed;
    return TextStatus::ok;
  }
};

/// `true` or `false`.
template <>
struct TextCodec<bool> {
  static constexpr char const* typeName = "bool";
  static constexpr ValueKind kind = ValueKind::boolean;
  static void append(std::string& out, bool value) { out += value ? "true" : "false"; }
  static TextStatus parse(std::string_view text, bool& value) {
    if (text != "true" && text != "false") return TextStatus::malformed;
    value = text == "true";
    return TextStatus::ok;
  }
};

template <UnsignedNumber T>
struct TextCodec<T> {
  static constexpr char const* typeName = sizeof(T) == 1   ? "U8"
                                          : sizeof(T) == 2 ? "U16"
                                          : sizeof(T) == 4 ? "U32"
                                                           : "U64";
  static constexpr ValueKind kind = ValueKind::integer;
  static void append(std::string& out, T value) { appendText(out, U64{value}); }
  static TextStatus parse(std::string_view text, T& value) {
    T parsed{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) return TextStatus::malformed;
    if (error == std::errc::result_out_of_range) return TextStatus::outOfRange;
    value = parsed;
    return TextStatus::ok;
  }
};

/// An enum brings `appendText`, `parseText` and `textTypeNameOf` in its own namespace.
template <Enumeration T>
struct TextCodec<T> {
  static constexpr char const* typeName = textTypeNameOf(T{});
  static constexpr ValueKind kind = ValueKind::text;
  static void append(std::string& out, T value) { appendText(out, value); }
  static TextStatus parse(std::string_view text, T& value) {
    return parseText(text, value) ? TextStatus::ok : TextStatus::malformed;
  }
};

/// Printed as the shortest text that reads back to the number.
template <>
struct TextCodec<double> {
  static constexpr char const* typeName = "double";
  static constexpr ValueKind kind = ValueKind::floating;
  static void append(std::string& out, double value) { appendText(out, value); }
  static TextStatus parse(std::string_view text, double& value) {
    double parsed{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) return TextStatus::malformed;
    if (error == std::errc::result_out_of_range) return TextStatus::outOfRange;
    value = parsed;
    return TextStatus::ok;
  }
};

/// The text itself.
template <>
struct TextCodec<String> {
  static constexpr char const* typeName = "String";
  static constexpr ValueKind kind = ValueKind::text;
  static void append(std::string& out, String const& value) { out += value; }
  static TextStatus parse(std::string_view text, String& value) {
    value.assign(text);
    return TextStatus::ok;
  }
};

}  // namespace Fwk

#pragma once

#include <RouterPlatform/Export.h>

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

/// `appendText(out, value)` appends the plain text form of a value: what trace messages, files and command lines show.
/// Builtins are served here, and every class with `void appendTo(std::string&) const`. An enum brings an overload of
/// its own in its namespace. An integer is decimal, a bool `true` or `false`, a double the shortest text that reads
/// back to it, a `char` the character itself. docs/adr/0005
namespace Trace {

namespace detail {
ROUTER_PLATFORM_EXPORT void appendSigned(std::string& out, std::int64_t value);
ROUTER_PLATFORM_EXPORT void appendUnsigned(std::string& out, std::uint64_t value);
}  // namespace detail

inline void appendText(std::string& out, std::string_view text) { out += text; }
inline void appendText(std::string& out, char const* text) { out += text ? text : "(null)"; }
ROUTER_PLATFORM_EXPORT void appendText(std::string& out, double value);

template <std::integral T>
void appendText(std::string& out, T value) {
  if constexpr (std::same_as<T, bool>)
    out += value ? "true" : "false";
  else if constexpr (std::same_as<T, char>)
    out += value;
  else if constexpr (std::signed_integral<T>)
    detail::appendSigned(out, value);
  else
    detail::appendUnsigned(out, value);
}

template <class T>
concept AppendsItself = requires(T const& value, std::string& out) {
  value.appendTo(out);
};
template <AppendsItself T>
void appendText(std::string& out, T const& value) {
  value.appendTo(out);
}

/// Appends the plain text forms of `parts`, one after another with nothing between them.
template <class... Parts>
void appendTexts(std::string& out, Parts const&... parts) {
  (appendText(out, parts), ...);
}

/// The plain text forms of `parts`, one after another with nothing between them.
template <class... Parts>
std::string textOf(Parts const&... parts) {
  std::string text;
  appendTexts(text, parts...);
  return text;
}

}  // namespace Trace

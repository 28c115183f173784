#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Trace/Location.h>

#include <string_view>

/// Assertions for programming errors. They are always on, in release builds too.
namespace Trace {

/// Prints `SOURCE:LINE: FUNCTION: assertion "EXPRESSION" failed` on standard error and aborts the process.
[[noreturn]] ROUTER_PLATFORM_EXPORT void assertionFailed(Location location, std::string_view expression) noexcept;

}  // namespace Trace

/// ASSERT_AT(condition, location): stops the process unless the condition holds; the text is the condition as written.
/// `Trace::Location::here()` gives the place of the assertion itself.
#define ASSERT_AT(condition, ...) \
  ((condition) ? static_cast<void>(0) : ::Trace::assertionFailed(__VA_ARGS__, #condition))

/// ASSERT_AT_TEXT(condition, location, "text"): the same with the given text.
#define ASSERT_AT_TEXT(condition, ...) ((condition) ? static_cast<void>(0) : ::Trace::assertionFailed(__VA_ARGS__))

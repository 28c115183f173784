#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>

#include <cstddef>
#include <stdexcept>

namespace Fwk {

/// A text form that cannot be read: the attribute, the offset in the text, and the text expected there.
class ROUTER_PLATFORM_EXPORT ParseError : public std::runtime_error {
 public:
  ParseError(String attribute, std::size_t offset, String expected);

  /// Name of the attribute; empty for the text around the attributes.
  String const& attribute() const noexcept { return attribute_; }
  /// Octets from the start of the text.
  std::size_t offset() const noexcept { return offset_; }
  String const& expected() const noexcept { return expected_; }

 private:
  String attribute_;
  std::size_t offset_;
  String expected_;
};

/// Reads a value from the whole of `text`. Throws `ParseError`, also when octets are left over. The pointer only
/// selects the type.
template <class T>
T strepToValue(String const& text, T*) {
  String::IteratorConst pos = text.begin();
  T value(pos, text.end());
  if (pos != text.end()) throw ParseError("", static_cast<std::size_t>(pos - text.begin()), "the end of the text");
  return value;
}

}  // namespace Fwk

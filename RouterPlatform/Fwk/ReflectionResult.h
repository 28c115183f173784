#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

namespace Fwk {

/// Why a reflective operation failed.
enum class ReflectionError : U8 {
  none,
  noSuchAttribute,  ///< no descriptor of that number or name
  notReadable,      ///< has no text
  notSettable,      ///< cannot be changed, or not from text
  malformed,        ///< the text is not of the type
  outOfRange,       ///< the text is a number that the type does not hold
  noSuchMember,     ///< the collection has no such key, the child attribute is empty
  notACollection,
  notAChild,
};

/// Outcome of a reflective operation; true when it succeeded. `text` is the error message, for people.
struct ReflectionResult {
  ReflectionError error = ReflectionError::none;
  String text;

  explicit operator bool() const noexcept { return error == ReflectionError::none; }
};

}  // namespace Fwk

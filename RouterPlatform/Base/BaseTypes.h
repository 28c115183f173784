#pragma once

#include <RouterPlatform/Export.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace Fwk {

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;
using S32 = std::int32_t;
using S64 = std::int64_t;

/// Octets that somebody else holds.
using Octets = std::span<U8 const>;

/// Floating-point seconds.
using Seconds = double;

/// Text of the model: a standard string with the iterator name that text readers take.
class String : public std::string {
 public:
  using std::string::string;
  using IteratorConst = std::string::const_iterator;
  String() = default;
  String(std::string text) : std::string(std::move(text)) {}
};

}  // namespace Fwk

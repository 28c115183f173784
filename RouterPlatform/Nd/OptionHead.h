#pragma once

#include <RouterPlatform/Packet/HeaderAt.h>

#include <span>

namespace Net {

///  0                   1                   2                   3
///  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |     Type      |    Length     |              ...              |  RFC 4861 4.6
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
///
/// How every option begins.
struct Icmp6HdrOption {
  static constexpr U64 lengthUnit = 8;  ///< octets

  NetU8 type;
  NetU8 length;  ///< of the whole option, units of 8 octets; 0 is invalid, RFC 4861 4.6
};
static_assert(sizeof(Icmp6HdrOption) == 2 && alignof(Icmp6HdrOption) == 1);

/// The Length field of an option of `size` octets, a multiple of 8: its low 8 bits.
constexpr U8 optionLength(U64 size) noexcept { return static_cast<U8>(size / Icmp6HdrOption::lengthUnit); }

/// The fixed part, 8 octets, of the option at `offset`. Null: the Length field is 0, or the option extends past the
/// end.
template <class Option>
Option const* wholeOptionAt(std::span<U8 const> octets, U64 offset) noexcept {
  static_assert(sizeof(Option) == Icmp6HdrOption::lengthUnit);
  auto const* const option = headerAt<Option>(octets, offset);
  if (!option || option->length == 0) return nullptr;
  return option->length * Icmp6HdrOption::lengthUnit <= octets.size() - offset ? option : nullptr;
}
/// The octets behind the fixed part of a whole option.
template <class Option>
std::span<U8 const> bodyOf(Option const* option, std::span<U8 const> octets, U64 offset) noexcept {
  return octets.subspan(offset + sizeof *option, (option->length - 1) * Icmp6HdrOption::lengthUnit);
}

}  // namespace Net

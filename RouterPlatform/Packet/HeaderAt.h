#pragma once

#include <RouterPlatform/Packet/NetInt.h>

#include <span>
#include <type_traits>

namespace Net {

/// The `Header` at `offset` of `octets`, or null when not all of it is there.
template <class Header>
Header const* headerAt(std::span<U8 const> octets, U64 offset) noexcept {
  static_assert(alignof(Header) == 1 && std::is_trivially_copyable_v<Header>);
  if (offset > octets.size() || sizeof(Header) > octets.size() - offset) return nullptr;
  return reinterpret_cast<Header const*>(octets.data() + offset);
}

}  // namespace Net

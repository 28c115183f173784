#pragma once

#include <RouterPlatform/Base/BoundedText.h>

namespace Net {

/// Identifier of an interface: its name, such as `Ethernet1`, at most 31 octets. The empty one is the default; it
/// stands for no interface.
class IntfId : public Fwk::BoundedText<IntfId, 31> {
 public:
  static constexpr char const* textTypeName = "IntfId";

  using BoundedText::BoundedText;
};
static_assert(sizeof(IntfId) == 32 && std::is_trivially_copyable_v<IntfId> &&
              std::has_unique_object_representations_v<IntfId>);

}  // namespace Net

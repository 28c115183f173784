#pragma once

#include <RouterPlatform/Base/BoundedText.h>

namespace Net {

/// Name of a VRF, at most 63 octets: operators name VRFs after customers, not after devices. The empty one is the
/// default.
class VrfName : public Fwk::BoundedText<VrfName, 63> {
 public:
  static constexpr char const* textTypeName = "VrfName";

  using BoundedText::BoundedText;
};
static_assert(sizeof(VrfName) == 64 && std::is_trivially_copyable_v<VrfName> &&
              std::has_unique_object_representations_v<VrfName>);

}  // namespace Net

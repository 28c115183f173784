#pragma once

#include <RouterPlatform/Base/BoundedText.h>

namespace Fwk {

/// Name of an entity or a profile: at most 63 octets. Empty at start.
class Name : public BoundedText<Name, 63> {
 public:
  static constexpr char const* textTypeName = "Name";

  using BoundedText::BoundedText;
};
static_assert(sizeof(Name) == 64 && std::is_trivially_copyable_v<Name> &&
              std::has_unique_object_representations_v<Name>);

}  // namespace Fwk

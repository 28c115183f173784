#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <span>
#include <string_view>
#include <vector>

namespace Fwk {

/// Every registered type, by qualified name, in the order of registration. Filled while libraries load; after that it
/// only changes when another one is loaded. Registration and look-up may not run at once.
class ROUTER_PLATFORM_EXPORT TypeRegistry {
 public:
  /// Enters a type; one whose name is there already is left out, so that loading twice does no harm.
  void add(TypeRecord const& type);
  /// The type of that name, or null.
  TypeRecord const* find(std::string_view name) const noexcept;
  std::span<TypeRecord const* const> types() const noexcept { return types_; }

 private:
  std::vector<TypeRecord const*> types_;
};

/// The registry of the process.
ROUTER_PLATFORM_EXPORT TypeRegistry& typeRegistry();

}  // namespace Fwk

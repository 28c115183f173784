#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <span>
#include <string_view>
#include <vector>

/// The section of a library file that names the library's types for tools which do not load it: each name closed by a
/// NUL, in the reverse order of registration.
#define FWK_TYPE_NAMES_SECTION ".fwk.typenames"

namespace Fwk {

/// Every registered type, by qualified name, in the order of registration: the platform's entities, then those of each
/// library. Filled while libraries load; after that it only changes when another one is loaded. Registration and
/// look-up may not run at once. Plain values, such as `U32` or `IntfId`, have a name and no record.
class ROUTER_PLATFORM_EXPORT TypeRegistry {
 public:
  /// Enters a type unless its name is there already, so that loading twice does no harm.
  void add(TypeRecord const& type);
  /// The type of that name, or null.
  TypeRecord const* find(std::string_view name) const noexcept;
  std::span<TypeRecord const* const> types() const noexcept { return types_; }

 private:
  std::vector<TypeRecord const*> types_;
};

/// The registry of the process.
ROUTER_PLATFORM_EXPORT TypeRegistry& typeRegistry();

/// As a static object of a library: enters the type into the registry when the library is loaded.
struct TypeRegistration {
  explicit TypeRegistration(TypeRecord const& type) { typeRegistry().add(type); }
};

}  // namespace Fwk

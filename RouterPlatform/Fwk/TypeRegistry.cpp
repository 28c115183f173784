#include <RouterPlatform/Fwk/TypeRegistry.h>

#include <algorithm>

namespace Fwk {

void TypeRegistry::add(TypeRecord const& type) {
  if (!find(type.name)) types_.push_back(&type);
}

TypeRecord const* TypeRegistry::find(std::string_view name) const noexcept {
  auto const found =
      std::ranges::find(types_, name, [](TypeRecord const* type) { return std::string_view(type->name); });
  return found == types_.end() ? nullptr : *found;
}

TypeRegistry& typeRegistry() {
  static TypeRegistry registry;
  return registry;
}

}  // namespace Fwk

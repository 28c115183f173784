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

namespace {

/// The type of the attributes `parent` and `entity`: what every entity has. None is made of it alone.
constexpr TypeRecord anyEntity{"Fwk::Entity", TypeKind::entity, {}};

}  // namespace

TypeRegistry& typeRegistry() {
  static TypeRegistry registry = [] {
    TypeRegistry made;
    made.add(anyEntity);
    return made;
  }();
  return registry;
}

}  // namespace Fwk

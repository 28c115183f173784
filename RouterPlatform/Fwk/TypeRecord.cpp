#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/ReflectedText.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <algorithm>
#include <array>

namespace Fwk {

char const* attributeKindName(AttributeKind kind) noexcept {
  switch (kind) {
    case AttributeKind::key:
      return "key";
    case AttributeKind::scalar:
      return "scalar";
    case AttributeKind::constant:
      return "constant";
    case AttributeKind::computed:
      return "computed";
    case AttributeKind::collection:
      return "collection";
    case AttributeKind::child:
      return "child";
  }
  return "unknown";
}

namespace {

template <class Append>
constexpr AttributeRecord baseAttribute(char const* name, AttrId id, char const* typeName, Append append) {
  AttributeRecord record;
  record.name = name;
  record.id = id;
  record.kind = AttributeKind::computed;
  record.typeName = typeName;
  record.valueKind = ValueKind::text;
  record.append = append;
  return record;
}

Entity const& entityOf(void const* object) { return *static_cast<Entity const*>(object); }

constexpr std::array<AttributeRecord, 5> entityBaseAttributes{
    baseAttribute("name", nameAttr, "Name", [](void const* o, std::string& out) { entityOf(o).name().appendTo(out); }),
    baseAttribute("fullName", fullNameAttr, "String",
                  [](void const* o, std::string& out) { out += entityOf(o).fullName(); }),
    baseAttribute("parent", parentAttr, "Fwk::Entity",
                  [](void const* o, std::string& out) {
                    if (Ptr<Entity> const parent = entityOf(o).parent()) out += parent->fullName();
                  }),
    baseAttribute("parentAttrName", parentAttrNameAttr, "String",
                  [](void const* o, std::string& out) { out += entityOf(o).parentAttrName(); }),
    baseAttribute("entity", entityAttr, "Fwk::Entity",
                  [](void const* o, std::string& out) { out += entityOf(o).fullName(); }),
};

}  // namespace

std::span<AttributeRecord const> TypeRecord::baseAttributes() const noexcept {
  if (kind == TypeKind::value) return {};
  return entityBaseAttributes;
}

AttributeRecord const* TypeRecord::attribute(AttrId id) const noexcept {
  if (id >= firstOwnAttr) {
    std::size_t const place = static_cast<std::size_t>(id - firstOwnAttr);
    return place < attributes.size() && attributes[place].reflected ? &attributes[place] : nullptr;
  }
  auto const base = baseAttributes();
  auto const found = std::ranges::find(base, id, &AttributeRecord::id);
  return found == base.end() ? nullptr : &*found;
}

AttributeRecord const* TypeRecord::attribute(std::string_view attributeName) const noexcept {
  for (auto const list : {attributes, baseAttributes()})
    for (AttributeRecord const& attr : list)
      if (attr.reflected && attr.name == attributeName) return &attr;
  return nullptr;
}

AttributeRecord const* TypeRecord::keyAttribute() const noexcept {
  return !attributes.empty() && attributes[0].kind == AttributeKind::key ? &attributes[0] : nullptr;
}

namespace {

void appendQuoted(String& out, std::string_view text) {
  out += '"';
  out += text;
  out += '"';
}

}  // namespace

ReflectionResult detail::badText(TextStatus status, char const* typeName, std::string_view text) {
  ReflectionResult result;
  bool const outOfRange = status == TextStatus::outOfRange;
  result.error = outOfRange ? ReflectionError::outOfRange : ReflectionError::malformed;
  appendQuoted(result.text, text);
  result.text += outOfRange ? " is out of range for " : " is not a valid ";
  result.text += typeName;
  return result;
}

ReflectionResult detail::noSuchMember(std::string_view key) {
  ReflectionResult result{ReflectionError::noSuchMember, "no member "};
  appendQuoted(result.text, key);
  return result;
}

}  // namespace Fwk

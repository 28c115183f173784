#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/ObjectRef.h>
#include <programs/common/trees/ReflectedJson.h>

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <string_view>

namespace Tool {

namespace {

using Fwk::AttributeRecord;

Json collectionJson(AttributeRecord const& attr, void const* object) {
  bool const isSet = attr.collection->memberTypeName[0] == '\0';
  Json result = isSet ? Json::array() : Json::object();
  attr.collection->forEach(object, [&](Fwk::MemberRef const& member) {
    if (isSet)
      result.push_back(member.key);
    else  // no look-up: keys are unique
      result.get_ref<Json::object_t&>().emplace_back(member.key, memberJson(member));
    return true;
  });
  return result;
}

}  // namespace

Json toJson(Fwk::ConstObjectRef object) {
  Json result = Json::object();
  for (AttributeRecord const& attr : object.type->attributes) {
    if (!attr.reflected || attr.kind == Fwk::AttributeKind::constant) continue;
    if (attr.collection) {
      result[attr.name] = collectionJson(attr, object.object);
    } else if (attr.child) {
      auto const child = attr.child->get(object.object);
      result[attr.name] = child ? childJson(*child) : Json();
    } else if (attr.readable() || attr.visit) {
      result[attr.name] = attributeJson(attr, object.object);
    }
  }
  return result;
}

Json attributeJson(AttributeRecord const& attr, void const* object) {
  if (attr.visit) {
    Json result;
    attr.visit(object, [&](Fwk::ConstObjectRef value) { result = toJson(value); });
    return result;
  }
  std::string text;
  attr.append(object, text);
  switch (attr.valueKind) {
    case Fwk::ValueKind::boolean:
      return text == "true";
    case Fwk::ValueKind::integer:
      return std::stoull(text);
    case Fwk::ValueKind::floating:
      return std::strtod(text.c_str(), nullptr);  // std::stod throws at a number next to 0
    default:
      return text;
  }
}

Json memberJson(Fwk::MemberRef const& member) {
  if (member.entity) return toJson(Fwk::objectRef(*member.entity));
  if (member.value.object) return toJson(member.value);
  return member.text;
}

Json childJson(Fwk::Entity const& child) {
  Json result{{"name", child.name().toString()}};
  result.update(toJson(Fwk::objectRef(child)));
  return result;
}

namespace {

/// JSON may hold DEL and the control characters from U+0080 to U+009F as they are (RFC 8259 7); a terminal may heed
/// them.
std::string withControlsEscaped(std::string_view json) {
  std::string text;
  for (std::size_t i = 0; i < json.size(); ++i) {
    bool const isC1 = json[i] == '\xc2' && i + 1 < json.size() && static_cast<unsigned char>(json[i + 1]) < 0xa0;
    if (isC1) ++i;
    if (isC1 || json[i] == '\x7f') {
      constexpr std::string_view digits = "0123456789abcdef";
      auto const code = static_cast<unsigned char>(json[i]);
      text += {'\\', 'u', '0', '0', digits[code >> 4], digits[code & 0xf]};
    } else {
      text += json[i];
    }
  }
  return text;
}

}  // namespace

std::string jsonText(Json const& json, int indent) {
  return withControlsEscaped(json.dump(indent, ' ', false, Json::error_handler_t::replace));
}

}  // namespace Tool

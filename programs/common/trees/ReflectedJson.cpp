#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/ObjectRef.h>
#include <programs/common/trees/ReflectedJson.h>

#include <nlohmann/json.hpp>

#include <cstdlib>

namespace Tool {

namespace {

using Fwk::AttributeRecord;

Json collectionJson(AttributeRecord const& attr, void const* object) {
  bool const isSet = attr.collection->memberTypeName[0] == '\0';
  Json result = isSet ? Json::array() : Json::object();
  attr.collection->forEach(object, [&](Fwk::MemberRef const& member) {
    if (isSet)
      result.push_back(member.key);
    else  // not looked up among the others first: no two have one key
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

std::string jsonText(Json const& json, int indent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace Tool

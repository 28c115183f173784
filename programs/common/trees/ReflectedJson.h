#pragma once

#include <RouterPlatform/Fwk/TypeRecord.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Tool {

/// Objects keep the order in which they were filled. A source that makes one includes nlohmann/json.hpp.
using Json = nlohmann::ordered_json;

/// An entity or a value record as an object: attributes under their model names, base attributes and constants left
/// out. Booleans and numbers as such, everything else as its plain text; a collection is an object from key to member,
/// a set a list of keys; a child has its name beside its attributes, and is null when there is none.
Json toJson(Fwk::ConstObjectRef object);
/// One attribute, which can be read as text or is a record.
Json attributeJson(Fwk::AttributeRecord const& attr, void const* object);
/// A member of a collection.
Json memberJson(Fwk::MemberRef const& member);
/// A child, with its name.
Json childJson(Fwk::Entity const& child);

/// As it is written: on one line, or indented by that many blanks a level. A text, such as a name, may hold any octets;
/// those that are no UTF-8 become U+FFFD. All control characters in a text are escaped.
std::string jsonText(Json const& json, int indent = -1);

}  // namespace Tool

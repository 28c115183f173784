#pragma once

#include <RouterPlatform/Fwk/TypeRecord.h>

#include <nlohmann/json.hpp>

namespace Tool {

/// Objects keep the order in which they were filled.
using Json = nlohmann::ordered_json;

/// An entity or a value record as an object: attributes under their model names, base attributes and constants left
/// out. Booleans and numbers as such, everything else as its plain text; a collection is an object from key to member,
/// a set a list of keys.
Json toJson(Fwk::ConstObjectRef object);

}  // namespace Tool

#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Ptr.h>

namespace Fwk {

class Entity;
struct TypeRecord;

/// A reflected object with its type: the address of an `Entity`, or of a value type's object. Owns nothing.
struct ConstObjectRef {
  void const* object = nullptr;
  TypeRecord const* type = nullptr;
};
/// The same, of an object that may be changed.
struct ObjectRef {
  void* object = nullptr;
  TypeRecord const* type = nullptr;
  operator ConstObjectRef() const noexcept { return {object, type}; }
};

/// A member of a reflected collection. Entities and value records have an object, plain values have a text.
struct MemberRef {
  String key;            ///< plain text
  Ptr<Entity> entity;    ///< collections of entities
  ConstObjectRef value;  ///< collections of value records; valid during the call that hands it out
  String text;           ///< collections of plain values
};

}  // namespace Fwk

#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/FunctionRef.h>
#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Forms/ValueKind.h>
#include <RouterPlatform/Fwk/AttrId.h>
#include <RouterPlatform/Fwk/CollectionRecord.h>
#include <RouterPlatform/Fwk/LiveCount.h>
#include <RouterPlatform/Fwk/ReflectedObject.h>
#include <RouterPlatform/Fwk/ReflectionResult.h>

#include <span>

namespace Fwk {

class Entity;
class OctetSink;
class OctetSource;
struct TypeRecord;

enum class AttributeKind : U8 {
  key,         ///< identifies the entity; fixed at creation
  scalar,      ///< read and, unless read-only, set
  constant,    ///< fixed by the model
  computed,    ///< function of stored attributes
  collection,  ///< members by key
  child,       ///< single owned entity
};

/// The kind's name, in words.
ROUTER_PLATFORM_EXPORT char const* attributeKindName(AttributeKind kind) noexcept;

/// Whether the order of a collection's members means something.
enum class MemberOrder : U8 {
  counts,     ///< it is advertised, or it says which member is preferred
  arbitrary,  ///< members are found by key: `assignTree` and mirrors leave those that are there in place
};

/// The operations of a single owned child, made by name. `object` is the holder.
struct ChildRecord {
  char const* typeName;
  Ptr<Entity> (*get)(void const* object);
  Ptr<Entity> (*set)(void* object, std::string_view name);  ///< null when the text is no name
  Ptr<Entity> (*del)(void* object);
  TypeRecord const& (*type)();
};

/// One attribute of a type. `object`, everywhere: as in `ConstObjectRef`.
struct AttributeRecord {
  char const* name = "";
  AttrId id = 0;
  AttributeKind kind = AttributeKind::scalar;
  char const* typeName = "";  ///< registered name; of a collection: of its members
  ValueKind valueKind = ValueKind::none;
  bool reflected = true;                          ///< false: it has its number and no descriptor
  MemberOrder memberOrder = MemberOrder::counts;  ///< collections only

  void (*append)(void const* object, std::string& out) = nullptr;                        ///< null: not readable as text
  ReflectionResult (*set)(void* object, std::string_view text) = nullptr;                ///< null: not settable
  void (*visit)(void const* object, FunctionRef<void(ConstObjectRef)> visit) = nullptr;  ///< value records only
  CollectionRecord const* collection = nullptr;
  ChildRecord const* child = nullptr;
  TypeRecord const& (*recordType)() = nullptr;  ///< value records only

  /// A computed attribute that takes an argument: appends its text for the argument that `argument` names. Fails as
  /// that text is wrong.
  ReflectionResult (*appendFor)(void const* object, std::string_view argument, std::string& out) = nullptr;
  char const* argumentTypeName = "";

  /// An attribute that refers to an entity which it does not own: that entity, or null.
  Ptr<Entity> (*refer)(void const* object) = nullptr;

  /// A stored and settable value as octets; null: not part of a change stream. `take` sets the attribute from the whole
  /// of `in`; when that is malformed it returns false and changes nothing.
  void (*put)(void const* object, OctetSink& out) = nullptr;
  bool (*take)(void* object, OctetSource in) = nullptr;

  bool readable() const noexcept { return append != nullptr; }
  bool settable() const noexcept { return set != nullptr; }
  /// Whether a change stream carries it.
  bool streamed() const noexcept { return put || child || (collection && collection->stream); }
};

enum class TypeKind : U8 { entity, value };

/// Generic handling of a value type's objects by address. Nothing here notifies anybody.
struct ValueTypeRecord {
  std::size_t size;
  std::size_t alignment;
  void (*construct)(void* room);  ///< a default value
  void (*destruct)(void* value);
  void (*assign)(void* value, void const* from);
  bool (*equal)(void const* a, void const* b);
  U64 (*hash)(void const* value, U64 seed);  ///< null unless the type is a key
  String (*text)(void const* value);         ///< the text form
  /// Assigns the value that `text` is the form of. Throws `ParseError`. A type that holds a collection cannot be read:
  /// to try stops the process.
  void (*parse)(String const& text, void* value);
};

/// A type as it is known at run time. Immutable; registered by name in the type registry.
struct TypeRecord {
  char const* name;  ///< qualified: `RouterAdvt::IntfConfig`
  TypeKind kind;
  std::span<AttributeRecord const> attributes;  ///< own attributes, in declaration order

  /// Entities: makes one from the plain text of its key; the result is null when the text is not a key.
  Ptr<Entity> (*create)(std::string_view key) = nullptr;
  LiveCount* liveCount = nullptr;          ///< entities
  ValueTypeRecord const* value = nullptr;  ///< value types

  /// The attribute with that identifier or name, the base attributes of entities included; null when there is none.
  ROUTER_PLATFORM_EXPORT AttributeRecord const* attribute(AttrId id) const noexcept;
  ROUTER_PLATFORM_EXPORT AttributeRecord const* attribute(std::string_view attributeName) const noexcept;
  /// The key attribute; null for a type that is identified by its name and for value types.
  ROUTER_PLATFORM_EXPORT AttributeRecord const* keyAttribute() const noexcept;
  /// `name`, `fullName`, `parent`, `parentAttrName`, `entity` for entities, nothing for value types.
  ROUTER_PLATFORM_EXPORT std::span<AttributeRecord const> baseAttributes() const noexcept;
};

}  // namespace Fwk

#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/BaseTypes.h>
#include <RouterPlatform/Fwk/FunctionRef.h>
#include <RouterPlatform/Fwk/Ptr.h>
#include <RouterPlatform/Fwk/TextCodec.h>

#include <atomic>
#include <span>

namespace Fwk {

class Entity;
struct TypeRecord;

/// How many instances of an entity type are alive. Any thread.
class LiveCount {
 public:
  S64 value() const noexcept { return count_.load(std::memory_order_relaxed); }
  void drop() noexcept { count_.fetch_sub(1, std::memory_order_relaxed); }

  /// Counts one instance while it is made; takes it back unless told to keep it.
  class Pending {
   public:
    explicit Pending(LiveCount& count) noexcept : count_(&count) {
      count.count_.fetch_add(1, std::memory_order_relaxed);
    }
    Pending(Pending const&) = delete;
    Pending& operator=(Pending const&) = delete;
    ~Pending() {
      if (count_) count_->drop();
    }
    void keep() noexcept { count_ = nullptr; }

   private:
    LiveCount* count_;
  };

 private:
  // A plain counter: nothing is published through it, so every access is relaxed.
  std::atomic<S64> count_{0};
};

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

/// Why reflection could not do what it was asked.
enum class ReflectionError : U8 {
  none,
  noSuchAttribute,  ///< no descriptor of that number or name
  notReadable,      ///< has no text
  notSettable,      ///< cannot be changed, or not from text
  malformed,        ///< the text is not of the type
  outOfRange,       ///< the text is a number that the type does not hold
  noSuchMember,     ///< the collection has no such key, the child attribute is empty
  notACollection,
  notAChild,
};

/// Outcome of a reflective operation; true when it succeeded. `text` says what is wrong, for people.
struct ReflectionResult {
  ReflectionError error = ReflectionError::none;
  String text;

  explicit operator bool() const noexcept { return error == ReflectionError::none; }
};

/// A reflected object with its type: the address of an `Entity`, or of a value type's object. Owns nothing.
struct ConstObjectRef {
  void const* object = nullptr;
  TypeRecord const* type = nullptr;
};
struct ObjectRef {
  void* object = nullptr;
  TypeRecord const* type = nullptr;
  operator ConstObjectRef() const noexcept { return {object, type}; }  // NOLINT(google-explicit-constructor)
};

/// A member of a reflected collection. What is set depends on the collection: entities and value records have an
/// object, plain values have a text.
struct MemberRef {
  String key;            ///< plain text
  Ptr<Entity> entity;    ///< collections of entities
  ConstObjectRef value;  ///< collections of value records; valid during the call that hands it out
  String text;           ///< collections of plain values
};

/// The operations of a collection attribute, all by plain text. `object` is the holder, as in `ConstObjectRef`.
struct CollectionRecord {
  char const* keyTypeName;
  char const* memberTypeName;  ///< empty for a set
  ValueKind memberKind;
  TypeRecord const& (*memberType)();  ///< null for plain values and sets
  U64 (*size)(void const* object);
  /// Gives the member to `visit`. Fails with `noSuchMember` or for a malformed key.
  ReflectionResult (*get)(void const* object, std::string_view key, FunctionRef<void(MemberRef const&)> visit);
  /// Makes the member if it is not there. `value`: for plain values; entities and sets take none. Null: read-only.
  ReflectionResult (*set)(void* object, std::string_view key, std::string_view value);
  /// Fails with `noSuchMember` when there is none. Null: read-only.
  ReflectionResult (*del)(void* object, std::string_view key);
  /// Null: read-only.
  void (*delAll)(void* object);
  /// Calls `visit` for each member, in order, until it returns false.
  void (*forEach)(void const* object, FunctionRef<bool(MemberRef const&)> visit);
};

/// The operations of a single owned child, made by name. `object` is the holder.
struct ChildRecord {
  char const* typeName;
  Ptr<Entity> (*get)(void const* object);
  Ptr<Entity> (*set)(void* object, std::string_view name);  ///< null when the text is no name
  Ptr<Entity> (*del)(void* object);
};

/// One attribute of a type. `object`, everywhere: as in `ConstObjectRef`.
struct AttributeRecord {
  char const* name = "";
  AttrId id = 0;
  AttributeKind kind = AttributeKind::scalar;
  char const* typeName = "";  ///< registered name; of a collection: of its members
  ValueKind valueKind = ValueKind::none;
  bool reflected = true;  ///< false: it has its number and nothing else

  void (*append)(void const* object, std::string& out) = nullptr;                        ///< null: not readable as text
  ReflectionResult (*set)(void* object, std::string_view text) = nullptr;                ///< null: not settable
  void (*visit)(void const* object, FunctionRef<void(ConstObjectRef)> visit) = nullptr;  ///< value records only
  CollectionRecord const* collection = nullptr;
  ChildRecord const* child = nullptr;

  bool readable() const noexcept { return append != nullptr; }
  bool settable() const noexcept { return set != nullptr; }
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

/// What is known of a type at run time. Immutable; registered by name in the type registry.
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

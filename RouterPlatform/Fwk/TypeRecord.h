#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/BaseTypes.h>
#include <RouterPlatform/Fwk/FunctionRef.h>
#include <RouterPlatform/Fwk/Ptr.h>
#include <RouterPlatform/Fwk/TextCodec.h>

#include <atomic>
#include <memory>
#include <span>

namespace Fwk {

class Entity;
class NotificationKey;
class OctetSink;
class OctetSource;
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
/// The same, of an object that may be changed.
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

/// A walk over a collection's members whose type need not be known. The collection may change in any way between two
/// calls; it has to live. What is read is of the member that the walk stands at: call `atEnd` after any pause.
class StreamWalk {
 public:
  virtual ~StreamWalk() = default;
  /// Whether no member is left. Otherwise the walk stands at one: at the next one if its own has been removed.
  virtual bool atEnd() noexcept = 0;
  virtual void next() noexcept = 0;
  virtual void putKey(OctetSink& out) const = 0;
  /// Nothing for entities and for sets.
  virtual void putValue(OctetSink& out) const = 0;
  /// Null for values and for sets.
  virtual Ptr<Entity> entity() const = 0;
};

/// The operations of a collection of an entity by octets instead of text: what a change stream uses. Octets that are no
/// key are the key of no member.
struct CollectionStream {
  bool ofEntities;
  /// The key that was notified. False: it is not of this collection.
  bool (*putKey)(NotificationKey const& key, OctetSink& out);
  /// Whether the key that was notified is that of the member that came last.
  bool (*isLast)(void const* object, NotificationKey const& key);
  bool (*contains)(void const* object, std::span<U8 const> key);
  /// The member; null in collections of values.
  Ptr<Entity> (*entity)(void const* object, std::span<U8 const> key);
  /// Writes the value of `key`, nothing in sets. False: there is no such member, or members are entities.
  bool (*putValue)(void const* object, std::span<U8 const> key, OctetSink& out);
  /// Key of an entity that is a member.
  void (*putMemberKey)(Entity const& member, OctetSink& out);
  /// Makes the member if it is not there, or stores the value; an entity is given in `made`. False: `key` or `value` is
  /// malformed, and nothing has changed.
  bool (*set)(void* object, std::span<U8 const> key, std::span<U8 const> value, Ptr<Entity>& made);
  /// Takes the member out if it is there. False: `key` is malformed.
  bool (*del)(void* object, std::span<U8 const> key);
  std::unique_ptr<StreamWalk> (*walk)(void const* object);
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
  CollectionStream const* stream = nullptr;  ///< null: not part of a change stream
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
  bool reflected = true;  ///< false: it has its number and nothing else

  void (*append)(void const* object, std::string& out) = nullptr;                        ///< null: not readable as text
  ReflectionResult (*set)(void* object, std::string_view text) = nullptr;                ///< null: not settable
  void (*visit)(void const* object, FunctionRef<void(ConstObjectRef)> visit) = nullptr;  ///< value records only
  CollectionRecord const* collection = nullptr;
  ChildRecord const* child = nullptr;
  TypeRecord const& (*recordType)() = nullptr;  ///< value records only

  /// A stored and settable value as octets; null: not part of a change stream. `take` sets the attribute to what all of
  /// `in` says, and leaves it alone and returns false when that is malformed.
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

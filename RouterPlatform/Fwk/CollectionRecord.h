#pragma once

#include <RouterPlatform/Base/FunctionRef.h>
#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Forms/ValueKind.h>
#include <RouterPlatform/Fwk/ReflectedObject.h>
#include <RouterPlatform/Fwk/ReflectionResult.h>

#include <memory>

namespace Fwk {

class Entity;
class NotificationKey;
class OctetSink;
struct TypeRecord;

/// A walk over a collection whose type the caller need not know. The collection may change in any way between two
/// calls, and must live. The walk reads the member at which it stands: call `atEnd` after any pause.
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

/// The operations of an entity's collection by octets instead of text, for change streams. A malformed key matches no
/// member.
struct CollectionStream {
  bool ofEntities;
  /// Writes the notified key. False: its type is not that of this collection's keys.
  bool (*putKey)(NotificationKey const& key, OctetSink& out);
  /// Whether the notified key is that of the last member.
  bool (*isLast)(void const* object, NotificationKey const& key);
  bool (*contains)(void const* object, Octets key);
  /// The member; null in collections of values.
  Ptr<Entity> (*entity)(void const* object, Octets key);
  /// Writes the value of `key`, nothing in sets. False: there is no such member, or members are entities.
  bool (*putValue)(void const* object, Octets key, OctetSink& out);
  /// Key of an entity that is a member.
  void (*putMemberKey)(Entity const& member, OctetSink& out);
  /// Makes the member if it is not there, or stores the value; `made` receives an entity. False: `key` or `value` is
  /// malformed, and nothing has changed.
  bool (*set)(void* object, Octets key, Octets value, Ptr<Entity>& made);
  /// Takes the member out if it is there. False: `key` is malformed.
  bool (*del)(void* object, Octets key);
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

}  // namespace Fwk

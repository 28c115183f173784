#pragma once

#include <RouterPlatform/Fwk/Collections.h>
#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/StreamCodec.h>
#include <RouterPlatform/Fwk/TextCodec.h>
#include <RouterPlatform/Fwk/TextForm.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <array>
#include <type_traits>

/// What a type record is written with: one line an attribute, in order.
///
///     static constexpr auto attrs = Fwk::attributes<IntfConfig>(
///         key<&IntfConfig::intfId>("intfId"),
///         scalar<&IntfConfig::raSuppress, &IntfConfig::raSuppressIs>("raSuppress"),
///         ...
///
/// The number of an attribute follows from its place. A type that has `typeRecord()` and is no entity is a value
/// record.
namespace Fwk {

template <class T>
concept EntityType = std::is_base_of_v<Entity, T>;
template <class T>
concept RecordType = requires {
  { T::typeRecord() } -> std::same_as<TypeRecord const&>;
};
template <class T>
concept ValueRecordType = RecordType<T> && !EntityType<T>;

/// The reflected view of an object.
inline ConstObjectRef objectRef(Entity const& entity) { return {&entity, &entity.fwkType()}; }
inline ObjectRef objectRef(Entity& entity) { return {&entity, &entity.fwkType()}; }
template <ValueRecordType T>
ConstObjectRef objectRef(T const& value) {
  return {&value, &T::typeRecord()};
}

namespace detail {

/// From the address in a `ConstObjectRef` back to the object.
template <class T>
T const& objectAs(void const* object) noexcept {
  if constexpr (EntityType<T>)
    return static_cast<T const&>(*static_cast<Entity const*>(object));
  else
    return *static_cast<T const*>(object);
}
template <class T>
T& objectAs(void* object) noexcept {
  if constexpr (EntityType<T>)
    return static_cast<T&>(*static_cast<Entity*>(object));
  else
    return *static_cast<T*>(object);
}

template <class T>
struct MemberPointer;
template <class C, class R>
struct MemberPointer<R C::*> {
  using Class = C;
  using Type = R;
};
template <class C, class R>
struct MemberPointer<R (C::*)() const> {
  using Class = C;
  using Type = R;
};
template <class C, class R>
struct MemberPointer<R (C::*)() const noexcept> : MemberPointer<R (C::*)() const> {};

ROUTER_PLATFORM_EXPORT ReflectionResult badText(TextStatus status, char const* typeName, std::string_view text);
ROUTER_PLATFORM_EXPORT ReflectionResult noSuchMember(std::string_view key);

template <class T>
ReflectionResult parseText(std::string_view text, T& value) {
  TextStatus const status = TextCodec<T>::parse(text, value);
  return status == TextStatus::ok ? ReflectionResult{} : badText(status, TextCodec<T>::typeName, text);
}

/// Type name, value kind and reading of an attribute that `get(object)` reads; `get` is a static function object.
template <class Value, class Get>
constexpr AttributeRecord readable(char const* name, AttributeKind kind) {
  AttributeRecord record;
  record.name = name;
  record.kind = kind;
  if constexpr (ValueRecordType<Value>) {
    record.typeName = Value::fwkTypeName;
    record.valueKind = ValueKind::record;
    record.recordType = &Value::typeRecord;
    record.visit = [](void const* object, FunctionRef<void(ConstObjectRef)> visit) {
      Value const& value = Get::get(object);
      visit(objectRef(value));
    };
  } else {
    record.typeName = TextCodec<Value>::typeName;
    record.valueKind = TextCodec<Value>::kind;
    record.append = [](void const* object, std::string& out) { TextCodec<Value>::append(out, Get::get(object)); };
  }
  return record;
}

template <auto getter>
constexpr AttributeRecord readableByMember(char const* name, AttributeKind kind) {
  using Getter = MemberPointer<decltype(getter)>;
  struct Get {
    static decltype(auto) get(void const* object) { return (objectAs<typename Getter::Class>(object).*getter)(); }
  };
  return readable<std::remove_cvref_t<typename Getter::Type>, Get>(name, kind);
}

}  // namespace detail

/// The key that an entity was constructed from.
template <auto getter>
constexpr AttributeRecord key(char const* name) {
  return detail::readableByMember<getter>(name, AttributeKind::key);
}

/// An attribute that is stored and cannot be set.
template <auto getter>
constexpr AttributeRecord scalar(char const* name) {
  return detail::readableByMember<getter>(name, AttributeKind::scalar);
}

/// An attribute that is stored and can be set.
template <auto getter, auto setter>
constexpr AttributeRecord scalar(char const* name) {
  AttributeRecord record = scalar<getter>(name);
  using Getter = detail::MemberPointer<decltype(getter)>;
  using Value = std::remove_cvref_t<typename Getter::Type>;
  if constexpr (!ValueRecordType<Value>)
    record.set = [](void* object, std::string_view text) {
      Value value{};
      ReflectionResult result = detail::parseText(text, value);
      if (result) (detail::objectAs<typename Getter::Class>(object).*setter)(std::move(value));
      return result;
    };
  if constexpr (Streamable<Value>) {
    record.put = [](void const* object, OctetSink& out) {
      StreamCodec<Value>::put(out, (detail::objectAs<typename Getter::Class>(object).*getter)());
    };
    record.take = [](void* object, OctetSource in) {
      Value value{};
      if (!takeWhole(in.rest(), value)) return false;
      (detail::objectAs<typename Getter::Class>(object).*setter)(std::move(value));
      return true;
    };
  }
  return record;
}

/// A value that the model fixes: `getter` is a static function.
template <auto getter>
constexpr AttributeRecord constant(char const* name) {
  struct Get {
    static auto get(void const*) { return getter(); }
  };
  return detail::readable<std::remove_cvref_t<decltype(getter())>, Get>(name, AttributeKind::constant);
}

/// A function of stored attributes.
template <auto getter>
constexpr AttributeRecord computed(char const* name) {
  return detail::readableByMember<getter>(name, AttributeKind::computed);
}

/// A computed attribute of type `Value` that takes an argument: it is listed, and cannot be read by reflection.
template <class Value>
constexpr AttributeRecord computedWithArgument(char const* name) {
  AttributeRecord record;
  record.name = name;
  record.kind = AttributeKind::computed;
  record.typeName = TextCodec<Value>::typeName;
  record.valueKind = TextCodec<Value>::kind;
  return record;
}

/// An attribute that has its number and no descriptor: reflection does not find it.
constexpr AttributeRecord unreflected(char const* name) {
  AttributeRecord record;
  record.name = name;
  record.reflected = false;
  return record;
}

namespace detail {

/// Calls `call(key)` with the key that `text` names; otherwise says what is wrong with the text.
template <class K, class Call>
ReflectionResult withKey(std::string_view text, Call call) {
  K key{};
  ReflectionResult result = parseText(text, key);
  return result ? call(key) : result;
}

/// The same for the key of a member that may be there, which is every key that printing gives.
template <class K, class Call>
ReflectionResult withMemberKey(std::string_view text, Call call) {
  K key{};
  TextStatus status;
  if constexpr (requires { TextCodec<K>::parsePrinted(text, key); })
    status = TextCodec<K>::parsePrinted(text, key);
  else
    status = TextCodec<K>::parse(text, key);
  return status == TextStatus::ok ? call(key) : badText(status, TextCodec<K>::typeName, text);
}

template <class K>
String keyText(K const& key) {
  String text;
  TextCodec<K>::append(text, key);
  return text;
}

/// Operations of one kind of collection member `member` of `Holder`; specialised by the collection's type.
template <class Collection, auto member>
struct CollectionOperations;

template <auto member>
auto const& collectionOf(void const* object) {
  return objectAs<typename MemberPointer<decltype(member)>::Class>(object).*member;
}
template <auto member>
auto& collectionOf(void* object) {
  return objectAs<typename MemberPointer<decltype(member)>::Class>(object).*member;
}

template <auto member>
U64 sizeOf(void const* object) {
  return collectionOf<member>(object).size();
}
template <auto member, class K>
ReflectionResult deleteMember(void* object, std::string_view text) {
  return withMemberKey<K>(text, [&](K const& key) {
    auto& collection = collectionOf<member>(object);
    if (!collection.contains(key)) return noSuchMember(text);
    collection.memberDel(key);
    return ReflectionResult{};
  });
}
template <auto member>
void deleteAll(void* object) {
  collectionOf<member>(object).memberDelAll();
}

/// A walk over a collection of one of the three kinds.
template <class Collection>
class CollectionWalk final : public StreamWalk {
  using Key = typename Collection::Key;
  using Iterator = decltype(std::declval<Collection const&>().begin());

 public:
  explicit CollectionWalk(Collection const& collection) : at_(collection.begin()) {}
  bool atEnd() noexcept override {
    at_.settle();
    return at_ == std::default_sentinel;
  }
  void next() noexcept override { ++at_; }
  void putKey(OctetSink& out) const override { StreamCodec<Key>::put(out, key()); }
  void putValue(OctetSink& out) const override {
    if constexpr (requires { typename Collection::Value; })
      StreamCodec<typename Collection::Value>::put(out, at_->value);
    else
      (void)out;
  }
  Ptr<Entity> entity() const override {
    if constexpr (requires { typename Collection::Member; })
      return (*at_).value;
    else
      return nullptr;
  }

 private:
  Key const& key() const {
    if constexpr (requires { typename Collection::Member; })
      return (*at_).key;
    else if constexpr (requires { typename Collection::Value; })
      return at_->key;
    else
      return *at_.operator->();
  }

  Iterator at_;
};

/// The operations of a change stream on a collection of one of the three kinds.
template <auto member>
struct StreamOperations {
  using Collection = typename MemberPointer<decltype(member)>::Type;
  using Key = typename Collection::Key;
  static constexpr bool ofEntities = requires { typename Collection::Member; };
  static constexpr bool ofValues = requires { typename Collection::Value; };

  static bool putKey(NotificationKey const& key, OctetSink& out) {
    Key const* const typed = key.as<Key>();
    if (typed) StreamCodec<Key>::put(out, *typed);
    return typed;
  }
  static bool isLast(void const* object, NotificationKey const& key) {
    Key const* const typed = key.as<Key>();
    Key const* const last = collectionOf<member>(object).lastKey();
    return typed && last && *typed == *last;
  }
  static bool contains(void const* object, std::span<U8 const> octets) {
    Key key{};
    return takeWhole(octets, key) && collectionOf<member>(object).contains(key);
  }
  static Ptr<Entity> entity(void const* object, std::span<U8 const> octets) {
    Key key{};
    if constexpr (ofEntities)
      if (takeWhole(octets, key)) return collectionOf<member>(object).member(key);
    return nullptr;
  }
  static bool putValue(void const* object, std::span<U8 const> octets, OctetSink& out) {
    Key key{};
    if (ofEntities || !takeWhole(octets, key) || !collectionOf<member>(object).contains(key)) return false;
    if constexpr (ofValues) StreamCodec<typename Collection::Value>::put(out, *collectionOf<member>(object).find(key));
    return true;
  }
  static void putMemberKey(Entity const& entity, OctetSink& out) {
    if constexpr (ofEntities) StreamCodec<Key>::put(out, static_cast<typename Collection::Member const&>(entity).key());
  }
  static bool set(void* object, std::span<U8 const> octets, std::span<U8 const> valueOctets, Ptr<Entity>& made) {
    Key key{};
    if (!takeWhole(octets, key)) return false;
    if constexpr (ofValues) {
      typename Collection::Value value{};
      if (!takeWhole(valueOctets, value)) return false;
      collectionOf<member>(object).memberIs(key, value);
    } else {
      if (!valueOctets.empty()) return false;
      if constexpr (ofEntities)
        made = collectionOf<member>(object).memberIs(key);
      else
        collectionOf<member>(object).memberIs(key);
    }
    return true;
  }
  static bool del(void* object, std::span<U8 const> octets) {
    Key key{};
    if (!takeWhole(octets, key)) return false;
    collectionOf<member>(object).memberDel(key);
    return true;
  }
  static std::unique_ptr<StreamWalk> walk(void const* object) {
    return std::make_unique<CollectionWalk<Collection>>(collectionOf<member>(object));
  }

  static constexpr CollectionStream record{ofEntities, &putKey,       &isLast, &contains, &entity,
                                           &putValue,  &putMemberKey, &set,    &del,      &walk};
};

/// Null when a key or a value has no octets.
template <class K, class V, auto member>
constexpr CollectionStream const* collectionStream() {
  if constexpr (Streamable<K> && Streamable<V>)
    return &StreamOperations<member>::record;
  else
    return nullptr;
}

template <class K, class T, auto member>
struct CollectionOperations<EntityCollection<K, T>, member> {
  static MemberRef ref(Ptr<T> const& entity) { return {keyText(entity->key()), entity, objectRef(*entity), {}}; }

  static ReflectionResult get(void const* object, std::string_view text, FunctionRef<void(MemberRef const&)> visit) {
    return withMemberKey<K>(text, [&](K const& key) {
      Ptr<T> const found = collectionOf<member>(object).member(key);
      if (!found) return noSuchMember(text);
      visit(ref(found));
      return ReflectionResult{};
    });
  }
  static ReflectionResult set(void* object, std::string_view text, std::string_view) {
    return withKey<K>(text, [&](K const& key) {
      collectionOf<member>(object).memberIs(key);
      return ReflectionResult{};
    });
  }
  static void forEach(void const* object, FunctionRef<bool(MemberRef const&)> visit) {
    for (auto const& [key, entity] : collectionOf<member>(object))
      if (!visit(ref(entity))) return;
  }

  static constexpr CollectionRecord record{TextCodec<K>::typeName,
                                           T::fwkTypeName,
                                           ValueKind::record,
                                           &T::typeRecord,
                                           &sizeOf<member>,
                                           &get,
                                           &set,
                                           &deleteMember<member, K>,
                                           &deleteAll<member>,
                                           &forEach,
                                           collectionStream<K, K, member>()};
};

/// Shared by collections of values: what a member shows, and reading.
template <class K, class V, auto member>
struct ValueOperations {
  static MemberRef ref(K const& key, V const& value) {
    MemberRef result;
    result.key = keyText(key);
    if constexpr (ValueRecordType<V>)
      result.value = objectRef(value);
    else
      TextCodec<V>::append(result.text, value);
    return result;
  }
  static ReflectionResult get(void const* object, std::string_view text, FunctionRef<void(MemberRef const&)> visit) {
    return withMemberKey<K>(text, [&](K const& key) {
      V const* const found = collectionOf<member>(object).find(key);
      if (!found) return noSuchMember(text);
      visit(ref(key, *found));
      return ReflectionResult{};
    });
  }
  static void forEach(void const* object, FunctionRef<bool(MemberRef const&)> visit) {
    for (auto const& [key, value] : collectionOf<member>(object))
      if (!visit(ref(key, value))) return;
  }
  static constexpr CollectionRecord readOnlyRecord() {
    CollectionRecord record{};
    record.keyTypeName = TextCodec<K>::typeName;
    if constexpr (ValueRecordType<V>) {
      record.memberTypeName = V::fwkTypeName;
      record.memberKind = ValueKind::record;
      record.memberType = &V::typeRecord;
    } else {
      record.memberTypeName = TextCodec<V>::typeName;
      record.memberKind = TextCodec<V>::kind;
    }
    record.size = &sizeOf<member>;
    record.get = &get;
    record.forEach = &forEach;
    return record;
  }
};

template <class K, class V, auto member>
struct CollectionOperations<ValueCollection<K, V>, member> : ValueOperations<K, V, member> {
  static ReflectionResult set(void* object, std::string_view text, std::string_view valueText) {
    return withKey<K>(text, [&](K const& key) {
      V value{};
      ReflectionResult result = parseText(valueText, value);
      if (result) collectionOf<member>(object).memberIs(key, value);
      return result;
    });
  }
  static constexpr CollectionRecord makeRecord() {
    CollectionRecord result = ValueOperations<K, V, member>::readOnlyRecord();
    if constexpr (!ValueRecordType<V>) result.set = &set;
    result.del = &deleteMember<member, K>;
    result.delAll = &deleteAll<member>;
    result.stream = collectionStream<K, V, member>();
    return result;
  }
  static constexpr CollectionRecord record = makeRecord();
};

template <class K, class V, U32 inlineRoom, U32 indexAbove, auto member>
struct CollectionOperations<OrderedMap<K, V, inlineRoom, indexAbove>, member> : ValueOperations<K, V, member> {
  static constexpr CollectionRecord record = ValueOperations<K, V, member>::readOnlyRecord();
};

template <class K, auto member>
struct CollectionOperations<ValueSet<K>, member> {
  static MemberRef ref(K const& key) { return {keyText(key), nullptr, {}, {}}; }
  static ReflectionResult get(void const* object, std::string_view text, FunctionRef<void(MemberRef const&)> visit) {
    return withMemberKey<K>(text, [&](K const& key) {
      if (!collectionOf<member>(object).contains(key)) return noSuchMember(text);
      visit(ref(key));
      return ReflectionResult{};
    });
  }
  static ReflectionResult set(void* object, std::string_view text, std::string_view) {
    return withKey<K>(text, [&](K const& key) {
      collectionOf<member>(object).memberIs(key);
      return ReflectionResult{};
    });
  }
  static void forEach(void const* object, FunctionRef<bool(MemberRef const&)> visit) {
    for (K const key : collectionOf<member>(object))
      if (!visit(ref(key))) return;
  }
  static constexpr CollectionRecord record{TextCodec<K>::typeName,
                                           "",
                                           ValueKind::none,
                                           nullptr,
                                           &sizeOf<member>,
                                           &get,
                                           &set,
                                           &deleteMember<member, K>,
                                           &deleteAll<member>,
                                           &forEach,
                                           collectionStream<K, K, member>()};
};

template <auto member>
struct ChildOperations {
  using Child = typename MemberPointer<decltype(member)>::Type::Member;
  static Ptr<Entity> get(void const* object) { return collectionOf<member>(object).child(); }
  static Ptr<Entity> set(void* object, std::string_view childName) {
    return Name::fits(childName) ? Ptr<Entity>(collectionOf<member>(object).childIs(Name(childName))) : nullptr;
  }
  static Ptr<Entity> del(void* object) { return collectionOf<member>(object).childDel(); }
  static constexpr ChildRecord record{Child::fwkTypeName, &get, &set, &del, &Child::typeRecord};
};

}  // namespace detail

/// A keyed collection: `member` points to the data member, whose type says what kind of collection it is.
template <auto member>
constexpr AttributeRecord collection(char const* name) {
  using Operations = detail::CollectionOperations<typename detail::MemberPointer<decltype(member)>::Type, member>;
  AttributeRecord record;
  record.name = name;
  record.kind = AttributeKind::collection;
  record.collection = &Operations::record;
  record.typeName =
      Operations::record.memberTypeName[0] ? Operations::record.memberTypeName : Operations::record.keyTypeName;
  return record;
}

/// A single owned entity: `member` points to the `OwnedChild`.
template <auto member>
constexpr AttributeRecord child(char const* name) {
  using Operations = detail::ChildOperations<member>;
  AttributeRecord record;
  record.name = name;
  record.kind = AttributeKind::child;
  record.child = &Operations::record;
  record.typeName = Operations::record.typeName;
  return record;
}

/// The attributes of `T` in declaration order; each gets its number from its place.
template <class T, class... Records>
constexpr std::array<AttributeRecord, sizeof...(Records)> attributes(Records const&... records) {
  std::array<AttributeRecord, sizeof...(Records)> result{records...};
  for (std::size_t i = 0; i < result.size(); ++i) result[i].id = static_cast<AttrId>(firstOwnAttr + i);
  return result;
}

/// The record of entity type `T`, made from a `Key`; `T::fwkTypeName` is its registered name.
template <class T, class Key>
constexpr TypeRecord entityRecord(std::span<AttributeRecord const> attributes, LiveCount& liveCount) {
  TypeRecord record{T::fwkTypeName, TypeKind::entity, attributes};
  record.liveCount = &liveCount;
  record.create = [](std::string_view text) -> Ptr<Entity> {
    Key key{};
    return TextCodec<Key>::parse(text, key) == TextStatus::ok ? Ptr<Entity>(create<T>(key)) : nullptr;
  };
  return record;
}

namespace detail {

template <class T>
struct ValueTypeOperations {
  static T const& as(void const* value) { return *static_cast<T const*>(value); }
  static U64 hash(void const* value, U64 seed) {
    if constexpr (requires { as(value).hash(seed); }) return as(value).hash(seed);
    return seed;
  }
  static constexpr bool isKey = requires(T const& value) { value.hash(U64{}); };

  static constexpr ValueTypeRecord record{
      sizeof(T),
      alignof(T),
      [](void* room) { std::construct_at(static_cast<T*>(room)); },
      [](void* value) { std::destroy_at(static_cast<T*>(value)); },
      [](void* value, void const* from) { *static_cast<T*>(value) = as(from); },
      [](void const* a, void const* b) { return as(a) == as(b); },
      isKey ? &hash : nullptr,
      [](void const* value) { return valueToStrep(as(value)); },
      [](String const& text, void* value) { *static_cast<T*>(value) = strepToValue<T>(text, nullptr); },
  };
};

}  // namespace detail

/// The record of value type `T`, which is default-constructible and has a text form: `valueToStrep` in its namespace
/// and a constructor that reads it.
template <class T>
constexpr TypeRecord valueRecord(std::span<AttributeRecord const> attributes) {
  TypeRecord record{T::fwkTypeName, TypeKind::value, attributes};
  record.value = &detail::ValueTypeOperations<T>::record;
  return record;
}

}  // namespace Fwk

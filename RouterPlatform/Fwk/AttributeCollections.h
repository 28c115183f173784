#pragma once

#include <RouterPlatform/Fwk/AttributeStream.h>
#include <RouterPlatform/Fwk/Collections.h>
#include <RouterPlatform/Fwk/MemberAccess.h>
#include <RouterPlatform/Fwk/ObjectRef.h>
#include <RouterPlatform/Fwk/ReflectedText.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <string_view>

/// Reflection operations per kind of collection, and of an owned child.
namespace Fwk::detail {

/// Operations of one kind of collection member `member` of `Holder`; specialised by the collection's type.
template <class Collection, auto member>
struct CollectionOperations;

template <auto member>
U64 sizeOf(void const* object) {
  return collectionOf<member>(object).size();
}
template <auto member, class K>
ReflectionResult makeMember(void* object, std::string_view text, std::string_view) {
  return withKey<K>(text, [&](K const& key) {
    collectionOf<member>(object).memberIs(key);
    return ReflectionResult{};
  });
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
  static void forEach(void const* object, FunctionRef<bool(MemberRef const&)> visit) {
    for (auto const& [key, entity] : collectionOf<member>(object))
      if (!visit(ref(entity))) return;
  }

  static constexpr CollectionRecord record{
      .keyTypeName = TextCodec<K>::typeName,
      .memberTypeName = T::fwkTypeName,
      .memberKind = ValueKind::record,
      .memberType = &T::typeRecord,
      .size = &sizeOf<member>,
      .get = &get,
      .set = &makeMember<member, K>,
      .del = &deleteMember<member, K>,
      .delAll = &deleteAll<member>,
      .forEach = &forEach,
      .stream = collectionStream<K, K, member>(),
  };
};

/// Reading, for every collection of values.
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
  static void forEach(void const* object, FunctionRef<bool(MemberRef const&)> visit) {
    for (K const key : collectionOf<member>(object))
      if (!visit(ref(key))) return;
  }
  static constexpr CollectionRecord record{
      .keyTypeName = TextCodec<K>::typeName,
      .memberTypeName = "",
      .memberKind = ValueKind::none,
      .memberType = nullptr,
      .size = &sizeOf<member>,
      .get = &get,
      .set = &makeMember<member, K>,
      .del = &deleteMember<member, K>,
      .delAll = &deleteAll<member>,
      .forEach = &forEach,
      .stream = collectionStream<K, K, member>(),
  };
};

template <auto member>
struct ChildOperations {
  using Child = typename MemberPointer<decltype(member)>::Type::Member;
  static Ptr<Entity> get(void const* object) { return collectionOf<member>(object).child(); }
  static Ptr<Entity> set(void* object, std::string_view childName) {
    return Name::fits(childName) ? Ptr<Entity>(collectionOf<member>(object).childIs(Name(childName))) : nullptr;
  }
  static Ptr<Entity> del(void* object) { return collectionOf<member>(object).childDel(); }
  static constexpr ChildRecord record{
      .typeName = Child::fwkTypeName,
      .get = &get,
      .set = &set,
      .del = &del,
      .type = &Child::typeRecord,
  };
};

}  // namespace Fwk::detail

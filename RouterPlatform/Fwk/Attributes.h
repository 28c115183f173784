#pragma once

#include <RouterPlatform/Forms/StreamCodec.h>
#include <RouterPlatform/Forms/TextCodec.h>
#include <RouterPlatform/Forms/TextForm.h>
#include <RouterPlatform/Fwk/AttributeCollections.h>
#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/MemberAccess.h>
#include <RouterPlatform/Fwk/ObjectRef.h>
#include <RouterPlatform/Fwk/ReflectedText.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <array>
#include <memory>
#include <type_traits>

/// The pieces of a type record: one line per attribute, in order.
///
///     static constexpr auto attrs = Fwk::attributes<IntfConfig>(
///         key<&IntfConfig::intfId>("intfId"),
///         scalar<&IntfConfig::raSuppress, &IntfConfig::raSuppressIs>("raSuppress"),
///         ...
///
/// The number of an attribute follows from its place. A type that has `typeRecord()` and is no entity is a value
/// record.
namespace Fwk {

namespace detail {

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

/// A function of stored attributes and of one argument.
template <auto getter>
constexpr AttributeRecord computedWithArgument(char const* name) {
  using Getter = detail::MemberPointer<decltype(getter)>;
  using Value = std::remove_cvref_t<typename Getter::Type>;
  using Argument = std::remove_cvref_t<typename Getter::Argument>;
  AttributeRecord record;
  record.name = name;
  record.kind = AttributeKind::computed;
  record.typeName = TextCodec<Value>::typeName;
  record.valueKind = TextCodec<Value>::kind;
  record.argumentTypeName = TextCodec<Argument>::typeName;
  record.appendFor = [](void const* object, std::string_view text, std::string& out) {
    Argument argument{};
    ReflectionResult result = detail::parseText(text, argument);
    if (result) TextCodec<Value>::append(out, (detail::objectAs<typename Getter::Class>(object).*getter)(argument));
    return result;
  };
  return record;
}

/// A stored reference to an entity that the attribute does not own.
template <auto getter>
constexpr AttributeRecord reference(char const* name) {
  using Getter = detail::MemberPointer<decltype(getter)>;
  using Referred = typename std::remove_cvref_t<typename Getter::Type>::element_type;
  AttributeRecord record;
  record.name = name;
  record.kind = AttributeKind::scalar;
  record.typeName = Referred::fwkTypeName;
  record.refer = [](void const* object) -> Ptr<Entity> {
    return (detail::objectAs<typename Getter::Class>(object).*getter)();
  };
  return record;
}

/// An attribute that has its number and no descriptor: reflection does not find it.
constexpr AttributeRecord unreflected(char const* name) {
  AttributeRecord record;
  record.name = name;
  record.reflected = false;
  return record;
}

/// A keyed collection: `member` points to the data member, whose type says what kind of collection it is.
template <auto member>
constexpr AttributeRecord collection(char const* name, MemberOrder memberOrder = MemberOrder::counts) {
  using Operations = detail::CollectionOperations<typename detail::MemberPointer<decltype(member)>::Type, member>;
  AttributeRecord record;
  record.name = name;
  record.kind = AttributeKind::collection;
  record.memberOrder = memberOrder;
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
      .size = sizeof(T),
      .alignment = alignof(T),
      .construct = [](void* room) { std::construct_at(static_cast<T*>(room)); },
      .destruct = [](void* value) { std::destroy_at(static_cast<T*>(value)); },
      .assign = [](void* value, void const* from) { *static_cast<T*>(value) = as(from); },
      .equal = [](void const* a, void const* b) { return as(a) == as(b); },
      .hash = isKey ? &hash : nullptr,
      .text = [](void const* value) { return valueToStrep(as(value)); },
      .parse = [](String const& text, void* value) { *static_cast<T*>(value) = strepToValue<T>(text, nullptr); },
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

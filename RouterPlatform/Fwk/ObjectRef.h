#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <concepts>
#include <type_traits>

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
template <ValueRecordType T>
ObjectRef objectRef(T& value) {
  return {&value, &T::typeRecord()};
}

}  // namespace Fwk

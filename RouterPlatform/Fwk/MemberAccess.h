#pragma once

#include <RouterPlatform/Fwk/ObjectRef.h>

/// From the untyped address in a type record's operation to the object, and to one of its members.
namespace Fwk::detail {

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
template <class C, class R, class A>
struct MemberPointer<R (C::*)(A) const> {
  using Class = C;
  using Type = R;
  using Argument = A;
};

template <auto member>
auto const& collectionOf(void const* object) {
  return objectAs<typename MemberPointer<decltype(member)>::Class>(object).*member;
}
template <auto member>
auto& collectionOf(void* object) {
  return objectAs<typename MemberPointer<decltype(member)>::Class>(object).*member;
}

}  // namespace Fwk::detail

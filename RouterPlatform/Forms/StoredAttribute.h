#pragma once

#include <tuple>

namespace Fwk {

/// An attribute that a value type stores. Its text form and its octets in a stream are made from these.
template <class Class, class Type>
struct StoredAttribute {
  char const* name;
  Type Class::*member;
};
template <class Class, class Type>
StoredAttribute(char const*, Type Class::*) -> StoredAttribute<Class, Type>;

/// A value type that lists what it stores: `static constexpr auto storedAttributes()` gives a tuple of
/// `StoredAttribute`, in declaration order; `fwkTypeName` is its qualified name. docs/adr/0017
template <class T>
concept StoredRecord = requires {
  T::storedAttributes();
};

}  // namespace Fwk

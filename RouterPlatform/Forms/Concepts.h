#pragma once

#include <concepts>
#include <string_view>
#include <type_traits>

/// Kinds of types that have a form in common.
namespace Fwk {

/// An unsigned integer that is a number: not `bool`.
template <class T>
concept UnsignedNumber = std::unsigned_integral<T> && !std::same_as<T, bool>;

template <class T>
concept Enumeration = std::is_enum_v<T>;

/// A text of bounded size: `Name`, `IntfId`, `VrfName`.
template <class T>
concept BoundedTextType = requires(T const& value) {
  { T::fits(value.view()) } -> std::same_as<bool>;
};

/// A type that is its octets: their order is the same on every machine, and any octets are a value. It declares
/// `static constexpr bool isOctets = true`.
template <class T>
concept OctetsType = T::isOctets;

/// A type that may hold values which must not be set, such as a received prefix with a mask length of 129:
/// `parsePrinted` reads everything that printing gives, `parse` only values that may be set.
template <class T>
concept ParsesPrinted = requires(std::string_view text) {
  T::parsePrinted(text);
};

}  // namespace Fwk

#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Forms/Concepts.h>
#include <RouterPlatform/Forms/ParseError.h>
#include <RouterPlatform/Forms/StoredAttribute.h>

#include <concepts>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

/// The text form of values: one line that is a valid Python expression when `Value` is a function, so that tools in
/// other languages can read it. A bool is `True` or `False`, an integer decimal, a floating-point number the shortest
/// text that reads back to it, with a point, an exponent, `inf` or `nan`; texts and addresses are single-quoted, with
/// backslash, quote and every octet that is not printable ASCII escaped; a value record is
/// `Value('Qualified::Name', ** {'attribute': form, ...})`, a collection inside it `None`.
///
/// Readers accept exactly what printing gives, and throw `ParseError` for anything else.
namespace Fwk {

/// Only for bool: without this constraint a string literal would convert to bool.
template <std::same_as<bool> T>
String valueToStrep(T value) {
  return value ? "True" : "False";
}
ROUTER_PLATFORM_EXPORT String valueToStrep(U64 value);
ROUTER_PLATFORM_EXPORT String valueToStrep(double value);
ROUTER_PLATFORM_EXPORT String valueToStrep(String const& value);

/// A type whose plain text form is quoted: names and addresses.
template <class T>
concept PlainText = requires(T const& value, std::string_view text) {
  { value.toString() } -> std::convertible_to<String>;
  { T::parse(text) } -> std::same_as<std::optional<T>>;
};
template <PlainText T>
String valueToStrep(T const& value) {
  return valueToStrep(String(value.toString()));
}
/// Every unsigned integer is printed as the widest.
template <UnsignedNumber T>
String valueToStrep(T value) {
  return valueToStrep(U64{value});
}

/// A value type that can be read from its text form: none of its stored attributes is a collection.
template <class T>
concept ReadableRecord =
    StoredRecord<T> && std::is_constructible_v<T, String::IteratorConst&, String::IteratorConst const&>;

/// Reads one text form piece by piece and advances `pos`.
class ROUTER_PLATFORM_EXPORT TextFormReader {
 public:
  TextFormReader(String::IteratorConst& pos, String::IteratorConst const& end) : start_(pos), pos_(pos), end_(end) {}

  /// Skips `text`, which must come next.
  void literal(std::string_view text);

  /// Reads the value of attribute `name`.
  template <class T>
  T attribute(char const* name) {
    if constexpr (ReadableRecord<T>) {
      String::IteratorConst const before = pos_;
      try {
        return T(pos_, end_);
      } catch (ParseError const& error) {
        throw ParseError(name, static_cast<std::size_t>(before - start_) + error.offset(), error.expected());
      }
    } else if constexpr (std::same_as<T, bool>) {
      return readBool(name);
    } else if constexpr (std::unsigned_integral<T>) {
      return static_cast<T>(readUnsigned(name, static_cast<T>(-1)));
    } else if constexpr (std::floating_point<T>) {
      return readDouble(name);
    } else if constexpr (std::same_as<T, String>) {
      return readQuoted(name);
    } else {
      std::size_t const at = offset();
      std::optional<T> const value = parsePrinted<T>(readQuoted(name));
      if (!value || value->toString() != lastQuoted_) throw ParseError(name, at, T::textTypeName);
      return *value;
    }
  }

 private:
  /// A received value may print as a text that a user may not write.
  template <class T>
  static std::optional<T> parsePrinted(std::string_view text) {
    if constexpr (ParsesPrinted<T>)
      return T::parsePrinted(text);
    else
      return T::parse(text);
  }

  std::size_t offset() const { return static_cast<std::size_t>(pos_ - start_); }
  std::string_view rest() const { return {std::to_address(pos_), static_cast<std::size_t>(end_ - pos_)}; }
  bool readBool(char const* name);
  U64 readUnsigned(char const* name, U64 greatest);
  double readDouble(char const* name);
  String const& readQuoted(char const* name);

  String::IteratorConst const start_;
  String::IteratorConst& pos_;
  String::IteratorConst const end_;
  String lastQuoted_;
};

/// The text form of a value that lists its stored attributes. A collection among them is printed as `None`.
template <StoredRecord T>
String recordToStrep(T const& value) {
  String out = "Value('";
  out += T::fwkTypeName;
  out += "', ** {";
  char const* separator = "'";
  auto const append = [&]<class C, class M>(StoredAttribute<C, M> const& attribute) {
    out += separator;
    out += attribute.name;
    out += "': ";
    if constexpr (requires {
                    (value.*attribute.member).size();
                    (value.*attribute.member).begin();
                  } &&
                  !std::same_as<M, String>)
      out += "None";
    else
      out += valueToStrep(value.*attribute.member);
    separator = ", '";
  };
  std::apply([&](auto const&... attributes) { (append(attributes), ...); }, T::storedAttributes());
  out += "})";
  return out;
}

/// Reads the text form of a value that lists its stored attributes into `value`.
template <StoredRecord T>
void recordFromStrep(String::IteratorConst& pos, String::IteratorConst const& end, T& value) {
  TextFormReader reader(pos, end);
  String literal = "Value('";
  literal += T::fwkTypeName;
  literal += "', ** {";
  reader.literal(literal);
  char const* separator = "'";
  auto const read = [&]<class C, class M>(StoredAttribute<C, M> const& attribute) {
    literal = separator;
    literal += attribute.name;
    literal += "': ";
    reader.literal(literal);
    value.*attribute.member = reader.attribute<M>(attribute.name);
    separator = ", '";
  };
  std::apply([&](auto const&... attributes) { (read(attributes), ...); }, T::storedAttributes());
  reader.literal("})");
}

}  // namespace Fwk

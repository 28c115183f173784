#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Hash.h>
#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Trace/Assert.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// The description that a row type gives the table of itself. A row has a key, `key()`, at its start, and lists its
/// fields in the order in which they stand:
///
///     class Neighbor {
///      public:
///       Key const& key() const { return key_; }
///       static constexpr std::array tableFields{SharedTable::field<Net::IntfId>("key.intfId"),
///                                               SharedTable::field<Net::Ip6Addr>("key.neighborAddr"),
///                                               SharedTable::field<double>("lastRaReceived")};
///      private:
///       Key key_;
///       double lastRaReceived_ = 0;
///     };
///
/// Rows are octets to the table and to readers built by others: trivially copyable, no padding, a multiple of 8 octets.
/// The table handles keys by the key type's own operations: `hash(0)`, which is the same in every
/// binary, `operator==`, `operator<` and the text form, which messages show. Equal keys are equal octets. A row type
/// has `operator==` for its users; the table itself compares no rows, because every write is a change.
///
/// A row type may have `bool isSound() const noexcept`: false for octets that no operation of the type makes. The
/// octets of a row may come from another user's program, so a reader takes a row that is not sound for a damaged one.
namespace SharedTable {

using Fwk::U32;
using Fwk::U64;
using Fwk::U8;

/// Kind of value that the octets of a field hold.
enum class FieldKind : U8 {
  octets,  ///< a flat type of its own, such as an address
  unsignedInteger,
  signedInteger,
  floatingPoint
};

/// A field of a row. A structure in a row is listed field by field.
struct Field {
  std::string_view name;
  FieldKind kind;  ///< of an array: of its elements
  U32 elementSize;
  U32 size;
  U32 alignment;
};

namespace detail {

template <class T>
struct ElementOf {
  using Type = T;
};
template <class T, std::size_t n>
struct ElementOf<std::array<T, n>> : ElementOf<T> {};

template <class T>
constexpr FieldKind kindOf() noexcept {
  if constexpr (std::is_enum_v<T>)
    return kindOf<std::underlying_type_t<T>>();
  else if constexpr (std::is_floating_point_v<T>)
    return FieldKind::floatingPoint;
  else if constexpr (std::is_integral_v<T>)
    return std::is_signed_v<T> ? FieldKind::signedInteger : FieldKind::unsignedInteger;
  else
    return FieldKind::octets;
}

}  // namespace detail

template <class T>
constexpr Field field(std::string_view name) noexcept {
  using Element = typename detail::ElementOf<T>::Type;
  static_assert(std::is_trivially_copyable_v<T>);
  static_assert(std::has_unique_object_representations_v<T> || std::is_same_v<T, double> || std::is_same_v<T, float>,
                "a field with padding bits");
  return {name, detail::kindOf<Element>(), sizeof(Element), sizeof(T), alignof(T)};
}

/// Whether fields of these sizes, one after another, fill exactly `rowSize` octets without padding between or after
/// them.
template <std::size_t n>
constexpr bool fieldsFillRow(std::array<Field, n> const& fields, std::size_t rowSize) noexcept {
  std::size_t offset = 0;
  for (Field const& f : fields) {
    if (offset % f.alignment != 0) return false;
    offset += f.size;
  }
  return offset == rowSize;
}

/// Whether the first fields are the key.
template <std::size_t n>
constexpr bool fieldsBeginWithKey(std::array<Field, n> const& fields, std::size_t keySize) noexcept {
  std::size_t offset = 0;
  for (Field const& f : fields)
    if (offset < keySize) offset += f.size;
  return offset == keySize;
}

/// Hash over name, kind, sizes and offset of every field and over the sizes of row and key (FNV-1a). A reader built
/// from another layout finds another hash in the file.
template <std::size_t n>
constexpr U64 layoutHashOf(std::array<Field, n> const& fields, U64 rowSize, U64 keySize) noexcept {
  U64 hash = 0xcbf29ce484222325U;
  auto const octet = [&](U64 value) { hash = (hash ^ (value & 0xff)) * 0x100000001b3U; };
  auto const number = [&](U64 value) {
    for (int shift = 0; shift < 32; shift += 8) octet(value >> shift);
  };
  U64 offset = 0;
  for (Field const& f : fields) {
    for (char const c : f.name) octet(static_cast<unsigned char>(c));
    octet(0);
    octet(static_cast<U8>(f.kind));
    number(f.elementSize);
    number(f.size);
    number(offset);
    offset += f.size;
  }
  number(rowSize);
  number(keySize);
  return hash;
}

/// A row type as the parts that know only octets see it. The operations are those of the type.
struct RowType {
  U32 rowSize;
  U32 keySize;
  U64 layoutHash;
  U64 (*keyHash)(void const* key) noexcept;  ///< with seed 0
  bool (*keysEqual)(void const* a, void const* b) noexcept;
  bool (*keyLess)(void const* a, void const* b) noexcept;
  void (*appendKey)(std::string& out, void const* key);  ///< the short text form
  bool (*isSound)(void const* row) noexcept;             ///< null: every row is
};

template <class R>
using KeyOf = std::remove_cvref_t<decltype(std::declval<R const&>().key())>;

/// An object made of octets.
template <class T>
T copyOf(void const* octets) noexcept {
  T value;
  std::memcpy(static_cast<void*>(&value), octets, sizeof value);
  return value;
}

/// The object that the octets are, where they stand aligned: in a row, a slot, or a buffer of words into which a row
/// was copied. Lookups spend too much of their time on a copy.
template <class T>
T const& objectIn(void const* octets) noexcept {
  return *std::launder(static_cast<T const*>(octets));
}

/// Hands a row to a visitor; whether the walk goes on.
template <class R, class Visit>
bool visitRow(Visit& visit, void const* octets) {
  R const row = copyOf<R>(octets);
  if constexpr (std::is_same_v<decltype(visit(row)), bool>) return visit(row);
  visit(row);
  return true;
}

/// Whether `key()` is the start of the row.
template <class R>
bool keyStandsFirst() noexcept {
  static_assert(std::is_lvalue_reference_v<decltype(std::declval<R const&>().key())>,
                "key() gives the key that is in the row");
  R const row{};
  return static_cast<void const*>(&row.key()) == static_cast<void const*>(&row);
}

/// `RowType::isSound` of a row type.
template <class R>
constexpr auto soundnessOf() noexcept -> bool (*)(void const*) noexcept {
  if constexpr (requires(R const& row) {
                  { row.isSound() }
                  noexcept->std::same_as<bool>;
                })
    return [](void const* octets) noexcept -> bool { return objectIn<R>(octets).isSound(); };
  else
    return nullptr;
}

/// A row whose key does not stand at its start fails an assertion.
template <class R>
RowType const& rowTypeOf() noexcept {
  using Key = KeyOf<R>;
  static_assert(std::is_trivially_copyable_v<R> && std::is_standard_layout_v<R>);
  static_assert(sizeof(R) % 8 == 0 && alignof(R) <= 8, "a row is a multiple of 8 octets");
  static_assert(std::is_trivially_copyable_v<Key> && std::has_unique_object_representations_v<Key>,
                "equal keys are equal octets");
  static_assert(std::equality_comparable<R> && std::equality_comparable<Key>);
  static_assert(fieldsFillRow(R::tableFields, sizeof(R)), "a field is not listed, or there is padding");
  static_assert(fieldsBeginWithKey(R::tableFields, sizeof(Key)), "the first fields are those of the key");
  ASSERT_AT(keyStandsFirst<R>(), Trace::Location::here());
  static constexpr RowType type{
      sizeof(R),
      sizeof(Key),
      layoutHashOf(R::tableFields, sizeof(R), sizeof(Key)),
      [](void const* key) noexcept -> U64 { return Fwk::hashOf(objectIn<Key>(key), 0); },
      [](void const* a, void const* b) noexcept -> bool { return objectIn<Key>(a) == objectIn<Key>(b); },
      [](void const* a, void const* b) noexcept -> bool { return objectIn<Key>(a) < objectIn<Key>(b); },
      [](std::string& out, void const* key) {
        using Trace::appendText;
        appendText(out, objectIn<Key>(key));
      },
      soundnessOf<R>()};
  return type;
}

}  // namespace SharedTable

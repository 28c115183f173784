#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/OrderedMap.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Forms/TextForm.h>

#include <bit>
#include <concepts>
#include <limits>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

/// Values as octets, for a change stream: the same in every process and on every machine.
namespace Fwk {

using OctetBuffer = std::vector<U8>;

/// Octets of the longest number in a stream: 64 bits, seven per octet.
inline constexpr std::size_t numberSizeMax = 10;

/// Appends to a vector of octets.
class ROUTER_PLATFORM_EXPORT OctetSink {
 public:
  explicit OctetSink(OctetBuffer& to) noexcept : to_(to) {}

  void octet(U8 value) { to_.push_back(value); }
  void octets(Octets octets) { to_.insert(to_.end(), octets.begin(), octets.end()); }
  /// The octets of a text, without its size.
  void text(std::string_view text) { to_.insert(to_.end(), text.begin(), text.end()); }
  /// A number, seven bits per octet, the low ones first; every octet but the last has its top bit set.
  void number(U64 value) {
    for (; value >= 0x80; value >>= 7) octet(static_cast<U8>(value | 0x80));
    octet(static_cast<U8>(value));
  }
  /// A number in 8 octets, network order.
  void fixed64(U64 value) {
    for (int shift = 56; shift >= 0; shift -= 8) octet(static_cast<U8>(value >> shift));
  }
  /// The octets that `fill` appends, with their size in front as a number.
  template <class Fill>
  void block(Fill fill) {
    std::size_t const sizeAt = to_.size();
    octet(0);
    fill();
    closeBlock(sizeAt);
  }

 private:
  void closeBlock(std::size_t sizeAt);

  OctetBuffer& to_;
};

/// Reads received octets. Every operation returns whether the octets were there and well formed; if not, neither its
/// result nor the source may be used further. Refers to the octets and owns nothing.
class ROUTER_PLATFORM_EXPORT OctetSource {
 public:
  OctetSource() = default;
  explicit OctetSource(Octets octets) noexcept : rest_(octets) {}

  bool atEnd() const noexcept { return rest_.empty(); }
  Octets rest() const noexcept { return rest_; }
  std::string_view restAsText() const noexcept { return {reinterpret_cast<char const*>(rest_.data()), rest_.size()}; }

  bool octet(U8& value) noexcept {
    if (rest_.empty()) return false;
    value = rest_[0];
    rest_ = rest_.subspan(1);
    return true;
  }
  bool octets(std::size_t size, Octets& octets) noexcept {
    if (rest_.size() < size) return false;
    octets = rest_.first(size);
    rest_ = rest_.subspan(size);
    return true;
  }
  /// As `OctetSink::number`, in the fewest octets.
  bool number(U64& value) noexcept;
  /// The same, at most `greatest`.
  bool number(U64& value, U64 greatest) noexcept { return number(value) && value <= greatest; }
  bool fixed64(U64& value) noexcept;
  /// A block as `OctetSink::block` writes it.
  bool block(OctetSource& content) noexcept {
    U64 size = 0;
    Octets octets;
    if (!number(size) || size > rest_.size() || !this->octets(size, octets)) return false;
    content = OctetSource(octets);
    return true;
  }

 private:
  Octets rest_;
};

/// The octet form of a type, beside its `TextCodec`. `put(out, v)` writes; `take(in, v)` reads into a
/// default-constructed value and returns whether the octets were a value.
template <class T>
struct StreamCodec;

/// A type whose values go through a change stream.
template <class T>
concept Streamable = requires(OctetSink& out, OctetSource& in, T const& from, T& to) {
  StreamCodec<T>::put(out, from);
  { StreamCodec<T>::take(in, to) } -> std::same_as<bool>;
};

/// Reads a value that takes up all of `octets`.
template <Streamable T>
bool takeWhole(Octets octets, T& value) {
  OctetSource in(octets);
  return StreamCodec<T>::take(in, value) && in.atEnd();
}

/// An octet, 0 or 1.
template <>
struct StreamCodec<bool> {
  static void put(OctetSink& out, bool value) { out.octet(value ? 1 : 0); }
  static bool take(OctetSource& in, bool& value) {
    U8 octet = 0;
    if (!in.octet(octet) || octet > 1) return false;
    value = octet == 1;
    return true;
  }
};

template <UnsignedNumber T>
struct StreamCodec<T> {
  static void put(OctetSink& out, T value) { out.number(value); }
  static bool take(OctetSource& in, T& value) {
    U64 number = 0;
    if (!in.number(number, std::numeric_limits<T>::max())) return false;
    value = static_cast<T>(number);
    return true;
  }
};

/// Zero, minus one, one, minus two, ...: a small number is short, whatever its sign.
template <std::signed_integral T>
struct StreamCodec<T> {
  static void put(OctetSink& out, T value) {
    S64 const wide = value;
    out.number((static_cast<U64>(wide) << 1) ^ static_cast<U64>(wide >> 63));
  }
  static bool take(OctetSource& in, T& value) {
    U64 number = 0;
    if (!in.number(number)) return false;
    S64 const wide = static_cast<S64>((number >> 1) ^ (~(number & 1) + 1));
    if (wide < std::numeric_limits<T>::min() || wide > std::numeric_limits<T>::max()) return false;
    value = static_cast<T>(wide);
    return true;
  }
};

/// As a number. Any number of the underlying type is taken, as setters store any.
template <Enumeration T>
struct StreamCodec<T> {
  using Number = std::underlying_type_t<T>;
  static void put(OctetSink& out, T value) { StreamCodec<Number>::put(out, static_cast<Number>(value)); }
  static bool take(OctetSource& in, T& value) {
    Number number{};
    if (!StreamCodec<Number>::take(in, number)) return false;
    value = static_cast<T>(number);
    return true;
  }
};

/// The bits of IEEE 754 binary64, whatever they mean.
template <>
struct StreamCodec<double> {
  static void put(OctetSink& out, double value) { out.fixed64(std::bit_cast<U64>(value)); }
  static bool take(OctetSource& in, double& value) {
    U64 bits = 0;
    if (!in.fixed64(bits)) return false;
    value = std::bit_cast<double>(bits);
    return true;
  }
};

/// A block with the octets of the text.
template <>
struct StreamCodec<String> {
  static void put(OctetSink& out, String const& value) {
    out.number(value.size());
    out.text(value);
  }
  static bool take(OctetSource& in, String& value) {
    OctetSource text;
    if (!in.block(text)) return false;
    value.assign(text.restAsText());
    return true;
  }
};

/// A block with the octets of the text.
template <BoundedTextType T>
struct StreamCodec<T> {
  static void put(OctetSink& out, T const& value) {
    out.number(value.size());
    out.text(value.view());
  }
  static bool take(OctetSource& in, T& value) {
    OctetSource text;
    if (!in.block(text) || !T::fits(text.restAsText())) return false;
    value = T(text.restAsText());
    return true;
  }
};

/// The octets as they are.
template <OctetsType T>
struct StreamCodec<T> {
  static_assert(std::is_trivially_copyable_v<T> && std::has_unique_object_representations_v<T> && alignof(T) == 1);
  using Array = std::array<U8, sizeof(T)>;
  static void put(OctetSink& out, T const& value) { out.octets(std::bit_cast<Array>(value)); }
  static bool take(OctetSource& in, T& value) {
    Octets octets;
    Array array;
    if (!in.octets(array.size(), octets)) return false;
    std::copy(octets.begin(), octets.end(), array.begin());
    value = std::bit_cast<T>(array);
    return true;
  }
};

/// A block with the stored attributes of a value type, in order of declaration. Attributes are added at the end: a
/// block of an older program is shorter and leaves the missing ones as they are; a longer one has attributes that are
/// skipped.
template <StoredRecord T>
struct StreamCodec<T> {
  static void put(OctetSink& out, T const& value) {
    auto const putOne = [&]<class C, class M>(StoredAttribute<C, M> const& attribute) {
      StreamCodec<M>::put(out, value.*attribute.member);
    };
    out.block([&] { std::apply([&](auto const&... each) { (putOne(each), ...); }, T::storedAttributes()); });
  }
  static bool take(OctetSource& in, T& value) {
    OctetSource content;
    if (!in.block(content)) return false;
    auto const takeOne = [&]<class C, class M>(StoredAttribute<C, M> const& attribute) {
      return content.atEnd() || StreamCodec<M>::take(content, value.*attribute.member);
    };
    return std::apply([&](auto const&... each) { return (takeOne(each) && ...); }, T::storedAttributes());
  }
};

/// A collection inside a value: a block of keys, each followed by its value, in the order of the collection.
template <class K, class V, U32 inlineRoom, U32 indexAbove>
struct StreamCodec<OrderedMap<K, V, inlineRoom, indexAbove>> {
  using Map = OrderedMap<K, V, inlineRoom, indexAbove>;
  static void put(OctetSink& out, Map const& map) {
    out.block([&] {
      map.forEach([&](K const& key, V const& value) {
        StreamCodec<K>::put(out, key);
        StreamCodec<V>::put(out, value);
      });
    });
  }
  static bool take(OctetSource& in, Map& map) {
    OctetSource content;
    if (!in.block(content)) return false;
    while (!content.atEnd()) {
      K key{};
      V value{};
      if (!StreamCodec<K>::take(content, key) || !StreamCodec<V>::take(content, value)) return false;
      map.set(key, value);
    }
    return true;
  }
};

}  // namespace Fwk

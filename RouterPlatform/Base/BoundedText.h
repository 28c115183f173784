#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Hash.h>
#include <RouterPlatform/Export.h>

#include <array>
#include <compare>
#include <concepts>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace Fwk {

/// Source of a text: a view, a string, or a pointer to characters that end in a NUL.
template <class T>
concept TextLike = std::convertible_to<T const&, std::string_view>;

namespace detail {
/// Throws std::length_error that names the text.
[[noreturn]] ROUTER_PLATFORM_EXPORT void throwTextTooLong(char const* typeName, std::string_view text,
                                                          std::size_t bound);
/// Throws std::invalid_argument.
[[noreturn]] ROUTER_PLATFORM_EXPORT void throwNullText(char const* typeName);
}  // namespace detail

/// A text of at most `bound` octets, held in the object itself: flat, trivially copyable, the same bytes in shared
/// memory. Octets behind the text are zero, so equal values are equal bytes, and all zero is the empty text.
///
/// `Derived` is the type that derives from it; it brings `textTypeName`. A text may hold any octets, zero included.
template <class Derived, std::size_t bound>
class alignas(8) BoundedText {
  static_assert((bound + 1) % 8 == 0 && bound <= 255, "text and size fill whole words");

 public:
  /// Greatest size of a text, in octets.
  static constexpr std::size_t maxSize = bound;

  constexpr BoundedText() noexcept = default;

  /// From text. Throws std::length_error for a text longer than `maxSize`, and std::invalid_argument for a null
  /// pointer. Implicit, so that a call reads `intfIs("Ethernet1")`.
  template <TextLike Text>
  BoundedText(Text const& text) {
    if constexpr (std::is_pointer_v<Text>)
      if (!text) detail::throwNullText(Derived::textTypeName);
    assign(text);
  }

  /// Whether a text is short enough.
  static constexpr bool fits(std::string_view text) noexcept { return text.size() <= bound; }

  /// The value of a text that fits, otherwise nothing.
  static std::optional<Derived> parse(std::string_view text) noexcept {
    if (!fits(text)) return std::nullopt;
    return Derived(text);
  }

  std::string_view view() const noexcept { return {octets_.data(), size()}; }
  /// At most `maxSize`, also of octets that came from elsewhere.
  std::size_t size() const noexcept { return isSound() ? size_ : bound; }
  /// Whether the size is one that a text can have. False only for octets that no operation of this type has made.
  bool isSound() const noexcept { return size_ <= bound; }
  bool empty() const noexcept { return size_ == 0; }
  bool isDefault() const noexcept { return empty(); }

  void appendTo(std::string& out) const { out += view(); }
  String toString() const { return String(view()); }

  /// Takes the same time for every text.
  U64 hash(U64 seed = 0) const noexcept {
    HashAccumulator accumulator(seed);
    for (std::size_t i = 0; i < wordCount; ++i) accumulator.mix(word(i));
    return accumulator.result();
  }

  /// Takes the same time for every text: a look-up compares keys one after another without branches.
  bool operator==(BoundedText const& other) const noexcept {
    U64 difference = 0;
    for (std::size_t i = 0; i < wordCount; ++i) difference |= word(i) ^ other.word(i);
    return difference == 0;
  }

  /// Octet by octet, as unsigned numbers; a text comes before the texts that begin with it.
  std::strong_ordering operator<=>(BoundedText const& other) const noexcept { return view() <=> other.view(); }

  template <TextLike Text>
  friend bool operator==(Derived const& value, Text const& text) noexcept {
    return value.view() == text;
  }

 private:
  static constexpr std::size_t wordCount = (bound + 1) / 8;
  U64 word(std::size_t i) const noexcept {
    U64 result;
    std::memcpy(&result, reinterpret_cast<unsigned char const*>(this) + i * sizeof result, sizeof result);
    return result;
  }

  void assign(std::string_view text) {
    if (!fits(text)) detail::throwTextTooLong(Derived::textTypeName, text, bound);
    text.copy(octets_.data(), text.size());
    size_ = static_cast<U8>(text.size());
  }

  std::array<char, bound> octets_{};
  U8 size_ = 0;
};

}  // namespace Fwk

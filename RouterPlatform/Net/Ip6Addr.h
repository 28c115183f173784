#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Hash.h>
#include <RouterPlatform/Export.h>

#include <array>
#include <bit>
#include <compare>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace Net {

/// IPv6 address, 16 octets in network order. The unspecified address by default. Text: RFC 5952 when printed, every
/// form of RFC 4291 2.2 when read; no zone.
class ROUTER_PLATFORM_EXPORT Ip6Addr {
 public:
  static constexpr char const* textTypeName = "Ip6Addr";
  static constexpr bool isOctets = true;  ///< to a change stream
  static constexpr std::size_t size = 16;

  constexpr Ip6Addr() noexcept = default;
  /// From text; std::invalid_argument when it is none. `parse` does not throw.
  explicit Ip6Addr(std::string_view text);
  static constexpr Ip6Addr fromBytes(std::span<Fwk::U8 const, size> octets) noexcept {
    Ip6Addr result;
    for (std::size_t i = 0; i < size; ++i) result.octets_[i] = octets[i];
    return result;
  }

  static std::optional<Ip6Addr> parse(std::string_view text) noexcept;
  void appendTo(std::string& out) const;
  Fwk::String toString() const;

  constexpr std::array<Fwk::U8, size> const& octets() const noexcept { return octets_; }
  void copyTo(std::span<Fwk::U8, size> to) const noexcept { std::memcpy(to.data(), octets_.data(), size); }

  /// Classes of RFC 4291 2.4: `fe80::/10`, `ff00::/8`, `::`, `::1`.
  constexpr bool isLinkLocal() const noexcept { return octets_[0] == 0xfe && (octets_[1] & 0xc0) == 0x80; }
  constexpr bool isMulticast() const noexcept { return octets_[0] == 0xff; }
  constexpr bool isUnspecified() const noexcept { return *this == Ip6Addr(); }
  constexpr bool isLoopback() const noexcept {
    Ip6Addr loopback;
    loopback.octets_[15] = 1;
    return *this == loopback;
  }

  Fwk::U64 hash(Fwk::U64 seed = 0) const noexcept {
    std::array<Fwk::U64, 2> words;
    std::memcpy(words.data(), octets_.data(), size);
    return Fwk::HashAccumulator(seed).mix(words[0]).mix(words[1]).result();
  }
  constexpr bool operator==(Ip6Addr const& other) const noexcept {
    using Words = std::array<Fwk::U64, 2>;
    auto const [a0, a1] = std::bit_cast<Words>(octets_);
    auto const [b0, b1] = std::bit_cast<Words>(other.octets_);
    return ((a0 ^ b0) | (a1 ^ b1)) == 0;  // two loads instead of a call of memcmp
  }
  constexpr std::strong_ordering operator<=>(Ip6Addr const&) const noexcept = default;

 private:
  std::array<Fwk::U8, size> octets_{};
};
static_assert(sizeof(Ip6Addr) == 16 && std::is_trivially_copyable_v<Ip6Addr> &&
              std::has_unique_object_representations_v<Ip6Addr>);

}  // namespace Net

#pragma once

#include <RouterPlatform/Net/Ip6Addr.h>

namespace Net {

/// IPv6 address and mask length: a prefix, or an interface address with its subnet. Host bits are kept; two are equal
/// only when both address and mask length are. `::/0` by default.
///
/// A mask length above 128, as it may arrive from the wire, is kept as it is and counts as 128 where bits are masked.
/// Text: `2001:db8::/64`; what is read has 0 to 128, what is printed is what there is.
class ROUTER_PLATFORM_EXPORT Ip6AddrWithMask {
 public:
  static constexpr char const* textTypeName = "Ip6AddrWithMask";
  static constexpr bool isOctets = true;  ///< to a change stream
  static constexpr Fwk::U8 maxMaskLen = 128;
  static constexpr Fwk::U8 interfaceIdentifierBits = 64;  ///< RFC 4291 2.5.1

  constexpr Ip6AddrWithMask() noexcept = default;
  constexpr Ip6AddrWithMask(Ip6Addr const& address, Fwk::U8 maskLen) noexcept : address_(address), maskLen_(maskLen) {}
  /// From text; std::invalid_argument when it is none. `parse` does not throw.
  explicit Ip6AddrWithMask(std::string_view text);

  static std::optional<Ip6AddrWithMask> parse(std::string_view text) noexcept;
  /// The same for what was printed from a received value: the mask length may be up to 255.
  static std::optional<Ip6AddrWithMask> parsePrinted(std::string_view text) noexcept;
  void appendTo(std::string& out) const;
  Fwk::String toString() const;

  constexpr Ip6Addr const& address() const noexcept { return address_; }
  constexpr Fwk::U8 maskLen() const noexcept { return maskLen_; }

  /// The same with the host bits cleared.
  Ip6AddrWithMask subnet() const noexcept;
  /// Whether `address` is of this subnet.
  bool contains(Ip6Addr const& address) const noexcept;

  Fwk::U64 hash(Fwk::U64 seed = 0) const noexcept {
    return Fwk::HashAccumulator(address_.hash(seed)).mix(maskLen_).result();
  }
  constexpr bool operator==(Ip6AddrWithMask const& other) const noexcept {
    using Words = std::array<Fwk::U64, 2>;
    auto const [a0, a1] = std::bit_cast<Words>(address_);
    auto const [b0, b1] = std::bit_cast<Words>(other.address_);
    return ((a0 ^ b0) | (a1 ^ b1) | Fwk::U64(maskLen_ ^ other.maskLen_)) == 0;  // one branch at most
  }
  constexpr std::strong_ordering operator<=>(Ip6AddrWithMask const&) const noexcept = default;

 private:
  Ip6Addr address_;
  Fwk::U8 maskLen_ = 0;
};
static_assert(sizeof(Ip6AddrWithMask) == 17 && std::is_trivially_copyable_v<Ip6AddrWithMask> &&
              std::has_unique_object_representations_v<Ip6AddrWithMask>);

}  // namespace Net

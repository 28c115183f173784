#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Net/Ip6Addr.h>

#include <array>
#include <compare>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace Net {

/// 48-bit Ethernet address, in the order of transmission. All zero by default. Text: `02:00:00:00:00:01`, lower case
/// when printed, either case when read.
class ROUTER_PLATFORM_EXPORT EthAddr {
 public:
  static constexpr char const* textTypeName = "EthAddr";
  static constexpr bool isOctets = true;  ///< to a change stream
  static constexpr std::size_t size = 6;

  constexpr EthAddr() noexcept = default;
  /// From text; std::invalid_argument when it is none. `parse` does not throw.
  explicit EthAddr(std::string_view text);
  static constexpr EthAddr fromBytes(std::span<Fwk::U8 const, size> octets) noexcept {
    EthAddr result;
    for (std::size_t i = 0; i < size; ++i) result.octets_[i] = octets[i];
    return result;
  }
  /// The group address to which a multicast packet goes, RFC 2464 7: 33:33 and the last four octets.
  static EthAddr forMulticast(Ip6Addr const& group) noexcept;

  static std::optional<EthAddr> parse(std::string_view text) noexcept;
  void appendTo(std::string& out) const;
  Fwk::String toString() const;

  constexpr std::array<Fwk::U8, size> const& octets() const noexcept { return octets_; }
  void copyTo(std::span<Fwk::U8, size> to) const noexcept { std::memcpy(to.data(), octets_.data(), size); }

  constexpr bool isMulticast() const noexcept { return (octets_[0] & 1) != 0; }

  Fwk::U64 hash(Fwk::U64 seed = 0) const noexcept;
  bool operator==(EthAddr const&) const noexcept = default;
  std::strong_ordering operator<=>(EthAddr const&) const noexcept = default;

 private:
  std::array<Fwk::U8, size> octets_{};
};
static_assert(sizeof(EthAddr) == 6 && std::is_trivially_copyable_v<EthAddr> &&
              std::has_unique_object_representations_v<EthAddr>);

}  // namespace Net

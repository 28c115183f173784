#pragma once

#include <RouterPlatform/Nd/FrameWriter.h>
#include <RouterPlatform/Nd/OptionHead.h>

#include <optional>
#include <string_view>

namespace Net {

///  0                   1                   2                   3
///  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |     Type      |    Length     |        Padding Length         |  type: one of the two for experiments, RFC 4727 5
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |             Zero              |           Reserved1           |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
/// |                                                               |
/// :                        URL, zero padding                      :
/// |                                                               |
/// +-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+
///
/// Up to the URL.
struct Icmp6HdrNetworkBootOption {
  static constexpr U8 typeValue = 253;  ///< for experiments, RFC 4727 5

  NetU8 type;
  NetU8 length;
  NetU16 paddingLen;  ///< zero octets behind the URL, 0 to 7
  NetU16 zero;
  NetU16 reserved1;

  void paddingLenIs(U16 v) { paddingLen = v; }
  void reserved1Is(U16 v) { reserved1 = v; }
};
static_assert(sizeof(Icmp6HdrNetworkBootOption) == 8 && alignof(Icmp6HdrNetworkBootOption) == 1);

/// Where to boot from.
struct NetworkBoot {
  std::string_view url{};
  U16 paddingLen = 0;  ///< octets, as received; sent as the URL needs it
  U16 zero = 0;        ///< as received; sent as 0
  U16 reserved1 = 0;   ///< as received; sent as 0
};

/// False: the option does not fit, and nothing was written.
inline bool put(FrameWriter& out, NetworkBoot const& boot) noexcept {
  U64 const padding =
      (Icmp6HdrOption::lengthUnit - boot.url.size() % Icmp6HdrOption::lengthUnit) % Icmp6HdrOption::lengthUnit;
  U64 const size = sizeof(Icmp6HdrNetworkBootOption) + boot.url.size() + padding;
  if (!out.fits(size)) return false;
  auto* const option = out.append<Icmp6HdrNetworkBootOption>();
  option->type = Icmp6HdrNetworkBootOption::typeValue;
  option->length = optionLength(size);
  option->paddingLenIs(static_cast<U16>(padding));
  option->zero = 0;
  option->reserved1Is(0);
  return out.append(boot.url) && out.appendZeros(padding);
}

/// The option at `offset`, whatever its type. Refers to the octets. The URL is empty when the padding length is not
/// possible, above 7 or above what there is. Nothing: the Length field is 0, or the option extends past the end.
inline std::optional<NetworkBoot> takeNetworkBoot(std::span<U8 const> octets, U64 offset) noexcept {
  auto const* const option = wholeOptionAt<Icmp6HdrNetworkBootOption>(octets, offset);
  if (!option) return std::nullopt;
  std::span<U8 const> const rest = bodyOf(option, octets, offset);
  bool const possible = option->paddingLen < Icmp6HdrOption::lengthUnit && option->paddingLen <= rest.size();
  auto const* const url = reinterpret_cast<char const*>(rest.data());
  return NetworkBoot{.url = {url, possible ? rest.size() - option->paddingLen : 0},
                     .paddingLen = option->paddingLen,
                     .zero = option->zero,
                     .reserved1 = option->reserved1};
}

}  // namespace Net

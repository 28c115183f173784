#pragma once

#include <RouterPlatform/Net/Icmp6RouterAdvtRouterPreferenceType.h>
#include <RouterPlatform/Packet/NetInt.h>

#include <array>

/// The options of a Router Advertisement, or their fixed heads. All begin with type and length; the length is in units
/// of 8 octets and counts the whole option.
namespace Net {

/// How every option begins, RFC 4861 4.6.
struct Icmp6HdrOption {
  NetU8 type;
  NetU8 length;  ///< units of 8 octets, 0 is invalid
};
static_assert(sizeof(Icmp6HdrOption) == 2 && alignof(Icmp6HdrOption) == 1);

/// Source or Target Link-Layer Address option with an Ethernet address, RFC 4861 4.6.1 and RFC 2464 6.
struct Icmp6HdrLinkLayerAddrOption {
  static constexpr U8 sourceTypeValue = 1;
  static constexpr U8 targetTypeValue = 2;

  NetU8 type;
  NetU8 length;  ///< 1
  std::array<U8, 6> linkLayerAddress;
};
static_assert(sizeof(Icmp6HdrLinkLayerAddrOption) == 8 && alignof(Icmp6HdrLinkLayerAddrOption) == 1);

/// Prefix Information option, RFC 4861 4.6.2.
struct Icmp6HdrPrefixInfoOption {
  static constexpr U8 typeValue = 3;
  static constexpr U8 onLinkBit = 0x80;         ///< L
  static constexpr U8 autonomousBit = 0x40;     ///< A
  static constexpr U8 routerAddressBit = 0x20;  ///< R, RFC 6275 7.2

  NetU8 type;
  NetU8 length;        ///< 4
  NetU8 prefixLength;  ///< bits, 0 to 128
  NetU8 flags;
  NetU32 validLifetime;      ///< seconds, 0xffffffff: infinity
  NetU32 preferredLifetime;  ///< seconds, 0xffffffff: infinity
  NetU32 reserved2;
  std::array<U8, 16> prefix;

  bool onLinkFlag() const { return (flags & onLinkBit) != 0; }
  bool autoAddressFlag() const { return (flags & autonomousBit) != 0; }
};
static_assert(sizeof(Icmp6HdrPrefixInfoOption) == 32 && alignof(Icmp6HdrPrefixInfoOption) == 1);

/// MTU option, RFC 4861 4.6.4.
struct Icmp6HdrMtuOption {
  static constexpr U8 typeValue = 5;

  NetU8 type;
  NetU8 length;  ///< 1
  NetU16 reserved;
  NetU32 mtu;  ///< octets
};
static_assert(sizeof(Icmp6HdrMtuOption) == 8 && alignof(Icmp6HdrMtuOption) == 1);

/// Head of a Route Information option; 0, 8 or 16 octets of prefix follow. RFC 4191 2.3.
struct Icmp6HdrRouteInfoOption {
  static constexpr U8 typeValue = 24;
  static constexpr U8 routePreferenceBits = 0x18;  ///< Prf
  static constexpr U8 routePreferenceShift = 3;

  NetU8 type;
  NetU8 length;        ///< 1, 2 or 3
  NetU8 prefixLength;  ///< bits, 0 to 128
  NetU8 flags;
  NetU32 routeLifetime;  ///< seconds, 0xffffffff: infinity

  Icmp6RouterAdvtRouterPreferenceType routePreference() const {
    return static_cast<Icmp6RouterAdvtRouterPreferenceType>((flags & routePreferenceBits) >> routePreferenceShift);
  }
};
static_assert(sizeof(Icmp6HdrRouteInfoOption) == 8 && alignof(Icmp6HdrRouteInfoOption) == 1);

/// Head of a Recursive DNS Server option; addresses of 16 octets follow. RFC 8106 5.1.
struct Icmp6HdrRdnssOption {
  static constexpr U8 typeValue = 25;

  NetU8 type;
  NetU8 length;  ///< 1 and 2 for every address
  NetU16 reserved;
  NetU32 lifetime;  ///< seconds, 0xffffffff: infinity
};
static_assert(sizeof(Icmp6HdrRdnssOption) == 8 && alignof(Icmp6HdrRdnssOption) == 1);

/// Head of a DNS Search List option; encoded names and padding follow. RFC 8106 5.2.
struct Icmp6HdrDnsslOption {
  static constexpr U8 typeValue = 31;

  NetU8 type;
  NetU8 length;
  NetU16 reserved;
  NetU32 lifetime;  ///< seconds, 0xffffffff: infinity
};
static_assert(sizeof(Icmp6HdrDnsslOption) == 8 && alignof(Icmp6HdrDnsslOption) == 1);

/// Head of a network boot option; the octets of a URL and zero padding follow. The type is one of the two
/// for experiments, RFC 4727.
struct Icmp6HdrNetworkBootOption {
  static constexpr U8 typeValue = 253;

  NetU8 type;
  NetU8 length;
  NetU16 paddingLen;  ///< zero octets behind the URL, 0 to 7
  NetU16 zero;
  NetU16 reserved1;

  void paddingLenIs(U16 v) { paddingLen = v; }
  void reserved1Is(U16 v) { reserved1 = v; }
};
static_assert(sizeof(Icmp6HdrNetworkBootOption) == 8 && alignof(Icmp6HdrNetworkBootOption) == 1);

}  // namespace Net

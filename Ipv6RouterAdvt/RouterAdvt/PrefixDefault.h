#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/ValueTypes.h>

namespace RouterAdvt {

/// The built-in prefix parameters: what a new prefix entry and a new profile start from, and what a prefix is
/// advertised with that has no entry. A value without stored attributes: any two are equal.
class ROUTER_ADVT_EXPORT PrefixDefault {
 public:
  enum Attr : AttrId {
    noAdvertiseAttr = Fwk::firstOwnAttr,
    validLifetimeAttr,
    preferredLifetimeAttr,
    noOnLinkAttr,
    noAutoConfigAttr,
  };

  constexpr PrefixDefault() = default;
  /// Reads the text form, which is empty: `pos` stays where it is.
  PrefixDefault(String::IteratorConst& pos, String::IteratorConst const& end);

  static constexpr bool noAdvertise() { return false; }
  /// Seconds: 30 days. RFC 4861 6.2.1 AdvValidLifetime.
  static constexpr U32 validLifetime() { return 2592000; }
  /// Seconds: 7 days. RFC 4861 6.2.1 AdvPreferredLifetime.
  static constexpr U32 preferredLifetime() { return 604800; }
  static constexpr bool noOnLink() { return false; }
  static constexpr bool noAutoConfig() { return false; }

  constexpr bool operator==(PrefixDefault const&) const noexcept { return true; }

  static constexpr char const* fwkTypeName = "RouterAdvt::PrefixDefault";
  static Fwk::TypeRecord const& typeRecord();
  static constexpr auto storedAttributes() { return std::tuple<>(); }
};

/// The text form: empty.
ROUTER_ADVT_EXPORT String valueToStrep(PrefixDefault const& value);
ROUTER_ADVT_EXPORT std::ostream& operator<<(std::ostream& out, PrefixDefault const& value);

}  // namespace RouterAdvt

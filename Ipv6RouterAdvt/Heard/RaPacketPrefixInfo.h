#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/ValueTypes.h>

namespace RouterAdvt {

/// One Prefix Information option of a received advertisement, as received. RFC 4861 4.6.2. A plain value: its setters
/// notify nobody. The default one stands for an option that is not there.
class ROUTER_ADVT_EXPORT RaPacketPrefixInfo {
 public:
  enum Attr : AttrId {
    prefixAttr = Fwk::firstOwnAttr,
    onLinkFlagAttr,
    autoConfigFlagAttr,
    validLifetimeAttr,
    preferredLifetimeAttr,
  };

  RaPacketPrefixInfo() = default;
  /// Of that prefix; flags clear, lifetimes 0.
  explicit RaPacketPrefixInfo(Ip6AddrWithMask const& prefix) : prefix_(prefix) {}

  /// Reads the text form at `pos` and moves `pos` behind it. Throws `Fwk::ParseError`.
  RaPacketPrefixInfo(String::IteratorConst& pos, String::IteratorConst const& end);

  /// Prefix and Prefix Length, bits behind the length included. The length is what was received, above 128 too.
  Ip6AddrWithMask prefix() const { return prefix_; }

  /// L flag.
  bool onLinkFlag() const { return onLinkFlag_; }
  void onLinkFlagIs(bool v) { onLinkFlag_ = v; }

  /// A flag: autonomous address configuration.
  bool autoConfigFlag() const { return autoConfigFlag_; }
  void autoConfigFlagIs(bool v) { autoConfigFlag_ = v; }

  /// Valid Lifetime, seconds; 0xffffffff: infinity.
  U32 validLifetime() const { return validLifetime_; }
  void validLifetimeIs(U32 v) { validLifetime_ = v; }

  /// Preferred Lifetime, seconds; 0xffffffff: infinity. Not compared with the valid lifetime.
  U32 preferredLifetime() const { return preferredLifetime_; }
  void preferredLifetimeIs(U32 v) { preferredLifetime_ = v; }

  bool operator==(RaPacketPrefixInfo const&) const noexcept = default;

  static constexpr char const* fwkTypeName = "RouterAdvt::RaPacketPrefixInfo";
  static Fwk::TypeRecord const& typeRecord();

  static constexpr auto storedAttributes() {
    return std::tuple(Fwk::StoredAttribute{"prefix", &RaPacketPrefixInfo::prefix_},
                      Fwk::StoredAttribute{"onLinkFlag", &RaPacketPrefixInfo::onLinkFlag_},
                      Fwk::StoredAttribute{"autoConfigFlag", &RaPacketPrefixInfo::autoConfigFlag_},
                      Fwk::StoredAttribute{"validLifetime", &RaPacketPrefixInfo::validLifetime_},
                      Fwk::StoredAttribute{"preferredLifetime", &RaPacketPrefixInfo::preferredLifetime_});
  }

 private:
  Ip6AddrWithMask prefix_;
  bool onLinkFlag_ = false;
  bool autoConfigFlag_ = false;
  U32 validLifetime_ = 0;
  U32 preferredLifetime_ = 0;
};

/// The text form.
ROUTER_ADVT_EXPORT String valueToStrep(RaPacketPrefixInfo const& value);
ROUTER_ADVT_EXPORT std::ostream& operator<<(std::ostream& out, RaPacketPrefixInfo const& value);

}  // namespace RouterAdvt

#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/ValueTypes.h>

namespace RouterAdvt {

/// A router heard on an interface. A plain value without setters: a changed router is recorded as a new value.
class ROUTER_ADVT_EXPORT RouterNeighbor {
 public:
  enum Attr : AttrId {
    intfIdAttr = Fwk::firstOwnAttr,
    vrfAttr,
    linkLocalAddrAttr,
  };

  /// No router: every attribute empty.
  RouterNeighbor() = default;
  RouterNeighbor(IntfId intfId, VrfName const& vrf, Ip6Addr const& linkLocalAddr)
      : intfId_(intfId), vrf_(vrf), linkLocalAddr_(linkLocalAddr) {}

  /// Reads the text form at `pos` and moves `pos` behind it. Throws `Fwk::ParseError`.
  RouterNeighbor(String::IteratorConst& pos, String::IteratorConst const& end);

  /// Interface on which the router was heard; the value's key in `RouterNeighborStatus`.
  IntfId intfId() const { return intfId_; }
  /// VRF of that interface; empty: the default one.
  VrfName vrf() const { return vrf_; }
  /// The router's link-local address, from which it advertises. RFC 4861 4.2.
  Ip6Addr linkLocalAddr() const { return linkLocalAddr_; }

  bool operator==(RouterNeighbor const&) const noexcept = default;
  /// True for the default value.
  bool operator!() const noexcept { return *this == RouterNeighbor(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::RouterNeighbor";
  static Fwk::TypeRecord const& typeRecord();

  static constexpr auto storedAttributes() {
    return std::tuple(Fwk::StoredAttribute{"intfId", &RouterNeighbor::intfId_},
                      Fwk::StoredAttribute{"vrf", &RouterNeighbor::vrf_},
                      Fwk::StoredAttribute{"linkLocalAddr", &RouterNeighbor::linkLocalAddr_});
  }

 private:
  IntfId intfId_;
  VrfName vrf_;
  Ip6Addr linkLocalAddr_;
};

/// The text form.
ROUTER_ADVT_EXPORT String valueToStrep(RouterNeighbor const& value);
ROUTER_ADVT_EXPORT std::ostream& operator<<(std::ostream& out, RouterNeighbor const& value);

}  // namespace RouterAdvt

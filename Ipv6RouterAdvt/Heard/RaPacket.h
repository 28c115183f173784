#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/Heard/RaPacketPrefixInfo.h>
#include <Ipv6RouterAdvt/ValueTypes.h>
#include <RouterPlatform/Base/OrderedMap.h>

namespace RouterAdvt {

/// One received Router Advertisement. RFC 4861 4.2. A plain value: its setters notify nobody. A rejected advertisement
/// becomes the empty packet, for which `!packet` is true. Assigning may throw std::bad_alloc and then leaves a mixture.
class ROUTER_ADVT_EXPORT RaPacket {
 public:
  enum Attr : AttrId {
    intfIdAttr = Fwk::firstOwnAttr,
    curHopLimitAttr,
    managedConfigFlagAttr,
    otherConfigFlagAttr,
    reachableTimeAttr,
    retransTimerAttr,
    mtuSpecifiedAttr,
    mtuAttr,
    srcIp6AddrAttr,
    routerLifeTimeAttr,
    prefixInfoAttr,
    isDeathPacketAttr,
  };

  // Few routers advertise more than 4 prefixes on one link; those need no allocation.
  using PrefixInfo = Fwk::OrderedMap<Ip6AddrWithMask, RaPacketPrefixInfo, 4>;

  /// The empty packet: that of the empty interface id.
  RaPacket() = default;
  /// A packet that arrived on `intfId`; everything else at its default, no prefixes.
  explicit RaPacket(IntfId intfId) : intfId_(intfId) {}

  /// The text form of a value that holds a collection cannot be read: calling this stops the process.
  RaPacket(String::IteratorConst& pos, String::IteratorConst const& end);

  /// Interface on which the advertisement arrived; the packet's key in `RaPacketStatus`.
  IntfId intfId() const { return intfId_; }

  /// Cur Hop Limit; 0: unspecified.
  U8 curHopLimit() const { return curHopLimit_; }
  void curHopLimitIs(U8 v) { curHopLimit_ = v; }

  /// M flag.
  bool managedConfigFlag() const { return managedConfigFlag_; }
  void managedConfigFlagIs(bool v) { managedConfigFlag_ = v; }

  /// O flag.
  bool otherConfigFlag() const { return otherConfigFlag_; }
  void otherConfigFlagIs(bool v) { otherConfigFlag_ = v; }

  /// Reachable Time, milliseconds; 0: unspecified.
  U32 reachableTime() const { return reachableTime_; }
  void reachableTimeIs(U32 v) { reachableTime_ = v; }

  /// Retrans Timer, milliseconds; 0: unspecified.
  U32 retransTimer() const { return retransTimer_; }
  void retransTimerIs(U32 v) { retransTimer_ = v; }

  /// Whether there was an MTU option. RFC 4861 4.6.4.
  bool mtuSpecified() const { return mtuSpecified_; }
  void mtuSpecifiedIs(bool v) { mtuSpecified_ = v; }

  /// MTU, octets; means something only with `mtuSpecified`.
  U32 mtu() const { return mtu_; }
  void mtuIs(U32 v) { mtu_ = v; }

  /// Source address of the advertisement: the advertising router.
  Ip6Addr srcIp6Addr() const { return srcIp6Addr_; }
  void srcIp6AddrIs(Ip6Addr const& v) { srcIp6Addr_ = v; }

  /// Router Lifetime, seconds; 0: not a default router.
  U16 routerLifeTime() const { return routerLifeTime_; }
  void routerLifeTimeIs(U16 v) { routerLifeTime_ = v; }

  /// Prefix Information options by prefix, in the order in which they were stored.
  PrefixInfo const& prefixInfo() const { return prefixInfo_; }
  /// The option of that prefix, or a default one.
  RaPacketPrefixInfo prefixInfo(Ip6AddrWithMask const& key) const {
    RaPacketPrefixInfo const* const found = prefixInfo_.find(key);
    return found ? *found : RaPacketPrefixInfo();
  }
  /// Stores `info` under `key`, in place of what stood there. The value's own prefix is not compared with the key.
  void prefixInfoIs(Ip6AddrWithMask const& key, RaPacketPrefixInfo const& info) { prefixInfo_.set(key, info); }
  /// Removes the option of that prefix, if there is one.
  void prefixInfoDel(Ip6AddrWithMask const& key) { prefixInfo_.remove(key); }
  void prefixInfoDelAll() { prefixInfo_.clear(); }

  /// Whether the router withdraws itself as a default router: `routerLifeTime` is 0. RFC 4861 6.2.5. Also true for the
  /// empty packet: ask `!packet` first.
  bool isDeathPacket() const { return routerLifeTime_ == 0; }

  /// Every stored attribute, prefixes in the same order included.
  bool operator==(RaPacket const&) const = default;
  /// True for the empty packet.
  bool operator!() const { return *this == RaPacket(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::RaPacket";
  static Fwk::TypeRecord const& typeRecord();

  static constexpr auto storedAttributes() {
    return std::tuple(Fwk::StoredAttribute{"intfId", &RaPacket::intfId_},
                      Fwk::StoredAttribute{"curHopLimit", &RaPacket::curHopLimit_},
                      Fwk::StoredAttribute{"managedConfigFlag", &RaPacket::managedConfigFlag_},
                      Fwk::StoredAttribute{"otherConfigFlag", &RaPacket::otherConfigFlag_},
                      Fwk::StoredAttribute{"reachableTime", &RaPacket::reachableTime_},
                      Fwk::StoredAttribute{"retransTimer", &RaPacket::retransTimer_},
                      Fwk::StoredAttribute{"mtuSpecified", &RaPacket::mtuSpecified_},
                      Fwk::StoredAttribute{"mtu", &RaPacket::mtu_},
                      Fwk::StoredAttribute{"srcIp6Addr", &RaPacket::srcIp6Addr_},
                      Fwk::StoredAttribute{"routerLifeTime", &RaPacket::routerLifeTime_},
                      Fwk::StoredAttribute{"prefixInfo", &RaPacket::prefixInfo_});
  }

 private:
  IntfId intfId_;
  U8 curHopLimit_ = 0;
  bool managedConfigFlag_ = false;
  bool otherConfigFlag_ = false;
  U32 reachableTime_ = 0;
  U32 retransTimer_ = 0;
  bool mtuSpecified_ = false;
  U32 mtu_ = 0;
  Ip6Addr srcIp6Addr_;
  U16 routerLifeTime_ = 0;
  PrefixInfo prefixInfo_;
};

/// The text form. Prefixes are not shown: they print as `None`.
ROUTER_ADVT_EXPORT String valueToStrep(RaPacket const& value);
ROUTER_ADVT_EXPORT std::ostream& operator<<(std::ostream& out, RaPacket const& value);

}  // namespace RouterAdvt

#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/Collections.h>
#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Net/IntfId.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>

namespace Ip6 {

/// The IPv6 state of an interface, as far as advertisements need it. Key: `intfId`. Setters store any value; an
/// unchanged one notifies nobody. Used by one thread at a time.
class ROUTER_PLATFORM_EXPORT IntfStatus final : public Fwk::Entity {
 public:
  enum Attr : Fwk::AttrId { intfIdAttr = Fwk::firstOwnAttr, addrAttr, nsRetransmitIntervalAttr };

  explicit IntfStatus(Net::IntfId intfId) : intfId_(intfId) {}
  static Fwk::Ptr<IntfStatus> IntfStatusIs(Net::IntfId intfId) { return Fwk::create<IntfStatus>(intfId); }

  Net::IntfId intfId() const { return intfId_; }
  Net::IntfId const& key() const noexcept { return intfId_; }

  /// The interface's addresses with their mask lengths, link-local ones included, in the order in which they came.
  auto const& addr() const { return addr_; }
  /// Whether the interface has the address, mask length included.
  bool addr(Net::Ip6AddrWithMask const& address) const { return addr_.member(address); }
  /// Adds the address and notifies with it; nobody is notified when it is there already.
  void addrIs(Net::Ip6AddrWithMask const& address) { addr_.memberIs(address); }
  /// Removes the address and notifies with it; returns whether it was there, without which nobody is notified.
  bool addrDel(Net::Ip6AddrWithMask const& address) { return addr_.memberDel(address); }
  void addrDelAll() { addr_.memberDelAll(); }

  /// Time between neighbour solicitations, milliseconds: the Retrans Timer field, sent as it is. RFC 4861 6.2.1
  /// AdvRetransTimer.
  Fwk::U32 nsRetransmitInterval() const { return nsRetransmitInterval_; }
  void nsRetransmitIntervalIs(Fwk::U32 v) { attrIs(nsRetransmitInterval_, v, nsRetransmitIntervalAttr); }

  static constexpr char const* fwkTypeName = "Ip6::IntfStatus";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~IntfStatus() override = default;

  Net::IntfId intfId_;
  Fwk::U32 nsRetransmitInterval_ = 0;
  Fwk::ValueSet<Net::Ip6AddrWithMask> addr_{*this, addrAttr};
};

}  // namespace Ip6

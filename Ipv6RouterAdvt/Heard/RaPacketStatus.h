#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/Heard/RaPacket.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Fwk/Collections.h>

namespace RouterAdvt {

/// The latest advertisement received on each interface. Key: `name`. Made with `Fwk::create`. Used by one thread at a
/// time.
class ROUTER_ADVT_EXPORT RaPacketStatus final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    raPacketAttr = Fwk::firstOwnAttr,
  };

  explicit RaPacketStatus(Name name) : name_(name) {}

  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  /// Packets by their own `intfId`.
  auto const& raPacket() const { return raPacket_; }
  /// The packet of that interface, or the empty one.
  RaPacket raPacket(IntfId key) const { return raPacket_.member(key); }
  /// Stores `packet` in place of its interface's former one, prefixes included, and notifies with the interface; an
  /// equal packet changes nothing.
  void raPacketIs(RaPacket const& packet) { raPacket_.memberIs(packet.intfId(), packet); }
  /// Removes and returns the packet of that interface and notifies with the interface; the empty packet, and nobody
  /// notified, when there is none.
  RaPacket raPacketDel(IntfId key) { return raPacket_.memberDel(key); }
  /// `raPacketDel` for every packet.
  void raPacketDelAll() { raPacket_.memberDelAll(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::RaPacketStatus";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~RaPacketStatus() override = default;

  Name name_;
  Fwk::ValueCollection<IntfId, RaPacket> raPacket_{*this, raPacketAttr};
};

}  // namespace RouterAdvt

#pragma once

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <RouterPlatform/Fwk/Reflection.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

/// Changes trees of the model at random, through the type records: every settable attribute, every collection and child
/// of every entity comes up. Keys are few, so that members come, go and come back.
class TreeMutator {
 public:
  /// Gives a number below `limit`.
  using Choose = std::function<unsigned(unsigned limit)>;

  TreeMutator(std::vector<Fwk::Ptr<Fwk::Entity>> roots, Choose choose)
      : roots_(std::move(roots)), choose_(std::move(choose)) {}

  /// The four trees that the library's entities make: `Config`, `Status`, `RaPacketStatus`, `RouterNeighborStatus`.
  static std::vector<Fwk::Ptr<Fwk::Entity>> modelTrees() {
    return {RouterAdvt::configFactory("config"), RouterAdvt::statusFactory("status"),
            Fwk::create<RouterAdvt::RaPacketStatus>(Fwk::Name("packets")),
            RouterAdvt::routerNeighborStatusFactory("neighbors")};
  }

  /// One change, or an attempt that changes nothing.
  void step() {
    Fwk::Ptr<Fwk::Entity> entity = roots_[choose_(static_cast<unsigned>(roots_.size()))];
    while (choose_(4) != 0) {
      Fwk::Ptr<Fwk::Entity> const below = entityBelow(*entity);
      if (!below) break;
      entity = below;
    }
    auto const attributes = entity->fwkType().attributes;
    change(*entity, attributes[choose_(static_cast<unsigned>(attributes.size()))]);
  }

 private:
  using AttributeRecord = Fwk::AttributeRecord;

  Fwk::Ptr<Fwk::Entity> entityBelow(Fwk::Entity& entity) {
    auto const attributes = entity.fwkType().attributes;
    std::vector<Fwk::Ptr<Fwk::Entity>> found;
    for (AttributeRecord const& attr : attributes) {
      if (attr.child)
        if (auto const child = attr.child->get(&entity)) found.push_back(child);
      if (attr.collection)
        attr.collection->forEach(&entity, [&](Fwk::MemberRef const& member) {
          if (member.entity) found.push_back(member.entity);
          return static_cast<bool>(member.entity);
        });
    }
    return found.empty() ? nullptr : found[choose_(static_cast<unsigned>(found.size()))];
  }

  void change(Fwk::Entity& entity, AttributeRecord const& attr) {
    if (attr.child)
      changeChild(entity, attr);
    else if (attr.collection)
      changeCollection(entity, attr);
    else if (attr.settable())
      attr.set(&entity, text(attr.typeName));
  }

  void changeChild(Fwk::Entity& entity, AttributeRecord const& attr) {
    if (choose_(4) == 0)
      attr.child->del(&entity);
    else
      attr.child->set(&entity, choose_(2) ? "one" : "two");
  }

  void changeCollection(Fwk::Entity& entity, AttributeRecord const& attr) {
    std::string const key = text(attr.collection->keyTypeName);
    unsigned const choice = choose_(32);
    if (choice == 0)
      attr.collection->delAll(&entity);
    else if (choice < 12)
      attr.collection->del(&entity, key);
    else if (attr.collection->set)
      attr.collection->set(&entity, key, text(attr.collection->memberTypeName));
    else
      setRecord(entity, key);
  }

  /// Collections of records are not set from text.
  void setRecord(Fwk::Entity& entity, std::string const& key) {
    if (auto* const packets = dynamic_cast<RouterAdvt::RaPacketStatus*>(&entity)) packets->raPacketIs(packet(key));
    if (auto* const neighbors = dynamic_cast<RouterAdvt::RouterNeighborStatus*>(&entity))
      neighbors->routerNeighborIs(
          RouterAdvt::RouterNeighbor(Net::IntfId(key), Net::VrfName(text("VrfName")), Net::Ip6Addr(text("Ip6Addr"))));
  }

  RouterAdvt::RaPacket packet(std::string const& key) {
    RouterAdvt::RaPacket packet{Net::IntfId(key)};
    packet.curHopLimitIs(static_cast<Fwk::U8>(choose_(256)));
    packet.managedConfigFlagIs(choose_(2) == 1);
    packet.mtuIs(choose_(3) * 1000);
    packet.srcIp6AddrIs(Net::Ip6Addr(text("Ip6Addr")));
    packet.routerLifeTimeIs(static_cast<Fwk::U16>(choose_(65536)));
    for (unsigned count = choose_(7); count > 0; --count) {
      Net::Ip6AddrWithMask const prefix(Net::Ip6Addr(text("Ip6Addr")), static_cast<Fwk::U8>(choose_(256)));
      RouterAdvt::RaPacketPrefixInfo info(prefix);
      info.onLinkFlagIs(choose_(2) == 1);
      info.validLifetimeIs(choose_(2) ? ~Fwk::U32{0} : choose_(100));
      packet.prefixInfoIs(prefix, info);
    }
    return packet;
  }

  /// Plain text of a value of that type.
  std::string text(std::string_view typeName) {
    std::string const digit(1, static_cast<char>('0' + choose_(5)));
    if (typeName == "bool") return choose_(2) ? "true" : "false";
    if (typeName == "U32") return std::array{"0", "1", "127", "128", "4294967295"}[choose_(5)];
    if (typeName == "IntfId") return "Ethernet" + digit;
    if (typeName == "Ip6Addr") return "fe80::" + digit;
    if (typeName == "Ip6AddrWithMask") return "2001:db8:" + digit + "::/64";
    if (typeName == "Icmp6RouterAdvtRouterPreferenceType")
      return std::array{"medium", "high", "reserved_", "low"}[choose_(4)];
    if (typeName == "String" && choose_(4) == 0) return std::string(choose_(300), 'x') + digit;
    return choose_(8) == 0 ? "" : "text " + digit;
  }

  std::vector<Fwk::Ptr<Fwk::Entity>> roots_;
  Choose choose_;
};

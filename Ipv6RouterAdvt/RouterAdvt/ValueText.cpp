#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <Ipv6RouterAdvt/RouterAdvt/RaPacket.h>
#include <Ipv6RouterAdvt/RouterAdvt/RaPacketPrefixInfo.h>
#include <Ipv6RouterAdvt/RouterAdvt/RouterNeighbor.h>
#include <Ipv6RouterAdvt/RouterAdvt/RouterNeighborRa.h>
#include <Ipv6RouterAdvt/RouterAdvt/RouterNeighborRaKey.h>
#include <RouterPlatform/Trace/Assert.h>

#include <ostream>

/// The text forms of the value types: printing, and reading back where the type holds no collection.
namespace RouterAdvt {

namespace {

constexpr char const* modelSource = "Ipv6RouterAdvt/RouterAdvt";

}  // namespace

String valueToStrep(PrefixDefault const&) { return String(); }
String valueToStrep(LifeTimeHashMap const&) { return "None"; }
String valueToStrep(RaPacket const& value) { return Fwk::recordToStrep(value); }
String valueToStrep(RaPacketPrefixInfo const& value) { return Fwk::recordToStrep(value); }
String valueToStrep(RouterNeighbor const& value) { return Fwk::recordToStrep(value); }
String valueToStrep(RouterNeighborRaKey const& value) { return Fwk::recordToStrep(value); }
String valueToStrep(RouterNeighborRa const& value) { return Fwk::recordToStrep(value); }

std::ostream& operator<<(std::ostream& out, PrefixDefault const& value) { return out << valueToStrep(value); }
std::ostream& operator<<(std::ostream& out, LifeTimeHashMap const& value) { return out << valueToStrep(value); }
std::ostream& operator<<(std::ostream& out, RaPacket const& value) { return out << valueToStrep(value); }
std::ostream& operator<<(std::ostream& out, RaPacketPrefixInfo const& value) { return out << valueToStrep(value); }
std::ostream& operator<<(std::ostream& out, RouterNeighbor const& value) { return out << valueToStrep(value); }
std::ostream& operator<<(std::ostream& out, RouterNeighborRaKey const& value) { return out << valueToStrep(value); }
std::ostream& operator<<(std::ostream& out, RouterNeighborRa const& value) { return out << valueToStrep(value); }

PrefixDefault::PrefixDefault(String::IteratorConst&, String::IteratorConst const&) {}

LifeTimeHashMap::LifeTimeHashMap(String::IteratorConst&, String::IteratorConst const&) {
  ASSERT_AT_TEXT(false, Trace::Location::here(modelSource),
                 R"(!"No String constructor for LifeTimeHashMap - has collection")");
}

RaPacket::RaPacket(String::IteratorConst&, String::IteratorConst const&) {
  ASSERT_AT_TEXT(false, Trace::Location::here(modelSource),
                 R"(!"No String constructor for RaPacket - has collection")");
}

RaPacketPrefixInfo::RaPacketPrefixInfo(String::IteratorConst& pos, String::IteratorConst const& end) {
  Fwk::recordFromStrep(pos, end, *this);
}

RouterNeighbor::RouterNeighbor(String::IteratorConst& pos, String::IteratorConst const& end) {
  Fwk::recordFromStrep(pos, end, *this);
}

RouterNeighborRaKey::RouterNeighborRaKey(String::IteratorConst& pos, String::IteratorConst const& end) {
  Fwk::recordFromStrep(pos, end, *this);
}

RouterNeighborRa::RouterNeighborRa(String::IteratorConst& pos, String::IteratorConst const& end) {
  Fwk::recordFromStrep(pos, end, *this);
}

}  // namespace RouterAdvt

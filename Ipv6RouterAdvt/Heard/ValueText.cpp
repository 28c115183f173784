#include <Ipv6RouterAdvt/Heard/RaPacket.h>
#include <Ipv6RouterAdvt/Heard/RaPacketPrefixInfo.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighbor.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborRa.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborRaKey.h>
#include <Ipv6RouterAdvt/ModelAssert.h>
#include <RouterPlatform/Forms/TextForm.h>

#include <ostream>

/// The text forms of the value types: printing, and reading back where the type holds no collection.
namespace RouterAdvt {

namespace {

/// Writes exactly the text: a width that was set on the stream pads nothing and is used up.
std::ostream& write(std::ostream& out, String const& text) {
  out.width(0);
  return out << text;
}

}  // namespace

String valueToStrep(RaPacket const& value) { return Fwk::recordToStrep(value); }
String valueToStrep(RaPacketPrefixInfo const& value) { return Fwk::recordToStrep(value); }
String valueToStrep(RouterNeighbor const& value) { return Fwk::recordToStrep(value); }
String valueToStrep(RouterNeighborRaKey const& value) { return Fwk::recordToStrep(value); }
String valueToStrep(RouterNeighborRa const& value) { return Fwk::recordToStrep(value); }

std::ostream& operator<<(std::ostream& out, RaPacket const& value) { return write(out, valueToStrep(value)); }
std::ostream& operator<<(std::ostream& out, RaPacketPrefixInfo const& value) { return write(out, valueToStrep(value)); }
std::ostream& operator<<(std::ostream& out, RouterNeighbor const& value) { return write(out, valueToStrep(value)); }
std::ostream& operator<<(std::ostream& out, RouterNeighborRaKey const& value) {
  return write(out, valueToStrep(value));
}
std::ostream& operator<<(std::ostream& out, RouterNeighborRa const& value) { return write(out, valueToStrep(value)); }

RaPacket::RaPacket(String::IteratorConst&, String::IteratorConst const&) {
  ASSERT_AT_TEXT(false,
                 operationAt(ModelLine::raPacketFromText,
                             "RouterAdvt::RaPacket::RaPacket(String::IteratorConst&, String::IteratorConst const&)"),
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

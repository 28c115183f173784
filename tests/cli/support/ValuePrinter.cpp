// Prints values of the readable and the unreadable value types for a test, two lines a value: its text form, and the
// same value as JSON that is made without it, from the attributes that the type records know. There, a text is its
// octets in hexadecimal, and a floating-point number is as C prints it in hexadecimal.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <RouterPlatform/Fwk/ObjectRef.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <random>
#include <string>

namespace {

using namespace RouterAdvt;
using Json = nlohmann::ordered_json;

std::string hex(std::string_view octets) {
  std::string result;
  for (char const c : octets) {
    result += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4];
    result += "0123456789abcdef"[static_cast<unsigned char>(c) & 15];
  }
  return result;
}

Json attributesOf(Fwk::ConstObjectRef object);

Json valueOf(Fwk::AttributeRecord const& attr, void const* object) {
  if (attr.collection) return nullptr;
  if (attr.valueKind == Fwk::ValueKind::record) {
    Json result;
    attr.visit(object, [&](Fwk::ConstObjectRef value) { result = attributesOf(value); });
    return result;
  }
  std::string text;
  attr.append(object, text);
  switch (attr.valueKind) {
    case Fwk::ValueKind::boolean:
      return text == "true";
    case Fwk::ValueKind::integer:
      return std::stoull(text);
    case Fwk::ValueKind::floating: {
      char octets[64];
      std::snprintf(octets, sizeof octets, "%a", std::strtod(text.c_str(), nullptr));
      return {{"float", octets}};
    }
    default:
      return {{"text", hex(text)}};
  }
}

Json attributesOf(Fwk::ConstObjectRef object) {
  Json result{{"type", object.type->name}, {"attributes", Json::array()}};
  for (Fwk::AttributeRecord const& attr : object.type->attributes)
    if (attr.kind != Fwk::AttributeKind::computed)
      result["attributes"].push_back({attr.name, valueOf(attr, object.object)});
  return result;
}

template <class T>
void print(T const& value) {
  std::cout << value << '\n' << attributesOf(Fwk::objectRef(value)).dump() << '\n';
}

/// Values at and between the ends of their ranges, the same in every run.
class Values {
 public:
  bool flag() { return random_() % 2 == 0; }
  U32 number() {
    static constexpr U32 ends[] = {0, 1, 1800, 0x7fffffff, 0x80000000, 0xffffffff};
    return flag() ? ends[random_() % std::size(ends)] : static_cast<U32>(random_());
  }
  Seconds time() {
    using Limits = std::numeric_limits<double>;
    static constexpr double ends[] = {0.0,
                                      -0.0,
                                      12.5,
                                      1764757443.25,
                                      Limits::min(),
                                      Limits::max(),
                                      Limits::infinity(),
                                      -Limits::infinity(),
                                      1e22,
                                      0.1,
                                      Limits::quiet_NaN(),
                                      Limits::denorm_min()};
    return flag() ? ends[random_() % std::size(ends)] : static_cast<double>(random_()) / 1e10;
  }
  std::string text() {
    std::string result(random_() % 32, 'x');
    static constexpr char odd[] = {'\'', '"', '\\', '\n', '\r', '\t', '\0', '{', '\x7f', '\xff'};
    for (char& c : result) c = random_() % 4 == 0 ? odd[random_() % std::size(odd)] : static_cast<char>(random_());
    return result;
  }
  Ip6Addr address() {
    std::array<U8, 16> octets{};
    for (U8& octet : octets)
      if (flag()) octet = static_cast<U8>(random_());
    return Ip6Addr::fromBytes(octets);
  }
  Ip6AddrWithMask prefix() { return {address(), static_cast<U8>(random_())}; }

  RaPacketPrefixInfo prefixInfo() {
    RaPacketPrefixInfo info(prefix());
    info.onLinkFlagIs(flag());
    info.autoConfigFlagIs(flag());
    info.validLifetimeIs(number());
    info.preferredLifetimeIs(number());
    return info;
  }
  RaPacket packet() {
    RaPacket packet{IntfId(text())};
    packet.curHopLimitIs(static_cast<U8>(number()));
    packet.managedConfigFlagIs(flag());
    packet.otherConfigFlagIs(flag());
    packet.reachableTimeIs(number());
    packet.retransTimerIs(number());
    packet.mtuSpecifiedIs(flag());
    packet.mtuIs(number());
    packet.srcIp6AddrIs(address());
    packet.routerLifeTimeIs(static_cast<U16>(number()));
    if (flag()) packet.prefixInfoIs(prefix(), prefixInfo());
    return packet;
  }
  RouterNeighborRaKey key() { return {IntfId(text()), address()}; }

 private:
  std::mt19937_64 random_{1};
};

}  // namespace

int main() {
  Values values;
  print(RaPacketPrefixInfo());
  print(RaPacket(IntfId()));
  print(RouterNeighbor());
  print(RouterNeighborRaKey());
  print(RouterNeighborRa());
  for (int i = 0; i < 500; ++i) {
    print(values.prefixInfo());
    print(values.packet());
    print(RouterNeighbor(IntfId(values.text()), VrfName(values.text()), values.address()));
    print(values.key());
    print(RouterNeighborRa(values.key(), values.time()));
  }
  std::cout << LifeTimeHashMap() << "\nnull\n";
}

#include <RouterPlatform/Forms/TextCodec.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>
#include <programs/common/config/LinkReader.h>
#include <programs/common/text/NearestName.h>
#include <programs/common/text/Text.h>
#include <programs/common/text/ValueTypes.h>

namespace Tool {

namespace {

using Net::EthAddr;
using Net::IntfId;
using Net::Ip6AddrWithMask;

template <class T>
std::optional<T> readValue(YamlReader& reader, YamlValue const& value) {
  using Codec = Fwk::TextCodec<T>;
  auto const text = reader.scalar(value, expectedText(Codec::typeName));
  if (!text) return std::nullopt;
  T result{};
  Fwk::TextStatus const status = Codec::parse(*text, result);
  if (status == Fwk::TextStatus::ok) return result;
  Fwk::ReflectionResult failure;
  failure.error =
      status == Fwk::TextStatus::outOfRange ? Fwk::ReflectionError::outOfRange : Fwk::ReflectionError::malformed;
  reader.error(value.place, value.path, badTextMessage(Codec::typeName, *text, failure));
  return std::nullopt;
}

std::vector<Ip6AddrWithMask> readAddresses(YamlReader& reader, YamlValue const& value, char const* expected) {
  std::vector<Ip6AddrWithMask> result;
  std::map<Ip6AddrWithMask, Place> seen;
  reader.forEachElement(value, expected, [&](YamlValue const& element) {
    auto const address = readValue<Ip6AddrWithMask>(reader, element);
    if (!address) return;
    reader.notePlace(element.path, element.place);
    if (auto const [first, isNew] = seen.emplace(*address, element.place); isNew)
      result.push_back(*address);
    else
      reader.error(element.place, element.path,
                   address->toString() + " is a duplicate; the first is in line " + std::to_string(first->second.line));
  });
  return result;
}

void readMac(YamlReader& reader, YamlValue const& value, LinkConfig& link) {
  link.mac = readValue<EthAddr>(reader, value);
  if (!link.mac) return;
  if (std::string why = LinkConfig::macRefusal(*link.mac); !why.empty())
    reader.error(value.place, value.path, std::move(why));
}

void readMtu(YamlReader& reader, YamlValue const& value, LinkConfig& link) {
  auto const mtu = readValue<Fwk::U32>(reader, value);
  if (!mtu) return;
  if (*mtu < Fwk::U32{LinkConfig::mtuMin} || *mtu > Fwk::U32{LinkConfig::mtuMax})
    return reader.error(value.place, value.path,
                        std::to_string(*mtu) + " is out of range; expected " + std::to_string(LinkConfig::mtuMin) +
                            " to " + std::to_string(LinkConfig::mtuMax) + " octets; every advertisement takes " +
                            std::to_string(LinkConfig::mtuMin));
  link.mtu = static_cast<Fwk::S32>(*mtu);
  if (*mtu < Net::ip6MtuMin)
    reader.warning(value.place, value.path,
                   "IPv6 needs links of at least " + std::to_string(Net::ip6MtuMin) + " octets (RFC 8200 5)");
}

void readLinkAddresses(YamlReader& reader, YamlValue const& value, LinkConfig& link) {
  link.addresses = readAddresses(reader, value, "a list of addresses");
}

void readRetransmitInterval(YamlReader& reader, YamlValue const& value, LinkConfig& link) {
  link.nsRetransmitInterval = readValue<Fwk::U32>(reader, value).value_or(0);
}

void readVirtualRouter(YamlReader& reader, YamlValue const& value, LinkConfig& link) {
  link.virtualRouter = readAddresses(reader, value, "a list of prefixes");
}

/// A key of a link, and the function that reads its value.
struct LinkKey {
  std::string_view name;
  void (*read)(YamlReader& reader, YamlValue const& value, LinkConfig& link);
};
constexpr LinkKey linkKeys[] = {
    {"mac", &readMac},
    {"mtu", &readMtu},
    {"addresses", &readLinkAddresses},
    {"nsRetransmitInterval", &readRetransmitInterval},
    {"virtualRouter", &readVirtualRouter},
};

void readLinkKey(YamlReader& reader, YamlEntry const& entry, std::string const& linkPath, LinkConfig& link) {
  std::string const path = linkPath + '/' + entry.key;
  std::vector<std::string_view> names;
  for (LinkKey const& key : linkKeys) {
    if (key.name == entry.key) {
      reader.notePlace(path, entry.keyPlace);
      return key.read(reader, entry.value(path), link);
    }
    names.push_back(key.name);
  }
  reader.error(entry.keyPlace, path, "there is no such key of a link" + nearestNameHint(entry.key, names));
}

}  // namespace

void readLinks(YamlReader& reader, YamlValue const& section, std::vector<LinkConfig>& links) {
  reader.forEachEntry(section, "a mapping from interfaces to their links", [&](YamlEntry const& entry) {
    std::string const path = section.path + '[' + entry.key + ']';
    if (!IntfId::fits(entry.key))
      return reader.error(entry.keyPlace, path, inQuotes(entry.key) + " is not " + expectedText(IntfId::textTypeName));
    if (std::string why = refusal(IntfId::textTypeName, entry.key); !why.empty())
      return reader.error(entry.keyPlace, path, std::move(why));
    LinkConfig& link = links.emplace_back();
    link.intfId = IntfId(entry.key);
    link.place = entry.keyPlace;
    reader.notePlace(path, entry.keyPlace);
    reader.forEachEntry(entry.value(path), "a mapping with keys such as mac",
                        [&](YamlEntry const& inner) { readLinkKey(reader, inner, path, link); });
  });
}

}  // namespace Tool

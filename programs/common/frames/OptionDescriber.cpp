#include <RouterPlatform/Nd/Dnssl.h>
#include <RouterPlatform/Nd/LinkLayerAddr.h>
#include <RouterPlatform/Nd/Mtu.h>
#include <RouterPlatform/Nd/NetworkBoot.h>
#include <RouterPlatform/Nd/OptionReader.h>
#include <RouterPlatform/Nd/PrefixInfo.h>
#include <RouterPlatform/Nd/Rdnss.h>
#include <RouterPlatform/Nd/RouteInfo.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>
#include <RouterPlatform/Packet/Ip6Hdr.h>
#include <programs/common/frames/BlockWriter.h>
#include <programs/common/frames/DnsNames.h>
#include <programs/common/frames/OptionDescriber.h>
#include <programs/common/text/Text.h>

#include <algorithm>
#include <array>
#include <map>

namespace Tool {

namespace {

using Fwk::U8;
using Net::Ip6AddrWithMask;

/// What a message has had so far, to tell what is there twice.
struct SeenOptions {
  std::map<Ip6AddrWithMask, std::size_t> prefixes;
  bool mtu = false;
};

std::string lengthText(PlacedOctets const& option) {
  return std::to_string(option[1]) + " (" + std::to_string(option[1] * Net::Icmp6HdrOption::lengthUnit) + " octets)";
}

/// Type and length, which every option has.
void describeHead(BlockWriter& block, std::string const& typeName) {
  PlacedOctets const& option = block.octets();
  block.field(0, "type", std::to_string(option[0]) + (typeName.empty() ? "" : " (" + typeName + ')'));
  block.field(1, "length", lengthText(option));
}

/// False, and said so, when the option has another size than it is to have.
bool sizeIs(BlockWriter& block, std::size_t size) {
  if (block.octets().size() == size) return true;
  block.oddity("an option of this type has length " + std::to_string(size / Net::Icmp6HdrOption::lengthUnit));
  return false;
}

std::string maskText(U8 length) { return std::to_string(length) + " bits"; }

void checkPrefix(BlockWriter& block, Ip6AddrWithMask const& prefix) {
  if (prefix.maskLen() > Ip6AddrWithMask::maxMaskLen)
    block.oddity("a prefix has at most 128 bits");
  else if (prefix.subnet() != prefix)
    block.oddity("bits behind the prefix are set; receivers ignore them");
}

void describeLinkLayerAddr(BlockWriter& block, SeenOptions&) {
  auto const option = Net::takeLinkLayerAddr(block.octets().span(), 0);
  if (sizeIs(block, sizeof(Net::Icmp6HdrLinkLayerAddrOption)) && option)
    block.field(2, "link-layer address", option->address.toString());
  else
    block.hexField(2, "link-layer address");
}

void checkPrefixInfo(BlockWriter& block, Net::PrefixInfo const& option, SeenOptions& seen) {
  Ip6AddrWithMask const& prefix = option.prefix;
  checkPrefix(block, prefix);
  if (prefix.address().isLinkLocal()) block.oddity("the link-local prefix; receivers ignore the option");
  if (option.preferredLifetime > option.validLifetime)
    block.oddity("preferred lifetime above valid lifetime; receivers ignore the option for addresses");
  if (option.autonomous && prefix.maskLen() + Ip6AddrWithMask::interfaceIdentifierBits != Ip6AddrWithMask::maxMaskLen)
    block.oddity("autonomous, and not of 64 bits; hosts with 64-bit interface identifiers ignore it");
  block.mustBeZero("reserved flags", option.reserved1);
  block.mustBeZero("reserved2", option.reserved2);
  if (auto const [first, isNew] = seen.prefixes.emplace(prefix, block.octets().offset()); !isNew)
    block.oddity("the same prefix as in the option at " + std::to_string(first->second));
}

/// The octets of the block, cut or filled up with zeros to those of the option's layout. Says so when it has another
/// size than it is to have.
template <class Option>
std::array<U8, sizeof(Option)> layoutOf(BlockWriter& block) {
  std::array<U8, sizeof(Option)> octets{};
  std::ranges::copy(block.octets().from(0, octets.size()).span(), octets.begin());
  sizeIs(block, octets.size());
  return octets;
}

void describePrefixInfo(BlockWriter& block, SeenOptions& seen) {
  auto const octets = layoutOf<Net::Icmp6HdrPrefixInfoOption>(block);
  auto const option = Net::takePrefixInfo(octets, 0).value();
  std::size_t const size = block.octets().size();
  block.field(2, "prefix length", maskText(option.prefix.maskLen()));
  block.field(3, "flags",
              hexText(octets[3], 2) + (option.onLink ? " on-link" : " not on-link") +
                  (option.autonomous ? ", autonomous" : ", not autonomous") +
                  (option.routerAddress ? ", router address" : ""));
  block.field(4, "valid lifetime", lifetimeText(option.validLifetime.count()));
  if (size > 8) block.field(8, "preferred lifetime", lifetimeText(option.preferredLifetime.count()));
  if (size > 8) block.field(12, "reserved2", std::to_string(option.reserved2));
  if (size < octets.size()) return block.hexField(16, "prefix");
  block.field(16, "prefix", option.prefix.toString());
  block.hexField(octets.size(), "rest");
  checkPrefixInfo(block, option, seen);
}

void describeMtu(BlockWriter& block, SeenOptions& seen) {
  auto const octets = layoutOf<Net::Icmp6HdrMtuOption>(block);
  auto const option = Net::takeMtu(octets, 0).value();
  block.field(2, "reserved", std::to_string(option.reserved));
  block.field(4, "mtu", std::to_string(option.octets) + " octets");
  block.hexField(octets.size(), "rest");
  block.mustBeZero("reserved", option.reserved);
  if (option.octets < Net::ip6MtuMin)
    block.oddity("IPv6 needs at least " + std::to_string(Net::ip6MtuMin) + " octets; receivers ignore the option");
  if (seen.mtu) block.oddity("there was an MTU option before");
  seen.mtu = true;
}

// The options below have 8 octets and more of any number: each that is complete is taken.

void describeRouteInfo(BlockWriter& block, SeenOptions&) {
  auto const option = Net::takeRouteInfo(block.octets().span(), 0).value();
  std::size_t const prefixSize = block.octets().size() - sizeof(Net::Icmp6HdrRouteInfoOption);
  block.field(2, "prefix length", maskText(option.prefix.maskLen()));
  block.field(3, "flags", hexText(block.octets()[3], 2));
  block.field(3, "route preference", preferenceText(option.routePreference));
  block.field(4, "route lifetime", lifetimeText(option.routeLifetime.count()));
  block.field(prefixSize == 0 ? 2 : sizeof(Net::Icmp6HdrRouteInfoOption), "prefix", option.prefix.toString());
  checkPrefix(block, option.prefix);
  block.mustBeZero("reserved flags", option.reserved);
  if (option.routePreference == Net::Icmp6RouterAdvtRouterPreferenceType::reserved_)
    block.oddity("the preference is the reserved one; receivers ignore the option");
  if (prefixSize > Net::Ip6Addr::size || option.prefix.maskLen() > 8 * prefixSize)
    block.oddity("length " + std::to_string(block.octets()[1]) + " does not go with a prefix of " +
                 maskText(option.prefix.maskLen()));
}

void describeRdnss(BlockWriter& block, SeenOptions&) {
  auto const option = Net::takeRdnss(block.octets().span(), 0).value();
  block.field(2, "reserved", std::to_string(option.reserved));
  block.field(4, "lifetime", lifetimeText(option.lifetime.count()));
  for (Fwk::U64 i = 0; i < option.serverCount; ++i)
    block.field(Net::Rdnss::size(i), "server", Net::takeServer(block.octets().span(), 0, i).value().toString());
  std::size_t const end = Net::Rdnss::size(option.serverCount);
  block.hexField(end, "rest");
  block.mustBeZero("reserved", option.reserved);
  if (option.serverCount == 0) block.oddity("there is no server in it");
  if (end != block.octets().size()) block.oddity("the length is even: half an address is left over");
}

void describeDnssl(BlockWriter& block, SeenOptions&) {
  auto const option = Net::takeDnssl(block.octets().span(), 0).value();
  constexpr std::size_t namesAt = sizeof(Net::Icmp6HdrDnsslOption);
  block.field(2, "reserved", std::to_string(option.reserved));
  block.field(4, "lifetime", lifetimeText(option.lifetime.count()));
  DnsNames const decoded = decodeDnsNames(PlacedOctets(option.names));
  block.mustBeZero("reserved", option.reserved);
  for (DnsName const& name : decoded.names) {
    block.field(namesAt + name.at, "suffix", name.text);
    for (std::string const& oddity : name.oddities) block.oddity(oddity);
  }
  if (decoded.paddingAt < option.names.size())
    block.field(namesAt + decoded.paddingAt, "padding",
                std::to_string(option.names.size() - decoded.paddingAt) + " octets");
  if (decoded.names.empty()) block.oddity("there is no suffix in it");
}

void describeNetworkBoot(BlockWriter& block, SeenOptions&) {
  auto const option = Net::takeNetworkBoot(block.octets().span(), 0).value();
  constexpr std::size_t urlAt = sizeof(Net::Icmp6HdrNetworkBootOption);
  block.field(2, "padding length", std::to_string(option.paddingLen));
  block.field(4, "zero", std::to_string(option.zero));
  block.field(6, "reserved1", std::to_string(option.reserved1));
  block.mustBeZero("zero", option.zero);
  block.mustBeZero("reserved1", option.reserved1);
  std::size_t const rest = block.octets().size() - urlAt;
  if (option.paddingLen >= Net::Icmp6HdrOption::lengthUnit || option.paddingLen > rest) {
    block.oddity("the padding length is not possible");
    return block.hexField(urlAt, "data");
  }
  if (!option.url.empty()) block.field(urlAt, "boot file url", printable(option.url));
  if (option.paddingLen > 0) block.hexField(urlAt + option.url.size(), "padding");
}

struct OptionType {
  U8 type;
  std::string_view name;
  std::string_view clause;
  void (*describe)(BlockWriter& block, SeenOptions& seen);  ///< null: shown as hex
};
constexpr OptionType optionTypes[] = {
    {Net::Icmp6HdrLinkLayerAddrOption::sourceTypeValue, "Source Link-Layer Address", "RFC 4861 4.6.1",
     &describeLinkLayerAddr},
    {Net::Icmp6HdrLinkLayerAddrOption::targetTypeValue, "Target Link-Layer Address", "RFC 4861 4.6.1",
     &describeLinkLayerAddr},
    {Net::Icmp6HdrPrefixInfoOption::typeValue, "Prefix Information", "RFC 4861 4.6.2", &describePrefixInfo},
    {Net::Icmp6HdrMtuOption::typeValue, "MTU", "RFC 4861 4.6.4", &describeMtu},
    {7, "Advertisement Interval", "RFC 6275 7.3", nullptr},
    {8, "Home Agent Information", "RFC 6275 7.4", nullptr},
    {14, "Nonce", "RFC 3971 5.3.2", nullptr},
    {Net::Icmp6HdrRouteInfoOption::typeValue, "Route Information", "RFC 4191 2.3", &describeRouteInfo},
    {Net::Icmp6HdrRdnssOption::typeValue, "Recursive DNS Server", "RFC 8106 5.1", &describeRdnss},
    {26, "RA Flags Extension", "RFC 5175 4", nullptr},
    {Net::Icmp6HdrDnsslOption::typeValue, "DNS Search List", "RFC 8106 5.2", &describeDnssl},
    {37, "Captive Portal", "RFC 8910 2.3", nullptr},
    {38, "PREF64", "RFC 8781 4", nullptr},
    {Net::Icmp6HdrNetworkBootOption::typeValue, "Network Boot", "", &describeNetworkBoot},
};

OptionType const& optionType(U8 type) {
  static constexpr OptionType unknown{0, "", "", nullptr};
  for (OptionType const& known : optionTypes)
    if (known.type == type) return known;
  return unknown;
}

std::string titleOf(OptionType const& type) {
  if (type.name.empty()) return "Option of a type that is not known here";
  return std::string(type.name) + " option" + (type.clause.empty() ? "" : ", " + std::string(type.clause));
}

void describeOption(FrameDescription& description, PlacedOctets option, SeenOptions& seen) {
  OptionType const& type = optionType(option[0]);
  BlockWriter block(description, titleOf(type), option);
  describeHead(block, std::string(type.name));
  if (type.describe)
    type.describe(block, seen);
  else
    block.hexField(2, "data");
}

/// Where the library's parser goes on behind an option that passes the end of the message.
void checkOffset(BlockWriter& block, std::size_t nextOffset) {
  constexpr std::size_t offsets = std::size_t{1} << 16;
  if (nextOffset >= offsets)
    block.oddity("offsets have 16 bits: the parser goes on at octet " + std::to_string(nextOffset % offsets) +
                 " of the message");
}

/// What is left when it is no complete option; `at` octets into the message.
void describeRest(FrameDescription& description, PlacedOctets rest, std::size_t at) {
  if (rest.size() < 2) {
    BlockWriter block(description, "Option that is cut short", rest);
    block.hexField(0, "type");
    return block.oddity("one octet is left over; an option has at least 8");
  }
  OptionType const& type = optionType(rest[0]);
  BlockWriter block(description, titleOf(type), rest);
  describeHead(block, std::string(type.name));
  block.hexField(2, "rest");
  if (rest[1] == 0) return block.oddity("length 0 is not possible; receivers drop the whole message");
  block.oddity("the option passes the end of the message: " + std::to_string(rest.size()) + " octets are left");
  checkOffset(block, at + std::size_t{8} * rest[1]);
}

}  // namespace

std::string preferenceText(Net::Icmp6RouterAdvtRouterPreferenceType preference) {
  std::string text;
  appendText(text, preference);
  if (text.ends_with('_')) text.pop_back();
  return text + " (" + std::to_string(static_cast<unsigned>(preference)) + ')';
}

void describeOptions(FrameDescription& description, PlacedOctets message) {
  SeenOptions seen;
  Net::OptionReader reader(message.span());
  std::size_t at = Net::OptionReader::optionsOffset;
  for (; reader.next() && reader.complete(); at += reader.size())
    describeOption(description, message.from(at, reader.size()), seen);
  if (at < message.size()) describeRest(description, message.from(at), at);
}

}  // namespace Tool

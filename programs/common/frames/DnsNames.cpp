#include <RouterPlatform/Nd/Dnssl.h>
#include <programs/common/frames/DnsNames.h>

#include <algorithm>

namespace Tool {

namespace {

constexpr std::size_t longestName = 255;  // octets, RFC 1035 2.3.4

/// RFC 4343 2.1: the escapes of master files.
void appendLabel(std::string& out, PlacedOctets label) {
  for (Fwk::U8 const octet : label.span()) {
    if (octet > 0x20 && octet < 0x7f) {
      if (octet == '.' || octet == '\\') out += '\\';
      out += static_cast<char>(octet);
    } else {
      std::string const digits = std::to_string(octet);
      out += '\\' + std::string(3 - digits.size(), '0') + digits;
    }
  }
}

/// Reads the name at `at`, which begins with a label, and moves behind it.
DnsName decodeName(PlacedOctets octets, std::size_t& at) {
  DnsName name{at, {}, {}};
  while (at < octets.size() && octets[at] != 0) {
    std::size_t const length = octets[at];
    PlacedOctets const label = octets.from(at + 1, length);
    if (!name.text.empty()) name.text += '.';
    appendLabel(name.text, label);
    if (length > Net::Dnssl::labelSizeMax)
      name.oddities.push_back("a label says that it has " + std::to_string(length) + " octets; " +
                              std::to_string(Net::Dnssl::labelSizeMax) + " are possible");
    if (label.size() < length) name.oddities.emplace_back("the name passes the end of the option");
    at += 1 + label.size();
  }
  if (at < octets.size())
    ++at;
  else if (name.oddities.empty() || name.oddities.back() != "the name passes the end of the option")
    name.oddities.emplace_back("the name has no end");
  if (std::size_t const size = at - name.at; size > longestName)
    name.oddities.push_back("the name has " + std::to_string(size) + " octets; " + std::to_string(longestName) +
                            " are possible");
  return name;
}

}  // namespace

DnsNames decodeDnsNames(PlacedOctets octets) {
  DnsNames result;
  std::size_t at = 0;
  while (at < octets.size()) {
    auto const rest = octets.span().subspan(at);
    auto const next = std::ranges::find_if(rest, [](Fwk::U8 octet) { return octet != 0; });
    if (next == rest.end()) break;
    // A zero octet where a name begins is the root, and not padding when more follows.
    for (auto zero = rest.begin(); zero != next; ++zero) result.names.push_back({at++, ".", {}});
    result.names.push_back(decodeName(octets, at));
  }
  result.paddingAt = at;
  return result;
}

}  // namespace Tool

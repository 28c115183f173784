#include <RouterPlatform/Fwk/ObjectRef.h>
#include <RouterPlatform/Fwk/Reflection.h>
#include <RouterPlatform/Nd/Dnssl.h>
#include <programs/common/config/EffectiveValue.h>
#include <programs/common/config/Warnings.h>
#include <programs/common/text/NearestName.h>
#include <programs/common/text/Text.h>

#include <algorithm>
#include <limits>
#include <ostream>

namespace Tool {

namespace {

using Fwk::U32;
using RouterAdvt::IntfConfig;
using RouterAdvt::PrefixConfigEntry;

constexpr U32 raLifetimeFieldMax = std::numeric_limits<Fwk::U16>::max();  // RFC 4861 4.2

/// Collects the warnings about one entity or link.
class Findings {
 public:
  Findings(ConfigFile const& file, std::vector<Diagnostic>& found, std::string path)
      : file_(file), found_(found), path_(std::move(path)) {}

  /// `attr`: empty for a warning about the entity as a whole.
  void add(std::string const& attr, std::string text) {
    std::string path = attr.empty() ? path_ : path_ + '/' + attr;
    Place const place = file_.placeOf(path);
    found_.push_back({place, std::move(path), std::move(text)});
  }
  /// Whether the file sets the attribute.
  bool given(std::string const& attr) const { return file_.places.contains(path_ + '/' + attr); }

 private:
  ConfigFile const& file_;
  std::vector<Diagnostic>& found_;
  std::string path_;
};

void checkHeaderFields(Findings& findings, IntfConfig const& intf) {
  if (intf.raSuppress())
    findings.add("raSuppress", "suppresses advertisements of the router; 'build' and 'send' make one nevertheless");
  U32 const lifetime = intf.raLifetime();
  if (lifetime > raLifetimeFieldMax)
    findings.add("raLifetime", std::to_string(lifetime) + " s is more than the field's 16 bits hold; " +
                                   std::to_string(lifetime & raLifetimeFieldMax) + " is sent");
  else if (lifetime > 0 && Fwk::U64{1000} * lifetime < intf.raIntervalMaxMsec())
    findings.add("raLifetime", std::to_string(lifetime) + " s is less than raIntervalMaxMsec, " +
                                   std::to_string(intf.raIntervalMaxMsec()) +
                                   " ms; hosts forget the router between two advertisements (RFC 4861 6.2.1)");
  if (intf.hopLimit() > IntfConfig::hopLimitMax())
    findings.add("hopLimit", std::to_string(intf.hopLimit()) + " is above " +
                                 std::to_string(IntfConfig::hopLimitMax()) + "; " +
                                 std::to_string(intf.validHopLimit()) + " is sent");
  if (intf.raIntervalMinMsec() > intf.raIntervalMaxMsec())
    findings.add("raIntervalMinMsec", std::to_string(intf.raIntervalMinMsec()) + " ms is above raIntervalMaxMsec, " +
                                          std::to_string(intf.raIntervalMaxMsec()) + " ms");
  if (findings.given("nsIntervalMsec"))
    findings.add("nsIntervalMsec", "is not sent; the Retrans Timer is nsRetransmitInterval of the link");
}

template <class Lifetimes>
void checkLifetimes(Findings& findings, Lifetimes const& lifetimes) {
  if (lifetimes.preferredLifetime() > lifetimes.validLifetime())
    findings.add("preferredLifetime", std::to_string(lifetimes.preferredLifetime()) + " s is above validLifetime, " +
                                          std::to_string(lifetimes.validLifetime()) +
                                          " s; hosts form no address from such a prefix (RFC 4862 5.5.3)");
}

/// A profile changes what the model reports; advertisements are sent without it.
void checkProfile(Findings& findings, RouterAdvt::Config const& config, PrefixConfigEntry const& prefix) {
  if (!prefix.useProfile()) {
    if (prefix.profile().empty()) return;
    std::vector<std::string> names;
    if (config.prefixProfiles().size() <= candidatesPerLineMax)
      for (auto const& [name, profile] : config.prefixProfiles()) names.push_back(name.toString());
    return findings.add("profile", "there is no profile " + inQuotes(prefix.profile()) +
                                       nearestNameHint(prefix.profile(), {names.begin(), names.end()}));
  }
  std::string differences;
  for (Fwk::AttributeRecord const& attr : prefix.fwkType().attributes) {
    auto const effective = effectiveValue(prefix, attr);
    std::string own;
    if (!effective || !Fwk::readAttribute(Fwk::objectRef(prefix), attr.id, own) || own == *effective) continue;
    differences += (differences.empty() ? "" : ", ") + std::string(attr.name) + ' ' + own + " instead of " + *effective;
  }
  if (!differences.empty())
    findings.add("profile", "profiles do not apply to advertisements, which have " + differences);
}

void checkLabel(Findings& findings, std::string_view label, bool isLast) {
  if (label.empty())
    findings.add("", isLast ? "the dot at the end is sent as one more empty label; without it the name is the same"
                            : "has an empty label, which is sent and ends the name for receivers (RFC 1035 3.1)");
  if (label.size() > Net::Dnssl::labelSizeMax)
    findings.add("", "the label " + inQuotes(label) + " has " + std::to_string(label.size()) +
                         " octets; receivers take at most " + std::to_string(Net::Dnssl::labelSizeMax) +
                         " (RFC 1035 2.3.4)");
}

void checkSuffix(Findings& findings, std::string_view suffix) {
  if (suffix.empty()) return findings.add("", "is empty, and sent as a name without labels");
  for (std::size_t begin = 0; begin <= suffix.size();) {
    std::size_t const end = std::min(suffix.find('.', begin), suffix.size());
    checkLabel(findings, suffix.substr(begin, end - begin), end == suffix.size());
    begin = end + 1;
  }
}

/// Why receivers ignore an advertised prefix; empty when they do not.
std::string prefixOddity(Net::Ip6AddrWithMask const& prefix) {
  if (prefix.address().isLinkLocal()) return "is link-local; receivers ignore it (RFC 4861 4.6.2)";
  if (prefix.address().isMulticast()) return "is multicast; receivers ignore it, no interface has such an address";
  return {};
}

void checkAdvertisedPrefix(Findings& findings, PrefixConfigEntry const& prefix) {
  Net::Ip6AddrWithMask const& key = prefix.key();
  if (key.subnet() != key)
    findings.add("", "has bits set behind the prefix length; they are sent, and receivers ignore them");
  if (std::string oddity = prefixOddity(key); !oddity.empty()) return findings.add("", std::move(oddity));
  if (!prefix.noAutoConfig() &&
      key.maskLen() + Net::Ip6AddrWithMask::interfaceIdentifierBits != Net::Ip6AddrWithMask::maxMaskLen)
    findings.add("", "has " + std::to_string(key.maskLen()) +
                         " bits; hosts form addresses only from prefixes of 64 bits (RFC 4862 5.5.3); "
                         "noAutoConfig: true tells them not to");
}

void checkPrefixes(ConfigFile const& file, std::vector<Diagnostic>& found, IntfConfig const& intf) {
  for (auto const& [key, prefix] : intf.prefixes()) {
    Findings findings(file, found, prefix->fullName());
    if (!prefix->noAdvertise()) checkAdvertisedPrefix(findings, *prefix);
    checkLifetimes(findings, *prefix);
    checkProfile(findings, *file.config, *prefix);
  }
}

void checkServer(Findings& findings, Net::Ip6Addr const& server) {
  if (server.isMulticast()) findings.add("", "is multicast; no DNS server answers there");
  if (server.isUnspecified()) findings.add("", "is the unspecified address; no DNS server answers there");
  if (server.isLoopback()) findings.add("", "is the loopback address; every host would ask itself");
}

void checkLink(Findings& findings, LinkConfig const& link) {
  auto const nameOf = [](char const* list, std::size_t i) { return list + ('[' + std::to_string(i) + ']'); };
  for (std::size_t i = 0; i < link.addresses.size(); ++i)
    if (link.addresses[i].address().isMulticast())
      findings.add(nameOf("addresses", i),
                   link.addresses[i].toString() + " is multicast; no interface has such an address");
  if (!link.virtualRouter) return;
  for (std::size_t i = 0; i < link.virtualRouter->size(); ++i)
    if (std::string const oddity = prefixOddity((*link.virtualRouter)[i]); !oddity.empty())
      findings.add(nameOf("virtualRouter", i), (*link.virtualRouter)[i].toString() + ' ' + oddity);
}

}  // namespace

std::vector<Diagnostic> intfWarnings(ConfigFile const& file, IntfConfig const& intf) {
  std::vector<Diagnostic> found;
  Findings findings(file, found, intf.fullName());
  checkHeaderFields(findings, intf);
  checkPrefixes(file, found, intf);
  for (auto const& [suffix, entry] : intf.dnsSuffixes()) {
    Findings suffixFindings(file, found, entry->fullName());
    checkSuffix(suffixFindings, suffix);
  }
  for (auto const& [server, entry] : intf.dnsServers()) {
    Findings serverFindings(file, found, entry->fullName());
    checkServer(serverFindings, server);
  }
  if (LinkConfig const* const link = file.link(intf.intfId())) {
    Findings linkFindings(file, found, linkPath(link->intfId));
    checkLink(linkFindings, *link);
  }
  sortByPlace(found);
  return found;
}

std::vector<Diagnostic> fileWarningsOf(ConfigFile const& file, IntfConfig const& intf) {
  std::string const config = intf.fullName() + '/', link = linkPath(intf.intfId()) + '/';
  std::vector<Diagnostic> found;
  for (Diagnostic const& warning : file.warnings)
    if (warning.path.starts_with(config) || warning.path.starts_with(link)) found.push_back(warning);
  return found;
}

std::vector<Diagnostic> virtualRouterWarnings(ConfigFile const& file, RouterAdvt::AdvertRequest const& request) {
  if (!request.useVirtualRouter || request.virtualRouterStatus) return {};
  std::string path = linkPath(request.intfConfig->intfId());
  Place const place = file.placeOf(path);
  return {{place, std::move(path), "there is no virtualRouter here: no prefix is sent, and Router Lifetime 0"}};
}

std::vector<Diagnostic> configWarnings(ConfigFile const& file) {
  std::vector<Diagnostic> found = file.warnings;
  Findings findings(file, found, file.config->fullName());
  if (findings.given("hopLimit")) findings.add("hopLimit", "is not sent; each interface has a hopLimit of its own");
  for (auto const& [name, profile] : file.config->prefixProfiles()) {
    Findings profileFindings(file, found, profile->fullName());
    checkLifetimes(profileFindings, *profile);
  }
  sortByPlace(found);
  return found;
}

void printAdvertWarnings(std::ostream& err, ConfigFile const& file, RouterAdvt::AdvertRequest const& request,
                         RouterAdvt::LeftOut const& leftOut) {
  if (!request.srcAddr.isLinkLocal())
    err << "warning: --src: " << request.srcAddr.toString()
        << " is not link-local; receivers drop the advertisement (RFC 4861 6.1.2)\n";
  std::vector<Diagnostic> warnings = fileWarningsOf(file, *request.intfConfig);
  auto const append = [&](std::vector<Diagnostic> const& more) {
    warnings.insert(warnings.end(), more.begin(), more.end());
  };
  append(intfWarnings(file, *request.intfConfig));
  append(virtualRouterWarnings(file, request));
  append(fitWarnings(file, request, leftOut));
  sortByPlace(warnings);
  for (Diagnostic const& warning : warnings) err << diagnosticLine(file.name, warning, "warning: ") << '\n';
}

}  // namespace Tool

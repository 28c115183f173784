#include <RouterPlatform/Nd/Icmp6HdrOptions.h>
#include <RouterPlatform/Trace/Trace.h>
#include <programs/common/config/Warnings.h>
#include <programs/common/frames/DnsNames.h>
#include <programs/common/frames/RaMessage.h>

#include <algorithm>
#include <set>
#include <utility>

namespace Tool {

namespace {

using RouterAdvt::IntfConfig;

/// The builder says at this level what it leaves out.
constexpr char const* leftOutLevel = "*/3";
constexpr std::string_view leftOutStart = "Could not copy ";

/// Listens to what is traced while an advertisement is built, in place of whoever did before.
class TraceListener {
 public:
  TraceListener() : former_(Trace::sinkIs([this](Trace::Record const& record) { texts_.emplace_back(record.text); })) {
    Trace::levelsIs(leftOutLevel);
  }
  TraceListener(TraceListener const&) = delete;
  TraceListener& operator=(TraceListener const&) = delete;
  ~TraceListener() {
    traceLevelsAre({});
    Trace::sinkIs(std::move(former_));
  }

  /// The first message about something of that kind that was left out, or an empty text.
  std::string leftOut(std::string_view kind) const {
    std::string const start = std::string(leftOutStart) + std::string(kind);
    auto const found = std::ranges::find_if(texts_, [&](std::string const& text) { return text.starts_with(start); });
    return found == texts_.end() ? std::string() : *found;
  }

 private:
  std::vector<std::string> texts_;
  Trace::Sink former_;
};

/// What an advertisement holds of the things that may not fit.
struct Contents {
  std::set<Net::Ip6AddrWithMask> prefixes;
  std::set<Net::Ip6Addr> servers;
  std::set<std::string> suffixes;
  std::string url;
};

void takeNames(Contents& contents, Octets encoded) {
  for (DnsName const& name : decodeDnsNames(encoded).names) contents.suffixes.insert(name.text);
}

void takeUrl(Contents& contents, Octets const& octets) {
  auto const head = *octets.header<Net::Icmp6HdrNetworkBootOption>();
  Octets const rest = octets.from(sizeof head);
  Octets const url = rest.from(0, rest.size() - std::min<std::size_t>(head.paddingLen, rest.size()));
  contents.url.assign(reinterpret_cast<char const*>(url.span().data()), url.size());
}

Contents contentsOf(std::span<Fwk::U8 const> frame) {
  Contents contents;
  auto const message = raMessageOf(frame);
  if (!message) return contents;
  for (auto const& [type, octets] : completeOptions(message->from(raHeaderSize))) {
    if (auto const prefix = octets.header<Net::Icmp6HdrPrefixInfoOption>();
        prefix && type == Net::Icmp6HdrPrefixInfoOption::typeValue)
      contents.prefixes.emplace(Net::Ip6Addr::fromBytes(prefix->prefix), prefix->prefixLength);
    if (type == Net::Icmp6HdrRdnssOption::typeValue)
      for (Octets rest = octets.from(8); rest.size() >= 16; rest = rest.from(16))
        contents.servers.insert(Net::Ip6Addr::fromBytes(rest.span().first<16>()));
    if (type == Net::Icmp6HdrDnsslOption::typeValue) takeNames(contents, octets.from(8));
    if (type == Net::Icmp6HdrNetworkBootOption::typeValue) takeUrl(contents, octets);
  }
  return contents;
}

/// How a suffix reads once it has been encoded and decoded.
std::string asDecoded(std::string_view suffix) {
  std::vector<Fwk::U8> encoded;
  for (std::size_t begin = 0; begin < suffix.size();) {
    std::size_t const end = std::min(suffix.find('.', begin), suffix.size());
    if (end == begin) break;  // an empty label ends the name for its readers
    encoded.push_back(static_cast<Fwk::U8>(end - begin));
    encoded.insert(encoded.end(), suffix.begin() + static_cast<std::ptrdiff_t>(begin),
                   suffix.begin() + static_cast<std::ptrdiff_t>(end));
    begin = end + 1;
  }
  encoded.push_back(0);
  auto const names = decodeDnsNames(Octets(encoded)).names;
  return names.empty() ? std::string() : names[0].text;
}

class FitCheck {
 public:
  FitCheck(ConfigFile const& file, Advert const& advert) : file_(file), advert_(advert) {
    contents_ = contentsOf(advert.build()->octets());
  }

  std::vector<Diagnostic> run() {
    checkPrefixes();
    checkServers();
    checkSuffixes();
    checkUrl();
    sortByPlace(found_);
    return std::move(found_);
  }

 private:
  void add(std::string path, std::string text) {
    Place const place = file_.placeOf(path);
    found_.push_back({place, std::move(path), std::move(text)});
  }
  void addLeftOut(Fwk::Entity const& entity, std::string const& reason) {
    add(entity.fullName(), "does not fit and is left out: " + reason);
  }

  void checkPrefixes() {
    std::string const reason = listener_.leftOut("prefix");
    if (reason.empty()) return;
    std::string const link = linkPath(advert_.config->intfId());
    if (advert_.useVirtualRouter) {
      for (auto const& prefix : advert_.virtualRouter->prefix())
        if (!contents_.prefixes.contains(prefix) && !isWithheld(prefix))
          add(link + "/virtualRouter", prefix.toString() + " does not fit and is left out: " + reason);
    } else if (advert_.config->prefixesToAdvertise()) {
      for (auto const& [key, prefix] : advert_.config->prefixes())
        if (!prefix->noAdvertise() && !contents_.prefixes.contains(key)) addLeftOut(*prefix, reason);
    } else {
      add(link + "/addresses", "not all of their prefixes fit: " + reason);
    }
  }

  bool isWithheld(Net::Ip6AddrWithMask const& prefix) const {
    auto const entry = advert_.config->prefixes(prefix);
    return entry && entry->noAdvertise();
  }

  void checkServers() {
    std::string const reason = listener_.leftOut("dnsServers");
    if (reason.empty()) return;
    for (auto const& [key, server] : advert_.config->dnsServers())
      if (!contents_.servers.contains(key)) addLeftOut(*server, reason);
  }

  void checkSuffixes() {
    std::string const groupReason = listener_.leftOut("dnsSuffixes");
    std::string const labelReason = listener_.leftOut("dns suffx");
    if (groupReason.empty() && labelReason.empty()) return;
    for (auto const& [key, suffix] : advert_.config->dnsSuffixes())
      if (!contents_.suffixes.contains(asDecoded(key)))
        addLeftOut(*suffix, labelReason.empty() ? groupReason : labelReason);
  }

  void checkUrl() {
    std::string const& url = advert_.config->networkBootFileUrl();
    if (url == contents_.url) return;
    std::string const reason = listener_.leftOut("network boot option");
    std::string const path = advert_.config->fullName() + "/networkBootFileUrl";
    if (reason.empty())
      add(path, "does not fit; its first " + std::to_string(contents_.url.size()) + " octets are sent");
    else
      add(path, "does not fit and is left out: " + reason);
  }

  ConfigFile const& file_;
  Advert const& advert_;
  TraceListener listener_;
  Contents contents_;
  std::vector<Diagnostic> found_;
};

}  // namespace

std::vector<Diagnostic> fitWarnings(ConfigFile const& file, Advert const& advert) {
  return FitCheck(file, advert).run();
}

}  // namespace Tool

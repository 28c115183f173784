#include <programs/common/config/Warnings.h>
#include <programs/common/text/Text.h>

namespace Tool {

namespace {

using RouterAdvt::AdvertRequest;
using RouterAdvt::LeftOut;

/// `2 prefixes do not fit in 1500 octets: `.
std::string startOf(std::size_t count, std::string const& one, std::string const& several, LeftOut const& leftOut) {
  return (count == 1 ? one + " does not fit in " : std::to_string(count) + ' ' + several + " do not fit in ") +
         std::to_string(leftOut.frameSizeMax) + " octets: ";
}

/// The texts with commas between.
template <class Values, class ToText>
std::string listOf(Values const& values, ToText const& toText) {
  std::string list;
  for (auto const& value : values) list += (list.empty() ? "" : ", ") + toText(value);
  return list;
}

std::string suffixText(LeftOut::Suffix const& suffix) {
  std::string const text = printable(suffix.suffix);
  if (suffix.cutAt == 0) return text;
  return text + " (cut to " + printable(std::string_view(suffix.suffix).substr(0, suffix.cutAt - 1)) + ')';
}

/// Path in the file; empty for no member.
template <class Entity>
std::string pathOf(Entity const& member) {
  return member ? member->fullName() : std::string();
}

/// Path of the section that the prefixes come from.
std::string prefixesPath(AdvertRequest const& request, LeftOut const& leftOut) {
  std::string const link = linkPath(request.intfConfig->intfId());
  if (request.useVirtualRouter) return link + "/virtualRouter";
  if (!request.intfConfig->prefixesToAdvertise()) return link + "/addresses";
  return pathOf(request.intfConfig->prefixes(leftOut.prefixes.front()));
}

class FitWarnings {
 public:
  FitWarnings(ConfigFile const& file, AdvertRequest const& request, LeftOut const& leftOut)
      : file_(file), config_(*request.intfConfig) {
    auto const toString = [](auto const& value) { return value.toString(); };
    if (auto const& prefixes = leftOut.prefixes; !prefixes.empty())
      add(prefixesPath(request, leftOut),
          startOf(prefixes.size(), "a prefix", "prefixes", leftOut) + listOf(prefixes, toString));
    if (auto const& servers = leftOut.servers; !servers.empty())
      add(pathOf(config_.dnsServers(servers.front())),
          startOf(servers.size(), "a DNS server", "DNS servers", leftOut) + listOf(servers, toString));
    if (auto const& suffixes = leftOut.suffixes; !suffixes.empty())
      add(pathOf(config_.dnsSuffixes(suffixes.front().suffix)),
          startOf(suffixes.size(), "a DNS suffix", "DNS suffixes", leftOut) + listOf(suffixes, suffixText));
    if (leftOut.urlCutAt)
      add(config_.fullName() + "/networkBootFileUrl",
          "does not fit in " + std::to_string(leftOut.frameSizeMax) + " octets: " +
              (leftOut.networkBoot ? "it is left out"
                                   : "its first " + std::to_string(*leftOut.urlCutAt) + " octets are sent"));
    sortByPlace(found_);
  }

  std::vector<Diagnostic> take() { return std::move(found_); }

 private:
  void add(std::string path, std::string text) {
    Place const place = file_.placeOf(path);
    found_.push_back({place, std::move(path), std::move(text)});
  }

  ConfigFile const& file_;
  RouterAdvt::IntfConfig const& config_;
  std::vector<Diagnostic> found_;
};

}  // namespace

std::vector<Diagnostic> fitWarnings(ConfigFile const& file, AdvertRequest const& request, LeftOut const& leftOut) {
  return FitWarnings(file, request, leftOut).take();
}

}  // namespace Tool

#include <RouterPlatform/Fwk/Reflection.h>
#include <programs/common/config/Advert.h>
#include <programs/common/config/Warnings.h>
#include <programs/common/trees/EntityPrinter.h>
#include <programs/common/trees/ReflectedJson.h>
#include <programs/routeradvt/cli/Options.h>
#include <programs/routeradvt/commands/Commands.h>

#include <nlohmann/json.hpp>

#include <ostream>
#include <set>

namespace Tool {

namespace {

/// An address that no device has, for frames that nobody sends.
constexpr Net::EthAddr placeholderMac = Net::EthAddr::fromBytes(std::array<Fwk::U8, 6>{2, 0, 0, 0, 0, 0});

class ShowCommand final : public Command {
 public:
  CommandText text() const override {
    return {"show", "show the effective configuration and warn about mistakes",
            "Shows every attribute that can be configured, those with their default included. 'effective' is the value "
            "that the model computes from the configured one, with the prefix's profile applied. Warnings name values "
            "that are not sent as the file has them, or that receivers ignore.\n\n"
            "  routeradvt show office.yaml\n"
            "  routeradvt show office.yaml Ethernet1"};
  }

  void addTo(Options& options) override {
    options.argument("FILE", fileName_, "file", "configuration file; - is standard input");
    options.argument("INTF", intf_, "interface", "show this interface only", Need::optional);
    options.flag("--json", json_, "print one JSON object");
  }

  void run(Console& console) override {
    file_ = loadConfigFileOrFail(fileName_);
    if (!intf_.empty()) shown_ = findIntf(file_, intf_);
    if (json_)
      printJson(console.out);
    else
      printText(console.out);
  }

 private:
  bool isShown(Net::IntfId const& intfId) const { return !shown_ || shown_->intfId() == intfId; }

  void printText(std::ostream& out) const {
    out << entityText(shown_ ? static_cast<Fwk::Entity const&>(*shown_) : *file_.config);
    for (LinkConfig const& link : file_.links)
      if (isShown(link.intfId)) out << '\n' << linkText(link);
    auto const found = warnings();
    if (!found.empty()) out << "\nwarnings\n";
    for (Diagnostic const& warning : found) out << "  " << diagnosticLine(file_.name, warning) << '\n';
  }

  void printJson(std::ostream& out) const {
    Json result = Json::object();
    result["config"] = shown_ ? toJson(Fwk::objectRef(*shown_)) : toJson(Fwk::objectRef(*file_.config));
    result["warnings"] = Json::array();
    for (Diagnostic const& warning : warnings())
      result["warnings"].push_back({{"line", warning.place.line},
                                    {"column", warning.place.column},
                                    {"path", warning.path},
                                    {"text", warning.text}});
    out << jsonText(result, 2) << '\n';
  }

  std::vector<Diagnostic> warnings() const {
    std::vector<Diagnostic> found = shown_ ? fileWarningsOf(file_, *shown_) : configWarnings(file_);
    auto const append = [&](std::vector<Diagnostic> more) {
      for (Diagnostic& warning : more) found.push_back(std::move(warning));
    };
    for (auto const& [intfId, intf] : file_.config->intf()) {
      if (!isShown(intfId)) continue;
      append(intfWarnings(file_, *intf));
      append(fitWarningsOf(intfId));
    }
    sortByPlace(found);
    return found;
  }

  /// Of the interface's own advertisement, and what that of its virtual router has no room for besides.
  std::vector<Diagnostic> fitWarningsOf(Net::IntfId const& intfId) const {
    std::vector<Diagnostic> found = fitWarningsOf(intfId, false);
    LinkConfig const* const link = file_.link(intfId);
    if (!link || !link->virtualRouter) return found;
    std::set<std::pair<std::string, std::string>> known;
    for (Diagnostic const& warning : found) known.emplace(warning.path, warning.text);
    for (Diagnostic& warning : fitWarningsOf(intfId, true)) {
      if (known.contains({warning.path, warning.text})) continue;
      warning.text = "with --virtual-router: " + warning.text;
      found.push_back(std::move(warning));
    }
    return found;
  }

  /// What fits does not depend on the addresses, so an interface without a link can be looked at too.
  std::vector<Diagnostic> fitWarningsOf(Net::IntfId const& intfId, bool virtualRouter) const {
    AdvertOptions options;
    options.intf = intfId.toString();
    options.srcMac = placeholderMac;
    options.virtualRouter = virtualRouter;
    RouterAdvt::AdvertRequest const request = makeAdvertRequest(file_, options);
    RouterAdvt::LeftOut leftOut;
    RouterAdvt::build(request, &leftOut);
    return fitWarnings(file_, request, leftOut);
  }

  std::string fileName_;
  std::string intf_;
  bool json_ = false;
  ConfigFile file_;
  Fwk::Ptr<RouterAdvt::IntfConfig> shown_;
};

}  // namespace

std::unique_ptr<Command> makeShowCommand() { return std::make_unique<ShowCommand>(); }

}  // namespace Tool

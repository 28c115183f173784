#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <programs/common/config/Diagnostic.h>
#include <programs/common/config/LinkConfig.h>
#include <programs/common/text/FileText.h>

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace Tool {

/// A configuration file as read: the model it describes and the links behind its interfaces.
///
/// The section `config` is a mapping from the attributes of `RouterAdvt::Config` to their values, and so on downwards;
/// which attributes there are, and what they take, is asked of the type records. The section `links` is the tool's own.
struct ConfigFile {
  std::string name;  ///< as it was given

  /// Null when there are errors: nothing is made of a file that is wrong.
  Fwk::Ptr<RouterAdvt::Config> config;
  std::vector<LinkConfig> links;
  std::unordered_map<std::string, std::size_t> linkNumbers;  ///< in `links`, by the interface's name

  /// All that were found, in the order of the file.
  std::vector<Diagnostic> errors;
  std::vector<Diagnostic> warnings;

  /// Where each attribute and each member that the file names stands, by path.
  std::map<std::string, Place> places;

  explicit operator bool() const { return errors.empty(); }

  /// The link of that interface, or null.
  LinkConfig const* link(Net::IntfId const& intfId) const;
  /// Place of the path, or of the nearest one above it that the file names.
  Place placeOf(std::string path) const;
};

/// Reads a file; `-`: standard input. Never throws for what the file holds.
ConfigFile loadConfigFile(std::string const& fileName);

/// As above, but throws `Failure` with all that is wrong, a line each.
ConfigFile loadConfigFileOrFail(std::string const& fileName);
void failIfWrong(ConfigFile const& file);

/// From text; `name` is what messages call it.
ConfigFile readConfigText(std::string name, std::string const& text);
/// From what came of reading a file.
ConfigFile readConfigText(std::string name, FileText const& read);

}  // namespace Tool

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
/// The section `config` is a mapping from the attributes of `RouterAdvt::Config` to their values, nested as the model
/// is. The type records say which attributes exist and which values they take. The section `links` belongs to the
/// programs.
struct ConfigFile {
  std::string name;  ///< as given to the reading function

  /// Null when there are errors.
  Fwk::Ptr<RouterAdvt::Config> config;
  std::vector<LinkConfig> links;
  std::unordered_map<std::string, std::size_t> linkNumbers;  ///< in `links`, by the interface's name

  /// In the order of the file.
  std::vector<Diagnostic> errors;
  std::vector<Diagnostic> warnings;

  /// The place of each attribute and member that the file names, by path.
  std::map<std::string, Place> places;

  explicit operator bool() const { return errors.empty(); }

  /// The link of that interface, or null.
  LinkConfig const* link(Net::IntfId const& intfId) const;
  /// The place of the path, or of the nearest path above it that the file names.
  Place placeOf(std::string path) const;
};

/// Reads a file; `-`: standard input. Errors in the file are returned, not thrown.
ConfigFile loadConfigFile(std::string const& fileName);

/// As above, but throws `Failure` when there are errors.
ConfigFile loadConfigFileOrFail(std::string const& fileName);

/// Throws `Failure` with one message per error, if there are any.
void failIfWrong(ConfigFile const& file);

/// Reads a configuration from text. `name`: the file's name in messages.
ConfigFile readConfigText(std::string name, std::string const& text);
/// Reads a configuration from the result of reading a file.
ConfigFile readConfigText(std::string name, FileText const& read);

}  // namespace Tool

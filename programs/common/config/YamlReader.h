#pragma once

#include <RouterPlatform/Base/FunctionRef.h>
#include <programs/common/config/ConfigFile.h>
#include <programs/common/config/YamlTree.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Tool {

/// A value in a file. Errors point to `place`.
struct YamlValue {
  YamlNode node;
  std::string path;
  Place place;
};

/// One entry of a mapping.
struct YamlEntry {
  std::string key;
  Place keyPlace;
  YamlNode node;

  /// The entry's value. `path`: of the attribute or member that the key names.
  YamlValue value(std::string path) const;
};

/// Takes the nodes of a file apart, and adds errors and warnings to the file.
class YamlReader {
 public:
  /// With this many errors, no further entries and elements are visited.
  static constexpr std::size_t errorsMax = 1000;

  explicit YamlReader(ConfigFile& file) : file_(file) {}

  void error(Place place, std::string path, std::string text);
  void warning(Place place, std::string path, std::string text);
  /// Notes the place of a path; of two places the first counts.
  void notePlace(std::string const& path, Place place) { file_.places.emplace(path, place); }

  /// The text of a single value; anything else is an error. `expected`: describes the value in the message.
  std::optional<std::string> scalar(YamlValue const& value, std::string const& expected);

  /// Calls `visit` for every entry, in order. An empty value counts as an empty mapping. Values of other kinds, keys
  /// that are not texts, merge keys and repeated keys are errors and not visited. `expected`: as above.
  void forEachEntry(YamlValue const& value, std::string const& expected,
                    Fwk::FunctionRef<void(YamlEntry const&)> visit);

  /// Calls `visit` for every element of a list. The path of an element is that of the list and its number, from 0. An
  /// empty value counts as an empty list.
  void forEachElement(YamlValue const& value, std::string const& expected,
                      Fwk::FunctionRef<void(YamlValue const&)> visit);

 private:
  std::optional<std::string> keyOf(YamlNode node, Place place, std::string const& path);

  ConfigFile& file_;
};

}  // namespace Tool

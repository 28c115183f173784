#pragma once

#include <RouterPlatform/Base/FunctionRef.h>
#include <programs/common/config/ConfigFile.h>

#include <yaml-cpp/yaml.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Tool {

/// A value in a file: its node, its path, and where to point when it is wrong.
struct YamlValue {
  YAML::Node node;
  std::string path;
  Place place;
};

/// One entry of a mapping.
struct YamlEntry {
  std::string key;
  Place keyPlace;
  YAML::Node node;

  /// The entry's value under the path of what it was found to be.
  YamlValue value(std::string path) const;
};

/// Takes a file's nodes apart, and notes what is wrong with them.
class YamlReader {
 public:
  /// With so many errors, no more entries and elements are visited.
  static constexpr std::size_t errorsMax = 1000;

  explicit YamlReader(ConfigFile& file) : file_(file) {}

  void error(Place place, std::string path, std::string text);
  void warning(Place place, std::string path, std::string text);
  /// Notes where a path stands. Where two keys name the same thing the first one counts.
  void notePlace(std::string const& path, Place place) { file_.places.emplace(path, place); }

  /// The text of a single value. `expected` says what is meant, for the message when there is none.
  std::optional<std::string> scalar(YamlValue const& value, std::string const& expected);

  /// Calls `visit` for every entry, in order. What is no mapping, a key that is no text, a merge key and a key that was
  /// there before are errors and not visited. Nothing at all counts as an empty mapping. `expected`: as above.
  void forEachEntry(YamlValue const& value, std::string const& expected,
                    Fwk::FunctionRef<void(YamlEntry const&)> visit);

  /// Calls `visit` for every element of a list, whose paths get their number from 0. Nothing counts as an empty list.
  void forEachElement(YamlValue const& value, std::string const& expected,
                      Fwk::FunctionRef<void(YamlValue const&)> visit);

 private:
  std::optional<std::string> keyOf(YAML::Node const& node, Place place, std::string const& path);

  ConfigFile& file_;
};

/// The place of a node, or `otherwise` where the parser notes none.
Place placeOf(YAML::Node const& node, Place otherwise);

}  // namespace Tool

#include <programs/common/config/YamlReader.h>
#include <programs/common/text/Text.h>

#include <map>
#include <utility>

namespace Tool {

namespace {

char const* kindOf(YAML::Node const& node) {
  switch (node.Type()) {
    case YAML::NodeType::Null:
      return "nothing";
    case YAML::NodeType::Scalar:
      return "a single value";
    case YAML::NodeType::Sequence:
      return "a list";
    case YAML::NodeType::Map:
      return "a mapping";
    case YAML::NodeType::Undefined:
      break;
  }
  return "something undefined";
}

std::string wrongKind(YAML::Node const& node, std::string const& expected) {
  return "expected " + expected + ", found " + kindOf(node);
}

}  // namespace

Place placeOf(YAML::Node const& node, Place otherwise) {
  YAML::Mark const mark = node.Mark();
  return mark.is_null() || mark.line < 0 ? otherwise : Place{mark.line + 1, mark.column + 1};
}

// For an empty value the parser notes the place of the next token.
YamlValue YamlEntry::value(std::string path) const {
  return {node, std::move(path), node.IsNull() ? keyPlace : placeOf(node, keyPlace)};
}

void YamlReader::error(Place place, std::string path, std::string text) {
  file_.errors.push_back({place, std::move(path), std::move(text)});
}

void YamlReader::warning(Place place, std::string path, std::string text) {
  file_.warnings.push_back({place, std::move(path), std::move(text)});
}

std::optional<std::string> YamlReader::scalar(YamlValue const& value, std::string const& expected) {
  if (value.node.IsScalar()) return value.node.Scalar();
  error(value.place, value.path, wrongKind(value.node, expected));
  return std::nullopt;
}

std::optional<std::string> YamlReader::keyOf(YAML::Node const& node, Place place, std::string const& path) {
  if (node.IsScalar()) return node.Scalar();
  error(place, path, std::string("expected a text as key, found ") + kindOf(node));
  return std::nullopt;
}

void YamlReader::forEachEntry(YamlValue const& value, std::string const& expected,
                              Fwk::FunctionRef<void(YamlEntry const&)> visit) {
  if (value.node.IsNull()) return;
  if (!value.node.IsMap()) return error(value.place, value.path, wrongKind(value.node, expected));
  std::map<std::string, Place> seen;
  for (auto const& pair : value.node) {
    if (file_.errors.size() >= errorsMax) return;
    Place const place = placeOf(pair.first, value.place);
    auto key = keyOf(pair.first, place, value.path);
    if (!key) continue;
    if (*key == "<<") {
      error(place, value.path, "merge keys (<<) are not supported; write the keys of the other mapping here");
      continue;
    }
    auto const [first, isNew] = seen.emplace(*key, place);
    if (isNew)
      visit({std::move(*key), place, pair.second});
    else
      error(place, value.path,
            "duplicate key " + inQuotes(*key) + "; the first is in line " + std::to_string(first->second.line));
  }
}

void YamlReader::forEachElement(YamlValue const& value, std::string const& expected,
                                Fwk::FunctionRef<void(YamlValue const&)> visit) {
  if (value.node.IsNull()) return;
  if (!value.node.IsSequence()) return error(value.place, value.path, wrongKind(value.node, expected));
  std::size_t number = 0;
  for (YAML::Node const& node : value.node) {
    if (file_.errors.size() >= errorsMax) return;
    visit({node, value.path + '[' + std::to_string(number) + ']', placeOf(node, value.place)});
    ++number;
  }
}

}  // namespace Tool

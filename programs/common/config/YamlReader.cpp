#include <programs/common/config/YamlReader.h>
#include <programs/common/text/Text.h>

#include <map>
#include <utility>

namespace Tool {

namespace {

char const* kindOf(YamlNode node) {
  switch (node.kind()) {
    case YamlNode::Kind::nothing:
      return "nothing";
    case YamlNode::Kind::text:
      return "a single value";
    case YamlNode::Kind::list:
      return "a list";
    case YamlNode::Kind::mapping:
      break;
  }
  return "a mapping";
}

std::string wrongKind(YamlNode node, std::string const& expected) {
  return "expected " + expected + ", found " + kindOf(node);
}

}  // namespace

// For an empty value the parser notes the place of the next token.
YamlValue YamlEntry::value(std::string path) const {
  return {node, std::move(path), node.kind() == YamlNode::Kind::nothing ? keyPlace : node.place()};
}

void YamlReader::error(Place place, std::string path, std::string text) {
  file_.errors.push_back({place, std::move(path), std::move(text)});
}

void YamlReader::warning(Place place, std::string path, std::string text) {
  file_.warnings.push_back({place, std::move(path), std::move(text)});
}

std::optional<std::string> YamlReader::scalar(YamlValue const& value, std::string const& expected) {
  if (value.node.kind() == YamlNode::Kind::text) return std::string(value.node.text());
  error(value.place, value.path, wrongKind(value.node, expected));
  return std::nullopt;
}

std::optional<std::string> YamlReader::keyOf(YamlNode node, Place place, std::string const& path) {
  if (node.kind() == YamlNode::Kind::text) return std::string(node.text());
  error(place, path, std::string("expected a text as key, found ") + kindOf(node));
  return std::nullopt;
}

void YamlReader::forEachEntry(YamlValue const& value, std::string const& expected,
                              Fwk::FunctionRef<void(YamlEntry const&)> visit) {
  if (value.node.kind() == YamlNode::Kind::nothing) return;
  if (value.node.kind() != YamlNode::Kind::mapping)
    return error(value.place, value.path, wrongKind(value.node, expected));
  std::map<std::string, Place> seen;
  for (auto child = value.node.begin(); child != value.node.end();) {
    if (file_.errors.size() >= errorsMax) return;
    YamlNode const keyNode = *child++;
    YamlNode const valueNode = *child++;
    Place const place = keyNode.place();
    auto key = keyOf(keyNode, place, value.path);
    if (!key) continue;
    if (*key == "<<") {
      error(place, value.path, "merge keys (<<) are not supported; write the keys of the other mapping here");
      continue;
    }
    auto const [first, isNew] = seen.emplace(*key, place);
    if (isNew)
      visit({std::move(*key), place, valueNode});
    else
      error(place, value.path,
            "duplicate key " + inQuotes(*key) + "; the first is in line " + std::to_string(first->second.line));
  }
}

void YamlReader::forEachElement(YamlValue const& value, std::string const& expected,
                                Fwk::FunctionRef<void(YamlValue const&)> visit) {
  if (value.node.kind() == YamlNode::Kind::nothing) return;
  if (value.node.kind() != YamlNode::Kind::list) return error(value.place, value.path, wrongKind(value.node, expected));
  std::size_t number = 0;
  for (YamlNode const node : value.node) {
    if (file_.errors.size() >= errorsMax) return;
    visit({node, value.path + '[' + std::to_string(number) + ']', node.place()});
    ++number;
  }
}

}  // namespace Tool

#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>
#include <programs/common/config/ConfigFile.h>
#include <programs/common/config/LinkReader.h>
#include <programs/common/config/ModelReader.h>
#include <programs/common/config/YamlReader.h>
#include <programs/common/text/Failure.h>
#include <programs/common/text/NearestName.h>

#include <yaml-cpp/depthguard.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <utility>

namespace Tool {

namespace {

// The configuration is named after its section, so every path in it begins with that name.
constexpr std::string_view configSection = "config";
constexpr std::string_view linksSection = "links";

constexpr Place startOfFile{1, 1};

/// Text contains no NUL, unless it has 16 or 32 bits per character and begins with a byte order mark.
bool isText(std::string_view octets) {
  using namespace std::string_view_literals;
  if (octets.find('\0') == std::string_view::npos) return true;
  constexpr std::array marks{"\xfe\xff"sv, "\xff\xfe"sv, "\0\0\xfe\xff"sv};  // the fourth begins as the second
  return std::ranges::any_of(marks, [&](std::string_view mark) { return octets.starts_with(mark); });
}

constexpr char const* nestedTooDeeplyText = "nested too deeply";

/// Brackets that may be open at one place. The parser holds a whole line of them in memory before it refuses them; the
/// model nests a few deep.
constexpr std::size_t openBracketsMax = 1000;

Place placeAt(std::string_view text, std::size_t offset) {
  std::string_view const before = text.substr(0, offset);
  std::string_view const line = before.substr(before.find_last_of('\n') + 1);  // npos + 1 is 0
  auto const isFirstOctet = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; };
  return {static_cast<int>(std::ranges::count(before, '\n')) + 1,
          static_cast<int>(std::ranges::count_if(line, isFirstOctet)) + 1};
}

/// The place of the outermost bracket where too many are open. Brackets in comments and texts count, too.
std::optional<Place> nestedTooDeeply(std::string_view text) {
  std::size_t open = 0, outermost = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const c = text[i];
    if (c == '[' || c == '{') {
      if (open == 0) outermost = i;
      if (++open > openBracketsMax) return placeAt(text, outermost);
    } else if ((c == ']' || c == '}') && open > 0) {
      --open;
    }
  }
  return std::nullopt;
}

/// Names the most frequent cause of a syntax error, which the parser does not: a tab in or before the line.
std::string tabHint(std::string_view text, int lastLine) {
  for (int line = 1; line <= lastLine && !text.empty(); ++line) {
    std::string_view const blanks = text.substr(0, text.find_first_not_of(" \t"));
    if (blanks.size() < text.size() && text[blanks.size()] != '\n' && blanks.find('\t') != std::string_view::npos)
      return "; line " + std::to_string(line) + " begins with a tab; YAML takes only blanks as indentation";
    text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  }
  return {};
}

/// Places of unexpected text behind the first document.
struct BehindTheDocument {
  std::optional<Place> document;
  std::optional<Place> comma;
};

/// Reads the first document. A text without one is read as an empty document.
BehindTheDocument readDocument(std::string const& text, YamlTree& first) {
  std::istringstream octets(text);
  YAML::Parser parser(octets);
  if (!parser.HandleNextDocument(first)) {
    first.OnNull({}, 0);
    return {};
  }
  YamlTree second, third;
  if (!parser.HandleNextDocument(second)) return {};
  // The parser turns a comma into an empty document and does not advance, so documents would never end there.
  if (second.begin() == first.begin() || (parser.HandleNextDocument(third) && third.begin() == second.begin()))
    return {{}, second.begin()};
  return {second.root().place(), {}};
}

class FileReader {
 public:
  explicit FileReader(ConfigFile& file) : file_(file), reader_(file) {}

  void read(std::string const& text) {
    if (!isText(text)) return reader_.error({}, {}, "is not a text file");
    if (auto const place = nestedTooDeeply(text)) return reader_.error(*place, {}, nestedTooDeeplyText);
    YamlTree document;
    BehindTheDocument behind;
    try {
      behind = readDocument(text, document);
    } catch (YamlTree::Refusal const& refusal) {
      return reader_.error(refusal.place, {}, refusal.text);
    } catch (YAML::DeepRecursion const&) {
      return reader_.error(startOfFile, {}, nestedTooDeeplyText);
    } catch (YAML::Exception const& e) {
      Place const place = placeOf(e.mark);
      return reader_.error(place, {}, "not YAML: " + e.msg + tabHint(text, place.line));
    }
    if (behind.comma)
      reader_.error(*behind.comma, {}, "unexpected comma");
    else if (document.root().kind() == YamlNode::Kind::nothing)
      return reader_.error(startOfFile, {}, "the file holds no values; expected a section config");
    else if (behind.document)
      reader_.error(*behind.document, {}, "a second document begins; expected one");
    readSections({document.root(), {}, document.root().place()});
    if (file_.errors.size() >= YamlReader::errorsMax)
      reader_.error(
          file_.errors.back().place, {},
          "there may be more errors; only the first " + std::to_string(YamlReader::errorsMax) + " are listed");
  }

 private:
  void readSections(YamlValue const& top) {
    file_.config = RouterAdvt::configFactory(RouterAdvt::Name(configSection));
    reader_.forEachEntry(top, "a mapping with the sections config and links",
                         [&](YamlEntry const& entry) { readSection(entry); });
    if (file_.errors.empty() && !hasConfig_) reader_.error(top.place, {}, "there is no section config");
    for (LinkConfig const& link : file_.links) warnWithoutConfig(link);
  }

  void readSection(YamlEntry const& entry) {
    reader_.notePlace(entry.key, entry.keyPlace);
    if (entry.key == configSection) {
      hasConfig_ = true;
      readEntity(reader_, entry.value(entry.key), file_.config);
    } else if (entry.key == linksSection) {
      readLinks(reader_, entry.value(entry.key), file_.links);
      for (LinkConfig const& link : file_.links)
        file_.linkNumbers.emplace(link.intfId.toString(), file_.linkNumbers.size());
    } else {
      reader_.error(entry.keyPlace, entry.key,
                    "there is no such section" + nearestNameHint(entry.key, {configSection, linksSection}));
    }
  }

  /// A link without an interface has no effect; its name is probably misspelled.
  void warnWithoutConfig(LinkConfig const& link) {
    if (file_.config->intf(link.intfId)) return;
    std::vector<std::string> names;
    if (file_.config->intf().size() <= candidatesPerLineMax)
      for (auto const& [intfId, intf] : file_.config->intf()) names.push_back(intfId.toString());
    std::string const name = link.intfId.toString();
    reader_.warning(link.place, linkPath(link.intfId),
                    "has no effect: there is no such interface in config/intf" +
                        nearestNameHint(name, {names.begin(), names.end()}));
  }

  ConfigFile& file_;
  YamlReader reader_;
  bool hasConfig_ = false;
};

}  // namespace

LinkConfig const* ConfigFile::link(Net::IntfId const& intfId) const {
  auto const found = linkNumbers.find(intfId.toString());
  return found == linkNumbers.end() ? nullptr : &links[found->second];
}

Place ConfigFile::placeOf(std::string path) const {
  while (!path.empty()) {
    if (auto const found = places.find(path); found != places.end()) return found->second;
    // A key may contain slashes. A part of a key is not a path in `places`, so the loop passes over it.
    auto const separator = path.find_last_of("/[");
    path.resize(separator == std::string::npos ? 0 : separator);
  }
  return {};
}

ConfigFile readConfigText(std::string name, std::string const& text) {
  ConfigFile file;
  file.name = std::move(name);
  FileReader(file).read(text);
  sortByPlace(file.errors);
  sortByPlace(file.warnings);
  if (!file.errors.empty()) {
    file.config = nullptr;
    file.links.clear();
    file.linkNumbers.clear();
  }
  return file;
}

ConfigFile readConfigText(std::string name, FileText const& read) {
  if (read.error.empty()) return readConfigText(std::move(name), read.text);
  ConfigFile file;
  file.name = std::move(name);
  file.errors.push_back({{}, {}, read.error});
  return file;
}

ConfigFile loadConfigFile(std::string const& fileName) {
  return readConfigText(fileName == "-" ? "standard input" : fileName, readFileText(fileName));
}

ConfigFile loadConfigFileOrFail(std::string const& fileName) {
  ConfigFile file = loadConfigFile(fileName);
  failIfWrong(file);
  return file;
}

void failIfWrong(ConfigFile const& file) {
  if (file) return;
  std::vector<std::string> messages;
  for (Diagnostic const& error : file.errors) messages.push_back(diagnosticText(file.name, error));
  throw Failure(std::move(messages));
}

}  // namespace Tool

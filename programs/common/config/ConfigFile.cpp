#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>
#include <programs/common/config/ConfigFile.h>
#include <programs/common/config/LinkReader.h>
#include <programs/common/config/ModelReader.h>
#include <programs/common/config/YamlReader.h>
#include <programs/common/text/Failure.h>
#include <programs/common/text/NearestName.h>

#include <yaml-cpp/depthguard.h>
#include <yaml-cpp/eventhandler.h>

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

Place placeOfMark(YAML::Mark const& mark) {
  return mark.is_null() ? startOfFile : Place{mark.line + 1, mark.column + 1};
}

/// Nodes of a document: values, keys, lists and mappings. Each takes some 500 octets of memory.
constexpr std::size_t nodesMax = 1'000'000;
/// Nodes that aliases add to a document: each alias adds the nodes of its anchor. A few lines could add billions.
constexpr std::size_t repeatedNodesMax = 200'000;

/// Why a document is refused although it is YAML.
struct Refusal {
  Place place;
  std::string text;
};

/// Where a document begins, and its uppermost node, which may stand behind "---". Throws `Refusal` for a document that
/// is too large.
class DocumentScan final : public YAML::EventHandler {
 public:
  Place begin, root;

  void OnDocumentStart(YAML::Mark const& mark) override { begin = placeOfMark(mark); }
  void OnDocumentEnd() override {}
  void OnNull(YAML::Mark const& mark, YAML::anchor_t anchor) override {
    open(mark, anchor);
    close();
  }
  void OnAlias(YAML::Mark const& mark, YAML::anchor_t anchor) override {
    std::size_t const count = sizes_.at(anchor);
    if (count == 0) throw Refusal{placeOfMark(mark), "an alias stands within its own anchor"};
    repeated_ += count;
    if (repeated_ > repeatedNodesMax)
      throw Refusal{placeOfMark(mark), "aliases repeat more than " + std::to_string(repeatedNodesMax) + " values"};
  }
  void OnScalar(YAML::Mark const& mark, std::string const&, YAML::anchor_t anchor, std::string const&) override {
    open(mark, anchor);
    close();
  }
  void OnSequenceStart(YAML::Mark const& mark, std::string const&, YAML::anchor_t anchor,
                       YAML::EmitterStyle::value) override {
    open(mark, anchor);
  }
  void OnSequenceEnd() override { close(); }
  void OnMapStart(YAML::Mark const& mark, std::string const&, YAML::anchor_t anchor,
                  YAML::EmitterStyle::value) override {
    open(mark, anchor);
  }
  void OnMapEnd() override { close(); }

 private:
  struct Open {
    YAML::anchor_t anchor;
    std::size_t before;  ///< nodes before it
  };

  void open(YAML::Mark const& mark, YAML::anchor_t anchor) {
    if (nodes_ == 0) root = placeOfMark(mark);
    if (nodes_ == nodesMax)
      throw Refusal{placeOfMark(mark), "the file has more than " + std::to_string(nodesMax) + " values"};
    open_.push_back({anchor, nodes_ + repeated_});
    ++nodes_;
    if (anchor >= sizes_.size()) sizes_.resize(anchor + 1);
  }
  void close() {
    auto const [anchor, before] = open_.back();
    open_.pop_back();
    sizes_[anchor] = nodes_ + repeated_ - before;
  }

  std::size_t nodes_ = 0;     ///< written in the document
  std::size_t repeated_ = 0;  ///< added by aliases
  std::vector<Open> open_;
  std::vector<std::size_t> sizes_;  ///< nodes per anchor, 0 until its end; the first is for nodes without an anchor
};

/// Places of unexpected text behind the first document.
struct BehindTheDocument {
  std::optional<Place> document;
  std::optional<Place> comma;
};

BehindTheDocument findBehindTheDocument(std::string const& text) {
  std::istringstream octets(text);
  YAML::Parser parser(octets);
  DocumentScan first, second, third;
  if (!parser.HandleNextDocument(first) || !parser.HandleNextDocument(second)) return {};
  // The parser turns a comma into an empty document and does not advance, so documents would never end there.
  if (second.begin == first.begin || (parser.HandleNextDocument(third) && third.begin == second.begin))
    return {{}, second.begin};
  return {second.root, {}};
}

class FileReader {
 public:
  explicit FileReader(ConfigFile& file) : file_(file), reader_(file) {}

  void read(std::string const& text) {
    if (!isText(text)) return reader_.error({}, {}, "is not a text file");
    YAML::Node document;
    BehindTheDocument behind;
    try {
      behind = findBehindTheDocument(text);
      document = YAML::Load(text);
    } catch (Refusal const& refusal) {
      return reader_.error(refusal.place, {}, refusal.text);
    } catch (YAML::DeepRecursion const&) {
      return reader_.error(startOfFile, {}, "nested too deeply");
    } catch (YAML::Exception const& e) {
      Place const place = placeOfMark(e.mark);
      return reader_.error(place, {}, "not YAML: " + e.msg + tabHint(text, place.line));
    }
    if (behind.comma)
      reader_.error(*behind.comma, {}, "unexpected comma");
    else if (document.IsNull())
      return reader_.error(startOfFile, {}, "the file holds no values; expected a section config");
    else if (behind.document)
      reader_.error(*behind.document, {}, "a second document begins; expected one");
    readSections({document, {}, placeOf(document, startOfFile)});
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

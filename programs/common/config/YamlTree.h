#pragma once

#include <programs/common/config/Diagnostic.h>

#include <yaml-cpp/eventhandler.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

class YamlTree;

/// A value in a `YamlTree`, valid as long as the tree. An alias has the value and the place of its anchor.
class YamlNode {
 public:
  enum class Kind : std::uint8_t { nothing, text, list, mapping };

  class Iterator {
   public:
    Iterator(YamlTree const& tree, std::uint32_t number) : tree_(&tree), number_(number) {}
    YamlNode operator*() const { return {*tree_, number_}; }
    Iterator& operator++();
    Iterator operator++(int);
    bool operator==(Iterator const&) const = default;

   private:
    YamlTree const* tree_;
    std::uint32_t number_;
  };

  YamlNode(YamlTree const& tree, std::uint32_t number);

  Kind kind() const;
  Place place() const;
  /// Of Kind::text.
  std::string_view text() const;

  /// The elements of a list; each key of a mapping and its value by turns.
  Iterator begin() const;
  Iterator end() const;

 private:
  YamlTree const* tree_;
  std::uint32_t number_;  ///< never that of an alias
};

/// The values of one YAML document, filled by the events of the parser. A value takes 24 octets and its text, an alias
/// 24 octets however large the value of its anchor is.
class YamlTree final : public YAML::EventHandler {
 public:
  /// Values, keys, lists and mappings; aliases are not counted.
  static constexpr std::size_t valuesMax = 1'000'000;
  /// Values that aliases add: each alias adds the values of its anchor. A few lines could add billions.
  static constexpr std::size_t repeatedValuesMax = 200'000;

  /// Thrown when a document is not read although it is YAML: there are too many values, or an alias stands within its
  /// own anchor.
  struct Refusal {
    Place place;
    std::string text;
  };

  /// Where the document begins. Its uppermost value may begin later: behind "---".
  Place begin() const { return begin_; }
  /// Call it when the parser has handled the document.
  YamlNode root() const { return {*this, 0}; }

  void OnDocumentStart(YAML::Mark const& mark) override;
  void OnDocumentEnd() override {}
  void OnNull(YAML::Mark const& mark, YAML::anchor_t anchor) override;
  void OnAlias(YAML::Mark const& mark, YAML::anchor_t anchor) override;
  void OnScalar(YAML::Mark const& mark, std::string const& tag, YAML::anchor_t anchor,
                std::string const& value) override;
  void OnSequenceStart(YAML::Mark const& mark, std::string const& tag, YAML::anchor_t anchor,
                       YAML::EmitterStyle::value style) override;
  void OnSequenceEnd() override { close(); }
  void OnMapStart(YAML::Mark const& mark, std::string const& tag, YAML::anchor_t anchor,
                  YAML::EmitterStyle::value style) override;
  void OnMapEnd() override { close(); }

 private:
  friend YamlNode;
  friend YamlNode::Iterator;

  /// The children of a list or mapping follow it.
  struct Node {
    std::size_t text;  ///< offset of its text, which ends where that of the next node begins
    Place place;
    std::uint32_t other;  ///< of an alias: the node of its anchor; otherwise the node behind this one and its children
    YamlNode::Kind kind;
    bool isAlias;
  };
  struct Open {
    std::uint32_t number;
    YAML::anchor_t anchor;
    std::size_t sizeBefore;
  };
  struct Anchor {
    std::uint32_t number = 0;
    std::size_t size = 0;  ///< 0 until its end
  };

  std::uint32_t nodeCount() const { return static_cast<std::uint32_t>(nodes_.size()); }
  std::size_t size() const { return values_ + repeatedValues_; }
  std::uint32_t behind(std::uint32_t number) const;
  void open(YAML::Mark const& mark, YAML::anchor_t anchor, YamlNode::Kind kind);
  void close();

  Place begin_;
  std::vector<Node> nodes_;
  std::string texts_;
  std::size_t values_ = 0;
  std::size_t repeatedValues_ = 0;
  std::vector<Open> open_;
  std::vector<Anchor> anchors_;  ///< by the number of the parser; the first is for values without an anchor
};

/// Place of the parser's mark; the start of the file for none.
Place placeOf(YAML::Mark const& mark);

}  // namespace Tool

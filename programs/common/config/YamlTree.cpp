#include <programs/common/config/YamlTree.h>

#include <yaml-cpp/mark.h>

namespace Tool {

YamlNode::YamlNode(YamlTree const& tree, std::uint32_t number)
    : tree_(&tree), number_(tree.nodes_[number].isAlias ? tree.nodes_[number].other : number) {}

YamlNode::Iterator& YamlNode::Iterator::operator++() {
  number_ = tree_->behind(number_);
  return *this;
}

YamlNode::Iterator YamlNode::Iterator::operator++(int) {
  Iterator const before = *this;
  ++*this;
  return before;
}

YamlNode::Kind YamlNode::kind() const { return tree_->nodes_[number_].kind; }

Place YamlNode::place() const { return tree_->nodes_[number_].place; }

std::string_view YamlNode::text() const {
  std::size_t const begin = tree_->nodes_[number_].text;
  bool const isLast = number_ + 1 == tree_->nodeCount();
  return std::string_view(tree_->texts_)
      .substr(begin, isLast ? std::string::npos : tree_->nodes_[number_ + 1].text - begin);
}

YamlNode::Iterator YamlNode::begin() const { return {*tree_, number_ + 1}; }

YamlNode::Iterator YamlNode::end() const { return {*tree_, tree_->behind(number_)}; }

void YamlTree::OnDocumentStart(YAML::Mark const& mark) { begin_ = placeOf(mark); }

void YamlTree::OnNull(YAML::Mark const& mark, YAML::anchor_t anchor) {
  open(mark, anchor, YamlNode::Kind::nothing);
  close();
}

void YamlTree::OnAlias(YAML::Mark const& mark, YAML::anchor_t anchor) {
  auto const [number, size] = anchors_.at(anchor);
  if (size == 0) throw Refusal{placeOf(mark), "an alias stands within its own anchor"};
  repeatedValues_ += size;
  if (repeatedValues_ > repeatedValuesMax)
    throw Refusal{placeOf(mark), "aliases repeat more than " + std::to_string(repeatedValuesMax) + " values"};
  nodes_.push_back({texts_.size(), {}, number, {}, true});
}

void YamlTree::OnScalar(YAML::Mark const& mark, std::string const&, YAML::anchor_t anchor, std::string const& value) {
  open(mark, anchor, YamlNode::Kind::text);
  texts_ += value;
  close();
}

void YamlTree::OnSequenceStart(YAML::Mark const& mark, std::string const&, YAML::anchor_t anchor,
                               YAML::EmitterStyle::value) {
  open(mark, anchor, YamlNode::Kind::list);
}

void YamlTree::OnMapStart(YAML::Mark const& mark, std::string const&, YAML::anchor_t anchor,
                          YAML::EmitterStyle::value) {
  open(mark, anchor, YamlNode::Kind::mapping);
}

std::uint32_t YamlTree::behind(std::uint32_t number) const {
  return nodes_[number].isAlias ? number + 1 : nodes_[number].other;
}

void YamlTree::open(YAML::Mark const& mark, YAML::anchor_t anchor, YamlNode::Kind kind) {
  if (values_ == valuesMax)
    throw Refusal{placeOf(mark), "the file has more than " + std::to_string(valuesMax) + " values"};
  open_.push_back({nodeCount(), anchor, size()});
  if (anchor >= anchors_.size()) anchors_.resize(anchor + 1);
  anchors_[anchor] = {nodeCount(), 0};
  nodes_.push_back({texts_.size(), placeOf(mark), 0, kind, false});
  ++values_;
}

void YamlTree::close() {
  Open const closed = open_.back();
  open_.pop_back();
  nodes_[closed.number].other = nodeCount();
  anchors_[closed.anchor].size = size() - closed.sizeBefore;
}

Place placeOf(YAML::Mark const& mark) { return mark.is_null() ? Place{1, 1} : Place{mark.line + 1, mark.column + 1}; }

}  // namespace Tool

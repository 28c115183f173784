#include <gtest/gtest.h>

#include <programs/common/config/YamlTree.h>

#include <yaml-cpp/parser.h>

#include <sstream>

namespace Tool {

namespace {

using Kind = YamlNode::Kind;

class YamlTreeOf : public testing::Test {
 protected:
  /// The root of the document in `text`.
  YamlNode read(std::string const& text) {
    std::istringstream octets(text);
    YAML::Parser(octets).HandleNextDocument(tree_);
    return tree_.root();
  }

  /// A text in quotes, `~` for nothing, lists in brackets and mappings in braces.
  static std::string print(YamlNode node) {
    if (node.kind() == Kind::nothing) return "~";
    if (node.kind() == Kind::text) return '"' + std::string(node.text()) + '"';
    std::string children;
    for (YamlNode const child : node) children += (children.empty() ? "" : " ") + print(child);
    return node.kind() == Kind::list ? '[' + children + ']' : '{' + children + '}';
  }

  YamlTree tree_;
};

TEST_F(YamlTreeOf, TextsHaveTheirCharacters) {
  EXPECT_EQ(print(read("[a, b c, '', \"d\\n\"]")), "[\"a\" \"b c\" \"\" \"d\n\"]");
}

TEST_F(YamlTreeOf, AListWithinAListHasItsOwnElements) {
  EXPECT_EQ(print(read("[a, [b, [], c], d]")), R"(["a" ["b" [] "c"] "d"])");
}

TEST_F(YamlTreeOf, AMappingHasKeysAndValuesByTurns) {
  EXPECT_EQ(print(read("a: 1\nb: {c: 2}\nd:\n")), R"({"a" "1" "b" {"c" "2"} "d" ~})");
}

TEST_F(YamlTreeOf, AMappingKeepsRepeatedKeys) { EXPECT_EQ(print(read("{a: 1, a: 2}")), R"({"a" "1" "a" "2"})"); }

TEST_F(YamlTreeOf, AKeyMayBeAListOrAMapping) {
  EXPECT_EQ(print(read("? [a, b]\n: c\n? {d: e}\n: f\n")), R"({["a" "b"] "c" {"d" "e"} "f"})");
}

TEST_F(YamlTreeOf, PlainNullsAreNothingAndQuotedOnesAreTexts) {
  EXPECT_EQ(print(read("[null, ~, Null, NULL, 'null', \"~\", ! null, nUll]")), R"([~ ~ ~ ~ "null" "~" "null" "nUll"])");
}

TEST_F(YamlTreeOf, ATagMakesATextOfAPlainNullAndOfAnEmptyValue) {
  EXPECT_EQ(print(read("[!!str null, !!null x, !!str , !!int 1]")), R"(["null" "x" "" "1"])");
}

TEST_F(YamlTreeOf, AnAliasHasTheValueOfItsAnchor) {
  EXPECT_EQ(print(read("[&a [x, &b y], *b, *a, z]")), R"([["x" "y"] "y" ["x" "y"] "z"])");
}

TEST_F(YamlTreeOf, AnAliasNamesTheLastAnchorOfItsName) {
  EXPECT_EQ(print(read("[&a x, *a, &a [y], *a]")), R"(["x" "x" ["y"] ["y"]])");
}

TEST_F(YamlTreeOf, AnAliasWithinAnAnchorIsRepeatedWithIt) {
  EXPECT_EQ(print(read("[&a x, &b [*a, *a], *b]")), R"(["x" ["x" "x"] ["x" "x"]])");
}

TEST_F(YamlTreeOf, AnAliasMayBeAKey) { EXPECT_EQ(print(read("{&a x: 1, *a : 2}")), R"({"x" "1" "x" "2"})"); }

TEST_F(YamlTreeOf, AnAliasHasThePlaceOfItsAnchor) {
  YamlNode const root = read("- &a x\n- *a\n");
  EXPECT_EQ((*++root.begin()).place(), (Place{1, 3}));
}

TEST_F(YamlTreeOf, ValuesHaveTheirPlaces) {
  YamlNode const root = read("--- # here\na:\n  - b\n");
  EXPECT_EQ(tree_.begin(), (Place{1, 1}));
  EXPECT_EQ(root.place(), (Place{2, 1}));
  EXPECT_EQ((*++root.begin()).place(), (Place{3, 3}));
}

TEST_F(YamlTreeOf, NothingAtAllIsNothing) { EXPECT_EQ(read("---\n").kind(), Kind::nothing); }

TEST_F(YamlTreeOf, AliasesMayRepeatAsManyValuesAsTheBoundSays) {
  std::string text = "[&a [";
  for (std::size_t i = 1; i < YamlTree::repeatedValuesMax / 10; ++i) text += "x,";
  text += "],*a,*a,*a,*a,*a,*a,*a,*a,*a,*a";
  EXPECT_NO_THROW(read(text + "]"));
  EXPECT_THROW(read(text + ",*a]"), YamlTree::Refusal);
}

}  // namespace

}  // namespace Tool

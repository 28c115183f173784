#include <RouterPlatform/Base/Text.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace Elsewhere {
enum class Color { red };
void appendText(std::string& out, Color) { out += "red"; }

struct Point {
  int x;
  void appendTo(std::string& out) const { Trace::appendTexts(out, "x=", x); }
};
}  // namespace Elsewhere

namespace {

using Trace::textOf;

TEST(Text, ReadsIntegersAsDecimal) {
  EXPECT_EQ(textOf(0), "0");
  EXPECT_EQ(textOf(-7), "-7");
  EXPECT_EQ(textOf(std::uint8_t{255}), "255");
  EXPECT_EQ(textOf(std::int8_t{-128}), "-128");
  EXPECT_EQ(textOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(textOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(Text, ReadsBoolsAsWords) {
  EXPECT_EQ(textOf(true), "true");
  EXPECT_EQ(textOf(false), "false");
}

TEST(Text, ReadsDoublesAsTheShortestTextThatComesBack) {
  EXPECT_EQ(textOf(12.5), "12.5");
  EXPECT_EQ(textOf(0.1), "0.1");
  EXPECT_EQ(textOf(-std::numeric_limits<double>::min()), "-2.2250738585072014e-308");
}

TEST(Text, TakesEveryKindOfString) {
  EXPECT_EQ(textOf("literal"), "literal");
  EXPECT_EQ(textOf(std::string("string")), "string");
  EXPECT_EQ(textOf(std::string_view("view")), "view");
  EXPECT_EQ(textOf('c'), "c");
  EXPECT_EQ(textOf(static_cast<char const*>(nullptr)), "(null)");
}

TEST(Text, AsksAClassForItsOwnText) { EXPECT_EQ(textOf(Elsewhere::Point{3}), "x=3"); }

TEST(Text, FindsTheOverloadOfAnEnumInItsNamespace) { EXPECT_EQ(textOf(Elsewhere::Color::red), "red"); }

TEST(Text, PutsNothingBetweenParts) {
  std::string out = "start ";
  Trace::appendTexts(out, 1, "a", true);
  EXPECT_EQ(out, "start 1atrue");
  EXPECT_EQ(textOf(1, "a", true), "1atrue");
  EXPECT_EQ(textOf(), "");
}

}  // namespace

#include <RouterPlatform/Forms/TextForm.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Net/VrfName.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Fwk::Name;
using Fwk::ParseError;
using Fwk::String;
using Fwk::TextFormReader;
using Fwk::U16;
using Fwk::U32;
using Fwk::U64;
using Fwk::U8;
using Fwk::valueToStrep;
using Net::EthAddr;
using Net::IntfId;
using Net::Ip6Addr;
using Net::Ip6AddrWithMask;
using Net::VrfName;
using TestModel::Point;

/// Reads an attribute and expects that no text is left.
template <class T>
T readAttribute(String const& text) {
  String::IteratorConst pos = text.begin();
  T value = TextFormReader(pos, text.end()).attribute<T>("attribute");
  EXPECT_EQ(pos, text.end()) << text;
  return value;
}

/// The error of reading `text`; empty if it is read.
template <class T>
std::string errorIn(String const& text) {
  try {
    String::IteratorConst pos = text.begin();
    TextFormReader reader(pos, text.end());
    static_cast<void>(reader.attribute<T>("attribute"));
    reader.literal("<end>");
  } catch (ParseError const& error) {
    return error.what();
  }
  return {};
}

/// Expects that `value` prints as `text`, and `text` reads as `value`.
template <class T>
void expectBothWays(T const& value, char const* text) {
  EXPECT_EQ(valueToStrep(value), text);
  EXPECT_EQ(readAttribute<T>(text), value) << text;
}

/// Expects that none of the texts is read as a `T`.
template <class T>
void expectRefused(std::initializer_list<char const*> texts, std::string const& expected) {
  for (char const* const text : texts)
    EXPECT_EQ(errorIn<T>(String(text) + "<end>"), "attribute: offset 0: expected " + expected) << text;
}

TEST(TextForm, OfABoolIsTrueOrFalse) {
  expectBothWays(true, "True");
  expectBothWays(false, "False");
}

TEST(TextForm, OfABoolIsReadAsPrintedOnly) {
  expectRefused<bool>({"", "true", "TRUE", "1", "0", "'True'", " True", "Tru", "None"}, "True or False");
}

TEST(TextForm, OfAnUnsignedIntegerIsDecimalWhateverItsWidth) {
  expectBothWays(U8{0}, "0");
  expectBothWays(U8{255}, "255");
  expectBothWays(U16{65535}, "65535");
  expectBothWays(U32{4294967295}, "4294967295");
  expectBothWays(~U64{0}, "18446744073709551615");
}

TEST(TextForm, OfAnUnsignedIntegerIsReadAsPrintedOnly) {
  expectRefused<U32>({"", "-1", "+1", " 1", "01", "00", "x", "'1'", "True"}, "an integer from 0 to 4294967295");
  EXPECT_EQ(errorIn<U32>("1.0<end>"), "offset 1: expected <end>");
  EXPECT_EQ(errorIn<U32>("0x10<end>"), "offset 1: expected <end>");
}

TEST(TextForm, OfAnUnsignedIntegerIsHeldToTheRangeOfItsType) {
  expectRefused<U8>({"256", "4294967296"}, "an integer from 0 to 255");
  expectRefused<U16>({"65536"}, "an integer from 0 to 65535");
  expectRefused<U32>({"4294967296", "18446744073709551615"}, "an integer from 0 to 4294967295");
  expectRefused<U64>({"18446744073709551616", "99999999999999999999999"}, "an integer from 0 to 18446744073709551615");
}

TEST(TextForm, OfAFloatingPointNumberIsTheShortestThatReadsBackToIt) {
  expectBothWays(0.0, "0.0");
  expectBothWays(12.5, "12.5");
  expectBothWays(-3.0, "-3.0");
  expectBothWays(0.1, "0.1");
  expectBothWays(1764757443.25, "1764757443.25");
  expectBothWays(1e22, "1e+22");
  expectBothWays(5e-324, "5e-324");
  expectBothWays(std::numeric_limits<double>::max(), "1.7976931348623157e+308");
}

TEST(TextForm, OfAFloatingPointNumberKeepsTheSignOfZero) {
  EXPECT_EQ(valueToStrep(-0.0), "-0.0");
  EXPECT_TRUE(std::signbit(readAttribute<double>("-0.0")));
  EXPECT_FALSE(std::signbit(readAttribute<double>("0.0")));
}

TEST(TextForm, OfAFloatingPointNumberCanBeInfiniteOrNone) {
  double const inf = std::numeric_limits<double>::infinity();
  expectBothWays(inf, "inf");
  expectBothWays(-inf, "-inf");
  EXPECT_EQ(valueToStrep(std::numeric_limits<double>::quiet_NaN()), "nan");
  EXPECT_EQ(valueToStrep(-std::numeric_limits<double>::quiet_NaN()), "nan");
  EXPECT_TRUE(std::isnan(readAttribute<double>("nan")));
}

TEST(TextForm, OfAFloatingPointNumberIsReadAsPrintedOnly) {
  expectRefused<double>({"", "12", "12.50", "012.5", "+12.5", " 12.5", ".5", "1e22", "1E+22", "-nan", "NaN", "infinity",
                         "nan(0)", "1e999", "0.10000000000000001", "x", "True"},
                        "a floating-point number");
}

TEST(TextForm, OfATextIsQuotedWithThePythonEscapes) {
  expectBothWays(String("Ethernet1"), "'Ethernet1'");
  expectBothWays(String(), "''");
  expectBothWays(String("it's"), R"('it\'s')");
  expectBothWays(String(R"(a\b)"), R"('a\\b')");
  expectBothWays(String("\n\r\t"), R"('\n\r\t')");
  expectBothWays(String("\x01\x7f"), R"('\x01\x7f')");
  expectBothWays(String("\xff\xc3\xa9"), R"('\xff\xc3\xa9')");
  expectBothWays(String(std::string("a\0b", 3)), R"('a\x00b')");
  expectBothWays(String("say \"x\""), R"('say "x"')");
}

TEST(TextForm, OfATextLiteralIsThatOfAText) { EXPECT_EQ(valueToStrep("x"), "'x'"); }

TEST(TextForm, OfATextIsReadAsPrintedOnly) {
  expectRefused<String>({"", "x", "'x", "\"x\"", R"('\"')", R"('\x4')", R"('\x41')", R"('\xFF')", R"('\x0A')",
                         R"('\q')", R"('\')", "'\n'", "'\xff'", " 'x'", "None"},
                        "a quoted text");
}

TEST(TextForm, OfAStringIsNoneWhereverItIsCut) {
  String const whole = R"('a\x0fb')";
  EXPECT_EQ(readAttribute<String>(whole),
            "a\x0f"
            "b");
  for (std::size_t size = 0; size < whole.size(); ++size)
    EXPECT_THROW(readAttribute<String>(whole.substr(0, size)), ParseError) << size;
  EXPECT_THROW(readAttribute<String>(R"('\xgg')"), ParseError);
}

TEST(TextForm, OfEveryOctetReadsBack) {
  String all;
  for (int octet = 0; octet < 256; ++octet) all += static_cast<char>(octet);
  String const text = valueToStrep(all);
  EXPECT_EQ(readAttribute<String>(text), all);
  for (char const c : text) EXPECT_TRUE(c >= 0x20 && c < 0x7f);
}

TEST(TextForm, OfNamesIsThatOfTheirText) {
  expectBothWays(Name("o'brien"), R"('o\'brien')");
  expectBothWays(IntfId("Ethernet1"), "'Ethernet1'");
  expectBothWays(IntfId(), "''");
  expectBothWays(VrfName("blue"), "'blue'");
}

TEST(TextForm, OfAddressesIsThatOfTheirText) {
  expectBothWays(Ip6Addr("fe80::1"), "'fe80::1'");
  expectBothWays(Ip6Addr(), "'::'");
  expectBothWays(Ip6AddrWithMask("2001:db8::1/64"), "'2001:db8::1/64'");
  expectBothWays(Ip6AddrWithMask(), "'::/0'");
  expectBothWays(*EthAddr::parse("02:00:00:00:00:01"), "'02:00:00:00:00:01'");
}

TEST(TextForm, OfAReceivedPrefixIsReadThoughItsLengthIsAbove128) {
  expectBothWays(Ip6AddrWithMask(Ip6Addr("2001:db8::"), 129), "'2001:db8::/129'");
  expectBothWays(Ip6AddrWithMask(Ip6Addr("2001:db8::"), 255), "'2001:db8::/255'");
  expectRefused<Ip6AddrWithMask>({"'2001:db8::/256'"}, "Ip6AddrWithMask");
}

TEST(TextForm, OfNamesAndAddressesIsReadAsPrintedOnly) {
  expectRefused<Ip6Addr>({"'FE80::1'", "'fe80:0::1'", "'fe80::1%eth0'", "''", "'fe80::1/64'", "'fe80::1 '"}, "Ip6Addr");
  expectRefused<Ip6Addr>({"fe80::1", "", "::"}, "a quoted text");
  expectRefused<Ip6AddrWithMask>({"'2001:db8::'", "'2001:db8::/064'", "'2001:DB8::/64'"}, "Ip6AddrWithMask");
  expectRefused<IntfId>({"'a-name-of-thirty-two-octets-long'"}, "IntfId");
}

/// A value record with a value record inside, twice.
class Line {
 public:
  Line() = default;
  Line(Point const& from, Point const& to) : from_(from), to_(to) {}
  Line(String::IteratorConst& pos, String::IteratorConst const& end);
  bool operator==(Line const&) const = default;

  static constexpr char const* fwkTypeName = "TestModel::Line";
  static constexpr auto storedAttributes() {
    return std::tuple(Fwk::StoredAttribute{"from", &Line::from_}, Fwk::StoredAttribute{"to", &Line::to_});
  }

 private:
  Point from_;
  Point to_;
};
Line::Line(String::IteratorConst& pos, String::IteratorConst const& end) { Fwk::recordFromStrep(pos, end, *this); }
String valueToStrep(Line const& line) { return Fwk::recordToStrep(line); }

constexpr char const* lineText =
    "Value('TestModel::Line', ** {'from': Value('TestModel::Point', ** {'x': 1, 'y': 2}), 'to': "
    "Value('TestModel::Point', ** {'x': 3, 'y': 4})})";

/// The error of `strepToValue` for `text`, and its parts.
struct Refusal {
  std::string attribute;
  std::size_t offset;
  std::string expected;
  bool operator==(Refusal const&) const = default;
  friend void PrintTo(Refusal const& r, std::ostream* os) {
    *os << r.attribute << '@' << r.offset << ": " << r.expected;
  }
};
template <class T>
Refusal refusalOf(String const& text) {
  try {
    Fwk::strepToValue<T>(text, nullptr);
  } catch (ParseError const& error) {
    return {error.attribute(), error.offset(), error.expected()};
  }
  return {"none", 0, {}};
}

TEST(RecordTextForm, PrintsTheAttributesInOrderAndRecordsInFull) {
  Line const line(Point(1, 2), Point(3, 4));
  EXPECT_EQ(valueToStrep(line), lineText);
  EXPECT_EQ(Fwk::strepToValue<Line>(lineText, nullptr), line);
}

TEST(RecordTextForm, ACollectionPrintsAsNoneWhateverItHolds) {
  TestModel::Bag bag;
  EXPECT_EQ(valueToStrep(bag), "Value('TestModel::Bag', ** {'marks': None})");
  bag.marksIs(1, true);
  EXPECT_EQ(valueToStrep(bag), "Value('TestModel::Bag', ** {'marks': None})");
}

TEST(RecordTextForm, ReadingMovesThePositionBehindTheValue) {
  String const text = "Value('TestModel::Point', ** {'x': 1, 'y': 2}) and more";
  String::IteratorConst pos = text.begin();
  EXPECT_EQ(Point(pos, text.end()), Point(1, 2));
  EXPECT_EQ(std::string(pos, text.end()), " and more");
}

TEST(RecordTextForm, ReadingInTheMiddleOfATextCountsOffsetsFromThere) {
  String const text = "before Value('TestModel::Point', ** {'x': one, 'y': 2})";
  String::IteratorConst pos = text.begin() + 7;
  try {
    Point const point(pos, text.end());
    FAIL() << "was read";
  } catch (ParseError const& error) {
    EXPECT_EQ(error.offset(), text.find("one") - 7);
  }
}

TEST(RecordTextForm, AWrongAttributeIsNamedWithItsOffsetAndWhatWasExpected) {
  String const text = "Value('TestModel::Point', ** {'x': 1, 'y': two})";
  EXPECT_EQ(refusalOf<Point>(text), (Refusal{"y", text.find("two"), "an integer from 0 to 4294967295"}));
}

TEST(RecordTextForm, ARangeIsThatOfTheField) {
  EXPECT_EQ(refusalOf<Point>("Value('TestModel::Point', ** {'x': 4294967295, 'y': 4294967296})"),
            (Refusal{"y", 52, "an integer from 0 to 4294967295"}));
}

TEST(RecordTextForm, AnErrorInARecordInsideIsOneOfTheAttributeThatHoldsIt) {
  String const wrong(std::string(lineText).replace(std::string(lineText).find("4})"), 1, "x"));
  EXPECT_EQ(refusalOf<Line>(wrong), (Refusal{"to", wrong.find("x})"), "an integer from 0 to 4294967295"}));
  String const head(std::string(lineText).replace(std::string(lineText).find("Point"), 1, "J"));
  EXPECT_EQ(refusalOf<Line>(head), (Refusal{"from", 37, "Value('TestModel::Point', ** {"}));
}

TEST(RecordTextForm, EveryLiteralHasToStandThereAsItIs) {
  String const text = "Value('TestModel::Point', ** {'x': 1, 'y': 2})";
  for (std::string const literal : {"Value('TestModel::Point', ** {", "'x': ", ", 'y': ", "})"}) {
    std::size_t const at = text.find(literal);
    for (std::size_t i = 0; i < literal.size(); ++i) {
      String missing = text, other = text;
      missing.erase(at + i, 1);
      other[at + i] = '#';
      EXPECT_EQ(refusalOf<Point>(missing), (Refusal{"", at, literal})) << missing;
      EXPECT_EQ(refusalOf<Point>(other), (Refusal{"", at, literal})) << other;
    }
  }
}

TEST(RecordTextForm, IsNotReadWhenItIsCutAtAnyOctet) {
  for (String cut = lineText; !cut.empty();) {
    cut.pop_back();
    Refusal const refusal = refusalOf<Line>(cut);
    EXPECT_NE(refusal.attribute, "none") << cut;
    EXPECT_LE(refusal.offset, cut.size());
  }
}

TEST(RecordTextForm, NothingMayBeLeftOver) {
  String const text(lineText);
  for (char const* const more : {" ", "\n", ")", "x"})
    EXPECT_EQ(refusalOf<Line>(text + more), (Refusal{"", text.size(), "the end of the text"}));
}

TEST(RecordTextForm, BlanksStandWhereTheyArePrintedAndNowhereElse) {
  for (char const* const text :
       {"Value('TestModel::Point', ** {'x':1, 'y': 2})", "Value('TestModel::Point', ** {'x': 1,'y': 2})",
        "Value('TestModel::Point', ** {'x':  1, 'y': 2})", "Value('TestModel::Point', **{'x': 1, 'y': 2})",
        "Value('TestModel::Point', ** { 'x': 1, 'y': 2})", " Value('TestModel::Point', ** {'x': 1, 'y': 2})",
        "Value('TestModel::Point', ** {'x': 1, 'y': 2 })"})
    EXPECT_NE(refusalOf<Point>(text).attribute, "none") << text;
}

TEST(ParseErrorMessage, NamesAttributeOffsetAndWhatWasExpected) {
  EXPECT_STREQ(ParseError("validLifetime", 7, "a quoted text").what(),
               "validLifetime: offset 7: expected a quoted text");
  EXPECT_STREQ(ParseError("", 3, "})").what(), "offset 3: expected })");
}

}  // namespace

#include <RouterPlatform/Base/Printable.h>
#include <gtest/gtest.h>

#include <ostream>
#include <set>

namespace {

std::string printable(std::string_view text) {
  std::string result;
  Trace::appendPrintable(result, text);
  return result;
}

struct Row {
  char const* name;
  std::string text;
  std::string printed;
  friend void PrintTo(Row const& row, std::ostream* os) { *os << row.name; }
};
class Printable : public testing::TestWithParam<Row> {};
TEST_P(Printable, EscapesWhatDrivesATerminalAndNothingElse) {
  EXPECT_EQ(printable(GetParam().text), GetParam().printed);
}
Row const rows[] = {
    {"Empty", "", ""},
    {"Ascii", " aZ09~", " aZ09~"},
    {"TwoOctets", "M\xc3\xbcller", "M\xc3\xbcller"},
    {"ThreeOctets", "\xe6\x9d\xb1\xe4\xba\xac", "\xe6\x9d\xb1\xe4\xba\xac"},
    {"FourOctets", "\xf0\x9f\x9a\x80", "\xf0\x9f\x9a\x80"},
    {"LastCodePoint", "\xf4\x8f\xbf\xbf", "\xf4\x8f\xbf\xbf"},
    {"Backslash", "a\\x1b", "a\\\\x1b"},
    {"Newline", "a\nb\r\t", "a\\x0ab\\x0d\\x09"},
    {"Nul", std::string(1, '\0'), "\\x00"},
    {"Escape", "\x1b[31m", "\\x1b[31m"},
    {"LastOfC0", "\x1f\x20", "\\x1f "},
    {"Del", "~\x7f", "~\\x7f"},
    {"FirstOfC1", "\xc2\x80", "\\xc2\\x80"},
    {"ControlSequenceIntroducer",
     "\xc2\x9b"
     "31m",
     "\\xc2\\x9b31m"},
    {"LastOfC1", "\xc2\x9f", "\\xc2\\x9f"},
    {"BehindC1", "\xc2\xa0", "\xc2\xa0"},
    {"ArabicLetterMark", "\xd8\x9c", "\\xd8\\x9c"},
    {"LeftToRightMark", "\xe2\x80\x8e", "\\xe2\\x80\\x8e"},
    {"RightToLeftMark", "\xe2\x80\x8f", "\\xe2\\x80\\x8f"},
    {"BeforeTheMarks", "\xe2\x80\x8d", "\xe2\x80\x8d"},
    {"Hyphen", "\xe2\x80\x90", "\xe2\x80\x90"},
    {"BeforeTheSeparators", "\xe2\x80\xa7", "\xe2\x80\xa7"},
    {"LineSeparator", "\xe2\x80\xa8", "\\xe2\\x80\\xa8"},
    {"ParagraphSeparator", "\xe2\x80\xa9", "\\xe2\\x80\\xa9"},
    {"Embedding", "\xe2\x80\xaa", "\\xe2\\x80\\xaa"},
    {"Override", "\xe2\x80\xae", "\\xe2\\x80\\xae"},
    {"BehindTheOverrides", "\xe2\x80\xaf", "\xe2\x80\xaf"},
    {"BeforeTheIsolates", "\xe2\x81\xa5", "\xe2\x81\xa5"},
    {"FirstIsolate", "\xe2\x81\xa6", "\\xe2\\x81\\xa6"},
    {"LastIsolate", "\xe2\x81\xa9", "\\xe2\\x81\\xa9"},
    {"BehindTheIsolates", "\xe2\x81\xaa", "\xe2\x81\xaa"},
    {"ContinuationOctet",
     "\x9b"
     "31m",
     "\\x9b31m"},
    {"NoLeadOctet", "\xff\xf8", "\\xff\\xf8"},
    {"CutCharacter", "\xe6\x9d", "\\xe6\\x9d"},
    {"CutCharacterBeforeAnother", "\xe6\x9d\xc3\xbc", "\\xe6\\x9d\xc3\xbc"},
    {"LeadOctetBeforeAscii",
     "\xc3"
     "a",
     "\\xc3a"},
    {"OverlongOfTwo", "\xc1\xbf", "\\xc1\\xbf"},
    {"OverlongOfThree", "\xe0\x9f\xbf", "\\xe0\\x9f\\xbf"},
    {"OverlongOfFour", "\xf0\x8f\xbf\xbf", "\\xf0\\x8f\\xbf\\xbf"},
    {"FirstSurrogate", "\xed\xa0\x80", "\\xed\\xa0\\x80"},
    {"LastSurrogate", "\xed\xbf\xbf", "\\xed\\xbf\\xbf"},
    {"BeforeTheSurrogates", "\xed\x9f\xbf", "\xed\x9f\xbf"},
    {"BehindTheSurrogates", "\xee\x80\x80", "\xee\x80\x80"},
    {"BehindTheLastCodePoint", "\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},
    {"BootFileUrl", "http://\x1b[31m\xc2\x9b\xe2\x80\xae gnp.exe\x07",
     "http://\\x1b[31m\\xc2\\x9b\\xe2\\x80\\xae gnp.exe\\x07"},
};
INSTANTIATE_TEST_SUITE_P(Row, Printable, testing::ValuesIn(rows));

TEST(Printable, AppendsToWhatIsThere) {
  std::string text = "a";
  Trace::appendPrintable(text, "\x01");
  EXPECT_EQ(text, "a\\x01");
}

TEST(Printable, DifferentTextsOfTwoOctetsHaveDifferentResults) {
  std::set<std::string> results;
  for (int first = 0; first < 256; ++first)
    for (int second = 0; second < 256; ++second)
      results.insert(printable(std::string{static_cast<char>(first), static_cast<char>(second)}));
  EXPECT_EQ(results.size(), 65536u);
}

}  // namespace

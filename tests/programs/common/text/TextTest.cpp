#include <gtest/gtest.h>

#include <programs/common/text/Text.h>

namespace Tool {

namespace {

TEST(InQuotes, KeepsATextAsItIs) { EXPECT_EQ(inQuotes("a\\\x1b"), "\"a\\\x1b\""); }

TEST(InQuotes, CutsALongText) {
  EXPECT_EQ(inQuotes(std::string(80, 'a')), '"' + std::string(80, 'a') + '"');
  EXPECT_EQ(inQuotes(std::string(81, 'a')), '"' + std::string(80, 'a') + "...\"");
}

TEST(InQuotes, CutsBetweenCharacters) {
  EXPECT_EQ(inQuotes(std::string(79, 'a') + "\xc3\xbc"), '"' + std::string(79, 'a') + "...\"");
  EXPECT_EQ(inQuotes(std::string(78, 'a') + "\xc3\xbc!"), '"' + std::string(78, 'a') + "\xc3\xbc...\"");
}

TEST(DisplayWidth, CountsColumns) {
  EXPECT_EQ(displayWidth(""), 0u);
  EXPECT_EQ(displayWidth("eth0"), 4u);
  EXPECT_EQ(displayWidth("M\xc3\xbcller"), 6u);
  EXPECT_EQ(displayWidth("\xe6\x9d\xb1\xe4\xba\xac"), 4u);  // two ideographs
  EXPECT_EQ(displayWidth("u\xcc\x88"), 1u);                 // a letter and a combining diaeresis
}

TEST(DisplayWidth, CountsAColumnForEachOctetThatIsNoCharacter) {
  EXPECT_EQ(displayWidth("a\xff\x9b"
                         "b"),
            4u);
  EXPECT_EQ(displayWidth("\xc3"), 1u);
  EXPECT_EQ(displayWidth(std::string(2, '\0')), 2u);
}

TEST(Padded, FillsUpToColumns) {
  EXPECT_EQ(padded("M\xc3\xbc", 4) + '|', "M\xc3\xbc  |");
  EXPECT_EQ(padded("\xe6\x9d\xb1", 4) + '|', "\xe6\x9d\xb1  |");
  EXPECT_EQ(padded("abcde", 4), "abcde");
}

}  // namespace

}  // namespace Tool

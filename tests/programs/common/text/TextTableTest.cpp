#include <gtest/gtest.h>

#include <programs/common/text/TextTable.h>

namespace Tool {

namespace {

TEST(TextTable, AlignsColumnsAndEndsLinesWithoutBlanks) {
  TextTable table({"name", "value"});
  table.add({"a", "1"});
  table.add({"longer", ""});
  EXPECT_EQ(table.text(), "name    value\na       1\nlonger\n");
}

TEST(TextTable, AlignsByTheColumnsOfATerminal) {
  TextTable table({"intf", "x"});
  table.add({"b\xc3\xbcro", "1"});                           // 4 columns, 5 octets
  table.add({"\xe6\x9d\xb1\xe4\xba\xac\xe9\x83\xbd", "2"});  // 6 columns, 9 octets
  EXPECT_EQ(table.text(),
            "intf    x\n"
            "b\xc3\xbcro    1\n"
            "\xe6\x9d\xb1\xe4\xba\xac\xe9\x83\xbd  2\n");
}

TEST(TextTable, WithoutTitlesHasNoHeaderLine) {
  TextTable table({"", ""});
  table.add({"a", "b"});
  EXPECT_EQ(table.text(), "a  b\n");
}

}  // namespace

}  // namespace Tool

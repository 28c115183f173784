#include <programs/common/text/FileText.h>
#include <tests/programs/Support/TemporaryFolder.h>

#include <gtest/gtest.h>

namespace Tool {

namespace {

struct FileTextTest : testing::Test {
  ToolTest::TemporaryFolder folder;
};

TEST_F(FileTextTest, IsWhatTheFileHolds) {
  std::string const octets = std::string(100000, 'x') + '\0' + "\n";
  FileText const read = readFileText(folder.write("file", octets));
  EXPECT_EQ(read.text, octets);
  EXPECT_EQ(read.error, "");
}

TEST_F(FileTextTest, OfNoFileSaysWhy) {
  EXPECT_EQ(readFileText(folder / "nowhere").error, "cannot be opened: No such file or directory");
  EXPECT_EQ(readRegularFileText(folder / "nowhere").error, "cannot be opened: No such file or directory");
}

TEST_F(FileTextTest, OfAFolderSaysWhy) {
  EXPECT_EQ(readFileText(folder / ".").error, "cannot be read: Is a directory");
  EXPECT_EQ(readRegularFileText(folder / ".").error, "is not a regular file");
}

TEST_F(FileTextTest, OfARegularFileMayBeLimited) {
  std::string const name = folder.write("file", "12345");
  EXPECT_EQ(readRegularFileText(name, 5).text, "12345");
  EXPECT_EQ(readRegularFileText(name, 4).error, "has more than 4 octets");
  EXPECT_EQ(readRegularFileText(name, 4).text, "");
}

}  // namespace

}  // namespace Tool

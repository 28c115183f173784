#include <programs/common/linux/FileWatch.h>
#include <tests/programs/Support/TemporaryFolder.h>

#include <poll.h>

#include <gtest/gtest.h>

namespace Tool {

namespace {

struct FileWatchTest : testing::Test {
  ToolTest::TemporaryFolder folder;
  std::string const file = folder.write("file", "1");
  FileWatch watch{file};

  /// Whether something has happened since the last call.
  bool happened() {
    pollfd source{watch.descriptor(), POLLIN, 0};
    bool const result = poll(&source, 1, 0) == 1;
    watch.restart();
    return result;
  }
};

TEST_F(FileWatchTest, IsQuietAtFirst) { EXPECT_FALSE(happened()); }

TEST_F(FileWatchTest, TellsOfAFileThatIsWritten) {
  folder.write("file", "2");
  EXPECT_TRUE(happened());
  EXPECT_FALSE(happened());
}

TEST_F(FileWatchTest, TellsOfAFileThatIsReplaced) {
  std::filesystem::rename(folder.write("new", "2"), file);
  EXPECT_TRUE(happened());
  folder.write("file", "3");
  EXPECT_TRUE(happened()) << "the new file is watched like the old one";
}

TEST_F(FileWatchTest, TellsOfAFileThatGoesAndComes) {
  std::filesystem::remove(file);
  EXPECT_TRUE(happened());
  folder.write("file", "2");
  EXPECT_TRUE(happened());
}

TEST_F(FileWatchTest, WaitsForTheEndOfWriting) {
  std::ofstream writing(file);
  writing << "2" << std::flush;
  EXPECT_FALSE(happened());
  writing.close();
  EXPECT_TRUE(happened());
}

TEST_F(FileWatchTest, TellsOfTheFileThatALinkLeadsTo) {
  std::string const target = folder.write("elsewhere/target", "1");
  std::filesystem::create_symlink(target, folder / "link");
  watch = FileWatch(folder / "link");
  EXPECT_FALSE(happened());
  folder.write("elsewhere/target", "2");
  EXPECT_TRUE(happened());
}

TEST_F(FileWatchTest, FindsADirectoryThatHasTakenThePlaceOfAnother) {
  watch = FileWatch(folder.write("sub/file", "1"));
  std::filesystem::remove_all(folder / "sub");
  folder.write("sub/file", "2");
  watch.restart();
  EXPECT_FALSE(happened());
  folder.write("sub/file", "3");
  EXPECT_TRUE(happened());
  std::filesystem::rename(folder / "sub", folder / "former");
  folder.write("sub/file", "4");
  watch.lookAgain();
  happened();
  folder.write("sub/file", "5");
  EXPECT_TRUE(happened());
}

TEST_F(FileWatchTest, OfAFileThatIsNotThereYetTellsWhenItComes) {
  watch = FileWatch(folder / "later");
  EXPECT_FALSE(happened());
  folder.write("later", "1");
  EXPECT_TRUE(happened());
}

}  // namespace

}  // namespace Tool

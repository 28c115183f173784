#include <programs/common/mirror/SocketPath.h>
#include <programs/common/text/Failure.h>
#include <tests/programs/Support/TemporaryFolder.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cerrno>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Tool {

namespace {

struct SocketPathTest : testing::Test {
  ToolTest::TemporaryFolder folder;
  std::string const path = folder / "socket";

  static int errorOfConnecting(std::string const& path) {
    int error = 0;
    (void)connectTo(path, error);
    return error;
  }
  std::string failureOf(std::string const& where) {
    try {
      SocketPath const claimed(where);
    } catch (Failure const& failure) {
      return failure.what();
    }
    return "none";
  }
};

TEST_F(SocketPathTest, IsThereForOthersWhileItLives) {
  EXPECT_EQ(errorOfConnecting(path), ENOENT);
  {
    SocketPath const claimed(path);
    EXPECT_EQ(errorOfConnecting(path), 0);
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(SocketPathTest, ASecondOneIsRefusedAndTheFirstOneStays) {
  SocketPath const claimed(path);
  EXPECT_EQ(failureOf(path), path + ": another server listens there");
  EXPECT_EQ(errorOfConnecting(path), 0);
}

TEST_F(SocketPathTest, WhatAProcessLeftBehindIsReplaced) {
  {
    SocketPath claimed(path);
    std::filesystem::rename(path, path + ".kept");  // as if the process had been killed
  }
  std::filesystem::rename(path + ".kept", path);
  EXPECT_EQ(errorOfConnecting(path), ECONNREFUSED);
  SocketPath const again(path);
  EXPECT_EQ(errorOfConnecting(path), 0);
}

TEST_F(SocketPathTest, AnythingElseStaysAsItIs) {
  folder.write("socket", "precious");
  EXPECT_EQ(failureOf(path), path + ": there is something that is no socket");
  EXPECT_EQ(std::filesystem::file_size(path), 8u);
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  EXPECT_EQ(failureOf(path), path + ": there is something that is no socket");
}

TEST_F(SocketPathTest, ALinkIsNotFollowed) {
  SocketPath const other(folder / "other");
  std::filesystem::create_symlink(folder / "other", path);
  EXPECT_EQ(failureOf(path), path + ": there is something that is no socket");
}

TEST_F(SocketPathTest, AnotherOneInItsPlaceIsNotRemoved) {
  {
    SocketPath const claimed(path);
    std::filesystem::remove(path);
    folder.write("socket", "another");
  }
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(SocketPathTest, ALockThatAnotherHoldsIsWaitedForAWhileOnly) {
  folder.write("socket.lock", "");
  FileDescriptor const lock(open((path + ".lock").c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(flock(lock.get(), LOCK_EX), 0);
  EXPECT_EQ(failureOf(path), path + ": another process has locked " + path + ".lock for 2 seconds");
  flock(lock.get(), LOCK_UN);
  EXPECT_EQ(failureOf(path), "none");
}

TEST_F(SocketPathTest, ALockOfTheDirectoryHoldsNothingUp) {
  FileDescriptor const lock(open((folder / "").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  ASSERT_EQ(flock(lock.get(), LOCK_EX), 0);
  EXPECT_EQ(failureOf(path), "none");
}

TEST_F(SocketPathTest, ItsLockIsGoneOnceItListens) {
  SocketPath const claimed(path);
  EXPECT_FALSE(std::filesystem::exists(path + ".lock"));
}

TEST_F(SocketPathTest, ALinkInTheLocksPlaceIsNotFollowed) {
  std::filesystem::create_symlink(folder / "made", path + ".lock");
  EXPECT_THAT(failureOf(path), testing::StartsWith(path + ": " + path + ".lock cannot be opened: "));
  EXPECT_FALSE(std::filesystem::exists(folder / "made"));
}

TEST_F(SocketPathTest, IsForOwnerAndGroupWhateverTheUmask) {
  for (auto const& [mask, mode] : {std::pair(0, 0660), std::pair(022, 0640), std::pair(077, 0600)}) {
    mode_t const before = umask(static_cast<mode_t>(mask));
    SocketPath const claimed(path);
    umask(before);
    struct stat made {};
    ASSERT_EQ(lstat(path.c_str(), &made), 0);
    EXPECT_EQ(made.st_mode & 07777, static_cast<mode_t>(mode)) << "umask " << mask;
  }
}

TEST_F(SocketPathTest, HasToFitAnAddress) {
  EXPECT_THAT(failureOf(std::string(108, 'x')), testing::EndsWith(": a path of 1 to 107 octets is meant"));
  EXPECT_THAT(failureOf(""), testing::EndsWith(": a path of 1 to 107 octets is meant"));
  EXPECT_EQ(errorOfConnecting(std::string(108, 'x')), ENAMETOOLONG);
}

TEST_F(SocketPathTest, ItsFolderHasToBeThere) {
  EXPECT_EQ(failureOf(folder / "none/socket"), folder / "none/socket" + ": " + (folder / "none/socket") +
                                                   ".lock cannot be opened: No such file or directory");
}

}  // namespace

}  // namespace Tool

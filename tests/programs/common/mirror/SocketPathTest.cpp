#include <programs/common/mirror/SocketPath.h>
#include <programs/common/text/Failure.h>
#include <tests/programs/Support/TemporaryFolder.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>

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
  FileDescriptor const lock(open(folder.operator/("").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  ASSERT_EQ(flock(lock.get(), LOCK_EX), 0);
  EXPECT_EQ(failureOf(path), path + ": another process has locked its directory for 2 seconds");
  flock(lock.get(), LOCK_UN);
  EXPECT_EQ(failureOf(path), "none");
}

TEST_F(SocketPathTest, HasToFitAnAddress) {
  EXPECT_THAT(failureOf(std::string(108, 'x')), testing::EndsWith(": a path of 1 to 107 octets is meant"));
  EXPECT_THAT(failureOf(""), testing::EndsWith(": a path of 1 to 107 octets is meant"));
  EXPECT_EQ(errorOfConnecting(std::string(108, 'x')), ENAMETOOLONG);
}

TEST_F(SocketPathTest, ItsFolderHasToBeThere) {
  EXPECT_EQ(failureOf(folder / "none/socket"),
            folder / "none/socket" + ": its directory cannot be opened: No such file or directory");
}

}  // namespace

}  // namespace Tool

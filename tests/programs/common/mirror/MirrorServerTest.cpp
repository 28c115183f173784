#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>
#include <programs/common/mirror/MirrorServer.h>

#include <tests/programs/Support/TemporaryFolder.h>

#include <poll.h>
#include <sys/socket.h>

#include <array>

#include <gtest/gtest.h>

namespace Tool {

namespace {

using namespace std::chrono_literals;

/// A server with places for two mirrors. When another one waits, none may leave octets unread for any time.
struct MirrorServerTest : testing::Test {
  ToolTest::TemporaryFolder folder;
  std::string const path = folder / "socket";
  asio::io_context context;
  SocketPath socketPath{path};
  Fwk::Ptr<RouterAdvt::Config> const config = RouterAdvt::configFactory("ra");
  MirrorServer server{context, socketPath, {config}, {.sessions = 2, .silence = 0s}};

  FileDescriptor mirror() const {
    int error = 0;
    FileDescriptor connection = connectTo(path, error);
    EXPECT_EQ(error, 0);
    return connection;
  }
  static bool readable(FileDescriptor const& connection) {
    pollfd polled{connection.get(), POLLIN, 0};
    return poll(&polled, 1, 0) == 1;
  }
  /// Runs the server until there is something to read.
  bool served(FileDescriptor const& connection) {
    auto const deadline = std::chrono::steady_clock::now() + 20s;
    while (!readable(connection) && std::chrono::steady_clock::now() < deadline) context.run_one_for(100ms);
    return readable(connection);
  }
  /// Reads the octets that have arrived; false if the connection has ended.
  static bool readAll(FileDescriptor const& connection) {
    std::array<char, 65536> octets;
    ssize_t size = 0;
    while ((size = recv(connection.get(), octets.data(), octets.size(), MSG_DONTWAIT)) > 0) {
    }
    return size != 0;
  }
};

TEST_F(MirrorServerTest, WhenItIsFullTheLongestSilentMirrorEndsForOneThatWaits) {
  FileDescriptor const silentFirst = mirror();
  ASSERT_TRUE(served(silentFirst));
  FileDescriptor const silentSecond = mirror();
  ASSERT_TRUE(served(silentSecond));
  FileDescriptor const waiting = mirror();
  EXPECT_TRUE(served(waiting));
  EXPECT_FALSE(readAll(silentFirst));
  EXPECT_TRUE(readAll(silentSecond));
}

TEST_F(MirrorServerTest, WhenItIsFullMirrorsThatReadStayAndOthersWait) {
  FileDescriptor first = mirror();
  ASSERT_TRUE(served(first));
  readAll(first);
  FileDescriptor const second = mirror();
  ASSERT_TRUE(served(second));
  readAll(second);
  FileDescriptor const waiting = mirror();
  for (int i = 0; i < 20; ++i) context.poll_one();
  EXPECT_FALSE(readable(waiting));
  EXPECT_TRUE(readAll(second));
  first = FileDescriptor(-1);
  EXPECT_TRUE(served(waiting));
}

}  // namespace

}  // namespace Tool

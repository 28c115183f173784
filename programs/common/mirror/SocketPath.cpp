#include <programs/common/mirror/SocketPath.h>
#include <programs/common/text/Failure.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <optional>
#include <thread>

namespace Tool {

namespace {

[[noreturn]] void fail(std::string const& path, std::string const& why) { throw Failure(path + ": " + why); }

/// Nothing when the path is too long, or empty.
std::optional<sockaddr_un> addressOf(std::string const& path) {
  sockaddr_un address{};
  if (path.empty() || path.size() >= sizeof address.sun_path) return std::nullopt;
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, path.size());
  return address;
}

FileDescriptor newSocket() { return FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)); }

/// Holds the directory of a path, so that one process at a time looks at the path and takes it.
FileDescriptor lockDirectoryOf(std::string const& path) {
  auto const directory = std::filesystem::path(path).parent_path();
  FileDescriptor lock(open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (lock.get() < 0) fail(path, std::string("its directory cannot be opened: ") + std::strerror(errno));
  for (int tries = 0; flock(lock.get(), LOCK_EX | LOCK_NB) != 0; ++tries) {
    if (tries == 100) fail(path, "another process has locked its directory for 2 seconds");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return lock;
}

/// Removes what another process has left at `path`; fails when it is in use, or no socket.
void clear(std::string const& path) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0) return;
  if (!S_ISSOCK(found.st_mode)) fail(path, "there is something that is no socket");
  int error = 0;
  FileDescriptor const connection = connectTo(path, error);
  // A server whose queue is full listens, too.
  if (connection.get() >= 0 || error == EAGAIN) fail(path, "another server listens there");
  if (error != ECONNREFUSED)
    fail(path, std::string("there is a socket, and it cannot be tried: ") + std::strerror(error));
  unlink(path.c_str());
}

}  // namespace

bool isSocket(std::string const& path) {
  struct stat found {};
  return stat(path.c_str(), &found) != 0 || S_ISSOCK(found.st_mode);
}

FileDescriptor connectTo(std::string const& path, int& error) {
  auto const address = addressOf(path);
  FileDescriptor connection = newSocket();
  bool const done = address && connection.get() >= 0 &&
                    connect(connection.get(), reinterpret_cast<sockaddr const*>(&*address), sizeof *address) == 0;
  error = done ? 0 : address ? errno : ENAMETOOLONG;
  return done ? std::move(connection) : FileDescriptor(-1);
}

SocketPath::SocketPath(std::string path) : path_(std::move(path)), listener_(newSocket()) {
  if (!addressOf(path_)) fail(path_, "a path of 1 to 107 octets is meant");
  FileDescriptor const lock = lockDirectoryOf(path_);
  clear(path_);
  bindAndListen();
}

void SocketPath::bindAndListen() {
  auto const address = addressOf(path_);
  if (bind(listener_.get(), reinterpret_cast<sockaddr const*>(&*address), sizeof *address) != 0 ||
      listen(listener_.get(), SOMAXCONN) != 0)
    fail(path_, std::string("no socket can be made there: ") + std::strerror(errno));
  struct stat made {};
  lstat(path_.c_str(), &made);
  device_ = made.st_dev;
  inode_ = made.st_ino;
}

SocketPath::~SocketPath() {
  struct stat found {};
  if (lstat(path_.c_str(), &found) == 0 && found.st_dev == device_ && found.st_ino == inode_) unlink(path_.c_str());
}

}  // namespace Tool

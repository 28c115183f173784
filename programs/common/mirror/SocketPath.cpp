#include <programs/common/mirror/SocketPath.h>
#include <programs/common/text/Failure.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
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

/// A locked file beside the socket, for as long as this process looks at the path and takes it. Only its owner can open
/// it, so no other user can hold up the server.
class PathLock {
 public:
  explicit PathLock(std::string const& path) : path_(path), name_(path + ".lock") {
    constexpr int triesMax = 100;  // 2 seconds: the lock is held for a few system calls
    for (int tries = 0; !take(); ++tries) {
      if (tries == triesMax) fail(path_, "another process has locked " + name_ + " for 2 seconds");
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }
  PathLock(PathLock const&) = delete;
  PathLock& operator=(PathLock const&) = delete;
  ~PathLock() { unlink(name_.c_str()); }

 private:
  /// False: another process has it, or had it and has removed the file meanwhile.
  bool take() {
    file_ = FileDescriptor(open(name_.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    struct stat opened {};
    struct stat named {};
    if (file_.get() < 0 || fstat(file_.get(), &opened) != 0)
      fail(path_, name_ + " cannot be opened: " + std::strerror(errno));
    if (opened.st_uid != geteuid()) fail(path_, name_ + " belongs to another user");
    return flock(file_.get(), LOCK_EX | LOCK_NB) == 0 && lstat(name_.c_str(), &named) == 0 &&
           named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
  }

  std::string path_;
  std::string name_;
  FileDescriptor file_{-1};
};

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
  PathLock const lock(path_);
  clear(path_);
  bindAndListen();
}

void SocketPath::bindAndListen() {
  auto const address = addressOf(path_);
  // For owner and group, less what the umask takes away. Before bind(), which makes the file with this mode.
  constexpr mode_t mode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP;
  if (fchmod(listener_.get(), mode) != 0 ||
      bind(listener_.get(), reinterpret_cast<sockaddr const*>(&*address), sizeof *address) != 0 ||
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

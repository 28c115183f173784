#pragma once

#include <programs/common/text/FileDescriptor.h>

#include <sys/types.h>

#include <string>

namespace Tool {

/// A socket in the file system that this process listens on: made if no process listens there, removed at the end.
class SocketPath {
 public:
  /// Replaces a socket that a process has left behind. The new one is for its owner and, as far as the umask lets it,
  /// for its group. Throws `Failure` when another server listens there, when the path is something other than a socket,
  /// or when the socket cannot be made.
  explicit SocketPath(std::string path);
  SocketPath(SocketPath const&) = delete;
  SocketPath& operator=(SocketPath const&) = delete;
  /// Removes the socket, unless another file has taken its place.
  ~SocketPath();

  /// The listening socket, nonblocking. The caller owns it. Call it once.
  FileDescriptor takeListener() { return std::move(listener_); }

 private:
  void bindAndListen();

  std::string path_;
  FileDescriptor listener_;
  dev_t device_ = 0;
  ino_t inode_ = 0;
};

/// Whether there is a socket at `path`, or a link to one, or nothing.
bool isSocket(std::string const& path);

/// A connection to the socket at `path`, nonblocking. Without one: a negative descriptor, and why in `error`, an errno.
FileDescriptor connectTo(std::string const& path, int& error);

}  // namespace Tool

#pragma once

#include <unistd.h>

#include <utility>

namespace Tool {

/// Owns a file descriptor. A negative number stands for no descriptor.
class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) noexcept : fd_(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~FileDescriptor() {
    if (fd_ >= 0) close(fd_);
  }
  int get() const noexcept { return fd_; }
  /// Passes the descriptor to the caller, who has to close it.
  int release() noexcept { return std::exchange(fd_, -1); }

 private:
  int fd_;
};

}  // namespace Tool

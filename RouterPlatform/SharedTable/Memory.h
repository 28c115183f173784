#pragma once

#include <RouterPlatform/SharedTable/Format.h>

#include <cstddef>
#include <utility>

namespace SharedTable {

/// A file descriptor that closes itself.
class Fd {
 public:
  Fd() = default;
  explicit Fd(int fd) noexcept : fd_(fd) {}
  Fd(Fd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Fd& operator=(Fd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Fd();

  int get() const noexcept { return fd_; }
  explicit operator bool() const noexcept { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

/// Octets of a table: the process's own or a file's. The whole size is mapped at once; space comes with `reserve`, and
/// what has none is not touched. Operations return 0 or an errno value.
class Memory {
 public:
  Memory() = default;
  Memory(Memory&& other) noexcept
      : fd_(std::move(other.fd_)), base_(std::exchange(other.base_, nullptr)), size_(std::exchange(other.size_, 0)) {}
  Memory& operator=(Memory&& other) noexcept {
    std::swap(fd_, other.fd_);
    std::swap(base_, other.base_);
    std::swap(size_, other.size_);
    return *this;
  }
  ~Memory();

  /// Seen by this process only.
  int mapPrivate(U64 size) noexcept;
  /// A file's, for the writer; makes the file `size` octets long, without space.
  int mapFile(Fd file, U64 size) noexcept;
  /// A file's, for a reader: the pages are mapped read-only.
  int mapReadOnly(Fd file, U64 size) noexcept;

  /// Space for `size` octets at `offset`; they are zero if they had none before. Allocated in the file system, so that
  /// a store never meets a full one.
  int reserve(U64 offset, U64 size) noexcept;

  /// Lets huge pages stand where they fit in wholly between `begin` and `end`, all of which has space: a table of many
  /// rows is read at random, and its address translations alone take longer than its octets. Best effort.
  void joinPages(U64 begin, U64 end) noexcept;

  bool isFile() const noexcept { return static_cast<bool>(fd_); }
  int fd() const noexcept { return fd_.get(); }
  std::byte* base() const noexcept { return base_; }
  U64 size() const noexcept { return size_; }

 private:
  int map(U64 size, int protection, int flags) noexcept;

  Fd fd_;
  std::byte* base_ = nullptr;
  U64 size_ = 0;
};

}  // namespace SharedTable

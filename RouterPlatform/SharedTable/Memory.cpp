#include <RouterPlatform/SharedTable/Memory.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

namespace SharedTable {

Fd::~Fd() {
  if (fd_ >= 0) close(fd_);
}

Memory::~Memory() {
  if (base_) munmap(base_, size_);
}

/// At an address that is a multiple of a huge page, as the offsets of huge pages in a file are.
int Memory::map(U64 size, int protection, int flags) noexcept {
  void* const room = mmap(nullptr, size + hugePageSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (room == MAP_FAILED) return errno;
  std::size_t const before = (hugePageSize - reinterpret_cast<std::uintptr_t>(room) % hugePageSize) % hugePageSize;
  std::byte* const begin = static_cast<std::byte*>(room) + before;
  void* const base = mmap(begin, size, protection, flags | MAP_FIXED, fd_.get(), 0);
  int const error = base == MAP_FAILED ? errno : 0;
  U64 const page = static_cast<U64>(sysconf(_SC_PAGESIZE));
  U64 const mapped = error != 0 ? 0 : (size + page - 1) / page * page;
  if (before > 0) munmap(room, before);
  munmap(begin + mapped, size + hugePageSize - before - mapped);
  if (error != 0) return error;
  base_ = static_cast<std::byte*>(base);
  size_ = size;
  return 0;
}

void Memory::joinPages(U64 begin, U64 end) noexcept {
  constexpr int collapse = 25;  // docs/adr/0010. MADV_COLLAPSE, Linux 6.1; others refuse it
  begin = (begin + hugePageSize - 1) / hugePageSize * hugePageSize;
  end = end / hugePageSize * hugePageSize;
  int const before = errno;
  if (begin < end) madvise(base_ + begin, end - begin, collapse);
  errno = before;
}

int Memory::mapPrivate(U64 size) noexcept { return map(size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE); }

int Memory::mapFile(Fd file, U64 size) noexcept {
  // Above the limit on the size of files the call would end the process with a signal.
  struct rlimit limit {};
  if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && size > limit.rlim_cur) return EFBIG;
  if (ftruncate(file.get(), static_cast<off_t>(size)) != 0) return errno;
  fd_ = std::move(file);
  return map(size, PROT_READ | PROT_WRITE, MAP_SHARED);
}

int Memory::mapReadOnly(Fd file, U64 size) noexcept {
  fd_ = std::move(file);
  return map(size, PROT_READ, MAP_SHARED);
}

int Memory::reserve(U64 offset, U64 size) noexcept {
  if (!isFile()) {
    U64 const page = static_cast<U64>(sysconf(_SC_PAGESIZE));
    U64 const begin = offset / page * page;
    return mprotect(base_ + begin, offset + size - begin, PROT_READ | PROT_WRITE) == 0 ? 0 : errno;
  }
  // In pieces: a signal makes tmpfs give back what the interrupted call had allocated.
  constexpr U64 piece = U64{1} << 20;
  for (U64 const end = offset + size; offset < end;) {
    U64 const count = std::min(piece, end - offset);
    int const error = posix_fallocate(fd_.get(), static_cast<off_t>(offset), static_cast<off_t>(count));
    if (error == EINTR) continue;
    if (error != 0) return error;
    offset += count;
  }
  return 0;
}

}  // namespace SharedTable

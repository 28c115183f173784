#include <RouterPlatform/SharedTable/FileIo.h>

#include <fcntl.h>
#include <linux/futex.h>
#include <pthread.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

namespace SharedTable::FileIo {
namespace {

bool isTrusted(struct stat const& status, Owner owner) noexcept {
  bool const ownerIsTrusted =
      status.st_uid == 0 || status.st_uid == geteuid() || (owner.has_value() && status.st_uid == *owner);
  return ownerIsTrusted && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

Error notTrusted(std::string const& what, char const* why) { return {Errc::notTrusted, 0, what + ": " + why}; }

/// Opens one directory below `parent` (or absolute, with AT_FDCWD).
Error openStep(int parent, std::string const& name, bool create, Owner owner, Fd& out) {
  bool const created = create && mkdirat(parent, name.c_str(), 0755) == 0;
  if (create && !created && errno != EEXIST) return systemFailure(errno, name);
  Fd directory(openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!directory) {
    if (errno == ENOENT) return {Errc::noTable, ENOENT, name + ": no such directory"};
    if (errno == ELOOP || errno == ENOTDIR) return notTrusted(name, "not a directory");
    return systemFailure(errno, name);
  }
  struct stat status {};
  if (fstat(directory.get(), &status) != 0) return systemFailure(errno, name);
  if (!isTrusted(status, owner)) return notTrusted(name, "directory of a foreign owner, or others may write it");
  // Readers get there whatever the umask says. What was put in the place of our directory meanwhile stays as it is.
  if (created && status.st_uid == geteuid() && fchmod(directory.get(), (status.st_mode & 07000) | 0755) != 0)
    return systemFailure(errno, name);
  out = std::move(directory);
  return {};
}

struct flock firstOctet(short kind) noexcept {
  struct flock lock {};
  lock.l_type = kind;
  lock.l_whence = SEEK_SET;
  lock.l_len = 1;
  return lock;
}

struct timespec now(clockid_t clock) noexcept {
  struct timespec time {};
  clock_gettime(clock, &time);
  return time;
}

U64 nanoseconds(struct timespec const& time) noexcept {
  return static_cast<U64>(time.tv_sec) * 1000000000U + static_cast<U64>(time.tv_nsec);
}

/// Room for a boot id (36 characters) and for the first 22 fields of /proc/PID/stat.
using SmallFile = std::array<char, 1024>;

/// The text, which stands in `buffer` with a zero octet behind it: no memory is needed.
std::string_view readSmallFile(char const* path, SmallFile& buffer) noexcept {
  Fd const file(open(path, O_RDONLY | O_CLOEXEC));
  ssize_t const size = file ? read(file.get(), buffer.data(), buffer.size() - 1) : -1;
  std::size_t const octets = size > 0 ? static_cast<std::size_t>(size) : 0;
  buffer[octets] = '\0';
  return {buffer.data(), octets};
}

}  // namespace

std::string chosenDirectory(std::string option) {
  if (option.empty())
    if (char const* const set = secure_getenv("SHARED_TABLE_DIR")) option = set;
  while (option.size() > 1 && option.back() == '/') option.pop_back();
  return option;
}

std::string directoryThere(std::string const& preferred, std::string const& fallback) {
  struct stat status {};
  return lstat(preferred.c_str(), &status) == 0 && S_ISDIR(status.st_mode) ? preferred : fallback;
}

std::string tableDirectory(std::string const& chosen) {
  return chosen.empty() ? directoryThere("/run/router-shared-tables", "/dev/shm/router-shared-tables") : chosen;
}

bool namesAreSound(std::string_view mountPath, std::string_view collection) noexcept {
  constexpr std::size_t nameSizeMax = 200;  // a file name has at most 255 octets (NAME_MAX); the suffix has room
  auto const nameIsSound = [](std::string_view name) {
    return !name.empty() && name.front() != '.' && name.size() <= nameSizeMax &&
           name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
  };
  while (true) {
    std::size_t const slash = mountPath.find('/');
    if (!nameIsSound(mountPath.substr(0, slash))) return false;
    if (slash == std::string_view::npos) break;
    mountPath.remove_prefix(slash + 1);
  }
  return nameIsSound(collection);
}

Error systemFailure(int systemError, std::string const& what) {
  bool const noSpace = systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG;
  Errc const code = noSpace ? Errc::noSpace : Errc::system;
  return {code, systemError, what + ": " + strerrordesc_np(systemError)};
}

Error openDirectory(std::string const& base, std::string_view mountPath, bool create, Owner owner, Fd& out) {
  Fd directory;
  if (Error error = openStep(AT_FDCWD, base, create, owner, directory)) return error;
  while (!mountPath.empty()) {
    std::size_t const slash = mountPath.find('/');
    std::string const name(mountPath.substr(0, slash));
    mountPath.remove_prefix(slash == std::string_view::npos ? mountPath.size() : slash + 1);
    Fd next;
    if (Error error = openStep(directory.get(), name, create, owner, next)) return error;
    directory = std::move(next);
  }
  out = std::move(directory);
  return {};
}

Error openTrusted(Fd const& directory, std::string const& name, int flags, Owner owner, Fd& out) {
  // Not blocking: what stands there may be a pipe.
  Fd file(openat(directory.get(), name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600));
  if (!file) {
    if (errno == ENOENT) return {Errc::noTable, ENOENT, name + ": no such file"};
    if (errno == ELOOP) return notTrusted(name, "a symbolic link");
    return systemFailure(errno, name);
  }
  struct stat status {};
  if (fstat(file.get(), &status) != 0) return systemFailure(errno, name);
  if (!S_ISREG(status.st_mode)) return notTrusted(name, "not a regular file");
  if (!isTrusted(status, owner)) return notTrusted(name, "file of a foreign owner, or others may write it");
  out = std::move(file);
  return {};
}

bool namesFile(Fd const& directory, std::string const& name, int file) noexcept {
  struct stat named {};
  struct stat opened {};
  return fstatat(directory.get(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && fstat(file, &opened) == 0 &&
         named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

Error findName(std::string const& base, std::string_view mountPath, std::string const& name, Owner owner, int file,
               bool& named) {
  named = false;
  Fd directory;
  if (Error error = openDirectory(base, mountPath, false, owner, directory))
    return error.code == Errc::noTable ? Error{} : error;
  named = namesFile(directory, name, file);
  return {};
}

int lockForWriting(int file) noexcept {
  struct flock lock = firstOctet(F_WRLCK);
  if (fcntl(file, F_OFD_SETLK, &lock) == 0) return 0;
  return errno == EACCES ? EAGAIN : errno;  // POSIX leaves the choice
}

int findWriteLock(int file, bool& held) noexcept {
  struct flock lock = firstOctet(F_RDLCK);  // what stands in the way of reading is a write lock
  if (fcntl(file, F_OFD_GETLK, &lock) != 0) return errno;
  held = lock.l_type == F_WRLCK;
  return 0;
}

bool isLockedForWriting(int file) noexcept {
  bool held = false;
  return findWriteLock(file, held) == 0 && held;
}

void wait(std::atomic<U32> const& word, U32 value, int milliseconds) noexcept {
  struct timespec const limit{milliseconds / 1000, milliseconds % 1000 * 1000000L};
  // The shared operation, not FUTEX_PRIVATE_FLAG: waker and waiter are different processes.
  syscall(SYS_futex, reinterpret_cast<U32 const*>(&word), FUTEX_WAIT, value, &limit, nullptr, 0);
}

int wakeAll(std::atomic<U32> const& word) noexcept {
  long const woken = syscall(SYS_futex, reinterpret_cast<U32 const*>(&word), FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0);
  return woken > 0 ? static_cast<int>(woken) : 0;
}

U64 forkCount() {
  // Relaxed and without partners: the handler runs in a child that has one thread yet.
  static std::atomic<U64> forks{0};
  static bool const counting =
      pthread_atfork(nullptr, nullptr, [] { forks.fetch_add(1, std::memory_order_relaxed); }) == 0;
  if (!counting) throw std::bad_alloc();
  return forks.load(std::memory_order_relaxed);
}

std::array<U8, 16> bootId() noexcept {
  std::array<U8, 16> id{};
  std::size_t digits = 0;
  SmallFile buffer;
  for (char const c : readSmallFile("/proc/sys/kernel/random/boot_id", buffer)) {
    int const digit = c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
    if (digit < 0 || digits == 32) continue;
    id[digits / 2] = static_cast<U8>(id[digits / 2] << 4 | digit);
    ++digits;
  }
  return id;
}

U64 processStartTime() noexcept {
  SmallFile buffer;
  std::string_view const status = readSmallFile("/proc/self/stat", buffer);
  std::size_t at = status.rfind(')');  // the name in parentheses may hold anything
  if (at == std::string_view::npos) return 0;
  constexpr int startTimeField = 22;  // proc_pid_stat(5); the name is field 2
  for (int field = 2; field < startTimeField && at != std::string_view::npos; ++field) at = status.find(' ', at + 1);
  return at == std::string_view::npos ? 0 : std::strtoull(status.data() + at, nullptr, 10);
}

U64 realtime() noexcept { return nanoseconds(now(CLOCK_REALTIME)); }
U64 coarseRealtime() noexcept { return nanoseconds(now(CLOCK_REALTIME_COARSE)); }

void fillRandom(void* out, std::size_t size) noexcept {
  if (getrandom(out, size, 0) == static_cast<ssize_t>(size)) return;
  // Up to 256 octets it does not fail once the kernel has its seed; the time is better than nothing before that.
  auto* octets = static_cast<U8*>(out);
  U64 state = realtime();  // of a linear congruential generator, with the multiplier of Knuth's MMIX
  for (std::size_t i = 0; i < size; ++i) octets[i] = static_cast<U8>((state = state * 6364136223846793005U + 1) >> 56);
}

}  // namespace SharedTable::FileIo

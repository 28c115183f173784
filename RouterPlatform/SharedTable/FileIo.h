#pragma once

#include <RouterPlatform/SharedTable/Error.h>
#include <RouterPlatform/SharedTable/Memory.h>

#include <sys/types.h>

#include <atomic>
#include <optional>
#include <string>
#include <string_view>

/// Services of the operating system that tables use: directories and files that can be trusted, locks, waiting.
namespace SharedTable::FileIo {

/// User who may own a table and its directories, besides root and this process's effective user.
using Owner = std::optional<uid_t>;

/// `option`, or $SHARED_TABLE_DIR if that is empty; both empty: the empty text, for the default directory. The variable
/// is ignored in a set-user-id program. Without slashes at the end, which would follow a symbolic link.
std::string chosenDirectory(std::string option);
/// `preferred` if it is a directory at this moment, and no symbolic link to one; otherwise `fallback`.
std::string directoryThere(std::string const& preferred, std::string const& fallback);
/// Where tables are now: `chosen` as `chosenDirectory` gave it; for the empty text /run/router-shared-tables if that is
/// there, otherwise /dev/shm/router-shared-tables. Writers ask when they mount, readers whenever they look for a table.
std::string tableDirectory(std::string const& chosen);

/// Whether `mountPath` is names joined by single slashes, and `collection` one name. A name is not empty, does not
/// begin with a dot, and has neither slash nor NUL.
bool namesAreSound(std::string_view mountPath, std::string_view collection) noexcept;

/// The error of a system call on `what`. `noSpace` where the file system, a quota or a limit on the size of files gives
/// no more.
Error systemFailure(int systemError, std::string const& what);

/// Opens the directory of a mount path, component by component, following no symbolic link. `create` makes what is
/// missing, mode 0755. Every component has a trusted owner and cannot be written by others.
Error openDirectory(std::string const& base, std::string_view mountPath, bool create, Owner owner, Fd& out);

/// Opens a regular file of a trusted owner that others cannot write; follows no symbolic link.
Error openTrusted(Fd const& directory, std::string const& name, int flags, Owner owner, Fd& out);

/// Whether `name` in `directory` is the very file that `file` has open.
bool namesFile(Fd const& directory, std::string const& name, int file) noexcept;

/// Whether the path `base`/`mountPath`/`name` leads to the very file that `file` has open, into `named`. An error: that
/// cannot be told, and `named` is false.
Error findName(std::string const& base, std::string_view mountPath, std::string const& name, Owner owner, int file,
               bool& named);

/// A write lock on the file, bound to the open file description: it ends with the last descriptor of it, so with the
/// process at the latest. 0, EAGAIN when somebody else holds a lock, or another errno value.
int lockForWriting(int file) noexcept;
/// Whether somebody else holds a write lock on the file. A lock for reading, which anybody may place, does not count.
/// 0 or an errno value.
int findWriteLock(int file, bool& held) noexcept;
/// The same, where a question that cannot be asked is one answered with no.
bool isLockedForWriting(int file) noexcept;

/// Sleeps while `word` is `value`, at most `milliseconds`. Works on a read-only mapping of a file.
void wait(std::atomic<U32> const& word, U32 value, int milliseconds) noexcept;
/// Wakes everybody who waits on `word`, in any process; how many.
int wakeAll(std::atomic<U32> const& word) noexcept;

/// How many forks lie between the first call in the program and this process: a forked child has another number than
/// its parent, also in a process namespace of its own, where it may have its parent's pid. Throws `std::bad_alloc`; not
/// after a call that did not.
U64 forkCount();

std::array<U8, 16> bootId() noexcept;
/// Start of this process, clock ticks since boot.
U64 processStartTime() noexcept;
U64 realtime() noexcept;
/// The same clock as of the last tick: cheaper by the cost of reading the hardware.
U64 coarseRealtime() noexcept;
void fillRandom(void* out, std::size_t size) noexcept;

}  // namespace SharedTable::FileIo

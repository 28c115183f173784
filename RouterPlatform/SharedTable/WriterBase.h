#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/SharedTable/Capacity.h>
#include <RouterPlatform/SharedTable/Error.h>
#include <RouterPlatform/SharedTable/RowType.h>
#include <RouterPlatform/SharedTable/Walk.h>

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace SharedTable {

class WriterCore;
class Publication;

/// Whether other processes can read a writer's rows.
enum class MountStatus : U8 {
  unmounted,  ///< the rows are this process's own
  mounted,    ///< the rows stand in a file that other processes read
  failed      ///< as unmounted; the last attempt to mount failed, or the table's name was lost (`verifyMount`)
};
ROUTER_PLATFORM_EXPORT void appendText(std::string& out, MountStatus status);
ROUTER_PLATFORM_EXPORT bool parseText(std::string_view text, MountStatus& status) noexcept;
constexpr char const* textTypeNameOf(MountStatus) noexcept { return "SharedTable::MountStatus"; }

/// How large a table may become, and who may read it where.
struct WriterOptions {
  Capacity capacity;
  mode_t mode = 0644;  ///< of the file; only the owner gets write permission, whatever is asked for
  /// Empty: $SHARED_TABLE_DIR, or the default directory: /run/router-shared-tables if that is a directory when the
  /// table is mounted, otherwise /dev/shm/router-shared-tables.
  std::string directory;
  /// Whether a mounting takes over the rows that a writer left under the mount path when it died without unmounting.
  /// Otherwise they are lost with it: the new table has the rows of its own writer only. Rows that the writer has
  /// itself count as newer and stay. Rows that do not fit are left out, counted and traced as refused writes are;
  /// damaged ones go to the corruption handler. `rowChanged` is called for each row that was taken over.
  bool adoptRows = false;
};

/// The part of a `Writer` that knows no row type: mounting, callbacks, what happens on damage.
///
/// A forked child may end its copy of a mounted writer or unmount it, which leaves the file to the parent; it must not
/// change rows before. Until it does so, or executes another program, or ends, it holds the parent's lock too: should
/// the parent die, readers take the writer for alive, and no other writer can mount the table.
class ROUTER_PLATFORM_EXPORT WriterBase {
 public:
  WriterBase(WriterBase const&) = delete;
  WriterBase& operator=(WriterBase const&) = delete;

  std::string const& collection() const noexcept { return collection_; }
  std::string const& mountPath() const noexcept { return mountPath_; }
  MountStatus mountStatus() const noexcept { return mountStatus_; }
  /// Why the last attempt to mount failed, or how the table's name was lost; none otherwise.
  Error const& mountError() const noexcept { return mountError_; }

  /// Publishes the rows under `path` in the table directory; the empty path unmounts. A mounted table moves: it is
  /// unmounted first. On an error the rows stay in the process, everything goes on working, and the status is
  /// `failed`. Calls `quiesced` and `mountStatus`; counts "sharedTableMountFailed". Each callback may mount, unmount or
  /// end the writer: then no further callback is called and nothing is mounted. The first exception of a callback is
  /// thrown when all have been called.
  Error mountPathIs(std::string_view path);

  /// Removes the file's name, retires it, wakes its readers, and keeps the rows in the process. Calls `mountStatus` and
  /// `quiesced`, as above. An error, which is traced, says that there was no memory for the rows: they stay in the file
  /// without a name, and everything goes on working. Only a forked child stays mounted then, because the file is its
  /// parent's.
  Error mountPathDel();

  /// Looks whether other processes still find a mounted table: another process may have removed its name or its
  /// directory, or put another file there. If so, the table is unmounted, with status `failed` and the path kept, so
  /// that `mountPathIs(mountPath())` mounts it anew; calls, counts and traces as a mounting that failed does, and
  /// returns the reason. Otherwise nothing changes; an error then says that the directories could not be looked at. A
  /// few system calls: for a timer of the program, once a second or less often. Does nothing in a forked child.
  Error verifyMount();

  /// The same as `mountPathDel` at the writer's end, for the destructor of its owner: the rows are not moved, so that
  /// nothing can fail, and are not to be used any more. An exception of a callback is traced at level 1 and goes no
  /// further.
  void close() noexcept;

  /// Looks at all rows before they are removed. Damage goes to the corruption handler and then fails the assertion.
  void assertRemovable() const;

  /// Number of rows now.
  U32 count() const noexcept;
  /// Number of rows that the table can hold: the `Capacity` it was made with.
  U32 maxRows() const noexcept;
  /// Number of changes since the table was last mounted or unmounted.
  U64 changeCount() const noexcept;

  /// Gets a message when the table is found damaged. Without one, the message is traced at level 1. It runs inside the
  /// operation that met the damage and must not mount, unmount or end the writer, which fails an assertion.
  using CorruptionHandler = std::function<void(std::string_view message)>;
  void corruptionHandlerIs(CorruptionHandler handler);

  /// For tests and diagnostics.
  WriterCore& core() noexcept { return *core_; }

 protected:
  /// `Writer::Callbacks`, with the key as octets.
  struct BaseCallbacks {
    std::function<void(void const* key)> rowChanged;
    std::function<void()> mountStatus;
    std::function<void(bool)> quiesced;
  };

  /// Throws `std::bad_alloc` when there is no memory for an empty table.
  WriterBase(RowType const& type, std::string collection, WriterOptions const& options);
  /// Unmounts; calls nobody.
  ~WriterBase();

  void callbacksAre(BaseCallbacks callbacks);
  WriteStatus write(void const* row);
  bool remove(void const* key, void* removed);
  void removeAll();
  bool lookup(void const* key, void* row) const;
  bool stage(void const* key, void* row);
  WriteStatus commit(void const* row);
  WalkResult walk(RowVisitor const& visit) const;

 private:
  class Telling;
  /// The callbacks' record of what the owner has been told. Lives on while a callback runs in which the writer ends.
  struct Told {
    U64 mountings = 0;     ///< and unmountings, and the end
    bool quiesced = true;  ///< the value of the last call of `quiesced`
  };
  struct Next;
  struct Former;

  Error mount(std::string_view path);
  Error publish(std::string_view path, Next& next);
  void adoptRows(std::string_view path, Next& next);
  Error unmount(Error const& lost = {});
  bool isForkedCopy() const noexcept;
  Error takeRowsBack(Next& next);
  void leaveFile() noexcept;
  Error moveRows(Next& next);
  /// `key` is that of the row concerned, or null if it is not known.
  void reportCorruption(Corruption const& corruption, std::string_view during, void const* key) const;
  /// The same before an assertion, which stops the process whatever the handler throws.
  void reportSurely(Corruption const& corruption, std::string_view during, void const* key) const noexcept;
  void failRemoval() const noexcept;
  void assertNotReporting() const noexcept;
  WriteStatus finishWrite(WriteStatus status, Corruption const& corruption, void const* key);

  RowType const& type_;
  std::string const collection_;
  WriterOptions const options_;
  std::string mountPath_;
  MountStatus mountStatus_ = MountStatus::unmounted;
  Error mountError_;
  std::shared_ptr<BaseCallbacks const> callbacks_;  // kept by whoever calls them: a callback may set others
  std::shared_ptr<Told> const told_;
  U64 mountedBy_ = 0;                                           ///< `FileIo::forkCount` of the process that mounted
  std::shared_ptr<CorruptionHandler const> corruptionHandler_;  // null, or kept by whoever calls it: likewise
  mutable bool reporting_ = false;                              // the handler runs
  std::unique_ptr<Publication> publication_;  // before the core: the file's lock goes before the place's
  std::shared_ptr<WriterCore> core_;          // shared with the walks that are under way
};

}  // namespace SharedTable

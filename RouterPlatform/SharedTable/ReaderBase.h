#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/SharedTable/Error.h>
#include <RouterPlatform/SharedTable/RowType.h>
#include <RouterPlatform/SharedTable/View.h>

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace SharedTable {

/// The owner that a reader trusts, and the directory in which it looks.
struct ReaderOptions {
  /// User who may own the table, besides root and this process's user. This user can end the reading process: whoever
  /// shrinks the file makes the next access a SIGBUS. No row that is read can do more harm than wrong contents. A
  /// process that must live on reads such a table in a child, or handles the signal.
  std::optional<uid_t> owner;
  /// Empty: $SHARED_TABLE_DIR, or the default directory: /run/router-shared-tables if that is a directory when the
  /// table is looked for, otherwise /dev/shm/router-shared-tables.
  std::string directory;
};

/// The reason why a `wait` ended.
enum class WaitResult : U8 {
  changed,     ///< rows changed
  timedOut,    ///< nothing happened
  attached,    ///< another table has the name now and is attached: a writer (re)started; read everything anew
  writerGone,  ///< no writer is alive any more; the rows are the last ones it left. Read them once more: the last
               ///< change of a writer that was killed may be there and not counted, so that `changed` never comes for
               ///< it
  tableGone,   ///< the writer ended the table, or its name is gone, and there is no other; nothing is attached
  unreadable   ///< another table has the name now and cannot be attached, `attachError()` says why; nothing is attached
};

/// The writer of the attached table.
struct WriterState {
  bool alive = false;
  U32 pid = 0;          ///< in the writer's own process namespace
  U64 createdTime = 0;  ///< of the table; nanoseconds of the realtime clock, like the others
  U64 changeTime = 0;   ///< of the last change, 0: none yet. With a dead writer, its last sign of life
  U64 retiredTime = 0;  ///< when it ended the table, 0: it did not
};

/// The part of a `Reader` that knows no row type: finding the table, and waiting.
class ROUTER_PLATFORM_EXPORT ReaderBase {
 public:
  ReaderBase(ReaderBase const&) = delete;
  ReaderBase& operator=(ReaderBase const&) = delete;

  /// Maps the table that has the name now, read-only. On an error, which says whether there is none, or it is not to be
  /// trusted, damaged, or of another layout, nothing is attached.
  Error attach();
  /// Unmaps the table, if one is attached.
  void detach() noexcept;
  bool attached() const noexcept;
  /// Why the last attempt to attach failed, those of `wait` included; none if it did not.
  Error const& attachError() const noexcept { return attachError_; }

  /// Rows, as the writer counts them: one off at most while it works. 0 without a table.
  U32 count() const noexcept;

  /// Committed changes of the attached table; what `wait` compares. Read it before the rows.
  U64 changeCount() const noexcept;

  /// State of the writer, asked of the operating system.
  WriterState writer() const noexcept;

  /// Waits until the table's change count is not `seen`, or something else happens to the table, or the time is over.
  /// Sleeps; a change wakes it within about 25 ms and mostly at once, the end of a writer or of the table's name within
  /// about a second, whether or not the writer lives. Without a table it waits for one, and
  /// ends too when the reason why none can be attached has changed.
  WaitResult wait(U64 seen, std::chrono::milliseconds timeout);

  /// Path of the table's file, whether the file exists or not, as of the last attempt to attach.
  std::string const& path() const noexcept { return path_; }
  View const& view() const noexcept { return view_; }

 protected:
  ReaderBase(RowType const& type, std::string_view mountPath, std::string_view collection, ReaderOptions options);
  ~ReaderBase();

 private:
  struct Attachment;

  std::string pathIn(std::string const& directory) const;
  Error open(std::unique_ptr<Attachment>& out);
  bool isReplaced() const;
  WaitResult reattach();
  std::optional<WaitResult> checkWriter();

  RowType const& type_;
  std::optional<uid_t> const owner_;
  std::string const directory_;  ///< empty: the default one
  std::string const mountPath_;
  std::string const collection_;
  std::string path_;
  std::unique_ptr<Attachment> attachment_;
  View view_;  ///< of the attached table
  Error attachError_;
};

}  // namespace SharedTable

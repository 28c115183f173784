#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/SharedTable/Error.h>
#include <RouterPlatform/SharedTable/RowType.h>
#include <RouterPlatform/SharedTable/View.h>

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace SharedTable {

class WriterCore;
class Publication;

enum class MountStatus : U8 {
  unmounted,  ///< the rows are this process's own
  mounted,    ///< the rows stand in a file that other processes read
  failed      ///< as unmounted; the last attempt to mount failed
};
ROUTER_PLATFORM_EXPORT void appendText(std::string& out, MountStatus status);
ROUTER_PLATFORM_EXPORT bool parseText(std::string_view text, MountStatus& status) noexcept;
constexpr char const* textTypeNameOf(MountStatus) noexcept { return "SharedTable::MountStatus"; }

struct WriterOptions {
  Capacity capacity;
  mode_t mode = 0644;     ///< of the file; nobody but the owner gets to write it, whatever is asked for
  std::string directory;  ///< empty: $SHARED_TABLE_DIR, or /dev/shm/router-shared-tables
};

/// The part of a `Writer` that knows no row type: mounting, callbacks, what happens on damage.
class ROUTER_PLATFORM_EXPORT WriterBase {
 public:
  WriterBase(WriterBase const&) = delete;
  WriterBase& operator=(WriterBase const&) = delete;

  std::string const& collection() const noexcept { return collection_; }
  std::string const& mountPath() const noexcept { return mountPath_; }
  MountStatus mountStatus() const noexcept { return mountStatus_; }
  /// Why the last attempt to mount failed; none if it did not.
  Error const& mountError() const noexcept { return mountError_; }

  /// Publishes the rows under `path` in the table directory; the empty path unmounts. A mounted table moves: it is
  /// unmounted first. On an error the rows stay in the process, everything goes on working, and the status is
  /// `failed`. Calls `mountStatus` and `quiesced`; counts "sharedTableMountFailed".
  Error mountPathIs(std::string_view path);

  /// Retires the file, wakes its readers, removes its name, and keeps the rows in the process. A callback may end the
  /// writer.
  Error mountPathDel();

  /// Rows now.
  U32 count() const noexcept;
  U32 maxRows() const noexcept;
  /// Changes since the table was mounted or unmounted last.
  U64 changeCount() const noexcept;

  /// Gets a message when the table is found damaged. Without one, the message is traced at level 1.
  using CorruptionHandler = std::function<void(std::string_view message)>;
  void corruptionHandlerIs(CorruptionHandler handler) { corruptionHandler_ = std::move(handler); }

  /// For tests and diagnostics.
  WriterCore& core() noexcept { return *core_; }

 protected:
  struct BaseCallbacks {
    std::function<void(void const* key)> rowChanged;
    std::function<void()> mountStatus;
    std::function<void(bool)> quiesced;
  };

  /// Throws `std::bad_alloc` when there is no memory for an empty table.
  WriterBase(RowType const& type, std::string collection, WriterOptions const& options);
  /// Unmounts; calls nobody.
  ~WriterBase();

  void callbacksAre(BaseCallbacks callbacks) { callbacks_ = std::move(callbacks); }
  WriteStatus write(void const* row);
  bool remove(void const* key, void* removed);
  bool lookup(void const* key, void* row) const;
  bool stage(void const* key, void* row);
  WriteStatus commit(void const* row);
  WalkResult walk(View::Visitor const& visit) const;

 private:
  Error mount(std::string_view path);
  Error unmount();
  void rowsMoved(std::vector<std::vector<U64>> const& lostRows);
  Error moveRows(WriterCore& next, std::vector<std::vector<U64>>& lostRows);
  void reportCorruption(Corruption const& corruption, std::string_view during) const;
  WriteStatus finishWrite(WriteStatus status, Corruption const& corruption);

  RowType const& type_;
  std::string const collection_;
  WriterOptions const options_;
  std::string mountPath_;
  MountStatus mountStatus_ = MountStatus::unmounted;
  Error mountError_;
  BaseCallbacks callbacks_;
  CorruptionHandler corruptionHandler_;
  std::unique_ptr<Publication> publication_;  // before the core: the file's lock goes before the place's
  std::shared_ptr<WriterCore> core_;          // shared with the walks that are under way
};

}  // namespace SharedTable

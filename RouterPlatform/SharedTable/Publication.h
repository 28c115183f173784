#pragma once

#include <RouterPlatform/SharedTable/Error.h>
#include <RouterPlatform/SharedTable/FileIo.h>
#include <RouterPlatform/SharedTable/Memory.h>

#include <sys/types.h>

#include <string>
#include <string_view>

namespace SharedTable {

/// A table's place in the file system, held by its one writer: directory, lock, names. It ends with the object.
class Publication {
 public:
  Publication() = default;
  Publication(Publication const&) = delete;
  Publication& operator=(Publication const&) = delete;
  /// An unpublished file goes.
  ~Publication();

  /// Takes the place below `chosen`, a directory or empty, as `FileIo::chosenDirectory` gives it: makes the directories
  /// and locks `COLLECTION.lock`. `secondWriter` if somebody has it, or if the table there has a writer that lives,
  /// whatever became of its `.lock`; nothing is touched then.
  Error claim(std::string chosen, std::string_view mountPath, std::string_view collection);

  /// A new file under a temporary name, `size` octets without space.
  Error createFile(U64 size, Memory& out);

  /// Gives the finished file its name and mode, and retires the file that had the name before.
  Error publish(Memory const& memory, mode_t mode);

  /// Whether the table's path still leads to the file of `memory`, into `named`. An error: that cannot be told.
  Error findName(Memory const& memory, bool& named) const;

  /// Removes the name, if it is still that of `memory`.
  void withdraw(Memory const& memory) noexcept;

 private:
  std::string path(std::string const& name) const { return mountPath_ + "/" + name; }
  Error secondWriter() const;
  Error checkFormer() const;
  Fd openFormer() const;

  std::string chosen_;
  std::string mountPath_;
  std::string collection_;
  std::string name_;  // made once: withdrawing and the end must not need memory
  std::string temporaryName_;
  Fd directory_;
  Fd lock_;
  bool building_ = false;
};

}  // namespace SharedTable

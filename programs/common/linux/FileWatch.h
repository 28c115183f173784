#pragma once

#include <programs/common/text/FileDescriptor.h>

#include <string>

namespace Tool {

/// Notices that a file was written, replaced by renaming, or removed; inotify(7). It watches the directory of the file,
/// and the directory of the target when the file is a symbolic link, so the file may come and go. Changes of other
/// files in these directories are noticed too: the reader of the file has to compare.
class FileWatch {
 public:
  explicit FileWatch(std::string fileName);

  /// For poll(2): readable after a change. Negative: inotify is not available.
  int descriptor() const { return inotify_.get(); }

  /// Discards the changes noticed so far, and does `lookAgain`.
  void restart();
  /// Watches the directories where the file is now. inotify does not tell when a directory on the way is replaced.
  void lookAgain();

 private:
  void watchDirectoryOf(std::string const& path) const;

  std::string fileName_;
  FileDescriptor inotify_;
};

}  // namespace Tool

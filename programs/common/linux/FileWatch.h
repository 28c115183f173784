#pragma once

#include <programs/common/text/FileDescriptor.h>

#include <string>

namespace Tool {

/// Tells when something happened to a file: written, replaced by renaming, removed. What is watched is its directory,
/// and that of the file it is a link to, so that a file may come and go. Other files of the directories are noticed as
/// well: whether the file has changed is for its reader to find out.
class FileWatch {
 public:
  explicit FileWatch(std::string fileName);

  /// Becomes readable when something happened. Negative: nothing can be watched.
  int descriptor() const { return inotify_.get(); }

  /// Forgets what happened so far, and looks anew where the file is.
  void restart();
  /// Looks anew where the file is: its directory may be another one than it was, of which nothing is told.
  void lookAgain();

 private:
  void watchDirectoryOf(std::string const& path) const;

  std::string fileName_;
  FileDescriptor inotify_;
};

}  // namespace Tool
